// SPDX-License-Identifier: GPL-3.0-or-later
// The tree beside the editor in a main window: its requests reach the document as edits and jumps.
// Also data-item help, the tree in its own window, and the tree following the cursor.
#include <gtest/gtest.h>

#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QPointer>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTextBrowser>
#include <algorithm>

#include "ApplicationTestSupport.hpp"
#include "GuiTestSupport.hpp"
#include "editor/QcbsRichTextEdit.hpp"
#include "views/QcbsCifBoxCategoryItem.hpp"
#include "views/QcbsCifBoxPane.hpp"
#include "views/QcbsCifBoxView.hpp"
#include "views/QcbsCifBoxViewDialog.hpp"
#include "views/QcbsDataItemInfo.hpp"
#include "views/QcbsEditDataDialogue.hpp"
#include "views/ViewsTestSupport.hpp"

namespace {

using views_test::chooseEntry;

// Two blocks that both hold _cell_length_a, checked against tessary_test.dic.
const QByteArray kTwoBlocks =
    "data_first\n"                                     // 1
    "_cell_length_a                 5.0(1)\n"          // 2
    "_exptl_absorpt_correction_type none\n"            // 3
    "loop_\n_atom_site_label\n_atom_site_occupancy\n"  // 4-6
    "C1 1.0\n"                                         // 7
    "C2 0.5\n"                                         // 8
    "\n"                                               // 9
    "data_second\n"                                    // 10
    "# the cell of the second block\n"                 // 11
    "_cell_angle_alpha              90\n"              // 12
    "_cell_length_a                 6.0\n";            // 13

class MainWindowTree : public ::testing::Test, protected TestDictionaryWindow {
protected:
    void open(const QByteArray& text) { openText(text, "tree.cif"); }
    QcbsRichTextEdit* editor() const { return window_->currentEditor(); }
    QcbsCifBoxView* tree() const { return window_->boxView(); }
    QString text() const { return QString::fromUtf8(window_->document()->fileBytes()); }
    int cursorLine() const {
        int paragraph = 0;
        int index = 0;
        editor()->getCursorPosition(&paragraph, &index);
        return paragraph + 1;
    }
    // The row of a name of a block, opened up to it, in the window's tree or another.
    QcbsCifBoxItem* row(int block, const QString& category, const QString& name = QString(),
                        QcbsCifBoxView* in = nullptr) {
        return views_test::treeRow(in != nullptr ? in : tree(), block, category, name);
    }
};

TEST_F(MainWindowTree, GoingToAnItemLandsOnItsLineInTheRightBlockWhenTwoBlocksHoldTheName) {
    open(kTwoBlocks);
    ASSERT_EQ(tree()->blockCount(), 2);
    const struct {
        int block;
        const char* category;
        const char* name;
        int line;
    } jumps[] = {
        {1, "_cell_[]", "_cell_length_a", 13},
        {0, "_cell_[]", "_cell_length_a", 2},
        {1, "_cell_[]", "", 12},  // a category: its first item in the block
        {0, "_atom_site_[]", "_atom_site_occupancy", 6},
    };
    for (const auto& jump : jumps) {
        editor()->setCursorPosition(0, 0);
        QcbsCifBoxItem* item = row(jump.block, jump.category, jump.name);
        if (*jump.name != '\0')
            ASSERT_TRUE(chooseEntry(item, "Go to item"));
        else
            tree()->slotFolderSelected(item);
        EXPECT_EQ(cursorLine(), jump.line) << jump.category << " " << jump.name;
    }
    // A block row: its heading, by selecting it or by its menu.
    tree()->slotFolderSelected(tree()->blockRow(1));
    EXPECT_EQ(cursorLine(), 10);
    editor()->setCursorPosition(0, 0);
    ASSERT_TRUE(chooseEntry(tree()->blockRow(1), "Go to block"));
    EXPECT_EQ(cursorLine(), 10);
    EXPECT_FALSE(window_->document()->isModified());
}

TEST_F(MainWindowTree, AValueWithBlanksLandsQuotedInTheTextAsOneUndoStepAndTheTreeShowsTheNewCheck) {
    open(kTwoBlocks);
    ASSERT_TRUE(chooseEntry(row(1, "_cell_[]", "_cell_length_a"), "Set data item value"));
    QcbsEditDataDialogue* dialogue = window_->setDataDialogue();
    ASSERT_NE(dialogue, nullptr);
    ASSERT_TRUE(waitUntil([&] { return dialogue->isVisible(); }));
    EXPECT_TRUE(dialogue->isEditing());
    EXPECT_EQ(dialogue->blockName(), "second");
    EXPECT_EQ(dialogue->value(), "6.0");
    dialogue->valueEditor()->loadText("a value with blanks");
    dialogue->ok();

    const QString edited = text();
    const QStringList lines = edited.split('\n');
    ASSERT_GE(lines.size(), 13);
    EXPECT_TRUE(lines[12].startsWith("_cell_length_a ")) << lines[12].toStdString();
    EXPECT_TRUE(lines[12].endsWith(" 'a value with blanks'")) << lines[12].toStdString();
    EXPECT_EQ(lines[1], "_cell_length_a                 5.0(1)") << "the first block's item stays";
    // Checked again: the tree shows the value the dictionary refuses.
    EXPECT_EQ(window_->currentCif()->block(1)->value("_cell_length_a"), "a value with blanks");
    EXPECT_TRUE(tree()->blockRow(1)->isExpanded());
    EXPECT_EQ(row(1, "_cell_[]", "_cell_length_a")->icon(), QcbsCifBoxItem::AlertIcon);
    EXPECT_TRUE(waitUntil([&] { return window_->setDataDialogue() == nullptr; }));

    // An item the block lacks is added to it; each edit is one undo step.
    ASSERT_TRUE(chooseEntry(row(0, "_cell_[]", "_cell_length_b"), "Set data item value"));
    ASSERT_NE(window_->setDataDialogue(), nullptr);
    window_->setDataDialogue()->valueEditor()->loadText("7.5");
    window_->setDataDialogue()->ok();
    EXPECT_EQ(window_->currentCif()->block(0)->value("_cell_length_b"), "7.5");
    EXPECT_EQ(row(0, "_cell_[]", "_cell_length_b")->icon(), QcbsCifBoxItem::ItemIcon);
    window_->editUndo();
    EXPECT_EQ(text(), edited);
    window_->editUndo();
    EXPECT_EQ(text().toUtf8(), kTwoBlocks);

    // Cancel leaves the text alone.
    ASSERT_TRUE(chooseEntry(row(0, "_exptl_[]", "_exptl_absorpt_correction_type"), "Set data item value"));
    ASSERT_NE(window_->setDataDialogue()->valueChoice(), nullptr);
    EXPECT_EQ(window_->setDataDialogue()->valueChoice()->currentText(), "none");
    window_->setDataDialogue()->close();
    EXPECT_EQ(text().toUtf8(), kTwoBlocks);
}

TEST_F(MainWindowTree, OpenRowsAndTheCheckFollowEachOtherAndThePaneFiltersAndListsTheBlocksItems) {
    open(kTwoBlocks);
    row(0, "_atom_site_[]");
    row(1, "_cell_[]");
    editor()->setCursorPosition(8, 0);
    window_->document()->insertText("\ndata_third\n_cell_length_a 4\n");
    window_->reparse();
    ASSERT_EQ(tree()->blockCount(), 3);
    EXPECT_TRUE(tree()->blockRow(0)->isExpanded());
    EXPECT_TRUE(tree()->blockRow(0)->child(1)->isExpanded());
    EXPECT_FALSE(tree()->blockRow(0)->child(0)->isExpanded());
    EXPECT_TRUE(tree()->blockRow(2)->isExpanded()) << "the second block's row was open";
    EXPECT_FALSE(tree()->blockRow(1)->isExpanded());

    QTest::keyClicks(window_->boxPane()->filterBox(), "occupancy");
    EXPECT_EQ(tree()->filterText(), "occupancy");
    EXPECT_EQ(views_test::childTexts(tree()->blockRow(0), true), QStringList{"_atom_site_[]"});
    window_->boxPane()->filterBox()->clear();
    window_->boxPane()->listingChoice()->setCurrentIndex(1);
    EXPECT_EQ(window_->boxPane()->listingChoice()->currentText(), "items in the block");
    tree()->blockRow(2)->setOpen(true);
    EXPECT_EQ(views_test::childTexts(tree()->blockRow(2)), QStringList{"_cell_[]"});

    // Closing the document empties the tree.
    window_->document()->setModified(false);
    ASSERT_TRUE(window_->fileClose());
    EXPECT_EQ(tree()->blockCount(), 0);
    EXPECT_EQ(tree()->topLevelItem(0)->text(0), "(no items to show)");
}

TEST_F(MainWindowTree, HelpShowsTheDefinitionOfTheNameAtTheCursorOrOfATreeRow) {
    open(kTwoBlocks);
    editor()->setCursorPosition(1, 4);
    window_->windowActions()->action(QcbsMainWindowActions::ItemHelp)->trigger();
    const QPointer<QcbsEditDataDialogue> help = window_->helpDialogue();
    ASSERT_NE(help, nullptr);
    EXPECT_FALSE(help->isEditing());
    EXPECT_EQ(help->info()->dataName(), "_cell_length_a");
    EXPECT_TRUE(help->info()->browser()->toPlainText().contains("Unit-cell lengths"));

    // On a loop's value line, the loop's name above; F1 as well as the action.
    window_->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window_.get()));
    editor()->setFocus();
    editor()->setCursorPosition(7, 2);
    QTest::keyClick(editor(), Qt::Key_F1);
    ASSERT_NE(window_->helpDialogue(), nullptr);
    EXPECT_EQ(window_->helpDialogue()->info()->dataName(), "_atom_site_occupancy");
    EXPECT_TRUE(waitUntil([&] { return help == nullptr; })) << "the new help replaces the old";

    ASSERT_TRUE(chooseEntry(row(0, "_cell_[]"), "Item help"));
    EXPECT_EQ(window_->helpDialogue()->info()->dataName(), "_cell_[]");
    const QWidgetList windows = QApplication::topLevelWidgets();
    EXPECT_EQ(std::count_if(windows.begin(), windows.end(),
                            [](QWidget* widget) {
                                return widget->isVisible() &&
                                       qobject_cast<QcbsEditDataDialogue*>(widget) != nullptr;
                            }),
              1)
        << "one help window at a time";

    // A line without a data name has nothing to give help on.
    editor()->setCursorPosition(0, 0);
    window_->dataitemHelp();
    EXPECT_TRUE(statusMessage(*window_).startsWith("No data name to give help on"));

    // With the focus in the tree, F1 is about its current row.
    window_->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window_.get()));
    tree()->setFocus();
    ASSERT_TRUE(waitUntil([&] { return tree()->hasFocus(); }));
    tree()->setCurrentItem(row(0, "_exptl_[]", "_exptl_absorpt_correction_type"));
    QTest::keyClick(tree(), Qt::Key_F1);
    EXPECT_EQ(window_->helpDialogue()->info()->dataName(), "_exptl_absorpt_correction_type");
}

TEST_F(MainWindowTree, TheTreeSelectsTheItemAtTheCursorAndTheBlockChosenInTheBlockChooser) {
    open(kTwoBlocks);
    const auto current = [this] {
        const QTreeWidgetItem* item = tree()->currentItem();
        return item == nullptr ? QString()
                               : item->text(0) + " in " + (item->parent() ? item->parent()->text(0) : "");
    };
    editor()->setCursorPosition(12, 0);
    EXPECT_EQ(current(), "_cell_length_a in _cell_[]");
    EXPECT_EQ(tree()->currentItem()->parent()->parent(), tree()->blockRow(1));
    editor()->setCursorPosition(6, 3);  // a loop's value line: the loop's last name
    EXPECT_EQ(current(), "_atom_site_occupancy in _atom_site_[]");
    EXPECT_EQ(tree()->currentItem()->parent()->parent(), tree()->blockRow(0));
    editor()->setCursorPosition(9, 0);
    EXPECT_EQ(tree()->currentItem(), tree()->blockRow(1));

    window_->blockComboSelected(1);
    EXPECT_EQ(tree()->currentItem(), tree()->blockRow(0));
}

TEST_F(MainWindowTree, TheTreeInAWindowOfItsOwnListsTheDocumentAfterEachCheckAndAnswersLikeThePane) {
    open(kTwoBlocks);
    window_->toggleBoxView();
    EXPECT_TRUE(window_->boxPane()->isHidden());
    QAction* treeWindow = window_->findChild<QAction*>("treewindow");
    ASSERT_NE(treeWindow, nullptr);
    EXPECT_TRUE(
        window_->windowActions()->menu(QcbsMainWindowActions::ToolsMenu)->actions().contains(treeWindow));
    treeWindow->trigger();
    QcbsCifBoxViewDialog* dialog = window_->treeDialog();
    ASSERT_NE(dialog, nullptr);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(dialog));
    EXPECT_EQ(dialog->windowTitle(), "Cif Box View - tree.cif");
    QcbsCifBoxView* own = dialog->view();
    EXPECT_EQ(own->blockCount(), 2);

    editor()->setCursorPosition(0, 0);
    ASSERT_TRUE(chooseEntry(row(1, "_cell_[]", "_cell_length_a", own), "Go to item"));
    EXPECT_EQ(cursorLine(), 13);
    editor()->setCursorPosition(1, 0);
    EXPECT_EQ(own->currentItem()->text(0), "_cell_length_a");
    EXPECT_EQ(own->currentItem()->parent()->parent(), own->blockRow(0));

    editor()->setCursorPosition(8, 0);
    window_->document()->insertText("\ndata_third\n");
    window_->reparse();
    EXPECT_EQ(own->blockCount(), 3);
    dialog->close();
    EXPECT_TRUE(waitUntil([&] { return window_->treeDialog() == nullptr; }));
}

}  // namespace
