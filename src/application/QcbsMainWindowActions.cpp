// SPDX-License-Identifier: GPL-3.0-or-later
// The actions of a main window with their menus and tool bars, built from one table.
#include "application/QcbsMainWindowActions.hpp"

#include <QAction>
#include <QComboBox>
#include <QIcon>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>
#include <QToolBar>

#include "application/QcbsMainWindow.hpp"
#include "base/QcbsUtilities.hpp"
#include "resources/QcbsXpmResource.hpp"
#include "widgets/RecentFilesMenu.hpp"

namespace {

using W = QcbsMainWindow;
using A = QcbsMainWindowActions;
using Img = QcbsXpmResource;

constexpr int ctrl(Qt::Key key) { return (Qt::CTRL | key).toCombined(); }
constexpr int shift(Qt::Key key) { return (Qt::SHIFT | key).toCombined(); }

// Where an action appears besides its menu.
enum Placement { MenuOnly, MenuAndToolBar, ToolBarOnly };

struct ActionEntry {
    A::Id id;
    A::Menu menu;
    const char* text;  // "%1" stands for the program's name
    const char* tip;   // tool tip and status text; none when empty
    const char* name;  // object name
    int key;           // accelerator, 0 for none
    int image;         // QcbsXpmResource number
    A::Tools group;
    Placement placement;
    bool separatorBefore;
    void (W::*slot)();  // null: the window connects it itself
};

// The one table of the window's actions, in menu order. The zoom actions
// are connected to the editor when the window makes it.
const ActionEntry kActions[] = {
    {A::FileNew, A::FileMenu, "&New", "New file", "fileNew", ctrl(Qt::Key_N), Img::FileNew, A::AlwaysOn,
     MenuAndToolBar, false, qOverload<>(&W::fileNew)},
    {A::FileOpen, A::FileMenu, "&Open...", "Open", "fileOpen", ctrl(Qt::Key_O), Img::FileOpen, A::AlwaysOn,
     MenuAndToolBar, false, qOverload<>(&W::fileOpen)},
    {A::NewWindow, A::FileMenu, "New Window", "", "newWindow", 0, Img::NewWindow, A::AlwaysOn, MenuOnly,
     false, &W::newWindow},
    {A::FileSave, A::FileMenu, "&Save...", "Save", "fileSave", ctrl(Qt::Key_S), Img::FileSave, A::FileTools,
     MenuAndToolBar, true, &W::fileSave},
    {A::FileSaveAs, A::FileMenu, "Save &As...", "Save As", "fileSaveAs", 0, Img::FileSaveAs, A::FileTools,
     MenuOnly, false, &W::fileSaveAs},
    {A::FilePrint, A::FileMenu, "&Print...", "Print", "filePrint", ctrl(Qt::Key_P), Img::FilePrint,
     A::FileTools, MenuAndToolBar, true, &W::filePrint},
    {A::FileClose, A::FileMenu, "&Close File", "Close", "fileClose", ctrl(Qt::Key_W), Img::FileClose,
     A::FileTools, MenuOnly, true, &W::fileCloseRequested},
    {A::FileExit, A::FileMenu, "E&xit", "Exit", "fileExit", ctrl(Qt::Key_Q), Img::FileExit, A::AlwaysOn,
     MenuOnly, false, &W::fileExit},

    {A::EditUndo, A::EditMenu, "&Undo", "Undo", "editUndo", ctrl(Qt::Key_Z), Img::Undo, A::EditorTools,
     MenuAndToolBar, false, &W::editUndo},
    // The misspelt object name is the one stored layouts and scripts know.
    {A::EditRedo, A::EditMenu, "&Redo", "Redo", "edotRedo", ctrl(Qt::Key_Y), Img::Redo, A::EditorTools,
     MenuAndToolBar, false, &W::editRedo},
    {A::EditCopy, A::EditMenu, "&Copy", "Copy", "editCopy", ctrl(Qt::Key_C), Img::Copy, A::EditorTools,
     MenuAndToolBar, true, &W::editCopy},
    {A::EditCut, A::EditMenu, "Cu&t", "Cut", "editCut", ctrl(Qt::Key_X), Img::Cut, A::EditorTools,
     MenuAndToolBar, false, &W::editCut},
    {A::EditPaste, A::EditMenu, "&Paste", "Paste", "editPaste", ctrl(Qt::Key_V), Img::Paste, A::EditorTools,
     MenuAndToolBar, false, &W::editPaste},
    {A::EditComment, A::EditMenu, "Co&mment Selection", "", "editComment", 0, Img::EditComment,
     A::EditorTools, MenuAndToolBar, true, &W::editComment},
    {A::EditUncomment, A::EditMenu, "U&ncomment Selection", "", "editUncomment", 0, Img::EditUncomment,
     A::EditorTools, MenuAndToolBar, false, &W::editUncomment},
    {A::EditInsert, A::EditMenu, "Insert File", "", "editInsert", 0, Img::Insert, A::EditorTools, MenuOnly,
     true, &W::editInsert},
    {A::EditTemplate, A::EditMenu, "Insert Template", "Template", "editTemplate", 0, Img::InsertTemplate,
     A::EditorTools, MenuOnly, false, &W::editInsertTemplate},
    {A::Combine, A::EditMenu, "Merge Template", "Merge Template into CIF block", "combi", 0,
     Img::MergeTemplate, A::EditorTools, MenuOnly, false, &W::combine},
    {A::EditSelectAll, A::EditMenu, "Select A&ll", "Select All", "editSelectall", ctrl(Qt::Key_A),
     Img::SelectAll, A::EditorTools, MenuOnly, true, &W::editSelectall},
    {A::EditZoomIn, A::EditMenu, "Zoom in", "", "editZoomin", ctrl(Qt::Key_Plus), Img::ZoomIn, A::EditorTools,
     MenuAndToolBar, true, nullptr},
    {A::EditZoomOut, A::EditMenu, "Zoom out", "", "editZoomout", ctrl(Qt::Key_Minus), Img::ZoomOut,
     A::EditorTools, MenuAndToolBar, false, nullptr},
    {A::EditPrefs, A::EditMenu, "Pre&ferences...", "Preferences", "editPrefs", 0, Img::Preferences,
     A::AlwaysOn, MenuOnly, true, &W::editPrefs},
    {A::EditFonts, A::EditMenu, "Fon&ts and Colours...", "Fonts and colours", "editFonts", 0,
     Img::Preferences, A::AlwaysOn, MenuOnly, false, &W::editFonts},

    {A::Find, A::SearchMenu, "&Find...", "Find", "find", ctrl(Qt::Key_F), Img::Find, A::FindTools,
     MenuAndToolBar, false, &W::editFind},
    {A::FindPrevious, A::SearchMenu, "&Find previous", "Find previous", "find previous", shift(Qt::Key_F3),
     Img::FindPrevious, A::FindTools, MenuAndToolBar, false, &W::editFindPrevious},
    // Find next has no menu text: it lives on the tool bar only.
    {A::FindNext, A::SearchMenu, "", "Find next", "find next", Qt::Key_F3, Img::FindNext, A::FindTools,
     ToolBarOnly, false, &W::editFindNext},
    {A::Replace, A::SearchMenu, "&Replace...", "Replace", "replace", ctrl(Qt::Key_R), Img::Replace,
     A::FindTools, MenuAndToolBar, false, &W::editReplace},
    {A::GoToLine, A::SearchMenu, "&Go to line...", "Go to line", "go to line", ctrl(Qt::Key_G), Img::GoToLine,
     A::FindTools, MenuAndToolBar, true, &W::editGotoLine},

    {A::Reparse, A::ToolsMenu, "Chec&k", "Check CIF for errors (Ctrl+K)", "reparse", ctrl(Qt::Key_K),
     Img::Check, A::ParseTools, MenuAndToolBar, false, &W::reparse},
    {A::ItemHelp, A::ToolsMenu, "&Item Help", "Pop-up Help for DataItems (Ctrl+I)", "ihelp", ctrl(Qt::Key_I),
     Img::ItemHelp, A::CifTools, MenuAndToolBar, false, qOverload<>(&W::dataitemHelp)},
    // Shares its object name with Item Help; kept for stored layouts.
    {A::Browser, A::ToolsMenu, "&Browser", "Browse data and dictionary (Ctrl+B)", "ihelp", ctrl(Qt::Key_B),
     Img::Browser, A::CifTools, MenuAndToolBar, false, &W::toggleBoxView},
    {A::PublicationWizard, A::ToolsMenu, "Publication Wizard", "Publication Data Wizard", "wizpubl", 0,
     Img::PublicationWizard, A::CifTools, MenuAndToolBar, true, &W::publicationWizard},
    {A::CrystalWizard, A::ToolsMenu, "Crystal Wizard", "Crystal Data Wizard", "wizcrystal", 0,
     Img::CrystalWizard, A::CifTools, MenuAndToolBar, false, &W::crystalWizard},
    {A::EditLoop, A::ToolsMenu, "Edit Loop", "Edit Loop (Ctrl+L)", "edloop", ctrl(Qt::Key_L), Img::EditLoop,
     A::CifTools, MenuAndToolBar, true, &W::loopEd},
    {A::NewLoop, A::ToolsMenu, "New Loop", "New Loop", "newloop", 0, Img::NewLoop, A::CifTools,
     MenuAndToolBar, false, &W::loopNew},

    {A::SpecialCharacters, A::HelpMenu, "Special Characters...", "", "specialCharacters", 0,
     Img::SpecialCharacters, A::AlwaysOn, MenuOnly, false, &W::specialCharPopUp},
    {A::About, A::HelpMenu, "About %1", "", "about", 0, Img::About, A::AlwaysOn, MenuOnly, true, &W::about},
    {A::Help, A::HelpMenu, "%1 documentation", "", "help", 0, Img::Help, A::AlwaysOn, MenuOnly, false,
     &W::help},
    {A::HomePage, A::HelpMenu, "%1 home page", "", "homePage", 0, Img::HomePage, A::AlwaysOn, MenuOnly, false,
     &W::tessaryHomePage},

    // The visualiser's action joins the Tools menu and the CIF tool bar.
    {A::OpenInVelmora, A::ToolsMenu, "Open in &Velmora", "Open in Velmora", "open in Velmora", 0,
     Img::OpenInViewer, A::VisTools, MenuAndToolBar, true, &W::hg},
};

static_assert(std::size(kActions) == A::ActionCount, "every action has one row");

QIcon actionIcon(int image) {
    QIcon icon;
    for (int size : {16, 22, 24, 32}) icon.addPixmap(QcbsXpmResource::get_xpm(image, size));
    return icon;
}

const ActionEntry& entryOf(A::Id id) {
    for (const ActionEntry& entry : kActions)
        if (entry.id == id) return entry;
    return kActions[0];
}

QAction* newAction(const ActionEntry& entry, QcbsMainWindow* window) {
    QString text = QString::fromLatin1(entry.text);
    text.replace("%1", programQName());
    auto* action = new QAction(actionIcon(entry.image), text, window);
    action->setObjectName(entry.name);
    if (*entry.tip) {
        action->setToolTip(entry.tip);
        action->setStatusTip(entry.tip);
    }
    if (entry.key != 0) action->setShortcut(QKeySequence(entry.key));
    if (entry.slot != nullptr) QObject::connect(action, &QAction::triggered, window, entry.slot);
    return action;
}

void place(const ActionEntry& entry, QAction* action, QMenu* menu, QToolBar* toolBar, QWidget* window) {
    if (entry.placement != ToolBarOnly) {
        if (entry.separatorBefore) menu->addSeparator();
        menu->addAction(action);
    } else {
        // Not in the menu, but its accelerator still works in the window.
        window->addAction(action);
    }
    if (entry.placement != MenuOnly && toolBar != nullptr) {
        if (entry.separatorBefore && !toolBar->actions().isEmpty()) toolBar->addSeparator();
        toolBar->addAction(action);
    }
}

}  // namespace

QcbsMainWindowActions::QcbsMainWindowActions(QcbsMainWindow* window) : QObject(window), window_(window) {}

void QcbsMainWindowActions::makeFileActions() { makeActions(FileMenu, "&File", "File Tools"); }

void QcbsMainWindowActions::makeEditActions() { makeActions(EditMenu, "&Edit", "Editor Tools"); }

void QcbsMainWindowActions::makeSearchActions() { makeActions(SearchMenu, "&Search", "Search Tools"); }

void QcbsMainWindowActions::makeCifActions() {
    // The CIF tools get a row of their own. The block chooser stands first
    // on it; it is a jump menu whose header counts the blocks of the last check.
    window_->addToolBarBreak();
    QToolBar* toolBar = makeToolBar("Cif Tools");
    blocks_ = new QComboBox(toolBar);
    blocks_->setObjectName("blocks");
    blocks_->setToolTip("Click to go to block. Re-check CIF to update list");
    blocks_->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    blocks_->addItem(noBlocksText());
    blocks_->setEnabled(false);
    toolBar->addWidget(blocks_);
    connect(blocks_, &QComboBox::activated, window_, &QcbsMainWindow::blockComboSelected);
    toolBars_[ToolsMenu] = toolBar;
    makeActions(ToolsMenu, "&Tools", nullptr);
}

void QcbsMainWindowActions::makeHelpActions() { makeActions(HelpMenu, "&Help", nullptr); }

void QcbsMainWindowActions::makeVisActions() {
    const ActionEntry& entry = entryOf(OpenInVelmora);
    QAction* action = newAction(entry, window_);
    place(entry, action, menus_[ToolsMenu], toolBars_[ToolsMenu], window_);
    actions_[entry.id] = action;
    groups_[entry.id] = entry.group;
}

void QcbsMainWindowActions::makeActions(Menu menuId, const char* menuTitle, const char* toolBarTitle) {
    QMenu* menu = window_->menuBar()->addMenu(menuTitle);
    menus_[menuId] = menu;
    if (toolBarTitle != nullptr) toolBars_[menuId] = makeToolBar(toolBarTitle);

    for (const ActionEntry& entry : kActions) {
        if (entry.menu != menuId || entry.id == OpenInVelmora) continue;
        QAction* action = newAction(entry, window_);
        place(entry, action, menu, toolBars_[menuId], window_);
        actions_[entry.id] = action;
        groups_[entry.id] = entry.group;
        if (entry.id == FilePrint && QcbsMainWindow::recentFiles != nullptr) {
            menu->addSeparator();
            recentFilesMenu_ = QcbsMainWindow::recentFiles->addToMenu(menu);
        }
    }
}

QToolBar* QcbsMainWindowActions::makeToolBar(const char* title) {
    QToolBar* toolBar = window_->addToolBar(title);
    toolBar->setObjectName(title);
    return toolBar;
}

QList<QAction*> QcbsMainWindowActions::actions(Tools group) const {
    QList<QAction*> list;
    for (int id = 0; id < ActionCount; ++id)
        if (actions_[id] != nullptr && groups_[id] == group) list << actions_[id];
    return list;
}

void QcbsMainWindowActions::setToolsEnabled(Tools group, bool on) {
    if (group == AlwaysOn) return;
    for (QAction* action : actions(group)) action->setEnabled(on);
}
