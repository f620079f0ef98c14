// SPDX-License-Identifier: MIT
// The items of a block by data name, compared without regard to case.
#include "cif/CifNameIndex.hpp"

#include "cif/CifNames.hpp"

std::uint64_t CifNameIndex::slot_hash(std::string_view name) {
    std::uint64_t hash = cif_name_hash(name);
    return hash <= erased ? hash + 2 : hash;
}

void CifNameIndex::clear() {
    slots_.clear();
    size_ = 0;
    used_ = 0;
}

void CifNameIndex::reserve(std::size_t count) {
    std::size_t capacity = 16;
    while (capacity < count * 2) capacity *= 2;
    if (capacity > slots_.size()) rehash(capacity);
}

// The slot holding name, or the first never-used slot where its search ends.
std::size_t CifNameIndex::position(std::string_view name, std::uint64_t hash) const {
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t i = static_cast<std::size_t>(hash) & mask;; i = (i + 1) & mask) {
        const Slot& slot = slots_[i];
        if (slot.hash == 0) return i;
        if (slot.hash == hash && cif_iequals(slot.item->name(), name)) return i;
    }
}

void CifNameIndex::emplace(std::string_view name, const THandle<CifDataItem>& item) {
    if ((used_ + 1) * 2 > slots_.size()) {
        // At most half full, erased slots counted: grown (or cleaned) to a quarter.
        std::size_t capacity = 16;
        while (capacity < (size_ + 1) * 4) capacity *= 2;
        rehash(capacity);
    }
    std::uint64_t hash = slot_hash(name);
    const std::size_t mask = slots_.size() - 1;
    std::size_t i = static_cast<std::size_t>(hash) & mask;
    while (slots_[i].hash > erased) i = (i + 1) & mask;
    if (slots_[i].hash == 0) ++used_;
    slots_[i].hash = hash;
    slots_[i].item = item;
    ++size_;
}

void CifNameIndex::erase(std::string_view name) {
    if (slots_.empty()) return;
    std::size_t i = position(name, slot_hash(name));
    if (slots_[i].hash == 0) return;
    slots_[i].hash = erased;
    slots_[i].item = THandle<CifDataItem>();
    --size_;
}

const THandle<CifDataItem>* CifNameIndex::find(std::string_view name) const {
    if (slots_.empty()) return nullptr;
    const Slot& slot = slots_[position(name, slot_hash(name))];
    return slot.hash == 0 ? nullptr : &slot.item;
}

void CifNameIndex::rehash(std::size_t capacity) {
    std::vector<Slot> old;
    old.swap(slots_);
    slots_.resize(capacity);
    used_ = size_;
    const std::size_t mask = capacity - 1;
    for (Slot& slot : old) {
        if (slot.hash <= erased) continue;
        std::size_t i = static_cast<std::size_t>(slot.hash) & mask;
        while (slots_[i].hash != 0) i = (i + 1) & mask;
        slots_[i].hash = slot.hash;
        slots_[i].item = std::move(slot.item);
    }
}
