// SPDX-License-Identifier: GPL-3.0-or-later
// The tree of blocks, categories and data items: rows, icons, menus, requests, open state.
// Also the filter, the listing of a block's own items and the selection that follows the cursor.
#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

#include "GuiTestSupport.hpp"
#include "ViewsTestSupport.hpp"
#include "views/QcbsCifBoxCategoryItem.hpp"
#include "views/QcbsCifBoxDataItem.hpp"
#include "views/QcbsCifBoxView.hpp"

namespace {

using namespace views_test;
using Item = QcbsCifBoxItem;

// Two blocks against tessary_test.dic: present, absent, refused (a length
// below its range, a second-row occupancy above 1), looped and undefined items.
const std::string kDocument =
    "data_first\n"                                                                  // 1
    "_cell_length_a                 5.0(1)\n"                                       // 2
    "_cell_length_b                 -3\n"                                           // 3
    "_cell_angle_alpha              90\n"                                           // 4
    "_exptl_absorpt_correction_type none\n"                                         // 5
    "_Made_up_thing                 1\n"                                            // 6
    "_shelx_res_file\n;\nTITL x\n;\n"                                               // 7-10
    "loop_\n_atom_site_label\n_atom_site_occupancy\n_atom_site_refinement_flags\n"  // 11-14
    "C1 1.0 S\n"                                                                    // 15
    "C2 1.5 .\n"                                                                    // 16
    "data_second\n"                                                                 // 17
    "_cell_length_a                 6.0\n";                                         // 18

class CifBoxView : public ::testing::Test {
protected:
    CifBoxView() { view_.setCif(checked(kDocument)); }

    Item* row(int block, const QString& category, const QString& name = QString()) {
        return treeRow(&view_, block, category, name);
    }

    QcbsCifBoxView view_;
};

TEST_F(CifBoxView, ItemRowsShowPresenceLoopsAndRefusedValuesInTheirIconTheirColourAndTheirMenu) {
    const QStringList present{"Go to item", "Item help", "Copy item name", "Set data item value"};
    const QStringList absent{"Item help", "Copy item name", "Paste into editor", "Set data item value"};
    const QStringList looped{"Go to item", "Item help", "Copy item name", "Edit loop"};
    const struct {
        const char* category;
        const char* name;
        Item::Icon icon;
        bool greyed;
        bool isLooped;
        QStringList menu;
    } rows[] = {
        {"_cell_[]", "_cell_length_a", Item::ItemIcon, false, false, present},
        {"_cell_[]", "_cell_length_b", Item::AlertIcon, false, false, present},
        {"_cell_[]", "_cell_length_c", Item::GreyedIcon, true, false, absent},
        {"_exptl_[]", "_exptl_absorpt_correction_type", Item::ItemIcon, false, false, present},
        {"_atom_site_[]", "_atom_site_label", Item::LoopIcon, false, true, looped},
        {"_atom_site_[]", "_atom_site_refinement_flags", Item::LoopIcon, false, true, looped},
        // Only the second row's value is refused: the alert wins over the loop icon.
        {"_atom_site_[]", "_atom_site_occupancy", Item::AlertIcon, false, true, looped},
        {"_atom_site_[]", "_atom_site_fract_x", Item::GreyedIcon, true, false, absent},
    };
    for (const auto& r : rows) {
        auto* item = static_cast<QcbsCifBoxDataItem*>(row(0, r.category, r.name));
        ASSERT_NE(item, nullptr);
        EXPECT_EQ(item->icon(), r.icon) << r.name;
        EXPECT_EQ(item->isGreyedOut(), r.greyed) << r.name;
        EXPECT_EQ(item->isLooped(), r.isLooped) << r.name;
        EXPECT_EQ(item->foreground(0).color() == QColor("gray"), r.greyed) << r.name;
        EXPECT_EQ(menuEntries(item), r.menu) << r.name;
        EXPECT_EQ(item->childIndicatorPolicy(), QTreeWidgetItem::DontShowIndicator);
    }
    // The same name in the other block is that block's: present and valid there.
    EXPECT_EQ(row(1, "_cell_[]", "_cell_length_b")->icon(), Item::GreyedIcon);
    EXPECT_EQ(row(1, "_cell_[]", "_cell_length_a")->icon(), Item::ItemIcon);

    EXPECT_TRUE(view_.blockRow(0)->font(0).bold());
    EXPECT_FALSE(row(0, "_cell_[]")->font(0).bold());
    EXPECT_EQ(menuEntries(view_.blockRow(0)), QStringList{"Go to block"});
    EXPECT_EQ(menuEntries(row(0, "_cell_[]")), QStringList{"Item help"});
}

TEST_F(CifBoxView, MenuEntriesAndSelectingARowSendTheirRequestsWithTheBlocksOwnName) {
    view_.setCif(checked("data_only\n_cell_length_a 5\n"), "my structure");
    ASSERT_EQ(view_.blockRow(0)->text(0), "my structure");
    QSignalSpy selected(&view_, &QcbsCifBoxView::selectedDataItem);
    QSignalSpy toBlock(&view_, &QcbsCifBoxView::goToBlockRequest);
    QSignalSpy help(&view_, &QcbsCifBoxView::datItemHelpRequest);
    QSignalSpy insert(&view_, &QcbsCifBoxView::insertTextRequest);
    QSignalSpy set(&view_, &QcbsCifBoxView::dataItemSetRequest);
    const auto last = [](const QSignalSpy& spy) {
        QStringList arguments;
        if (!spy.isEmpty())
            for (const QVariant& argument : spy.last()) arguments << argument.toString();
        return arguments;
    };

    ASSERT_TRUE(chooseEntry(view_.blockRow(0), "Go to block"));
    EXPECT_EQ(last(toBlock), QStringList{"only"});
    ASSERT_TRUE(chooseEntry(row(0, "_cell_[]"), "Item help"));
    EXPECT_EQ(last(help), QStringList{"_cell_[]"});

    Item* present = row(0, "_cell_[]", "_cell_length_a");
    ASSERT_TRUE(chooseEntry(present, "Go to item"));
    EXPECT_EQ(last(selected), (QStringList{"_cell_length_a", "1"}));
    ASSERT_TRUE(chooseEntry(present, "Item help"));
    EXPECT_EQ(last(help), QStringList{"_cell_length_a"});
    ASSERT_TRUE(chooseEntry(present, "Set data item value"));
    EXPECT_EQ(last(set), (QStringList{"_cell_length_a", "only"}));
    ASSERT_TRUE(chooseEntry(present, "Copy item name"));
    EXPECT_EQ(QApplication::clipboard()->text(), "_cell_length_a");
    ASSERT_TRUE(chooseEntry(row(0, "_cell_[]", "_cell_length_b"), "Paste into editor"));
    EXPECT_EQ(last(insert), QStringList{"_cell_length_b"});

    // A double click (or Return) on any row asks to go there from the block's line.
    view_.slotFolderSelected(row(0, "_cell_[]"));
    EXPECT_EQ(last(selected), (QStringList{"_cell_[]", "1"}));
    view_.setCurrentItem(present);
    QTest::keyClick(&view_, Qt::Key_Return);
    EXPECT_EQ(last(selected), (QStringList{"_cell_length_a", "1"}));
    EXPECT_EQ(selected.count(), 3);
    // The placeholder row and empty space do nothing.
    view_.setCif(THandle<Cif>());
    view_.slotFolderSelected(view_.topLevelItem(0));
    view_.slotRightPressed(nullptr, QPoint(), 0);
    EXPECT_EQ(selected.count() + toBlock.count() + help.count() + insert.count() + set.count(), 8);
}

TEST_F(CifBoxView, BlockRowsShowTheirNamesOrForASingleBlockTheSubstituteAndNothingWithoutADocument) {
    const auto texts = [this] {
        QStringList list;
        for (int i = 0; i < view_.topLevelItemCount(); ++i) list << view_.topLevelItem(i)->text(0);
        return list;
    };
    view_.setCif(checked(kDocument), "substitute");
    EXPECT_EQ(texts(), (QStringList{"first", "second"}));
    view_.setCif(checked("data_only\n"), "substitute");
    EXPECT_EQ(texts(), QStringList{"substitute"});
    view_.setCif(checked("data_only\n"), QString());
    EXPECT_EQ(texts(), QStringList{"only"});
    view_.setCif(THandle<Cif>(), "substitute");
    EXPECT_EQ(texts(), QStringList{"(no items to show)"});
    EXPECT_EQ(view_.blockCount(), 0);
    EXPECT_EQ(view_.topLevelItem(0)->flags(), Qt::NoItemFlags);
}

TEST_F(CifBoxView, ChildrenComeFromTheDictionaryOnFirstOpeningAndNamesInAnOrderThatIgnoresCase) {
    QcbsCifBoxBlockItem* first = view_.blockRow(0);
    EXPECT_EQ(first->childCount(), 0);
    EXPECT_EQ(first->icon(), Item::BlockClosedIcon);
    view_.expandItem(first);  // as a click on the arrow does
    EXPECT_EQ(first->icon(), Item::BlockOpenIcon);
    // Every category of the dictionary, in its order; one without an
    // overview definition (publ_author) among them.
    QStringList categories;
    for (const std::string& category : testDictionary()->categories())
        categories << QString::fromStdString(category);
    EXPECT_EQ(childTexts(first), categories);
    EXPECT_EQ(categories.mid(0, 2), (QStringList{"_cell_[]", "_atom_site_[]"}));
    EXPECT_TRUE(categories.contains("_publ_author_[]"));
    auto* atoms = static_cast<Item*>(first->child(1));
    EXPECT_EQ(atoms->childCount(), 0);
    view_.expandItem(atoms);
    EXPECT_EQ(atoms->icon(), Item::BoxOpenIcon);
    // "aniso_label" before "aniso_U_11": letters compared without regard to case.
    EXPECT_EQ(
        childTexts(atoms),
        (QStringList{"_atom_site_aniso_label", "_atom_site_aniso_U_11", "_atom_site_aniso_U_22",
                     "_atom_site_fract_x", "_atom_site_fract_y", "_atom_site_fract_z", "_atom_site_label",
                     "_atom_site_occupancy", "_atom_site_refinement_flags", "_atom_site_type_symbol"}));
    // Closing and opening again keeps the rows made first.
    QTreeWidgetItem* made = atoms->child(0);
    view_.collapseItem(atoms);
    EXPECT_EQ(atoms->icon(), Item::BoxClosedIcon);
    view_.expandItem(atoms);
    EXPECT_EQ(atoms->child(0), made);
    view_.collapseItem(first);
    EXPECT_EQ(first->icon(), Item::BlockClosedIcon);

    // The dictionary's overview of overviews is never a category row.
    const THandle<CifDictionary> overviews = dictionaryFromText(
        "data_on_this_dictionary\n _dictionary_name o.dic\n _dictionary_version 1\n"
        "data_category_overview_[]\n _name '_category_overview_[]'\n _category category_overview\n _type "
        "null\n"
        "data_cell_[]\n _name '_cell_[]'\n _category category_overview\n _type null\n"
        "data_cell_volume\n _name '_cell_volume'\n _category cell\n _type numb\n");
    ASSERT_EQ(overviews->categories().size(), 2u);
    view_.setCif(checked("data_a\n_cell_volume 5\n", overviews));
    view_.blockRow(0)->setOpen(true);
    EXPECT_EQ(childTexts(view_.blockRow(0)), QStringList{"_cell_[]"});
}

TEST_F(CifBoxView, OpenBlocksAndCategoriesAndTheScrollPositionSurviveANewCheckMatchedByName) {
    view_.resize(260, 160);
    view_.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&view_));
    row(0, "_cell_[]");
    row(0, "_atom_site_[]");
    row(1, "_exptl_[]");
    view_.setCurrentItem(row(0, "_cell_[]", "_cell_length_a"));
    view_.verticalScrollBar()->setValue(6);

    // The second block is renamed in the new text; _cell_length_c appears.
    std::string text = kDocument;
    text.replace(text.find("data_second"), 11, "data_renamed");
    text.replace(text.find("_cell_angle_alpha"), 17, "_cell_length_c   ");
    view_.setCif(checked(text));

    QcbsCifBoxBlockItem* first = view_.blockRow(0);
    EXPECT_TRUE(first->isExpanded());
    QStringList open;
    for (int i = 0; i < first->childCount(); ++i)
        if (first->child(i)->isExpanded()) open << first->child(i)->text(0);
    EXPECT_EQ(open, (QStringList{"_cell_[]", "_atom_site_[]"}));
    EXPECT_FALSE(view_.blockRow(1)->isExpanded());
    EXPECT_EQ(view_.blockRow(1)->childCount(), 0);
    EXPECT_EQ(view_.verticalScrollBar()->value(), 6);
    ASSERT_NE(view_.currentItem(), nullptr);
    EXPECT_EQ(view_.currentItem()->text(0), "_cell_length_a");
    EXPECT_EQ(view_.currentItem()->parent()->parent(), first);
    // The rows are those of the new check.
    EXPECT_EQ(row(0, "_cell_[]", "_cell_length_c")->icon(), Item::ItemIcon);
}

TEST_F(CifBoxView, TheFilterShowsOnlyCategoriesAndNamesHoldingTheTextAndClearingShowsAll) {
    view_.setFilterText("OCCUP");
    QcbsCifBoxBlockItem* first = view_.blockRow(0);
    EXPECT_TRUE(first->isExpanded());
    EXPECT_EQ(childTexts(first, true), QStringList{"_atom_site_[]"});
    EXPECT_EQ(childTexts(first->child(1), true), QStringList{"_atom_site_occupancy"});
    EXPECT_TRUE(first->child(1)->isExpanded());

    // A category that holds the text shows all its names.
    view_.setFilterText("exptl");
    EXPECT_EQ(childTexts(first, true), QStringList{"_exptl_[]"});
    // It holds across a new check.
    view_.setCif(checked(kDocument));
    EXPECT_EQ(childTexts(view_.blockRow(1), true), QStringList{"_exptl_[]"});

    view_.setFilterText(QString());
    first = view_.blockRow(0);
    EXPECT_EQ(childTexts(first, true).size(), first->childCount());
    view_.setFilterText("no such name");
    EXPECT_TRUE(childTexts(first, true).isEmpty());
}

TEST_F(CifBoxView, ListingTheBlocksOwnItemsPutsNamesNoDictionaryDefinesUnderAHeadingOfTheirOwn) {
    view_.blockRow(0)->setOpen(true);
    view_.setListing(QcbsCifBoxBlockItem::BlockItems);
    QcbsCifBoxBlockItem* first = view_.blockRow(0);
    EXPECT_TRUE(first->isExpanded()) << "the open state stays";
    EXPECT_EQ(childTexts(first), (QStringList{"_cell_[]", "_atom_site_[]", "_exptl_[]",
                                              QcbsCifBoxCategoryItem::undefinedItemsHeading()}));
    EXPECT_EQ(childTexts(row(0, "_cell_[]")),
              (QStringList{"_cell_angle_alpha", "_cell_length_a", "_cell_length_b"}));
    Item* heading = row(0, QcbsCifBoxCategoryItem::undefinedItemsHeading());
    EXPECT_EQ(childTexts(heading), (QStringList{"_Made_up_thing", "_shelx_res_file"}));
    EXPECT_TRUE(menuEntries(heading).isEmpty());
    QSignalSpy selected(&view_, &QcbsCifBoxView::selectedDataItem);
    view_.slotFolderSelected(heading);
    EXPECT_EQ(selected.count(), 0);
    EXPECT_EQ(menuEntries(static_cast<Item*>(heading->child(0))).first(), "Go to item");

    view_.setListing(QcbsCifBoxBlockItem::DictionaryItems);
    EXPECT_EQ(view_.blockRow(0)->childCount(), static_cast<int>(testDictionary()->categories().size()));
}

TEST_F(CifBoxView, TheRowOfTheItemAtTheCursorIsSelectedAndGoingToABlockSelectsItsRow) {
    const THandle<Cif> cif = view_.cif();
    const auto path = [this] {
        QStringList texts;
        for (const QTreeWidgetItem* item = view_.currentItem(); item != nullptr; item = item->parent())
            texts.prepend(item->text(0));
        return texts.join(" / ");
    };
    Item* userOpened = row(0, "_cell_[]");  // opened by the user: it stays open
    EXPECT_TRUE(view_.showDataItem(cif->block(1), "_CELL_LENGTH_A"));
    EXPECT_EQ(path(), "second / _cell_[] / _cell_length_a");
    EXPECT_TRUE(view_.blockRow(1)->isExpanded());
    // Moving on closes what was opened only to show the last item.
    EXPECT_TRUE(view_.showDataItem(cif->block(0), "_exptl_absorpt_correction_type"));
    EXPECT_EQ(path(), "first / _exptl_[] / _exptl_absorpt_correction_type");
    EXPECT_FALSE(view_.blockRow(1)->isExpanded());
    EXPECT_FALSE(view_.blockRow(1)->child(0)->isExpanded());
    EXPECT_TRUE(view_.showDataItem(cif->block(0), "_atom_site_label"));
    EXPECT_FALSE(view_.blockRow(0)->child(3)->isExpanded()) << "_exptl_[]";
    EXPECT_TRUE(userOpened->isExpanded());
    EXPECT_TRUE(view_.blockRow(0)->isExpanded());
    // A name no dictionary defines: its block, or its row under the heading.
    EXPECT_TRUE(view_.showDataItem(cif->block(0), "_made_up_thing"));
    EXPECT_EQ(path(), "first");
    view_.setListing(QcbsCifBoxBlockItem::BlockItems);
    EXPECT_TRUE(view_.showDataItem(view_.cif()->block(0), "_made_up_thing"));
    EXPECT_EQ(path(), "first / " + QcbsCifBoxCategoryItem::undefinedItemsHeading() + " / _Made_up_thing");
    EXPECT_FALSE(view_.showDataItem(checked(kDocument)->block(0), "_cell_length_a"))
        << "another check's block";

    view_.goToBlock("second");
    EXPECT_EQ(path(), "second");
    view_.goToBlock("no such block");
    EXPECT_EQ(path(), "second");
}

}  // namespace
