// SPDX-License-Identifier: GPL-3.0-or-later
// The rows of a template merge as a table: data item, current and incoming value, chosen or not.
#include "views/QcbsCombineModel.hpp"

#include <QFont>
#include <QStringList>

namespace {

QString names(const CifMergeRow& row, const QString& separator) {
    QStringList list;
    for (const std::string& name : row.names) list << QString::fromStdString(name);
    return list.join(separator);
}

QString rowsText(std::size_t rows) {
    return rows == 1 ? "loop of 1 row" : QString("loop of %1 rows").arg(rows);
}

// A value on one line of the table: a text field shows its first line.
QString oneLine(const std::string& value) {
    const QString text = QString::fromStdString(value);
    const qsizetype end = text.indexOf(u'\n');
    return end < 0 ? text : text.left(end).trimmed() + QChar(0x2026);
}

}  // namespace

QcbsCombineModel::QcbsCombineModel(QObject* parent) : QAbstractTableModel(parent) {}

void QcbsCombineModel::setRows(std::vector<CifMergeRow> rows) {
    beginResetModel();
    rows_ = std::move(rows);
    chosen_.assign(rows_.size(), false);
    for (std::size_t i = 0; i < rows_.size(); ++i) chosen_[i] = rows_[i].proposed;
    endResetModel();
    emit choiceChanged();
}

std::vector<std::size_t> QcbsCombineModel::chosen() const {
    std::vector<std::size_t> result;
    for (std::size_t i = 0; i < rows_.size(); ++i)
        if (chosen_[i]) result.push_back(i);
    return result;
}

void QcbsCombineModel::choose(Choice choice) {
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        const CifMergeRow& row = rows_[i];
        chosen_[i] = choice == NewItems          ? row.kind == CifMergeRow::added
                     : choice == NewAndUnknown   ? row.proposed
                     : choice == EveryDifference ? row.kind != CifMergeRow::same
                                                 : false;
    }
    if (!rows_.empty()) emit dataChanged(index(0, ItemColumn), index(rowCount() - 1, ItemColumn));
    emit choiceChanged();
}

int QcbsCombineModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int QcbsCombineModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : ColumnCount;
}

QString QcbsCombineModel::text(const CifMergeRow& row, int column) const {
    switch (column) {
        case ItemColumn:
            return row.loop ? "loop_ " + names(row, " ") : names(row, " ");
        case CurrentColumn:
            if (row.kind == CifMergeRow::added) return "(not in the block)";
            if (row.loop) return rowsText(row.current_rows);
            if (row.current_looped) return QString("(in a loop of %1 rows)").arg(row.current_rows);
            return oneLine(row.current);
        case IncomingColumn:
            return row.loop ? rowsText(row.incoming_rows) : oneLine(row.incoming);
        default:
            return QString();
    }
}

QString QcbsCombineModel::toolTip(const CifMergeRow& row, int column) const {
    if (row.kind == CifMergeRow::same) return "The block already holds this as the template has it.";
    if (column == ItemColumn && row.loop) return names(row, "\n");
    if (column == CurrentColumn && !row.loop && row.kind == CifMergeRow::changed)
        return QString::fromStdString(row.current);
    if (column == IncomingColumn && !row.loop) return QString::fromStdString(row.incoming);
    return QString();
}

QVariant QcbsCombineModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount()) return {};
    const CifMergeRow& row = rows_[std::size_t(index.row())];
    switch (role) {
        case Qt::DisplayRole:
            return text(row, index.column());
        case Qt::ToolTipRole:
            return toolTip(row, index.column());
        case Qt::CheckStateRole:
            if (index.column() != ItemColumn) return {};
            return chosen_[std::size_t(index.row())] ? Qt::Checked : Qt::Unchecked;
        case Qt::FontRole:
            if (index.column() == CurrentColumn && row.kind == CifMergeRow::added) {
                QFont font;
                font.setItalic(true);
                return font;
            }
            return {};
        default:
            return {};
    }
}

bool QcbsCombineModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (!index.isValid() || index.column() != ItemColumn || role != Qt::CheckStateRole) return false;
    const std::size_t row = std::size_t(index.row());
    if (rows_[row].kind == CifMergeRow::same) return false;
    chosen_[row] = value.toInt() == Qt::Checked;
    emit dataChanged(index, index, {Qt::CheckStateRole});
    emit choiceChanged();
    return true;
}

Qt::ItemFlags QcbsCombineModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) return Qt::NoItemFlags;
    // Rows that change nothing are shown greyed: there is nothing to choose.
    if (rows_[std::size_t(index.row())].kind == CifMergeRow::same) return Qt::ItemIsSelectable;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (index.column() == ItemColumn) flags |= Qt::ItemIsUserCheckable;
    return flags;
}

QVariant QcbsCombineModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    switch (section) {
        case ItemColumn:
            return "Data item";
        case CurrentColumn:
            return "Current value";
        case IncomingColumn:
            return "Incoming value";
        default:
            return {};
    }
}
