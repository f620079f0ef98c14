// SPDX-License-Identifier: GPL-3.0-or-later
// The rows of the list views: sorting by key and a kind per column.
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

TEST(KeyedRow, RowsSortByTheirKeysAndAnUnsetKeyIsEmptyNeverTheText) {
    QTreeWidget tree;
    tree.setColumnCount(2);
    tree.setSortingEnabled(true);
    tree.sortByColumn(0, Qt::AscendingOrder);
    auto* a = new QcbsKeyListViewItem(&tree, "alpha", "a");
    auto* b = new QcbsKeyListViewItem(&tree, "beta", "b");
    auto* c = new QcbsKeyListViewItem(&tree, "gamma", "c");
    for (int column = -1; column <= QcbsKeyListViewItem::kColumns; ++column)
        EXPECT_TRUE(a->key(column, true).isEmpty()) << column;
    a->setKey(0, "3");
    b->setKey(0, "1");
    c->setKey(0, "2");
    a->setKey(8, "ignored");
    EXPECT_EQ(a->key(0, false), "3");
    EXPECT_TRUE(a->key(8).isEmpty());
    EXPECT_EQ(order(tree), (QStringList{"beta", "gamma", "alpha"}));
    tree.sortByColumn(0, Qt::DescendingOrder);
    EXPECT_EQ(order(tree), (QStringList{"alpha", "gamma", "beta"}));
    // On a column without keys all rows are equal, whatever their text, and
    // keep their order; one key then decides.
    tree.sortByColumn(1, Qt::AscendingOrder);
    EXPECT_EQ(order(tree), (QStringList{"alpha", "gamma", "beta"}));
    a->setKey(1, "z");
    EXPECT_EQ(order(tree), (QStringList{"gamma", "beta", "alpha"}));

    // A child row given a preceding sibling goes right after it.
    auto* first = new QcbsKeyListViewItem(a, "first");
    new QcbsKeyListViewItem(a, "last");
    auto* second = new QcbsKeyListViewItem(a, first, "second", "two");
    EXPECT_EQ(a->indexOfChild(second), 1);
    EXPECT_EQ(second->text(1), "two");
}

TEST(ErrorRow, RemembersAKindPerColumn) {
    QTreeWidget tree;
    auto* row = new QcbsErrorListViewItem(&tree, "Line      10", "message");
    row->setIdentifier(1, CifError::symmetry_disagrees);
    row->setIdentifier(7, CifError::input_unreadable);
    row->setIdentifier(8, CifError::internal_error);  // out of range: ignored
    EXPECT_EQ(row->identifier(0), CifError::ErrorID{});
    EXPECT_EQ(row->identifier(1), CifError::symmetry_disagrees);
    EXPECT_EQ(row->identifier(7), CifError::input_unreadable);
    EXPECT_EQ(row->identifier(8), CifError::ErrorID{});
}

}  // namespace
