// SPDX-License-Identifier: GPL-3.0-or-later
// A list row that sorts by its own key per column instead of its text.
#pragma once

#include <QString>
#include <QTreeWidgetItem>
#include <array>

// A list row that sorts by its own key per column instead of its text, so that
// rows such as the error list's headings keep a fixed order whatever they say.
// An unset key is empty; it never falls back to the column text.
class QcbsKeyListViewItem : public QTreeWidgetItem {
public:
    static constexpr int kColumns = 8;

    explicit QcbsKeyListViewItem(QTreeWidget* parent, const QString& text0 = QString(),
                                 const QString& text1 = QString(), const QString& text2 = QString(),
                                 const QString& text3 = QString(), const QString& text4 = QString(),
                                 const QString& text5 = QString(), const QString& text6 = QString(),
                                 const QString& text7 = QString());
    QcbsKeyListViewItem(QTreeWidget* parent, QTreeWidgetItem* after, const QString& text0 = QString(),
                        const QString& text1 = QString(), const QString& text2 = QString(),
                        const QString& text3 = QString(), const QString& text4 = QString(),
                        const QString& text5 = QString(), const QString& text6 = QString(),
                        const QString& text7 = QString());
    explicit QcbsKeyListViewItem(QTreeWidgetItem* parent, const QString& text0 = QString(),
                                 const QString& text1 = QString(), const QString& text2 = QString(),
                                 const QString& text3 = QString(), const QString& text4 = QString(),
                                 const QString& text5 = QString(), const QString& text6 = QString(),
                                 const QString& text7 = QString());
    QcbsKeyListViewItem(QTreeWidgetItem* parent, QTreeWidgetItem* after, const QString& text0 = QString(),
                        const QString& text1 = QString(), const QString& text2 = QString(),
                        const QString& text3 = QString(), const QString& text4 = QString(),
                        const QString& text5 = QString(), const QString& text6 = QString(),
                        const QString& text7 = QString());

    // The sort key of a column, whatever the direction; empty when unset or
    // when the column is out of range.
    QString key(int column, bool ascending = true) const;
    // Stores a key and lets a sorted list put the row in its new place.
    void setKey(int column, const QString& key);

    // Compares the keys of the list's sort column; a row of another class
    // takes part with its text.
    bool operator<(const QTreeWidgetItem& other) const override;

private:
    std::array<QString, kColumns> keys_;
};
