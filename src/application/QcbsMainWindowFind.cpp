// SPDX-License-Identifier: GPL-3.0-or-later
// The main window's search dialogs, find next and previous, special characters, fonts and colours.
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>

#include "application/QcbsMainWindow.hpp"
#include "editor/QcbsRichTextEdit.hpp"
#include "find/QcbsFindDialog.hpp"
#include "find/QcbsGotoLineDialog.hpp"
#include "find/QcbsReplaceDialog.hpp"
#include "find/QcbsSpecialCharacterTable.hpp"
#include "preferences/QcbsFontStyleDialog.hpp"

namespace {

// Searches go to the editor of the window that was active last.
void useActiveWindowEditor() {
    QcbsSearchDialog::setActiveEditorSource([]() -> QcbsRichTextEdit* {
        QcbsMainWindow* window = QcbsMainWindow::lastActiveWindow();
        return window != nullptr ? window->currentEditor() : nullptr;
    });
}

// The window's own dialog of a kind, made on first use.
template <class Dialog>
Dialog* windowDialog(QcbsMainWindow* window) {
    auto* dialog = window->findChild<Dialog*>(QString(), Qt::FindDirectChildrenOnly);
    if (dialog == nullptr) {
        useActiveWindowEditor();
        dialog = new Dialog(window);
    }
    dialog->setEditor(window->currentEditor());
    return dialog;
}

// The selection (on one line) becomes the text to find.
void takeSelection(QcbsMainWindow* window, QcbsSearchDialog* dialog) {
    const QcbsRichTextEdit* editor = window->currentEditor();
    if (editor == nullptr) return;
    const QString selected = editor->selectedText();
    if (!selected.isEmpty() && !selected.contains(u'\n') && !selected.contains(u'\r'))
        dialog->comboFind()->setEditText(selected);
}

void present(QDialog* dialog) {
    dialog->show();
    dialog->raise();
    dialog->activateWindow();
}

}  // namespace

void QcbsMainWindow::editFind() {
    auto* dialog = windowDialog<QcbsFindDialog>(this);
    takeSelection(this, dialog);
    present(dialog);
    dialog->comboFind()->setFocus();
    dialog->comboFind()->lineEdit()->selectAll();
}

void QcbsMainWindow::editReplace() {
    auto* dialog = windowDialog<QcbsReplaceDialog>(this);
    takeSelection(this, dialog);
    present(dialog);
    dialog->comboFind()->setFocus();
    dialog->comboFind()->lineEdit()->selectAll();
}

void QcbsMainWindow::editFindNext() {
    QcbsSearchDialog* last = QcbsSearchDialog::lastUsed();
    if (last == nullptr || last->comboFind()->currentText().isEmpty()) {
        editFind();
        return;
    }
    last->setEditor(currentEditor());
    last->findAgain(true);
}

void QcbsMainWindow::editFindPrevious() {
    QcbsSearchDialog* last = QcbsSearchDialog::lastUsed();
    if (last == nullptr || last->comboFind()->currentText().isEmpty()) {
        editFind();
        return;
    }
    last->setEditor(currentEditor());
    last->findAgain(false);
}

void QcbsMainWindow::editGotoLine() {
    auto* dialog = windowDialog<QcbsGotoLineDialog>(this);
    present(dialog);
    dialog->lineEdit()->setFocus();
    dialog->lineEdit()->selectAll();
}

void QcbsMainWindow::specialCharPopUp() {
    auto* table = findChild<QcbsSpecialCharacterTable*>(QString(), Qt::FindDirectChildrenOnly);
    if (table == nullptr) {
        table = new QcbsSpecialCharacterTable(this);
        connect(table, &QcbsSpecialCharacterTable::codeChosen, this, [this](const QString& code) {
            QcbsRichTextEdit* editor = currentEditor();
            if (editor == nullptr || editor->isReadOnly() || editor->isLoading()) {
                QApplication::beep();
                return;
            }
            editorInsertTextHelper(code);
            // Typing goes on in the editor.
            activateWindow();
            editor->setFocus();
        });
    }
    table->show();
    table->raise();
}

void QcbsMainWindow::editFonts() {
    auto* dialog = findChild<QcbsFontStyleDialog*>(QString(), Qt::FindDirectChildrenOnly);
    if (dialog == nullptr) {
        dialog = new QcbsFontStyleDialog(sharedData_->fontStyles(), dictionary(), this);
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        // The styles are shared: every window draws with them at once.
        connect(dialog, &QcbsFontStyleDialog::stylesChanged, this, [] { initialiseAllInstSettings(); });
    }
    present(dialog);
}
