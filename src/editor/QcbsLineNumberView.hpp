// SPDX-License-Identifier: GPL-3.0-or-later
// The line-number margin of an editor: its width follows the line count and the font.
#pragma once

#include <QFont>
#include <QObject>

class QcbsRichTextEdit;

// The line-number margin of an editor. Scintilla draws the numbers beside
// the lines in view and follows every scroll; this keeps the margin as wide
// as the largest number needs (the average digit width times the digits of
// the line count, plus ten pixels), and shows or hides it.
class QcbsLineNumberView : public QObject {
    Q_OBJECT
public:
    explicit QcbsLineNumberView(QcbsRichTextEdit* editor);

    int numberOfLines() const { return lines_; }
    // The margin's width now (0 while hidden).
    int width() const;
    bool isVisible() const { return shown_; }
    void setVisible(bool shown);
    const QFont& font() const { return font_; }

    // Sets the font and fits the width to it.
    void setFont(const QFont& font);

    // The width for `lines` lines in the margin's font.
    int widthFor(int lines) const;

public slots:
    // Fits the width to a new line count.
    void setNumberOfLines(int lines);

private:
    void apply();

    int lines_ = 0;
    bool shown_ = true;
    QFont font_;
    QcbsRichTextEdit* editor_;  // the parent
};
