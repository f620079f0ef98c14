// SPDX-License-Identifier: GPL-3.0-or-later
// The read-only log beside the error list in which the editor reports what it does.
#include "validation/QcbsOutputPane.hpp"

#include <QContextMenuEvent>
#include <QMenu>

#include "base/QcbsUtilities.hpp"
#include "resources/QcbsXpmResource.hpp"

QcbsOutputPane::QcbsOutputPane(QWidget* parent, const char* name) : QTextEdit(parent) {
    if (name) setObjectName(QString::fromLatin1(name));
    setReadOnly(true);
    setUndoRedoEnabled(false);
    // Nothing the user pastes or drops becomes rich text; clear() lets the
    // program's own messages be rich text again.
    setAcceptRichText(false);
    setAcceptDrops(false);
    setFocusPolicy(Qt::NoFocus);
}

QString QcbsOutputPane::banner() {
    return "========== <font face=\"arial black,arial\" size=\"+0\">" + programQName() +
           "</font> ready ==========<br>";
}

QMenu* QcbsOutputPane::createPopupMenu(const QPoint& /*position*/) {
    auto* menu = new QMenu(this);
    menu->addAction("Select All", this, &QTextEdit::selectAll);
    menu->addAction(QIcon(QcbsXpmResource::get_xpm(QcbsXpmResource::Copy)), "Copy", this, &QTextEdit::copy);
    menu->addAction("Clear", this, &QcbsOutputPane::clear);
    return menu;
}

QMenu* QcbsOutputPane::createPopupMenu() { return createPopupMenu(QPoint()); }

void QcbsOutputPane::copyAll() {
    selectAll();
    copy();
}

void QcbsOutputPane::clear() {
    QTextEdit::clear();
    setAcceptRichText(true);
    append(banner());
}

void QcbsOutputPane::keyPressEvent(QKeyEvent* /*event*/) {
    // Every key is ignored: typing, deleting and keyboard copying alike.
}

void QcbsOutputPane::contextMenuEvent(QContextMenuEvent* event) {
    QMenu* menu = createPopupMenu(event->pos());
    menu->exec(event->globalPos());
    delete menu;
}
