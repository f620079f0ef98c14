// SPDX-License-Identifier: GPL-3.0-or-later
// A document's file: its text read and written back, saving that keeps the old content, printing.
#include <errno.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <QDirIterator>
#include <QFontDatabase>
#include <QPrinter>
#include <QSignalSpy>
#include <QTemporaryDir>

#include "application/ApplicationTestSupport.hpp"
#include "document/QcbsCifDocument.hpp"
#include "document/QcbsDocumentPrinter.hpp"
#include "document/QcbsDocumentSaver.hpp"
#include "editor/QcbsRichTextEdit.hpp"

namespace {

using Document = EditorDocument;

QByteArray readFile(const QString& name) {
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Saves the document to a new file and reads back what was written.
QByteArray saved(Document& d, const QTemporaryDir& dir) {
    const QString name = dir.filePath("saved.cif");
    EXPECT_TRUE(d.document.save(name, false).saved);
    return readFile(name);
}

TEST(DocumentFiles, FilesSavedUneditedKeepEveryByte) {
    QTemporaryDir dir;
    const QByteArray cases[] = {
        "data_a\n_name 'Cr\xe9pin, \xc5sa'\n",  // Latin-1, as it is not UTF-8
        "data_a\n_name '\xc3\x85sa Cr\xc3\xa9pin'\n",
        "\xef\xbb\xbf#\\#CIF_2.0\ndata_a\n",  // a byte-order mark is kept
        "data_a\n\n\n_cell_volume 100\n\n",
        "data_a\n;\n text\twith tab  \n;\n",  // trailing blanks, in a text field too
        "data_a\r\n_cell_volume 100\r\n",
        "data_a\r_cell_volume 100\r",
        "data_a\r\n_x 1\n_y 2\r_z 3\r\n",  // mixed line ends stay mixed
        "data_a\n_cell_volume 100",        // no final line end
        "data_a  \n_x 1 \n_y\t\n   \n",
        "_a 'x\xa0'\n_b '\x85'\f\n_c 1\v\n",  // Latin-1 no-break space, NEL, form feed, vertical tab
        "_a 'x\xc2\xa0 \xe3\x80\x80'\n_b 'p\xe2\x80\xa8q\xe2\x80\xa9r\xef\xb7\x90\xef\xb7\x91'\n",
        "",
    };
    for (const QByteArray& bytes : cases) {
        SCOPED_TRACE(bytes.toStdString());
        Document d;
        ASSERT_TRUE(d.load(bytes));
        EXPECT_EQ(d.document.fileBytes(), bytes);
        EXPECT_EQ(saved(d, dir), bytes);
        EXPECT_FALSE(d.document.isModified());
    }
}

TEST(DocumentFiles, EveryCrystalFileOfAvogadroComesBackByteForByte) {
    const QString directory = "/usr/share/avogadro2/crystals";
    QStringList files;
    for (QDirIterator it(directory, {"*.cif"}, QDir::Files, QDirIterator::Subdirectories); it.hasNext();)
        files << it.next();
    if (files.isEmpty())
        GTEST_SKIP() << "no CIF under " << directory.toStdString() << " (Debian's libavogadro-data)";
    QTemporaryDir dir;
    int differing = 0;
    Document d;  // one window opening file after file
    for (int i = 0; i < files.size(); ++i) {
        const QString& file = files[i];
        ASSERT_TRUE(d.loadFile(file)) << file.toStdString();
        // Every file's bytes as a save writes them; some written to disk as
        // well (each save waits for the disk).
        const QByteArray original = readFile(file);
        if (d.document.fileBytes() != original || (i % 25 == 0 && saved(d, dir) != original)) {
            ADD_FAILURE() << file.toStdString() << " changed on an unedited save";
            if (++differing > 5) break;
        }
    }
    EXPECT_GE(files.size(), 500);
}

TEST(DocumentFiles, TheCheckReadsWhatASaveWritesToTheLastByte) {
    // "The last line has no line end" only when it is so.
    for (const auto& [bytes, missing] : {std::pair<QByteArray, bool>{"data_a\r\n_x 1\r\n", false},
                                         {"data_a\r\n_x 1", true},
                                         {"data_a\r_x 1\r", false},
                                         {"\xef\xbb\xbf#\\#CIF_2.0\r\ndata_a\r\n_x 1", true}}) {
        SCOPED_TRACE(bytes.toStdString());
        Document d;
        ASSERT_TRUE(d.load(bytes));
        const THandle<Cif> cif = d.document.check();
        bool found = false;
        for (const CifError& error : *cif->errors())
            found = found || error.id() == CifError::no_final_line_end;
        EXPECT_EQ(found, missing);
        EXPECT_EQ(cif->block_count(), 1u);
    }
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

// What failed is told from the error number, and a refusal from what may
// be written: a directory where no file may be made, a file that may not be written.
TEST(DocumentSaver, AFailureSaysWhatFailed) {
    using Failure = QcbsDocumentSaver::Failure;
    QTemporaryDir dir;
    const QString fresh = dir.filePath("fresh.cif");
    const QString missingDirectory = dir.filePath("gone/fresh.cif");
    const struct {
        int error;
        QString name;
        Failure failure;
    } cases[] = {
        {ENOSPC, fresh, Failure::NoSpace},
        {EDQUOT, fresh, Failure::NoSpace},
        {EFBIG, fresh, Failure::NoSpace},
        {EROFS, fresh, Failure::ReadOnlyFileSystem},
        {EACCES, fresh, Failure::ReadOnlyDirectory},
        {EPERM, fresh, Failure::ReadOnlyDirectory},
        {EIO, fresh, Failure::Other},
        {0, fresh, Failure::Other},
        {ENOENT, missingDirectory, Failure::Other},
    };
    for (const auto& c : cases)
        EXPECT_EQ(QcbsDocumentSaver::failureOf(c.name, c.error), c.failure) << c.error;
}

// The same for real, where the permissions hold (not for root).
TEST(DocumentSaver, SavingIntoAReadOnlyDirectoryOrOverAReadOnlyFileSaysWhich) {
    if (::geteuid() == 0) GTEST_SKIP() << "root may write anywhere: no directory is read-only to it";
    using Failure = QcbsDocumentSaver::Failure;
    QTemporaryDir dir;
    const QString file = writeBytes(dir.filePath("locked/quartz.cif"), "data_quartz\n");
    QFile::setPermissions(file, QFile::ReadOwner);
    EXPECT_EQ(QcbsDocumentSaver::save(file, "data_new\n", false).failure, Failure::ReadOnlyFile);
    QFile::setPermissions(file, QFile::ReadOwner | QFile::WriteOwner);
    QFile::setPermissions(dir.filePath("locked"), QFile::ReadOwner | QFile::ExeOwner);
    const QcbsDocumentSaver::Result result = QcbsDocumentSaver::save(file, "data_new\n", false);
    QFile::setPermissions(dir.filePath("locked"), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    EXPECT_FALSE(result.saved);
    EXPECT_EQ(result.failure, Failure::ReadOnlyDirectory);
    EXPECT_EQ(readFile(file), "data_quartz\n");
}

// --- printing ------------------------------------------------------------------------

QString cifText(int lines) {
    QString text = "data_quartz";
    for (int i = 1; i < lines; ++i) text += QString("\n_item_%1 %2").arg(i).arg(i * 7);
    return text;
}

class DocumentPrinting : public ::testing::Test {
protected:
    void SetUp() override {
        if (!havePdfToText()) GTEST_SKIP() << "pdftotext (poppler-utils) is needed to read the printed PDF";
        printer_.setOutputFormat(QPrinter::PdfFormat);
        printer_.setOutputFileName(dir_.filePath("out.pdf"));
    }
    // The printed pages, as text.
    QStringList print(const QString& text, int* pages) {
        *pages = printer().print(&printer_, text);
        QStringList printed = pdfText(dir_.filePath("out.pdf")).split(u'\f');
        printed.removeLast();  // after the last form feed
        return printed;
    }
    QcbsDocumentPrinter printer() const {
        return {"/data/minerals/quartz.cif", QFontDatabase::systemFont(QFontDatabase::FixedFont)};
    }

    QTemporaryDir dir_;
    QPrinter printer_{QPrinter::HighResolution};
};

TEST_F(DocumentPrinting, EveryPageCarriesTheFileNameAndItsNumberAndTheTextRunsOnInOrder) {
    int pages = 0;
    const QStringList printed = print(cifText(150), &pages);
    ASSERT_GE(pages, 2);
    ASSERT_EQ(printed.size(), pages);
    QStringList lines;
    for (int page = 0; page < pages; ++page) {
        QStringList rows = printed[page].split(u'\n', Qt::SkipEmptyParts);
        ASSERT_FALSE(rows.isEmpty());
        const QString header = rows.takeFirst().simplified();
        EXPECT_EQ(header, "/data/minerals/quartz.cif " + QcbsDocumentPrinter::pageText(page + 1, pages));
        for (const QString& row : rows) lines << row.simplified();
    }
    EXPECT_EQ(lines.join(u'\n'), cifText(150));
}

TEST_F(DocumentPrinting, AnEmptyDocumentPrintsOnePageAndARangePrintsOnlyItsPages) {
    int pages = 0;
    EXPECT_EQ(print("", &pages).size(), 1);
    EXPECT_EQ(pages, 1);

    int all = 0;
    print(cifText(400), &all);
    ASSERT_GE(all, 4);
    printer_.setPrintRange(QPrinter::PageRange);
    printer_.setFromTo(2, 3);
    const QStringList printed = print(cifText(400), &pages);
    EXPECT_EQ(pages, 2);
    ASSERT_EQ(printed.size(), 2);
    EXPECT_TRUE(printed[0].contains(QcbsDocumentPrinter::pageText(2, all)));
    EXPECT_TRUE(printed[1].contains(QcbsDocumentPrinter::pageText(3, all)));
}

TEST(DocumentPrinterRows, LongLinesContinueOnTheNextRowAndTabsBecomeBlanks) {
    QPrinter device(QPrinter::HighResolution);
    device.setOutputFormat(QPrinter::PdfFormat);
    const QcbsDocumentPrinter printer("x.cif", QFontDatabase::systemFont(QFontDatabase::FixedFont));
    const QString longLine = "_publ_section_abstract " + QString(300, u'x');
    const QString document = "a\tb\r\n" + longLine + "\n";
    const QStringList rows = printer.rows(document, &device, 2000);
    ASSERT_GE(rows.size(), 4);
    EXPECT_EQ(rows.first(), "a       b");
    EXPECT_EQ(rows.mid(1, rows.size() - 2).join(""), longLine);
    EXPECT_EQ(rows.last(), "");
    // Even a page narrower than one character makes progress.
    EXPECT_EQ(printer.rows(document, &device, 1).size(), 9 + longLine.size() + 1);
}

}  // namespace
