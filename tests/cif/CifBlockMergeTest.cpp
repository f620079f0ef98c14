// SPDX-License-Identifier: MIT
// Merging a template's items and loops into a block: what is offered, and exactly what changes.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>

#include "CifTestSupport.hpp"
#include "cif/CifBlockMerge.hpp"
#include "cif/CifTemplateFile.hpp"

namespace {

// Values start one blank after the name, so expected texts stay readable.
CifWriteSettings plain() {
    CifWriteSettings settings;
    settings.value_column = 0;
    return settings;
}

THandle<CifDataBlock> incoming(const std::string& text) {
    CifTemplateFile file = CifTemplateFile::from_text(text, "template.cif");
    EXPECT_TRUE(file.ok()) << file.problem();
    return file.block(file.block_names().at(0));
}

std::string crlf(const std::string& text) {
    std::string result;
    for (char c : text) result += c == '\n' ? std::string("\r\n") : std::string(1, c);
    return result;
}

const std::string block =
    "data_mine\n"
    "_diffrn_radiation_type   ?   # to be filled\n"
    "_cell_length_a     5.1(2)\n"
    "_exptl_crystal_colour  colourless\n"
    "loop_\n"
    "_atom_type_symbol _atom_type_number\n"
    "C 4 H 8\n"
    "loop_\n"
    "_publ_author_name _publ_author_address _publ_author_email\n"
    "'Doe, J.' ? ?\n"
    "_computing_structure_refinement 'our own'";

const std::string lab =
    "data_lab\n"
    "_diffrn_radiation_type 'Mo K\\a'\n"
    "_cell_length_a 5.1(2)\n"
    "_exptl_crystal_colour ?\n"
    "_diffrn_ambient_temperature 100\n"
    "_computing_structure_refinement 'SHELXL'\n"
    "loop_\n_atom_type_symbol _atom_type_number\nC 4 H 8\n"
    "loop_\n_diffrn_standard_refln_index_h _diffrn_standard_refln_index_k\n1 0 0 1\n"
    "loop_\n_publ_author_name _publ_author_address\n'Roe, R.' Lab 'Poe, P.' Lab\n"
    "_publ_author_email ?\n";

TEST(CifBlockMerge, OffersWhatWouldBeAddedOrChangedAndProposesOnlyAdditionsAndFillingUnknowns) {
    const CifBlockMerge merge(block, incoming(lab), 1, plain());
    ASSERT_TRUE(merge.ok());
    EXPECT_EQ(merge.block_name(), "mine");
    struct Expected {
        std::string first;
        bool loop;
        CifMergeRow::Kind kind;
        bool proposed;
    };
    const std::vector<Expected> expected = {
        {"_diffrn_radiation_type", false, CifMergeRow::changed, true},  // fills the block's ?
        {"_cell_length_a", false, CifMergeRow::same, false},
        {"_exptl_crystal_colour", false, CifMergeRow::changed, false},  // ? never replaces a value
        {"_diffrn_ambient_temperature", false, CifMergeRow::added, true},
        {"_computing_structure_refinement", false, CifMergeRow::changed, false},
        {"_atom_type_symbol", true, CifMergeRow::same, false},
        {"_diffrn_standard_refln_index_h", true, CifMergeRow::added, true},
        {"_publ_author_name", true, CifMergeRow::changed, false},
        {"_publ_author_email", false, CifMergeRow::changed, false},  // looped in the block
    };
    ASSERT_EQ(merge.rows().size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const CifMergeRow& row = merge.rows()[i];
        EXPECT_EQ(row.names.front(), expected[i].first) << i;
        EXPECT_EQ(row.loop, expected[i].loop) << row.names.front();
        EXPECT_EQ(row.kind, expected[i].kind) << row.names.front();
        EXPECT_EQ(row.proposed, expected[i].proposed) << row.names.front();
    }
    EXPECT_EQ(merge.rows()[0].current, "?");
    EXPECT_EQ(merge.rows()[0].incoming, "Mo K\\a");
    EXPECT_EQ(merge.rows()[7].current_rows, 1u);
    EXPECT_EQ(merge.rows()[7].incoming_rows, 2u);
    EXPECT_TRUE(merge.rows()[8].current_looped);
}

TEST(CifBlockMerge, ALoopDiffersByItsNamesItsRowsOrItsValues) {
    const std::string mine = "data_a\nloop_\n_x_a _x_b\n1 2 3 4\n";
    const struct {
        const char* what;
        std::string loop;
        CifMergeRow::Kind kind;
    } cases[] = {
        {"the same rows", "loop_\n_X_A _x_b\n1 2 3 4\n", CifMergeRow::same},
        {"a value differs", "loop_\n_x_a _x_b\n1 2 3 5\n", CifMergeRow::changed},
        {"a row more", "loop_\n_x_a _x_b\n1 2 3 4 5 6\n", CifMergeRow::changed},
        {"a column fewer", "loop_\n_x_a\n1 3\n", CifMergeRow::changed},
        {"a column more", "loop_\n_x_a _x_b _x_c\n1 2 0 3 4 0\n", CifMergeRow::changed},
        {"a quoted '?' is not the unknown ?", "loop_\n_x_a _x_b\n1 2 3 '4'\n", CifMergeRow::same},
    };
    for (const auto& c : cases) {
        const CifMergeRow row = CifBlockMerge(mine, incoming("data_t\n" + c.loop), 1).rows().at(0);
        EXPECT_EQ(row.kind, c.kind) << c.what;
    }
    const CifBlockMerge unknown("data_a\n_x_a ?\n", incoming("data_t\n_x_a '?'\n"));
    EXPECT_EQ(unknown.rows().at(0).kind, CifMergeRow::changed) << "the text ? is a value, not the unknown";
}

TEST(CifBlockMerge, ChangesExactlyTheChosenRowsAndKeepsEveryOtherByte) {
    const CifBlockMerge merge(block, incoming(lab), 1, plain());
    const auto replaced = [](std::string text, const std::string& from, const std::string& to) {
        const std::size_t at = text.find(from);
        EXPECT_NE(at, std::string::npos) << from;
        return text.replace(at, from.size(), to);
    };
    const struct {
        const char* what;
        std::vector<std::size_t> chosen;
        std::string expected;
    } cases[] = {
        {"nothing chosen", {}, block},
        {"a row that is the same", {1, 5}, block},
        {"a value filled in place, its blanks and comment kept",
         {0},
         replaced(block, "_diffrn_radiation_type   ?", "_diffrn_radiation_type   'Mo K\\a'")},
        {"a value replaced at the block's last token",
         {4},
         replaced(block, "_computing_structure_refinement 'our own'",
                  "_computing_structure_refinement 'SHELXL'")},
        {"items and a loop added after the block's last token, in the template's order",
         {6, 3},
         block + "\n_diffrn_ambient_temperature 100\nloop_\n_diffrn_standard_refln_index_h\n"
                 "_diffrn_standard_refln_index_k\n1 0\n0 1"},
        {"a loop replaced where it stood, losing the column the template has apart",
         {7},
         replaced(block, "loop_\n_publ_author_name _publ_author_address _publ_author_email\n'Doe, J.' ? ?",
                  "loop_\n_publ_author_email\n?\nloop_\n_publ_author_name\n_publ_author_address\n"
                  "'Roe, R.' Lab\n'Poe, P.' Lab")},
        {"a looped item taken out of its loop as a single value",
         {8},
         replaced(block, "loop_\n_publ_author_name _publ_author_address _publ_author_email\n'Doe, J.' ? ?",
                  "loop_\n_publ_author_name\n_publ_author_address\n'Doe, J.' ?\n_publ_author_email ?")},
    };
    for (const auto& c : cases) EXPECT_EQ(merge.merged(c.chosen), c.expected) << c.what;
}

// Values written afresh start in the column the block's values start in,
// unless they no longer fit the line or need lines of their own.
TEST(CifBlockMerge, ValuesWrittenAfreshLineUpWithTheBlocksOwn) {
    const std::string mine =
        "data_a\n"
        "_short                                  ?\n"
        "_x_text\n;\nold\n;\n"
        "_last                                   ?";
    const std::string wide(45, 'w');
    const CifBlockMerge merge(
        mine, incoming("data_t\n_short " + wide + "\n_x_text one\n_last\n;two\nlines\n;\n_new 5\n"), 1,
        plain());
    const std::string to_column_41(33, ' ');
    EXPECT_EQ(merge.merged({0, 1, 2, 3}), "data_a\n_short " + wide + "\n_x_text" + to_column_41 +
                                              "one\n_last\n;two\nlines\n;\n_new   " + to_column_41 + "5");
    // Without a layout of its own (no two values in one column) a block gets the printer's.
    const CifBlockMerge unaligned("data_a\n_a 1\n_bb  2\n_ccc   3", incoming("data_t\n_new 5\n"), 1, plain());
    EXPECT_EQ(unaligned.merged({0}), "data_a\n_a 1\n_bb  2\n_ccc   3\n_new 5");
}

TEST(CifBlockMerge, ALoopTakesInTheBlocksSingleItemsOfItsNames) {
    const std::string mine = "data_a\n_x_a 1\n_y 2\n_x_b 3\n_z 4\n";
    const CifBlockMerge merge(mine, incoming("data_t\nloop_\n_x_a _x_b\n5 6 7 8\n"), 1, plain());
    ASSERT_EQ(merge.rows().size(), 1u);
    EXPECT_EQ(merge.merged({0}), "data_a\nloop_\n_x_a\n_x_b\n5 6\n7 8\n_y 2\n_z 4");
}

TEST(CifBlockMerge, KeepsTheDocumentsLineEndsAndItsCifVersion) {
    // What follows the block's last token leads into the next block and is not the block's.
    const std::string mine = crlf("data_a\n_list [1 2 3]\n_b ?\n\n# next\ndata_b\n");
    const CifBlockMerge merge(mine, incoming("data_t\n_b 'two words'\n_c 1\n"), 2, plain());
    ASSERT_TRUE(merge.ok());
    EXPECT_EQ(merge.merged({0, 1}), crlf("data_a\n_list [1 2 3]\n_b 'two words'\n_c 1"));
    const CifBlockMerge untouched(mine, incoming("data_t\n_b 1\n"), 2, plain());
    EXPECT_EQ(untouched.merged({}), crlf("data_a\n_list [1 2 3]\n_b ?"));
    const CifBlockMerge two_lines(crlf("data_a\n_b ?"), incoming("data_t\n_c 1\n"), 2, plain());
    EXPECT_EQ(two_lines.merged({0}), crlf("data_a\n_b ?\n_c 1"));
}

TEST(CifBlockMerge, SaysSoWhenThereIsNoBlockToMergeInto) {
    for (const std::string text : {"", "# only a comment\n", "_x 1\n"}) {
        const CifBlockMerge merge(text, incoming("data_t\n_x 1\n"));
        EXPECT_FALSE(merge.ok()) << text;
        EXPECT_NE(merge.problem().find("no data block"), std::string::npos) << merge.problem();
        EXPECT_EQ(merge.merged({0}), text);
    }
}

TEST(CifTemplateFile, AFileThatCannotServeSaysWhy) {
    const std::filesystem::path dir = std::filesystem::temp_directory_path() /
                                      ("cif_template_file_test_" + std::to_string(std::random_device()()));
    std::filesystem::create_directories(dir);
    const auto write = [&](const std::string& name, const std::string& bytes) {
        std::ofstream(dir / name, std::ios::binary) << bytes;
        return (dir / name).string();
    };
    const struct {
        std::string path;
        std::string says;
    } cases[] = {
        {"", "No file chosen"},
        {(dir / "absent.cif").string(), "does not exist"},
        {dir.string(), "is a folder"},
        {write("image.cif", std::string("data_x\n_a \0\1\2", 13)), "not a text file"},
        {write("notes.txt", "Just some notes about a crystal.\n"), "holds no data block"},
        {write("broken.cif", "data_x\n_a 'unterminated\n_b 2\n"), "is not a well-formed CIF (line 2"},
    };
    for (const auto& c : cases) {
        const CifTemplateFile file = CifTemplateFile::read(c.path);
        EXPECT_FALSE(file.ok()) << c.path;
        EXPECT_NE(file.problem().find(c.says), std::string::npos) << file.problem();
        EXPECT_TRUE(file.block_names().empty());
    }
    const CifTemplateFile latin1 =
        CifTemplateFile::read(write("lab.cif", "data_one\n_a 'M\xfcller'\ndata_two\n"));
    ASSERT_TRUE(latin1.ok()) << latin1.problem();
    EXPECT_EQ(latin1.block_names(), (std::vector<std::string>{"one", "two"}));
    EXPECT_EQ(latin1.block("ONE")->value("_a"), "M\xc3\xbcller") << "Latin-1 is read as UTF-8";
    EXPECT_TRUE(latin1.block("three").is_null());
    std::filesystem::remove_all(dir);
}

}  // namespace
