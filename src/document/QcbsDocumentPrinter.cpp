// SPDX-License-Identifier: GPL-3.0-or-later
// Prints a document's text as the editor shows it, with a header on every page.
#include "document/QcbsDocumentPrinter.hpp"

#include <QFontMetricsF>
#include <QPainter>
#include <QPrinter>
#include <QRegularExpression>
#include <algorithm>

namespace {

constexpr int kTabWidth = 8;

QString expandTabs(const QString& line) {
    if (!line.contains(u'\t')) return line;
    QString expanded;
    for (const QChar c : line) {
        if (c == u'\t')
            expanded += QString(kTabWidth - expanded.size() % kTabWidth, u' ');
        else
            expanded += c;
    }
    return expanded;
}

// Breaks a line into rows no wider than `width`; every row holds at least
// one character, so a narrow page still makes progress.
void appendRows(const QString& line, const QFontMetricsF& metrics, qreal width, QStringList& rows) {
    if (line.isEmpty() || metrics.horizontalAdvance(line) <= width) {
        rows << line;
        return;
    }
    qsizetype start = 0;
    qreal used = 0;
    for (qsizetype i = 0; i < line.size(); ++i) {
        const qreal advance = metrics.horizontalAdvance(line.at(i));
        if (i > start && used + advance > width) {
            rows << line.mid(start, i - start);
            start = i;
            used = 0;
        }
        used += advance;
    }
    rows << line.mid(start);
}

}  // namespace

QStringList QcbsDocumentPrinter::rows(const QString& text, QPaintDevice* device, qreal width) const {
    const QFontMetricsF metrics(font_, device);
    QStringList rows;
    static const QRegularExpression lineEnd("\r\n|\r|\n");
    for (const QString& line : text.split(lineEnd)) appendRows(expandTabs(line), metrics, width, rows);
    return rows;
}

int QcbsDocumentPrinter::print(QPrinter* printer, const QString& document) const {
    QPainter painter;
    if (!painter.begin(printer)) return 0;

    const QRectF page = printer->pageLayout().paintRectPixels(printer->resolution());
    QFont headerFont = font_;
    headerFont.setBold(true);
    const QFontMetricsF textMetrics(font_, printer);
    const QFontMetricsF headerMetrics(headerFont, printer);
    const qreal rowHeight = textMetrics.lineSpacing();
    // The header, a rule under it and a blank row's space before the text.
    const qreal headerHeight = headerMetrics.lineSpacing() * 1.5 + rowHeight;
    const int rowsPerPage = std::max(1, static_cast<int>((page.height() - headerHeight) / rowHeight));

    const QStringList text = rows(document, printer, page.width());
    const int pages = std::max<int>(1, static_cast<int>((text.size() + rowsPerPage - 1) / rowsPerPage));
    int first = 1;
    int last = pages;
    if (printer->printRange() == QPrinter::PageRange && printer->fromPage() > 0) {
        first = printer->fromPage();
        last = std::min(pages, std::max(first, printer->toPage()));
    }

    int printed = 0;
    for (int number = first; number <= last; ++number) {
        if (printed > 0 && !printer->newPage()) break;
        const qreal width = page.width();
        const QString pageLabel = pageText(number, pages);
        const qreal labelWidth = headerMetrics.horizontalAdvance(pageLabel);
        painter.setFont(headerFont);
        const QString title = headerMetrics.elidedText(title_, Qt::ElideMiddle,
                                                       std::max<qreal>(0, width - labelWidth - rowHeight));
        const qreal baseline = headerMetrics.ascent();
        painter.drawText(QPointF(0, baseline), title);
        painter.drawText(QPointF(width - labelWidth, baseline), pageLabel);
        const qreal rule = headerMetrics.lineSpacing() * 1.25;
        painter.drawLine(QPointF(0, rule), QPointF(width, rule));

        painter.setFont(font_);
        qreal y = headerHeight + textMetrics.ascent();
        const qsizetype begin = static_cast<qsizetype>(number - 1) * rowsPerPage;
        const qsizetype end = std::min<qsizetype>(text.size(), begin + rowsPerPage);
        for (qsizetype row = begin; row < end; ++row, y += rowHeight)
            painter.drawText(QPointF(0, y), text.at(row));
        ++printed;
    }
    painter.end();
    return printed;
}
