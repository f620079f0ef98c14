// SPDX-License-Identifier: GPL-3.0-or-later
// Puts a large text into a QPlainTextEdit a slice at a time, so the window stays live.
#include "editor/QcbsSlicedTextLoader.hpp"

#include <QElapsedTimer>
#include <QPlainTextEdit>
#include <QTextCursor>
#include <QTextDocument>
#include <algorithm>

namespace {

constexpr int kFirstSliceLines = 2000;  // enough to fill a screen, quick to insert
constexpr int kMinimumSliceLines = 200;
constexpr int kMaximumSliceLines = 200000;

}  // namespace

QcbsSlicedTextLoader::QcbsSlicedTextLoader(QPlainTextEdit* editor) : QObject(editor), editor_(editor) {
    timer_.setSingleShot(true);
    timer_.setInterval(0);
    connect(&timer_, &QTimer::timeout, this, &QcbsSlicedTextLoader::insertSlice);
}

void QcbsSlicedTextLoader::load(const QString& text) {
    if (editor_.isNull()) return;
    QTextDocument* document = editor_->document();
    if (!loading_) {
        wasReadOnly_ = editor_->isReadOnly();
        undoWasEnabled_ = document->isUndoRedoEnabled();
    }
    loading_ = true;
    timer_.stop();
    editor_->setReadOnly(true);
    document->setUndoRedoEnabled(false);
    text_ = text;
    next_ = 0;
    linesPerSlice_ = kFirstSliceLines;
    insertSlice();
}

void QcbsSlicedTextLoader::insertSlice() {
    if (editor_.isNull()) {
        loading_ = false;
        return;
    }
    QElapsedTimer clock;
    clock.start();
    // A slice ends just after a line end, so the next one starts a new line.
    qsizetype end = next_;
    int lines = 0;
    while (lines < linesPerSlice_ && end < text_.size()) {
        const qsizetype lineEnd = text_.indexOf(u'\n', end);
        end = lineEnd < 0 ? text_.size() : lineEnd + 1;
        ++lines;
    }
    const QString slice = QStringView(text_).mid(next_, end - next_).toString();
    if (next_ == 0) {
        // The first slice replaces the old text and leaves the editor's cursor
        // at the start; later slices go in after it, out of the cursor's way.
        editor_->setPlainText(slice);
    } else {
        QTextCursor cursor(editor_->document());
        cursor.movePosition(QTextCursor::End);
        cursor.insertText(slice);
    }
    next_ = end;

    if (next_ >= text_.size()) {
        finish();
        return;
    }
    // Aim the next slice at the budget from the pace of this one, growing at
    // most twofold.
    const qint64 nanoseconds = std::max<qint64>(clock.nsecsElapsed(), 1);
    const qint64 aimed =
        std::min<qint64>(static_cast<qint64>(lines) * budget_ * 1000000 / nanoseconds, 2LL * lines);
    linesPerSlice_ = static_cast<int>(std::clamp<qint64>(aimed, kMinimumSliceLines, kMaximumSliceLines));
    timer_.start();
}

void QcbsSlicedTextLoader::finish() {
    loading_ = false;
    text_.clear();
    QTextDocument* document = editor_->document();
    document->setUndoRedoEnabled(undoWasEnabled_);
    document->setModified(false);
    editor_->setReadOnly(wasReadOnly_);
    emit finished();
}
