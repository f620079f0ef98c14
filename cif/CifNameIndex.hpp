// SPDX-License-Identifier: MIT
// The items of a block by data name, compared without regard to case.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "cif/CifDataItem.hpp"
#include "support/THandle.hpp"

// A flat hash table (open addressing, one array) of the positions of items
// in a list kept by its owner (a block's items in write order), keyed by
// their names: eight bytes a slot, no allocation per entry, and a lookup
// touches one or two slots besides the name it compares. The list is
// handed to every call; when items leave it or move, the owner builds the
// index again.
class CifNameIndex {
public:
    using ItemList = std::vector<THandle<CifDataItem>>;
    static constexpr std::size_t npos = static_cast<std::size_t>(-1);

    // Indexes every item of the list (their names must differ).
    void build(const ItemList& items);
    // Adds items[position], the one item of the list not indexed yet (the
    // caller makes sure no other item has its name).
    void add(const ItemList& items, std::size_t position);
    // The position in items of the item of that name, or npos.
    std::size_t find(const ItemList& items, std::string_view name) const;
    void clear();
    std::size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }

private:
    struct Slot {
        std::uint32_t hash;      // the name's hash, folded
        std::uint32_t position;  // 1 + the item's position; 0: never used
    };
    static std::uint32_t slot_hash(std::string_view name);
    void rehash(std::size_t capacity, const ItemList& items);
    void place(std::uint32_t hash, std::size_t position);

    std::unique_ptr<Slot[]> slots_;
    std::uint32_t capacity_ = 0;  // a power of two, or 0
    std::uint32_t size_ = 0;
};
