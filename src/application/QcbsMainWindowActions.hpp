// SPDX-License-Identifier: GPL-3.0-or-later
// The actions of a main window with their menus and tool bars, built from one table.
#pragma once

#include <QList>
#include <QObject>
#include <QString>

class QAction;
class QComboBox;
class QMenu;
class QToolBar;
class QcbsMainWindow;

// The actions of a main window with their menus and tool bars. Every action
// is built from one table (text, tip, object name, accelerator, picture,
// slot), grouped by the tools that are switched on and off together.
class QcbsMainWindowActions : public QObject {
    Q_OBJECT
public:
    // Every action of the window.
    enum Id {
        FileNew,
        FileOpen,
        NewWindow,
        FileSave,
        FileSaveAs,
        FilePrint,
        FileClose,
        FileExit,
        EditUndo,
        EditRedo,
        EditCopy,
        EditCut,
        EditPaste,
        EditComment,
        EditUncomment,
        EditInsert,
        EditTemplate,
        Combine,
        EditSelectAll,
        EditZoomIn,
        EditZoomOut,
        EditPrefs,
        EditFonts,
        Reparse,
        ItemHelp,
        Browser,
        PublicationWizard,
        CrystalWizard,
        EditLoop,
        NewLoop,
        Find,
        FindPrevious,
        FindNext,
        Replace,
        GoToLine,
        SpecialCharacters,
        About,
        Help,
        HomePage,
        OpenInVelmora,
        ActionCount
    };

    // The groups of actions that are enabled and disabled together; the
    // actions of AlwaysOn never are.
    enum Tools { AlwaysOn, FileTools, EditorTools, ParseTools, CifTools, FindTools, VisTools };

    // The menus of the window, in the order they are made.
    enum Menu { FileMenu, EditMenu, SearchMenu, ToolsMenu, HelpMenu, MenuCount };

    explicit QcbsMainWindowActions(QcbsMainWindow* window);

    // Each makes the actions of one part of the table, with their menu and
    // tool bar, and connects them to the window's slots.
    void makeFileActions();
    void makeEditActions();
    void makeSearchActions();
    void makeCifActions();
    void makeHelpActions();
    void makeVisActions();

    QAction* action(Id id) const { return actions_[id]; }
    QList<QAction*> actions(Tools group) const;
    void setToolsEnabled(Tools group, bool on);

    QMenu* menu(Menu menu) const { return menus_[menu]; }
    QMenu* recentFilesMenu() const { return recentFilesMenu_; }
    // The block chooser "blocks" on the CIF tool bar.
    QComboBox* blocks() const { return blocks_; }
    // The header the block chooser shows before the first check.
    static QString noBlocksText() { return "Blocks:  none"; }

private:
    void makeActions(Menu menu, const char* menuTitle, const char* toolBarTitle);
    QToolBar* makeToolBar(const char* title);

    QcbsMainWindow* window_;
    QAction* actions_[ActionCount] = {};
    Tools groups_[ActionCount] = {};
    QMenu* menus_[MenuCount] = {};
    QToolBar* toolBars_[MenuCount] = {};
    QMenu* recentFilesMenu_ = nullptr;
    QComboBox* blocks_ = nullptr;
};
