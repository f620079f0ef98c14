// The help pages the error list opens, and the start page of the user guide
// that leads to them, as they lie in the source tree's docs/ folder.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTextDocument>

#include "cif/CifErrorCatalogue.hpp"
#include "validation/QcbsErrorResource.hpp"

namespace {

const QString kDocs = QString(TESSARY_SOURCE_DIR) + "/docs";
const QString kStartPage = kDocs + "/tessary.html";

QString read(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return QString();
    return QString::fromUtf8(file.readAll());
}

QString helpFile(int code) { return QcbsErrorResource::get_help_file(static_cast<CifError::ErrorID>(code)); }

// Every code that has a help page, with the page's path.
std::vector<std::pair<int, QString>> pagesByCode() {
    std::vector<std::pair<int, QString>> out;
    for (int code = CifErrorCatalogue::first_code; code <= CifErrorCatalogue::last_code; ++code)
        if (!helpFile(code).isEmpty()) out.emplace_back(code, kDocs + "/html/" + helpFile(code));
    return out;
}

QStringList hrefs(const QString& html) {
    QStringList out;
    static const QRegularExpression href("href=\"([^\"]*)\"");
    for (auto it = href.globalMatch(html); it.hasNext();) out << it.next().captured(1);
    return out;
}

bool hasAnchor(const QString& html, const QString& name) {
    return html.contains("name=\"" + name + "\"") || html.contains("id=\"" + name + "\"");
}

TEST(HelpPages, EveryCodeWithAPageHasItsFileNamingCodeAndMessage) {
    const auto pages = pagesByCode();
    ASSERT_FALSE(pages.empty());
    for (const auto& [code, path] : pages) {
        const QString html = read(path);
        ASSERT_FALSE(html.isEmpty()) << "missing or empty: " << path.toStdString();
        EXPECT_TRUE(html.contains(QString("Code %1").arg(code))) << path.toStdString();
        // The catalogue's wording, its placeholders aside.
        const CifErrorCatalogueEntry* entry = CifErrorCatalogue::find(code);
        ASSERT_NE(entry, nullptr) << code;
        const QStringList pieces =
            QString(entry->message).split(QRegularExpression("%[12]"), Qt::SkipEmptyParts);
        for (const QString& piece : pieces)
            EXPECT_TRUE(html.contains(piece.toHtmlEscaped())) << code << ": " << piece.toStdString();

        QTextDocument document;
        document.setHtml(html);
        EXPECT_TRUE(document.metaInformation(QTextDocument::DocumentTitle).startsWith("Tessary help: "))
            << path.toStdString();
    }
}

TEST(HelpPages, EveryLinkOfThePagesAndTheStartPageLeadsToARealPlace) {
    QStringList files{kStartPage};
    for (const auto& entry : pagesByCode()) files << entry.second;
    files.removeDuplicates();
    for (const QString& path : files) {
        const QString html = read(path);
        bool backToStart = path == kStartPage;
        for (const QString& link : hrefs(html)) {
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
            if (!anchor.isEmpty()) {
                EXPECT_TRUE(hasAnchor(read(targetPath), anchor))
                    << path.toStdString() << " -> " << link.toStdString();
            }
            if (targetPath == QDir::cleanPath(kStartPage)) backToStart = true;
        }
        EXPECT_TRUE(backToStart) << "no link back to the start page: " << path.toStdString();
    }
}

TEST(HelpPages, StartPageLeadsToEveryHelpPage) {
    const QString html = read(kStartPage);
    ASSERT_FALSE(html.isEmpty()) << kStartPage.toStdString();
    for (const auto& [code, path] : pagesByCode())
        EXPECT_TRUE(html.contains("href=\"html/" + helpFile(code) + "\"")) << code;
}

}  // namespace
