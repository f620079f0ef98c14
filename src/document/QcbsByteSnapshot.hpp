// SPDX-License-Identifier: GPL-3.0-or-later
// A copy of an editor's bytes for the worker thread, taken a slice at a time.
#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <string>

class QcbsRichTextEdit;

// A copy of an editor's bytes for the worker thread, taken a slice at a time
// from the event loop, so that copying hundreds of megabytes never holds the
// window up. The user may type meanwhile: a change behind the part already
// copied starts the copy afresh; a change ahead of it is simply copied, so
// the finished copy is the text as it stands when done() is emitted.
class QcbsByteSnapshot : public QObject {
    Q_OBJECT

public:
    static constexpr int SliceBytes = 16 * 1024 * 1024;

    // `prefix` goes before the editor's bytes (a byte-order mark).
    QcbsByteSnapshot(QcbsRichTextEdit* editor, std::string prefix, QObject* parent = nullptr);

    // Copies the first slice now and the rest from the event loop.
    void start();
    bool isDone() const { return done_; }
    // The bytes, once done(); taken out by the caller.
    std::string& bytes() { return bytes_; }
    // The editor's change count the copy matches.
    quint64 editSerial() const { return serial_; }

signals:
    void done();

private slots:
    void copySlice();

private:
    QPointer<QcbsRichTextEdit> editor_;
    std::string prefix_;
    std::string bytes_;
    int copied_ = 0;  // bytes of the editor copied
    quint64 serial_ = 0;
    bool done_ = false;
    QTimer timer_;
};
