// SPDX-License-Identifier: MIT
// The start of every line of a text, so that a value's line is found from its offset.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

// The start of every line of a text, built on first use, so that the line
// of a value can be found from its offset in the text (a binary search)
// without the reader counting lines for every value it stores.
class CifLineIndex {
public:
    explicit CifLineIndex(std::string_view text) : text_(text) {}

    // The 1-based line holding the byte at offset.
    int line_at(std::uint32_t offset) const;

private:
    std::string_view text_;
    mutable std::vector<std::uint32_t> starts_;
    mutable bool built_ = false;
};
