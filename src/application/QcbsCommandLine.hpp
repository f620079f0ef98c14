// SPDX-License-Identifier: GPL-3.0-or-later
// The program's command line: --help, --version, and files with the line to open them at.
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

// The program's command line read into options: files to open, each with
// the line to put the cursor on, and --help / --version, which print and
// exit before any window (or display) is needed.
class QcbsCommandLine {
public:
    // A file to open, and the 1-based line to go to (0: none named).
    struct File {
        QString path;
        int line = 0;
        bool operator==(const File&) const = default;
    };

    // Reads the arguments after the program's name. Reading goes on after
    // an unknown option, so that --help is found anywhere.
    static QcbsCommandLine parse(const QStringList& arguments);
    static QStringList arguments(int argc, char** argv);

    // One file argument: a name that exists as given is a file whatever it
    // holds; otherwise FILE:LINE, FILE:LINE:COLUMN and either with a final
    // ":" (as compilers and tessary-check print places) name a line of FILE,
    // preferring the reading whose FILE exists. The path is made absolute.
    static File fileArgument(const QString& argument);

    static QString helpText();
    static QString versionText();

    QList<File> files;
    bool help = false;
    bool version = false;
    QString problem;  // the first unusable argument, described; empty when none
};
