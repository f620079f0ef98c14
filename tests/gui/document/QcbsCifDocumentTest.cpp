// SPDX-License-Identifier: GPL-3.0-or-later
// The document of a window: the edits views and wizards ask for land as one
// undo step each, change only their own bytes and are checked at once; jumps
// land on the right line in the middle of the view.
#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTextBlock>
#include <functional>

#include "GuiTestSupport.hpp"
#include "document/QcbsCifDocument.hpp"
#include "editor/QcbsRichTextEdit.hpp"

namespace {

const QByteArray kTwoBlocks =
    "data_first\r\n"
    "_cell_length_a 5.1\r\n"
    "_title 'old'\r\n"
    "loop_\r\n"
    "_atom_site_label\r\n"
    "_atom_site_fract_x\r\n"
    "C1 0.1\r\n"
    "C2 0.2\r\n"
    "\r\n"
    "data_second\r\n"
    "_cell_length_a 7.2\r\n";

class CifDocument : public ::testing::Test {
protected:
    CifDocument() {
        editor.resize(600, 200);
        QSignalSpy loaded(&editor, &QcbsRichTextEdit::textLoaded);
        document.load("/data/two.cif", kTwoBlocks);
        EXPECT_TRUE(loaded.count() == 1 || loaded.wait(5000));
    }
    QcbsRichTextEdit editor{THandle<CifDictionary>(),
                            THandle<QcbsFontStyleSettings>(new QcbsFontStyleSettings())};
    QcbsCifDocument document{&editor};
};

TEST_F(CifDocument, EachEditChangesOnlyItsOwnBytesIsOneUndoStepAndIsCheckedAtOnce) {
    using Edit = std::function<bool(QcbsCifDocument&)>;
    const struct {
        const char* what;
        Edit edit;
        QByteArray expected;
    } cases[] = {
        {"a value given quotes by the printer",
         [](QcbsCifDocument& d) { return d.setItemValue("first", "_title", "_title 'a new title'"); },
         QByteArray(kTwoBlocks).replace("_title 'old'", "_title 'a new title'")},
        {"an item the block lacks",
         [](QcbsCifDocument& d) { return d.setItemValue("second", "_cell_volume", "_cell_volume 100\n"); },
         kTwoBlocks + "_cell_volume 100\r\n"},
        {"a loop",
         [](QcbsCifDocument& d) {
             return d.replaceLoop("first", "_atom_site_label", "loop_\n_atom_site_label\nC9\n");
         },
         QByteArray(kTwoBlocks).replace("_atom_site_fract_x\r\nC1 0.1\r\nC2 0.2", "C9")},
        {"a new loop", [](QcbsCifDocument& d) { return d.addLoop("first", "loop_\n_a\n1\n"); },
         QByteArray(kTwoBlocks).replace("C2 0.2\r\n", "C2 0.2\r\nloop_\r\n_a\r\n1\r\n")},
        {"a block", [](QcbsCifDocument& d) { return d.replaceBlock("second", "data_second\n_x 1\n"); },
         QByteArray(kTwoBlocks).replace("_cell_length_a 7.2", "_x 1")},
        {"a new block before the first",
         [](QcbsCifDocument& d) { return d.addBlock("data_new\n_y 2\n", "first"); },
         "data_new\r\n_y 2\r\n\r\n" + kTwoBlocks},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        QSignalSpy checks(&document, &QcbsCifDocument::checked);
        ASSERT_TRUE(c.edit(document));
        EXPECT_EQ(document.fileBytes(), c.expected);
        EXPECT_TRUE(document.isModified());
        ASSERT_EQ(checks.count(), 1);
        EXPECT_TRUE(document.lastCheck()->errors()->empty());
        editor.undo();
        EXPECT_EQ(document.fileBytes(), kTwoBlocks);
        EXPECT_FALSE(document.isModified());
    }
    // What is not there is not invented.
    EXPECT_FALSE(document.setItemValue("third", "_a", "_a 1"));
    EXPECT_FALSE(document.replaceLoop("first", "_no_such_column", "loop_\n_x\n1\n"));
    EXPECT_FALSE(document.setItemValue("first", "_atom_site_label", "_atom_site_label X"));
    EXPECT_EQ(document.fileBytes(), kTwoBlocks);
}

TEST_F(CifDocument, TheCheckReadsTheBytesASaveWouldWrite) {
    EXPECT_EQ(document.lineEnd(), "\r\n");
    const THandle<Cif> cif = document.check();
    ASSERT_EQ(cif->block_count(), 2u);
    EXPECT_EQ(cif->block(1)->value("_cell_length_a"), "7.2");
    EXPECT_EQ(cif->line_count(), 11);
}

TEST_F(CifDocument, JumpsLandOnTheNamedItemOfTheRightBlockInTheMiddleOfTheView) {
    // Enough lines that the view must scroll.
    QByteArray many = kTwoBlocks;
    for (int i = 0; i < 200; ++i) many += "_filler_" + QByteArray::number(i) + " 1\r\n";
    many += "data_third\r\n_cell_length_a 9\r\n";
    QSignalSpy loaded(&editor, &QcbsRichTextEdit::textLoaded);
    document.load("/data/many.cif", many);
    ASSERT_TRUE(loaded.count() == 1 || loaded.wait(5000));
    editor.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&editor));

    const auto cursorLine = [this] { return editor.textCursor().blockNumber() + 1; };
    ASSERT_TRUE(document.goToItem("_cell_length_a", 212));  // from the third block's heading
    EXPECT_EQ(cursorLine(), 213);
    EXPECT_EQ(editor.textCursor().positionInBlock(), 0);
    // In the middle of the view, not at its edge.
    EXPECT_TRUE(waitUntil([this] { return editor.firstVisibleParagraph().blockNumber() + 1 < 213 - 2; }));
    ASSERT_TRUE(document.goToItem("_CELL_LENGTH_A", 10));
    EXPECT_EQ(cursorLine(), 11);
    ASSERT_TRUE(document.goToItem("_atom_site", 1));  // a category: its first item
    EXPECT_EQ(cursorLine(), 5);
    ASSERT_TRUE(document.goToBlock("third"));
    EXPECT_EQ(cursorLine(), 212);
    EXPECT_FALSE(document.goToBlock("fourth"));
    EXPECT_FALSE(document.goToItem("_absent", 1));
    EXPECT_EQ(document.firstLineOf("_CELL_length_a"), 2);
}

}  // namespace
