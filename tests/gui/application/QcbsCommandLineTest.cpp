// SPDX-License-Identifier: GPL-3.0-or-later
// The program's command line: options, and FILE:LINE read as compilers print places.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "application/QcbsCommandLine.hpp"

namespace {

using File = QcbsCommandLine::File;

// A directory of files whose names hold ':', made the working directory.
class FileArguments : public ::testing::Test {
protected:
    void SetUp() override {
        previous_ = QDir::currentPath();
        for (const char* name : {"a.cif", "b:7.cif", "c.cif", "c.cif:12"}) {
            QFile file(dir_.filePath(name));
            ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        }
        ASSERT_TRUE(QDir::setCurrent(dir_.path()));
    }
    void TearDown() override { QDir::setCurrent(previous_); }
    File at(const char* name, int line) const { return {dir_.filePath(name), line}; }

    QTemporaryDir dir_;
    QString previous_;
};

TEST_F(FileArguments, ANameThatExistsIsAFileOtherwiseATrailingLineIsReadOff) {
    const struct {
        const char* argument;
        File file;
    } cases[] = {
        {"a.cif", at("a.cif", 0)},
        {"a.cif:12", at("a.cif", 12)},
        {"a.cif:12:", at("a.cif", 12)},   // copied from a message line
        {"a.cif:12:7", at("a.cif", 12)},  // with a column
        {"a.cif:12:7:", at("a.cif", 12)},
        {"a.cif:0042", at("a.cif", 42)},
        {"b:7.cif", at("b:7.cif", 0)},  // a ':' inside the name
        {"b:7.cif:3", at("b:7.cif", 3)},
        {"c.cif:12", at("c.cif:12", 0)},    // exists as given, though c.cif exists too
        {"c.cif:12:5", at("c.cif:12", 5)},  // the reading whose file exists wins
        {"c.cif:13", at("c.cif", 13)},
        {"new.cif:5", at("new.cif", 5)},  // missing: the message will name new.cif
        {"gone:3:4", at("gone", 3)},
        {"a.cif:x", at("a.cif:x", 0)},
        {"a.cif:", at("a.cif:", 0)},
        {"a.cif:12345678901", at("a.cif:12345678901", 0)},  // no line number that large
    };
    for (const auto& c : cases) {
        const File file = QcbsCommandLine::fileArgument(c.argument);
        EXPECT_EQ(file.path, c.file.path) << c.argument;
        EXPECT_EQ(file.line, c.file.line) << c.argument;
    }
    EXPECT_EQ(QcbsCommandLine::fileArgument(dir_.filePath("a.cif") + ":9"), at("a.cif", 9));
}

TEST_F(FileArguments, OptionsFilesAndProblemsAreReadInOnePass) {
    const struct {
        QStringList arguments;
        bool help;
        bool version;
        QList<File> files;
        QString problem;
    } cases[] = {
        {{}, false, false, {}, ""},
        {{"a.cif:2", "", "b:7.cif"}, false, false, {at("a.cif", 2), at("b:7.cif", 0)}, ""},
        {{"--help"}, true, false, {}, ""},
        {{"a.cif", "-h"}, true, false, {at("a.cif", 0)}, ""},
        {{"--version"}, false, true, {}, ""},
        {{"--", "--help", "-"}, false, false, {at("--help", 0), at("-", 0)}, ""},
        {{"--frobnicate", "--help", "-x"}, true, false, {}, "unknown option --frobnicate"},
        {{"-"}, false, false, {}, "cannot read standard input (-): name a file"},
        {{"-v"}, false, false, {}, "unknown option -v"},
    };
    for (const auto& c : cases) {
        const QcbsCommandLine line = QcbsCommandLine::parse(c.arguments);
        const std::string where = c.arguments.join(' ').toStdString();
        EXPECT_EQ(line.help, c.help) << where;
        EXPECT_EQ(line.version, c.version) << where;
        EXPECT_EQ(line.files, c.files) << where;
        EXPECT_EQ(line.problem, c.problem) << where;
    }
    EXPECT_EQ(QcbsCommandLine::versionText(), "Tessary 1.2\n");
    for (const char* option :
         {"FILE:LINE", "--help", "--version", "--", "TESSARY_DICTIONARIES", "TESSARYPREFS"})
        EXPECT_TRUE(QcbsCommandLine::helpText().contains(option)) << option;
}

}  // namespace
