#include <gtest/gtest.h>

#include <QFile>
#include <QFontDatabase>
#include <QPrinter>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTextDocument>

#include "PdfText.hpp"
#include "application/QcbsDocumentPrinter.hpp"

namespace {

QString cifText(int lines) {
    QString text = "data_quartz\n";
    for (int i = 1; i < lines; ++i) text += QString("_item_%1 %2\n").arg(i).arg(i * 7);
    text.chop(1);
    return text;
}

class DocumentPrinting : public ::testing::Test {
protected:
    DocumentPrinting() { printer_.setOutputFormat(QPrinter::PdfFormat); }

    PdfText print(const QString& text, int* pages = nullptr) {
        document_.setPlainText(text);
        printer_.setOutputFileName(dir_.filePath("out.pdf"));
        const int printed = printer().print(&printer_, document_);
        if (pages != nullptr) *pages = printed;
        QFile file(dir_.filePath("out.pdf"));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return PdfText(file.readAll());
    }
    QcbsDocumentPrinter printer() const {
        return QcbsDocumentPrinter("/data/minerals/quartz.cif",
                                   QFontDatabase::systemFont(QFontDatabase::FixedFont));
    }

    QTemporaryDir dir_;
    QTextDocument document_;
    QPrinter printer_{QPrinter::HighResolution};
};

TEST_F(DocumentPrinting, EveryPageCarriesTheFileNameAndItsNumberAndTheTextRunsOnInOrder) {
    int pages = 0;
    const PdfText pdf = print(cifText(150), &pages);
    ASSERT_GE(pages, 2);
    EXPECT_EQ(pdf.pageCount(), pages);
    const QStringList runs = pdf.runs();
    for (int page = 1; page <= pages; ++page)
        EXPECT_TRUE(runs.contains(QcbsDocumentPrinter::pageText(page, pages))) << page;
    EXPECT_EQ(runs.count("/data/minerals/quartz.cif"), pages);
    // Every line printed once, in order (blanks between words are not drawn).
    qsizetype last = runs.indexOf("data_quartz");
    ASSERT_GE(last, 0);
    for (int i = 1; i < 150; ++i) {
        const qsizetype at = runs.indexOf(QRegularExpression(QString("^_item_%1 ?%2$").arg(i).arg(i * 7)));
        ASSERT_GT(at, last) << i;
        last = at;
    }
}

TEST_F(DocumentPrinting, AnEmptyDocumentStillPrintsOnePage) {
    int pages = 0;
    const PdfText pdf = print("", &pages);
    EXPECT_EQ(pages, 1);
    EXPECT_TRUE(pdf.runs().contains(QcbsDocumentPrinter::pageText(1, 1)));
}

TEST_F(DocumentPrinting, APageRangeAskedForPrintsOnlyThosePages) {
    int all = 0;
    print(cifText(400), &all);
    ASSERT_GE(all, 4);
    printer_.setPrintRange(QPrinter::PageRange);
    printer_.setFromTo(2, 3);
    int pages = 0;
    const PdfText pdf = print(cifText(400), &pages);
    EXPECT_EQ(pages, 2);
    EXPECT_EQ(pdf.pageCount(), 2);
    EXPECT_TRUE(pdf.runs().contains(QcbsDocumentPrinter::pageText(2, all)));
    EXPECT_FALSE(pdf.runs().contains(QcbsDocumentPrinter::pageText(1, all)));
}

TEST_F(DocumentPrinting, LongLinesContinueOnTheNextRowAndTabsBecomeBlanks) {
    QTextDocument document;
    const QString longLine = "_publ_section_abstract " + QString(300, u'x');
    document.setPlainText("a\tb\n" + longLine + "\n");
    const QStringList rows = printer().rows(document, &printer_, 2000);
    ASSERT_GE(rows.size(), 4);
    EXPECT_EQ(rows.first(), "a       b");
    EXPECT_EQ(rows.mid(1, rows.size() - 2).join(""), longLine);
    EXPECT_EQ(rows.last(), "");
    // Even a page narrower than one character makes progress.
    EXPECT_EQ(printer().rows(document, &printer_, 1).size(), 9 + longLine.size() + 1);
}

}  // namespace
