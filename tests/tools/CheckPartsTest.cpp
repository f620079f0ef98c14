// SPDX-License-Identifier: MIT
// The parts of tessary-check: command line, JSON report, dictionaries found, mandatory items.
// The program as a whole is run in TessaryCheckTest.cpp.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/cif/DictionaryTestSupport.hpp"
#include "tools/CheckOptions.hpp"
#include "tools/CheckReport.hpp"
#include "tools/DictionaryFiles.hpp"
#include "tools/SharedDictionary.hpp"

namespace {

namespace fs = std::filesystem;
using Strings = std::vector<std::string>;
using Views = std::vector<std::string_view>;

TEST(CheckOptions, ReadsOptionsInBothFormsAndKeepsFilesInOrder) {
    CheckOptions options =
        CheckOptions::parse({"a.cif", "--json", "--line-length", "100", "-j4", "-d", "core.dic",
                             "-dlocal.dic", "--dictionary=third.dic", "b.cif", "-"});
    EXPECT_EQ(options.problem, "");
    EXPECT_TRUE(options.json);
    EXPECT_EQ(options.line_length, 100);
    EXPECT_EQ(options.jobs, 4);
    EXPECT_EQ(options.files, (Views{"a.cif", "b.cif", "-"}));
    EXPECT_EQ(options.dictionaries, (Strings{"core.dic", "local.dic", "third.dic"}));
    EXPECT_TRUE(options.consistency);
    EXPECT_EQ(options.mandatory_file, "");

    options = CheckOptions::parse(
        {"--line-length=0", "--jobs", "2", "--mandatory", "items.txt", "--no-consistency", "--", "-odd.cif"});
    EXPECT_EQ(options.problem, "");
    EXPECT_EQ(options.line_length, 0);
    EXPECT_EQ(options.jobs, 2);
    EXPECT_EQ(options.files, Views{"-odd.cif"});
    EXPECT_EQ(options.mandatory_file, "items.txt");
    EXPECT_FALSE(options.consistency);
    EXPECT_TRUE(options.dictionaries.empty());
    EXPECT_EQ(CheckOptions::parse({"--help"}).problem, "");
    EXPECT_TRUE(CheckOptions::parse({"--help"}).help);
}

TEST(CheckOptions, UnusableCommandLinesNameTheProblem) {
    EXPECT_EQ(CheckOptions::parse({}).problem, "no file named");
    EXPECT_EQ(CheckOptions::parse({"--frobnicate", "a.cif"}).problem, "unknown option --frobnicate");
    for (const Views& arguments : {Views{"-j", "0", "a.cif"}, Views{"--line-length", "eighty", "a.cif"},
                                   Views{"a.cif", "--line-length"}, Views{"a.cif", "-d"},
                                   Views{"--dictionary=", "a.cif"}, Views{"a.cif", "--mandatory"}}) {
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

TEST(CheckReport, TextForTheTerminalEscapesEveryControlCharacterAndKeepsTheRest) {
    const struct {
        std::string raw;
        std::string shown;
    } cases[] = {
        {"_name\x1b[2J\x07", "_name\\u001b[2J\\u0007"},  // an escape sequence and a bell
        {"a\tb\rc\x7f", "a\\u0009b\\u000dc\\u007f"},
        {"_ok_\xc3\xa9\xe2\x80\x9c\xf0\x9f\x92\x8e", "_ok_\xc3\xa9\xe2\x80\x9c\xf0\x9f\x92\x8e"},  // é “ 💎
        {"_csi\xc2\x9b"
         "31m",
         "_csi\\u009b31m"},  // C1 written as UTF-8
        {"_csi\x9b"
         "31m_\xe9",
         "_csi\\u009b31m_\xe9"},                                    // C1 and é as Latin-1 bytes
        {"\xc0\x9b\xe0\x80\x9b", "\xc0\\u009b\xe0\\u0080\\u009b"},  // overlong forms are no UTF-8
        {"\xe2\x80", "\xe2\\u0080"},                                // a character cut short
        {"", ""},
    };
    for (const auto& c : cases) EXPECT_EQ(CheckReport::terminal_text(c.raw), c.shown) << c.raw;

    FileCheckResult result;
    result.file = "odd\x1b]0;title\x07.cif";
    result.messages.emplace_back(CifError::line_too_long, 2, "", "80");
    result.warnings = 1;
    std::ostringstream out, problems;
    CheckReport report(out, problems, false);
    report.add(result);
    EXPECT_EQ(out.str().find('\x1b'), std::string::npos) << out.str();
    for (const char* line : {"odd\\u001b]0;title\\u0007.cif:2: warning [318]: ",
                             "odd\\u001b]0;title\\u0007.cif: 0 errors, 1 warning, 0 remarks\n"})
        EXPECT_NE(out.str().find(line), std::string::npos) << line << "\n" << out.str();
    // A control byte or DEL anywhere in a message's data
    // name is escaped, whichever eight-byte word it falls in; a plain name
    // is kept as it is.
    for (const char odd : {'\x1b', '\x7f', '\x1f', '\x01'}) {
        for (std::size_t at = 0; at < 20; ++at) {
            std::string name(20, 'a');
            name[at] = odd;
            FileCheckResult one;
            one.file = "f.cif";
            one.messages.emplace_back(CifError::undefined_data_name, 3, "_" + name, "");
            std::ostringstream lines, none;
            CheckReport(lines, none, false).add(one);
            EXPECT_EQ(lines.str().find(odd), std::string::npos) << at << " " << lines.str();
        }
    }
    FileCheckResult clean;
    clean.file = "f.cif";
    clean.messages.emplace_back(CifError::undefined_data_name, 3, "_plain ~name}", "");
    std::ostringstream clean_lines, clean_problems;
    CheckReport(clean_lines, clean_problems, false).add(clean);
    EXPECT_NE(clean_lines.str().find("_plain ~name}"), std::string::npos) << clean_lines.str();

    result.io_problem = "gone\x1b";
    report.add(result);
    EXPECT_EQ(problems.str(), "odd\\u001b]0;title\\u0007.cif: cannot read: gone\\u001b\n");
}

// Each line of the text report is the file, line, kind, code and message as
// CifError gives them, with whatever the file put into the text or the
// detail escaped; so many lines that the report's room grows on the way.
TEST(CheckReport, TextLinesAreTheMessagesWithTheirTextAndDetailEscaped) {
    struct Case {
        CifError error;
        const char* shown;  // the message as printed
    };
    const std::string long_name = "_" + std::string(40, 'n');
    const std::vector<Case> cases{
        {CifError(CifError::duplicate_data_name, 9, "_cell_length_a", "4"),
         "Duplicate data name _cell_length_a, first at line: 4"},
        {CifError(CifError::parent_value_missing, 12, "_atom_site_label", "C1\x1b[2J"), nullptr},
        {CifError(CifError::parent_value_missing, 12, "_a", std::string("x\x1by")),
         "Value x\\u001by of _a has no matching row in its parent item"},
        {CifError(CifError::undefined_data_name, 3, long_name, "; did you mean " + long_name + "\x7f?"),
         nullptr},
        {CifError(CifError::byte_order_mark, 1), "Byte-order mark ignored"},
        {CifError(static_cast<CifError::ErrorID>(999), 7, "odd\x01"), "Message 999: odd\\u0001"},
        {CifError(CifError::line_too_long, CifError::error, 123456, "", "80"),
         "Line is longer than 80 characters"},
    };
    FileCheckResult result;
    result.file = "many.cif";
    std::string expected;
    for (int round = 0; round < 60; ++round) {
        for (const Case& c : cases) {
            result.messages.push_back(c.error);
            const std::string shown =
                c.shown != nullptr ? c.shown : CheckReport::terminal_text(c.error.message());
            expected += "many.cif:" + std::to_string(c.error.line()) + ": " +
                        CheckReport::kind_name(c.error.type()) + " [" + std::to_string(c.error.id()) +
                        "]: " + shown + "\n";
        }
    }
    result.errors = 2;
    result.remarks = 1;
    expected += "many.cif: 2 errors, 0 warnings, 1 remark\n";
    std::ostringstream out, problems;
    CheckReport report(out, problems, false);
    report.add(result);
    EXPECT_EQ(out.str(), expected);
    EXPECT_EQ(out.str().find('\x1b'), std::string::npos);
    EXPECT_EQ(out.str().find('\x7f'), std::string::npos);
    // The room kept from the last file serves the next.
    result.messages.erase(result.messages.begin() + 1, result.messages.end());
    std::ostringstream again, none;
    CheckReport second(again, none, false);
    second.add(result);
    second.add(result);
    const std::string one =
        "many.cif:9: error [312]: Duplicate data name _cell_length_a, first at line: 4\n"
        "many.cif: 2 errors, 0 warnings, 1 remark\n";
    EXPECT_EQ(again.str(), one + one);
}

// A view of a pool of one dictionary answers from that dictionary straight;
// its answers are the pool's, as are those of a view of a pool of two.
TEST(SharedDictionary, AViewAnswersAsWhatItViews) {
    THandle<CifConcreteDictionary> first = cif_test::test_dictionary();
    THandle<CifDictionaryPool> one(new CifDictionaryPool()), two(new CifDictionaryPool());
    one->insert(first);
    two->insert(first);
    two->insert(cif_test::test_dictionary());
    const std::vector<const CifDictionary*> targets{one.get(), two.get(), first.get()};
    for (const CifDictionary* target : targets) {
        const SharedDictionary view(*target);
        for (const std::string name :
             {"_cell_length_a", "_CELL_Length_A", "_atom_site_label", "_cell_length_q", "_atom_site_lable",
              "_cell_[]", "_nothing_like_it", "", "_"}) {
            EXPECT_EQ(view.definition(name), target->definition(name)) << name;
            EXPECT_EQ(view.definition_hashed(name, cif_name_hash(name)), target->definition(name)) << name;
            EXPECT_EQ(view.is_defined(name), target->is_defined(name)) << name;
            for (const int edits : {1, 2}) {
                std::vector<CifDictionary::SimilarName> seen = view.similar_names(name, edits),
                                                        wanted = target->similar_names(name, edits);
                ASSERT_EQ(seen.size(), wanted.size()) << name;
                for (std::size_t i = 0; i < seen.size(); ++i) {
                    EXPECT_EQ(seen[i].name, wanted[i].name) << name;
                    EXPECT_EQ(seen[i].edits, wanted[i].edits) << name;
                }
            }
        }
    }
    for (const CifDictionary* target : targets) {
        const SharedDictionary view(*target);
        EXPECT_EQ(view.has_definitions(), target->has_definitions());
        for (const std::string category : {"cell", "_atom_site_[]", "ATOM_SITE", "_nothing_[]"}) {
            EXPECT_EQ(view.category_items(category), target->category_items(category)) << category;
            EXPECT_EQ(view.mandatory_items(category), target->mandatory_items(category)) << category;
            EXPECT_EQ(view.category_facts(category), target->category_facts(category)) << category;
        }
    }
    EXPECT_FALSE(SharedDictionary(*one).category_items("atom_site").empty());
    EXPECT_NE(SharedDictionary(*one).definition("_CELL_Length_A"), nullptr);
    EXPECT_FALSE(SharedDictionary(*one).similar_names("_cell_length_q", 1).empty());
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
