// SPDX-License-Identifier: GPL-3.0-or-later
// Highlights a big document in slices, visible lines first, so the window never freezes.
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QTextBlock>
#include <QTextCursor>
#include <QTimer>
#include <vector>

class QPlainTextEdit;
class QcbsSyntaxHighlighter_CIF;

// Keeps the highlighting of a big document from freezing the window. The
// program has one thread, so long highlighting is cut into slices of the
// event loop.
//
// Every pass of QSyntaxHighlighter (after an edit, after text is loaded, or a
// slice of this class) asks admit() before a block is highlighted. The
// passes of one turn of the event loop may highlight for sliceBudget()
// milliseconds, counted from their first block; afterwards blocks are
// refused. A refused block keeps its formats and its state, so beyond the
// text an edit changed Qt's pass stops there (it only goes on while states
// change); within that text Qt asks block after block, and the refusals grow
// one range. Refused blocks go into a list of dirty ranges, kept as text
// cursors so that later edits move them along.
//
// Slices run from a zero-interval timer while dirty ranges remain. A slice
// first highlights the visible lines of the view if any of them are dirty
// (all of them, whatever the budget), starting from the state the line above
// holds now (right whenever that line is clean), then works through the
// dirty ranges from the top while the budget lasts. Within a
// range every block is highlighted, whether its state changed or not (each
// highlighted block marks the next one with the state -1, "not highlighted",
// which makes Qt go on); after the range Qt goes on by itself while states
// change and stops where a block ends in the state it had. finished() is
// emitted when no dirty range is left.
class QcbsHighlightScheduler : public QObject {
    Q_OBJECT

public:
    static constexpr int DefaultSliceBudget = 20;  // milliseconds

    // Becomes a child of the highlighter and its scheduler. The view, if any,
    // tells which lines are visible; it may be null.
    QcbsHighlightScheduler(QcbsSyntaxHighlighter_CIF* highlighter, QPlainTextEdit* view);
    ~QcbsHighlightScheduler() override;

    int sliceBudget() const { return budget_; }
    void setSliceBudget(int milliseconds) { budget_ = milliseconds > 0 ? milliseconds : 1; }

    // Marks the whole document dirty, to be highlighted in slices (after a
    // change of the styles or of the dictionary).
    void rehighlightAll();
    // Marks the blocks from `from` to `to` dirty.
    void markDirty(const QTextBlock& from, const QTextBlock& to);

    // True when no block waits to be highlighted.
    bool isIdle() const { return dirty_.empty(); }
    // The number of separate dirty ranges (for tests and diagnostics).
    int dirtyRanges() const { return static_cast<int>(dirty_.size()); }

    // For the highlighter: whether the block may be highlighted now. A
    // refused block is recorded as dirty.
    bool admit(const QTextBlock& block);
    // For the highlighter: the block has just been highlighted.
    void highlighted(const QTextBlock& block);

signals:
    // No part of the document waits for highlighting any more.
    void finished();

private slots:
    void runSlice();

private:
    struct Range {
        QTextCursor from;  // the first dirty block
        QTextCursor to;    // the last dirty block
    };

    void openPass();
    void closePass();
    void refuse(const QTextBlock& block);
    void addRange(const QTextBlock& from, const QTextBlock& to);
    void normalise();
    void highlightVisibleLines();
    void highlightRange(const QTextBlock& from, const QTextBlock& to);
    void schedule();

    QcbsSyntaxHighlighter_CIF* highlighter_;
    QPointer<QPlainTextEdit> view_;
    int budget_ = DefaultSliceBudget;
    std::vector<Range> dirty_;
    QTimer sliceTimer_;

    // The pass now running.
    bool passOpen_ = false;
    QElapsedTimer passClock_;
    int lastPosition_ = -1;  // blocks after this position are refused (-1: none)
    int forcedTo_ = -1;      // blocks before this position are followed by the next one (-1: none)
    QTextBlock forcedToBlock_;
    QTextBlock lastRefused_;
    int lastRefusedRange_ = -1;

    // What the last visible-lines step covered, to do it once per view.
    int visibleFrom_ = -1;
    int visibleTo_ = -1;
    unsigned dirtGeneration_ = 0;
    unsigned visibleGeneration_ = ~0u;
};
