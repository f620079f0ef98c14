#include <gtest/gtest.h>

#include <QFontDatabase>
#include <QPrinter>
#include <QTemporaryDir>
#include <QTextDocument>

#include "ApplicationTestSupport.hpp"
#include "application/QcbsDocumentPrinter.hpp"

namespace {

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
