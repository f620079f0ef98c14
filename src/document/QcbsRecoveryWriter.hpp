// SPDX-License-Identifier: GPL-3.0-or-later
// Keeps a recovery file of a document's unsaved text, written a little after the last edit.
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QThreadPool>
#include <QTimer>
#include <atomic>
#include <memory>
#include <string>

class QcbsByteSnapshot;
class QcbsCifDocument;
class QcbsRichTextEdit;
struct QcbsRecoveryWrite;

// Keeps a recovery file (see QcbsRecoveryStore) of a document's unsaved
// text: written a little after the last edit (and at least every so often
// while the user keeps typing), removed as soon as the text is unmodified
// again (saved, closed without saving, undone back to the file). A process
// that dies leaves it behind for the next start.
//
// Typing never waits for it: the text is copied on the event loop only
// when small, a large one a slice at a time (QcbsByteSnapshot), and the
// record is hashed and written on a worker thread. A record still being
// written when the text is saved is stopped; the removal follows it.
class QcbsRecoveryWriter : public QObject {
    Q_OBJECT
public:
    QcbsRecoveryWriter(QcbsCifDocument* document, QcbsRichTextEdit* editor, QObject* parent = nullptr);
    ~QcbsRecoveryWriter() override;

    // The quiet time after an edit before the text is written, and the
    // longest an unwritten edit waits while the user keeps typing.
    static constexpr int DefaultDelayMs = 2000;
    static constexpr int MaxWaitMs = 15000;
    void setDelay(int ms) { timer_.setInterval(ms); }

    // Switched off, the record goes and no other is written.
    void setEnabled(bool on);
    bool isEnabled() const { return enabled_; }

    // This writer's record, which exists once written() was emitted and
    // until removed() is.
    const QString& recordId() const { return id_; }
    bool hasRecord() const { return hasRecord_; }
    // The text came from an older record: that record goes once this
    // writer's own is on the disk, or once the text is saved.
    void adopt(const QString& id);
    // Writes the text without waiting for the quiet time.
    void writeSoon();

signals:
    void written(const QString& id);
    void removed(const QString& id);
    // A record could not be written (the reason, for the log).
    void failed(const QString& reason);

private:
    void edited();
    void modificationChanged(bool modified);
    void write();
    void submit(std::shared_ptr<std::string> bytes, quint64 serial);
    void finished(quint64 generation, quint64 serial, const QString& error);
    // The text is unmodified: every record of it goes.
    void forget();

    QcbsCifDocument* document_;
    QcbsRichTextEdit* editor_;
    bool enabled_ = true;
    QString id_;
    bool hasRecord_ = false;
    QStringList adopted_;
    QTimer timer_;
    QElapsedTimer firstUnwritten_;
    QcbsByteSnapshot* snapshot_ = nullptr;
    bool writing_ = false;
    bool again_ = false;  // edits came while a record was written
    quint64 writtenSerial_ = 0;
    // A write that is no longer wanted stops; its result is dropped.
    quint64 generation_ = 0;
    std::shared_ptr<std::atomic<bool>> cancel_;
    // One thread: writes and removals happen in the order asked.
    // Declared last: destroyed first, it waits for them.
    QThreadPool worker_;
};
