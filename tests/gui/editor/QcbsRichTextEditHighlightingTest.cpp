// SPDX-License-Identifier: GPL-3.0-or-later
// The CIF editor's highlighting and loading of whole documents.
#include <gtest/gtest.h>

#include <QScrollBar>
#include <QSignalSpy>

#include "HighlightTestSupport.hpp"
#include "editor/QcbsHighlightScheduler.hpp"
#include "editor/QcbsLineNumberView.hpp"
#include "editor/QcbsLineNumberedTextEdit.hpp"
#include "editor/QcbsRichTextEdit.hpp"
#include "editor/QcbsSyntaxHighlighter_CIF.hpp"

namespace {

class EditorHighlighting : public ::testing::Test {
protected:
    bool settle() {
        return runUntil([this] { return !edit.isLoading() && edit.highlighter()->scheduler()->isIdle(); });
    }
    std::string line(int number, int length) const {
        return blockLetters(edit.document()->findBlockByNumber(number), *styles).substr(0, length);
    }

    THandle<QcbsFontStyleSettings> styles{new QcbsFontStyleSettings()};
    QcbsRichTextEdit edit{THandle<CifDictionary>(new SmallTestDictionary({"_cell_length_a"})), styles};
};

TEST_F(EditorHighlighting, NewDictionariesAndStylesRecolourWithoutTouchingTextOrHistory) {
    edit.loadText("data_x\n_cell_length_a 5.1 \n_custom_thing 3 \n# note\n");
    ASSERT_TRUE(settle());
    EXPECT_EQ(line(1, 14), "DDDDDDDDDDDDDD");
    EXPECT_EQ(line(2, 13), "UUUUUUUUUUUUU");
    EXPECT_EQ(line(3, 6), "CCCCCC");
    edit.setCursorPosition(0, 6);
    edit.insertPlainText("y");
    edit.reopenErrorHighlighting();

    edit.setDictionary(THandle<CifDictionary>(new SmallTestDictionary({"_custom_thing"})));
    ASSERT_TRUE(settle());
    EXPECT_EQ(line(1, 14), "UUUUUUUUUUUUUU");
    EXPECT_EQ(line(2, 13), "DDDDDDDDDDDDD");
    QcbsFontStyleSettings::SyntaxStyleSettings comment =
        styles->styleSettings(QcbsFontStyleSettings::Comment);
    comment.color = QColor(200, 0, 0);
    styles->setStyleSettings(QcbsFontStyleSettings::Comment, comment);
    edit.styleUpdate();
    ASSERT_TRUE(settle());
    const QTextBlock note = edit.document()->findBlockByNumber(3);
    ASSERT_FALSE(note.layout()->formats().isEmpty());
    EXPECT_EQ(note.layout()->formats().first().format.foreground().color(), QColor(200, 0, 0));
    EXPECT_EQ(edit.text(0), "data_xy");
    EXPECT_TRUE(edit.isModified());
    EXPECT_TRUE(edit.document()->isUndoAvailable());
    EXPECT_TRUE(edit.errorHighlightingAllowed());  // re-colouring is no edit

    QcbsRichTextEdit plain;
    EXPECT_EQ(plain.highlighter(), nullptr);
}

TEST(QcbsRichTextEditHighlighting, BigTextArrivesInSlicesHighlightedAsIfSetAtOnceWithTheMarginFollowing) {
    auto styles = THandle<QcbsFontStyleSettings>(new QcbsFontStyleSettings());
    QcbsLineNumberedTextEdit widget(THandle<CifDictionary>(), "editor", styles, true);
    widget.resize(500, 300);
    widget.show();
    QcbsRichTextEdit& edit = *widget.editor();
    QcbsLineNumberView& margin = *widget.lineNumberView();
    QSignalSpy loaded(&edit, &QcbsRichTextEdit::textLoaded);
    const QString text = sampleCif(5000);  // 60000 lines

    edit.loadText(text);
    EXPECT_TRUE(edit.isLoading());
    EXPECT_TRUE(edit.isReadOnly());
    EXPECT_GT(edit.paragraphs(), 100);  // the first screen at once, the rest to come
    EXPECT_LT(edit.paragraphs(), 60001);
    EXPECT_EQ(loaded.count(), 0);
    // The margin is as wide as the whole text needs from the first slice on,
    // so the editor's width does not change while the text comes in.
    EXPECT_EQ(margin.numberOfLines(), 60001);
    const int marginWidth = margin.width();

    ASSERT_TRUE(runUntil([&] { return !edit.isLoading() && edit.highlighter()->scheduler()->isIdle(); }));
    EXPECT_EQ(loaded.count(), 1);
    EXPECT_EQ(edit.toPlainText(), text);
    EXPECT_FALSE(edit.isReadOnly());
    EXPECT_FALSE(edit.isModified());
    EXPECT_FALSE(edit.document()->isUndoAvailable());
    // As after setPlainText, the cursor and the view are at the start.
    EXPECT_EQ(edit.textCursor().position(), 0);
    EXPECT_EQ(edit.verticalScrollBar()->value(), 0);
    EXPECT_TRUE(sameHighlighting(documentLetters(*edit.document(), *styles, Blanks::Ignored),
                                 highlightedAtOnce(text, styles, THandle<CifDictionary>(), Blanks::Ignored)));
    EXPECT_EQ(margin.numberOfLines(), 60001);
    EXPECT_EQ(margin.width(), margin.widthFor(60001));
    EXPECT_EQ(margin.width(), marginWidth);

    // The owner's check after loading opens error highlighting again.
    EXPECT_FALSE(edit.errorHighlightingAllowed());
    edit.reopenErrorHighlighting();
    edit.setErrorHighlighting(59990, 1, true);
    EXPECT_EQ(edit.errorSelectionParagraph(1), 59989);
    EXPECT_GT(margin.contentsY(), 59000);
}

}  // namespace
