// SPDX-License-Identifier: MIT
// The items of a block by name, as an index the cross-checks ask instead of the block.
#include "cif/CifBlockNameFilter.hpp"

#include <algorithm>
#include <cstring>

#include "cif/CifDataBlock.hpp"
#include "cif/CifNames.hpp"

constinit thread_local const CifBlockNameFilter* CifBlockNameFilter::current_ = nullptr;
thread_local CifBlockNameFilter::Spare CifBlockNameFilter::spare_;

namespace {

// Beyond this many names the block's own index serves as well.
constexpr std::size_t most_names = 1024;

}  // namespace

CifBlockNameFilter::CifBlockNameFilter(const CifDataBlock& block) : block_(&block) {
    const std::size_t count = block.item_count();
    if (count > most_names) return;
    // At most a quarter full: most names asked are missing, and a miss ends
    // at the first free slot.
    std::size_t size = 16;
    while (size < 4 * count) size *= 2;
    // The thread's last table serves again: a table per block would cost
    // more to allocate than the names cost to file.
    if (spare_.size >= size) {
        slots_ = std::move(spare_.slots);
        size_ = spare_.size;
        generation_ = spare_.generation + 1;
        spare_.size = 0;
    } else {
        slots_ = std::make_unique_for_overwrite<Slot[]>(size);
        size_ = size;
        generation_ = 0;  // cleared below
    }
    if (generation_ == 0) {
        std::fill_n(slots_.get(), size_, Slot{0, nullptr, 0});
        generation_ = 1;
    }
    mask_ = size - 1;
    for (auto item = block.begin_write_order(), end = block.end_write_order(); item != end; ++item) {
        // The hash the item keeps with its name is the name's key.
        const std::uint64_t key = (*item)->name_hash();
        std::size_t at = key & mask_;
        while (slots_[at].generation == generation_) at = (at + 1) & mask_;
        slots_[at] = Slot{key, &*item, generation_};
    }
}

CifBlockNameFilter::~CifBlockNameFilter() {
    if (slots_ != nullptr && size_ > spare_.size) {
        spare_.slots = std::move(slots_);
        spare_.size = size_;
        spare_.generation = generation_;
    }
}

bool CifBlockNameFilter::named(const THandle<CifDataItem>& item, std::string_view name) {
    const std::string& kept = item->name();
    if (kept.size() != name.size()) return false;
    // Names are mostly written as asked: the same bytes answer at once.
    return std::memcmp(kept.data(), name.data(), name.size()) == 0 || cif_iequals(kept, name);
}

CifBlockNameFilter::Scope::Scope(const CifBlockNameFilter& names) : previous_(current_) { current_ = &names; }

CifBlockNameFilter::Scope::~Scope() { current_ = previous_; }
