// SPDX-License-Identifier: GPL-3.0-or-later
// One entry of the error list, which remembers the kind of problem it reports.
#pragma once

#include <QString>
#include <QTreeWidgetItem>
#include <vector>

#include "cif/CifError.hpp"

// One entry of the error list: a row that also remembers, per column, the kind
// of problem it reports (the error list uses column 1). Rows sort by text.
class QcbsErrorListViewItem : public QTreeWidgetItem {
public:
    static constexpr int kColumns = 8;

    explicit QcbsErrorListViewItem(QTreeWidget* parent, const QString& text0 = QString(),
                                   const QString& text1 = QString(), const QString& text2 = QString(),
                                   const QString& text3 = QString(), const QString& text4 = QString(),
                                   const QString& text5 = QString(), const QString& text6 = QString(),
                                   const QString& text7 = QString());
    QcbsErrorListViewItem(QTreeWidget* parent, QTreeWidgetItem* after, const QString& text0 = QString(),
                          const QString& text1 = QString(), const QString& text2 = QString(),
                          const QString& text3 = QString(), const QString& text4 = QString(),
                          const QString& text5 = QString(), const QString& text6 = QString(),
                          const QString& text7 = QString());
    explicit QcbsErrorListViewItem(QTreeWidgetItem* parent, const QString& text0 = QString(),
                                   const QString& text1 = QString(), const QString& text2 = QString(),
                                   const QString& text3 = QString(), const QString& text4 = QString(),
                                   const QString& text5 = QString(), const QString& text6 = QString(),
                                   const QString& text7 = QString());
    QcbsErrorListViewItem(QTreeWidgetItem* parent, QTreeWidgetItem* after, const QString& text0 = QString(),
                          const QString& text1 = QString(), const QString& text2 = QString(),
                          const QString& text3 = QString(), const QString& text4 = QString(),
                          const QString& text5 = QString(), const QString& text6 = QString(),
                          const QString& text7 = QString());

    // The problem kind stored for a column; the default kind for a column out
    // of range.
    CifError::ErrorID identifier(int column) const;
    // Stores the problem kind of a column; a column out of range is ignored.
    void setIdentifier(int column, CifError::ErrorID id);

private:
    std::vector<CifError::ErrorID> identifiers_ = std::vector<CifError::ErrorID>(kColumns);
};
