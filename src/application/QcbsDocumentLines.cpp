#include "application/QcbsDocumentLines.hpp"

#include <QTextBlock>
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
    QString text;
    text.reserve(document.characterCount() + 1);
    for (QTextBlock block = document.firstBlock(); block.isValid(); block = block.next()) {
        QString line = block.text();
        // A soft line break inside a paragraph is a line end in the file.
        line.replace(QChar::LineSeparator, u'\n');
        text += savedLine(std::move(line));
        text += u'\n';
    }
    return text;
}
