#include <gtest/gtest.h>

#include <QLabel>
#include <QSplitter>
#include <QTabWidget>

#include "ApplicationTestSupport.hpp"
#include "GuiTestSupport.hpp"
#include "editor/QcbsLineNumberedTextEdit.hpp"
#include "editor/QcbsRichTextEdit.hpp"
#include "views/QcbsCifBoxView.hpp"
#include "visualiser/QcbsVisSorter.hpp"

namespace {

// A window that records the new documents it is asked for.
class RecordingWindow : public QcbsMainWindow {
public:
    explicit RecordingWindow(THandle<QcbsMainWindowSharedData> shared) : QcbsMainWindow(std::move(shared)) {}
    void fileNew(bool replace) override { newDocuments << replace; }
    QList<bool> newDocuments;
};

class MainWindow : public ::testing::Test {
protected:
    QcbsRichTextEdit* editor() const { return window_.currentEditor(); }
    QString statusLine() const { return window_.statusLine()->text(); }

    ScopedPrefsDir prefs_;
    RecordingWindow window_{buildTreeSharedData()};
};

TEST_F(MainWindow, OpensWithTheTreeLeftOfTheEditorAndTheVisualiserOnTheSecondTab) {
    EXPECT_EQ(window_.objectName(), "mainwindow");
    EXPECT_TRUE(window_.isVisible());
    EXPECT_TRUE(window_.acceptDrops());
    EXPECT_EQ(window_.windowTitle(), "new.cif - Tessary");
    EXPECT_EQ(statusMessage(window_), "Ready");
    QTabWidget* tabs = window_.tabs();
    ASSERT_EQ(tabs->count(), 2);
    EXPECT_EQ(tabs->tabText(0), "  Editor  ");
    EXPECT_EQ(tabs->tabText(1), "  Visualiser  ");
    EXPECT_EQ(tabs->widget(0), window_.editorPage());
    EXPECT_EQ(tabs->widget(1), window_.visualiserPage());
    QSplitter* page = window_.editorPage();
    ASSERT_EQ(page->count(), 2);
    EXPECT_EQ(page->widget(0), window_.boxView());
    EXPECT_EQ(page->widget(1), window_.editorPane());
    EXPECT_EQ(editor()->objectName(), "editor");
    EXPECT_EQ(window_.boxView()->topLevelItem(0)->text(0), "(no items to show)");
    EXPECT_EQ(window_.visualiserPage()->message(), "The 3-D view of the structure is not available yet.");
    EXPECT_TRUE(window_.outputPane()->toPlainText().contains("Tessary ready"));
}

TEST(MainWindowStartUp, AWindowStartedForADocumentAsksForOneAfterLoadingTheMandatoryItems) {
    ScopedPrefsDir prefs;
    ScopedLogCapture log(1);
    QcbsMainWindow window(buildTreeSharedData(), QcbsMainWindow::StartWithNewFile);
    const std::string opening = "QcbsMainWindow::QcbsMainWindow - Opening a new file";
    const std::size_t newFile = log.text().find(opening);
    ASSERT_NE(newFile, std::string::npos) << log.text();
    EXPECT_LT(log.text().find("QcbsMainWindow::QcbsMainWindow - Load mandatory data item settings"), newFile);
    EXPECT_TRUE(QcbsMainWindow::isUntitled(window.fileName(window.currentEditor())));
    QcbsMainWindow empty(buildTreeSharedData());
    EXPECT_EQ(log.text().find(opening, newFile + 1), std::string::npos);
}

TEST_F(MainWindow, TheCaptionAndStatusLineFollowTheFileTypingAndTheCursor) {
    window_.setFileName(editor(), "/data/structures/quartz.cif");
    EXPECT_EQ(window_.windowTitle(), "quartz.cif - Tessary");
    window_.setFileName(editor(), "");
    EXPECT_EQ(window_.windowTitle(), "new.cif - Tessary");

    EXPECT_EQ(statusLine(), "Line 1, Column 1");
    QTest::keyClicks(editor(), "data_a");
    EXPECT_EQ(statusLine(), "Line 1, Column 7 (File Modified)");
    QTest::keyClick(editor(), Qt::Key_Return);
    QTest::keyClicks(editor(), "_cell");
    EXPECT_EQ(statusLine(), "Line 2, Column 6 (File Modified)");
    QTest::keyClick(editor(), Qt::Key_Home);
    QTest::keyClick(editor(), Qt::Key_Up);
    EXPECT_EQ(statusLine(), "Line 1, Column 1 (File Modified)");
    editor()->setModified(false);  // as after saving
    EXPECT_EQ(statusLine(), "Line 1, Column 1");
    EXPECT_EQ(statusMessage(window_), "Ready") << "typing leaves the message alone";
    EXPECT_EQ(window_.windowTitle(), "new.cif - Tessary");
}

TEST_F(MainWindow, MessagesReachTheStatusBarAndEachPageGetsItsOwnBack) {
    emit editor()->statusBarMessageRequest("Inserted 3 lines.");
    EXPECT_EQ(statusMessage(window_), "Inserted 3 lines.");
    window_.tabs()->setCurrentWidget(window_.visualiserPage());
    EXPECT_FALSE(window_.statusLine()->isVisible());
    EXPECT_EQ(statusMessage(window_), "The 3-D view of the structure is not available yet.");
    window_.tabs()->setCurrentWidget(window_.editorPage());
    EXPECT_TRUE(window_.statusLine()->isVisible());
    EXPECT_EQ(statusMessage(window_), "Ready");
}

TEST_F(MainWindow, OutputPaneMessagesWaitForAPaneAndNeverReachOneThatIsGone) {
    emit window_.sharedData()->dictionaryLoader()->outputMessageRequest("Loaded dictionary: /d/a.dic", false);
    EXPECT_TRUE(window_.outputPane()->toPlainText().endsWith("Loaded dictionary: /d/a.dic"));

    window_.setOutputPane(nullptr);  // as before the window has made its pane
    emit window_.sharedData()->dictionaryLoader()->outputMessageRequest("Loaded dictionary: /d/b.dic", false);
    window_.writeToOutputPane("Checking CIF ...", true);
    EXPECT_EQ(window_.pendingOutputPaneWrites(),
              (QStringList{"Loaded dictionary: /d/b.dic", "Checking CIF ...<br>"}));
    auto* pane = new QcbsOutputPane(&window_);
    window_.setOutputPane(pane);
    EXPECT_TRUE(window_.pendingOutputPaneWrites().isEmpty());
    window_.writeToOutputPane("Read 3 lines.", false);
    window_.writeToOutputPane("<b>done</b>", true);
    EXPECT_TRUE(
        pane->toPlainText().endsWith("Loaded dictionary: /d/b.dicChecking CIF ...\nRead 3 lines.done\n"))
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

TEST_F(MainWindow, TheLastActiveWindowIsRememberedUntilItCloses) {
    RecordingWindow second(window_.sharedData());
    window_.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window_));
    EXPECT_EQ(QcbsMainWindow::lastActiveWindow(), &window_);
    second.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&second));
    EXPECT_EQ(QcbsMainWindow::lastActiveWindow(), &second);
    second.close();
    EXPECT_EQ(QcbsMainWindow::lastActiveWindow(), nullptr);
}

}  // namespace
