// SPDX-License-Identifier: MIT
// Proof in one pass that the integer keys of a sorted loop never repeat.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "cif/CifDataItem.hpp"

// Follows the rows of a loop's key, batch by batch as they are read: while
// every key value is a small integer (the indices of reflections), the
// values of a row packed together must only grow, or only shrink, in the
// columns' order or the reverse. A loop whose rows keep to one of these
// orders has no repeated key, which saves the full check of millions of
// rows; reflection loops usually come sorted so. A value that is not such
// an integer (? and . included) ends the proof.
class CifKeyOrder {
public:
    explicit CifKeyOrder(std::vector<const CifDataItem*> columns);

    // Takes rows [first, last) of the columns, whose values lie in text
    // (which ends at text_end, when given).
    void add_rows(std::size_t first, std::size_t last, const char* text, const char* text_end = nullptr);
    // Whether the rows taken so far are shown to hold no key twice.
    bool proven_unique() const { return exact_ && (rising_[0] || falling_[0] || rising_[1] || falling_[1]); }
    const std::vector<const CifDataItem*>& columns() const { return columns_; }

    // A plain integer of at most six digits with an optional sign, as the
    // indices of reflections are.
    static bool small_integer(std::string_view text, std::int64_t& number) {
        std::size_t i = !text.empty() && (text[0] == '-' || text[0] == '+') ? 1 : 0;
        if (i == text.size() || text.size() - i > 6) return false;
        std::int64_t value = 0;
        for (std::size_t j = i; j < text.size(); ++j) {
            if (text[j] < '0' || text[j] > '9') return false;
            value = value * 10 + (text[j] - '0');
        }
        number = text[0] == '-' ? -value : value;
        return true;
    }

private:
    std::vector<const CifDataItem*> columns_;
    bool exact_;
    bool first_ = true;
    std::uint64_t previous_[2] = {0, 0};
    bool rising_[2] = {true, true};
    bool falling_[2] = {true, true};
};
