#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QMimeData>
#include <QSplitter>
#include <QTabWidget>
#include <QTest>
#include <QUrl>

#include "GuiTestSupport.hpp"
#include "MainWindowTestSupport.hpp"
#include "editor/QcbsLineNumberedTextEdit.hpp"
#include "editor/QcbsRichTextEdit.hpp"
#include "validation/QcbsErrorListView.hpp"
#include "views/QcbsCifBoxView.hpp"
#include "visualiser/QcbsVisSorter.hpp"

namespace {

// A window that records the document operations it is asked for.
class RecordingWindow : public QcbsMainWindow {
public:
    explicit RecordingWindow(THandle<QcbsMainWindowSharedData> shared) : QcbsMainWindow(std::move(shared)) {}
    void fileNew(bool replace) override { newDocuments << replace; }
    bool fileClose() override {
        ++closes;
        return allowClose;
    }
    void processDropEvent(QDropEvent* event) override {
        for (const QUrl& url : event->mimeData()->urls()) dropped << url.toLocalFile();
    }
    QList<bool> newDocuments;
    QStringList dropped;
    int closes = 0;
    bool allowClose = true;
};

class MainWindow : public ::testing::Test {
protected:
    QString statusLine() const { return window_.statusLine()->text(); }

    ScopedPrefsDir prefs_;
    RecordingWindow window_{buildTreeSharedData()};
};

TEST_F(MainWindow, IsBuiltWithItsEditorPageVisualiserPageAndMessages) {
    EXPECT_EQ(window_.objectName(), "mainwindow");
    EXPECT_FALSE(window_.windowIcon().isNull());
    EXPECT_TRUE(window_.isVisible());
    EXPECT_TRUE(window_.acceptDrops());
    EXPECT_EQ(window_.windowTitle(), "new.cif - Tessary");
    EXPECT_EQ(statusMessage(window_), "Ready");

    QTabWidget* tabs = window_.tabs();
    ASSERT_EQ(tabs->count(), 2);
    EXPECT_EQ(tabs->tabText(0), "  Editor  ");
    EXPECT_EQ(tabs->tabText(1), "  Visualiser  ");
    EXPECT_FALSE(tabs->tabIcon(0).isNull());
    EXPECT_FALSE(tabs->tabIcon(1).isNull());
    EXPECT_EQ(tabs->widget(0), window_.editorPage());
    EXPECT_EQ(tabs->widget(1), window_.visualiserPage());

    // The tree stands left of the editor.
    QSplitter* page = window_.editorPage();
    ASSERT_EQ(page->count(), 2);
    EXPECT_EQ(page->widget(0), window_.boxView());
    EXPECT_EQ(page->widget(1), window_.editorPane());
    EXPECT_EQ(window_.currentEditor()->objectName(), "editor");
    ASSERT_EQ(window_.boxView()->topLevelItemCount(), 1);
    EXPECT_EQ(window_.boxView()->topLevelItem(0)->text(0), "(no items to show)");
    EXPECT_FALSE(window_.boxView()->topLevelItem(0)->flags() & Qt::ItemIsSelectable);
    EXPECT_EQ(window_.visualiserPage()->message(), "The 3-D view of the structure is not available yet.");

    EXPECT_EQ(window_.errorList()->numberTotal(), 0);
    ASSERT_NE(window_.outputPane(), nullptr);
    EXPECT_TRUE(window_.outputPane()->toPlainText().contains("Tessary ready"));
}

TEST_F(MainWindow, TheWindowsOwnOutputPaneTakesMessagesFromTheStart) {
    emit window_.sharedData()->dictionaryLoader()->outputMessageRequest("Loaded dictionary: core.dic", false);
    EXPECT_TRUE(window_.pendingOutputPaneWrites().isEmpty());
    EXPECT_TRUE(window_.outputPane()->toPlainText().endsWith("Loaded dictionary: core.dic"));
}

TEST(MainWindowStartUp, AWindowStartedForADocumentAsksForANewOne) {
    ScopedPrefsDir prefs;
    ScopedLogCapture log(1);
    QcbsMainWindow window(buildTreeSharedData(), QcbsMainWindow::StartWithNewFile);
    const std::string text = log.text();
    const std::size_t mandatory =
        text.find("QcbsMainWindow::QcbsMainWindow - Load mandatory data item settings");
    const std::string opening = "QcbsMainWindow::QcbsMainWindow - Opening a new file";
    const std::size_t newFile = text.find(opening);
    ASSERT_NE(newFile, std::string::npos) << text;
    EXPECT_LT(mandatory, newFile);
    QcbsMainWindow empty(buildTreeSharedData());
    EXPECT_EQ(log.text().find(opening, newFile + opening.size()), std::string::npos);
}

TEST_F(MainWindow, TheCaptionNamesTheFileAndTheProgram) {
    window_.setFileName(window_.currentEditor(), "/data/structures/quartz.cif");
    EXPECT_EQ(window_.windowTitle(), "quartz.cif - Tessary");
    window_.setFileName(window_.currentEditor(), "");
    EXPECT_EQ(window_.windowTitle(), "new.cif - Tessary");
    QTest::keyClicks(window_.currentEditor(), "data_x");
    EXPECT_EQ(window_.windowTitle(), "new.cif - Tessary");
}

TEST_F(MainWindow, TheStatusLineFollowsTypingAndCursorMoves) {
    QcbsRichTextEdit* editor = window_.currentEditor();
    EXPECT_EQ(statusLine(), "Line 1, Column 1");
    QTest::keyClicks(editor, "data_a");
    EXPECT_EQ(statusLine(), "Line 1, Column 7 (File Modified)");
    QTest::keyClick(editor, Qt::Key_Return);
    QTest::keyClicks(editor, "_cell");
    EXPECT_EQ(statusLine(), "Line 2, Column 6 (File Modified)");
    QTest::keyClick(editor, Qt::Key_Home);
    EXPECT_EQ(statusLine(), "Line 2, Column 1 (File Modified)");
    QTest::keyClick(editor, Qt::Key_Up);
    EXPECT_EQ(statusLine(), "Line 1, Column 1 (File Modified)");
    editor->setModified(false);  // as after saving
    EXPECT_EQ(statusLine(), "Line 1, Column 1");
    // Typing leaves the status message alone.
    EXPECT_EQ(statusMessage(window_), "Ready");
}

TEST_F(MainWindow, MessagesReachTheStatusBarAndTheEditorPageGetsItsOwnBack) {
    emit window_.currentEditor()->statusBarMessageRequest("Inserted 3 lines.");
    EXPECT_EQ(statusMessage(window_), "Inserted 3 lines.");
    window_.tabs()->setCurrentWidget(window_.visualiserPage());
    EXPECT_FALSE(window_.statusLine()->isVisible());
    EXPECT_EQ(statusMessage(window_), "The 3-D view of the structure is not available yet.");
    window_.tabs()->setCurrentWidget(window_.editorPage());
    EXPECT_TRUE(window_.statusLine()->isVisible());
    EXPECT_EQ(statusMessage(window_), "Ready");
}

TEST_F(MainWindow, CloseFileClosesThisWindowWhileAnotherIsOpen) {
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
    EXPECT_TRUE(window_.isVisible());
}

TEST_F(MainWindow, CloseFileNeverClosesTheLastWindow) {
    ASSERT_EQ(QcbsMainWindow::instances(), 1);
    window_.fileCloseRequested();  // empty and unmodified: nothing to do
    EXPECT_TRUE(window_.isVisible());
    EXPECT_TRUE(window_.newDocuments.isEmpty());

    QTest::keyClicks(window_.currentEditor(), "data_a");
    window_.fileCloseRequested();
    EXPECT_TRUE(window_.isVisible());
    EXPECT_EQ(window_.newDocuments, QList<bool>{true});

    // A modified text that was emptied again still counts as a document.
    window_.currentEditor()->clear();
    window_.currentEditor()->setModified(true);
    window_.fileCloseRequested();
    EXPECT_EQ(window_.newDocuments.size(), 2);
}

TEST_F(MainWindow, ClosingAsksTheOpenDocumentAndStaysWhenCancelled) {
    window_.close();  // no document: closes without asking
    EXPECT_EQ(window_.closes, 0);
    EXPECT_FALSE(window_.isVisible());

    window_.show();
    window_.setFileName(window_.currentEditor(), "/data/a.cif");
    window_.allowClose = false;
    EXPECT_FALSE(window_.close());
    EXPECT_EQ(window_.closes, 1);
    EXPECT_TRUE(window_.isVisible());
    window_.allowClose = true;
    EXPECT_TRUE(window_.close());
    EXPECT_FALSE(window_.isVisible());
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

TEST_F(MainWindow, FilesDroppedOnTheEditorGoToTheWindowAndTextIsNeverInserted) {
    QcbsRichTextEdit* editor = window_.currentEditor();
    QWidget* target = editor->viewport();
    const QPoint at = target->rect().center();

    QMimeData text;
    text.setText("_dropped_text 1");
    QDragEnterEvent enterText(at, Qt::CopyAction, &text, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &enterText);
    EXPECT_FALSE(enterText.isAccepted());
    QDropEvent dropText(at, Qt::CopyAction, &text, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &dropText);
    EXPECT_EQ(editor->toPlainText(), "");
    EXPECT_TRUE(window_.dropped.isEmpty());

    QMimeData files;
    files.setUrls({QUrl::fromLocalFile("/data/one.cif"), QUrl::fromLocalFile("/data/two.cif")});
    QDragEnterEvent enterFiles(at, Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &enterFiles);
    EXPECT_TRUE(enterFiles.isAccepted());
    QDragMoveEvent moveFiles(at, Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &moveFiles);
    EXPECT_TRUE(moveFiles.isAccepted());
    QDropEvent dropFiles(at, Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &dropFiles);
    EXPECT_EQ(window_.dropped, (QStringList{"/data/one.cif", "/data/two.cif"}));
    EXPECT_EQ(editor->toPlainText(), "");
}

}  // namespace
