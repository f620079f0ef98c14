// SPDX-License-Identifier: GPL-3.0-or-later
// A copy of an editor's bytes for the worker thread, taken a slice at a time.
#include "document/QcbsByteSnapshot.hpp"

#include <algorithm>

#include "editor/QcbsRichTextEdit.hpp"

QcbsByteSnapshot::QcbsByteSnapshot(QcbsRichTextEdit* editor, std::string prefix, QObject* parent)
    : QObject(parent), editor_(editor), prefix_(std::move(prefix)) {
    timer_.setSingleShot(true);
    timer_.setInterval(0);
    connect(&timer_, &QTimer::timeout, this, &QcbsByteSnapshot::copySlice);
    connect(editor, &QcbsRichTextEdit::textAboutToChange, this, [this](int position, int) {
        // What is copied already would no longer match: start again.
        if (!done_ && position < copied_) {
            copied_ = 0;
            bytes_.clear();
        }
    });
}

void QcbsByteSnapshot::start() {
    copied_ = 0;
    bytes_.clear();
    done_ = false;
    copySlice();
}

void QcbsByteSnapshot::copySlice() {
    if (editor_.isNull()) return;
    const int length = editor_->byteLength();
    if (copied_ == 0) {
        bytes_.clear();
        bytes_.reserve(prefix_.size() + static_cast<std::size_t>(length));
        bytes_ = prefix_;
    }
    const int take = std::min(SliceBytes, length - copied_);
    if (take > 0) bytes_.append(editor_->byteView(copied_, take));
    copied_ += take;
    if (copied_ < length) {
        timer_.start();
        return;
    }
    done_ = true;
    serial_ = editor_->editSerial();
    emit done();
}
