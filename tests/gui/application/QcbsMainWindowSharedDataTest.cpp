#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "ApplicationTestSupport.hpp"
#include "GuiTestSupport.hpp"

namespace {

TEST(SharedWindowData, FindsTheDocumentationOfTheSourceTreeFromTheBuildDirectory) {
    ScopedLogCapture log(1);
    const QcbsMainWindowSharedData shared(QFileInfo(TESSARY_SOURCE_DIR "/build/bin/tessary"));
    const QString docs = QDir::cleanPath(TESSARY_SOURCE_DIR "/docs");
    EXPECT_EQ(shared.documentationDirectory(), docs);
    EXPECT_EQ(shared.helpSearchPaths(), QStringList{docs + "/html"});
    EXPECT_TRUE(shared.missingDocumentationMessage().isEmpty());
    const std::string searching = "Debug(1): main - Searching for documentation in: ";
    EXPECT_EQ(log.text(), searching + QDir::cleanPath(TESSARY_SOURCE_DIR "/build/bin/docs").toStdString() +
                              "\n" + searching + docs.toStdString() +
                              "\nDebug(1): main - Documentation found in: " + docs.toStdString() + "\n");

    // The program directory is taken as given, not made absolute.
    EXPECT_EQ(QcbsMainWindowSharedData(QFileInfo("bin/tessary")).documentationCandidates().first(),
              "bin/docs");
}

void touch(const QString& path) { writeBytes(path, {}); }

TEST(SharedWindowData, TheFirstCandidateHoldingTheStartPageWins) {
    QTemporaryDir root;
    touch(root.filePath("a/distrib/docs/tessary.html"));
    touch(root.filePath("a/Resources/docs/tessary.html"));
    const QcbsMainWindowSharedData shared(QFileInfo(root.filePath("a/b/tessary")));
    EXPECT_EQ(shared.documentationDirectory(), root.filePath("a/distrib/docs"));
    EXPECT_EQ(shared.documentationCandidates().size(), 5) << "the search stops there";

    touch(root.filePath("docs/tessary.html"));  // "/../../docs" comes before both
    EXPECT_EQ(QcbsMainWindowSharedData(QFileInfo(root.filePath("a/b/tessary"))).documentationDirectory(),
              root.filePath("docs"));
}

TEST(SharedWindowData, MissingDocumentationIsDescribedForTheHelpAction) {
    QTemporaryDir root;
    touch(root.filePath("a/b/docs/index.html"));  // a docs folder without the start page
    const QString program = root.filePath("a/b");
    const QcbsMainWindowSharedData shared(QFileInfo(program + "/tessary"));
    EXPECT_TRUE(shared.documentationDirectory().isEmpty());
    EXPECT_EQ(shared.missingDocumentationMessage(),
              "Could not find the Tessary Help documentation in any of:\n\n" + program + "/docs\n" +
                  root.filePath("docs") + "\n" + program + "/Documentation/Tessary\n" +
                  root.filePath("distrib/docs") + "\n" + root.filePath("a/distrib/docs") + "\n" +
                  root.filePath("a/Resources/docs") + "\n");
    EXPECT_EQ(shared.helpSearchPaths(),
              (QStringList{program + "/html/", program + "/../html/", program + "/../../html/",
                           program + "/../Resources/html/"}));
}

TEST(SharedWindowData, OneObjectServesEveryWindowAndOutlivesTheHandleThatMadeIt) {
    ScopedPrefsDir prefs;
    THandle<QcbsMainWindowSharedData> shared = buildTreeSharedData();
    auto first = std::make_unique<QcbsMainWindow>(shared);
    QcbsMainWindow second(shared);
    EXPECT_EQ(shared.use_count(), 3);
    first->sharedData()->setLineNumbers(true);
    EXPECT_TRUE(second.sharedData()->lineNumbers());
    first.reset();
    const QcbsMainWindowSharedData* object = shared.get();
    shared = THandle<QcbsMainWindowSharedData>();
    EXPECT_EQ(second.sharedData().get(), object);
    EXPECT_EQ(second.sharedData().use_count(), 1);
    EXPECT_TRUE(second.sharedData()->lineNumbers());
}

}  // namespace
