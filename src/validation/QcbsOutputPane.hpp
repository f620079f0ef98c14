// SPDX-License-Identifier: GPL-3.0-or-later
// The read-only log beside the error list in which the editor reports what it does.
#pragma once

#include <QTextEdit>

class QMenu;

// The read-only log beside the error list in which the editor reports what it
// is doing. It ignores every key and never takes the keyboard focus; its
// context menu offers "Select All", "Copy" and "Clear". Other parts write to
// it with append(); a cleared pane shows one banner line.
class QcbsOutputPane : public QTextEdit {
    Q_OBJECT
public:
    explicit QcbsOutputPane(QWidget* parent = nullptr, const char* name = nullptr);

    // The pane's own context menu, owned by the caller.
    QMenu* createPopupMenu(const QPoint& position);
    QMenu* createPopupMenu();

    // The banner a cleared pane shows, as rich text.
    static QString banner();

public slots:
    // Selects all the text and puts it on the clipboard.
    void copyAll();
    // Empties the pane down to the banner line.
    void clear();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
};
