// SPDX-License-Identifier: GPL-3.0-or-later
// Puts a large text into a QPlainTextEdit a slice at a time, so the window stays live.
#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>

class QPlainTextEdit;

// Puts a large text into a QPlainTextEdit a slice at a time, so that the
// window answers while a big file comes in: setPlainText() of a
// million-line text blocks the event loop for seconds in Qt alone.
//
// The first slice goes in at once, so the first lines can be painted
// straight away; the rest follows from a zero-interval timer, each slice as
// many lines as fit in sliceBudget() milliseconds (the highlighter, if any,
// highlights what comes in within its own budget). While loading, the editor
// is read-only and keeps no undo history; when the last slice is in, both
// are restored, the document counts as unmodified, and finished() is
// emitted. The owner must not change the text meanwhile.
class QcbsSlicedTextLoader : public QObject {
    Q_OBJECT

public:
    static constexpr int DefaultSliceBudget = 20;  // milliseconds

    // Becomes a child of the editor.
    explicit QcbsSlicedTextLoader(QPlainTextEdit* editor);

    // Replaces the editor's text by `text`; returns after the first slice.
    // A load still running is abandoned.
    void load(const QString& text);
    bool isLoading() const { return loading_; }

    int sliceBudget() const { return budget_; }
    void setSliceBudget(int milliseconds) { budget_ = milliseconds > 0 ? milliseconds : 1; }

signals:
    // The whole text is in the editor.
    void finished();

private slots:
    void insertSlice();

private:
    void finish();

    QPointer<QPlainTextEdit> editor_;
    QString text_;
    qsizetype next_ = 0;  // where the text not yet inserted starts
    int linesPerSlice_ = 0;
    int budget_ = DefaultSliceBudget;
    bool loading_ = false;
    bool wasReadOnly_ = false;
    bool undoWasEnabled_ = true;
    QTimer timer_;
};
