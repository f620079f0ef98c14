// SPDX-License-Identifier: GPL-3.0-or-later
// The main window and its 3-D view: the page follows the tab, atoms lead back to the text.
#include <QSplitter>
#include <QTabWidget>

#include "application/QcbsMainWindow.hpp"
#include "editor/QcbsRichTextEdit.hpp"
#include "visualiser/QcbsVisSorter.hpp"

void QcbsMainWindow::enableVisualiser(QWidget* page) {
    if (visSorter_ == nullptr) return;  // the tabs are still being made
    const bool shown = page != nullptr && page == visSorter_;
    if (shown) {
        // The page opens on the block the editor's cursor stands in.
        int paragraph = 0;
        int index = 0;
        currentEditor()->getCursorPosition(&paragraph, &index);
        visSorter_->showBlockAtLine(paragraph + 1);
    }
    visSorter_->setCurrent(shown);
}

void QcbsMainWindow::hg() { visSorter_->openSeparateWindow(); }

void QcbsMainWindow::showLineOfStructure(int line) {
    QWidget* editorPage = editorPage_;
    if (tabs_->currentWidget() != editorPage) tabs_->setCurrentWidget(editorPage);
    emit requestGotoLine(line, QString());
    currentEditor()->setFocus();
}

void QcbsMainWindow::followCursorInStructure() {
    if (visSorter_ == nullptr || visSorter_->separateWindow() == nullptr) return;
    int paragraph = 0;
    int index = 0;
    currentEditor()->getCursorPosition(&paragraph, &index);
    visSorter_->showBlockAtLine(paragraph + 1);
}
