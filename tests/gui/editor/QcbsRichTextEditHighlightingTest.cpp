// The CIF editor's highlighting and loading of whole documents.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTextBlock>
#include <QTextLayout>
#include <functional>

#include "HighlightTestSupport.hpp"
#include "editor/QcbsHighlightScheduler.hpp"
#include "editor/QcbsLineNumberView.hpp"
#include "editor/QcbsLineNumberedTextEdit.hpp"
#include "editor/QcbsRichTextEdit.hpp"
#include "editor/QcbsSyntaxHighlighter_CIF.hpp"

namespace {

bool runUntil(const std::function<bool()>& done, int timeoutMs = 60000) {
    QElapsedTimer clock;
    clock.start();
    while (!done() && clock.elapsed() < timeoutMs) QCoreApplication::processEvents();
    return done();
}

bool settled(const QcbsRichTextEdit& edit) {
    return !edit.isLoading() && edit.highlighter()->scheduler()->isIdle();
}

const char* const kSmall = "data_x\n_cell_length_a 5.1 \n_custom_thing 3 \n# note\n";

TEST(QcbsRichTextEditHighlighting, CifEditorColoursItsTextAndAPlainEditorDoesNot) {
    auto styles = THandle<QcbsFontStyleSettings>(new QcbsFontStyleSettings());
    THandle<CifDictionary> dictionary(new SmallTestDictionary({"_cell_length_a"}));
    QcbsRichTextEdit edit(dictionary, styles);
    ASSERT_NE(edit.highlighter(), nullptr);
    ASSERT_NE(edit.highlighter()->scheduler(), nullptr);
    edit.loadText(kSmall);
    ASSERT_TRUE(runUntil([&] { return settled(edit); }));
    const QTextDocument& document = *edit.document();
    EXPECT_EQ(blockLetters(document.findBlockByNumber(1), *styles).substr(0, 14), "DDDDDDDDDDDDDD");
    EXPECT_EQ(blockLetters(document.findBlockByNumber(2), *styles).substr(0, 13), "UUUUUUUUUUUUU");
    EXPECT_EQ(blockLetters(document.findBlockByNumber(3), *styles), "CCCCCC");

    QcbsRichTextEdit plain;
    EXPECT_EQ(plain.highlighter(), nullptr);
}

TEST(QcbsRichTextEditHighlighting, NewDictionaryRecoloursDataNames) {
    auto styles = THandle<QcbsFontStyleSettings>(new QcbsFontStyleSettings());
    QcbsRichTextEdit edit(THandle<CifDictionary>(), styles);
    edit.loadText(kSmall);
    ASSERT_TRUE(runUntil([&] { return settled(edit); }));
    EXPECT_EQ(blockLetters(edit.document()->findBlockByNumber(2), *styles).substr(0, 13), "UUUUUUUUUUUUU");

    edit.setDictionary(THandle<CifDictionary>(new SmallTestDictionary({"_custom_thing"})));
    ASSERT_TRUE(runUntil([&] { return settled(edit); }));
    EXPECT_EQ(blockLetters(edit.document()->findBlockByNumber(2), *styles).substr(0, 13), "DDDDDDDDDDDDD");
    EXPECT_EQ(blockLetters(edit.document()->findBlockByNumber(1), *styles).substr(0, 14), "UUUUUUUUUUUUUU");
}

TEST(QcbsRichTextEditHighlighting, StyleUpdateRecoloursWithoutTouchingTextOrHistory) {
    auto styles = THandle<QcbsFontStyleSettings>(new QcbsFontStyleSettings());
    QcbsRichTextEdit edit(THandle<CifDictionary>(), styles);
    edit.loadText(kSmall);
    ASSERT_TRUE(runUntil([&] { return settled(edit); }));
    edit.setCursorPosition(0, 6);
    edit.insertPlainText("y");
    edit.reopenErrorHighlighting();
    ASSERT_TRUE(runUntil([&] { return settled(edit); }));

    QcbsFontStyleSettings::SyntaxStyleSettings comment =
        styles->styleSettings(QcbsFontStyleSettings::Comment);
    comment.color = QColor(200, 0, 0);
    styles->setStyleSettings(QcbsFontStyleSettings::Comment, comment);
    edit.styleUpdate();
    ASSERT_TRUE(runUntil([&] { return settled(edit); }));

    const QTextBlock note = edit.document()->findBlockByNumber(3);
    ASSERT_FALSE(note.layout()->formats().isEmpty());
    EXPECT_EQ(note.layout()->formats().first().format.foreground().color(), QColor(200, 0, 0));
    EXPECT_EQ(edit.text(0), "data_xy");
    EXPECT_TRUE(edit.isModified());
    EXPECT_TRUE(edit.document()->isUndoAvailable());
    EXPECT_TRUE(edit.errorHighlightingAllowed());  // re-colouring is no edit
}

TEST(QcbsRichTextEditHighlighting, BigTextArrivesInSlicesWithTheMarginFollowing) {
    auto styles = THandle<QcbsFontStyleSettings>(new QcbsFontStyleSettings());
    QcbsLineNumberedTextEdit widget(THandle<CifDictionary>(), "editor", styles, true);
    widget.resize(500, 300);
    widget.show();
    QcbsRichTextEdit& edit = *widget.editor();
    QSignalSpy loaded(&edit, &QcbsRichTextEdit::textLoaded);
    const QString text = sampleCif(5000);  // 60000 lines

    edit.loadText(text);
    EXPECT_TRUE(edit.isLoading());
    EXPECT_TRUE(edit.isReadOnly());
    EXPECT_LT(edit.paragraphs(), 60001);
    EXPECT_EQ(loaded.count(), 0);
    // The margin is as wide as the whole text needs from the first slice on,
    // so the editor's width does not change while the text comes in.
    EXPECT_EQ(widget.lineNumberView()->numberOfLines(), 60001);
    const int marginWidth = widget.lineNumberView()->width();

    ASSERT_TRUE(runUntil([&] { return settled(edit); }));
    EXPECT_EQ(loaded.count(), 1);
    EXPECT_EQ(edit.toPlainText(), text);
    EXPECT_FALSE(edit.isReadOnly());
    EXPECT_FALSE(edit.isModified());
    EXPECT_EQ(widget.lineNumberView()->numberOfLines(), 60001);
    EXPECT_EQ(widget.lineNumberView()->width(), widget.lineNumberView()->widthFor(60001));
    EXPECT_EQ(widget.lineNumberView()->width(), marginWidth);

    // The owner's check after loading opens error highlighting again.
    EXPECT_FALSE(edit.errorHighlightingAllowed());
    edit.reopenErrorHighlighting();
    edit.setErrorHighlighting(59990, 1, true);
    EXPECT_EQ(edit.errorSelectionParagraph(1), 59989);
    EXPECT_GT(widget.lineNumberView()->contentsY(), 59000);
}

}  // namespace
