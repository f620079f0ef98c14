// SPDX-License-Identifier: GPL-3.0-or-later
// The line-number margin left of an editor.
#pragma once

#include <QFrame>
#include <QList>
#include <QRect>

class QcbsRichTextEdit;

// The line-number margin left of an editor: the numbers of the lines in
// view, right-aligned beside them, in a margin as wide as the largest number
// needs.
class QcbsLineNumberView : public QFrame {
    Q_OBJECT
public:
    QcbsLineNumberView(QWidget* parent, QcbsRichTextEdit* editor, const char* name = nullptr);

    int numberOfLines() const { return lines_; }
    int contentsX() const { return x_; }
    int contentsY() const { return y_; }

    // Sets the font and fits the width to it.
    void setFont(const QFont& font);

    // The width for `lines` lines: the average digit width times the digits
    // of the count, plus ten pixels.
    int widthFor(int lines) const;

    // One number to draw: the one-based line and where it goes.
    struct LineNumber {
        int line;
        QRect rect;
    };
    // The numbers of the lines in view, from the editor's first line in view
    // down to the first line below the margin.
    QList<LineNumber> visibleNumbers() const;

public slots:
    // Fits the width to a new line count.
    void setNumberOfLines(int lines);
    // Follows the editor's scroll position (x in pixels, y as its first line).
    void setContentsPos(int x, int y);

protected:
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void drawContents(QPainter* painter);

private:
    int lines_ = 0;
    int x_ = 0;
    int y_ = 0;
    QcbsRichTextEdit* editor_;  // not owned
};
