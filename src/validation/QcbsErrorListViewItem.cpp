// SPDX-License-Identifier: GPL-3.0-or-later
// One entry of the error list, which remembers the kind of problem it reports.
#include "validation/QcbsErrorListViewItem.hpp"

#include "validation/QcbsListViewTexts.hpp"

QcbsErrorListViewItem::QcbsErrorListViewItem(QTreeWidget* parent, const QString& t0, const QString& t1,
                                             const QString& t2, const QString& t3, const QString& t4,
                                             const QString& t5, const QString& t6, const QString& t7)
    : QTreeWidgetItem(parent, listViewTexts(t0, t1, t2, t3, t4, t5, t6, t7)) {}

QcbsErrorListViewItem::QcbsErrorListViewItem(QTreeWidget* parent, QTreeWidgetItem* after, const QString& t0,
                                             const QString& t1, const QString& t2, const QString& t3,
                                             const QString& t4, const QString& t5, const QString& t6,
                                             const QString& t7)
    : QTreeWidgetItem(parent, after) {
    setListViewTexts(*this, listViewTexts(t0, t1, t2, t3, t4, t5, t6, t7));
}

QcbsErrorListViewItem::QcbsErrorListViewItem(QTreeWidgetItem* parent, const QString& t0, const QString& t1,
                                             const QString& t2, const QString& t3, const QString& t4,
                                             const QString& t5, const QString& t6, const QString& t7)
    : QTreeWidgetItem(parent, listViewTexts(t0, t1, t2, t3, t4, t5, t6, t7)) {}

QcbsErrorListViewItem::QcbsErrorListViewItem(QTreeWidgetItem* parent, QTreeWidgetItem* after,
                                             const QString& t0, const QString& t1, const QString& t2,
                                             const QString& t3, const QString& t4, const QString& t5,
                                             const QString& t6, const QString& t7)
    : QTreeWidgetItem(parent, after) {
    setListViewTexts(*this, listViewTexts(t0, t1, t2, t3, t4, t5, t6, t7));
}

CifError::ErrorID QcbsErrorListViewItem::identifier(int column) const {
    if (column < 0 || column >= kColumns) return CifError::ErrorID{};
    return identifiers_[static_cast<std::size_t>(column)];
}

void QcbsErrorListViewItem::setIdentifier(int column, CifError::ErrorID id) {
    if (column < 0 || column >= kColumns) return;
    identifiers_[static_cast<std::size_t>(column)] = id;
}
