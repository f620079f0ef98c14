#pragma once

#include <QStringList>
#include <QTest>
#include <QTreeWidgetItem>

#include "validation/QcbsErrorListView.hpp"

// Helpers of the tests that check documents in a main window.

// The entries under one heading of the error list, each as "line: message".
using Entries = QStringList;

inline Entries entriesUnder(const QcbsErrorListView* list, const QString& heading) {
    Entries entries;
    for (int i = 0; i < list->topLevelItemCount(); ++i) {
        const QTreeWidgetItem* top = list->topLevelItem(i);
        if (top->text(0) != heading) continue;
        for (int j = 0; j < top->childCount(); ++j)
            entries << top->child(j)->text(0).mid(4).trimmed() + ": " + top->child(j)->text(1);
    }
    return entries;
}

inline void typeLines(QWidget* editor, const QStringList& lines) {
    for (const QString& line : lines) {
        QTest::keyClicks(editor, line);
        QTest::keyClick(editor, Qt::Key_Return);
    }
}
