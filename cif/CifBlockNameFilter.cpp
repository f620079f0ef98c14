// SPDX-License-Identifier: MIT
// The items of a block by name, as an index the cross-checks ask instead of the block.
#include "cif/CifBlockNameFilter.hpp"

#include "cif/CifDataBlock.hpp"
#include "cif/CifNames.hpp"

constinit thread_local const CifBlockNameFilter* CifBlockNameFilter::current_ = nullptr;

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
    slots_ = std::make_unique<Slot[]>(size);
    mask_ = size - 1;
    for (auto item = block.begin_write_order(), end = block.end_write_order(); item != end; ++item) {
        const std::uint64_t key = cif_check_name_key((*item)->name());
        std::size_t at = key & mask_;
        while (slots_[at].item != nullptr) at = (at + 1) & mask_;
        slots_[at] = Slot{key, &*item};
    }
}

bool CifBlockNameFilter::named(const THandle<CifDataItem>& item, std::string_view name) {
    return cif_iequals(item->name(), name);
}

CifBlockNameFilter::Scope::Scope(const CifBlockNameFilter& names) : previous_(current_) { current_ = &names; }

CifBlockNameFilter::Scope::~Scope() { current_ = previous_; }
