// SPDX-License-Identifier: GPL-3.0-or-later
// A list row that sorts by its own key per column instead of its text.
#include "validation/QcbsKeyListViewItem.hpp"

#include <QTreeWidget>

#include "validation/QcbsListViewTexts.hpp"

namespace {

QString sortText(const QTreeWidgetItem& item, int column) {
    if (const auto* keyed = dynamic_cast<const QcbsKeyListViewItem*>(&item)) return keyed->key(column);
    return item.text(column);
}

}  // namespace

QcbsKeyListViewItem::QcbsKeyListViewItem(QTreeWidget* parent, const QString& t0, const QString& t1,
                                         const QString& t2, const QString& t3, const QString& t4,
                                         const QString& t5, const QString& t6, const QString& t7)
    : QTreeWidgetItem(parent, listViewTexts(t0, t1, t2, t3, t4, t5, t6, t7)) {}

QcbsKeyListViewItem::QcbsKeyListViewItem(QTreeWidget* parent, QTreeWidgetItem* after, const QString& t0,
                                         const QString& t1, const QString& t2, const QString& t3,
                                         const QString& t4, const QString& t5, const QString& t6,
                                         const QString& t7)
    : QTreeWidgetItem(parent, after) {
    setListViewTexts(*this, listViewTexts(t0, t1, t2, t3, t4, t5, t6, t7));
}

QcbsKeyListViewItem::QcbsKeyListViewItem(QTreeWidgetItem* parent, const QString& t0, const QString& t1,
                                         const QString& t2, const QString& t3, const QString& t4,
                                         const QString& t5, const QString& t6, const QString& t7)
    : QTreeWidgetItem(parent, listViewTexts(t0, t1, t2, t3, t4, t5, t6, t7)) {}

QcbsKeyListViewItem::QcbsKeyListViewItem(QTreeWidgetItem* parent, QTreeWidgetItem* after, const QString& t0,
                                         const QString& t1, const QString& t2, const QString& t3,
                                         const QString& t4, const QString& t5, const QString& t6,
                                         const QString& t7)
    : QTreeWidgetItem(parent, after) {
    setListViewTexts(*this, listViewTexts(t0, t1, t2, t3, t4, t5, t6, t7));
}

QString QcbsKeyListViewItem::key(int column, bool /*ascending*/) const {
    if (column < 0 || column >= kColumns) return QString();
    return keys_[static_cast<std::size_t>(column)];
}

void QcbsKeyListViewItem::setKey(int column, const QString& key) {
    if (column < 0 || column >= kColumns) return;
    keys_[static_cast<std::size_t>(column)] = key;
    emitDataChanged();  // a sorted list re-sorts on a change of the row
}

bool QcbsKeyListViewItem::operator<(const QTreeWidgetItem& other) const {
    const int column = treeWidget() ? treeWidget()->sortColumn() : 0;
    return key(column) < sortText(other, column);
}
