// SPDX-License-Identifier: GPL-3.0-or-later
// Prints a document's text as the editor shows it, with a header on every page.
#pragma once

#include <QFont>
#include <QString>
#include <QStringList>
#include <utility>

class QPaintDevice;
class QPrinter;

// Prints a document's text as it stands in the editor: the editor's font,
// lines that do not fit the page width continued on the next printed row,
// and on every page a header with the document's name on the left and
// "Page n of m" on the right.
class QcbsDocumentPrinter {
public:
    QcbsDocumentPrinter(QString title, QFont font) : title_(std::move(title)), font_(std::move(font)) {}

    // Prints the pages the printer asks for (all, or its from/to range) and
    // returns how many were printed; 0 when the printer could not start.
    int print(QPrinter* printer, const QString& document) const;

    // The printed rows of the text for a page `width` pixels wide in the
    // font's metrics on `device`: tabs expanded to every eighth column, and a
    // line too long for the width broken into several rows.
    // Every line end (LF, CRLF, CR) starts a line.
    QStringList rows(const QString& text, QPaintDevice* device, qreal width) const;

    static QString pageText(int page, int pages) {
        return "Page " + QString::number(page) + " of " + QString::number(pages);
    }

private:
    QString title_;
    QFont font_;
};
