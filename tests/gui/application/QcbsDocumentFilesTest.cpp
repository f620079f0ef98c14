// Reading a file's text and writing it back: encodings, lines, and saving
// that keeps the old content.
#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <QTextCursor>
#include <QTextDocument>

#include "ApplicationTestSupport.hpp"
#include "application/QcbsDocumentEncoding.hpp"
#include "application/QcbsDocumentLines.hpp"
#include "application/QcbsDocumentSaver.hpp"

namespace {

// What a file goes through when it is opened and saved without an edit.
QByteArray roundTrip(const QByteArray& bytes) {
    QString text;
    const QcbsDocumentEncoding encoding = QcbsDocumentEncoding::detect(bytes, &text);
    QTextDocument document;
    document.setPlainText(QcbsDocumentLines::fromFileText(text).text);
    return encoding.encode(QcbsDocumentLines::toFileText(document));
}

TEST(DocumentLines, FilesSavedUneditedChangeOnlyLineEndsAndOneTrailingBlankPerLine) {
    const std::pair<QByteArray, QByteArray> cases[] = {
        {"data_a\n_name 'Cr\xe9pin, \xc5sa'\n", {}},  // Latin-1, as it is not UTF-8
        {"data_a\n_name '\xc3\x85sa Cr\xc3\xa9pin'\n", {}},
        {"\xef\xbb\xbf#\\#CIF_2.0\ndata_a\n", {}},  // a byte-order mark is kept
        {"data_a\n\n\n_cell_volume 100\n\n", {}},
        {"data_a\n;\n text\twith tab\n;\n", {}},
        {"data_a\r\n_cell_volume 100\r\n", "data_a\n_cell_volume 100\n"},
        {"data_a\r_cell_volume 100\r", "data_a\n_cell_volume 100\n"},
        {"data_a\n_cell_volume 100", "data_a\n_cell_volume 100\n"},
        {"data_a  \n_x 1 \n_y\t\n   \n", "data_a \n_x 1\n_y\n  \n"},
    };
    for (const auto& [bytes, saved] : cases)
        EXPECT_EQ(roundTrip(bytes), saved.isNull() ? bytes : saved) << bytes.toStdString();

    EXPECT_EQ(QcbsDocumentLines::fromFileText("a\r\nb\r\n\r\n").lines, 3);
    EXPECT_EQ(QcbsDocumentLines::fromFileText("a").lines, 1);
    EXPECT_EQ(QcbsDocumentLines::fromFileText("").lines, 0);
    // A soft line break inside a paragraph ends a line in the file, with the same rule.
    QTextDocument document;
    QTextCursor(&document).insertText(QString("a ") + QChar::LineSeparator + "b\t");
    EXPECT_EQ(QcbsDocumentLines::toFileText(document), "a\nb\n");
}

TEST(DocumentSaver, TheBackupNameTakesTheFirstDotAfterTheFirstCharacter) {
    const std::pair<const char*, const char*> cases[] = {
        {"a.b/c.cif", "a_backup.b/c.cif"},
        {"/data/quartz.cif", "/data/quartz_backup.cif"},
        {"/home/x.y/quartz.cif", "/home/x_backup.y/quartz.cif"},
        {".hidden.cif", ".hidden_backup.cif"},
        {"/data/README", "/data/README_backup"},
    };
    for (const auto& [name, backup] : cases) EXPECT_EQ(QcbsDocumentSaver::backupName(name), backup);
}

TEST(DocumentSaver, ASaveReplacesTheFileKeepingItsPermissionsAndLeavesNoTemporaryFile) {
    QTemporaryDir dir;
    const QString file = writeBytes(dir.filePath("quartz.cif"), "old\n");
    const QFile::Permissions mode = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup;
    QFile::setPermissions(file, mode);
    writeBytes(dir.filePath("quartz_backup.cif"), "older\n");

    const QcbsDocumentSaver::Result result = QcbsDocumentSaver::save(file, "new\n", true);
    EXPECT_TRUE(result.saved);
    EXPECT_FALSE(result.backupFailed);
    EXPECT_EQ(readBytes(file), "new\n");
    EXPECT_EQ(readBytes(dir.filePath("quartz_backup.cif")), "old\n");
    EXPECT_EQ(QFile::permissions(file) & QFile::Permissions(0x7077), mode);  // owner, group, other

    EXPECT_TRUE(QcbsDocumentSaver::save(file, "newer\n", false).saved);
    EXPECT_EQ(readBytes(file), "newer\n");
    EXPECT_EQ(readBytes(dir.filePath("quartz_backup.cif")), "old\n");
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden),
              (QStringList{"quartz.cif", "quartz_backup.cif"}));
}

}  // namespace
