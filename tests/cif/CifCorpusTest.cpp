// SPDX-License-Identifier: MIT
// Real crystal files: read without errors unless they break a rule, printed and read back.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

#include "tests/cif/CifTestSupport.hpp"

namespace {

const char* const corpus_dir = "/usr/share/avogadro2/crystals";

// Files of the corpus that really break CIF rules, with the codes of their errors:
// loop rows with a value too few or too many, and stray lines pasted into a loop.
const std::map<std::string, std::set<int>> broken_files = {
    {"elements/Se-Selenium.cif", {307}},              // a stray "0 0.13400" line leaves the atom loop ragged
    {"elements/Eu-Europium.cif", {307, 310, 312}},    // a second, damaged copy of the atom loop
    {"elements/Er-Erbium.cif", {310}},                // a damaged name "_fract_z" leaves values without names
    {"sulfides/Bi2S3-Bismuthinite.cif", {307, 312}},  // a damaged row and a repeated atom loop
};

std::vector<std::filesystem::path> corpus_files() {
    std::vector<std::filesystem::path> files;
    std::error_code error;
    for (auto it = std::filesystem::recursive_directory_iterator(corpus_dir, error);
         !error && it != std::filesystem::recursive_directory_iterator(); it.increment(error)) {
        if (it->path().extension() == ".cif") files.push_back(it->path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

THandle<Cif> read_file(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios::binary);
    THandle<Cif> cif(new Cif());
    cif->read(stream, CifParserSettings());
    return cif;
}

TEST(CifCorpus, RealFilesReadWithoutErrorsUnlessTheyBreakARule) {
    std::vector<std::filesystem::path> files = corpus_files();
    if (files.empty())
        GTEST_SKIP() << "no crystal files under " << corpus_dir << " (Debian package libavogadro-data)";
    EXPECT_GT(files.size(), 400u);
    std::set<std::string> seen_broken;
    for (const std::filesystem::path& path : files) {
        std::string name = std::filesystem::relative(path, corpus_dir).string();
        THandle<Cif> cif = read_file(path);
        std::set<int> codes;
        for (const CifError& error : *cif->errors()) {
            if (error.type() == CifError::error) codes.insert(error.id());
        }
        auto known = broken_files.find(name);
        if (known == broken_files.end()) {
            EXPECT_TRUE(codes.empty()) << name << ": " << cif->errors()->begin()->complete_message();
        } else {
            EXPECT_EQ(codes, known->second) << name;
            seen_broken.insert(name);
        }
        EXPECT_FALSE(cif->blocks().empty()) << name;
    }
    EXPECT_EQ(seen_broken.size(), broken_files.size());
}

TEST(CifCorpus, PrintingAndReadingBackKeepsEveryValue) {
    std::vector<std::filesystem::path> files = corpus_files();
    if (files.empty())
        GTEST_SKIP() << "no crystal files under " << corpus_dir << " (Debian package libavogadro-data)";
    for (const std::filesystem::path& path : files) {
        THandle<Cif> cif = read_file(path);
        std::ostringstream printed;
        cif->print(printed);
        THandle<Cif> again = cif_test::read(printed.str());
        EXPECT_EQ(again->errors()->errors_of_type(CifError::error), 0) << path;
        EXPECT_TRUE(cif_test::same_document(*cif, *again)) << path;
    }
}

}  // namespace
