// SPDX-License-Identifier: MIT
// Where one value lives: a span of the read text or an entry of the values added later.
#pragma once

#include <cstdint>

// Where one value lives: a span of the text it was read from, or an entry
// of the values added later (CifTextStore). Eight bytes, so that a file of
// millions of loop values costs little more than its own text.
struct CifValueRef {
    static constexpr std::uint32_t length_mask = (1u << 29) - 1;
    static constexpr std::uint32_t quoted_flag = 1u << 29;    // read between quotes or as a text field
    static constexpr std::uint32_t compound_flag = 1u << 30;  // a CIF 2.0 list or table, kept as its text
    static constexpr std::uint32_t added_flag = 1u << 31;     // offset indexes the added values

    std::uint32_t offset = 0;
    std::uint32_t bits = 0;

    std::uint32_t length() const { return bits & length_mask; }
    std::uint32_t flags() const { return bits & ~length_mask; }
    bool quoted() const { return (bits & quoted_flag) != 0; }
    bool compound() const { return (bits & compound_flag) != 0; }
    bool added() const { return (bits & added_flag) != 0; }
};
