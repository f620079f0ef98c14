// SPDX-License-Identifier: GPL-3.0-or-later
// One edit of the loop table that can be undone: what it does and what takes it back.
#include "views/QcbsLoopTableCommand.hpp"

QcbsLoopTableCommand::QcbsLoopTableCommand(const QString& text, std::function<void()> redo,
                                           std::function<void()> undo)
    : QUndoCommand(text), redo_(std::move(redo)), undo_(std::move(undo)) {}

void QcbsLoopTableCommand::redo() { redo_(); }

void QcbsLoopTableCommand::undo() { undo_(); }
