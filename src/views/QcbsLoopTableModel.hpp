// SPDX-License-Identifier: GPL-3.0-or-later
// The cells of the loop table: a view of the working block's loop columns, no copy per cell.
#pragma once

#include <QAbstractTableModel>
#include <QIcon>
#include <QStringList>
#include <cstddef>
#include <string_view>
#include <vector>

#include "cif/CifDataBlock.hpp"
#include "cif/CifDataItem.hpp"
#include "cif/CifValueRef.hpp"
#include "support/THandle.hpp"

// The cells of the loop table: one column per data item of the loop in the
// working block, one row per packet. Cells are read from the items' values
// when they are shown, and validated then, so that a loop of millions of
// rows costs its columns' value references and nothing per cell. Every edit
// goes to the working block at once; the model keeps no other copy.
//
// Roles: the value as the CIF library returns it (display and edit), the
// warning icon on a value the dictionary refuses (decoration), the tint of
// "." (light yellow), "?" (light blue) and blank cells (the dialog's own
// colour) as background. Header labels are set from outside; rows are
// numbered from 1.
//
// All columns of the loop share the working block's store, so that a value
// reference means the same in every column: edits move references, never
// texts.
class QcbsLoopTableModel : public QAbstractTableModel {
    Q_OBJECT
public:
    using Cells = std::vector<CifValueRef>;

    explicit QcbsLoopTableModel(QObject* parent = nullptr);

    // Shows these items (columns of one loop of `block`, all of one length).
    void setLoop(THandle<CifDataBlock> block, std::vector<THandle<CifDataItem>> columns);
    const THandle<CifDataBlock>& block() const { return block_; }
    const std::vector<THandle<CifDataItem>>& columns() const { return columns_; }
    QStringList columnNames() const;
    void setLabels(const QStringList& labels);
    const QStringList& labels() const { return labels_; }

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    // Does not change the cell: the table decides (and records the edit).
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;

    // --- Cells ---
    QString text(int row, int col) const;
    // Whether the dictionary accepts the cell's value.
    bool isValid(int row, int col) const;
    CifValueRef ref(int row, int col) const;
    void setRef(int row, int col, CifValueRef ref);
    // The value kept in the block's store, ready to be put into cells.
    CifValueRef add(std::string_view value);
    // "?", kept once.
    CifValueRef unknown();

    // --- Rows ---
    // Rows of "?" at the end.
    void appendRows(int count);
    // Drops the rows from `rows` on.
    void truncateRows(int rows);
    // Removes the rows (ascending, without repeats); gives their cells row by row.
    Cells removeRows(const std::vector<int>& rows);
    // Puts back rows that removeRows() gave: `rows` are their places afterwards.
    void insertRows(const std::vector<int>& rows, const Cells& cells);
    // Row i becomes the old row order[i].
    void permuteRows(const std::vector<std::size_t>& order);
    void swapRowValues(int a, int b);

    // --- Columns ---
    // Makes the item (of the block or not yet) the column at `at`; a short
    // column is filled with "?", a longer one fills the others so.
    void insertColumn(int at, const THandle<CifDataItem>& item);
    // Takes the column out of the block; gives its item with its values.
    THandle<CifDataItem> removeColumn(int col);
    void swapColumnItems(int a, int b);

    // --- Values in reading order (along a row, then on to the next) ---
    // Inserts the cells before position `at`; later values move on, and
    // rows of "?" are added at the end as needed.
    void insertCells(std::size_t at, const Cells& cells);
    // Removes `count` cells from position `at`; later values move back and
    // the freed places at the end hold "?". Gives the cells removed.
    Cells removeCells(std::size_t at, std::size_t count);

signals:
    // The user typed a new text into a cell.
    void cellEdited(int row, int col, const QString& text);

private:
    CifValueRef at(std::size_t position) const;
    void setAt(std::size_t position, CifValueRef ref);
    void relink();

    THandle<CifDataBlock> block_;
    std::vector<THandle<CifDataItem>> columns_;
    QStringList labels_;
    CifValueRef unknown_;
    bool hasUnknown_ = false;
    QIcon warning_;
};
