// SPDX-License-Identifier: GPL-3.0-or-later
// Keeps a recovery file of a document's unsaved text, written a little after the last edit.
#include "document/QcbsRecoveryWriter.hpp"

#include <QDateTime>
#include <QMetaObject>

#include "base/ORMALogQString.hpp"
#include "document/QcbsByteSnapshot.hpp"
#include "document/QcbsCifDocument.hpp"
#include "document/QcbsRecoveryRecord.hpp"
#include "document/QcbsRecoveryStore.hpp"
#include "document/QcbsWorkerPriority.hpp"
#include "editor/QcbsRichTextEdit.hpp"

QcbsRecoveryWriter::QcbsRecoveryWriter(QcbsCifDocument* document, QcbsRichTextEdit* editor, QObject* parent)
    : QObject(parent), document_(document), editor_(editor), id_(QcbsRecoveryStore::newId()) {
    worker_.setMaxThreadCount(1);
    timer_.setSingleShot(true);
    timer_.setInterval(DefaultDelayMs);
    connect(&timer_, &QTimer::timeout, this, &QcbsRecoveryWriter::write);
    connect(editor_, &QcbsRichTextEdit::textChanged, this, &QcbsRecoveryWriter::edited);
    connect(editor_, &QcbsRichTextEdit::modificationChanged, this, &QcbsRecoveryWriter::modificationChanged);
}

QcbsRecoveryWriter::~QcbsRecoveryWriter() {
    // A record of unsaved text stays: the window went without its question
    // (the program was ended), as a crash would have it.
    ++generation_;
    delete snapshot_;
    worker_.waitForDone();
}

void QcbsRecoveryWriter::setEnabled(bool on) {
    if (on == enabled_) return;
    enabled_ = on;
    if (!on)
        forget();
    else if (document_->isModified())
        writeSoon();
}

void QcbsRecoveryWriter::adopt(const QString& id) {
    if (id != id_ && !adopted_.contains(id)) adopted_ << id;
}

void QcbsRecoveryWriter::writeSoon() {
    if (!enabled_) return;
    // Not through the timer: starting it with 0 would leave it at 0, and
    // every later edit would be written at once.
    timer_.stop();
    QMetaObject::invokeMethod(this, &QcbsRecoveryWriter::write, Qt::QueuedConnection);
}

void QcbsRecoveryWriter::edited() {
    if (!enabled_ || document_->isLoading() || !document_->isModified()) return;
    // Each edit puts the write off, but not for ever.
    if (!timer_.isActive()) {
        firstUnwritten_.start();
        timer_.start();
    } else if (firstUnwritten_.elapsed() < MaxWaitMs - timer_.interval()) {
        timer_.start();
    }
}

void QcbsRecoveryWriter::modificationChanged(bool modified) {
    if (!modified)
        forget();
    else
        edited();
}

void QcbsRecoveryWriter::write() {
    if (!enabled_ || !document_->isOpen() || document_->isLoading() || !document_->isModified()) return;
    if (writing_ || snapshot_ != nullptr) {
        again_ = true;
        return;
    }
    if (hasRecord_ && writtenSerial_ == editor_->editSerial()) return;
    if (document_->byteCount() <= QcbsCifDocument::WorkerThreshold) {
        // A small text is copied at once (well under a millisecond).
        submit(std::make_shared<std::string>(editor_->byteView()), editor_->editSerial());
        return;
    }
    snapshot_ = new QcbsByteSnapshot(editor_, std::string(), this);
    connect(
        snapshot_, &QcbsByteSnapshot::done, this,
        [this] {
            // Forgotten (or another copy begun) since.
            if (snapshot_ == nullptr || !snapshot_->isDone()) return;
            auto bytes = std::make_shared<std::string>(std::move(snapshot_->bytes()));
            const quint64 serial = snapshot_->editSerial();
            snapshot_->deleteLater();
            snapshot_ = nullptr;
            submit(std::move(bytes), serial);
        },
        Qt::QueuedConnection);
    snapshot_->start();
}

void QcbsRecoveryWriter::submit(std::shared_ptr<std::string> bytes, quint64 serial) {
    QcbsRecoveryRecord record;
    record.id = id_;
    record.fileName = document_->fileName();
    record.written = QDateTime::currentDateTimeUtc();
    record.utf8 = document_->encoding().kind() == QcbsDocumentEncoding::Utf8;
    record.byteOrderMark = document_->encoding().hasByteOrderMark();
    record.disk = document_->fileIdentity();
    writing_ = true;
    again_ = false;
    cancel_ = std::make_shared<std::atomic<bool>>(false);
    const quint64 generation = ++generation_;
    worker_.start([this, record, bytes, serial, generation, cancel = cancel_]() mutable {
        yieldToTheWindow();
        record.size = static_cast<qint64>(bytes->size());
        record.hash = QcbsFileIdentity::hash(QByteArrayView(bytes->data(), record.size));
        const QString error = QcbsRecoveryStore::write(record.id, record.header(), *bytes, cancel.get());
        bytes.reset();
        // Queued to the writer: dropped should it be gone.
        QMetaObject::invokeMethod(
            this, [this, generation, serial, error] { finished(generation, serial, error); },
            Qt::QueuedConnection);
    });
}

void QcbsRecoveryWriter::finished(quint64 generation, quint64 serial, const QString& error) {
    if (generation != generation_) return;  // forgotten meanwhile
    writing_ = false;
    if (!error.isEmpty()) {
        debugLine(1, "QcbsRecoveryWriter::finished - " + error);
        emit failed(error);
    } else {
        hasRecord_ = true;
        writtenSerial_ = serial;
        for (const QString& old : std::exchange(adopted_, {}))
            worker_.start([old] { QcbsRecoveryStore::remove(old); });
        emit written(id_);
    }
    if (document_->isModified() && (again_ || serial != editor_->editSerial())) {
        if (!timer_.isActive()) {
            firstUnwritten_.start();
            timer_.start();
        }
    }
    again_ = false;
}

void QcbsRecoveryWriter::forget() {
    timer_.stop();
    ++generation_;
    if (cancel_) cancel_->store(true);
    delete snapshot_;
    snapshot_ = nullptr;
    const bool had = hasRecord_ || writing_ || !adopted_.isEmpty();
    writing_ = false;
    again_ = false;
    hasRecord_ = false;
    writtenSerial_ = 0;
    if (!had) return;
    // After any write still running: the worker does one thing at a time.
    QStringList ids = std::exchange(adopted_, {});
    ids << id_;
    worker_.start([ids] {
        for (const QString& id : ids) QcbsRecoveryStore::remove(id);
    });
    emit removed(id_);
}
