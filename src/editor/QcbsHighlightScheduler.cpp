// SPDX-License-Identifier: GPL-3.0-or-later
// Highlights a big document in slices, visible lines first, so the window never freezes.
#include "editor/QcbsHighlightScheduler.hpp"

#include <QPlainTextEdit>
#include <QPoint>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QTextDocument>
#include <algorithm>

#include "editor/QcbsSyntaxHighlighter_CIF.hpp"

namespace {

// The position just after a block, where the next block starts.
int endOf(const QTextBlock& block) { return block.position() + block.length(); }

}  // namespace

QcbsHighlightScheduler::QcbsHighlightScheduler(QcbsSyntaxHighlighter_CIF* highlighter, QPlainTextEdit* view)
    : QObject(highlighter), highlighter_(highlighter), view_(view) {
    sliceTimer_.setSingleShot(true);
    sliceTimer_.setInterval(0);
    connect(&sliceTimer_, &QTimer::timeout, this, &QcbsHighlightScheduler::runSlice);
    highlighter_->setScheduler(this);
    if (view != nullptr) {
        connect(view->verticalScrollBar(), &QScrollBar::valueChanged, this, [this] {
            if (!isIdle()) schedule();
        });
    }
}

QcbsHighlightScheduler::~QcbsHighlightScheduler() {
    if (highlighter_->scheduler() == this) highlighter_->setScheduler(nullptr);
}

void QcbsHighlightScheduler::rehighlightAll() {
    QTextDocument* document = highlighter_->document();
    if (document == nullptr) return;
    dirty_.clear();
    markDirty(document->firstBlock(), document->lastBlock());
}

void QcbsHighlightScheduler::markDirty(const QTextBlock& from, const QTextBlock& to) {
    if (!from.isValid() || from.document() != highlighter_->document()) return;
    addRange(from, to.isValid() && to.position() >= from.position() ? to : from);
    ++dirtGeneration_;
    schedule();
}

bool QcbsHighlightScheduler::admit(const QTextBlock& block) {
    if (!passOpen_) {
        // The pass lasts until the event loop gets control again.
        openPass();
        QTimer::singleShot(0, this, &QcbsHighlightScheduler::closePass);
    }
    // The visible lines, a screenful, are done whole whatever the time; other
    // blocks only while the budget lasts.
    const bool allowed =
        lastPosition_ >= 0 ? block.position() <= lastPosition_ : passClock_.elapsed() < budget_;
    if (!allowed) refuse(block);
    return allowed;
}

void QcbsHighlightScheduler::highlighted(const QTextBlock& block) {
    if (forcedTo_ >= 0 && block.position() < forcedTo_) {
        QTextBlock next = block.next();
        if (next.isValid()) next.setUserState(-1);
    }
}

void QcbsHighlightScheduler::openPass() {
    passOpen_ = true;
    passClock_.start();
    lastRefused_ = QTextBlock();
    lastRefusedRange_ = -1;
}

void QcbsHighlightScheduler::closePass() {
    passOpen_ = false;
    lastRefused_ = QTextBlock();
    lastRefusedRange_ = -1;
}

// Refused blocks come one after the other within a pass, so a run of them
// grows one range instead of adding a range per block.
void QcbsHighlightScheduler::refuse(const QTextBlock& block) {
    ++dirtGeneration_;
    const bool continuesRun = lastRefusedRange_ >= 0 && lastRefusedRange_ < static_cast<int>(dirty_.size()) &&
                              lastRefused_.isValid() && block.previous() == lastRefused_;
    if (continuesRun) {
        QTextCursor& to = dirty_[lastRefusedRange_].to;
        if (block.position() > to.position()) to.setPosition(block.position());
    } else {
        const bool forced = forcedTo_ >= 0 && block.position() <= forcedTo_ && forcedToBlock_.isValid();
        addRange(block, forced ? forcedToBlock_ : block);
        lastRefusedRange_ = static_cast<int>(dirty_.size()) - 1;
    }
    lastRefused_ = block;
    schedule();
}

void QcbsHighlightScheduler::addRange(const QTextBlock& from, const QTextBlock& to) {
    Range range{QTextCursor(from), QTextCursor(to)};
    // Text inserted right at the start of the range belongs to it.
    range.from.setKeepPositionOnInsert(true);
    dirty_.push_back(range);
}

// Sorts the ranges and joins those that overlap or touch; drops ranges of
// another document.
void QcbsHighlightScheduler::normalise() {
    lastRefused_ = QTextBlock();
    lastRefusedRange_ = -1;
    const QTextDocument* document = highlighter_->document();
    std::vector<Range> ranges;
    ranges.reserve(dirty_.size());
    for (Range& range : dirty_) {
        if (range.from.document() != document || range.from.isNull()) continue;
        if (range.to.position() < range.from.position()) range.to.setPosition(range.from.position());
        ranges.push_back(range);
    }
    std::sort(ranges.begin(), ranges.end(),
              [](const Range& a, const Range& b) { return a.from.position() < b.from.position(); });
    dirty_.clear();
    for (Range& range : ranges) {
        if (!dirty_.empty() && range.from.block().position() <= endOf(dirty_.back().to.block())) {
            if (range.to.position() > dirty_.back().to.position()) dirty_.back().to = range.to;
        } else {
            dirty_.push_back(range);
        }
    }
}

void QcbsHighlightScheduler::runSlice() {
    if (highlighter_->document() == nullptr) {
        dirty_.clear();
        return;
    }
    openPass();
    normalise();
    highlightVisibleLines();
    while (!dirty_.empty() && passClock_.elapsed() < budget_) {
        const Range range = dirty_.front();
        dirty_.erase(dirty_.begin());
        lastRefusedRange_ = -1;
        highlightRange(range.from.block(), range.to.block());
    }
    closePass();
    if (dirty_.empty()) {
        emit finished();
    } else {
        schedule();
    }
}

// The visible lines come first, from the state the line above them holds
// now; the ranges they lie in stay dirty until the pass from the top has
// gone through them.
void QcbsHighlightScheduler::highlightVisibleLines() {
    if (view_.isNull() || view_->document() != highlighter_->document() || dirty_.empty()) return;
    const QTextBlock first = view_->cursorForPosition(QPoint(0, 0)).block();
    const QTextBlock last = view_->cursorForPosition(QPoint(0, view_->viewport()->height() - 1)).block();
    if (!first.isValid() || !last.isValid()) return;
    if (first.position() == visibleFrom_ && last.position() == visibleTo_ &&
        visibleGeneration_ == dirtGeneration_) {
        return;
    }
    visibleFrom_ = first.position();
    visibleTo_ = last.position();
    int start = -1;
    for (const Range& range : dirty_) {
        const int low = std::max(range.from.block().position(), first.position());
        const int high = std::min(range.to.block().position(), last.position());
        if (low <= high && (start < 0 || low < start)) start = low;
    }
    if (start >= 0) {
        lastPosition_ = last.position();
        highlightRange(highlighter_->document()->findBlock(start), last);
        lastPosition_ = -1;
    }
    visibleGeneration_ = dirtGeneration_;
}

// Highlights every block from `from` to `to`, then lets Qt go on while
// states change. Marking each next block "not highlighted" (-1) is what makes
// Qt go on inside the range.
void QcbsHighlightScheduler::highlightRange(const QTextBlock& from, const QTextBlock& to) {
    if (!from.isValid()) return;
    const QTextBlock last = to.isValid() && to.position() >= from.position() ? to : from;
    forcedTo_ = last.position();
    forcedToBlock_ = last;
    QTextBlock first = from;
    first.setUserState(-1);
    {
        // A pass of QSyntaxHighlighter makes the document emit contentsChanged,
        // which a QPlainTextEdit passes on as textChanged; a slice changes no
        // text, so its owner must not hear of one.
        const QSignalBlocker quiet(highlighter_->document());
        highlighter_->rehighlightBlock(first);
    }
    forcedTo_ = -1;
    forcedToBlock_ = QTextBlock();
}

void QcbsHighlightScheduler::schedule() {
    if (!sliceTimer_.isActive()) sliceTimer_.start();
}
