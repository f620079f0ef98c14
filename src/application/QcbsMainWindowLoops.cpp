// SPDX-License-Identifier: GPL-3.0-or-later
// The main window's routing of loops: the loop table editor dialog and its text into the document.
// The dialog never touches the text: OK hands the loop's new text here, and the window's
// QcbsCifDocument puts it in as one undo step and checks the document again.
#include <Qsci/qscicommandset.h>

#include <QApplication>

#include "application/QcbsMainWindow.hpp"
#include "application/QcbsMainWindowActions.hpp"
#include "document/QcbsCifDocument.hpp"
#include "editor/QcbsRichTextEdit.hpp"
#include "views/QcbsCifBoxDataItem.hpp"
#include "views/QcbsCifBoxView.hpp"
#include "views/QcbsCifBoxViewDialog.hpp"
#include "views/QcbsLoopTableEditorImpl.hpp"

QcbsLoopTableEditorImpl* QcbsMainWindow::loopEditor() const { return loopEditor_; }

void QcbsMainWindow::claimWindowKeys() {
    QcbsRichTextEdit* editor = currentEditor();
    if (editor == nullptr || actions_ == nullptr) return;
    using A = QcbsMainWindowActions;
    for (int n = 0; n < A::ActionCount; ++n) {
        const auto id = static_cast<A::Id>(n);
        // The editor's own undo, clipboard and selection keys do what the
        // window's would; every other key of the window is the window's.
        if (id == A::EditUndo || id == A::EditRedo || id == A::EditCopy || id == A::EditCut ||
            id == A::EditPaste || id == A::EditSelectAll)
            continue;
        const QKeySequence key = actions_->action(id)->shortcut();
        if (key.isEmpty()) continue;
        const int code = key[0].toCombined();
        QsciCommand* bound = editor->standardCommands()->boundTo(code);
        if (bound == nullptr) continue;
        if (bound->key() == code)
            bound->setKey(0);
        else
            bound->setAlternateKey(0);
    }
}

QcbsLoopTableEditorImpl* QcbsMainWindow::makeLoopEditor() {
    // One loop at a time: a new request replaces the dialog showing.
    if (loopEditor_) loopEditor_->close();
    loopEditor_ = new QcbsLoopTableEditorImpl(this);
    loopEditor_->setAttribute(Qt::WA_DeleteOnClose);
    CifWriteSettings settings;
    settings.line_length = options().line_length_limit;
    loopEditor_->setWriteSettings(settings);
    connect(loopEditor_, &QcbsLoopTableEditorImpl::loopEdited, this, &QcbsMainWindow::loopUpdate);
    connect(loopEditor_, &QcbsLoopTableEditorImpl::loopAdded, this, &QcbsMainWindow::loopAdd);
    connect(loopEditor_, &QcbsLoopTableEditorImpl::goToLineRequest, this,
            [this](int line) { emit requestGotoLine(line, QString()); });
    return loopEditor_;
}

void QcbsMainWindow::loopEd() {
    if (currentCif().is_null()) {
        statusBarMessage("Check the document first (Ctrl+K): loops are edited as the last check read them.");
        QApplication::beep();
        return;
    }
    // The tree's looped item when the tree has the focus; else the loop at the cursor.
    QcbsCifBoxView* tree = boxView_->hasFocus()                                        ? boxView_
                           : treeDialog_ != nullptr && treeDialog_->view()->hasFocus() ? treeDialog_->view()
                                                                                       : nullptr;
    if (tree != nullptr && tree->currentItem() != nullptr &&
        tree->currentItem()->type() == QcbsCifBoxItem::DataRow) {
        auto* row = static_cast<QcbsCifBoxDataItem*>(tree->currentItem());
        if (row->isLooped()) {
            loopEditHelper(row->name(), row->blockName());
            return;
        }
    }
    // The loop whose name or values the cursor stands on, by the lines of the
    // last check: no walk through the text, however long the loop.
    const THandle<CifDataBlock> block = currentBlock();
    int paragraph = 0;
    int index = 0;
    if (QcbsRichTextEdit* editor = currentEditor()) editor->getCursorPosition(&paragraph, &index);
    const THandle<CifDataItem> item =
        block.is_null() ? THandle<CifDataItem>() : itemAtLine(*block, paragraph + 1);
    if (item.is_null() || !item->is_looped()) {
        statusBarMessage("No loop here: put the cursor in a loop, or choose a looped item in the tree.");
        QApplication::beep();
        return;
    }
    QcbsLoopTableEditorImpl* dialog = makeLoopEditor();
    dialog->editLoop(QString::fromStdString(item->name()), block);
    dialog->show();
}

void QcbsMainWindow::loopEditHelper(const QString& dataName, const QString& blockName) {
    const THandle<Cif> cif = currentCif();
    if (cif.is_null()) return;
    const auto block = cif->block_with_name(blockName.toStdString());
    if (block == cif->block_end()) {
        QApplication::beep();
        return;
    }
    QcbsLoopTableEditorImpl* dialog = makeLoopEditor();
    if (!dialog->editLoop(dataName, *block)) {
        dialog->close();
        statusBarMessage(dataName + " is not looped in the block " + blockName + ".");
        QApplication::beep();
        return;
    }
    dialog->show();
}

void QcbsMainWindow::loopNew() {
    const THandle<CifDataBlock> block = currentBlock();
    if (block.is_null()) {
        statusBarMessage("A new loop goes into a block: check a document with a data block first (Ctrl+K).");
        QApplication::beep();
        return;
    }
    QcbsLoopTableEditorImpl* dialog = makeLoopEditor();
    dialog->newLoop(viewDictionary(), QString::fromStdString(block->name()));
    dialog->show();
}

void QcbsMainWindow::loopUpdate(const QString& blockName, const QString& loopMaster,
                                const QString& loopText) {
    if (!document_->replaceLoop(blockName, loopMaster, loopText))
        statusBarMessage("Could not put the loop back: the loop of " + loopMaster +
                         " is no longer in the block " + blockName + ".");
}

void QcbsMainWindow::loopAdd(const QString& blockName, const QString& loopText) {
    if (!document_->addLoop(blockName, loopText))
        statusBarMessage("Could not add the loop: the block " + blockName + " is no longer in the text.");
}
