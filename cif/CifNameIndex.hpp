// SPDX-License-Identifier: MIT
// The items of a block by data name, compared without regard to case.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "cif/CifDataItem.hpp"
#include "cif/CifNames.hpp"
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

private:
    struct ItemNames {
        const ItemList& items;
        std::string_view operator()(std::size_t n) const { return items[n]->name(); }
        // An item keeps its name's hash: nothing to hash again.
        std::uint32_t hash(std::size_t n) const { return fold(items[n]->name_hash()); }
    };
    static ItemNames item_names(const ItemList& items) { return ItemNames{items}; }

public:
    static constexpr std::size_t npos = static_cast<std::size_t>(-1);

    // Indexes every item of the list (their names must differ).
    void build(const ItemList& items) { build(items.size(), item_names(items)); }
    // Adds items[position], the one item of the list not indexed yet (the
    // caller makes sure no other item has its name).
    void add(const ItemList& items, std::size_t position) { add(items.size(), position, item_names(items)); }
    // The position in items of the item of that name, or npos.
    std::size_t find(const ItemList& items, std::string_view name) const {
        return find(name, item_names(items));
    }
    // The same for a name whose cif_name_hash() is known.
    std::size_t find(const ItemList& items, std::string_view name, std::uint64_t name_hash) const {
        return find_folded(name, fold(name_hash), item_names(items));
    }
    // A look-up and an insertion in one probe: the position of the item of
    // that name, or npos with slot set to where an item of that name goes,
    // which add_at takes once the new item ends the list.
    std::size_t find_slot(const ItemList& items, std::string_view name, std::uint64_t name_hash,
                          std::size_t& slot) const;
    // Adds items[position] (the list's last item, not indexed yet) at the
    // slot find_slot gave for its name, nothing indexed in between.
    void add_at(const ItemList& items, std::size_t position, std::size_t slot);

    // The same for any list the owner keeps, given as its size and a
    // function from a position to the name there (string_view).
    template <class NameAt>
    void build(std::size_t count, const NameAt& name_at);
    template <class NameAt>
    void add(std::size_t count, std::size_t position, const NameAt& name_at);
    template <class NameAt>
    std::size_t find(std::string_view name, const NameAt& name_at) const;

    void clear();
    std::size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }

private:
    struct Slot {
        std::uint32_t hash;      // the name's hash, folded
        std::uint32_t position;  // 1 + the item's position; 0: never used
    };

    static std::uint32_t fold(std::uint64_t hash) { return static_cast<std::uint32_t>(hash ^ (hash >> 32)); }
    static std::uint32_t slot_hash(std::string_view name) { return fold(cif_name_hash(name)); }
    // The slot hash of the name at n, from the list when it keeps hashes.
    template <class NameAt>
    static std::uint32_t hash_at(const NameAt& name_at, std::size_t n) {
        if constexpr (requires { name_at.hash(n); }) {
            return name_at.hash(n);
        } else {
            return slot_hash(name_at(n));
        }
    }
    template <class NameAt>
    std::size_t find_folded(std::string_view name, std::uint32_t hash, const NameAt& name_at) const;
    static std::size_t capacity_for(std::size_t count);
    static void check_count(std::size_t count);
    template <class NameAt>
    void rehash(std::size_t capacity, std::size_t count, const NameAt& name_at);
    void reset(std::size_t capacity);
    void place(std::uint32_t hash, std::size_t position);

    std::unique_ptr<Slot[]> slots_;
    std::uint32_t capacity_ = 0;  // a power of two, or 0
    std::uint32_t size_ = 0;
};

template <class NameAt>
void CifNameIndex::build(std::size_t count, const NameAt& name_at) {
    check_count(count);
    rehash(capacity_for(count), count, name_at);
}

template <class NameAt>
void CifNameIndex::add(std::size_t count, std::size_t position, const NameAt& name_at) {
    check_count(position + 1);
    if ((std::size_t(size_) + 1) * 4 > std::size_t(capacity_) * 3) {
        // Grown from the list itself, which holds the new item already.
        rehash(capacity_for(count), count, name_at);
        return;
    }
    place(hash_at(name_at, position), position);
    ++size_;
}

template <class NameAt>
std::size_t CifNameIndex::find(std::string_view name, const NameAt& name_at) const {
    if (capacity_ == 0) return npos;
    return find_folded(name, slot_hash(name), name_at);
}

template <class NameAt>
std::size_t CifNameIndex::find_folded(std::string_view name, std::uint32_t hash,
                                      const NameAt& name_at) const {
    if (capacity_ == 0) return npos;
    const std::size_t mask = capacity_ - 1;
    for (std::size_t i = hash & mask;; i = (i + 1) & mask) {
        const Slot& slot = slots_[i];
        if (slot.position == 0) return npos;
        if (slot.hash == hash && cif_iequals(name_at(slot.position - 1), name)) return slot.position - 1;
    }
}

template <class NameAt>
void CifNameIndex::rehash(std::size_t capacity, std::size_t count, const NameAt& name_at) {
    reset(capacity);
    for (std::size_t i = 0; i < count; ++i) {
        place(hash_at(name_at, i), i);
        ++size_;
    }
}
