// SPDX-License-Identifier: MIT
// Fuzz target of the DDL1 reader: read a few blocks at a time, a text gives what it gives whole.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>

#include "cif/CifConcreteDictionary.hpp"
#include "cif/CifDdl1Reader.hpp"

namespace {

// Every message, log line and definition the reader gives, as text.
std::string read(const std::string& text, std::size_t piece_size) {
    CifConcreteDictionary dictionary;
    THandle<CifErrorContainer> errors(new CifErrorContainer());
    std::ostringstream out;
    CifDdl1Reader(dictionary, errors, &out).read(text, piece_size);
    for (const CifError& error : *errors) out << error.line() << ' ' << error.complete_message() << '\n';
    for (std::size_t i = 0; i < dictionary.definition_count(); ++i) {
        const CifItemDefinition& definition = dictionary.definition_at(i);
        out << definition.name << '@' << definition.line << ' ' << definition.category << ' '
            << definition.type_text << ' ' << definition.range_text << ' ' << definition.enumerations.size() << ' '
            << definition.notes().definition << '\n';
    }
    out << dictionary.descriptor().text() << ' ' << dictionary.categories().size() << '\n';
    return out.str();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::string whole = read(text, 0);
    for (std::size_t piece : {std::size_t(1), std::size_t(64)}) {
        if (read(text, piece) != whole) {
            std::fprintf(stderr, "pieces of %zu differ from the whole text\n", piece);
            std::abort();
        }
    }
    return 0;
}
