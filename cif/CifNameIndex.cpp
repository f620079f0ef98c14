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
