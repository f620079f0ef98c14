// SPDX-License-Identifier: MIT
// The items of a block by data name, compared without regard to case.
#include "cif/CifNameIndex.hpp"

#include <stdexcept>

#include "cif/CifNames.hpp"

namespace {

// At most three quarters full: at eight bytes a slot a sparser table costs
// more memory than the probes it saves.
std::size_t capacity_for(std::size_t count) {
    std::size_t capacity = 16;
    while (capacity * 3 < count * 4) capacity *= 2;
    return capacity;
}

}  // namespace

std::uint32_t CifNameIndex::slot_hash(std::string_view name) {
    std::uint64_t hash = cif_name_hash(name);
    return static_cast<std::uint32_t>(hash ^ (hash >> 32));
}

void CifNameIndex::clear() {
    slots_.reset();
    capacity_ = 0;
    size_ = 0;
}

void CifNameIndex::build(const ItemList& items) {
    if (items.size() >= UINT32_MAX) throw std::length_error("too many items for one block");
    rehash(capacity_for(items.size()), items);
}

void CifNameIndex::place(std::uint32_t hash, std::size_t position) {
    const std::size_t mask = capacity_ - 1;
    std::size_t i = hash & mask;
    while (slots_[i].position != 0) i = (i + 1) & mask;
    slots_[i] = Slot{hash, static_cast<std::uint32_t>(position + 1)};
}

void CifNameIndex::add(const ItemList& items, std::size_t position) {
    if (position + 1 >= UINT32_MAX) throw std::length_error("too many items for one block");
    if ((std::size_t(size_) + 1) * 4 > std::size_t(capacity_) * 3) {
        // Grown from the list itself, which holds the new item already.
        rehash(capacity_for(items.size()), items);
        return;
    }
    place(slot_hash(items[position]->name()), position);
    ++size_;
}

std::size_t CifNameIndex::find(const ItemList& items, std::string_view name) const {
    if (capacity_ == 0) return npos;
    const std::uint32_t hash = slot_hash(name);
    const std::size_t mask = capacity_ - 1;
    for (std::size_t i = hash & mask;; i = (i + 1) & mask) {
        const Slot& slot = slots_[i];
        if (slot.position == 0) return npos;
        if (slot.hash == hash && cif_iequals(items[slot.position - 1]->name(), name))
            return slot.position - 1;
    }
}

void CifNameIndex::rehash(std::size_t capacity, const ItemList& items) {
    slots_.reset(new Slot[capacity]());
    capacity_ = static_cast<std::uint32_t>(capacity);
    size_ = 0;
    for (std::size_t i = 0; i < items.size(); ++i) {
        place(slot_hash(items[i]->name()), i);
        ++size_;
    }
}
