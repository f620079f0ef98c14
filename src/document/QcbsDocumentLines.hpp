// SPDX-License-Identifier: GPL-3.0-or-later
// A document read into the editor line by line and written back with its line ends.
#pragma once

#include <QString>

class QTextDocument;

// A document is read into the editor line by line and written back line by
// line. Reading accepts any line ending ("\n", "\r\n", "\r") and remembers
// the one most lines use and whether the last line has one; writing ends
// the lines so and leaves every line exactly as it stands.
class QcbsDocumentLines {
public:
    // A file's text as the editor holds it: line ends made "\n", the final
    // line end dropped (so that it makes no extra empty line).
    struct Read {
        QString text;
        int lines = 0;
        QString lineEnd = "\n";
        bool finalLineEnd = false;
    };
    static Read fromFileText(QString text);

    // The text to write for the editor's document.
    static QString toFileText(const QTextDocument& document, const QString& lineEnd = "\n",
                              bool finalLineEnd = true);
};
