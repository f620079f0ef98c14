// Reading a file's text and writing it back: encodings, lines, and saving
// that never loses the old content.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTextCursor>
#include <QTextDocument>

#include "application/QcbsDocumentEncoding.hpp"
#include "application/QcbsDocumentLines.hpp"
#include "application/QcbsDocumentSaver.hpp"

namespace {

QByteArray readBytes(const QString& name) {
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

void writeBytes(const QString& name, const QByteArray& bytes) {
    QFile file(name);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << name.toStdString();
    file.write(bytes);
}

// What a file goes through when it is opened and saved without an edit.
QByteArray roundTrip(const QByteArray& bytes) {
    QString text;
    const QcbsDocumentEncoding encoding = QcbsDocumentEncoding::detect(bytes, &text);
    QTextDocument document;
    document.setPlainText(QcbsDocumentLines::fromFileText(text).text);
    return encoding.encode(QcbsDocumentLines::toFileText(document));
}

TEST(DocumentEncoding, ValidUtf8IsReadAsUtf8AndAnythingElseAsLatin1) {
    QString text;
    const QByteArray utf8 = "_chemical_name_common '\xc3\x85kermanite'\n";
    const QcbsDocumentEncoding fromUtf8 = QcbsDocumentEncoding::detect(utf8, &text);
    EXPECT_EQ(fromUtf8.kind(), QcbsDocumentEncoding::Utf8);
    EXPECT_TRUE(text.contains(QChar(0xc5)));

    const QByteArray latin1 = "_publ_author_name 'Cr\xe9pin'\n";
    const QcbsDocumentEncoding fromLatin1 = QcbsDocumentEncoding::detect(latin1, &text);
    EXPECT_EQ(fromLatin1.kind(), QcbsDocumentEncoding::Latin1);
    EXPECT_EQ(fromLatin1.name(), "ISO-8859-1");
    EXPECT_TRUE(text.contains(QChar(0xe9)));
    EXPECT_FALSE(fromLatin1.canEncode(QString(QChar(0x3b1))));
    EXPECT_TRUE(fromUtf8.canEncode(QString(QChar(0x3b1))));

    // A byte-order mark stays out of the text and is written back.
    const QByteArray marked =
        "\xef\xbb\xbf"
        "data_x\n";
    const QcbsDocumentEncoding withMark = QcbsDocumentEncoding::detect(marked, &text);
    EXPECT_TRUE(withMark.hasByteOrderMark());
    EXPECT_EQ(text, "data_x\n");
    EXPECT_EQ(withMark.encode(text), marked);
}

TEST(DocumentEncoding, FilesOpenedAndSavedUneditedKeepTheirBytes) {
    const QByteArray files[] = {
        "data_a\n_publ_author_name 'Cr\xe9pin, \xc5sa'\n",         // Latin-1
        "data_a\n_publ_author_name '\xc3\x85sa Cr\xc3\xa9pin'\n",  // UTF-8
        "\xef\xbb\xbf#\\#CIF_2.0\ndata_a\n",                       // UTF-8 with a mark
        "data_a\n\n\n_cell_volume 100\n\n",                        // empty lines, one at the end
        "data_a\n;\n text\twith tab\n;\n",
    };
    for (const QByteArray& bytes : files) EXPECT_EQ(roundTrip(bytes), bytes) << bytes.toStdString();
}

TEST(DocumentLines, AnyLineEndIsReadAndEveryLineIsWrittenWithALineFeed) {
    EXPECT_EQ(roundTrip("data_a\r\n_cell_volume 100\r\n"), "data_a\n_cell_volume 100\n");
    EXPECT_EQ(roundTrip("data_a\r_cell_volume 100\r"), "data_a\n_cell_volume 100\n");
    EXPECT_EQ(roundTrip("data_a\n_cell_volume 100"), "data_a\n_cell_volume 100\n");

    const QcbsDocumentLines::Read crlf = QcbsDocumentLines::fromFileText("a\r\nb\r\n\r\n");
    EXPECT_EQ(crlf.text, "a\nb\n");
    EXPECT_EQ(crlf.lines, 3);
    EXPECT_EQ(QcbsDocumentLines::fromFileText("a").lines, 1);
    EXPECT_EQ(QcbsDocumentLines::fromFileText("").lines, 0);
}

TEST(DocumentLines, OnlyOneTrailingBlankOfEachLineIsDropped) {
    EXPECT_EQ(roundTrip("data_a  \n_x 1 \n_y\t\n_z 2\n"), "data_a \n_x 1\n_y\n_z 2\n");
    EXPECT_EQ(QcbsDocumentLines::savedLine("   "), "  ");
    EXPECT_EQ(QcbsDocumentLines::savedLine("value"), "value");

    // A soft line break inside a paragraph ends a line in the file, with the same rule.
    QTextDocument document;
    QTextCursor(&document).insertText(QString("a ") + QChar::LineSeparator + "b\t");
    EXPECT_EQ(QcbsDocumentLines::toFileText(document), "a\nb\n");
}

TEST(DocumentSaver, TheBackupNameTakesTheFirstDotAfterTheFirstCharacter) {
    using S = QcbsDocumentSaver;
    EXPECT_EQ(S::backupName("a.b/c.cif"), "a_backup.b/c.cif");
    EXPECT_EQ(S::backupName("/data/quartz.cif"), "/data/quartz_backup.cif");
    EXPECT_EQ(S::backupName("/home/x.y/quartz.cif"), "/home/x_backup.y/quartz.cif");
    EXPECT_EQ(S::backupName(".hidden.cif"), ".hidden_backup.cif");
    EXPECT_EQ(S::backupName("/data/README"), "/data/README_backup");
}

class DocumentSaving : public ::testing::Test {
protected:
    QString path(const QString& name) const { return dir_.filePath(name); }
    QStringList entries() const { return QDir(dir_.path()).entryList(QDir::Files | QDir::Hidden); }

    QTemporaryDir dir_;
};

TEST_F(DocumentSaving, ASaveReplacesTheFileAndWithBackupsKeepsTheOldOne) {
    const QString file = path("quartz.cif");
    writeBytes(file, "old\n");
    QFile::setPermissions(file, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup);
    writeBytes(path("quartz_backup.cif"), "older\n");

    QcbsDocumentSaver::Result result = QcbsDocumentSaver::save(file, "new\n", true);
    EXPECT_TRUE(result.saved);
    EXPECT_FALSE(result.backupFailed);
    EXPECT_EQ(readBytes(file), "new\n");
    EXPECT_EQ(readBytes(path("quartz_backup.cif")), "old\n");
    const QFile::Permissions modeBits = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner |
                                        QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup |
                                        QFile::ReadOther | QFile::WriteOther | QFile::ExeOther;
    EXPECT_EQ(QFile::permissions(file) & modeBits, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup);

    result = QcbsDocumentSaver::save(file, "newer\n", false);
    EXPECT_TRUE(result.saved);
    EXPECT_EQ(readBytes(file), "newer\n");
    EXPECT_EQ(readBytes(path("quartz_backup.cif")), "old\n");
    // No temporary file is left behind.
    EXPECT_EQ(entries(), (QStringList{"quartz.cif", "quartz_backup.cif"}));
}

TEST_F(DocumentSaving, ABackupIntoADotDirectoryGoesThereAndOneThatCannotBeMadeIsReported) {
    ASSERT_TRUE(QDir(dir_.path()).mkpath("a.b"));
    const QString file = path("a.b/c.cif");
    writeBytes(file, "old\n");
    // The temporary directory's own name may hold a dot; the rule applies to the whole path.
    const QString backup = QcbsDocumentSaver::backupName(file);
    ASSERT_TRUE(QDir().mkpath(QFileInfo(backup).absolutePath()));
    EXPECT_TRUE(QcbsDocumentSaver::save(file, "new\n", true).saved);
    EXPECT_EQ(readBytes(backup), "old\n");

    // Without the backup's directory the save goes on, and says so.
    QDir(QFileInfo(backup).absolutePath()).removeRecursively();
    const QcbsDocumentSaver::Result result = QcbsDocumentSaver::save(file, "newer\n", true);
    EXPECT_TRUE(result.backupFailed);
    EXPECT_EQ(result.backupName, backup);
    EXPECT_TRUE(result.saved);
    EXPECT_EQ(readBytes(file), "newer\n");
}

TEST_F(DocumentSaving, AFileThatCannotBeWrittenIsLeftAsItWas) {
    // A directory that is really a file cannot take a file, even for root.
    writeBytes(path("plain"), "not a directory\n");
    const QcbsDocumentSaver::Result result = QcbsDocumentSaver::save(path("plain/c.cif"), "new\n", true);
    EXPECT_FALSE(result.saved);
    EXPECT_FALSE(result.error.isEmpty());
    EXPECT_EQ(readBytes(path("plain")), "not a directory\n");

    const QString gone = path("gone");
    ASSERT_TRUE(QDir(dir_.path()).mkdir("gone"));
    ASSERT_TRUE(QDir(gone).removeRecursively());
    EXPECT_FALSE(QcbsDocumentSaver::save(gone + "/c.cif", "new\n", false).saved);
    EXPECT_EQ(entries(), QStringList{"plain"});
}

}  // namespace
