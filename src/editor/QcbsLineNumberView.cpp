// SPDX-License-Identifier: GPL-3.0-or-later
// The line-number margin of an editor: its width follows the line count and the font.
#include "editor/QcbsLineNumberView.hpp"

#include <QFontMetrics>

#include "editor/QcbsRichTextEdit.hpp"

namespace {

int decimalDigits(int n) {
    int digits = 1;
    for (n = n < 0 ? -n : n; n >= 10; n /= 10) ++digits;
    return digits;
}

}  // namespace

QcbsLineNumberView::QcbsLineNumberView(QcbsRichTextEdit* editor)
    : QObject(editor), font_(editor->font()), editor_(editor) {}

int QcbsLineNumberView::widthFor(int lines) const {
    const QFontMetrics metrics(font_);
    return (metrics.horizontalAdvance(QStringLiteral("0123456789")) * decimalDigits(lines)) / 10 + 10;
}

int QcbsLineNumberView::width() const {
    return static_cast<int>(editor_->marginWidth(QcbsRichTextEdit::LineNumberMargin));
}

void QcbsLineNumberView::setNumberOfLines(int lines) {
    if (lines == lines_) return;
    lines_ = lines;
    apply();
}

void QcbsLineNumberView::setFont(const QFont& font) {
    font_ = font;
    editor_->setMarginsFont(font);
    apply();
}

void QcbsLineNumberView::setVisible(bool shown) {
    shown_ = shown;
    apply();
}

void QcbsLineNumberView::apply() {
    editor_->setMarginLineNumbers(QcbsRichTextEdit::LineNumberMargin, shown_);
    editor_->setMarginWidth(QcbsRichTextEdit::LineNumberMargin, shown_ ? widthFor(lines_) : 0);
}
