// SPDX-License-Identifier: GPL-3.0-or-later
// The cell editor of the loop table, telling when an editor opens and closes.
#include "views/QcbsLoopTableDelegate.hpp"

QWidget* QcbsLoopTableDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                                             const QModelIndex& index) const {
    emit editorOpened();
    return QStyledItemDelegate::createEditor(parent, option, index);
}

void QcbsLoopTableDelegate::destroyEditor(QWidget* editor, const QModelIndex& index) const {
    QStyledItemDelegate::destroyEditor(editor, index);
    emit editorClosed();
}
