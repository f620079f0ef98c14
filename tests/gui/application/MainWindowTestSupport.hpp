#pragma once

#include <QAction>
#include <QFileInfo>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QSplitter>
#include <QStatusBar>

#include "application/QcbsMainWindow.hpp"
#include "application/QcbsMainWindowActions.hpp"

// Shared data as the program in the build tree has it, so that the help
// documentation of the source tree is found.
inline THandle<QcbsMainWindowSharedData> buildTreeSharedData() {
    return THandle<QcbsMainWindowSharedData>(
        new QcbsMainWindowSharedData(QFileInfo(TESSARY_SOURCE_DIR "/build/bin/tessary")));
}

inline QAction* windowAction(const QcbsMainWindow& window, QcbsMainWindowActions::Id id) {
    return window.windowActions()->action(id);
}

inline QString statusMessage(QMainWindow& window) { return window.statusBar()->currentMessage(); }

// The menu of the menu bar with this title, or null.
inline QMenu* menuTitled(QMainWindow& window, const QString& title) {
    for (QAction* action : window.menuBar()->actions())
        if (action->menu() != nullptr && action->text() == title) return action->menu();
    return nullptr;
}
