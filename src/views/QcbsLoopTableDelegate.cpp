// SPDX-License-Identifier: GPL-3.0-or-later
// The cell editor of the loop table, telling when an editor opens and closes.
#include "views/QcbsLoopTableDelegate.hpp"

QWidget* QcbsLoopTableDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                                             const QModelIndex& index) const {
    editor_ = QStyledItemDelegate::createEditor(parent, option, index);
    emit editorOpened();
    return editor_;
}

void QcbsLoopTableDelegate::destroyEditor(QWidget* editor, const QModelIndex& index) const {
    if (editor == editor_) editor_ = nullptr;
    QStyledItemDelegate::destroyEditor(editor, index);
    emit editorClosed();
}
