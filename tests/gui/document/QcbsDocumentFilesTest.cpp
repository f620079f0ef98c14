// SPDX-License-Identifier: GPL-3.0-or-later
// A document's file: its text read and written back, saving that keeps the old content, printing.
#include <gtest/gtest.h>

#include <QFontDatabase>
#include <QPrinter>
#include <QTemporaryDir>
#include <QTextCursor>
#include <QTextDocument>

#include "application/ApplicationTestSupport.hpp"
#include "document/QcbsDocumentEncoding.hpp"
#include "document/QcbsDocumentLines.hpp"
#include "document/QcbsDocumentPrinter.hpp"
#include "document/QcbsDocumentSaver.hpp"

namespace {

// What a file goes through when it is opened and saved without an edit.
QByteArray roundTrip(const QByteArray& bytes) {
    QString text;
    const QcbsDocumentEncoding encoding = QcbsDocumentEncoding::detect(bytes, &text);
    const QcbsDocumentLines::Read read = QcbsDocumentLines::fromFileText(text);
    QTextDocument document;
    document.setPlainText(read.text);
    return encoding.encode(QcbsDocumentLines::toFileText(document, read.lineEnd, read.finalLineEnd));
}

TEST(DocumentLines, FilesSavedUneditedKeepTheirBytesButForMixedLineEnds) {
    const std::pair<QByteArray, QByteArray> cases[] = {
        {"data_a\n_name 'Cr\xe9pin, \xc5sa'\n", {}},  // Latin-1, as it is not UTF-8
        {"data_a\n_name '\xc3\x85sa Cr\xc3\xa9pin'\n", {}},
        {"\xef\xbb\xbf#\\#CIF_2.0\ndata_a\n", {}},  // a byte-order mark is kept
        {"data_a\n\n\n_cell_volume 100\n\n", {}},
        {"data_a\n;\n text\twith tab\n;\n", {}},
        {"data_a\r\n_cell_volume 100\r\n", {}},
        {"data_a\r_cell_volume 100\r", {}},
        {"data_a\n_cell_volume 100", {}},
        {"data_a  \n_x 1 \n_y\t\n   \n", {}},
        {"", {}},
        // Lines take the ending most of them have.
        {"data_a\r\n_x 1\n_y 2\r\n", "data_a\r\n_x 1\r\n_y 2\r\n"},
    };
    for (const auto& [bytes, saved] : cases)
        EXPECT_EQ(roundTrip(bytes), saved.isNull() ? bytes : saved) << bytes.toStdString();

    EXPECT_EQ(QcbsDocumentLines::fromFileText("a\r\nb\r\n\r\n").lines, 3);
    EXPECT_EQ(QcbsDocumentLines::fromFileText("a").lines, 1);
    EXPECT_EQ(QcbsDocumentLines::fromFileText("").lines, 0);
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
        document_.setPlainText(text);
        *pages = printer().print(&printer_, document_);
        QStringList printed = pdfText(dir_.filePath("out.pdf")).split(u'\f');
        printed.removeLast();  // after the last form feed
        return printed;
    }
    QcbsDocumentPrinter printer() const {
        return {"/data/minerals/quartz.cif", QFontDatabase::systemFont(QFontDatabase::FixedFont)};
    }

    QTemporaryDir dir_;
    QTextDocument document_;
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
    QTextDocument document;
    const QString longLine = "_publ_section_abstract " + QString(300, u'x');
    document.setPlainText("a\tb\n" + longLine + "\n");
    const QStringList rows = printer.rows(document, &device, 2000);
    ASSERT_GE(rows.size(), 4);
    EXPECT_EQ(rows.first(), "a       b");
    EXPECT_EQ(rows.mid(1, rows.size() - 2).join(""), longLine);
    EXPECT_EQ(rows.last(), "");
    // Even a page narrower than one character makes progress.
    EXPECT_EQ(printer.rows(document, &device, 1).size(), 9 + longLine.size() + 1);
}

}  // namespace
