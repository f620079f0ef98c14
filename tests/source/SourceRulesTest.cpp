// SPDX-License-Identifier: MIT
// Rules every source file keeps: licence and purpose on top, includes that follow the layering.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

const char* const kMit = "MIT";
const char* const kGpl = "GPL-3.0-or-later";

// The folders that hold sources, searched with their subfolders.
const char* const kSourceRoots[] = {"src",   "cif",   "support", "tools",    "app",
                                    "tests", "bench", "fuzz",    "packaging"};

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
    {"tests/install", kGpl},
    {"packaging", kMit},
    {"bench/parse_vs_gemmi", kMit},
    {"bench/dictionary", kMit},
    {"bench/structure_checks", kMit},
    {"bench/files", kMit},
    {"bench/check", kGpl},
    {"bench/document", kGpl},
    {"bench/editor", kGpl},
    {"bench/find", kGpl},
    {"bench/highlight", kGpl},
    {"bench/tree", kGpl},
    {"bench/loop_table", kGpl},
    {"bench/visualiser", kGpl},
    {"bench/recovery", kGpl},
    {"bench/common", kMit},
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

// --- layering -----------------------------------------------------------------------------

// One #include line of a source file.
struct Include {
    int line = 0;
    std::string target;  // as written, without quotes or brackets
    bool angled = false;
};

std::vector<Include> includesOf(const SourceFile& file) {
    std::ifstream stream(fs::path(TESSARY_SOURCE_DIR) / file.path, std::ios::binary);
    std::vector<Include> includes;
    std::string text;
    for (int line = 1; std::getline(stream, text); ++line) {
        const std::size_t hash = text.find_first_not_of(" \t");
        if (hash == std::string::npos || text.compare(hash, 8, "#include") != 0) continue;
        const std::size_t open = text.find_first_of("\"<", hash + 8);
        if (open == std::string::npos) continue;
        const std::size_t close = text.find(text[open] == '<' ? '>' : '"', open + 1);
        if (close == std::string::npos) continue;
        includes.push_back({line, text.substr(open + 1, close - open - 1), text[open] == '<'});
    }
    return includes;
}

// The piece a path belongs to: "cif", "support", "tools", "app", or "src/<folder>" for the
// application's floors ("src/editor"); a quoted include names its piece the same way, with
// the application's folders written without "src/".
std::string pieceOfFile(const std::string& path) {
    const std::string top = path.substr(0, path.find('/'));
    if (top != "src") return top;
    const std::size_t second = path.find('/', 4);
    return second == std::string::npos ? "src" : path.substr(0, second);
}

std::string pieceOfInclude(const std::string& target) {
    const std::string top = target.substr(0, target.find('/'));
    if (top == "cif" || top == "support" || top == "tools" || top == "tests") return top;
    return "src/" + top;
}

bool isQtHeader(const Include& include) { return include.angled && include.target.rfind("Q", 0) == 0; }

// What is wrong with one include of a file of the given piece; empty when nothing is.
std::string layeringProblem(const std::string& piece, const Include& include) {
    if (piece == "support" || piece == "cif" || piece == "tools") {
        if (isQtHeader(include))
            return "the CIF library, the support library and the checker never include Qt";
        if (include.angled) return std::string();
        const std::string target = pieceOfInclude(include.target);
        static const std::map<std::string, std::set<std::string>> allowed = {
            {"support", {"support"}}, {"cif", {"cif", "support"}}, {"tools", {"tools", "cif", "support"}}};
        if (allowed.at(piece).count(target) == 0) return piece + " may not include " + include.target;
        return std::string();
    }
    if (include.angled || piece.rfind("src", 0) != 0) return std::string();
    const std::string target = pieceOfInclude(include.target);
    if (target == "cif" || target == "support" || target == piece) return std::string();
    if (target == "tools" || target == "tests") return "the application never includes " + include.target;
    if (target == "src/application") return "no folder includes the application: " + include.target;
    if (piece == "src/base") return "the base floor includes only itself: " + include.target;
    if (piece == "src/document" && target != "src/base" && include.target != "editor/QcbsRichTextEdit.hpp")
        return "a document includes only the base floor and the editor's text widget: " + include.target;
    if (piece == "src/find" && target != "src/base" && target != "src/editor")
        return "the search dialogs include only the base floor and the editor: " + include.target;
    if (piece == "src/wizards" && target != "src/base" && target != "src/views" && target != "src/resources")
        return "a wizard includes only the base floor, the views and the pictures: " + include.target;
    return std::string();
}

TEST(SourceRules, LayeringRulesAreCheckedAsWritten) {
    const struct {
        const char* piece;
        Include include;
        bool good;
    } cases[] = {
        {"cif", {1, "support/THandle.hpp", false}, true},
        {"cif", {1, "vector", true}, true},
        {"cif", {1, "QString", true}, false},
        {"cif", {1, "base/QcbsOptions.hpp", false}, false},
        {"support", {1, "cif/Cif.hpp", false}, false},
        {"tools", {1, "cif/Cif.hpp", false}, true},
        {"tools", {1, "editor/QcbsUnicode.hpp", false}, false},
        {"src/editor", {1, "base/ORMALogQString.hpp", false}, true},
        {"src/editor", {1, "application/QcbsMainWindow.hpp", false}, false},
        {"src/application", {1, "application/QcbsMainWindow.hpp", false}, true},
        {"src/application", {1, "views/QcbsCifBoxView.hpp", false}, true},
        {"src/find", {1, "editor/QcbsRichTextEdit.hpp", false}, true},
        {"src/find", {1, "base/ORMAApplicationSettings.hpp", false}, true},
        {"src/find", {1, "views/QcbsCifBoxView.hpp", false}, false},
        {"src/find", {1, "application/QcbsMainWindow.hpp", false}, false},
        {"src/base", {1, "editor/QcbsUnicode.hpp", false}, false},
        {"src/document", {1, "editor/QcbsRichTextEdit.hpp", false}, true},
        {"src/document", {1, "editor/QcbsUnicode.hpp", false}, false},
        {"src/views", {1, "tools/FileCheck.hpp", false}, false},
        {"src/wizards", {1, "views/QcbsEditDataDialogue.hpp", false}, true},
        {"src/wizards", {1, "resources/QcbsImages.hpp", false}, true},
        {"src/wizards", {1, "document/QcbsCifDocument.hpp", false}, false},
        {"src/wizards", {1, "editor/QcbsRichTextEdit.hpp", false}, false},
        {"src/wizards", {1, "application/QcbsMainWindow.hpp", false}, false},
    };
    for (const auto& c : cases)
        EXPECT_EQ(layeringProblem(c.piece, c.include).empty(), c.good)
            << c.piece << " -> " << c.include.target;
}

TEST(SourceRules, IncludesFollowTheLayeringAndTheApplicationsFoldersFormNoCycle) {
    std::map<std::string, std::set<std::string>> uses;  // src folder -> src folders it includes
    for (const SourceFile& file : sourceFiles()) {
        const std::string piece = pieceOfFile(file.path);
        for (const Include& include : includesOf(file)) {
            const std::string problem = layeringProblem(piece, include);
            if (!problem.empty()) ADD_FAILURE() << file.path << ":" << include.line << ": " << problem;
            if (piece.rfind("src/", 0) == 0 && !include.angled) {
                const std::string target = pieceOfInclude(include.target);
                if (target != piece && target.rfind("src/", 0) == 0) uses[piece].insert(target);
            }
        }
    }
    // Dependencies point one way: a folder never reaches itself through others.
    for (const auto& [start, direct] : uses) {
        std::set<std::string> seen;
        std::vector<std::string> todo(direct.begin(), direct.end());
        while (!todo.empty()) {
            const std::string folder = todo.back();
            todo.pop_back();
            if (!seen.insert(folder).second) continue;
            EXPECT_NE(folder, start) << start << " includes itself through other folders";
            for (const std::string& next : uses[folder]) todo.push_back(next);
        }
    }
}

}  // namespace
