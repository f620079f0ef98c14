#include <gtest/gtest.h>

#include <QDesktopServices>
#include <QLabel>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTextBrowser>

#include "ApplicationTestSupport.hpp"
#include "GuiTestSupport.hpp"
#include "application/QcbsUtilities.hpp"
#include "application/QtServerApplication.hpp"
#include "widgets/QcbsAboutBox.hpp"
#include "widgets/QcbsHelpWindow.hpp"

namespace {

using A = QcbsMainWindowActions;

// Takes the addresses the program hands to the web browser.
class UrlRecorder : public QObject {
    Q_OBJECT
public:
    QList<QUrl> urls;
public slots:
    void open(const QUrl& url) { urls << url; }
};

class MainWindowHelp : public ::testing::Test {
protected:
    QcbsHelpWindow* helpWindow() const { return window_.findChild<QcbsHelpWindow*>(); }
    QString shownPage() const { return helpWindow()->browser()->source().toLocalFile(); }

    ScopedPrefsDir prefs_;
    QcbsMainWindow window_{buildTreeSharedData()};
};

TEST_F(MainWindowHelp, TheUserGuideAndThePagesTheErrorListAsksForOpenInOneHelpWindow) {
    window_.helpFile("tessary/PortableHTML/tessary_portable-3-999.html");
    EXPECT_EQ(helpWindow(), nullptr);
    EXPECT_EQ(statusMessage(window_),
              "Could not find the help page tessary/PortableHTML/tessary_portable-3-999.html");

    windowAction(window_, A::Help)->trigger();
    ASSERT_NE(helpWindow(), nullptr);
    EXPECT_TRUE(helpWindow()->isVisible());
    EXPECT_EQ(helpWindow()->windowTitle(), "Tessary Help");
    EXPECT_EQ(shownPage(), QDir::cleanPath(TESSARY_SOURCE_DIR "/docs/tessary.html"));
    EXPECT_TRUE(helpWindow()->browser()->toPlainText().contains("Tessary user guide"));

    emit window_.errorList()->helpRequest("tessary/PortableHTML/tessary_portable-3-069.html");
    EXPECT_EQ(shownPage(), QDir::cleanPath(TESSARY_SOURCE_DIR
                                           "/docs/html/tessary/PortableHTML/tessary_portable-3-069.html"));
    EXPECT_FALSE(helpWindow()->browser()->toPlainText().isEmpty());
    EXPECT_EQ(window_.findChildren<QcbsHelpWindow*>().size(), 1);
}

TEST(MainWindowHelpMissing, WithoutDocumentationHelpListsWhereItLooked) {
    ScopedPrefsDir prefs;
    QTemporaryDir programDir;
    QcbsMainWindow window(THandle<QcbsMainWindowSharedData>(
        new QcbsMainWindowSharedData(QFileInfo(programDir.filePath("tessary")))));
    window.help();
    auto* box = window.findChild<QMessageBox*>("helpmissing");
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->windowTitle(), "Warning");
    EXPECT_TRUE(box->text().startsWith("Could not find the Tessary Help documentation in any of:\n\n"));
    EXPECT_TRUE(box->text().contains(QDir::cleanPath(programDir.path() + "/docs") + "\n"));
    EXPECT_EQ(window.findChild<QcbsHelpWindow*>(), nullptr);
    box->close();
}

TEST_F(MainWindowHelp, TheHomePageOpensInTheWebBrowser) {
    if (!QtServerApplication::browserScriptPath().isEmpty())
        GTEST_SKIP() << "web pages go to a browser script";
    UrlRecorder recorder;
    const QString url = QString::fromStdString(TessaryURL());
    QDesktopServices::setUrlHandler(QUrl(url).scheme(), &recorder, "open");
    windowAction(window_, A::HomePage)->trigger();
    QDesktopServices::unsetUrlHandler(QUrl(url).scheme());
    EXPECT_EQ(recorder.urls, QList<QUrl>{QUrl(url)});
    EXPECT_EQ(statusMessage(window_), "Opening " + url);
}

TEST_F(MainWindowHelp, TheAboutBoxNamesVersionDateAndCoreDictionaryAndClosesWithTheWindow) {
    windowAction(window_, A::About)->trigger();
    window_.about();
    ASSERT_EQ(window_.findChildren<QcbsAboutBox*>().size(), 1);
    auto* box = window_.findChild<QcbsAboutBox*>();
    EXPECT_TRUE(box->isVisible());
    EXPECT_EQ(box->windowTitle(), "About Tessary");
    const QString text = box->findChild<QLabel*>("abouttext")->text();
    for (const std::string& part :
         {TessaryVersion(), TessaryDate(), coreCIFVersion(), coreCIFDate(), TessaryURL()})
        EXPECT_TRUE(text.contains(QString::fromStdString(part))) << part;
    EXPECT_FALSE(box->findChild<QLabel*>("aboutpicture")->pixmap().isNull());

    window_.help();
    window_.close();
    EXPECT_FALSE(helpWindow()->isVisible());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(window_.findChild<QcbsAboutBox*>(), nullptr);
}

}  // namespace

#include "QcbsMainWindowHelpTest.moc"
