// SPDX-License-Identifier: GPL-3.0-or-later
// Rows of the list views made from up to eight column texts.
#pragma once

#include <QString>
#include <QStringList>
#include <QTreeWidgetItem>

// Rows of the list views are made with up to eight column texts, as in the
// older list-view interface: the texts up to the last non-null one count.
inline QStringList listViewTexts(const QString& t0, const QString& t1, const QString& t2, const QString& t3,
                                 const QString& t4, const QString& t5, const QString& t6, const QString& t7) {
    QStringList list{t0, t1, t2, t3, t4, t5, t6, t7};
    while (!list.isEmpty() && list.last().isNull()) list.removeLast();
    return list;
}

inline void setListViewTexts(QTreeWidgetItem& item, const QStringList& texts) {
    for (int column = 0; column < texts.size(); ++column) item.setText(column, texts[column]);
}
