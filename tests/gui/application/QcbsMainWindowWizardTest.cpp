// SPDX-License-Identifier: GPL-3.0-or-later
// The crystal wizard opened from a main window: on the block at the cursor, one undo step.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QLineEdit>
#include <QPointer>
#include <QSignalSpy>
#include <QTemporaryDir>

#include "ApplicationTestSupport.hpp"
#include "GuiTestSupport.hpp"
#include "editor/QcbsRichTextEdit.hpp"
#include "wizards/QcbsWizard.hpp"
#include "wizards/QcbsWizardChemicalPage.hpp"

namespace {

// Two crystal blocks around a block that describes no crystal; comments
// and layout that only a change of the middle block may touch.
const QByteArray kThreeBlocks =
    "# keep this header\n"                   // 1
    "data_first\n"                           // 2
    "_cell_length_a   5.0   # first cell\n"  // 3
    "\n"                                     // 4
    "data_notes\n"                           // 5
    "_publ_author_name 'A. Author'\n"        // 6
    "\n"                                     // 7
    "data_second\n"                          // 8
    "_chemical_name_common    salt\n"        // 9
    "_chemical_formula_sum    'Na Cl'\n"     // 10
    "loop_\n_atom_site_label\nNa1\nCl1\n"    // 11-14
    "# the end\n";                           // 15

class MainWindowWizard : public ::testing::Test, protected WizardWindow {
protected:
    void open(const QByteArray& text) { openText(text, "wizard.cif"); }
    QcbsWizard* launchAt(int line) { return launch(&QcbsMainWindow::crystalWizard, line); }
};

TEST_F(MainWindowWizard, FinishReplacesOnlyTheBlockAtTheCursorAsOneUndoStep) {
    open(kThreeBlocks);
    QPointer<QcbsWizard> wizard = launchAt(12);
    ASSERT_NE(wizard, nullptr);
    EXPECT_TRUE(wizard->isModal());
    EXPECT_EQ(wizard->workingBlock()->name(), "second");
    for (int id : wizard->pageIds())
        if (auto* chemical = qobject_cast<QcbsWizardChemicalPage*>(wizard->page(id))) {
            while (wizard->currentPage() != chemical) wizard->button(QWizard::NextButton)->click();
            chemical->lineEdit("_chemical_name_common")->setText("rock salt");
        }
    finish(wizard);
    ASSERT_TRUE(waitUntil([&] { return wizard.isNull(); })) << "the wizard deletes itself";

    const QString edited = text();
    const QString before = QString::fromUtf8(kThreeBlocks);
    const qsizetype start = before.indexOf("data_second");
    EXPECT_EQ(edited.left(start), before.left(start)) << "the text before the block is untouched";
    EXPECT_TRUE(edited.mid(start).startsWith("data_second\n")) << edited.toStdString();
    EXPECT_TRUE(edited.contains(QRegularExpression("_chemical_name_common\\s+'rock salt'\n")))
        << edited.toStdString();
    EXPECT_TRUE(edited.contains("_chemical_formula_weight")) << "derived from the formula";
    EXPECT_TRUE(edited.contains("Cl1")) << "the loop stays";
    // Checked again, and one undo step takes it all back.
    EXPECT_EQ(window_->currentCif()->block(2)->value("_chemical_name_common"), "rock salt");
    window_->editUndo();
    EXPECT_EQ(text().toUtf8(), kThreeBlocks);
}

TEST_F(MainWindowWizard, OnlyABlockWithCrystalDataOpensItAndCancelLeavesTheText) {
    open(kThreeBlocks);
    EXPECT_EQ(launchAt(6), nullptr);
    EXPECT_TRUE(statusMessage(*window_).contains("chemical, atom_site or cell"))
        << statusMessage(*window_).toStdString();
    EXPECT_FALSE(statusMessage(*window_).endsWith(" is not available yet."));

    QPointer<QcbsWizard> wizard = launchAt(1);  // above every block: the first block
    ASSERT_NE(wizard, nullptr);
    EXPECT_EQ(wizard->workingBlock()->name(), "first");
    // While it is open, asking again shows the same wizard.
    window_->crystalWizard();
    EXPECT_EQ(window_->openWizard(), wizard.data());
    wizard->button(QWizard::NextButton)->click();
    wizard->button(QWizard::CancelButton)->click();
    ASSERT_TRUE(waitUntil([&] { return wizard.isNull(); }));
    EXPECT_EQ(text().toUtf8(), kThreeBlocks);
    EXPECT_FALSE(window_->document()->isModified());
}

TEST_F(MainWindowWizard, TheWizardSeesTheTextAsItStandsNotTheLastCheck) {
    open(kThreeBlocks);
    // Typed after the check: a syntax error the wizard must report.
    window_->currentEditor()->setCursorPosition(9, 0);
    typeLines(window_->currentEditor(), {"_chemical_melting_point 'open"});
    QPointer<QcbsWizard> wizard = launchAt(10);
    ASSERT_NE(wizard, nullptr);
    wizard->button(QWizard::NextButton)->click();
    EXPECT_FALSE(wizard->button(QWizard::NextButton)->isEnabled()) << "errors stop the wizard";
    wizard->button(QWizard::CancelButton)->click();
    ASSERT_TRUE(waitUntil([&] { return wizard.isNull(); }));
}

TEST_F(MainWindowWizard, ALargeDocumentOpensTheWizardWhenItsCheckComesBack) {
    QByteArray big = "data_big\n_cell_length_a 5\nloop_\n_refln_index_h\n_refln_index_k\n";
    for (int i = 0; big.size() <= QcbsCifDocument::WorkerThreshold + 1000; ++i)
        big += QByteArray::number(i % 50) + " " + QByteArray::number(i / 50) + "\n";
    open(big);
    ASSERT_TRUE(window_->document()->isLarge());
    ASSERT_TRUE(waitUntil([&] { return !window_->document()->isCheckRunning(); }));
    window_->currentEditor()->setCursorPosition(1, 0);
    typeLines(window_->currentEditor(), {"_cell_length_b 6"});  // the last check no longer fits
    window_->crystalWizard();
    ASSERT_TRUE(waitUntil([&] { return window_->openWizard() != nullptr; }));
    QPointer<QcbsWizard> wizard = window_->openWizard();
    EXPECT_EQ(wizard->workingBlock()->value("_cell_length_b"), "6") << "the wizard sees the typed line";
    wizard->button(QWizard::CancelButton)->click();
    ASSERT_TRUE(waitUntil([&] { return wizard.isNull(); }));
}

}  // namespace
