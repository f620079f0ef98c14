// SPDX-License-Identifier: MIT
// Which rows of a loop a syntax problem among its values has damaged.
#pragma once

#include <cstddef>
#include <vector>

#include "cif/CifDataBlock.hpp"
#include "cif/CifLineIndex.hpp"

// A syntax problem inside a loop (an unterminated quote that swallows the
// rest of its line, a value that runs into the next, a row that begins a
// shift) leaves the values from its row on in the wrong columns. Findings
// about those rows that only follow from the damage (repeated keys, values
// missing from a parent) are left out; this tells where the damage begins.
class CifLoopDamage {
public:
    // Whether a message of this code tells of text that may have displaced
    // the values around it.
    static bool displaces_values(int code);

    // The first row of the loop touched by a problem on one of the lines
    // (sorted); when there is none, the first row (any row may be off) if
    // the reader completed a short last row with added values, else the row
    // count.
    static std::size_t first_damaged_row(const CifDataBlock::ItemList& loop, const std::vector<int>& lines,
                                         const CifLineIndex& index);

    // The row of the column whose values begin on the given line (the first
    // such row), found by the lines of its values.
    static std::size_t row_at_line(const CifDataItem& column, int line, const CifLineIndex& index);
};
