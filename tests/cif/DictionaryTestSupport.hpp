// SPDX-License-Identifier: MIT
// Helpers of the dictionary tests: dictionaries from text or from tests/data, and reading.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "cif/Cif.hpp"
#include "cif/CifConcreteDictionary.hpp"
#include "cif/CifDictionaryPool.hpp"

namespace cif_test {

// A dictionary read from text; its messages go into errors.
inline THandle<CifConcreteDictionary> dictionary_from_text(const std::string& text,
                                                           THandle<CifErrorContainer> errors) {
    THandle<CifConcreteDictionary> dictionary(new CifConcreteDictionary());
    std::istringstream stream(text);
    dictionary->read(stream, errors, nullptr);
    return dictionary;
}

// A dictionary file of tests/data (the team's small test dictionaries).
inline THandle<CifConcreteDictionary> test_dictionary(const std::string& name = "tessary_test.dic") {
    std::ifstream stream(std::string(TESSARY_SOURCE_DIR) + "/tests/data/" + name, std::ios::binary);
    EXPECT_TRUE(stream) << name;
    THandle<CifErrorContainer> errors(new CifErrorContainer());
    THandle<CifConcreteDictionary> dictionary(new CifConcreteDictionary());
    dictionary->read(stream, errors, nullptr);
    EXPECT_TRUE(errors->empty()) << name << ": "
                                 << (errors->empty() ? "" : errors->begin()->complete_message());
    return dictionary;
}

// A pool holding the test dictionary.
inline THandle<CifDictionaryPool> test_pool() {
    THandle<CifDictionaryPool> pool(new CifDictionaryPool());
    pool->insert(test_dictionary());
    return pool;
}

// Reads text against the test dictionary.
inline THandle<Cif> read_checked(const std::string& text) {
    THandle<Cif> cif(new Cif(test_pool()));
    cif->read_text(text, CifParserSettings());
    return cif;
}

inline std::string core_dictionary_path() {
    return std::string(TESSARY_SHARED_DIR) + "/dictionaries/cif_core.dic";
}

// The IUCr core dictionary, read once; null when the file is absent (the
// caller skips, naming core_dictionary_path()).
inline THandle<CifConcreteDictionary> core_dictionary() {
    static THandle<CifConcreteDictionary> core = [] {
        std::ifstream stream(core_dictionary_path(), std::ios::binary);
        if (!stream) return THandle<CifConcreteDictionary>();
        THandle<CifConcreteDictionary> dictionary(new CifConcreteDictionary());
        dictionary->read(stream, THandle<CifErrorContainer>(new CifErrorContainer()), nullptr);
        return dictionary;
    }();
    return core;
}

}  // namespace cif_test
