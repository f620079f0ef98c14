// SPDX-License-Identifier: GPL-3.0-or-later
// The cell editor of the loop table, telling when an editor opens and closes.
#pragma once

#include <QPointer>
#include <QStyledItemDelegate>

// The loop table's cell editor: the usual line edit, announcing when it
// opens and closes so that the table's commands can wait meanwhile.
class QcbsLoopTableDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;
    void destroyEditor(QWidget* editor, const QModelIndex& index) const override;
    // The cell editor open now, or null.
    QWidget* openEditor() const { return editor_; }

signals:
    void editorOpened() const;
    void editorClosed() const;

private:
    mutable QPointer<QWidget> editor_;
};
