// SPDX-License-Identifier: GPL-3.0-or-later
// A document read into the editor line by line and written back with LF line ends.
#pragma once

#include <QString>

class QTextDocument;

// A document is read into the editor line by line and written back line by
// line. Reading accepts any line ending ("\n", "\r\n", "\r"); writing ends
// every line with "\n" and drops one trailing white-space character from
// each line (only one: a line ending in two blanks keeps one).
class QcbsDocumentLines {
public:
    // A file's text as the editor holds it: line ends made "\n", the final
    // line end dropped. A final line end makes no extra empty line, so that
    // writing the lines back gives the same text.
    struct Read {
        QString text;
        int lines = 0;
    };
    static Read fromFileText(QString text);

    // The text to write for the editor's document.
    static QString toFileText(const QTextDocument& document);
    // The same rule for one line.
    static QString savedLine(QString line);
};
