// SPDX-License-Identifier: GPL-3.0-or-later
// The rows of a template merge as a table: data item, current and incoming value, chosen or not.
#pragma once

#include <QAbstractTableModel>
#include <vector>

#include "cif/CifBlockMerge.hpp"

// The rows of a template merge as a table: the data item (a loop shows its
// data names), the block's current value, the incoming value, and a check
// box in the first column saying whether the row is merged. Rows that are
// already the same in the block are shown greyed and cannot be chosen.
class QcbsCombineModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { ItemColumn, CurrentColumn, IncomingColumn, ColumnCount };

    explicit QcbsCombineModel(QObject* parent = nullptr);

    // Rows chosen at once, after what a merge of whole blocks would take:
    // the block's values kept, its unknown values filled, or every value
    // the template has replacing the block's.
    enum Choice { NewItems, NewAndUnknown, EveryDifference, Nothing };

    // New rows, chosen as NewAndUnknown chooses.
    void setRows(std::vector<CifMergeRow> rows);
    const std::vector<CifMergeRow>& rows() const { return rows_; }
    // The indices of the chosen rows.
    std::vector<std::size_t> chosen() const;
    void choose(Choice choice);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

signals:
    void choiceChanged();

private:
    QString text(const CifMergeRow& row, int column) const;
    QString toolTip(const CifMergeRow& row, int column) const;

    std::vector<CifMergeRow> rows_;
    std::vector<bool> chosen_;
};
