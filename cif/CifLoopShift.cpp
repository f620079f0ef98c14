// SPDX-License-Identifier: MIT
// One message for the values of a loop shifted out of their columns.
#include "cif/CifLoopShift.hpp"

#include <algorithm>
#include <string>

#include "cif/CifLoopDamage.hpp"

namespace {

bool is_value_problem(int code) {
    switch (code) {
        case CifError::wrong_value_type:
        case CifError::value_out_of_range:
        case CifError::value_not_enumerated:
        case CifError::uncertainty_not_allowed:
        case CifError::number_unreadable:
        case CifError::uncertainty_unreadable:
            return true;
        default:
            return false;
    }
}

// The column a message is about, or the loop's size.
std::size_t column_of(const CifDataBlock::ItemList& loop, const CifError& error) {
    for (std::size_t i = 0; i < loop.size(); ++i) {
        if (loop[i]->name() == error.text()) return i;
    }
    return loop.size();
}

}  // namespace

std::size_t CifLoopShift::summarise(const CifDataBlock::ItemList& loop, std::vector<CifError>& errors,
                                    std::size_t first, const CifLineIndex& index) {
    const std::size_t rows = loop.empty() ? 0 : loop.front()->size();
    // The first value of the wrong kind, by line and then column.
    std::size_t start = errors.size();
    std::size_t start_column = loop.size();
    for (std::size_t e = first; e < errors.size(); ++e) {
        if (errors[e].id() != CifError::wrong_value_type) continue;
        std::size_t column = column_of(loop, errors[e]);
        if (column == loop.size()) continue;
        if (start == errors.size() || errors[e].line() < errors[start].line() ||
            (errors[e].line() == errors[start].line() && column < start_column)) {
            start = e;
            start_column = column;
        }
    }
    if (start == errors.size()) return rows;
    const int start_line = errors[start].line();
    const CifDataItem& shifted = *loop[start_column];
    const std::size_t row = CifLoopDamage::row_at_line(shifted, start_line, index);
    if (row >= rows) return rows;

    // The value problems after it, in reading order, are counted, not listed.
    std::size_t further = 0;
    std::vector<CifError> kept;
    kept.reserve(errors.size() - first);
    for (std::size_t e = first; e < errors.size(); ++e) {
        const CifError& error = errors[e];
        std::size_t column = column_of(loop, error);
        bool after = column < loop.size() && is_value_problem(error.id()) &&
                     (error.line() > start_line || (error.line() == start_line && column >= start_column));
        if (e == start) continue;
        if (after) {
            ++further;
            continue;
        }
        kept.push_back(error);
    }
    std::string value(shifted.value_view(row).substr(0, 40));
    std::string detail = " (" + value + " in row " + std::to_string(row + 1);
    if (further > 0)
        detail += "; and " + std::to_string(further) + (further == 1 ? " further value" : " further values") +
                  " of the following rows";
    detail += ")";
    const CifValueRef lead = loop.front()->values()[row];
    const int row_line = lead.added() ? start_line : index.line_at(lead.offset);
    kept.emplace_back(CifError::loop_values_shifted, row_line, shifted.name(), detail);
    errors.erase(errors.begin() + static_cast<std::ptrdiff_t>(first), errors.end());
    errors.insert(errors.end(), kept.begin(), kept.end());
    return row;
}
