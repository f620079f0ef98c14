// SPDX-License-Identifier: GPL-3.0-or-later
// The main window itself: caption, status line, messages, closing, help and the about box.
#include <gtest/gtest.h>

#include <QDesktopServices>
#include <QLabel>
#include <QMessageBox>
#include <QSettings>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTextBrowser>

#include "ApplicationTestSupport.hpp"
#include "GuiTestSupport.hpp"
#include "application/QtServerApplication.hpp"
#include "base/QcbsUtilities.hpp"
#include "dictionaries/DictionaryTestSupport.hpp"
#include "editor/QcbsRichTextEdit.hpp"
#include "visualiser/QcbsVisSorter.hpp"
#include "widgets/QcbsAboutBox.hpp"
#include "widgets/QcbsHelpWindow.hpp"

namespace {

using A = QcbsMainWindowActions;

// A window that records the new documents it is asked for.
class RecordingWindow : public QcbsMainWindow {
public:
    explicit RecordingWindow(THandle<QcbsMainWindowSharedData> shared) : QcbsMainWindow(std::move(shared)) {}
    void fileNew(bool replace) override { newDocuments << replace; }
    QList<bool> newDocuments;
};

// Takes the addresses the program hands to the web browser.
class UrlRecorder : public QObject {
    Q_OBJECT
public:
    QList<QUrl> urls;
public slots:
    void open(const QUrl& url) { urls << url; }
};

class MainWindow : public ::testing::Test {
protected:
    QcbsRichTextEdit* editor() const { return window_.currentEditor(); }
    QString statusLine() const { return window_.statusLine()->text(); }

    ScopedPrefsDir prefs_;
    RecordingWindow window_{buildTreeSharedData()};
};

TEST(MainWindowStartUp, AWindowStartedForADocumentHasOneAfterLoadingTheMandatoryItems) {
    ScopedPrefsDir prefs;
    QTemporaryDir dir;
    const QString mandatory = writeBytes(dir.filePath("mandatory.txt"), "data_all\n_cell_volume\n");
    {
        QSettings ini(prefs.iniFile(), QSettings::IniFormat);
        ini.setValue("check mandatory items", true);
        ini.setValue("mandatory filename", mandatory);
    }
    QcbsMainWindow window(buildTreeSharedData(), QcbsMainWindow::StartWithNewFile);
    EXPECT_TRUE(window.document()->isOpen());
    EXPECT_TRUE(QcbsMainWindow::isUntitled(window.fileName()));
    const QString pane = window.outputPane()->toPlainText();
    const qsizetype loaded = pane.indexOf("Loaded mandatory data items file: " + mandatory);
    ASSERT_GE(loaded, 0) << pane.toStdString();
    EXPECT_GT(pane.indexOf("Starting new file"), loaded);

    QcbsMainWindow empty(buildTreeSharedData());
    EXPECT_FALSE(empty.document()->isOpen());
    EXPECT_TRUE(empty.fileName().isEmpty());
}

TEST_F(MainWindow, TheCaptionAndStatusLineFollowTheFileTypingAndTheCursor) {
    window_.document()->setFileName("/data/structures/quartz.cif");
    EXPECT_EQ(shownTitle(window_), "quartz.cif - Tessary");
    window_.document()->setFileName("");
    EXPECT_EQ(shownTitle(window_), "new.cif - Tessary");

    EXPECT_EQ(statusLine(), "Line 1, Column 1");
    QTest::keyClicks(editor(), "data_a");
    EXPECT_EQ(statusLine(), "Line 1, Column 7 (File Modified)");
    EXPECT_EQ(shownTitle(window_), "new.cif* - Tessary") << "the caption marks unsaved changes too";
    QTest::keyClick(editor(), Qt::Key_Return);
    QTest::keyClicks(editor(), "_cell");
    EXPECT_EQ(statusLine(), "Line 2, Column 6 (File Modified)");
    QTest::keyClick(editor(), Qt::Key_Home);
    QTest::keyClick(editor(), Qt::Key_Up);
    EXPECT_EQ(statusLine(), "Line 1, Column 1 (File Modified)");
    editor()->setModified(false);  // as after saving
    EXPECT_EQ(statusLine(), "Line 1, Column 1");
    EXPECT_EQ(statusMessage(window_), "Ready") << "typing leaves the message alone";
    EXPECT_EQ(shownTitle(window_), "new.cif - Tessary");
}

TEST_F(MainWindow, MessagesReachTheStatusBarAndEachPageGetsItsOwnBack) {
    emit editor()->statusBarMessageRequest("Inserted 3 lines.");
    EXPECT_EQ(statusMessage(window_), "Inserted 3 lines.");
    window_.tabs()->setCurrentWidget(window_.visualiserPage());
    EXPECT_FALSE(window_.statusLine()->isVisible());
    EXPECT_NE(statusMessage(window_), "Inserted 3 lines.") << "the editor's message stays with the editor";
    EXPECT_FALSE(window_.visualiserPage()->message().isEmpty()) << "no document: the page says so in words";
    window_.tabs()->setCurrentWidget(window_.editorPage());
    EXPECT_TRUE(window_.statusLine()->isVisible());
    EXPECT_EQ(statusMessage(window_), "Ready");
}

TEST_F(MainWindow, OutputPaneMessagesWaitForAPaneAndNeverReachOneThatIsGone) {
    window_.setOutputPane(nullptr);  // as before the window has made its pane
    emit window_.sharedData()->dictionaryLoader()->outputMessageRequest("Loaded dictionary: /d/b.dic", false);
    window_.writeToOutputPane("Checking CIF ...", true);
    auto* pane = new QcbsOutputPane(&window_);
    window_.setOutputPane(pane);
    window_.writeToOutputPane("<b>Read</b> 3 lines.", false);
    EXPECT_TRUE(pane->toPlainText().endsWith("Loaded dictionary: /d/b.dicChecking CIF ...\nRead 3 lines."))
        << pane->toPlainText().toStdString();
    EXPECT_TRUE(pane->textCursor().atEnd());
    delete pane;
    window_.writeToOutputPane("later", true);
    EXPECT_EQ(window_.pendingOutputPaneWrites(), QStringList{"later<br>"});
}

TEST_F(MainWindow, CloseFileClosesThisWindowOnlyWhileAnotherIsOpen) {
    const int before = QcbsMainWindow::instances();
    {
        RecordingWindow second(window_.sharedData());
        EXPECT_EQ(QcbsMainWindow::instances(), before + 1);
        QTest::keyClicks(second.currentEditor(), "data_b");
        second.fileCloseRequested();
        EXPECT_FALSE(second.isVisible());
        EXPECT_TRUE(second.newDocuments.isEmpty());
        EXPECT_EQ(QcbsMainWindow::instances(), before);
    }
    // The last window stays; a document in it gives way to a new one.
    window_.fileCloseRequested();  // empty and unmodified: nothing to do
    EXPECT_TRUE(window_.isVisible());
    EXPECT_TRUE(window_.newDocuments.isEmpty());
    QTest::keyClicks(editor(), "data_a");
    window_.fileCloseRequested();
    EXPECT_TRUE(window_.isVisible());
    EXPECT_EQ(window_.newDocuments, QList<bool>{true});
    // A modified text that was emptied again still counts as a document.
    editor()->clear();
    editor()->setModified(true);
    window_.fileCloseRequested();
    EXPECT_EQ(window_.newDocuments.size(), 2);
}

// --- help and about ------------------------------------------------------------------

TEST_F(MainWindow, TheUserGuideAndThePagesTheErrorListAsksForOpenInOneHelpWindow) {
    const auto page = [&] { return window_.findChild<QcbsHelpWindow*>()->browser()->source().toLocalFile(); };
    window_.helpFile("tessary/PortableHTML/tessary_portable-3-999.html");
    EXPECT_EQ(window_.findChild<QcbsHelpWindow*>(), nullptr);
    EXPECT_EQ(statusMessage(window_),
              "Could not find the help page tessary/PortableHTML/tessary_portable-3-999.html");

    windowAction(window_, A::Help)->trigger();
    ASSERT_NE(window_.findChild<QcbsHelpWindow*>(), nullptr);
    EXPECT_EQ(window_.findChild<QcbsHelpWindow*>()->windowTitle(), "Tessary Help");
    EXPECT_EQ(page(), QDir::cleanPath(TESSARY_SOURCE_DIR "/docs/tessary.html"));
    EXPECT_TRUE(
        window_.findChild<QcbsHelpWindow*>()->browser()->toPlainText().contains("Tessary user guide"));
    emit window_.errorList()->helpRequest("tessary/PortableHTML/tessary_portable-3-069.html");
    EXPECT_EQ(page(), QDir::cleanPath(TESSARY_SOURCE_DIR
                                      "/docs/html/tessary/PortableHTML/tessary_portable-3-069.html"));
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

TEST_F(MainWindow, TheHomePageOpensInTheWebBrowser) {
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

TEST_F(MainWindow, TheAboutBoxNamesVersionDateAndCoreDictionaryAndClosesWithTheWindow) {
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
    EXPECT_FALSE(text.contains("Core dictionary")) << "none was loaded";
    EXPECT_FALSE(box->findChild<QLabel*>("aboutpicture")->pixmap().isNull());

    window_.help();
    window_.close();
    EXPECT_FALSE(window_.findChild<QcbsHelpWindow*>()->isVisible()) << "the help window goes too";
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(window_.findChild<QcbsAboutBox*>(), nullptr);
}

TEST(MainWindowAbout, TheAboutBoxNamesTheCoreDictionaryLoadedAndWhetherItIsSwitchedOn) {
    ScopedPrefsDir prefs;
    QTemporaryDir dictionaries;
    writeDictionary(dictionaries.filePath("extra.dic"), "extra.dic", "1.0");
    writeDictionary(dictionaries.filePath("cif_core.dic"), "cif_core.dic", "2.4.5");
    ScopedEnvironment environment("TESSARY_DICTIONARIES", dictionaries.path().toUtf8());
    QcbsMainWindow window(buildTreeSharedData());
    const auto aboutText = [&window] {
        window.about();
        return window.findChild<QcbsAboutBox*>()->findChild<QLabel*>("abouttext")->text();
    };
    EXPECT_TRUE(aboutText().contains("Core dictionary in use: cif_core.dic version 2.4.5 of 2024-01-01."))
        << aboutText().toStdString();

    const THandle<QcbsMainWindowSharedData>& shared = window.sharedData();
    for (const THandle<CifConcreteDictionary>& dictionary : *shared->dictionaryLoader()->pool())
        if (dictionary->descriptor().name == "cif_core.dic")
            shared->dictionarySettings()->setDictionaryEnabled(dictionary, false);
    EXPECT_TRUE(
        aboutText().contains("Core dictionary cif_core.dic version 2.4.5 of 2024-01-01 is loaded but "
                             "switched off."))
        << aboutText().toStdString();
    EXPECT_TRUE(aboutText().contains("Built for the core CIF dictionary version"));
}

}  // namespace

#include "QcbsMainWindowTest.moc"
