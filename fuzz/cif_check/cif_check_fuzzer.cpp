// SPDX-License-Identifier: MIT
// Fuzz target of the whole check: bytes read with the core dictionary and cross-checked.
// Every message must name a line of the text, and the same text must give the same messages twice
// (the process-wide caches of the checks must not change an answer).

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "cif/CifConcreteDictionary.hpp"
#include "cif/CifDictionaryPool.hpp"
#include "cif/CifDocumentCheck.hpp"

namespace {

void require(bool condition, const char* what) {
    if (!condition) {
        std::fprintf(stderr, "check failed: %s\n", what);
        std::abort();
    }
}

THandle<CifDictionary> core_dictionary() {
    const char* chosen = std::getenv("TESSARY_FUZZ_DICTIONARY");
    const std::string path = chosen != nullptr ? chosen : TESSARY_FUZZ_DEFAULT_DICTIONARY;
    THandle<CifConcreteDictionary> dictionary(new CifConcreteDictionary());
    THandle<CifErrorContainer> errors(new CifErrorContainer());
    if (!dictionary->read_file(path, errors) || !errors->empty()) {
        std::fprintf(stderr, "no dictionary at %s: checking without one\n", path.c_str());
        return THandle<CifDictionary>();
    }
    THandle<CifDictionaryPool> pool(new CifDictionaryPool());
    pool->insert(dictionary);
    return pool;
}

std::vector<std::string> messages(const Cif& cif) {
    std::vector<std::string> result;
    for (const CifError& error : *cif.errors())
        result.push_back(std::to_string(error.line()) + " " + error.complete_message());
    return result;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const THandle<CifDictionary> dictionary = core_dictionary();
    std::string text(reinterpret_cast<const char*>(data), size);
    CifCheckSettings settings;
    settings.parser.max_nesting = 16;
    settings.parser.max_messages = 200;
    settings.parser.allow_save_frames = size > 0 && (data[0] & 1) != 0;
    const CifDocumentCheck check(dictionary, settings);
    const THandle<Cif> first = check.run(text);
    int lines = 1;
    for (char c : text) lines += c == '\n' || c == '\r';
    for (const CifError& error : *first->errors()) require(error.line() >= 0 && error.line() <= lines, "line");
    require(messages(*check.run(text)) == messages(*first), "the same messages again");
    return 0;
}
