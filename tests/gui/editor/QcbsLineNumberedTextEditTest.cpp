// SPDX-License-Identifier: GPL-3.0-or-later
// The line-number margin beside the editor: its width, hiding it, zoom as the shared font.
#include <gtest/gtest.h>

#include <QTest>

#include "GuiTestSupport.hpp"
#include "editor/QcbsFontStyleSettings.hpp"
#include "editor/QcbsLineNumberView.hpp"
#include "editor/QcbsLineNumberedTextEdit.hpp"
#include "editor/QcbsRichTextEdit.hpp"

namespace {

using Sci = QsciScintillaBase;

THandle<QcbsFontStyleSettings> newStyles() {
    return THandle<QcbsFontStyleSettings>(new QcbsFontStyleSettings());
}

// A shown editor with its margin, holding `lines` lines.
struct Shown {
    explicit Shown(int lines, THandle<QcbsFontStyleSettings> styles = newStyles(), bool numbers = true)
        : widget(THandle<CifDictionary>(), "editor", styles, numbers) {
        widget.resize(420, 300);
        QStringList text;
        for (int i = 1; i <= lines; ++i) text << QString("_line_%1 value").arg(i);
        widget.editor()->setPlainText(text.join(u'\n'));
        widget.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&widget));
    }
    QcbsRichTextEdit* edit() { return widget.editor(); }
    QcbsLineNumberView* margin() { return widget.lineNumberView(); }
    QcbsLineNumberedTextEdit widget;
};

TEST(QcbsLineNumberedTextEdit, TheMarginGrowsByOneAverageDigitPerDigitOfTheLineCountAndFitsItsFont) {
    Shown shown(99);
    const QFontMetrics metrics(shown.margin()->font());
    const double digit = metrics.horizontalAdvance("0123456789") / 10.0;
    const int width99 = shown.margin()->width();
    EXPECT_NEAR(width99, 2 * digit + 10, 1.0);
    EXPECT_EQ(shown.edit()->SendScintilla(Sci::SCI_GETMARGINTYPEN, QcbsRichTextEdit::LineNumberMargin),
              Sci::SC_MARGIN_NUMBER);

    shown.edit()->setCursorPosition(98, 100);
    QTest::keyClick(shown.edit(), Qt::Key_Return);
    ASSERT_EQ(shown.edit()->paragraphs(), 100);
    EXPECT_NEAR(shown.margin()->width() - width99, digit, 1.0);
    QTest::keyClick(shown.edit(), Qt::Key_Backspace);
    EXPECT_EQ(shown.margin()->width(), width99);

    QFont bigger = shown.margin()->font();
    bigger.setPointSize(bigger.pointSize() * 2);
    shown.margin()->setFont(bigger);
    EXPECT_GT(shown.margin()->width(), width99);
    EXPECT_EQ(shown.margin()->width(), shown.margin()->widthFor(99));
}

TEST(QcbsLineNumberedTextEdit, AHiddenMarginTakesNoRoomAndComesBackAtItsWidth) {
    Shown without(300, newStyles(), false);
    EXPECT_FALSE(without.margin()->isVisible());
    EXPECT_EQ(without.margin()->width(), 0);
    without.widget.setShowLineNumbers(true);
    EXPECT_EQ(without.margin()->width(), without.margin()->widthFor(300));
    without.widget.setShowLineNumbers(false);
    EXPECT_EQ(without.margin()->width(), 0);
    // The error marks have a margin of their own, which stays.
    EXPECT_GT(without.edit()->marginWidth(QcbsRichTextEdit::ErrorMargin), 0);
}

TEST(QcbsLineNumberedTextEdit, ZoomBecomesTheSharedBaseFontAndSurvivesARestart) {
    ScopedPrefsDir prefs;
    auto styles = newStyles();
    Shown first(10, styles);
    Shown second(10, styles);
    const int size = first.edit()->font().pointSize();

    first.widget.zoomIn();
    first.widget.zoomIn();
    first.widget.zoomOut();
    EXPECT_EQ(first.edit()->font().pointSize(), size + 1);
    EXPECT_EQ(styles->baseFont().pointSize(), size + 1);
    EXPECT_EQ(styles->baseFont().family(), first.edit()->font().family());
    EXPECT_EQ(first.margin()->font(), styles->editorFont());
    EXPECT_EQ(first.edit()->SendScintilla(Sci::SCI_STYLEGETSIZE, QcbsFontStyleSettings::Standard), size + 1);

    // Scintilla's own zoom (Ctrl and the wheel) ends as a base font too.
    first.edit()->SendScintilla(Sci::SCI_ZOOMIN);
    EXPECT_EQ(styles->baseFont().pointSize(), size + 2);
    EXPECT_EQ(first.edit()->SendScintilla(Sci::SCI_GETZOOM), 0);

    // The other editor takes it with its next style update.
    second.widget.styleUpdate();
    EXPECT_EQ(second.edit()->font().pointSize(), size + 2);
    EXPECT_EQ(second.margin()->font(), styles->editorFont());

    styles->saveSettings();
    QcbsFontStyleSettings restarted;
    restarted.loadSettings();
    EXPECT_EQ(restarted.baseFont().pointSize(), size + 2);
}

}  // namespace
