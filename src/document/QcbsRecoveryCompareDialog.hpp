// SPDX-License-Identifier: GPL-3.0-or-later
// The recovered text beside the file's, read-only, to choose between them.
#pragma once

#include <QByteArray>
#include <QDialog>

#include "document/QcbsRecoveryRecord.hpp"

class QLabel;
class QPlainTextEdit;

// The recovered text beside the file's as it is on disk, both read-only,
// scrolled together and opened at their first different line, with the
// choice to recover the text or discard it (or to leave it for later).
// Very long texts are shown up to ShownBytes.
class QcbsRecoveryCompareDialog : public QDialog {
    Q_OBJECT
public:
    enum Choice { Recover, Discard, Later };

    QcbsRecoveryCompareDialog(const QcbsRecoveryRecord& record, const QByteArray& recovered,
                              QWidget* parent = nullptr);

    Choice choice() const { return choice_; }
    QPlainTextEdit* recoveredView() const { return recoveredView_; }
    QPlainTextEdit* fileView() const { return fileView_; }
    // The 0-based line where the two texts first differ, -1 when they do not.
    int firstDifference() const { return firstDifference_; }

    static constexpr qint64 ShownBytes = 4 * 1024 * 1024;

private:
    QPlainTextEdit* makeView(const QString& name, const QString& text);
    void markLine(QPlainTextEdit* view, int line);

    Choice choice_ = Later;
    QPlainTextEdit* recoveredView_ = nullptr;
    QPlainTextEdit* fileView_ = nullptr;
    int firstDifference_ = -1;
};
