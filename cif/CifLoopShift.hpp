// SPDX-License-Identifier: MIT
// One message for the values of a loop shifted out of their columns.
#pragma once

#include <cstddef>
#include <vector>

#include "cif/CifDataBlock.hpp"
#include "cif/CifError.hpp"
#include "cif/CifLineIndex.hpp"

// When a loop's value count is not a multiple of its columns, a value is
// missing or one too many somewhere, and every value after that point sits
// in the wrong column. The first value of the wrong kind (text where the
// column takes numbers) shows where; the type problems of the values after
// it only follow from the shift. This replaces them with one message on the
// line where that row begins, which counts them.
class CifLoopShift {
public:
    // Rewrites the messages from errors[first] on (those of reading the
    // loop's values); returns the row where the shift shows, or the loop's
    // row count when no value of the wrong kind was found.
    static std::size_t summarise(const CifDataBlock::ItemList& loop, std::vector<CifError>& errors,
                                 std::size_t first, const CifLineIndex& index);
};
