// SPDX-License-Identifier: GPL-3.0-or-later
// The help pages the error list opens, and the user guide's start page that leads to them.
// They are read where they lie, in the source tree's docs/ folder.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTextDocument>
#include <set>

#include "cif/CifErrorCatalogue.hpp"
#include "validation/QcbsErrorResource.hpp"

namespace {

const QString kDocs = QString(TESSARY_SOURCE_DIR) + "/docs";
const QString kStartPage = kDocs + "/tessary.html";

QString read(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QString helpFile(int code) { return QcbsErrorResource::get_help_file(static_cast<CifError::ErrorID>(code)); }

TEST(HelpPages, ThePageNumberGoesIntoTheTemplateAndKindsWithoutAPageGetNone) {
    EXPECT_EQ(helpFile(302), "tessary/PortableHTML/tessary_portable-3-069.html");
    EXPECT_EQ(helpFile(358), "tessary/PortableHTML/tessary_portable-3-100.html");
    for (auto [a, b] : {std::pair{327, 328}, {348, 349}, {351, 352}, {354, 355}})
        EXPECT_EQ(helpFile(a), helpFile(b)) << a;
    EXPECT_EQ(helpFile(369), "tessary/PortableHTML/tessary_portable-3-109.html");
    EXPECT_EQ(helpFile(384), "tessary/PortableHTML/tessary_portable-3-124.html");
    for (int code :
         {-300, 0, 299, 300, 301, 314, 323, 342, 363, 366, CifErrorCatalogue::last_code + 1, 1000}) {
        EXPECT_TRUE(helpFile(code).isEmpty() && !helpFile(code).isNull()) << code;
    }
}

TEST(HelpPages, EveryCodeHasAPageButThoseThatAreExplainedWhereTheyAppear) {
    // The editor's own note, failures of input and size limits, CIF 2.0
    // bracket details, remarks about the text's first and last bytes, and
    // problems of dictionaries and save frames that docs/errors.md explains.
    const std::set<int> without_page{300, 301, 314, 315, 316, 317, 323, 331, 332, 333, 334, 335,
                                     336, 337, 339, 340, 341, 342, 344, 345, 363, 364, 365, 366};
    for (int code = CifErrorCatalogue::first_code; code <= CifErrorCatalogue::last_code; ++code)
        EXPECT_EQ(helpFile(code).isEmpty(), without_page.count(code) == 1) << code;
}

TEST(HelpPages, EveryCodeWithAPageHasItsFileNamingCodeAndMessageLinkedFromTheStartPage) {
    const QString start = read(kStartPage);
    ASSERT_FALSE(start.isEmpty()) << kStartPage.toStdString();
    int pages = 0;
    for (int code = CifErrorCatalogue::first_code; code <= CifErrorCatalogue::last_code; ++code) {
        if (helpFile(code).isEmpty()) continue;
        ++pages;
        SCOPED_TRACE(code);
        EXPECT_TRUE(start.contains("href=\"html/" + helpFile(code) + "\""));
        const QString html = read(kDocs + "/html/" + helpFile(code));
        ASSERT_FALSE(html.isEmpty()) << "missing or empty: " << helpFile(code).toStdString();
        EXPECT_TRUE(html.contains(QString("Code %1").arg(code)));
        // The catalogue's wording, its placeholders aside.
        const CifErrorCatalogueEntry* entry = CifErrorCatalogue::find(code);
        ASSERT_NE(entry, nullptr);
        for (const QString& piece :
             QString(entry->message).split(QRegularExpression("%[12]"), Qt::SkipEmptyParts))
            EXPECT_TRUE(html.contains(piece.toHtmlEscaped())) << piece.toStdString();
        QTextDocument document;
        document.setHtml(html);
        EXPECT_TRUE(document.metaInformation(QTextDocument::DocumentTitle).startsWith("Tessary help: "));
    }
    EXPECT_GT(pages, 0);
}

TEST(HelpPages, EveryLinkOfThePagesAndTheStartPageLeadsToARealPlaceAndBackToTheStart) {
    QStringList files{kStartPage};
    for (int code = CifErrorCatalogue::first_code; code <= CifErrorCatalogue::last_code; ++code)
        if (!helpFile(code).isEmpty()) files << kDocs + "/html/" + helpFile(code);
    files.removeDuplicates();
    static const QRegularExpression href("href=\"([^\"]*)\"");
    for (const QString& path : files) {
        bool backToStart = path == kStartPage;
        for (auto it = href.globalMatch(read(path)); it.hasNext();) {
            const QString link = it.next().captured(1);
            if (link.startsWith("http://") || link.startsWith("https://") || link.startsWith("mailto:"))
                continue;
            const QString target = link.section('#', 0, 0);
            const QString anchor = link.section('#', 1);
            const QString targetPath =
                target.isEmpty() ? path : QDir::cleanPath(QFileInfo(path).absolutePath() + "/" + target);
            if (!QFileInfo::exists(targetPath)) {
                ADD_FAILURE() << "broken link: " << path.toStdString() << " -> " << link.toStdString();
                continue;
            }
            const auto hasAnchor = [&] {
                const QString html = read(targetPath);
                return html.contains("name=\"" + anchor + "\"") || html.contains("id=\"" + anchor + "\"");
            };
            EXPECT_TRUE(anchor.isEmpty() || hasAnchor())
                << path.toStdString() << " -> " << link.toStdString();
            if (targetPath == QDir::cleanPath(kStartPage)) backToStart = true;
        }
        EXPECT_TRUE(backToStart) << "no link back to the start page: " << path.toStdString();
    }
}

}  // namespace
