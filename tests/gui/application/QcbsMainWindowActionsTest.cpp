#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QSet>
#include <QTest>
#include <QToolBar>

#include "GuiTestSupport.hpp"
#include "MainWindowTestSupport.hpp"
#include "editor/QcbsFontStyleSettings.hpp"
#include "editor/QcbsRichTextEdit.hpp"
#include "views/QcbsCifBoxView.hpp"
#include "widgets/RecentFilesMenu.hpp"

namespace {

using A = QcbsMainWindowActions;

struct Row {
    const char* menu;  // empty: on a tool bar only
    const char* text;
    const char* tip;   // empty: none given
    const char* name;  // empty: none given
    QKeySequence key;
};

QKeySequence ctrl(Qt::Key key) { return QKeySequence(Qt::CTRL | key); }

// What the user finds in the menus, row by row.
const Row kTable[] = {
    {"&File", "&New", "New file", "fileNew", ctrl(Qt::Key_N)},
    {"&File", "&Open...", "Open", "fileOpen", ctrl(Qt::Key_O)},
    {"&File", "New Window", "", "newWindow", {}},
    {"&File", "&Save...", "Save", "fileSave", ctrl(Qt::Key_S)},
    {"&File", "Save &As...", "Save As", "fileSaveAs", {}},
    {"&File", "&Print...", "Print", "filePrint", ctrl(Qt::Key_P)},
    {"&File", "&Close File", "Close", "fileClose", ctrl(Qt::Key_W)},
    {"&File", "E&xit", "Exit", "fileExit", ctrl(Qt::Key_Q)},
    {"&Edit", "&Undo", "Undo", "editUndo", ctrl(Qt::Key_Z)},
    {"&Edit", "&Redo", "Redo", "edotRedo", ctrl(Qt::Key_Y)},
    {"&Edit", "&Copy", "Copy", "editCopy", ctrl(Qt::Key_C)},
    {"&Edit", "Cu&t", "Cut", "editCut", ctrl(Qt::Key_X)},
    {"&Edit", "&Paste", "Paste", "editPaste", ctrl(Qt::Key_V)},
    {"&Edit", "Co&mment Selection", "", "editComment", {}},
    {"&Edit", "U&ncomment Selection", "", "editUncomment", {}},
    {"&Edit", "Insert File", "", "editInsert", {}},
    {"&Edit", "Insert Template", "Template", "editTemplate", {}},
    {"&Edit", "Merge Template", "Merge Template into CIF block", "combi", {}},
    {"&Edit", "Select A&ll", "Select All", "editSelectall", ctrl(Qt::Key_A)},
    {"&Edit", "Zoom in", "", "editZoomin", {}},
    {"&Edit", "Zoom out", "", "editZoomout", {}},
    {"&Edit", "Pre&ferences...", "Preferences", "editPrefs", {}},
    {"&Tools", "Chec&k", "Check CIF for errors (Ctrl+K)", "reparse", ctrl(Qt::Key_K)},
    {"&Tools", "&Item Help", "Pop-up Help for DataItems (Ctrl+I)", "ihelp", ctrl(Qt::Key_I)},
    {"&Tools", "&Browser", "Browse data and dictionary (Ctrl+B)", "ihelp", ctrl(Qt::Key_B)},
    {"&Tools", "Publication Wizard", "Publication Data Wizard", "wizpubl", {}},
    {"&Tools", "Crystal Wizard", "Crystal Data Wizard", "wizcrystal", {}},
    {"&Tools", "Edit Loop", "Edit Loop (Ctrl+L)", "edloop", ctrl(Qt::Key_L)},
    {"&Tools", "New Loop", "New Loop", "newloop", {}},
    {"&Tools", "Open in &Velmora", "Open in Velmora", "open in Velmora", {}},
    {"&Search", "&Find...", "Find", "find", ctrl(Qt::Key_F)},
    {"&Search", "&Find previous", "Find previous", "find previous", {}},
    {"", "", "Find next", "find next", {}},
    {"&Search", "&Replace...", "Replace", "replace", ctrl(Qt::Key_R)},
    {"&Search", "&Go to line...", "Go to line", "go to line", ctrl(Qt::Key_G)},
    {"&Help", "Special Characters...", "", "", {}},
    {"&Help", "About Tessary", "", "", {}},
    {"&Help", "Tessary documentation", "", "", {}},
    {"&Help", "Tessary home page", "", "", {}},
};

// Accelerators that are the window's own choice: checked only for clashes.
const QSet<QString> kFreeAccelerators{"editZoomin", "editZoomout", "find previous", "find next"};

class MainWindowActions : public ::testing::Test {
protected:
    ScopedPrefsDir prefs_;
    QcbsMainWindow window_{buildTreeSharedData()};
};

QAction* inMenu(QMenu* menu, const QString& text) {
    for (QAction* action : menu->actions())
        if (action->text() == text) return action;
    return nullptr;
}

QToolBar* toolBar(QMainWindow& window, const QString& title) {
    for (QToolBar* bar : window.findChildren<QToolBar*>())
        if (bar->windowTitle() == title) return bar;
    return nullptr;
}

TEST_F(MainWindowActions, EveryActionHasItsTextTipNameAcceleratorAndMenu) {
    QStringList titles;
    for (QAction* action : window_.menuBar()->actions()) titles << action->text();
    EXPECT_EQ(titles, (QStringList{"&File", "&Edit", "&Search", "&Tools", "&Help"}));

    for (const Row& row : kTable) {
        SCOPED_TRACE(std::string(row.name) + " / " + row.text);
        QAction* action = nullptr;
        if (*row.menu) {
            QMenu* menu = menuTitled(window_, row.menu);
            ASSERT_NE(menu, nullptr);
            action = inMenu(menu, row.text);
        } else {
            // On the search tool bar only, without a menu entry.
            ASSERT_NE(toolBar(window_, "Search Tools"), nullptr);
            for (QAction* candidate : toolBar(window_, "Search Tools")->actions())
                if (candidate->objectName() == row.name) action = candidate;
            for (QMenu* menu : window_.menuBar()->findChildren<QMenu*>())
                EXPECT_FALSE(menu->actions().contains(action));
        }
        ASSERT_NE(action, nullptr);
        EXPECT_EQ(action->text(), row.text);
        if (*row.name) {
            EXPECT_EQ(action->objectName(), row.name);
        }
        if (*row.tip) {
            EXPECT_EQ(action->toolTip(), row.tip);
            EXPECT_EQ(action->statusTip(), row.tip);
        }
        if (!kFreeAccelerators.contains(row.name)) {
            EXPECT_EQ(action->shortcut(), row.key);
        }
        EXPECT_FALSE(action->icon().isNull());
    }
}

TEST_F(MainWindowActions, NoTwoActionsShareAnAccelerator) {
    QMap<QString, QString> owner;
    for (QAction* action : window_.findChildren<QAction*>()) {
        if (action->shortcut().isEmpty()) continue;
        const QString key = action->shortcut().toString();
        EXPECT_FALSE(owner.contains(key)) << key.toStdString() << " of " << action->text().toStdString()
                                          << " and " << owner.value(key).toStdString();
        owner[key] = action->text();
    }
    EXPECT_TRUE(owner.contains("Ctrl++") && owner.contains("Ctrl+-")) << "zoom has accelerators";
}

TEST_F(MainWindowActions, ToolBarsBlockChooserAndRecentFiles) {
    for (const char* title : {"File Tools", "Editor Tools", "Cif Tools", "Search Tools"})
        EXPECT_NE(toolBar(window_, title), nullptr) << title;

    QComboBox* blocks = window_.blocksCombo();
    EXPECT_EQ(blocks->objectName(), "blocks");
    EXPECT_EQ(blocks->toolTip(), "Click to go to block. Re-check CIF to update list");
    ASSERT_EQ(blocks->count(), 1);
    EXPECT_EQ(blocks->currentText(), "Blocks:  none");
    EXPECT_FALSE(blocks->isEnabled());
    EXPECT_TRUE(toolBar(window_, "Cif Tools")->isAncestorOf(blocks));

    QMenu* recent = window_.windowActions()->recentFilesMenu();
    ASSERT_NE(recent, nullptr);
    EXPECT_EQ(recent->title(), "&Recent Files");
    EXPECT_TRUE(menuTitled(window_, "&File")->actions().contains(recent->menuAction()));
    QcbsMainWindow::recentFiles->addFile("/data/recent one.cif");
    EXPECT_FALSE(recent->actions().isEmpty());
}

TEST_F(MainWindowActions, ToolButtonsShowTheirTextOnlyWhenAskedTo) {
    EXPECT_EQ(window_.toolButtonStyle(), Qt::ToolButtonIconOnly);
    QcbsMainWindow::text_buttons = true;
    window_.initialiseSettings();
    EXPECT_EQ(window_.toolButtonStyle(), Qt::ToolButtonTextUnderIcon);
    QcbsMainWindow::text_buttons = false;
    window_.initialiseSettings();
    EXPECT_EQ(window_.toolButtonStyle(), Qt::ToolButtonIconOnly);
}

// Actions whose work is still to come tell the user so; none does nothing.
// Take an action off this list when its work lands.
TEST_F(MainWindowActions, ActionsStillToComeSaySoInTheStatusBar) {
    const std::pair<A::Id, const char*> pending[] = {
        {A::Combine, "Merging a template"},
        {A::EditPrefs, "The preferences dialogue"},
        {A::Find, "Find"},
        {A::FindPrevious, "Find previous"},
        {A::FindNext, "Find next"},
        {A::Replace, "Replace"},
        {A::GoToLine, "Go to line"},
        {A::ItemHelp, "Data item help"},
        {A::PublicationWizard, "The publication wizard"},
        {A::CrystalWizard, "The crystal wizard"},
        {A::EditLoop, "Editing loops"},
        {A::NewLoop, "Making new loops"},
        {A::SpecialCharacters, "The special-character table"},
        {A::OpenInVelmora, "Opening the structure in Velmora"},
    };
    for (const auto& [id, function] : pending) {
        QAction* action = windowAction(window_, id);
        action->setEnabled(true);  // some start disabled
        window_.statusBar()->clearMessage();
        action->trigger();
        EXPECT_EQ(statusMessage(window_), QString(function) + " is not available yet.") << function;
    }
}

TEST_F(MainWindowActions, EditingActionsWorkOnTheEditor) {
    QcbsRichTextEdit* editor = window_.currentEditor();
    QTest::keyClicks(editor, "data_a");
    QTest::keyClick(editor, Qt::Key_Return);
    QTest::keyClicks(editor, "_cell_volume 10");

    windowAction(window_, A::EditSelectAll)->trigger();
    EXPECT_EQ(editor->textCursor().selectedText().size(), editor->toPlainText().size());
    windowAction(window_, A::EditComment)->trigger();
    EXPECT_TRUE(editor->text(0).startsWith("#")) << editor->text(0).toStdString();
    EXPECT_TRUE(editor->text(1).startsWith("#"));
    windowAction(window_, A::EditUncomment)->trigger();
    EXPECT_EQ(editor->toPlainText(), "data_a\n_cell_volume 10");

    editor->setSelection(1, 0, 1, 12);
    windowAction(window_, A::EditCopy)->trigger();
    EXPECT_EQ(QApplication::clipboard()->text(), "_cell_volume");
    windowAction(window_, A::EditCut)->trigger();
    EXPECT_EQ(editor->text(1), " 10");
    windowAction(window_, A::EditPaste)->trigger();
    EXPECT_EQ(editor->text(1), "_cell_volume 10");

    windowAction(window_, A::EditUndo)->trigger();
    EXPECT_EQ(editor->text(1), " 10");
    windowAction(window_, A::EditRedo)->trigger();
    EXPECT_EQ(editor->text(1), "_cell_volume 10");
}

TEST_F(MainWindowActions, AcceleratorsTypedInTheEditorReachTheWindow) {
    QcbsRichTextEdit* editor = window_.currentEditor();
    window_.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window_));
    editor->setFocus();
    // Ctrl+K would delete to the end of the line in a plain text editor.
    QTest::keyClicks(editor, "data_a");
    editor->setCursorPosition(0, 0);
    window_.setFileName(editor, "typed.cif");
    QTest::keyClick(editor, Qt::Key_K, Qt::ControlModifier);
    EXPECT_EQ(statusMessage(window_), "Ready");
    EXPECT_TRUE(window_.isParsed(editor));
    EXPECT_EQ(editor->toPlainText(), "data_a");
    QTest::keyClick(editor, Qt::Key_F, Qt::ControlModifier);
    EXPECT_EQ(statusMessage(window_), "Find is not available yet.");
    QTest::keyClick(editor, Qt::Key_L, Qt::ControlModifier);
    EXPECT_EQ(statusMessage(window_), "Editing loops is not available yet.");
}

TEST_F(MainWindowActions, ZoomChangesTheSharedEditorFont) {
    const int before = window_.sharedData()->fontStyles()->editorFont().pointSize();
    windowAction(window_, A::EditZoomIn)->trigger();
    const int zoomed = window_.sharedData()->fontStyles()->editorFont().pointSize();
    EXPECT_GT(zoomed, before);
    EXPECT_EQ(window_.currentEditor()->font().pointSize(), zoomed);
    windowAction(window_, A::EditZoomOut)->trigger();
    EXPECT_EQ(window_.sharedData()->fontStyles()->editorFont().pointSize(), before);
}

TEST_F(MainWindowActions, BrowserShowsAndHidesTheTreeBesideTheEditor) {
    QcbsCifBoxView* tree = window_.boxView();
    EXPECT_TRUE(tree->isVisible());
    windowAction(window_, A::Browser)->trigger();
    EXPECT_FALSE(tree->isVisible());
    windowAction(window_, A::Browser)->trigger();
    EXPECT_TRUE(tree->isVisible());
}

}  // namespace
