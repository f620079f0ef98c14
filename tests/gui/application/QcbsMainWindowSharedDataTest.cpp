#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "GuiTestSupport.hpp"
#include "application/QcbsMainWindow.hpp"
#include "application/QcbsMainWindowSharedData.hpp"

namespace {

// Creates an empty file, with its directories.
void touch(const QString& path) {
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
}

TEST(SharedWindowData, TheProgramDirectoryIsTakenAsGivenNotMadeAbsolute) {
    const QcbsMainWindowSharedData shared(QFileInfo("bin/tessary"));
    EXPECT_EQ(shared.programDirectory(), "bin");
    EXPECT_EQ(shared.documentationCandidates().first(), "bin/docs");
}

TEST(SharedWindowData, FindsTheDocumentationOfTheSourceTreeFromTheBuildDirectory) {
    ScopedLogCapture log(1);
    const QcbsMainWindowSharedData shared(QFileInfo(TESSARY_SOURCE_DIR "/build/bin/tessary"));
    const QString docs = QDir::cleanPath(TESSARY_SOURCE_DIR "/docs");
    EXPECT_EQ(shared.documentationDirectory(), docs);
    EXPECT_EQ(shared.helpSearchPaths(), QStringList{docs + "/html"});
    EXPECT_TRUE(shared.missingDocumentationMessage().isEmpty());
    const std::string expectedLog =
        "Debug(1): main - Searching for documentation in: " +
        QDir::cleanPath(TESSARY_SOURCE_DIR "/build/bin/docs").toStdString() +
        "\nDebug(1): main - Searching for documentation in: " + docs.toStdString() +
        "\nDebug(1): main - Documentation found in: " + docs.toStdString() + "\n";
    EXPECT_EQ(log.text(), expectedLog);
}

TEST(SharedWindowData, TheFirstCandidateHoldingTheStartPageWins) {
    QTemporaryDir root;
    touch(root.filePath("a/distrib/docs/tessary.html"));
    touch(root.filePath("a/Resources/docs/tessary.html"));
    const QcbsMainWindowSharedData shared(QFileInfo(root.filePath("a/b/tessary")));
    EXPECT_EQ(shared.documentationDirectory(), root.filePath("a/distrib/docs"));
    EXPECT_EQ(shared.documentationCandidates().size(), 5);  // the search stopped there

    touch(root.filePath("docs/tessary.html"));  // "/../../docs" comes before both
    const QcbsMainWindowSharedData again(QFileInfo(root.filePath("a/b/tessary")));
    EXPECT_EQ(again.documentationDirectory(), root.filePath("docs"));
}

TEST(SharedWindowData, MissingDocumentationIsDescribedForTheHelpAction) {
    QTemporaryDir root;
    touch(root.filePath("a/b/docs/index.html"));  // a docs folder without the start page
    const QString program = root.filePath("a/b");
    const QcbsMainWindowSharedData shared(QFileInfo(program + "/tessary"));
    EXPECT_TRUE(shared.documentationDirectory().isEmpty());
    const QString expected = "Could not find the Tessary Help documentation in any of:\n\n" + program +
                             "/docs\n" + root.filePath("docs") + "\n" + program + "/Documentation/Tessary\n" +
                             root.filePath("distrib/docs") + "\n" + root.filePath("a/distrib/docs") + "\n" +
                             root.filePath("a/Resources/docs") + "\n";
    EXPECT_EQ(shared.missingDocumentationMessage(), expected);
    EXPECT_EQ(shared.helpSearchPaths(),
              (QStringList{program + "/html/", program + "/../html/", program + "/../../html/",
                           program + "/../Resources/html/"}));
}

TEST(SharedWindowData, OutlivesEveryWindowThatHoldsIt) {
    THandle<QcbsMainWindowSharedData> shared(
        new QcbsMainWindowSharedData(QFileInfo(TESSARY_SOURCE_DIR "/build/bin/tessary")));
    // The dictionary objects and the fixed-width text styles are made with it.
    EXPECT_EQ(shared->dictionarySettings()->objectName(), "DictionarySettings");
    EXPECT_FALSE(shared->dictionaryLoader().is_null());
    EXPECT_EQ(shared->fontStyles()->baseFont().family(), "Courier");
    auto* first = new QcbsMainWindow(shared);
    auto* second = new QcbsMainWindow(shared);
    EXPECT_EQ(shared.use_count(), 3);
    EXPECT_EQ(first->sharedData().get(), second->sharedData().get());
    first->sharedData()->setLineNumbers(true);
    EXPECT_TRUE(second->sharedData()->lineNumbers());
    delete first;
    EXPECT_EQ(shared.use_count(), 2);
    const QcbsMainWindowSharedData* object = shared.get();
    shared = THandle<QcbsMainWindowSharedData>();
    // The remaining window still holds it.
    EXPECT_EQ(second->sharedData().get(), object);
    EXPECT_TRUE(second->sharedData()->lineNumbers());
    EXPECT_EQ(second->sharedData().use_count(), 1);
    delete second;
}

}  // namespace
