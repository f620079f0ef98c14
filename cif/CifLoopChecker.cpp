// SPDX-License-Identifier: MIT
// Checks the values of a loop in batches of rows, in full only where the quick look doubts.
#include "cif/CifLoopChecker.hpp"

#include <algorithm>
#include <utility>
#include <vector>

CifLoopChecker::CifLoopChecker(CifValueReporter& reporter, const char* text, std::size_t text_size)
    : reporter_(reporter), text_(text), text_size_(text_size) {}

void CifLoopChecker::add(const CifDataItem& item, const CifItemDefinition* definition) {
    if (definition == nullptr) {
        // A dictionary that answers only check_value: every value gets the full check.
        if (reporter_.dictionary().is_defined(item.name()))
            columns_.push_back({&item, nullptr, CifColumnCheck()});
        return;
    }
    CifColumnCheck quick(*definition);
    if (!quick.accepts_everything()) columns_.push_back({&item, definition, std::move(quick)});
}

void CifLoopChecker::check_rows(std::size_t first, std::size_t last) {
    for (CifKeyOrder& order : orders_) order.add_rows(first, last, text_, text_ + text_size_);
    if (stopped_ || columns_.empty()) return;
    // Column by column over rows the reader has just read (still in the
    // cache), so that each column's quick look runs as one tight loop.
    constexpr std::size_t batch = 4096, small_batch = 256;
    // A few rows' references on the stack, left unset (most loops are short).
    union Small {
        Small() {}
        CifValueRef refs[small_batch];
    } small;
    std::vector<CifValueRef> large(last - first > small_batch ? std::min(last - first, batch) : 0);
    CifValueRef* const refs = large.empty() ? small.refs : large.data();
    while (first < last) {
        const std::size_t stop = std::min(last, first + batch);
        for (const Column& column : columns_) {
            column.item->values().copy_refs(first, stop - first, refs, text_ + text_size_);
            std::size_t i = 0;
            const std::size_t end = stop - first;
            while (i < end) {
                i += column.quick.first_doubtful(refs + i, end - i, text_, text_size_);
                if (i == end) break;
                if (!reporter_.check(*column.item, column.definition, first + i)) {
                    stopped_ = true;
                    return;
                }
                ++i;
            }
        }
        first = stop;
    }
}
