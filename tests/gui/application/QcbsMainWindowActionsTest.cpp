// SPDX-License-Identifier: GPL-3.0-or-later
// The main window's actions: menus, tool bars, what each does now, and when each is on.
// Which actions are on depends on the page and the document at hand.
#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QMenuBar>
#include <QTabWidget>
#include <QToolBar>

#include "ApplicationTestSupport.hpp"
#include "GuiTestSupport.hpp"
#include "editor/QcbsFontStyleSettings.hpp"
#include "editor/QcbsRichTextEdit.hpp"
#include "views/QcbsCifBoxView.hpp"
#include "widgets/RecentFilesMenu.hpp"

namespace {

using A = QcbsMainWindowActions;

struct Row {
    const char* menu;  // empty: on the search tool bar only
    const char* text;
    const char* tip;   // empty: none given
    const char* name;  // empty: none given
    QKeySequence key;  // checked unless the name is in kFreeAccelerators
};

QKeySequence ctrl(Qt::Key key) { return QKeySequence(Qt::CTRL | key); }

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
    {"&Edit", "Fon&ts and Colours...", "Fonts and colours", "editFonts", {}},
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
    bool enabled(A::Id id) const { return windowAction(window_, id)->isEnabled(); }
    void trigger(A::Id id) { windowAction(window_, id)->trigger(); }
    void showPage(QWidget* page) { window_.tabs()->setCurrentWidget(page); }
    QcbsRichTextEdit* editor() const { return window_.currentEditor(); }
    QToolBar* toolBar(const QString& title) {
        for (QToolBar* bar : window_.findChildren<QToolBar*>())
            if (bar->windowTitle() == title) return bar;
        return nullptr;
    }
    QMenu* menu(const QString& title) {
        for (QAction* action : window_.menuBar()->actions())
            if (action->text() == title) return action->menu();
        return nullptr;
    }
    // Gives the editor the text and the window a document read from it.
    void checked(const std::string& text) {
        editor()->setPlainText(QString::fromStdString(text));
        window_.document()->setFileName("checked.cif");
        window_.parse();
    }

    ScopedPrefsDir prefs_;
    QcbsMainWindow window_{buildTreeSharedData()};
};

TEST_F(MainWindowActions, EveryActionHasItsTextTipNameAcceleratorIconAndMenu) {
    QStringList titles;
    for (QAction* action : window_.menuBar()->actions()) titles << action->text();
    EXPECT_EQ(titles, (QStringList{"&File", "&Edit", "&Search", "&Tools", "&Help"}));
    for (const char* title : {"File Tools", "Editor Tools", "Cif Tools", "Search Tools"})
        EXPECT_NE(toolBar(title), nullptr) << title;
    QMenu* recent = window_.windowActions()->recentFilesMenu();
    EXPECT_TRUE(menu("&File")->actions().contains(recent->menuAction()));

    QList<QAction*> inMenus;
    for (QMenu* any : window_.menuBar()->findChildren<QMenu*>()) inMenus << any->actions();
    for (const Row& row : kTable) {
        QAction* action = nullptr;
        for (QAction* candidate : *row.menu ? menu(row.menu)->actions() : toolBar("Search Tools")->actions())
            if (*row.menu ? candidate->text() == row.text : candidate->objectName() == row.name)
                action = candidate;
        ASSERT_NE(action, nullptr) << row.text << row.name;
        // What is given of the action, and what the window made of it.
        const bool keyGiven = !kFreeAccelerators.contains(row.name);
        const QString tip = *row.tip ? action->toolTip() + " / " + action->statusTip() : "";
        const QStringList made{action->text(),
                               tip,
                               *row.name ? action->objectName() : "",
                               keyGiven ? action->shortcut().toString() : "",
                               action->icon().isNull() ? "no icon" : "",
                               inMenus.contains(action) ? "" : "no menu"};
        const QStringList given{row.text, *row.tip ? QString(row.tip) + " / " + row.tip : "",
                                row.name, keyGiven ? row.key.toString() : "",
                                "",       *row.menu ? "" : "no menu"};
        EXPECT_EQ(made.join(" | "), given.join(" | "));
    }

    // Two actions on one accelerator would both be dead.
    QMap<QString, QString> owner;
    for (QAction* action : window_.findChildren<QAction*>()) {
        const QString key = action->shortcut().toString();
        if (key.isEmpty()) continue;
        EXPECT_FALSE(owner.contains(key)) << key.toStdString() << " of " << action->text().toStdString()
                                          << " and " << owner.value(key).toStdString();
        owner[key] = action->text();
    }
    EXPECT_TRUE(owner.contains("Ctrl++") && owner.contains("Ctrl+-")) << "zoom has accelerators";
}

TEST_F(MainWindowActions, EditingAndViewActionsWorkOnTheEditor) {
    typeLines(editor(), {"data_a"});
    QTest::keyClicks(editor(), "_cell_volume 10");
    trigger(A::EditSelectAll);
    trigger(A::EditComment);
    EXPECT_TRUE(editor()->text(0).startsWith("#") && editor()->text(1).startsWith("#"))
        << editor()->text(0).toStdString();
    trigger(A::EditUncomment);
    EXPECT_EQ(editor()->toPlainText(), "data_a\n_cell_volume 10");

    editor()->setSelection(1, 0, 1, 12);
    trigger(A::EditCopy);
    EXPECT_EQ(QApplication::clipboard()->text(), "_cell_volume");
    for (const auto& [id, line] : {std::pair{A::EditCut, " 10"},
                                   {A::EditPaste, "_cell_volume 10"},
                                   {A::EditUndo, " 10"},
                                   {A::EditRedo, "_cell_volume 10"}}) {
        trigger(id);
        EXPECT_EQ(editor()->text(1), line) << id;
    }
    const auto fontSize = [&] { return window_.sharedData()->fontStyles()->editorFont().pointSize(); };
    const int size = fontSize();
    trigger(A::EditZoomIn);
    EXPECT_GT(fontSize(), size);
    EXPECT_EQ(editor()->font().pointSize(), fontSize());
    trigger(A::EditZoomOut);
    EXPECT_EQ(fontSize(), size);

    trigger(A::Browser);
    EXPECT_FALSE(window_.boxView()->isVisible());
    trigger(A::Browser);
    EXPECT_TRUE(window_.boxView()->isVisible());
}

TEST_F(MainWindowActions, TheVisualiserPageTurnsOffTheEditorsToolsAndTheEditorPageBringsThemBack) {
    const A::Id editorTools[] = {A::EditCopy,      A::EditCut,           A::EditPaste, A::EditComment,
                                 A::EditSelectAll, A::EditZoomIn,        A::Find,      A::FindNext,
                                 A::Replace,       A::GoToLine,          A::Reparse,   A::ItemHelp,
                                 A::Browser,       A::PublicationWizard, A::EditLoop};
    const A::Id always[] = {A::FileNew,   A::FileOpen, A::NewWindow, A::FileExit,
                            A::EditPrefs, A::About,    A::Help};
    // A new window has no document to save, print or close, and no history.
    for (A::Id id : {A::FileSave, A::FileSaveAs, A::FilePrint, A::FileClose, A::EditUndo, A::EditRedo})
        EXPECT_FALSE(enabled(id)) << id;
    QTest::keyClicks(editor(), "data_a");
    editor()->undo();
    EXPECT_FALSE(enabled(A::EditUndo));
    EXPECT_TRUE(enabled(A::EditRedo));
    showPage(window_.visualiserPage());
    showPage(window_.editorPage());
    EXPECT_FALSE(window_.blocksCombo()->isEnabled()) << "no blocks listed";
    window_.blocksCombo()->addItems({"a", "b"});  // as after a check that found blocks

    for (QWidget* page : QWidgetList{window_.visualiserPage(), window_.editorPage()}) {
        showPage(page);
        const bool editing = page == static_cast<QWidget*>(window_.editorPage());
        for (A::Id id : editorTools) EXPECT_EQ(enabled(id), editing) << id;
        EXPECT_EQ(enabled(A::EditRedo), editing);
        EXPECT_EQ(window_.blocksCombo()->isEnabled(), editing);
        EXPECT_EQ(enabled(A::OpenInVelmora), !editing);
        for (A::Id id : always) EXPECT_TRUE(enabled(id)) << id;
    }
    // A text marked not to be checked keeps Check off, in every window when asked.
    window_.document()->setCheckAllowed(false);
    window_.enableTools(window_.editorPage());
    EXPECT_FALSE(enabled(A::Reparse));
    window_.document()->setCheckAllowed(true);
    window_.enableTools(window_.editorPage());
    EXPECT_TRUE(enabled(A::Reparse));
    QcbsMainWindow second(window_.sharedData());
    QcbsMainWindow::enableAllInstParseTools(false);
    EXPECT_FALSE(enabled(A::Reparse) || windowAction(second, A::Reparse)->isEnabled());
    QcbsMainWindow::enableAllInstParseTools(true);
    EXPECT_TRUE(enabled(A::Reparse) && windowAction(second, A::Reparse)->isEnabled());
}

TEST_F(MainWindowActions, TheCrystalWizardNeedsChemicalAtomSiteOrCellDataInTheBlockAtTheCursor) {
    EXPECT_FALSE(enabled(A::CrystalWizard)) << "no document checked yet";
    const std::pair<const char*, bool> blocks[] = {
        {"_publ_section_title 'A structure'\n_journal_name_full 'Acta'\n", false},
        {"_cell_length_a 5.1\n", true},
        {"_chemical_formula_sum 'Pb O4 S'\n", true},
        {"loop_\n_atom_site_label\n_atom_site_fract_x\nPb1 0.1\n", true},
        {"_cellar_door 1\n", false},  // a category name is matched whole
    };
    for (const auto& [items, crystal] : blocks) {
        checked(std::string("data_c\n") + items);
        EXPECT_EQ(enabled(A::CrystalWizard), crystal) << items;
        EXPECT_TRUE(enabled(A::PublicationWizard));
    }
    checked("data_paper\n_publ_section_title x\ndata_crystal\n_cell_length_a 5.1\n");
    for (const auto& [line, crystal] : {std::pair{1, false}, {3, true}, {0, false}}) {
        editor()->setCursorPosition(line, 0);
        EXPECT_EQ(enabled(A::CrystalWizard), crystal) << line;
    }
    editor()->setCursorPosition(3, 0);
    showPage(window_.visualiserPage());
    EXPECT_FALSE(enabled(A::CrystalWizard));
}

}  // namespace
