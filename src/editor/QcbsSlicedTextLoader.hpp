// SPDX-License-Identifier: GPL-3.0-or-later
// Puts a file's bytes into a Scintilla editor: a first slice at once, the rest off the event loop.
#pragma once

#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QThreadPool>
#include <memory>

class QsciScintilla;

// Puts a file's bytes into a Scintilla editor so that the window answers
// while a big file comes in.
//
// A small text (up to BackgroundThreshold bytes) goes in at once. Of a big
// one, the first slice goes into the editor at once, so that the first
// screen is painted straight away, while a worker thread reads the whole
// into a document of its own through Scintilla's background loader (every
// byte, growing Scintilla's buffer, off the event loop); once done, that
// document takes the first slice's place, the view where it was. Meanwhile
// the editor is read-only.
//
// On the way the bytes are looked at once: whether they are UTF-8 (then the
// editor shows them so; otherwise as Latin-1), a UTF-8 byte-order mark at
// the start (left out of the text), and how many lines end in LF, CRLF and
// CR. When the text is in, the editor keeps an undo history again, new
// lines take the end most lines have, the text counts as unmodified, and
// finished() is emitted. A load still running is abandoned by a new one.
class QcbsSlicedTextLoader : public QObject {
    Q_OBJECT

public:
    static constexpr qint64 BackgroundThreshold = 1024 * 1024;
    static constexpr qint64 FirstSliceBytes = 256 * 1024;

    // What the bytes turned out to be.
    struct Summary {
        bool utf8 = true;
        bool byteOrderMark = false;
        qint64 lf = 0;
        qint64 crlf = 0;
        qint64 cr = 0;
        bool finalLineEnd = false;
        qint64 bytes = 0;  // put into the editor (the byte-order mark not counted)
        // The line end most lines have ("\n" when none has one).
        QByteArray dominantLineEnd() const;
        // Lines as a reader counts them: line ends, and one more for a last
        // line without one; 0 for no bytes.
        qint64 lines() const;
    };

    // Becomes a child of the editor.
    explicit QcbsSlicedTextLoader(QsciScintilla* editor);
    // Waits for a worker still reading (it stops at its next piece, or once
    // its document is filled).
    ~QcbsSlicedTextLoader() override;

    // Replaces the editor's text by the bytes.
    void loadBytes(const QByteArray& bytes);
    // The same from a file; false (and nothing changed) when it cannot be opened.
    bool loadFile(const QString& fileName);
    bool isLoading() const { return loading_; }
    const Summary& summary() const { return summary_; }

signals:
    // The whole text is in the editor.
    void finished();

private:
    struct Job;
    void start(QByteArray firstSlice, qint64 size, const std::shared_ptr<Job>& job);
    void finishInBackground(const std::shared_ptr<Job>& job);
    void finish();
    // The running job is left to finish by itself; its result is dropped.
    void abandon();

    QPointer<QsciScintilla> editor_;
    bool loading_ = false;
    bool wasReadOnly_ = false;
    Summary summary_;
    std::shared_ptr<Job> job_;
    // Declared last: destroyed first, it waits for its threads.
    QThreadPool workers_;
};
