// SPDX-License-Identifier: GPL-3.0-or-later
// The loop table editor dialog: what OK and Cancel hand out, commands waiting for the cell editor.
#include <gtest/gtest.h>

#include <QAction>
#include <QLineEdit>
#include <QSignalSpy>
#include <QUndoStack>

#include "GuiTestSupport.hpp"
#include "views/QcbsLoopTable.hpp"
#include "views/QcbsLoopTableEditorImpl.hpp"
#include "views/ViewsTestSupport.hpp"

namespace {

using views_test::checked;

const std::string kAtoms =
    "data_test\n"
    "loop_\n"
    "_atom_site_label\n"
    "_atom_site_fract_x\n"
    "C1 0.1\n"
    "C2 0.2\n";

class LoopTableEditor : public ::testing::Test {
protected:
    LoopTableEditor() : cif_(checked(kAtoms)) {}

    ScopedPrefsDir prefs_;
    THandle<Cif> cif_;
};

TEST_F(LoopTableEditor, OkHandsOutTheEditedLoopUnderTheNameTheDocumentKnowsItBy) {
    QcbsLoopTableEditorImpl dialog;
    ASSERT_TRUE(dialog.editLoop("_atom_site_fract_x", cif_->block(0)));
    EXPECT_EQ(dialog.blockName(), "test");
    QSignalSpy edited(&dialog, &QcbsLoopTableEditorImpl::loopEdited);
    // The first column moves: the document still finds the loop by its old first name.
    dialog.table()->swapColumns(0, 1);
    dialog.table()->updateCell(0, 1, "N1");
    dialog.accept();
    ASSERT_EQ(edited.count(), 1);
    EXPECT_EQ(edited.front()[0].toString(), "test");
    EXPECT_EQ(edited.front()[1].toString(), "_atom_site_label");
    EXPECT_EQ(edited.front()[2].toString(), "loop_\n_atom_site_fract_x\n_atom_site_label\n0.1 N1\n0.2 C2\n");
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
}

TEST_F(LoopTableEditor, CancelOrAnUnchangedLoopHandsOutNothing) {
    const struct {
        const char* what;
        std::function<void(QcbsLoopTableEditorImpl&)> finish;
    } cases[] = {
        {"cancel after an edit",
         [](QcbsLoopTableEditorImpl& d) {
             d.table()->addRow();
             d.reject();
         }},
        {"ok without an edit", [](QcbsLoopTableEditorImpl& d) { d.accept(); }},
        {"ok after an edit undone",
         [](QcbsLoopTableEditorImpl& d) {
             d.table()->addRow();
             d.command("Undo")->trigger();
             d.accept();
         }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        QcbsLoopTableEditorImpl dialog;
        ASSERT_TRUE(dialog.editLoop("_atom_site_label", cif_->block(0)));
        QSignalSpy edited(&dialog, &QcbsLoopTableEditorImpl::loopEdited);
        c.finish(dialog);
        EXPECT_EQ(edited.count(), 0);
    }
}

TEST_F(LoopTableEditor, CommandsWaitWhileACellIsBeingTypedAndOkKeepsWhatWasTyped) {
    QcbsLoopTableEditorImpl dialog;
    ASSERT_TRUE(dialog.editLoop("_atom_site_label", cif_->block(0)));
    dialog.show();
    QAction* addRow = dialog.command("Add Row");
    ASSERT_NE(addRow, nullptr);
    QcbsLoopTable* table = dialog.table();
    table->setCurrentIndex(table->model()->index(1, 1));
    table->edit(table->currentIndex());
    auto* commands = dialog.findChild<QWidget*>("commands");
    ASSERT_NE(commands, nullptr);
    EXPECT_TRUE(waitUntil([&] { return !commands->isEnabled(); }));
    auto* editor = table->viewport()->findChild<QLineEdit*>();
    ASSERT_NE(editor, nullptr);
    editor->setText("0.25");
    QSignalSpy edited(&dialog, &QcbsLoopTableEditorImpl::loopEdited);
    dialog.accept();
    ASSERT_EQ(edited.count(), 1);
    EXPECT_TRUE(edited.front()[2].toString().contains("C2 0.25"))
        << edited.front()[2].toString().toStdString();
    EXPECT_TRUE(waitUntil([&] { return commands->isEnabled(); }));
}

TEST_F(LoopTableEditor, AddColumnOffersTheCategorysNamesTheLoopLacks) {
    QcbsLoopTableEditorImpl dialog;
    ASSERT_TRUE(dialog.editLoop("_atom_site_label", cif_->block(0)));
    const QStringList choices = dialog.columnChoices();
    EXPECT_TRUE(choices.contains("_atom_site_occupancy"));
    EXPECT_TRUE(choices.contains("_atom_site_fract_y"));
    EXPECT_FALSE(choices.contains("_atom_site_label"));
    EXPECT_FALSE(choices.contains("_atom_site_fract_x"));
    EXPECT_FALSE(choices.contains("_cell_length_a"));
    // An empty loop may start from any category.
    dialog.newLoop(views_test::testDictionary(), "test");
    EXPECT_TRUE(dialog.columnChoices().contains("_cell_length_a"));
    EXPECT_TRUE(dialog.columnChoices().contains("_atom_site_label"));
}

TEST_F(LoopTableEditor, ANewLoopIsHandedOutForItsBlockOnceItHasAColumn) {
    QcbsLoopTableEditorImpl dialog;
    dialog.newLoop(views_test::testDictionary(), "test");
    QSignalSpy added(&dialog, &QcbsLoopTableEditorImpl::loopAdded);
    ASSERT_TRUE(dialog.table()->addCol("_atom_type_symbol"));
    dialog.table()->addRow();
    dialog.table()->updateCell(0, 0, "Fe");
    dialog.accept();
    ASSERT_EQ(added.count(), 1);
    EXPECT_EQ(added.front()[0].toString(), "test");
    EXPECT_EQ(added.front()[1].toString(), "loop_\n_atom_type_symbol\nFe\n");
}

TEST_F(LoopTableEditor, TheDialogOpensAtTheSizeItWasLeftAt) {
    {
        QcbsLoopTableEditorImpl dialog;
        dialog.resize(900, 640);
        dialog.reject();
    }
    QcbsLoopTableEditorImpl again;
    EXPECT_EQ(again.size(), QSize(900, 640));
}

TEST_F(LoopTableEditor, GoToLineAsksForTheRowsLineInTheDocument) {
    QcbsLoopTableEditorImpl dialog;
    ASSERT_TRUE(dialog.editLoop("_atom_site_label", cif_->block(0)));
    QSignalSpy lines(&dialog, &QcbsLoopTableEditorImpl::goToLineRequest);
    dialog.table()->setCurrentIndex(dialog.table()->model()->index(1, 0));
    dialog.command("Go to Line")->trigger();
    ASSERT_EQ(lines.count(), 1);
    EXPECT_EQ(lines.front().front().toInt(), 6);
}

}  // namespace
