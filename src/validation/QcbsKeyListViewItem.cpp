#include "validation/QcbsKeyListViewItem.hpp"

#include <QTreeWidget>

namespace {

// The non-null texts, in column order; a null text ends nothing, it is only
// left out, as a row built with fewer texts would have it.
QStringList texts(const QString& t0, const QString& t1, const QString& t2, const QString& t3,
                  const QString& t4, const QString& t5, const QString& t6, const QString& t7) {
    QStringList list{t0, t1, t2, t3, t4, t5, t6, t7};
    while (!list.isEmpty() && list.last().isNull()) list.removeLast();
    return list;
}

QString sortText(const QTreeWidgetItem& item, int column) {
    if (const auto* keyed = dynamic_cast<const QcbsKeyListViewItem*>(&item)) return keyed->key(column);
    return item.text(column);
}

}  // namespace

QcbsKeyListViewItem::QcbsKeyListViewItem(QTreeWidget* parent, const QString& t0, const QString& t1,
                                         const QString& t2, const QString& t3, const QString& t4,
                                         const QString& t5, const QString& t6, const QString& t7)
    : QTreeWidgetItem(parent, texts(t0, t1, t2, t3, t4, t5, t6, t7)) {}

QcbsKeyListViewItem::QcbsKeyListViewItem(QTreeWidget* parent, QTreeWidgetItem* after, const QString& t0,
                                         const QString& t1, const QString& t2, const QString& t3,
                                         const QString& t4, const QString& t5, const QString& t6,
                                         const QString& t7)
    : QTreeWidgetItem(parent, after) {
    const QStringList list = texts(t0, t1, t2, t3, t4, t5, t6, t7);
    for (int column = 0; column < list.size(); ++column) setText(column, list[column]);
}

QcbsKeyListViewItem::QcbsKeyListViewItem(QTreeWidgetItem* parent, const QString& t0, const QString& t1,
                                         const QString& t2, const QString& t3, const QString& t4,
                                         const QString& t5, const QString& t6, const QString& t7)
    : QTreeWidgetItem(parent, texts(t0, t1, t2, t3, t4, t5, t6, t7)) {}

QcbsKeyListViewItem::QcbsKeyListViewItem(QTreeWidgetItem* parent, QTreeWidgetItem* after, const QString& t0,
                                         const QString& t1, const QString& t2, const QString& t3,
                                         const QString& t4, const QString& t5, const QString& t6,
                                         const QString& t7)
    : QTreeWidgetItem(parent, after) {
    const QStringList list = texts(t0, t1, t2, t3, t4, t5, t6, t7);
    for (int column = 0; column < list.size(); ++column) setText(column, list[column]);
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
