// SPDX-License-Identifier: MIT
// The items of a block by data name, compared without regard to case.
#include "cif/CifNameIndex.hpp"

#include <stdexcept>

#include "cif/CifNames.hpp"

// At most three quarters full: at eight bytes a slot a sparser table costs
// more memory than the probes it saves.
std::size_t CifNameIndex::capacity_for(std::size_t count) {
    std::size_t capacity = 16;
    while (capacity * 3 < count * 4) capacity *= 2;
    return capacity;
}

void CifNameIndex::check_count(std::size_t count) {
    if (count >= UINT32_MAX) throw std::length_error("too many items for one block");
}

void CifNameIndex::clear() {
    slots_.reset();
    capacity_ = 0;
    size_ = 0;
}

void CifNameIndex::reset(std::size_t capacity) {
    slots_.reset(new Slot[capacity]());
    capacity_ = static_cast<std::uint32_t>(capacity);
    size_ = 0;
}

void CifNameIndex::place(std::uint32_t hash, std::size_t position) {
    const std::size_t mask = capacity_ - 1;
    std::size_t i = hash & mask;
    while (slots_[i].position != 0) i = (i + 1) & mask;
    slots_[i] = Slot{hash, static_cast<std::uint32_t>(position + 1)};
}

std::size_t CifNameIndex::find_slot(const ItemList& items, std::string_view name, std::uint64_t name_hash,
                                    std::size_t& slot) const {
    const std::uint32_t hash = fold(name_hash);
    const std::size_t mask = capacity_ - 1;
    for (std::size_t i = hash & mask;; i = (i + 1) & mask) {
        const Slot& at = slots_[i];
        if (at.position == 0) {
            slot = i;
            return npos;
        }
        if (at.hash == hash && cif_iequals(items[at.position - 1]->name(), name)) return at.position - 1;
    }
}

void CifNameIndex::add_at(const ItemList& items, std::size_t position, std::size_t slot) {
    check_count(position + 1);
    if ((std::size_t(size_) + 1) * 4 > std::size_t(capacity_) * 3) {
        rehash(capacity_for(items.size()), items.size(), item_names(items));
        return;
    }
    slots_[slot] = Slot{fold(items[position]->name_hash()), static_cast<std::uint32_t>(position + 1)};
    ++size_;
}
