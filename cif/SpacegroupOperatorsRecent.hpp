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
// files before them byte for byte. A list seen lately is known again by a
// key made of where its values lie (each from the first, with its length and
// flags) and the bytes at the two ends of their span, and then compared
// with the entry's own texts, value by value, straight from the text: where
// SpacegroupOperators::of() also hashes every value and searches the
// process's lists. The key only chooses what to compare: the entry found is
// the one of() would give; anything else goes to of(). Only the keys are
// kept, not the texts (a copy of every list's text raised a run's peak
// memory).
class SpacegroupOperatorsRecent {
public:
    // The process's entry of the item's values (as SpacegroupOperators::of()).
    std::shared_ptr<const SpacegroupOperators> entry(const CifDataItem& item);

    // The calling thread's lists.
    static SpacegroupOperatorsRecent& of_thread();

    // Lists are kept in sets of ways slots, the set chosen by a hash of the
    // span; a new list takes the place of the one of its set used longest ago.
    static constexpr std::size_t sets = 64;
    static constexpr std::size_t ways = 4;

private:
    struct List {
        std::uint64_t key = 0;  // of the places and the span's ends
        std::size_t count = 0;  // values
        std::shared_ptr<const SpacegroupOperators> entry;
        std::uint64_t used = 0;  // when last found or kept
    };
    // The entry by the texts of places_.
    std::shared_ptr<const SpacegroupOperators> by_texts(const CifTextStore& store);

    std::vector<List> lists_;  // sets * ways, made on first use
    std::uint64_t clock_ = 0;
    std::vector<CifValueRef> places_;  // the item's, reused between calls
    std::vector<std::string_view> texts_;
};
