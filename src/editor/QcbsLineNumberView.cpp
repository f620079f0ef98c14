// SPDX-License-Identifier: GPL-3.0-or-later
// The line-number margin left of an editor.
#include "editor/QcbsLineNumberView.hpp"

#include <QPainter>
#include <QTextBlock>

#include "editor/QcbsRichTextEdit.hpp"

namespace {

const QColor kMarginBackground(236, 236, 236);
const QColor kMarginEdge(200, 200, 200);
const QColor kNumberColour(120, 120, 120);
const int kRightPadding = 4;  // between the numbers and the text

int decimalDigits(int n) {
    int digits = 1;
    for (n = n < 0 ? -n : n; n >= 10; n /= 10) ++digits;
    return digits;
}

}  // namespace

QcbsLineNumberView::QcbsLineNumberView(QWidget* parent, QcbsRichTextEdit* editor, const char* name)
    : QFrame(parent), editor_(editor) {
    if (name != nullptr) setObjectName(QString::fromUtf8(name));
    setFrameStyle(QFrame::NoFrame);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
}

int QcbsLineNumberView::widthFor(int lines) const {
    return (fontMetrics().horizontalAdvance(QStringLiteral("0123456789")) * decimalDigits(lines)) / 10 + 10;
}

void QcbsLineNumberView::setNumberOfLines(int lines) {
    if (lines == lines_) return;
    lines_ = lines;
    const int width = widthFor(lines);
    setMinimumWidth(width);
    setMaximumWidth(width);
    update();
}

void QcbsLineNumberView::setFont(const QFont& font) { QFrame::setFont(font); }

// However the font changes (setFont() here or through the base class, or
// from the parent), the width is fitted to it.
void QcbsLineNumberView::changeEvent(QEvent* event) {
    QFrame::changeEvent(event);
    if (event->type() != QEvent::FontChange) return;
    const int lines = lines_;
    lines_ = 0;
    setNumberOfLines(lines);
}

void QcbsLineNumberView::setContentsPos(int x, int y) {
    if (y != y_) update();
    x_ = x;
    y_ = y;
}

void QcbsLineNumberView::paintEvent(QPaintEvent* event) {
    QFrame::paintEvent(event);
    QPainter painter(this);
    painter.fillRect(contentsRect(), kMarginBackground);
    painter.setPen(kMarginEdge);
    painter.drawLine(width() - 1, 0, width() - 1, height());
    drawContents(&painter);
}

QList<QcbsLineNumberView::LineNumber> QcbsLineNumberView::visibleNumbers() const {
    QList<LineNumber> numbers;
    if (editor_ == nullptr) return numbers;
    const QRect area = contentsRect();
    // Paragraph rectangles are in the editor's viewport; find where that
    // viewport's top lies in this margin.
    const int offset = mapFromGlobal(editor_->viewport()->mapToGlobal(QPoint(0, 0))).y();
    // Start at the editor's own first line in view (which y_ follows), so a
    // position that is out of date can never send the loop through lines
    // far above the view.
    for (QTextBlock block = editor_->firstVisibleParagraph(); block.isValid() && block.blockNumber() < lines_;
         block = block.next()) {
        const QRectF rect = editor_->paragraphRect(block);
        const int top = offset + qRound(rect.top());
        if (top > area.bottom()) break;
        const int height = qRound(rect.height());
        if (top + height <= area.top() || !block.isVisible()) continue;
        numbers.append(
            {block.blockNumber() + 1, QRect(area.left(), top, area.width() - kRightPadding, height)});
    }
    return numbers;
}

void QcbsLineNumberView::drawContents(QPainter* painter) {
    painter->setPen(kNumberColour);
    painter->setFont(font());
    for (const LineNumber& number : visibleNumbers())
        painter->drawText(number.rect, Qt::AlignRight | Qt::AlignVCenter, QString::number(number.line));
}
