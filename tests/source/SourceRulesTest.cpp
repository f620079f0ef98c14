// SPDX-License-Identifier: MIT
// Rules every source file keeps: its folder's licence on line 1, its purpose on line 2.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

const char* const kMit = "MIT";
const char* const kGpl = "GPL-3.0-or-later";

// The folders that hold sources, searched with their subfolders.
const char* const kSourceRoots[] = {"src", "cif", "support", "tools", "app", "tests", "bench", "fuzz"};

// The licence of each folder; the longest matching folder decides. Tests and benchmarks take
// the licence of what they exercise: Qt-free ones MIT, those that use the application GPL.
struct FolderLicence {
    const char* folder;
    const char* licence;
};
const FolderLicence kLicences[] = {
    {"cif", kMit},
    {"support", kMit},
    {"tools", kMit},
    {"fuzz", kMit},
    {"src", kGpl},
    {"app", kGpl},
    {"tests/cif", kMit},
    {"tests/support", kMit},
    {"tests/tools", kMit},
    {"tests/source", kMit},
    {"tests/gui", kGpl},
    {"bench/parse_vs_gemmi", kMit},
    {"bench/dictionary", kMit},
    {"bench/check", kGpl},
    {"bench/document", kGpl},
    {"bench/editor", kGpl},
    {"bench/highlight", kGpl},
};

// One source file: its path in the source tree ("src/editor/QcbsUnicode.cpp") and its folder
// ("src/editor").
struct SourceFile {
    std::string path;
    std::string folder;
};

// Every *.cpp, *.hpp and *.h under the source folders, in path order.
std::vector<SourceFile> sourceFiles() {
    const fs::path tree(TESSARY_SOURCE_DIR);
    std::vector<SourceFile> files;
    for (const char* root : kSourceRoots) {
        if (!fs::is_directory(tree / root)) continue;
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(tree / root)) {
            const std::string extension = entry.path().extension().string();
            if (!entry.is_regular_file() || (extension != ".cpp" && extension != ".hpp" && extension != ".h"))
                continue;
            const fs::path relative = entry.path().lexically_relative(tree);
            files.push_back({relative.generic_string(), relative.parent_path().generic_string()});
        }
    }
    std::sort(files.begin(), files.end(),
              [](const SourceFile& a, const SourceFile& b) { return a.path < b.path; });
    return files;
}

// The first `count` lines of a source file (fewer when it is shorter).
std::vector<std::string> firstLines(const SourceFile& file, std::size_t count) {
    std::ifstream stream(fs::path(TESSARY_SOURCE_DIR) / file.path, std::ios::binary);
    std::vector<std::string> lines;
    std::string line;
    while (lines.size() < count && std::getline(stream, line)) lines.push_back(line);
    return lines;
}

// The licence of a folder, or null when no rule names it.
const char* folderLicence(const std::string& folder) {
    const FolderLicence* best = nullptr;
    for (const FolderLicence& rule : kLicences) {
        const std::string prefix = rule.folder;
        const bool matches = folder == prefix || folder.rfind(prefix + "/", 0) == 0;
        if (matches && (best == nullptr || prefix.size() > std::string(best->folder).size())) best = &rule;
    }
    return best == nullptr ? nullptr : best->licence;
}

// What is wrong with a file's first two lines for its folder's licence; empty when nothing is.
std::string licenceProblem(const std::string& folder, const std::vector<std::string>& lines) {
    const char* licence = folderLicence(folder);
    if (licence == nullptr) return "no licence is set for the folder " + folder + " (add it to kLicences)";
    const std::string spdx = std::string("// SPDX-License-Identifier: ") + licence;
    if (lines.empty() || lines[0] != spdx) return "line 1 must be \"" + spdx + "\"";
    if (lines.size() < 2 || lines[1].rfind("// ", 0) != 0 || lines[1].size() < 4 || lines[1][3] == ' ' ||
        lines[1].rfind("// SPDX", 0) == 0)
        return "line 2 must be a one-line comment \"// ...\" saying what the file is for";
    if (lines[1].size() >= 100) return "line 2 must stay under 100 columns";
    return std::string();
}

TEST(SourceRules, TheLicenceAndPurposeLinesAreCheckedAsWritten) {
    const std::string mit = "// SPDX-License-Identifier: MIT";
    const std::string gpl = "// SPDX-License-Identifier: GPL-3.0-or-later";
    const std::string purpose = "// The error list's entries.";
    struct Case {
        std::string folder;
        std::vector<std::string> lines;
        bool good;
    };
    const Case cases[] = {
        {"cif", {mit, purpose}, true},
        {"src/editor", {gpl, purpose}, true},
        {"tests/gui/editor", {gpl, purpose}, true},
        {"tests/cif", {mit, purpose}, true},
        {"bench/dictionary", {mit, purpose}, true},
        {"bench/editor", {gpl, purpose}, true},
        {"src", {mit, purpose}, false},  // the folder's licence, not another
        {"tests/tools", {gpl, purpose}, false},
        {"cif", {purpose, mit}, false},  // the licence comes first
        {"cif", {"", mit, purpose}, false},
        {"cif", {mit}, false},  // no purpose
        {"cif", {mit, "#pragma once"}, false},
        {"cif", {mit, "//"}, false},
        {"cif", {mit, "//  indented"}, false},
        {"cif", {mit, mit}, false},
        {"cif", {mit, "// " + std::string(97, 'x')}, false},
        {"bench/newbench", {mit, purpose}, false},  // every folder needs a rule
        {"srcs", {gpl, purpose}, false},
    };
    for (const Case& c : cases)
        EXPECT_EQ(licenceProblem(c.folder, c.lines).empty(), c.good)
            << c.folder << ": " << (c.lines.empty() ? "" : c.lines[0]) << " / "
            << (c.lines.size() > 1 ? c.lines[1] : "");
}

TEST(SourceRules, EverySourceFileStartsWithItsFoldersLicenceAndItsPurpose) {
    const std::vector<SourceFile> files = sourceFiles();
    for (const char* root : kSourceRoots) {
        const bool found = std::any_of(files.begin(), files.end(), [&](const SourceFile& file) {
            return file.path.rfind(std::string(root) + "/", 0) == 0;
        });
        EXPECT_TRUE(found) << "no source file under " << TESSARY_SOURCE_DIR << "/" << root;
    }
    for (const SourceFile& file : files) {
        const std::string problem = licenceProblem(file.folder, firstLines(file, 2));
        if (!problem.empty()) ADD_FAILURE() << file.path << ": " << problem;
    }
}

}  // namespace
