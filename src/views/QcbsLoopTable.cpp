// SPDX-License-Identifier: GPL-3.0-or-later
// One CIF loop edited as a table: a private working block, validated cells, loop text out.
#include "views/QcbsLoopTable.hpp"

#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMenu>
#include <QMessageBox>
#include <QUndoStack>
#include <algorithm>
#include <memory>
#include <numeric>
#include <set>
#include <sstream>

#include "cif/CifNumber.hpp"
#include "views/QcbsEditDataDialogue.hpp"
#include "views/QcbsLoopTableCommand.hpp"
#include "views/QcbsLoopTableDelegate.hpp"
#include "views/QcbsLoopTableModel.hpp"
#include "views/QcbsLoopValues.hpp"

QcbsLoopTable::QcbsLoopTable(QWidget* parent, const char* name)
    : QTableView(parent), model_(new QcbsLoopTableModel(this)), undo_(new QUndoStack(this)) {
    if (name != nullptr) setObjectName(name);
    setModel(model_);
    auto* delegate = new QcbsLoopTableDelegate(this);
    setItemDelegate(delegate);
    connect(delegate, &QcbsLoopTableDelegate::editorOpened, this, [this] {
        editing_ = true;
        emit editingBegins();
    });
    connect(delegate, &QcbsLoopTableDelegate::editorClosed, this, [this] {
        editing_ = false;
        emit editingEnds();
    });
    connect(model_, &QcbsLoopTableModel::cellEdited, this, &QcbsLoopTable::updateCell);
    // Every row is as high as the next: the view then places a row without
    // measuring the rows above it, however many there are.
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
    setContextMenuPolicy(Qt::CustomContextMenu);
    connect(this, &QWidget::customContextMenuRequested, this, &QcbsLoopTable::showContextMenu);
    horizontalHeader()->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(horizontalHeader(), &QWidget::customContextMenuRequested, this, [this](const QPoint& at) {
        showDataItemHelp(-1, horizontalHeader()->logicalIndexAt(at), horizontalHeader()->mapToGlobal(at));
    });
}

const THandle<CifDataBlock>& QcbsLoopTable::workingBlock() const { return model_->block(); }

bool QcbsLoopTable::processLoop(const QString& dataName, THandle<CifDataBlock> block) {
    if (block.is_null()) return false;
    const std::string name = dataName.toStdString();
    const THandle<CifDataItem> item = block->find(name);
    if (item.is_null() || !item->is_looped()) return false;
    // The working block shares the document's store, so that its values
    // refer to the text they were read from instead of copies.
    THandle<CifDataBlock> working(new CifDataBlock(block->dictionary(), block->name(), -1, block->store()));
    std::vector<std::string> names;
    block->loop_columns(name, names);
    working->copy_loop(names, *block, CifDataBlock::keep_existing);
    std::vector<THandle<CifDataItem>> items;
    working->obtain(names, items);
    model_->setLoop(working, items);
    undo_->clear();
    updateColumnHeadings(dataName);
    return true;
}

void QcbsLoopTable::newLoop(THandle<CifDictionary> dictionary) {
    model_->setLoop(THandle<CifDataBlock>(new CifDataBlock(dictionary, "loop")), {});
    undo_->clear();
    refreshHeadings();
}

// --- rows and columns ------------------------------------------------------------------

void QcbsLoopTable::push(const QString& text, std::function<void()> redo, std::function<void()> undo) {
    undo_->push(new QcbsLoopTableCommand(text, std::move(redo), std::move(undo)));
}

bool QcbsLoopTable::addCol(const QString& dataName) {
    const THandle<CifDataBlock>& block = model_->block();
    const std::string name = dataName.trimmed().toStdString();
    if (block.is_null() || name.empty() || !block->find(name).is_null()) return false;
    const THandle<CifDataItem> item =
        block->store()->make<CifDataItem>(name, block->store(), block->dictionary());
    const int at = model_->columnCount();
    push(
        "Add column",
        [this, item, at] {
            model_->insertColumn(at, item);
            refreshHeadings();
        },
        [this, at] {
            model_->removeColumn(at);
            refreshHeadings();
        });
    return true;
}

void QcbsLoopTable::deleteCol() {
    const std::vector<int> columns = chosenColumns();
    if (columns.empty()) return;
    auto items = std::make_shared<std::vector<THandle<CifDataItem>>>();
    push(
        columns.size() == 1 ? "Delete column" : "Delete columns",
        [this, columns, items] {
            items->clear();
            for (auto col = columns.rbegin(); col != columns.rend(); ++col)
                items->insert(items->begin(), model_->removeColumn(*col));
            refreshHeadings();
        },
        [this, columns, items] {
            for (std::size_t i = 0; i < columns.size(); ++i) model_->insertColumn(columns[i], (*items)[i]);
            refreshHeadings();
        });
}

void QcbsLoopTable::addRow() {
    if (loopMaster().isEmpty()) return;
    const int rows = model_->rowCount();
    push(
        "Add row", [this] { model_->appendRows(1); }, [this, rows] { model_->truncateRows(rows); });
    setCurrentIndex(model_->index(rows, std::max(0, currentIndex().column())));
}

void QcbsLoopTable::deleteRow() {
    if (loopMaster().isEmpty()) return;
    const std::vector<int> rows = chosenRows();
    if (rows.empty()) return;
    auto cells = std::make_shared<QcbsLoopTableModel::Cells>();
    push(
        rows.size() == 1 ? "Delete row" : "Delete rows",
        [this, rows, cells] { *cells = model_->removeRows(rows); },
        [this, rows, cells] { model_->insertRows(rows, *cells); });
}

void QcbsLoopTable::swapRows(int row1, int row2, bool swapHeaders) {
    (void)swapHeaders;
    const int rows = model_->rowCount();
    if (row1 == row2 || row1 < 0 || row2 < 0 || row1 >= rows || row2 >= rows) return;
    const auto swap = [this, row1, row2] { model_->swapRowValues(row1, row2); };
    push("Move row", swap, swap);
}

void QcbsLoopTable::swapColumns(int col1, int col2, bool swapHeaders) {
    (void)swapHeaders;
    const int cols = model_->columnCount();
    if (col1 == col2 || col1 < 0 || col2 < 0 || col1 >= cols || col2 >= cols) return;
    const auto swap = [this, col1, col2] {
        model_->swapColumnItems(col1, col2);
        refreshHeadings();
    };
    push("Move column", swap, swap);
}

void QcbsLoopTable::sortRows(int col, Qt::SortOrder order) {
    if (col < 0 || col >= model_->columnCount()) return;
    const CifDataItem& item = *model_->columns()[col];
    // Each value is read as a number once, not at every comparison.
    struct Key {
        bool number;
        double value;
        std::string_view text;
    };
    std::vector<Key> keys(item.size());
    for (std::size_t n = 0; n < keys.size(); ++n) {
        const std::string_view text = item.value_view(n);
        const CifNumber number = CifNumber::parse(text);
        keys[n] = {number.ok(), number.value, text};
    }
    const auto less = [](const Key& a, const Key& b) {
        if (a.number != b.number) return a.number;
        return a.number ? a.value < b.value : a.text < b.text;
    };
    auto forward = std::make_shared<std::vector<std::size_t>>(keys.size());
    std::iota(forward->begin(), forward->end(), std::size_t(0));
    std::stable_sort(forward->begin(), forward->end(), [&](std::size_t a, std::size_t b) {
        return order == Qt::AscendingOrder ? less(keys[a], keys[b]) : less(keys[b], keys[a]);
    });
    auto backward = std::make_shared<std::vector<std::size_t>>(keys.size());
    for (std::size_t i = 0; i < forward->size(); ++i) (*backward)[(*forward)[i]] = i;
    push(
        "Sort rows", [this, forward] { model_->permuteRows(*forward); },
        [this, backward] { model_->permuteRows(*backward); });
}

// --- cells -----------------------------------------------------------------------------

std::size_t QcbsLoopTable::position(int row, int col) const {
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(model_->columnCount()) +
           static_cast<std::size_t>(col);
}

void QcbsLoopTable::insertCell() {
    const QModelIndex cell = currentIndex();
    if (cell.isValid()) addCell(AddMode::InsertUnknown, cell.row(), cell.column(), 1);
}

void QcbsLoopTable::deleteCell() { removeCells(RemoveMode::RemoveSelected); }

void QcbsLoopTable::splitCell() {
    const QModelIndex cell = currentIndex();
    if (cell.isValid()) addCell(AddMode::SplitAtBlanks, cell.row(), cell.column(), 0);
}

void QcbsLoopTable::mergeCell() { removeCells(RemoveMode::MergeWithNext); }

void QcbsLoopTable::addCell(AddMode mode, int row, int col, unsigned int count) {
    if (row < 0 || col < 0 || row >= model_->rowCount() || col >= model_->columnCount()) return;
    const std::size_t at = position(row, col);
    const int rows = model_->rowCount();
    if (mode == AddMode::InsertUnknown) {
        if (count == 0) return;
        const QcbsLoopTableModel::Cells cells(count, model_->unknown());
        push(
            count == 1 ? "Insert cell" : "Insert cells",
            [this, at, cells] { model_->insertCells(at, cells); },
            [this, at, count, rows] {
                model_->removeCells(at, count);
                model_->truncateRows(rows);
            });
        return;
    }
    std::vector<std::string> words = loop_value_words(model_->columns()[col]->value_view(row));
    if (words.size() < 2) return;
    if (count > 0 && words.size() > count + 1) {
        for (std::size_t i = count + 1; i < words.size(); ++i) words[count] += " " + words[i];
        words.resize(count + 1);
    }
    const CifValueRef old = model_->ref(row, col);
    const CifValueRef first = model_->add(words.front());
    QcbsLoopTableModel::Cells rest;
    for (std::size_t i = 1; i < words.size(); ++i) rest.push_back(model_->add(words[i]));
    push(
        "Split cell",
        [this, row, col, at, first, rest] {
            model_->setRef(row, col, first);
            model_->insertCells(at + 1, rest);
        },
        [this, row, col, at, old, rest, rows] {
            model_->removeCells(at + 1, rest.size());
            model_->truncateRows(rows);
            model_->setRef(row, col, old);
        });
}

void QcbsLoopTable::removeCells(RemoveMode mode) {
    if (model_->columnCount() == 0) return;
    const int rows = model_->rowCount();
    const std::size_t total = position(rows, 0);
    if (mode == RemoveMode::MergeWithNext) {
        const QModelIndex cell = currentIndex();
        if (!cell.isValid()) return;
        const std::size_t at = position(cell.row(), cell.column());
        if (at + 1 >= total) return;
        const int row = cell.row();
        const int col = cell.column();
        const int width = model_->columnCount();
        const CifValueRef first = model_->ref(row, col);
        const CifValueRef second =
            model_->ref(static_cast<int>((at + 1) / width), static_cast<int>((at + 1) % width));
        const QString text =
            model_->text(row, col) + " " +
            model_->text(static_cast<int>((at + 1) / width), static_cast<int>((at + 1) % width));
        const CifValueRef joined = model_->add(text.toStdString());
        push(
            "Merge cells",
            [this, row, col, at, joined] {
                model_->setRef(row, col, joined);
                model_->removeCells(at + 1, 1);
            },
            [this, row, col, at, first, second, rows] {
                model_->insertCells(at + 1, {second});
                model_->truncateRows(rows);
                model_->setRef(row, col, first);
            });
        return;
    }
    std::set<std::size_t> chosen;
    for (const QModelIndex& index : selectionModel()->selectedIndexes())
        chosen.insert(position(index.row(), index.column()));
    if (chosen.empty() && currentIndex().isValid())
        chosen.insert(position(currentIndex().row(), currentIndex().column()));
    if (chosen.empty()) return;
    const std::vector<std::size_t> positions(chosen.begin(), chosen.end());
    auto removed = std::make_shared<QcbsLoopTableModel::Cells>(positions.size());
    push(
        positions.size() == 1 ? "Delete cell" : "Delete cells",
        [this, positions, removed] {
            for (std::size_t i = positions.size(); i-- > 0;)
                (*removed)[i] = model_->removeCells(positions[i], 1).front();
        },
        [this, positions, removed, rows] {
            for (std::size_t i = 0; i < positions.size(); ++i)
                model_->insertCells(positions[i], {(*removed)[i]});
            model_->truncateRows(rows);
        });
}

void QcbsLoopTable::updateCell(int row, int col, const QString& text) { setAndValidateCell(row, col, text); }

QString QcbsLoopTable::setAndValidateCell(int row, int col, const QString& value) {
    if (row < 0 || col < 0 || row >= model_->rowCount() || col >= model_->columnCount()) return QString();
    const CifValueRef old = model_->ref(row, col);
    const CifValueRef now = model_->add(value.toStdString());
    push(
        "Edit cell", [this, row, col, now] { model_->setRef(row, col, now); },
        [this, row, col, old] { model_->setRef(row, col, old); });
    return model_->text(row, col);
}

QString QcbsLoopTable::cellText(int row, int col) const { return model_->text(row, col); }

bool QcbsLoopTable::isCellValid(int row, int col) const { return model_->isValid(row, col); }

QString QcbsLoopTable::copyCells() const {
    QModelIndexList cells = selectionModel()->selectedIndexes();
    if (cells.isEmpty() && currentIndex().isValid()) cells << currentIndex();
    if (cells.isEmpty()) return QString();
    int top = cells.front().row(), bottom = top, left = cells.front().column(), right = left;
    for (const QModelIndex& cell : cells) {
        top = std::min(top, cell.row());
        bottom = std::max(bottom, cell.row());
        left = std::min(left, cell.column());
        right = std::max(right, cell.column());
    }
    QList<QStringList> rows;
    for (int row = top; row <= bottom; ++row) {
        QStringList line;
        for (int col = left; col <= right; ++col) line << model_->text(row, col);
        rows << line;
    }
    return loop_cells_to_tab_text(rows);
}

void QcbsLoopTable::pasteCells(const QString& text) {
    const int width = model_->columnCount();
    if (width == 0) return;
    const QList<QStringList> cells = loop_cells_from_tab_text(text);
    if (cells.isEmpty()) return;
    const QModelIndex start = currentIndex().isValid() ? currentIndex() : model_->index(0, 0);
    const int top = std::max(0, start.row());
    const int left = std::max(0, start.column());
    const int rows = model_->rowCount();
    struct Change {
        int row;
        int col;
        CifValueRef before;
        CifValueRef after;
    };
    auto changes = std::make_shared<std::vector<Change>>();
    for (int r = 0; r < cells.size(); ++r) {
        for (int c = 0; c < cells[r].size() && left + c < width; ++c) {
            const int row = top + r;
            const CifValueRef before = row < rows ? model_->ref(row, left + c) : model_->unknown();
            changes->push_back({row, left + c, before, model_->add(cells[r][c].toStdString())});
        }
    }
    const int needed = top + static_cast<int>(cells.size());
    push(
        "Paste cells",
        [this, changes, needed] {
            model_->appendRows(needed - model_->rowCount());
            for (const Change& change : *changes) model_->setRef(change.row, change.col, change.after);
        },
        [this, changes, rows] {
            for (const Change& change : *changes)
                if (change.row < rows) model_->setRef(change.row, change.col, change.before);
            model_->truncateRows(rows);
        });
}

// --- the loop --------------------------------------------------------------------------

QString QcbsLoopTable::loopMaster() const {
    return model_->columns().empty() ? QString() : QString::fromStdString(model_->columns().front()->name());
}

QString QcbsLoopTable::loopItem(int col) const {
    if (col < 0 || col >= model_->labels().size()) return QString();
    return category_ + model_->labels()[col];
}

QString QcbsLoopTable::loopText(const CifWriteSettings& settings) const {
    const THandle<CifDataBlock>& block = model_->block();
    if (block.is_null() || model_->columns().empty()) return QString();
    std::ostringstream stream;
    block->print(stream, settings);
    const std::string text = stream.str();
    const std::size_t loop = text.find("loop_");
    if (loop == std::string::npos) return QString();
    return QString::fromUtf8(text.data() + loop, static_cast<qsizetype>(text.size() - loop));
}

void QcbsLoopTable::writeLoop(std::ostream& stream, const QString& separator) const {
    stream << "loop_\n";
    for (const QString& label : model_->labels()) stream << label.toStdString() << '\n';
    const std::string between = separator.toStdString();
    for (int row = 0; row < model_->rowCount(); ++row) {
        stream << between << '\n';
        for (int col = 0; col < model_->columnCount(); ++col)
            stream << model_->text(row, col).toStdString() << '\n';
    }
}

void QcbsLoopTable::updateColumnHeadings(const QString& dataName) {
    (void)dataName;  // the table holds one loop: its columns are the loop's names
    refreshHeadings();
}

void QcbsLoopTable::refreshHeadings() {
    const QStringList names = model_->columnNames();
    const QString category = loop_category(names);
    QStringList labels;
    for (const QString& name : names) labels << name.mid(category.size());
    category_ = category;
    model_->setLabels(labels);
    const int width = fontMetrics().horizontalAdvance("000000000000");
    horizontalHeader()->setDefaultSectionSize(width);
    for (int col = 0; col < model_->columnCount(); ++col) setColumnWidth(col, width);
    emit loopCategoryChanged(category_);
}

int QcbsLoopTable::rowLine(int row) const {
    if (row < 0 || row >= model_->rowCount()) return -1;
    for (int col = 0; col < model_->columnCount(); ++col) {
        const CifValueRef ref = model_->ref(row, col);
        if (ref.added()) continue;
        const std::string& text = model_->columns()[col]->store()->text();
        if (ref.offset > text.size()) continue;
        return 1 + static_cast<int>(std::count(text.begin(), text.begin() + ref.offset, '\n'));
    }
    return -1;
}

std::vector<int> QcbsLoopTable::chosenRows() const {
    // From the selection's ranges: asking row by row costs the loop's length.
    std::vector<int> rows;
    for (const QModelIndex& index : selectionModel()->selectedRows()) rows.push_back(index.row());
    if (rows.empty() && currentIndex().isValid()) rows.push_back(currentIndex().row());
    std::sort(rows.begin(), rows.end());
    return rows;
}

std::vector<int> QcbsLoopTable::chosenColumns() const {
    std::vector<int> columns;
    for (const QModelIndex& index : selectionModel()->selectedColumns()) columns.push_back(index.column());
    if (columns.empty() && currentIndex().isValid()) columns.push_back(currentIndex().column());
    std::sort(columns.begin(), columns.end());
    return columns;
}

void QcbsLoopTable::finishEditing() {
    auto* delegate = static_cast<QcbsLoopTableDelegate*>(itemDelegate());
    QWidget* editor = delegate->openEditor();
    if (editor == nullptr) return;
    commitData(editor);
    closeEditor(editor, QAbstractItemDelegate::NoHint);
}

// --- help and keys ---------------------------------------------------------------------

void QcbsLoopTable::showDataItemHelp(int row, int col, const QPoint& position) {
    (void)row;
    (void)position;
    const QString name = loopItem(col);
    if (name.isEmpty()) {
        QMessageBox::information(this, "Data item help", "No help available for this column");
        return;
    }
    dataItemHelp(name);
}

void QcbsLoopTable::dataItemHelp(const QString& dataName) {
    const THandle<CifDataBlock>& block = model_->block();
    QcbsEditDataDialogue help(dataName, block.is_null() ? THandle<CifDictionary>() : block->dictionary(),
                              this);
    help.exec();
}

void QcbsLoopTable::showContextMenu(const QPoint& position) {
    const QModelIndex cell = indexAt(position);
    const QPoint global = viewport()->mapToGlobal(position);
    if (contextActions_.isEmpty()) {
        showDataItemHelp(cell.row(), cell.column(), global);
        return;
    }
    QMenu menu(this);
    menu.setObjectName("loopmenu");
    connect(menu.addAction("Help on this column"), &QAction::triggered, this,
            [this, cell, global] { showDataItemHelp(cell.row(), cell.column(), global); });
    menu.addSeparator();
    menu.addActions(contextActions_);
    menu.exec(global);
}

void QcbsLoopTable::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy)) {
        QApplication::clipboard()->setText(copyCells());
        return;
    }
    if (event->matches(QKeySequence::Paste)) {
        pasteCells(QApplication::clipboard()->text());
        return;
    }
    QTableView::keyPressEvent(event);
}
