// SPDX-License-Identifier: GPL-3.0-or-later
// Loops in a main window: Edit Loop and New Loop, OK putting the text back as one undo step.
#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QUndoStack>

#include "ApplicationTestSupport.hpp"
#include "GuiTestSupport.hpp"
#include "application/QcbsMainWindowSharedData.hpp"
#include "editor/QcbsFontStyleSettings.hpp"
#include "editor/QcbsRichTextEdit.hpp"
#include "views/QcbsCifBoxBlockItem.hpp"
#include "views/QcbsCifBoxView.hpp"
#include "views/QcbsLoopTable.hpp"
#include "views/QcbsLoopTableEditorImpl.hpp"
#include "views/ViewsTestSupport.hpp"

namespace {

const QByteArray kDocument =
    "data_first\n"                                     // 1
    "_cell_length_a   5.0(1)\n"                        // 2
    "loop_\n_atom_site_label\n_atom_site_occupancy\n"  // 3-5
    "C1 1.0\n"                                         // 6
    "C2 0.5\n"                                         // 7
    "# a comment that stays\n"                         // 8
    "_exptl_absorpt_correction_type   none\n"          // 9
    "\n"                                               // 10
    "data_second\n"                                    // 11
    "loop_\n_atom_site_label\n_atom_site_occupancy\n"  // 12-14
    "N1 1\n";                                          // 15

class MainWindowLoops : public ::testing::Test, protected TestDictionaryWindow {
protected:
    void open(const QByteArray& text) { openText(text, "loops.cif"); }
    QByteArray bytes() const { return window_->document()->fileBytes(); }
    void cursorTo(int line) { window_->currentEditor()->setCursorPosition(line - 1, 0); }
};

TEST_F(MainWindowLoops, AnEditedLoopReplacesOnlyItsOwnTextAsOneUndoStep) {
    open(kDocument);
    cursorTo(7);
    window_->loopEd();
    QcbsLoopTableEditorImpl* dialog = window_->loopEditor();
    ASSERT_NE(dialog, nullptr);
    ASSERT_TRUE(waitUntil([&] { return dialog->isVisible(); }));
    EXPECT_EQ(dialog->blockName(), "first");
    EXPECT_EQ(dialog->table()->cellText(1, 0), "C2");
    dialog->table()->updateCell(1, 1, "0.25");
    dialog->table()->addRow();
    dialog->table()->updateCell(2, 0, "O 1");
    dialog->accept();

    const QByteArray edited = bytes();
    const qsizetype from = edited.indexOf("loop_");
    const qsizetype to = edited.indexOf("# a comment");
    ASSERT_GT(from, 0);
    ASSERT_GT(to, from);
    // Everything outside the loop is as it was, byte for byte.
    EXPECT_EQ(edited.left(from), kDocument.left(kDocument.indexOf("loop_")));
    EXPECT_EQ(edited.mid(to), kDocument.mid(kDocument.indexOf("# a comment")));
    // Checked again: the new values are in the window's check.
    const THandle<CifDataBlock> first = window_->currentCif()->block(0);
    EXPECT_EQ(first->find("_atom_site_occupancy")->value(1), "0.25");
    EXPECT_EQ(first->find("_atom_site_label")->value(2), "O 1");
    EXPECT_EQ(first->find("_atom_site_label")->size(), 3u);
    window_->editUndo();
    EXPECT_EQ(bytes(), kDocument);
}

TEST_F(MainWindowLoops, EditLoopTakesTheLoopOfTheBlockAtTheCursorOrSaysThereIsNone) {
    open(kDocument);
    cursorTo(15);
    window_->loopEd();
    ASSERT_NE(window_->loopEditor(), nullptr);
    EXPECT_EQ(window_->loopEditor()->blockName(), "second");
    EXPECT_EQ(window_->loopEditor()->table()->cellText(0, 0), "N1");
    window_->loopEditor()->reject();
    EXPECT_TRUE(waitUntil([&] { return window_->loopEditor() == nullptr; }));

    cursorTo(2);  // an item outside any loop
    window_->loopEd();
    EXPECT_EQ(window_->loopEditor(), nullptr);
    EXPECT_TRUE(statusMessage(*window_).startsWith("No loop here")) << statusMessage(*window_).toStdString();
    EXPECT_EQ(bytes(), kDocument);
}

TEST_F(MainWindowLoops, TheWindowsKeysTypedInTheEditorReachTheWindow) {
    open(kDocument);
    window_->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window_.get()));
    window_->currentEditor()->setFocus();
    cursorTo(6);
    QTest::keyClick(window_->currentEditor(), Qt::Key_L, Qt::ControlModifier);
    EXPECT_TRUE(waitUntil([&] { return window_->loopEditor() != nullptr; }));
    EXPECT_EQ(bytes(), kDocument);

    // Ctrl+Plus is the window's zoom of the shared font, not the editor's own.
    window_->loopEditor()->close();
    window_->currentEditor()->setFocus();
    const int size = window_->sharedData()->fontStyles()->baseFont().pointSize();
    QTest::keyClick(window_->currentEditor(), Qt::Key_Plus, Qt::ControlModifier);
    EXPECT_TRUE(
        waitUntil([&] { return window_->sharedData()->fontStyles()->baseFont().pointSize() == size + 1; }));
    EXPECT_EQ(window_->currentEditor()->SendScintilla(QsciScintillaBase::SCI_GETZOOM), 0);
}

TEST_F(MainWindowLoops, TheTreeOffersLoopedItemsForEditingAsATable) {
    open(kDocument);
    QcbsCifBoxItem* row = views_test::treeRow(window_->boxView(), 1, "_atom_site_[]", "_atom_site_occupancy");
    ASSERT_NE(row, nullptr);
    EXPECT_FALSE(views_test::menuEntries(row).contains("Set data item value"));
    ASSERT_TRUE(views_test::chooseEntry(row, "Edit loop"));
    ASSERT_NE(window_->loopEditor(), nullptr);
    EXPECT_EQ(window_->loopEditor()->blockName(), "second");
    EXPECT_EQ(window_->loopEditor()->table()->loopMaster(), "_atom_site_label");
}

TEST_F(MainWindowLoops, ANewLoopGoesToTheEndOfTheBlockAtTheCursor) {
    open(kDocument);
    cursorTo(2);
    window_->loopNew();
    QcbsLoopTableEditorImpl* dialog = window_->loopEditor();
    ASSERT_NE(dialog, nullptr);
    EXPECT_TRUE(dialog->isNewLoop());
    ASSERT_TRUE(dialog->table()->addCol("_atom_type_symbol"));
    dialog->table()->addRow();
    dialog->table()->updateCell(0, 0, "Fe");
    dialog->accept();
    EXPECT_EQ(bytes(), QByteArray(kDocument).replace("none\n", "none\nloop_\n_atom_type_symbol\nFe\n"));
    EXPECT_EQ(window_->currentCif()->block(0)->value("_atom_type_symbol"), "Fe");
    window_->editUndo();
    EXPECT_EQ(bytes(), kDocument);
}

}  // namespace
