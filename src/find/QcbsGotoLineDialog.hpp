// SPDX-License-Identifier: GPL-3.0-or-later
// The modeless "Go to Line" dialog.
#pragma once

#include <QDialog>
#include <QPointer>

class QLineEdit;
class QcbsRichTextEdit;

// "Go to Line": a line number, "&Go" (doIt()) and "Close". Going selects the
// line in the editor and gives the editor the keyboard focus; a number
// outside the text, zero or a text that is no number beeps.
class QcbsGotoLineDialog : public QDialog {
    Q_OBJECT
public:
    explicit QcbsGotoLineDialog(QWidget* parent = nullptr);
    void setEditor(QcbsRichTextEdit* editor);
    QLineEdit* lineEdit() const { return line_; }

public slots:
    // False (after a beep) when there is no such line or no editor.
    bool doIt();

signals:
    void failed();

private:
    QLineEdit* line_ = nullptr;
    QPointer<QcbsRichTextEdit> editor_;
};
