// SPDX-License-Identifier: GPL-3.0-or-later
// The visualiser page of a main window, where a block's structure is drawn in 3-D.
#pragma once

#include <QString>
#include <QWidget>

class QLabel;

// The visualiser page of a main window, where the structure of the current
// block is drawn in 3-D. Until that view exists the page says so.
class QcbsVisSorter : public QWidget {
    Q_OBJECT
public:
    explicit QcbsVisSorter(QWidget* parent = nullptr);

    // What the page shows in place of the structure.
    QString message() const;
    static QString notAvailableText() { return "The 3-D view of the structure is not available yet."; }

signals:
    void statusBarMessageRequest(QString message);

private:
    QLabel* message_;
};
