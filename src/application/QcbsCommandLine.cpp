// SPDX-License-Identifier: GPL-3.0-or-later
// The program's command line: --help, --version, and files with the line to open them at.
#include "application/QcbsCommandLine.hpp"

#include <QFileInfo>
#include <QRegularExpression>

#include "base/QcbsUtilities.hpp"

QcbsCommandLine QcbsCommandLine::parse(const QStringList& arguments) {
    QcbsCommandLine line;
    bool onlyFiles = false;
    for (const QString& argument : arguments) {
        if (argument.isEmpty()) continue;
        if (onlyFiles || !argument.startsWith('-')) {
            line.files << fileArgument(argument);
        } else if (argument == "-") {
            if (line.problem.isEmpty()) line.problem = "cannot read standard input (-): name a file";
        } else if (argument == "--") {
            onlyFiles = true;
        } else if (argument == "-h" || argument == "--help") {
            line.help = true;
        } else if (argument == "--version") {
            line.version = true;
        } else if (line.problem.isEmpty()) {
            line.problem = "unknown option " + argument;
        }
    }
    return line;
}

QStringList QcbsCommandLine::arguments(int argc, char** argv) {
    QStringList list;
    for (int i = 1; i < argc; ++i) list << QString::fromLocal8Bit(argv[i]);
    return list;
}

QcbsCommandLine::File QcbsCommandLine::fileArgument(const QString& argument) {
    auto absolute = [](const QString& path) { return QFileInfo(path).absoluteFilePath(); };
    if (QFileInfo::exists(argument)) return {absolute(argument), 0};
    // FILE:LINE and FILE:LINE:COLUMN; the greedy FILE takes every earlier ':'.
    static const QRegularExpression withLine("^(.+):([0-9]{1,9}):?$");
    static const QRegularExpression withColumn("^(.+):([0-9]{1,9}):[0-9]{1,9}:?$");
    const QRegularExpressionMatch line = withLine.match(argument);
    const QRegularExpressionMatch column = withColumn.match(argument);
    for (const QRegularExpressionMatch* match : {&line, &column}) {
        if (match->hasMatch() && QFileInfo::exists(match->captured(1)))
            return {absolute(match->captured(1)), match->captured(2).toInt()};
    }
    // No reading names an existing file: the likeliest one, so that the
    // message about the missing file names the file.
    for (const QRegularExpressionMatch* match : {&column, &line}) {
        if (match->hasMatch()) return {absolute(match->captured(1)), match->captured(2).toInt()};
    }
    return {absolute(argument), 0};
}

QString QcbsCommandLine::helpText() {
    return "Usage: tessary [OPTION]... [FILE[:LINE]]...\n"
           "Edits and checks CIF files (Crystallographic Information Files). Files named here\n"
           "open in a running Tessary of the same user when there is one.\n"
           "\n"
           "  FILE:LINE          open FILE with the cursor on LINE, as tessary-check and\n"
           "                     compilers print places (FILE:LINE:COLUMN and a final ':'\n"
           "                     are accepted); a file whose own name ends in :NUMBER opens\n"
           "                     whole\n"
           "  -h, --help         print this text and exit\n"
           "      --version      print the version and exit\n"
           "  --                 the arguments after it are files, even when they begin with -\n"
           "\n"
           "Qt's own options (-platform NAME, -style NAME, -display DISPLAY, ...) are accepted.\n"
           "\n"
           "Environment:\n"
           "  TESSARY_DICTIONARIES      directories of dictionaries (*.dic), separated by ':',\n"
           "                            searched before the program's own\n"
           "  TESSARYPREFS              directory of the settings file tessary.ini\n"
           "                            (default: ~/.config/Tessary)\n"
           "  TESSARY_SINGLE_INSTANCE=0 never hand files to a running Tessary\n"
           "\n"
           "Exit status: 0, or 2 when the command line is not usable.\n"
           "See tessary(1), tessary-check(1) and the user guide tessary.html.\n";
}

QString QcbsCommandLine::versionText() {
    return programQName() + " " + QString::fromStdString(TessaryVersion()) + "\n";
}
