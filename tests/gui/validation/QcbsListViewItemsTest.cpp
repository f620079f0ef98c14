#include <gtest/gtest.h>

#include <QTreeWidget>

#include "validation/QcbsErrorListViewItem.hpp"
#include "validation/QcbsKeyListViewItem.hpp"

namespace {

QStringList order(QTreeWidget& tree) {
    QStringList out;
    for (int i = 0; i < tree.topLevelItemCount(); ++i) out << tree.topLevelItem(i)->text(0);
    return out;
}

TEST(KeyedRow, UnsetKeyIsEmptyAndNeverTheText) {
    QTreeWidget tree;
    auto* row = new QcbsKeyListViewItem(&tree, "shown", "also shown");
    EXPECT_EQ(row->text(0), "shown");
    EXPECT_EQ(row->text(1), "also shown");
    for (int column = -1; column <= QcbsKeyListViewItem::kColumns; ++column)
        EXPECT_TRUE(row->key(column, true).isEmpty()) << column;
    row->setKey(3, "k");
    EXPECT_EQ(row->key(3, true), "k");
    EXPECT_EQ(row->key(3, false), "k");
    row->setKey(8, "ignored");
    row->setKey(-1, "ignored");
    EXPECT_TRUE(row->key(8).isEmpty());
}

TEST(KeyedRow, ListSortsByKeysInBothDirections) {
    QTreeWidget tree;
    tree.setColumnCount(2);
    tree.setSortingEnabled(true);
    tree.sortByColumn(0, Qt::AscendingOrder);
    auto* a = new QcbsKeyListViewItem(&tree, "alpha");
    auto* b = new QcbsKeyListViewItem(&tree, "beta");
    auto* c = new QcbsKeyListViewItem(&tree, "gamma");
    a->setKey(0, "3");
    b->setKey(0, "1");
    c->setKey(0, "2");
    EXPECT_EQ(order(tree), (QStringList{"beta", "gamma", "alpha"}));
    tree.sortByColumn(0, Qt::DescendingOrder);
    EXPECT_EQ(order(tree), (QStringList{"alpha", "gamma", "beta"}));

    // On a column without keys all rows are equal, whatever their text, and
    // keep their order; one key then decides.
    tree.sortByColumn(1, Qt::AscendingOrder);
    a->setText(1, "a");
    b->setText(1, "b");
    c->setText(1, "c");
    EXPECT_EQ(order(tree), (QStringList{"alpha", "gamma", "beta"}));
    a->setKey(1, "z");
    EXPECT_EQ(order(tree), (QStringList{"gamma", "beta", "alpha"}));
}

TEST(KeyedRow, ChildRowsFollowTheirPrecedingSibling) {
    QTreeWidget tree;
    auto* parent = new QcbsKeyListViewItem(&tree, "parent");
    auto* first = new QcbsKeyListViewItem(parent, "first");
    new QcbsKeyListViewItem(parent, "last");
    auto* second = new QcbsKeyListViewItem(parent, first, "second", "two");
    EXPECT_EQ(parent->indexOfChild(second), 1);
    EXPECT_EQ(second->text(1), "two");
    EXPECT_EQ(second->columnCount(), 2);
}

TEST(ErrorRow, RemembersAKindPerColumnAndSortsByText) {
    QTreeWidget tree;
    auto* row = new QcbsErrorListViewItem(&tree, "Line      10", "message");
    for (int column = 0; column < QcbsErrorListViewItem::kColumns; ++column)
        EXPECT_EQ(row->identifier(column), CifError::ErrorID{}) << column;
    row->setIdentifier(1, CifError::symmetry_disagrees);
    row->setIdentifier(7, CifError::input_unreadable);
    row->setIdentifier(8, CifError::internal_error);  // out of range: ignored
    EXPECT_EQ(row->identifier(1), CifError::symmetry_disagrees);
    EXPECT_EQ(row->identifier(7), CifError::input_unreadable);
    EXPECT_EQ(row->identifier(0), CifError::ErrorID{});
    EXPECT_EQ(row->identifier(8), CifError::ErrorID{});

    tree.setSortingEnabled(true);
    tree.sortByColumn(0, Qt::AscendingOrder);
    new QcbsErrorListViewItem(&tree, row, "Line       9");
    EXPECT_EQ(order(tree), (QStringList{"Line       9", "Line      10"}));
}

}  // namespace
