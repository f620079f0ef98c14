// SPDX-License-Identifier: MIT
// The document model: blocks, items, loops, copies, merges and the order items print in.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "tests/cif/CifTestSupport.hpp"

using cif_test::read;

namespace {

std::vector<std::string> write_order(const CifDataBlock& block) {
    std::vector<std::string> names;
    for (auto it = block.begin_write_order(); it != block.end_write_order(); ++it)
        names.push_back((*it)->name());
    return names;
}

std::vector<std::string> column(const CifDataBlock& block, const std::string& tag) {
    std::vector<std::string> values;
    THandle<CifDataItem> item = block.find(tag);
    if (item.is_null()) return values;
    for (unsigned int n = 0; n < item->size(); ++n) values.push_back(item->value(n));
    return values;
}

using Names = std::vector<std::string>;

THandle<CifDataBlock> block_of(const std::string& text) { return read("data_t\n" + text)->block(0); }

TEST(CifDataBlock, FindObtainValueAndSetValue) {
    CifDataBlock block(THandle<CifDictionary>(), "data_work", -1);
    EXPECT_EQ(block.name(), "work");
    EXPECT_TRUE(block.find("_a").is_null());
    EXPECT_EQ(block.value("_a"), "");
    EXPECT_FALSE(block.has_value("_a"));
    THandle<CifDataItem> a = block.obtain("_a");
    EXPECT_FALSE(a->has_value());
    EXPECT_TRUE(block.obtain("_A") == a);
    EXPECT_TRUE(block.find("_a") == a);
    block.set_value("_a", "1");
    block.set_value("_b", "two words");
    EXPECT_EQ(block.value("_A"), "1");
    EXPECT_TRUE(block.has_value("_b"));
    std::vector<THandle<CifDataItem>> items;
    block.obtain(Names{"_b", "_c", "_a"}, items);
    ASSERT_EQ(items.size(), 3u);
    EXPECT_EQ(items[0]->name(), "_b");
    EXPECT_EQ(items[1]->name(), "_c");
    EXPECT_TRUE(items[2] == a);
    EXPECT_EQ(write_order(block), (Names{"_a", "_b", "_c"}));
}

TEST(CifDataBlock, SettingALoopedItemTakesItOutOfItsLoop) {
    THandle<CifDataBlock> block = block_of("loop_\n_x\n_y\n1 2\n3 4\n");
    block->set_value("_x", "single");
    EXPECT_FALSE(block->find("_x")->is_looped());
    EXPECT_EQ(column(*block, "_x"), Names{"single"});
    std::vector<std::string> columns;
    block->loop_columns("_y", columns);
    EXPECT_EQ(columns, Names{"_y"});
    EXPECT_EQ(column(*block, "_y"), (Names{"2", "4"}));
}

TEST(CifDataBlock, RemoveDropsItemsFromIndexOrderAndLoops) {
    THandle<CifDataBlock> block = block_of("_a 1\nloop_\n_x\n_y\n1 2\n_b 3\n");
    block->remove("_X");
    block->remove(Names{"_a", "_missing"});
    EXPECT_TRUE(block->find("_x").is_null());
    EXPECT_TRUE(block->find("_a").is_null());
    EXPECT_EQ(write_order(*block), (Names{"_y", "_b"}));
    std::vector<std::string> columns;
    block->loop_columns("_y", columns);
    EXPECT_EQ(columns, Names{"_y"});
    block->remove("_y");
    EXPECT_TRUE(block->loops().empty());
}

TEST(CifDataBlock, CategoriesArePrefixesEndingAtANamePart) {
    THandle<CifDataBlock> block = block_of("_cell_length_a 1\n_atom_site.label C\n_chemical 2\n");
    EXPECT_TRUE(block->has_item_with_category("cell"));
    EXPECT_TRUE(block->has_item_with_category("_CELL"));
    EXPECT_TRUE(block->has_item_with_category("atom_site"));
    EXPECT_TRUE(block->has_item_with_category("chemical"));
    EXPECT_FALSE(block->has_item_with_category("cel"));
    EXPECT_TRUE(block->has_item_with_category("atom"));  // a tag prefix, as in DDL1
    EXPECT_FALSE(block->has_item_with_category("symmetry"));
}

TEST(CifDataBlock, CreateLoopGathersItemsAndEvensColumns) {
    THandle<CifDataBlock> block = block_of("_first 0\n_a 1\nloop_\n_x\n_y\n5 6\n7 8\n_last 9\n");
    block->create_loop(Names{"_y", "_a", "_new"});
    std::vector<std::string> columns;
    block->loop_columns("_a", columns);
    EXPECT_EQ(columns, (Names{"_y", "_a", "_new"}));
    EXPECT_EQ(column(*block, "_a"), (Names{"1", "?"}));
    EXPECT_EQ(column(*block, "_new"), (Names{"?", "?"}));
    EXPECT_TRUE(block->find("_new")->is_looped());
    block->loop_columns("_x", columns);
    EXPECT_EQ(columns, Names{"_x"});
    // The new loop stands where its first member stood.
    EXPECT_EQ(write_order(*block), (Names{"_first", "_y", "_a", "_new", "_x", "_last"}));
}

TEST(CifDataBlock, CopyLoopIntoAnEmptyBlockCopiesValuesAndOrder) {
    THandle<CifDataBlock> source = block_of("loop_\n_x\n_y\n'a b' 2\n? 4\n");
    CifDataBlock work(THandle<CifDictionary>(), "data_", -1);
    std::vector<std::string> names;
    source->loop_columns("_y", names);
    work.copy_loop(names, *source, CifDataBlock::keep_existing);
    EXPECT_EQ(write_order(work), (Names{"_x", "_y"}));
    EXPECT_EQ(column(work, "_x"), (Names{"a b", "?"}));
    EXPECT_TRUE(work.find("_x")->is_looped());
    // The copy is independent of the source.
    work.find("_x")->set_value(0, "changed");
    EXPECT_EQ(source->value("_x"), "a b");
}

TEST(CifDataBlock, CopyLoopModesDecideAboutPresentItems) {
    THandle<CifDataBlock> source = block_of("loop_\n_x\n_y\n1 2\n3 4\n");
    const std::string mine = "loop_\n_x\n_z\n? z1\n9 z2\n";
    Names names{"_x", "_y"};

    THandle<CifDataBlock> keep = block_of(mine);
    keep->copy_loop(names, *source, CifDataBlock::keep_existing);
    EXPECT_EQ(column(*keep, "_x"), (Names{"?", "9"}));
    EXPECT_TRUE(keep->find("_y").is_null());

    THandle<CifDataBlock> overwrite = block_of(mine);
    overwrite->copy_loop(names, *source, CifDataBlock::overwrite_existing);
    EXPECT_EQ(column(*overwrite, "_x"), (Names{"1", "3"}));
    EXPECT_EQ(column(*overwrite, "_y"), (Names{"2", "4"}));
    std::vector<std::string> columns;
    overwrite->loop_columns("_z", columns);
    EXPECT_EQ(columns, Names{"_z"});

    THandle<CifDataBlock> fill = block_of(mine);
    fill->copy_loop(names, *source, CifDataBlock::fill_unknown);
    EXPECT_EQ(column(*fill, "_x"), (Names{"1", "9"}));
    EXPECT_EQ(column(*fill, "_y"), (Names{"2", "4"}));
    fill->loop_columns("_y", columns);
    EXPECT_EQ(columns, (Names{"_x", "_z", "_y"}));

    THandle<CifDataBlock> append = block_of(mine);
    append->copy_loop(names, *source, CifDataBlock::append_rows);
    append->loop_columns("_x", columns);
    EXPECT_EQ(columns, (Names{"_x", "_z", "_y"}));
    EXPECT_EQ(column(*append, "_x"), (Names{"?", "9", "1", "3"}));
    EXPECT_EQ(column(*append, "_z"), (Names{"z1", "z2", "?", "?"}));
    EXPECT_EQ(column(*append, "_y"), (Names{"?", "?", "2", "4"}));
}

TEST(CifDataBlock, MergeModesDecideAboutSingleValues) {
    THandle<CifDataBlock> other = block_of("_a new\n_b new\n_c new\nloop_\n_x\n1\n");
    const std::string mine = "_a old\n_b ?\n_d old\nloop_\n_x\n0\n";

    THandle<CifDataBlock> keep = block_of(mine);
    keep->merge(*other, CifDataBlock::keep_existing);
    EXPECT_EQ(keep->value("_a"), "old");
    EXPECT_EQ(keep->value("_b"), "?");
    EXPECT_EQ(keep->value("_c"), "new");
    EXPECT_EQ(column(*keep, "_x"), Names{"0"});
    EXPECT_EQ(write_order(*keep), (Names{"_a", "_b", "_d", "_x", "_c"}));

    THandle<CifDataBlock> overwrite = block_of(mine);
    overwrite->merge(*other, CifDataBlock::overwrite_existing);
    EXPECT_EQ(overwrite->value("_a"), "new");
    EXPECT_EQ(overwrite->value("_d"), "old");
    EXPECT_EQ(column(*overwrite, "_x"), Names{"1"});

    THandle<CifDataBlock> fill = block_of(mine);
    fill->merge(*other, CifDataBlock::fill_unknown);
    EXPECT_EQ(fill->value("_a"), "old");
    EXPECT_EQ(fill->value("_b"), "new");
    EXPECT_EQ(column(*fill, "_x"), Names{"0"});

    THandle<CifDataBlock> append = block_of(mine);
    append->merge(*other, CifDataBlock::append_rows);
    EXPECT_EQ(append->value("_a"), "old");
    EXPECT_EQ(column(*append, "_x"), (Names{"0", "1"}));
}

TEST(CifDataBlock, CopyMakesAnIndependentTwinWithTheName) {
    THandle<CifDataBlock> source = block_of("# lead\n_a 1\nloop_\n_x\n_y\n1 2\n");
    source->find("_a")->set_comments("# about a", CifCommentable::trailing_comment);
    CifDataBlock work(THandle<CifDictionary>(), "data_", -1);
    work.obtain("_stale");
    work.copy(*source);
    EXPECT_EQ(work.name(), "t");
    EXPECT_EQ(write_order(work), (Names{"_a", "_x", "_y"}));
    EXPECT_TRUE(work.find("_stale").is_null());
    EXPECT_EQ(work.find("_a")->comments(CifCommentable::trailing_comment), "# about a");
    std::vector<std::string> columns;
    work.loop_columns("_x", columns);
    EXPECT_EQ(columns, (Names{"_x", "_y"}));
    work.set_value("_a", "2");
    work.find("_y")->add_value("3");
    EXPECT_EQ(source->value("_a"), "1");
    EXPECT_EQ(source->find("_y")->size(), 1u);
}

TEST(CifDataBlock, WriteOrderModesPlaceTheNamedItemsTogether) {
    const std::string text = "_a 1\n_b 2\n_c 3\n_d 4\n_e 5\n";
    THandle<CifDataBlock> block = block_of(text);
    block->set_write_order(Names{"_d", "_b"}, CifDataBlock::order_at_front);
    EXPECT_EQ(write_order(*block), (Names{"_d", "_b", "_a", "_c", "_e"}));
    block = block_of(text);
    block->set_write_order(Names{"_d", "_b"}, CifDataBlock::order_at_end);
    EXPECT_EQ(write_order(*block), (Names{"_a", "_c", "_e", "_d", "_b"}));
    block = block_of(text);
    block->set_write_order(Names{"_d", "_b", "_missing"}, CifDataBlock::order_at_last);
    EXPECT_EQ(write_order(*block), (Names{"_a", "_c", "_d", "_b", "_e"}));
    block = block_of(text);
    block->set_write_order(Names{"_d", "_b"}, CifDataBlock::order_in_place);
    EXPECT_EQ(write_order(*block), (Names{"_a", "_d", "_b", "_c", "_e"}));
}

TEST(CifDataBlock, WriteOrderReordersLoopColumns) {
    THandle<CifDataBlock> block = block_of("loop_\n_x\n_y\n_z\n1 2 3\n");
    block->set_write_order(Names{"_z", "_x"}, CifDataBlock::order_in_place);
    std::vector<std::string> columns;
    block->loop_columns("_y", columns);
    EXPECT_EQ(columns, (Names{"_z", "_y", "_x"}));
    std::ostringstream text;
    block->print(text, CifWriteSettings());
    EXPECT_NE(text.str().find("_z\n_y\n_x\n3 2 1\n"), std::string::npos) << text.str();
}

TEST(CifDataBlock, EmptyBlocksAnswerAndTakeItemsLoopsAndFrames) {
    // Blocks read empty, made empty and emptied again: every question gets
    // an answer, and whatever is added afterwards is found.
    THandle<Cif> cif = cif_test::read("data_a\ndata_b\n_x 1\ndata_c\n");
    ASSERT_EQ(cif->block_count(), 3u);
    THandle<CifDataBlock> emptied = cif->block(1);
    emptied->remove("_x");
    CifDataBlock fresh(THandle<CifDictionary>(), "data_fresh");
    for (CifDataBlock* block : {cif->block(0).get(), emptied.get(), cif->block(2).get(), &fresh}) {
        SCOPED_TRACE(block->name());
        EXPECT_EQ(block->item_count(), 0u);
        EXPECT_TRUE(block->find("_x").is_null());
        EXPECT_FALSE(block->has_value("_x"));
        EXPECT_FALSE(block->has_item_with_category("x"));
        EXPECT_TRUE(block->loops().empty());
        EXPECT_TRUE(block->save_frames().empty());
        EXPECT_EQ(block->begin_write_order(), block->end_write_order());
        std::vector<std::string> columns{"stale"};
        block->loop_columns("_x", columns);
        EXPECT_TRUE(columns.empty());
        block->remove("_x");

        CifDataBlock copy(THandle<CifDictionary>(), "data_copy");
        copy.set_value("_y", "2");
        copy.copy(*block);
        EXPECT_EQ(copy.item_count(), 0u);
        EXPECT_TRUE(copy.find("_y").is_null());

        block->set_value("_single", "1");
        block->create_loop({"_l.a", "_l.b"});
        for (int i = 0; i < 10; ++i)
            block->set_value(std::string("_many_").append(std::to_string(i)), std::to_string(i));
        block->add_save_frame(THandle<CifDataBlock>(new CifDataBlock(THandle<CifDictionary>(), "f")));
        EXPECT_EQ(block->value("_SINGLE"), "1");
        EXPECT_EQ(block->value("_many_9"), "9");
        block->loop_columns("_L.B", columns);
        EXPECT_EQ(columns, (std::vector<std::string>{"_l.a", "_l.b"}));
        EXPECT_EQ(block->loops().size(), 1u);
        EXPECT_EQ(block->save_frames().size(), 1u);
        EXPECT_EQ(block->item_count(), 13u);
    }
}

TEST(CifDataItem, ValuesCanBeSetAddedInsertedAndRemoved) {
    CifDataItem item("_x");
    EXPECT_FALSE(item.has_value());
    EXPECT_EQ(item.value(), "");
    EXPECT_EQ(item.value(3), "");
    item.add_value("a");
    item.add_value("b");
    item.set_value(1, "B");
    item.set_value(4, "e");
    EXPECT_EQ(item.size(), 5u);
    EXPECT_EQ(item.value(1), "B");
    EXPECT_EQ(item.value(2), "?");
    EXPECT_EQ(item.value(4), "e");
    item.insert_value(0, "first");
    item.remove_value(2);
    item.remove_value(99);
    EXPECT_EQ(item.size(), 5u);
    EXPECT_EQ(item.value(), "first");
    EXPECT_EQ(item.value(1), "a");
    EXPECT_EQ(item.value(2), "?");
    EXPECT_EQ(item.validate("anything"), 0);
}

TEST(CifDataItem, LongColumnsKeepEveryValueAcrossGroups) {
    CifDataItem item("_x");
    const unsigned int count = 3 * CifValueColumn::group_size + 7;
    for (unsigned int n = 0; n < count; ++n) item.add_value(std::to_string(n));
    item.remove_value(10);
    item.insert_value(static_cast<unsigned int>(CifValueColumn::group_size), "inserted");
    EXPECT_EQ(item.size(), count);
    EXPECT_EQ(item.value(10), "11");
    EXPECT_EQ(item.value(static_cast<unsigned int>(CifValueColumn::group_size)), "inserted");
    EXPECT_EQ(item.value(count - 1), std::to_string(count - 1));
}

TEST(CifDataItem, ValidateAsksTheDictionary) {
    THandle<CifDictionary> dictionary(new cif_test::ListDictionary({"_count_number"}));
    CifDataBlock block(dictionary, "data_x", -1);
    THandle<CifDataItem> item = block.obtain("_count_number");
    EXPECT_EQ(item->validate("12"), 0);
    EXPECT_EQ(item->validate("twelve"), CifError::wrong_value_type);
    EXPECT_EQ(block.obtain("_free_text")->validate("twelve"), 0);
}

TEST(Cif, BlocksByNumberNameAndNewBlocks) {
    THandle<Cif> cif = read("data_first\n_a 1\ndata_Second\n_b 2\n");
    EXPECT_EQ(cif->block(1)->name(), "Second");
    EXPECT_TRUE(cif->block_with_name("second") == cif->block_begin() + 1);
    EXPECT_TRUE(cif->block_with_name("data_FIRST") == cif->block_begin());
    EXPECT_TRUE(cif->block_with_name("third") == cif->block_end());
    Cif::iterator added = cif->new_block("data_publication_text", cif->block_begin());
    EXPECT_EQ((*added)->name(), "publication_text");
    EXPECT_EQ(cif->block(0)->name(), "publication_text");
    EXPECT_EQ(cif->blocks().size(), 3u);
    EXPECT_EQ((*added)->line(), -1);
    // A block that was not read covers no line.
    EXPECT_EQ((*cif->block_at_line(1))->name(), "first");
}

TEST(Cif, MandatoryNamesAreCheckedPerDocumentAndPerCrystalBlock) {
    // Publication items may be in any block; crystal items in every block
    // that holds crystal data (here a and c, not the text-only block b).
    THandle<Cif> cif =
        read("data_a\n_publ_author 1\n_cell_length_a 2\ndata_b\n_other 3\ndata_c\n_cell_length_b 4\n");
    cif->check_mandatory(Names{"_publ_author", "_journal_name"}, Names{"_cell_length_a"});
    EXPECT_EQ(cif_test::messages(*cif), (cif_test::Messages{{347, 1}, {347, 6}}));
    EXPECT_EQ(cif->errors()->begin()->text(), "_journal_name");
    EXPECT_EQ((*cif->errors())[1].text(), "_cell_length_a");
    EXPECT_EQ((*cif->errors())[1].type(), CifError::warning);
    THandle<Cif> unchanged = read("data_a\n_x 1\n");
    unchanged->check_mandatory(Names(), Names());
    EXPECT_TRUE(unchanged->errors()->empty());
}

TEST(Cif, CrystalItemsOfADocumentWithoutCrystalDataAreNeededOnceAndANameOnBothListsOncePerLine) {
    THandle<Cif> cif = read("data_text\n_publ_section_title 'x'\ndata_more\n_journal_name_full 'y'\n");
    cif->check_mandatory(Names{"_cell_volume"}, Names{"_cell_volume", "_publ_section_title"});
    EXPECT_EQ(cif_test::messages(*cif), (cif_test::Messages{{347, 1}}));
    THandle<Cif> empty = read("");
    empty->check_mandatory(Names{"_a"}, Names{"_b"});
    EXPECT_EQ(std::count_if(empty->errors()->begin(), empty->errors()->end(),
                            [](const CifError& e) { return e.id() == CifError::mandatory_item_missing; }),
              2);
}

}  // namespace
