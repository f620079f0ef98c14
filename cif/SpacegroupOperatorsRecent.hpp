// SPDX-License-Identifier: MIT
// The operator lists a thread met last, found again by where their values lie in the text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "cif/CifValueRef.hpp"

class CifDataItem;
class CifTextStore;
class SpacegroupOperators;

// Files checked one after another mostly repeat the operator lists of the
// files before them byte for byte. A list seen lately is known again from
// the span of text its values lie in and where each value lies in it: two
// byte comparisons, where SpacegroupOperators::of() reads, hashes and
// compares every value. Same span and same places mean the same texts, so
// the entry found is the one of() would give; anything else goes to of().
class SpacegroupOperatorsRecent {
public:
    // The process's entry of the item's values (as SpacegroupOperators::of()).
    std::shared_ptr<const SpacegroupOperators> entry(const CifDataItem& item);

    // The calling thread's lists.
    static SpacegroupOperatorsRecent& of_thread();

    // Lists are kept in sets of ways slots, the set chosen by a hash of the
    // span; a new list takes the place of the one of its set used longest ago.
    static constexpr std::size_t sets = 256;
    static constexpr std::size_t ways = 4;
    // Spans longer than this are not kept (values copied from far apart).
    static constexpr std::size_t longest_span = 1 << 16;

private:
    struct List {
        std::vector<CifValueRef> places;  // offsets from the span's start, with the flags
        std::string span;
        std::shared_ptr<const SpacegroupOperators> entry;
        std::uint64_t used = 0;  // when last found or kept
    };
    // The entry by the texts of places_ (offsets less base).
    std::shared_ptr<const SpacegroupOperators> by_texts(const CifTextStore& store, std::uint32_t base);

    std::vector<List> lists_ = std::vector<List>(sets * ways);
    std::uint64_t clock_ = 0;
    std::vector<CifValueRef> places_;  // the item's, reused between calls
    std::vector<std::string_view> texts_;
};
