// SPDX-License-Identifier: GPL-3.0-or-later
// The line-number margin beside the editor: its place, width, numbers and zoom.
#include <gtest/gtest.h>

#include <QScrollBar>
#include <QTest>

#include "GuiTestSupport.hpp"
#include "editor/QcbsFontStyleSettings.hpp"
#include "editor/QcbsLineNumberView.hpp"
#include "editor/QcbsLineNumberedTextEdit.hpp"
#include "editor/QcbsRichTextEdit.hpp"

namespace {

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
    int firstNumber() {
        const auto numbers = margin()->visibleNumbers();
        return numbers.isEmpty() ? -1 : numbers.first().line;
    }
    QcbsLineNumberedTextEdit widget;
};

TEST(QcbsLineNumberedTextEdit, MarginStandsLeftOfTheEditorWithoutAGapUnlessHidden) {
    Shown shown(5);
    EXPECT_EQ(shown.margin()->geometry().left(), 0);
    EXPECT_EQ(shown.margin()->geometry().right() + 1, shown.edit()->geometry().left());
    EXPECT_EQ(shown.edit()->geometry().right() + 1, shown.widget.width());
    EXPECT_EQ(shown.margin()->height(), shown.widget.height());

    Shown without(3, newStyles(), false);
    EXPECT_FALSE(without.margin()->isVisible());
    EXPECT_EQ(without.edit()->geometry().left(), 0);
}

TEST(QcbsLineNumberedTextEdit, MarginGrowsByOneAverageDigitPerDigitOfTheLineCountAndFitsItsFont) {
    Shown shown(99);
    const QFontMetrics metrics(shown.margin()->font());
    const double digit = metrics.horizontalAdvance("0123456789") / 10.0;
    const int width99 = shown.margin()->width();
    EXPECT_NEAR(width99, 2 * digit + 10, 1.0);

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
    // A font set through the widget base class refits it as well.
    static_cast<QWidget*>(shown.margin())->setFont(shown.edit()->font());
    EXPECT_EQ(shown.margin()->width(), width99);
}

TEST(QcbsLineNumberedTextEdit, NumbersStandBesideTheLinesInViewAfterScrollsAndJumps) {
    Shown shown(5000);
    shown.edit()->verticalScrollBar()->setValue(2000);
    const auto numbers = shown.margin()->visibleNumbers();
    ASSERT_FALSE(numbers.isEmpty());
    EXPECT_EQ(numbers.first().line, 2001);
    const int lineHeight = QFontMetrics(shown.edit()->font()).lineSpacing();
    EXPECT_LE(numbers.size(), shown.margin()->height() / lineHeight + 2);
    // Each number shares its line's vertical place and ends near the text.
    const int viewportTop = shown.edit()->viewport()->mapTo(&shown.widget, QPoint(0, 0)).y();
    for (const auto& number : numbers) {
        const QRectF line =
            shown.edit()->paragraphRect(shown.edit()->document()->findBlockByNumber(number.line - 1));
        EXPECT_NEAR(number.rect.top(), viewportTop + line.top(), 1.0) << number.line;
        EXPECT_NEAR(number.rect.height(), line.height(), 1.0) << number.line;
        EXPECT_LE(number.rect.right(), shown.margin()->width());
    }

    shown.edit()->gotoLine(4500, QString(), true);
    // The margin follows the scroll the jump made once the view has settled.
    EXPECT_TRUE(waitUntil([&] {
        return shown.edit()->contentsY() > 2000 && shown.margin()->contentsY() == shown.edit()->contentsY();
    }));
    EXPECT_EQ(shown.firstNumber(), shown.edit()->contentsY() + 1);
    EXPECT_LE(shown.firstNumber(), 4500);
    EXPECT_GE(shown.margin()->visibleNumbers().last().line, 4500);
}

TEST(QcbsLineNumberedTextEdit, HiddenMarginShowsTheLinesInViewWhenShownAgain) {
    Shown shown(800);
    shown.widget.setShowLineNumbers(false);
    EXPECT_FALSE(shown.margin()->isVisible());
    shown.edit()->verticalScrollBar()->setValue(300);
    shown.widget.setShowLineNumbers(true);
    EXPECT_TRUE(shown.margin()->isVisible());
    EXPECT_EQ(shown.margin()->contentsY(), shown.edit()->contentsY());
    EXPECT_EQ(shown.firstNumber(), 301);
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

    // The other editor takes it with its next style update.
    second.widget.styleUpdate();
    EXPECT_EQ(second.edit()->font().pointSize(), size + 1);
    EXPECT_EQ(second.margin()->font(), styles->editorFont());

    styles->saveSettings();
    QcbsFontStyleSettings restarted;
    restarted.loadSettings();
    EXPECT_EQ(restarted.baseFont().pointSize(), size + 1);
}

}  // namespace
