// SPDX-License-Identifier: GPL-3.0-or-later
// Puts a file's bytes into a Scintilla editor a slice at a time, so the window stays live.
#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QFile>
#include <QObject>
#include <QPointer>
#include <QTimer>
#include <memory>

class QsciScintilla;

// Puts a file's bytes into a Scintilla editor a slice at a time, so that the
// window answers while a big file comes in, and the file is never held in
// memory whole beside the editor's copy.
//
// The first slice is small and goes in at once, so the first screen can be
// painted straight away; the rest follows from a zero-interval timer, each
// slice as many bytes as fit in sliceBudget() milliseconds. On the way the
// bytes are looked at once: whether they are UTF-8 (then the editor shows
// them so; otherwise as Latin-1), a UTF-8 byte-order mark at the start (left
// out of the text), and how many lines end in LF, CRLF and CR. While loading
// the editor is read-only and keeps no undo history; when the last slice is
// in, both are restored, the new lines' end is the one most lines have, the
// text counts as unmodified, and finished() is emitted.
class QcbsSlicedTextLoader : public QObject {
    Q_OBJECT

public:
    static constexpr int DefaultSliceBudget = 20;  // milliseconds

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
    ~QcbsSlicedTextLoader() override;

    // Replaces the editor's text by the bytes; returns after the first slice.
    // A load still running is abandoned.
    void loadBytes(const QByteArray& bytes);
    // The same from a file read a slice at a time; false (and nothing
    // changed) when it cannot be opened.
    bool loadFile(const QString& fileName);
    bool isLoading() const { return loading_; }
    const Summary& summary() const { return summary_; }

    int sliceBudget() const { return budget_; }
    void setSliceBudget(int milliseconds) { budget_ = milliseconds > 0 ? milliseconds : 1; }

signals:
    // The whole text is in the editor.
    void finished();

private slots:
    void insertSlice();

private:
    void start(qint64 size);
    // The next bytes of the source, at most `count`; empty at its end.
    QByteArray next(qint64 count);
    void look(const char* data, qint64 size);
    void finish();

    QPointer<QsciScintilla> editor_;
    QByteArray bytes_;  // the source, for loadBytes()
    qint64 offset_ = 0;
    std::unique_ptr<QFile> file_;  // the source, for loadFile()
    qint64 sliceBytes_ = 0;
    int budget_ = DefaultSliceBudget;
    bool loading_ = false;
    bool wasReadOnly_ = false;
    bool first_ = true;
    Summary summary_;
    // UTF-8 check across slices: continuation bytes still expected and the
    // range the next one must fall in.
    int pending_ = 0;
    unsigned char low_ = 0x80;
    unsigned char high_ = 0xbf;
    bool lastWasCr_ = false;
    char lastByte_ = 0;
    QTimer timer_;
};
