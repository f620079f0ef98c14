// SPDX-License-Identifier: GPL-3.0-or-later
// One edit of the loop table that can be undone: what it does and what takes it back.
#pragma once

#include <QUndoCommand>
#include <functional>

// One edit of the loop table on its undo stack: the table's operations
// work out both directions when the edit is made, so that undoing a change
// to a loop of millions of rows costs what the change cost.
class QcbsLoopTableCommand : public QUndoCommand {
public:
    QcbsLoopTableCommand(const QString& text, std::function<void()> redo, std::function<void()> undo);

    void redo() override;
    void undo() override;

private:
    std::function<void()> redo_;
    std::function<void()> undo_;
};
