// SPDX-License-Identifier: GPL-3.0-or-later
// One CIF loop edited as a table: a private working block, validated cells, loop text out.
#pragma once

#include <QList>
#include <QPoint>
#include <QString>
#include <QTableView>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "cif/CifDataBlock.hpp"
#include "cif/CifDictionary.hpp"
#include "cif/CifWriteSettings.hpp"
#include "support/THandle.hpp"

class QAction;
class QUndoStack;
class QcbsLoopTableModel;

// One CIF loop as a table: a column per data name, a row per packet. The
// table keeps its own working block holding only this loop, made from the
// document's block, so every edit reaches the CIF model at once and is
// validated; the document itself is never touched. loopText() prints the
// edited loop for the main window to put into the document.
//
// Every edit is one step on undoStack(). Rows and columns the commands act
// on are the selected ones, or the current cell's when none is selected.
//
// The cell commands keep every column of the loop the same length. They
// work in reading order, the order a loop's values stand in its text
// (along a row, then on to the next row), because a loop whose text lost or
// split a value is off by one from there on:
// - AddMode::InsertUnknown puts `count` "?" cells before the cell; the
//   values from there on move on by as many places; rows of "?" are added
//   at the end for the values pushed past the last row.
// - AddMode::SplitAtBlanks splits the cell's value at its blanks: the first
//   word stays, the others (at most `count`, all when 0) become cells after
//   it, moving the rest on as InsertUnknown does.
// - RemoveMode::RemoveSelected removes the selected cells (the current one
//   when none is selected); the values after each move back and the places
//   freed at the end of the last row hold "?". The row count stays.
// - RemoveMode::MergeWithNext joins the current cell's value and the next
//   one's with a blank into the current cell and removes the next, moving
//   the rest back as RemoveSelected does.
class QcbsLoopTable : public QTableView {
    Q_OBJECT
public:
    enum class AddMode { InsertUnknown, SplitAtBlanks };
    enum class RemoveMode { RemoveSelected, MergeWithNext };

    explicit QcbsLoopTable(QWidget* parent = nullptr, const char* name = nullptr);

    // Loads the loop holding the data name from the block into a new
    // working block. A null block, or a name absent or not looped, leaves
    // the table as it was (false).
    bool processLoop(const QString& dataName, THandle<CifDataBlock> block);
    // An empty loop for the dictionary: no rows, no columns.
    void newLoop(THandle<CifDictionary> dictionary);
    const THandle<CifDataBlock>& workingBlock() const;

    // --- Rows and columns ---
    // A column for the data name at the end, filled with "?" (false when the
    // name is empty or already a column).
    bool addCol(const QString& dataName);
    void deleteCol();
    // A row of "?" at the end (only when the loop has a column).
    void addRow();
    void deleteRow();
    // The bool (headers moving too) is kept for callers; labels always follow.
    void swapRows(int row1, int row2, bool swapHeaders = false);
    void swapColumns(int col1, int col2, bool swapHeaders = false);
    // Orders the rows by a column's values (numbers as numbers, standard
    // uncertainties ignored, numbers before text); equal values keep their order.
    void sortRows(int col, Qt::SortOrder order = Qt::AscendingOrder);

    // --- Cells ---
    void insertCell();
    void deleteCell();
    void splitCell();
    void mergeCell();
    void addCell(AddMode mode, int row, int col, unsigned int count);
    void removeCells(RemoveMode mode);
    // Applies the text the user typed into a cell to the working block.
    void updateCell(int row, int col, const QString& text);
    // Sets a cell from the program; the cell shows the value as the CIF
    // library then returns it. Returns that value.
    QString setAndValidateCell(int row, int col, const QString& value);
    // The cell's value as shown, and whether the dictionary accepts it.
    QString cellText(int row, int col) const;
    bool isCellValid(int row, int col) const;

    // The selected cells (the current one when none is) as tab-separated
    // rows, the rectangle that spans them.
    QString copyCells() const;
    // Puts tab-separated rows in from the current cell on, adding rows as
    // needed; cells past the last column are dropped. One undo step.
    void pasteCells(const QString& text);

    // --- The loop ---
    // The full data name of column 0, empty without columns.
    QString loopMaster() const;
    // The loop category followed by the column's label; empty for no such column.
    QString loopItem(int col) const;
    const QString& loopCategory() const { return category_; }
    // The loop as the CIF library prints it, from "loop_" on.
    QString loopText(const CifWriteSettings& settings = CifWriteSettings()) const;
    // A plain dump: "loop_", the labels, then per row the separator and the cells.
    void writeLoop(std::ostream& stream, const QString& separator) const;
    // Recomputes the category and the labels from the loop holding dataName.
    void updateColumnHeadings(const QString& dataName);
    // The 1-based line of the document text the row's values were read
    // from, -1 for a row made or wholly retyped here.
    int rowLine(int row) const;

    QUndoStack* undoStack() const { return undo_; }
    QcbsLoopTableModel* loopModel() const { return model_; }
    // Whether a cell editor is open.
    bool isEditingCell() const { return editing_; }
    // Closes an open cell editor, keeping what was typed.
    void finishEditing();
    // Entries a right-click on a cell offers after the column's help; with
    // none, a right-click gives the help at once.
    void setContextActions(const QList<QAction*>& actions) { contextActions_ = actions; }

protected:
    void keyPressEvent(QKeyEvent* event) override;

public slots:
    // A right-click on a cell: the column's dictionary help.
    void showDataItemHelp(int row, int col, const QPoint& position);
    // The edit data dialogue for the name with the working block's dictionary, modally.
    void dataItemHelp(const QString& dataName);

signals:
    void editingBegins();
    void editingEnds();
    void loopCategoryChanged(const QString& category);

private:
    std::vector<int> chosenRows() const;
    std::vector<int> chosenColumns() const;
    std::size_t position(int row, int col) const;
    // Records an edit on the undo stack, which makes it.
    void push(const QString& text, std::function<void()> redo, std::function<void()> undo);
    void refreshHeadings();
    void showContextMenu(const QPoint& position);

    QcbsLoopTableModel* model_;
    QUndoStack* undo_;
    QString category_;
    bool editing_ = false;
    QList<QAction*> contextActions_;
};
