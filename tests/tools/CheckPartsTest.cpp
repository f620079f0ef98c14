// SPDX-License-Identifier: MIT
// The parts of tessary-check: command line, JSON report, dictionaries found, mandatory items.
// The program as a whole is run in TessaryCheckTest.cpp.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "tools/CheckOptions.hpp"
#include "tools/CheckReport.hpp"
#include "tools/DictionaryFiles.hpp"

namespace {

namespace fs = std::filesystem;
using Strings = std::vector<std::string>;

TEST(CheckOptions, ReadsOptionsInBothFormsAndKeepsFilesInOrder) {
    CheckOptions options =
        CheckOptions::parse({"a.cif", "--json", "--line-length", "100", "-j4", "-d", "core.dic",
                             "-dlocal.dic", "--dictionary=third.dic", "b.cif", "-"});
    EXPECT_EQ(options.problem, "");
    EXPECT_TRUE(options.json);
    EXPECT_EQ(options.line_length, 100);
    EXPECT_EQ(options.jobs, 4);
    EXPECT_EQ(options.files, (Strings{"a.cif", "b.cif", "-"}));
    EXPECT_EQ(options.dictionaries, (Strings{"core.dic", "local.dic", "third.dic"}));
    EXPECT_TRUE(options.consistency);
    EXPECT_EQ(options.mandatory_file, "");

    options = CheckOptions::parse(
        {"--line-length=0", "--jobs", "2", "--mandatory", "items.txt", "--no-consistency", "--", "-odd.cif"});
    EXPECT_EQ(options.problem, "");
    EXPECT_EQ(options.line_length, 0);
    EXPECT_EQ(options.jobs, 2);
    EXPECT_EQ(options.files, Strings{"-odd.cif"});
    EXPECT_EQ(options.mandatory_file, "items.txt");
    EXPECT_FALSE(options.consistency);
    EXPECT_TRUE(options.dictionaries.empty());
    EXPECT_EQ(CheckOptions::parse({"--help"}).problem, "");
    EXPECT_TRUE(CheckOptions::parse({"--help"}).help);
}

TEST(CheckOptions, UnusableCommandLinesNameTheProblem) {
    EXPECT_EQ(CheckOptions::parse({}).problem, "no file named");
    EXPECT_EQ(CheckOptions::parse({"--frobnicate", "a.cif"}).problem, "unknown option --frobnicate");
    for (const Strings& arguments : {Strings{"-j", "0", "a.cif"}, Strings{"--line-length", "eighty", "a.cif"},
                                     Strings{"a.cif", "--line-length"}, Strings{"a.cif", "-d"},
                                     Strings{"--dictionary=", "a.cif"}, Strings{"a.cif", "--mandatory"}}) {
        EXPECT_NE(CheckOptions::parse(arguments).problem, "") << arguments.front() << " " << arguments[1];
    }
}

TEST(CheckReport, JsonCarriesTheMessagesEscapedWithCountsPerFileAndInAll) {
    FileCheckResult result;
    result.file = "dir/broken.cif";
    result.messages.emplace_back(CifError::line_too_long, 2, "", "80");
    result.messages.emplace_back(CifError::unterminated_quoted_string, 3, "'it \"x\"");
    result.warnings = 1;
    result.errors = 1;
    std::ostringstream out, problems;
    CheckReport report(out, problems, true);
    report.begin();
    report.add(result);
    report.end();
    for (const char* part :
         {"{\"file\": \"dir/broken.cif\", \"errors\": 1, \"warnings\": 1, \"remarks\": 0",
          "{\"line\": 2, \"kind\": \"warning\", \"code\": 318, ",
          "{\"line\": 3, \"kind\": \"error\", \"code\": 305, \"message\": \"Quoted string not "
          "terminated: 'it \\\"x\\\"\", \"item\": \"'it \\\"x\\\"\", \"detail\": \"\"}",
          "\"item\": \"\", \"detail\": \"80\"}",
          "\"errors\": 1, \"warnings\": 1, \"remarks\": 0, \"unreadable\": 0}"}) {
        EXPECT_NE(out.str().find(part), std::string::npos) << part << "\n" << out.str();
    }
    EXPECT_EQ(problems.str(), "");
    EXPECT_EQ(CheckReport::json_string(std::string("a\tb\xE9\\")), "\"a\\u0009b\\u00e9\\\\\"");
}

TEST(DictionaryFiles, TheEnvironmentNamesDirectoriesAndFilesBeforeTheCommandLine) {
    const fs::path dir = fs::temp_directory_path() / ("tessary-dictionaries-" + std::to_string(::getpid()));
    fs::create_directories(dir / "more");
    const auto write = [&dir](const std::string& name) {
        std::ofstream(dir / name) << "";
        return (dir / name).string();
    };
    const std::string b = write("b.dic"), a = write("A.DIC"), single = write("more/single.dic");
    write("notes.txt");
    const std::string list = dir.string() + "::" + single + ":";
    EXPECT_EQ(DictionaryFiles::resolve(list.c_str(), {"named.dic"}), (Strings{a, b, single, "named.dic"}));
    EXPECT_EQ(DictionaryFiles::resolve(nullptr, {"named.dic"}), Strings{"named.dic"});
    fs::remove_all(dir);
}

}  // namespace
