// SPDX-License-Identifier: MIT
// The operator lists a thread met last, found again by where their values lie in the text.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "cif/CifValueRef.hpp"

class CifDataItem;
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

    // How many lists were kept: at most this many, the oldest replaced first.
    static constexpr std::size_t capacity = 256;
    // Spans longer than this are not kept (values copied from far apart).
    static constexpr std::size_t longest_span = 1 << 16;

private:
    struct List {
        std::vector<CifValueRef> places;  // offsets from the span's start, with the flags
        std::string span;
        std::shared_ptr<const SpacegroupOperators> entry;
    };
    std::vector<List> lists_;
    std::size_t next_ = 0;             // the one replaced next once full
    std::vector<CifValueRef> places_;  // the item's, reused between calls
    std::vector<std::string_view> texts_;
};
