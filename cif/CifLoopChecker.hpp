// SPDX-License-Identifier: MIT
// Checks the values of a loop in batches of rows, in full only where the quick look doubts.
#pragma once

#include <cstddef>
#include <vector>

#include "cif/CifColumnCheck.hpp"
#include "cif/CifDataItem.hpp"
#include "cif/CifValueReporter.hpp"

// Checks the values of a loop: each value gets the quick look of its column
// (CifColumnCheck) and only doubtful ones the full check. The reader runs it
// on batches of rows it has just read, while their text is in the cache.
class CifLoopChecker {
public:
    CifLoopChecker(CifValueReporter& reporter, const char* text, std::size_t text_size);

    // Adds a column; columns that need no look at their values are left out.
    void add(const CifDataItem& item, const CifItemDefinition* definition);
    bool empty() const { return columns_.empty(); }

    // Checks rows [first, last) of every column (all columns must hold them).
    void check_rows(std::size_t first, std::size_t last);

private:
    struct Column {
        const CifDataItem* item;
        const CifItemDefinition* definition;
        CifColumnCheck quick;
    };

    CifValueReporter& reporter_;
    const char* text_;
    std::size_t text_size_;
    std::vector<Column> columns_;
    bool stopped_ = false;
};
