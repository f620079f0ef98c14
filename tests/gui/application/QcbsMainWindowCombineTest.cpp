// SPDX-License-Identifier: GPL-3.0-or-later
// Merge Template in a window: the block at the cursor, the preferences template, one undo.
#include <gtest/gtest.h>

#include <QSignalSpy>

#include "ApplicationTestSupport.hpp"
#include "GuiTestSupport.hpp"
#include "document/QcbsCifDocument.hpp"
#include "editor/QcbsRichTextEdit.hpp"
#include "views/QcbsCombineDialog.hpp"
#include "views/QcbsCombineModel.hpp"

namespace {

const QByteArray kDocument =
    "# made by hand\n"                      // 1
    "data_first\n"                          // 2
    "_cell_length_a   5.0(1)\n"             // 3
    "_diffrn_radiation_type ?\n"            // 4
    "\n"                                    // 5
    "# leads into the second block\n"       // 6
    "data_second\n"                         // 7
    "_diffrn_radiation_type   ?\n"          // 8
    "_exptl_crystal_colour   'pale red'\n"  // 9
    "loop_\n_atom_type_symbol\nC\nH\n";     // 10-13

const QByteArray kTemplate =
    "data_lab\n"
    "_diffrn_radiation_type 'Mo K\\a'\n"
    "_exptl_crystal_colour colourless\n"
    "loop_\n_diffrn_standard_refln_index_h\n_diffrn_standard_refln_index_k\n1 0\n0 1\n";

class MainWindowCombine : public ::testing::Test, protected TestDictionaryWindow {
protected:
    QByteArray bytes() const { return window_->document()->fileBytes(); }
    void cursorTo(int line) { window_->currentEditor()->setCursorPosition(line - 1, 0); }
    QcbsCombineDialog* openDialog() {
        windowAction(*window_, QcbsMainWindowActions::Combine)->trigger();
        QcbsCombineDialog* dialog = nullptr;
        waitUntil([&] { return (dialog = window_->findChild<QcbsCombineDialog*>()) && dialog->isVisible(); });
        return dialog;
    }
};

TEST_F(MainWindowCombine, TheChosenRowsGoIntoTheBlockAtTheCursorAsOneUndoStep) {
    const QString lab = writeBytes(files_.filePath("lab.cif"), kTemplate);
    changeOptions(*window_, [&](QcbsOptions& options) { options.template_file = lab; });
    openText(kDocument, "combine.cif");
    cursorTo(9);
    QcbsCombineDialog* dialog = openDialog();
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(dialog->templateFile(), lab) << "the preferences' template comes first";
    // The radiation fills a ?, the loop is new: both proposed; the colour is known and stays.
    ASSERT_EQ(dialog->model()->rowCount(), 3);
    EXPECT_EQ(dialog->model()->chosen(), (std::vector<std::size_t>{0, 2}));
    QSignalSpy checked(window_->document(), &QcbsCifDocument::checked);
    dialog->accept();

    QByteArray expected = kDocument;
    expected.replace("_diffrn_radiation_type   ?", "_diffrn_radiation_type   'Mo K\\a'");
    expected.replace(
        "C\nH\n", "C\nH\nloop_\n_diffrn_standard_refln_index_h\n_diffrn_standard_refln_index_k\n1 0\n0 1\n");
    EXPECT_EQ(bytes().toStdString(), expected.toStdString());
    ASSERT_TRUE(checked.count() > 0 || checked.wait(10000));
    EXPECT_EQ(window_->currentCif()->block(1)->value("_diffrn_radiation_type"), "Mo K\\a");
    window_->editUndo();
    EXPECT_EQ(bytes(), kDocument);
}

TEST_F(MainWindowCombine, WithoutABlockAtTheCursorTheWindowSaysSoAndOpensNothing) {
    openText(kDocument, "combine.cif");
    cursorTo(1);
    windowAction(*window_, QcbsMainWindowActions::Combine)->trigger();
    EXPECT_TRUE(statusMessage(*window_).startsWith("No data block at the cursor"))
        << statusMessage(*window_).toStdString();
    EXPECT_EQ(window_->findChild<QcbsCombineDialog*>(), nullptr);
    EXPECT_EQ(bytes(), kDocument);
}

}  // namespace
