// SPDX-License-Identifier: MIT
// Edits that replace or add items, loops and blocks in a document's text,
// leaving every byte outside the edited span as it was.
#include <gtest/gtest.h>

#include <functional>

#include "cif/CifTextEdits.hpp"

namespace {

using Edit = std::function<std::optional<CifTextEdit>(const CifTextLocator&)>;

struct Case {
    const char* what;
    std::string text;
    Edit edit;
    std::optional<std::string> expected;  // nothing: the edit finds nothing to change
};

std::string crlf(std::string text) {
    std::string result;
    for (char c : text) result += c == '\n' ? std::string("\r\n") : std::string(1, c);
    return result;
}

const std::string twoBlocks =
    "# a comment naming _cell_length_a\n"
    "data_first\n"
    "_cell_length_a 5.1\n"
    "_title\n"
    ";\n"
    "_cell_length_a in a text field\n"
    ";\n"
    "loop_\n"
    "_atom_site_label\n"
    "_atom_site_fract_x\n"
    "C1 0.1 C2 'two words'\n"
    "\n"
    "# leads into the next block\n"
    "data_second\n"
    "_CELL_LENGTH_A 7.2 _cell_length_b 8\n"
    "save_frame\n"
    "_in_frame 1\n"
    "save_\n";

TEST(CifTextEdits, ReplaceOrAddOnlyWhatWasAskedFor) {
    const std::vector<Case> cases = {
        {"an item of the second block, on a line it shares", twoBlocks,
         [](const CifTextLocator& t) {
             return cif_item_edit(t, "second", "_cell_length_a", "_cell_length_a 7.25\n");
         },
         std::string(twoBlocks).replace(twoBlocks.find("_CELL_LENGTH_A 7.2"), 18, "_cell_length_a 7.25")},
        {"a value in a text field, quoted as the printer wrote it", twoBlocks,
         [](const CifTextLocator& t) { return cif_item_edit(t, "FIRST", "_title", "_title 'new title'"); },
         std::string(twoBlocks).replace(twoBlocks.find("_title\n;"), 41, "_title 'new title'")},
        {"an absent item after the block's last token, before the comment leading on", twoBlocks,
         [](const CifTextLocator& t) {
             return cif_item_edit(t, "data_first", "_cell_volume", "_cell_volume 100");
         },
         std::string(twoBlocks).insert(twoBlocks.find("'two words'") + 11, "\n_cell_volume 100")},
        {"an item of a save frame is not the block's", twoBlocks,
         [](const CifTextLocator& t) { return cif_item_edit(t, "second", "_in_frame", "_in_frame 2"); },
         std::string(twoBlocks).insert(twoBlocks.size() - 1, "\n_in_frame 2")},
        {"a looped item is left to its loop", twoBlocks,
         [](const CifTextLocator& t) {
             return cif_item_edit(t, "first", "_atom_site_label", "_atom_site_label X");
         },
         std::nullopt},
        {"a missing block", twoBlocks,
         [](const CifTextLocator& t) { return cif_item_edit(t, "third", "_a", "_a 1"); }, std::nullopt},
        {"a loop found by any of its columns", twoBlocks,
         [](const CifTextLocator& t) {
             return cif_loop_edit(t, "first", "_atom_site_fract_x", "loop_\n_atom_site_label\nC9\n");
         },
         std::string(twoBlocks).replace(twoBlocks.find("loop_"), 63, "loop_\n_atom_site_label\nC9")},
        {"a new loop at the end of a block", twoBlocks,
         [](const CifTextLocator& t) { return cif_new_loop_edit(t, "second", "loop_\n_a\n1\n2\n"); },
         twoBlocks.substr(0, twoBlocks.size() - 1) + "\nloop_\n_a\n1\n2\n"},
        {"a whole block, its leading comment kept", twoBlocks,
         [](const CifTextLocator& t) { return cif_block_edit(t, "first", "data_first\n_a 1\n"); },
         "# a comment naming _cell_length_a\ndata_first\n_a 1" +
             twoBlocks.substr(twoBlocks.find("\n\n# leads"))},
        {"a new block before another", twoBlocks,
         [](const CifTextLocator& t) { return cif_new_block_edit(t, "data_new\n_a 1\n", "second"); },
         std::string(twoBlocks).insert(twoBlocks.find("data_second"), "data_new\n_a 1\n\n")},
        {"a new block at the end of a text without a final line end", "data_a\n_x 1",
         [](const CifTextLocator& t) { return cif_new_block_edit(t, "data_b\n_y 2\n", "none"); },
         std::string("data_a\n_x 1\n\ndata_b\n_y 2")},
        {"a new block in an empty text", "",
         [](const CifTextLocator& t) { return cif_new_block_edit(t, "data_b\n_y 2\n", ""); },
         std::string("data_b\n_y 2\n")},
        {"CR LF lines stay CR LF, new ones too", crlf(twoBlocks),
         [](const CifTextLocator& t) { return cif_new_loop_edit(t, "first", "loop_\n_b\n1\n"); },
         std::string(crlf(twoBlocks))
             .insert(crlf(twoBlocks).find("'two words'") + 11, "\r\nloop_\r\n_b\r\n1")},
        {"CR LF offsets, the value on the next line", crlf("data_x\n_a\n 'one'\n_b 2\n"),
         [](const CifTextLocator& t) { return cif_item_edit(t, "x", "_a", "_a two"); },
         crlf("data_x\n_a two\n_b 2\n")},
        {"lone CR lines", "data_x\r_a 1\r_b 2\r",
         [](const CifTextLocator& t) { return cif_item_edit(t, "x", "_b", "_b\n;\nline\n;"); },
         std::string("data_x\r_a 1\r_b\r;\rline\r;\r")},
        {"a CIF 2.0 list after a byte-order mark", "\xEF\xBB\xBF#\\#CIF_2.0\ndata_x\n_a [1 [2 3]] _b 'x'\n",
         [](const CifTextLocator& t) { return cif_item_edit(t, "x", "_a", "_a [4]"); },
         std::string("\xEF\xBB\xBF#\\#CIF_2.0\ndata_x\n_a [4] _b 'x'\n")},
    };
    for (const Case& test : cases) {
        const CifTextLocator text(test.text);
        const std::optional<CifTextEdit> edit = test.edit(text);
        ASSERT_EQ(edit.has_value(), test.expected.has_value()) << test.what;
        if (edit) {
            EXPECT_EQ(cif_apply_edit(test.text, *edit), *test.expected) << test.what;
        }
    }
}

TEST(CifTextLocator, FindsNamesCategoriesAndBlocksByOffset) {
    const CifTextLocator text(twoBlocks);
    const std::size_t second = twoBlocks.find("data_second");
    EXPECT_EQ(text.block_at(0), "");
    EXPECT_EQ(text.block_at(second - 1), "first");
    EXPECT_EQ(text.block_at(second), "second");
    // The name itself before a category member; a category by its first item.
    const auto name = text.name("first", "_atom_site_fract_x");
    ASSERT_TRUE(name);
    EXPECT_EQ(twoBlocks.substr(name->begin, name->end - name->begin), "_atom_site_fract_x");
    const auto category = text.name("first", "_atom_site");
    ASSERT_TRUE(category);
    EXPECT_EQ(category->begin, twoBlocks.find("_atom_site_label"));
    const auto later = text.name("second", "_cell_length_a");
    ASSERT_TRUE(later);
    EXPECT_EQ(later->begin, twoBlocks.find("_CELL_LENGTH_A"));
    EXPECT_FALSE(text.name("second", "_cell_length_a", later->begin + 1));
    EXPECT_FALSE(text.name("second", "_in_frame"));
    EXPECT_EQ(CifTextLocator(crlf(twoBlocks)).line_end(), "\r\n");
    EXPECT_EQ(CifTextLocator("a\rb\r\nc\r").line_end(), "\r");
}

}  // namespace
