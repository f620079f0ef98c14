// SPDX-License-Identifier: MIT
// Which rows of a loop a syntax problem among its values has damaged.
#include "cif/CifLoopDamage.hpp"

#include <algorithm>

#include "cif/CifError.hpp"

namespace {

// The line of the n-th value, or 0 for a value added after reading.
int line_of(const CifDataItem& item, std::size_t n, const CifLineIndex& index) {
    const CifValueRef ref = item.values()[n];
    return ref.added() ? 0 : index.line_at(ref.offset);
}

}  // namespace

bool CifLoopDamage::displaces_values(int code) {
    switch (code) {
        case CifError::unterminated_quoted_string:
        case CifError::unterminated_text_field:
        case CifError::missing_white_space:
        case CifError::unterminated_list:
        case CifError::unterminated_table:
        case CifError::table_key_not_quoted:
        case CifError::unexpected_closing_bracket:
        case CifError::table_entry_without_value:
        case CifError::loop_values_shifted:
            return true;
        default:
            return false;
    }
}

std::size_t CifLoopDamage::first_damaged_row(const CifDataBlock::ItemList& loop,
                                             const std::vector<int>& lines, const CifLineIndex& index) {
    if (loop.empty()) return 0;
    const CifDataItem& lead = *loop.front();
    const std::size_t rows = lead.size();
    if (rows == 0) return 0;
    // A last row the reader completed with added values: a value is missing
    // somewhere, and without a problem that shows where, any row may be off.
    bool short_row = std::any_of(loop.begin(), loop.end(), [&](const THandle<CifDataItem>& item) {
        return item->size() == rows && item->values()[rows - 1].added();
    });
    const std::size_t unknown = short_row ? 0 : rows;
    if (lines.empty()) return unknown;
    // The lines the loop's values span; a loop edited after reading has no
    // reliable lines.
    const int begin = line_of(lead, 0, index);
    const int end = line_of(lead, rows - 1, index);
    if (begin == 0 || end == 0) return unknown;
    int last = end;
    for (const THandle<CifDataItem>& item : loop) {
        if (item->size() == rows) last = std::max(last, line_of(*item, rows - 1, index));
    }
    auto problem = std::lower_bound(lines.begin(), lines.end(), begin);
    if (problem == lines.end() || *problem > last) return unknown;
    // The first row with a value on the problem's line or after it: the row
    // that begins there, or the one before when it runs on to that line.
    std::size_t row = row_at_line(lead, *problem, index);
    if (row > 0) {
        int row_end = 0;
        for (const THandle<CifDataItem>& item : loop) {
            if (item->size() == rows) row_end = std::max(row_end, line_of(*item, row - 1, index));
        }
        if (row_end >= *problem) --row;
    }
    return std::min(row, rows);
}

std::size_t CifLoopDamage::row_at_line(const CifDataItem& column, int line, const CifLineIndex& index) {
    std::size_t low = 0, high = column.size();
    while (low < high) {
        const std::size_t middle = low + (high - low) / 2;
        const int at = line_of(column, middle, index);
        if (at != 0 && at < line) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return low;
}
