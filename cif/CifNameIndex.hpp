// SPDX-License-Identifier: MIT
// The items of a block by data name, compared without regard to case.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "cif/CifDataItem.hpp"
#include "support/THandle.hpp"

// A flat hash table (open addressing, one array) of item handles keyed by
// their names: no allocation per entry, and a lookup touches one or two
// slots of the array besides the name it compares.
class CifNameIndex {
public:
    void clear();
    void reserve(std::size_t count);
    // Adds the item under name (its own name; the caller makes sure no item
    // of that name is present).
    void emplace(std::string_view name, const THandle<CifDataItem>& item);
    void erase(std::string_view name);
    // The item of that name, or null.
    const THandle<CifDataItem>* find(std::string_view name) const;
    std::size_t size() const { return size_; }

private:
    // hash 0: never used; 1: an entry was erased here.
    struct Slot {
        std::uint64_t hash = 0;
        THandle<CifDataItem> item;
    };
    static constexpr std::uint64_t erased = 1;
    static std::uint64_t slot_hash(std::string_view name);
    std::size_t position(std::string_view name, std::uint64_t hash) const;
    void rehash(std::size_t capacity);

    std::vector<Slot> slots_;
    std::size_t size_ = 0;
    std::size_t used_ = 0;  // entries and erased slots
};
