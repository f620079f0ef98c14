// SPDX-License-Identifier: MIT
// Checks the values of a loop in batches of rows, in full only where the quick look doubts.
#pragma once

#include <cstddef>
#include <vector>

#include "cif/CifColumnCheck.hpp"
#include "cif/CifDataItem.hpp"
#include "cif/CifKeyOrder.hpp"
#include "cif/CifValueReporter.hpp"

// Checks the values of a loop: each value gets the quick look of its column
// (CifColumnCheck) and only doubtful ones the full check. The reader runs it
// on batches of rows it has just read, while their text is in the cache.
class CifLoopChecker {
public:
    CifLoopChecker(CifValueReporter& reporter, const char* text, std::size_t text_size);

    // Room for this many columns, added one by one.
    void reserve(std::size_t columns) { columns_.reserve(columns); }
    // Adds a column; columns that need no look at their values are left out.
    void add(const CifDataItem& item, const CifItemDefinition* definition);
    // Follows the order of a key's rows, to spare the check of its values'
    // uniqueness when they come sorted (CifKeyOrder).
    void watch(CifKeyOrder order) { orders_.push_back(std::move(order)); }
    bool empty() const { return columns_.empty() && orders_.empty(); }
    // The key orders watched, over the rows checked so far.
    const std::vector<CifKeyOrder>& orders() const { return orders_; }

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
    std::vector<CifKeyOrder> orders_;
    bool stopped_ = false;
};
