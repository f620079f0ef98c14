// SPDX-License-Identifier: GPL-3.0-or-later
// A document read into the editor line by line and written back with LF line ends.
#include "application/QcbsDocumentLines.hpp"

#include <QTextDocument>

QcbsDocumentLines::Read QcbsDocumentLines::fromFileText(QString text) {
    if (text.contains(u'\r')) {
        text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
        text.replace(u'\r', u'\n');
    }
    Read read;
    if (text.isEmpty()) return read;
    read.lines = static_cast<int>(text.count(u'\n'));
    if (text.endsWith(u'\n'))
        text.chop(1);
    else
        ++read.lines;  // a last line without its end
    read.text = std::move(text);
    return read;
}

QString QcbsDocumentLines::savedLine(QString line) {
    if (!line.isEmpty() && line.back().isSpace()) line.chop(1);
    return line;
}

QString QcbsDocumentLines::toFileText(const QTextDocument& document) {
    // One pass over the raw text (paragraphs separated by U+2029, no
    // separator after the last) instead of a string per paragraph: a save
    // of a million lines stays quick.
    const QString raw = document.toRawText();
    QString text(raw.size() + 1, Qt::Uninitialized);
    QChar* const begin = text.data();
    QChar* out = begin;
    QChar* lineStart = begin;
    const auto endLine = [&] {
        if (out > lineStart && out[-1].isSpace()) --out;
        *out++ = u'\n';
        lineStart = out;
    };
    for (const QChar c : raw) {
        // A soft line break inside a paragraph is a line end in the file.
        if (c == QChar::ParagraphSeparator || c == QChar::LineSeparator)
            endLine();
        else
            *out++ = c;
    }
    endLine();
    text.truncate(out - begin);
    return text;
}
