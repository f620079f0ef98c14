// SPDX-License-Identifier: MIT
// Items and blocks made in a document's arena: handles held by views stay
// valid however the document and the views end.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cif/CifArena.hpp"
#include "tests/cif/CifTestSupport.hpp"

namespace {

const char* const text =
    "data_one\n_cell_length_a 5.1\nloop_\n_atom_site_label\n_atom_site_fract_x\nC1 0.1\nC2 0.2\n"
    "save_frame\n_item.name '_x.y'\nsave_\n"
    "data_two\n_cell_length_a 6.2\n";

CifParserSettings with_frames() {
    CifParserSettings settings;
    settings.allow_save_frames = true;
    return settings;
}

// What a view keeps of a document.
struct View {
    THandle<CifDataBlock> block;
    THandle<CifDataBlock> frame;
    THandle<CifDataItem> single;
    THandle<CifDataItem> column;
    THandle<CifDataItem> removed;
    THandle<CifDataItem> added;
};

// The first look removes an item from the second block; later looks keep it too.
View look_at(const THandle<Cif>& cif, THandle<CifDataItem>& removed) {
    View view;
    view.block = cif->block(0);
    view.frame = view.block->save_frames().front();
    view.single = view.block->find("_CELL_LENGTH_A");
    view.column = view.block->find("_atom_site_fract_x");
    if (THandle<CifDataItem> present = cif->block(1)->find("_cell_length_a")) {
        removed = present;
        cif->block(1)->remove("_cell_length_a");
    }
    view.removed = removed;
    view.added = view.block->obtain("_new_item");
    view.added->add_value("added");
    return view;
}

void expect_intact(const View& view) {
    EXPECT_EQ(view.block->name(), "one");
    EXPECT_EQ(view.block->find("_atom_site_label")->value(1), "C2");
    EXPECT_EQ(view.frame->find("_item.name")->value(), "_x.y");
    EXPECT_EQ(view.single->name(), "_cell_length_a");
    EXPECT_EQ(view.single->value(), "5.1");
    EXPECT_EQ(view.column->value(1), "0.2");
    EXPECT_TRUE(view.column->is_looped());
    EXPECT_EQ(view.removed->value(), "6.2");
    EXPECT_EQ(view.added->value(), "added");
}

TEST(CifArena, ViewsMayEndBeforeOrAfterTheirDocument) {
    enum Order { views_first, document_first, interleaved };
    for (Order order : {views_first, document_first, interleaved}) {
        THandle<Cif> cif = cif_test::read(text, with_frames());
        ASSERT_EQ(cif->block_count(), 2u);
        std::vector<View> views;
        THandle<CifDataItem> removed;
        for (int i = 0; i < 3; ++i) views.push_back(look_at(cif, removed));
        for (const View& view : views) expect_intact(view);
        switch (order) {
            case views_first:
                views.clear();
                expect_intact(look_at(cif, removed));
                removed = THandle<CifDataItem>();
                cif = THandle<Cif>();
                break;
            case document_first:
                removed = THandle<CifDataItem>();
                cif = THandle<Cif>();  // the document goes; its items stay with the views
                for (const View& view : views) expect_intact(view);
                views.clear();
                break;
            case interleaved:
                removed = THandle<CifDataItem>();
                views.erase(views.begin());
                cif = THandle<Cif>();
                expect_intact(views.back());
                // A view may keep only an item and edit it: the item keeps its store.
                THandle<CifDataItem> last = views.back().column;
                views.clear();
                last->set_value(0, "0.15");
                EXPECT_EQ(last->value(0), "0.15");
                EXPECT_EQ(last->value(1), "0.2");
                break;
        }
    }
}

TEST(CifArena, ItemsKeepTheirDictionaryAfterTheDocumentAndEveryOtherHandleOfItAreGone) {
    // Items hold their dictionary through their store: one read with a
    // dictionary, one taken into a block of another dictionary (its store
    // is the source's), and one made without any.
    THandle<CifDictionary> reading(new cif_test::ListDictionary({"_cell_number"}));
    THandle<CifDictionary> merging(new cif_test::ListDictionary({"_other_number"}));
    THandle<Cif> source =
        cif_test::read("data_s\n_cell_number 12\n_other_number x\n", CifParserSettings(), reading);
    THandle<CifDataBlock> target(new CifDataBlock(merging, "t"));
    target->merge(*source->block(0), CifDataBlock::overwrite_existing);
    THandle<CifDataItem> read = source->block(0)->find("_cell_number");
    THandle<CifDataItem> merged = target->find("_other_number");
    THandle<CifDataItem> bare(new CifDataItem("_cell_number"));
    const CifDictionary* reading_itself = reading.get();
    const CifDictionary* merging_itself = merging.get();
    source = THandle<Cif>();
    target = THandle<CifDataBlock>();
    reading = THandle<CifDictionary>();
    merging = THandle<CifDictionary>();

    EXPECT_EQ(read->dictionary().get(), reading_itself);
    EXPECT_EQ(merged->dictionary().get(), merging_itself);
    EXPECT_TRUE(bare->dictionary().is_null());
    EXPECT_EQ(read->validate("not a number"), 324);
    EXPECT_EQ(read->validate("7"), 0);
    EXPECT_EQ(merged->validate_values(), 324);  // "x" under the merging block's dictionary
    EXPECT_EQ(bare->validate("not a number"), 0);
    // The same dictionary is kept once per store, however many items name it.
    THandle<CifDataItem> clone = read->clone();
    EXPECT_EQ(clone->dictionary().get(), reading_itself);
    EXPECT_EQ(read->dictionary().use_count(), 2);  // the store's handle and this one
}

TEST(CifArena, ObjectsAreDestroyedWhenTheirLastHandleGoesAndTheirStorageWithTheStore) {
    // An item's destructor runs when its last handle goes (its values and
    // comments are freed then), while the arena keeps handing out storage.
    THandle<CifTextStore> store(new CifTextStore("data_x\n"));
    std::vector<THandle<CifDataItem>> items;
    for (int i = 0; i < 5000; ++i) {
        items.push_back(store->make<CifDataItem>("_item_" + std::to_string(i % 50), store));
        items.back()->add_value(std::string(i % 7, 'v'));
        items.back()->append_comments("# item " + std::to_string(i));
    }
    EXPECT_EQ(store.use_count(), 5001);
    EXPECT_GE(store->arena().used(), 5000 * sizeof(CifDataItem));
    // Names are kept once per store.
    EXPECT_EQ(&items[0]->name(), &items[50]->name());
    for (std::size_t i = 0; i < items.size(); i += 2) items[i] = THandle<CifDataItem>();
    EXPECT_EQ(store.use_count(), 2501);
    THandle<CifDataItem> kept = items[4999];
    items.clear();
    store = THandle<CifTextStore>();  // the last item now holds the store and its arena
    EXPECT_EQ(kept->value(), std::string(4999 % 7, 'v'));
    EXPECT_EQ(kept->comments(), "# item 4999");
    EXPECT_EQ(kept->store().use_count(), 1);
}

}  // namespace
