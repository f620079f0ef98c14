// SPDX-License-Identifier: GPL-3.0-or-later
// The cells of the loop table: a view of the working block's loop columns, no copy per cell.
#include "views/QcbsLoopTableModel.hpp"

#include <QApplication>
#include <QColor>
#include <QPalette>
#include <algorithm>

#include "resources/QcbsXpmResource.hpp"

namespace {

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
    return text;
}

}  // namespace

QcbsLoopTableModel::QcbsLoopTableModel(QObject* parent)
    : QAbstractTableModel(parent), warning_(QcbsXpmResource::get_xpm(QcbsXpmResource::Warning)) {}

void QcbsLoopTableModel::setLoop(THandle<CifDataBlock> block, std::vector<THandle<CifDataItem>> columns) {
    beginResetModel();
    block_ = std::move(block);
    columns_ = std::move(columns);
    hasUnknown_ = false;
    labels_.clear();
    for (const auto& item : columns_) labels_ << QString::fromStdString(item->name());
    endResetModel();
}

QStringList QcbsLoopTableModel::columnNames() const {
    QStringList names;
    for (const auto& item : columns_) names << QString::fromStdString(item->name());
    return names;
}

void QcbsLoopTableModel::setLabels(const QStringList& labels) {
    labels_ = labels;
    if (!columns_.empty()) emit headerDataChanged(Qt::Horizontal, 0, columnCount() - 1);
}

int QcbsLoopTableModel::rowCount(const QModelIndex& parent) const {
    if (parent.isValid() || columns_.empty()) return 0;
    return static_cast<int>(columns_.front()->size());
}

int QcbsLoopTableModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(columns_.size());
}

QVariant QcbsLoopTableModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const int row = index.row();
    const int col = index.column();
    switch (role) {
        case Qt::DisplayRole:
        case Qt::EditRole:
            return text(row, col);
        case Qt::DecorationRole:
            return isValid(row, col) ? QVariant() : QVariant(warning_);
        case Qt::ToolTipRole:
            return isValid(row, col) ? QVariant() : QVariant("The dictionary does not accept this value");
        case Qt::BackgroundRole: {
            const std::string_view value = trimmed(columns_[col]->value_view(row));
            if (value.empty()) return QApplication::palette().color(QPalette::Window);
            if (value == ".") return QColor("lightyellow");
            if (value == "?") return QColor("lightblue");
            return {};
        }
        default:
            return {};
    }
}

QVariant QcbsLoopTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation == Qt::Vertical) return role == Qt::DisplayRole ? QVariant(section + 1) : QVariant();
    if (section < 0 || section >= labels_.size()) return {};
    if (role == Qt::DisplayRole) return labels_[section];
    if (role == Qt::ToolTipRole) return QString::fromStdString(columns_[section]->name());
    return {};
}

Qt::ItemFlags QcbsLoopTableModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) return Qt::NoItemFlags;
    return Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsEditable;
}

bool QcbsLoopTableModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (!index.isValid() || role != Qt::EditRole) return false;
    if (value.toString() == text(index.row(), index.column())) return false;
    emit cellEdited(index.row(), index.column(), value.toString());
    return true;
}

QString QcbsLoopTableModel::text(int row, int col) const {
    const std::string_view value = columns_[col]->value_view(row);
    return QString::fromUtf8(value.data(), static_cast<qsizetype>(value.size()));
}

bool QcbsLoopTableModel::isValid(int row, int col) const {
    const CifDataItem& item = *columns_[col];
    return item.validate(std::string(item.value_view(row))) == 0;
}

CifValueRef QcbsLoopTableModel::ref(int row, int col) const { return columns_[col]->values()[row]; }

void QcbsLoopTableModel::setRef(int row, int col, CifValueRef ref) {
    columns_[col]->values().set(row, ref);
    const QModelIndex cell = index(row, col);
    emit dataChanged(cell, cell);
}

CifValueRef QcbsLoopTableModel::add(std::string_view value) { return block_->store()->add(value); }

CifValueRef QcbsLoopTableModel::unknown() {
    if (!hasUnknown_) {
        unknown_ = add("?");
        hasUnknown_ = true;
    }
    return unknown_;
}

void QcbsLoopTableModel::appendRows(int count) {
    if (columns_.empty() || count <= 0) return;
    const int rows = rowCount();
    const CifValueRef fill = unknown();
    beginInsertRows(QModelIndex(), rows, rows + count - 1);
    for (const auto& item : columns_)
        for (int i = 0; i < count; ++i) item->values().push_back(fill);
    endInsertRows();
}

void QcbsLoopTableModel::truncateRows(int rows) {
    const int count = rowCount();
    if (rows >= count) return;
    beginRemoveRows(QModelIndex(), rows, count - 1);
    for (const auto& item : columns_)
        while (static_cast<int>(item->size()) > rows) item->values().pop_back();
    endRemoveRows();
}

QcbsLoopTableModel::Cells QcbsLoopTableModel::removeRows(const std::vector<int>& rows) {
    Cells removed;
    if (rows.empty() || columns_.empty()) return removed;
    removed.reserve(rows.size() * columns_.size());
    for (int row : rows)
        for (const auto& item : columns_) removed.push_back(item->values()[row]);
    const bool oneRun = rows.back() - rows.front() + 1 == static_cast<int>(rows.size());
    if (oneRun)
        beginRemoveRows(QModelIndex(), rows.front(), rows.back());
    else
        beginResetModel();
    // Each column is rebuilt once: erasing rows one by one would move the
    // rest of a long column for every row.
    for (const auto& item : columns_) {
        CifValueColumn kept(item->values().text());
        std::size_t next = 0;
        for (std::size_t n = 0; n < item->size(); ++n) {
            if (next < rows.size() && static_cast<std::size_t>(rows[next]) == n) {
                ++next;
                continue;
            }
            kept.push_back(item->values()[n]);
        }
        item->values() = std::move(kept);
    }
    if (oneRun)
        endRemoveRows();
    else
        endResetModel();
    return removed;
}

void QcbsLoopTableModel::insertRows(const std::vector<int>& rows, const Cells& cells) {
    if (rows.empty() || columns_.empty()) return;
    const bool oneRun = rows.back() - rows.front() + 1 == static_cast<int>(rows.size());
    if (oneRun)
        beginInsertRows(QModelIndex(), rows.front(), rows.back());
    else
        beginResetModel();
    const std::size_t width = columns_.size();
    for (std::size_t c = 0; c < width; ++c) {
        CifDataItem& item = *columns_[c];
        CifValueColumn merged(item.values().text());
        std::size_t next = 0;
        std::size_t old = 0;
        const std::size_t total = item.size() + rows.size();
        for (std::size_t n = 0; n < total; ++n) {
            if (next < rows.size() && static_cast<std::size_t>(rows[next]) == n) {
                merged.push_back(cells[next * width + c]);
                ++next;
            } else {
                merged.push_back(item.values()[old++]);
            }
        }
        item.values() = std::move(merged);
    }
    if (oneRun)
        endInsertRows();
    else
        endResetModel();
}

void QcbsLoopTableModel::permuteRows(const std::vector<std::size_t>& order) {
    emit layoutAboutToBeChanged();
    for (const auto& item : columns_) {
        CifValueColumn sorted(item->values().text());
        for (std::size_t from : order) sorted.push_back(item->values()[from]);
        item->values() = std::move(sorted);
    }
    emit layoutChanged();
}

void QcbsLoopTableModel::swapRowValues(int a, int b) {
    for (const auto& item : columns_) {
        const CifValueRef first = item->values()[a];
        item->values().set(a, item->values()[b]);
        item->values().set(b, first);
    }
    emit dataChanged(index(std::min(a, b), 0), index(std::max(a, b), columnCount() - 1));
}

void QcbsLoopTableModel::insertColumn(int at, const THandle<CifDataItem>& item) {
    // Rows appear or vanish with the first or last column: the view starts again then.
    const bool first = columns_.empty();
    const int itemRows = static_cast<int>(item->size());
    if (!first && itemRows > rowCount()) appendRows(itemRows - rowCount());
    const int rows = first ? itemRows : rowCount();
    if (first)
        beginResetModel();
    else
        beginInsertColumns(QModelIndex(), at, at);
    if (block_->find(item->name()).is_null()) block_->add_item(item);
    while (static_cast<int>(item->size()) < rows) item->values().push_back(unknown());
    columns_.insert(columns_.begin() + at, item);
    labels_.insert(at, QString::fromStdString(item->name()));
    relink();
    if (first)
        endResetModel();
    else
        endInsertColumns();
}

THandle<CifDataItem> QcbsLoopTableModel::removeColumn(int col) {
    const bool last = columns_.size() == 1;
    if (last)
        beginResetModel();
    else
        beginRemoveColumns(QModelIndex(), col, col);
    const THandle<CifDataItem> item = columns_[col];
    columns_.erase(columns_.begin() + col);
    labels_.removeAt(col);
    block_->remove(item->name());
    if (last)
        endResetModel();
    else
        endRemoveColumns();
    return item;
}

void QcbsLoopTableModel::swapColumnItems(int a, int b) {
    std::swap(columns_[a], columns_[b]);
    labels_.swapItemsAt(a, b);
    relink();
    emit headerDataChanged(Qt::Horizontal, std::min(a, b), std::max(a, b));
    emit dataChanged(index(0, std::min(a, b)), index(rowCount() - 1, std::max(a, b)));
}

CifValueRef QcbsLoopTableModel::at(std::size_t position) const {
    const std::size_t width = columns_.size();
    return columns_[position % width]->values()[position / width];
}

void QcbsLoopTableModel::setAt(std::size_t position, CifValueRef ref) {
    const std::size_t width = columns_.size();
    columns_[position % width]->values().set(position / width, ref);
}

void QcbsLoopTableModel::insertCells(std::size_t position, const Cells& cells) {
    if (columns_.empty() || cells.empty()) return;
    const std::size_t width = columns_.size();
    const std::size_t count = static_cast<std::size_t>(rowCount()) * width;
    const std::size_t needed = (count + cells.size() + width - 1) / width;
    appendRows(static_cast<int>(needed) - rowCount());
    for (std::size_t q = count; q-- > position;) setAt(q + cells.size(), at(q));
    for (std::size_t i = 0; i < cells.size(); ++i) setAt(position + i, cells[i]);
    emit dataChanged(index(static_cast<int>(position / width), 0), index(rowCount() - 1, columnCount() - 1));
}

QcbsLoopTableModel::Cells QcbsLoopTableModel::removeCells(std::size_t position, std::size_t count) {
    Cells removed;
    const std::size_t width = columns_.size();
    const std::size_t total = static_cast<std::size_t>(rowCount()) * width;
    if (width == 0 || position >= total) return removed;
    count = std::min(count, total - position);
    for (std::size_t i = 0; i < count; ++i) removed.push_back(at(position + i));
    for (std::size_t q = position; q + count < total; ++q) setAt(q, at(q + count));
    const CifValueRef fill = unknown();
    for (std::size_t q = total - count; q < total; ++q) setAt(q, fill);
    emit dataChanged(index(static_cast<int>(position / width), 0), index(rowCount() - 1, columnCount() - 1));
    return removed;
}

void QcbsLoopTableModel::relink() {
    if (columns_.empty()) return;
    std::vector<std::string> names;
    for (const auto& item : columns_) names.push_back(item->name());
    block_->create_loop(names);
}
