// SPDX-License-Identifier: GPL-3.0-or-later
// A document read into the editor line by line and written back with its line ends.
#include "document/QcbsDocumentLines.hpp"

#include <QTextDocument>

namespace {

QString dominantLineEnd(const QString& text) {
    qsizetype lf = 0, crlf = 0, cr = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == u'\n') {
            ++lf;
        } else if (text[i] == u'\r') {
            if (i + 1 < text.size() && text[i + 1] == u'\n') {
                ++crlf;
                ++i;
            } else {
                ++cr;
            }
        }
    }
    if (crlf > lf && crlf >= cr) return "\r\n";
    if (cr > lf && cr > crlf) return "\r";
    return "\n";
}

}  // namespace

QcbsDocumentLines::Read QcbsDocumentLines::fromFileText(QString text) {
    Read read;
    if (text.contains(u'\r')) {
        read.lineEnd = dominantLineEnd(text);
        text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
        text.replace(u'\r', u'\n');
    }
    if (text.isEmpty()) return read;
    read.lines = static_cast<int>(text.count(u'\n'));
    read.finalLineEnd = text.endsWith(u'\n');
    if (read.finalLineEnd)
        text.chop(1);
    else
        ++read.lines;  // a last line without its end
    read.text = std::move(text);
    return read;
}

QString QcbsDocumentLines::toFileText(const QTextDocument& document, const QString& lineEnd,
                                      bool finalLineEnd) {
    // One pass over the raw text (paragraphs separated by U+2029, no
    // separator after the last) instead of a string per paragraph: a save
    // of a million lines stays quick.
    const QString raw = document.toRawText();
    const qsizetype lines = document.blockCount();
    QString text;
    text.reserve(raw.size() + lines * (lineEnd.size() - 1) + lineEnd.size());
    qsizetype start = 0;
    for (;;) {
        const qsizetype end = raw.indexOf(QChar::ParagraphSeparator, start);
        text.append(QStringView(raw).mid(start, (end < 0 ? raw.size() : end) - start));
        if (end < 0) break;
        text.append(lineEnd);
        start = end + 1;
    }
    if (finalLineEnd) text.append(lineEnd);
    return text;
}
