// SPDX-License-Identifier: MIT
// The names a block holds, as a filter the cross-checks ask before looking a name up.
#include "cif/CifBlockNameFilter.hpp"

#include <cstring>

#include "cif/CifDataBlock.hpp"
#include "cif/CifDataItem.hpp"

thread_local const CifBlockNameFilter* CifBlockNameFilter::current_ = nullptr;

namespace {

// Beyond this many names, two bits each would fill most of the filter.
constexpr std::size_t most_names = 256;

}  // namespace

CifBlockNameFilter::CifBlockNameFilter(const CifDataBlock& block) : block_(&block) {
    if (block.item_count() > most_names) {
        all_ = true;
        return;
    }
    for (auto item = block.begin_write_order(); item != block.end_write_order(); ++item) add((*item)->name());
}

// The length, the first eight bytes after the leading underscore and the
// last eight, each byte with its 0x20 bit set as the block's name table
// does (a letter and its capital alike), mixed into two 32-bit halves.
std::uint64_t CifBlockNameFilter::key_of(std::string_view name) {
    constexpr std::uint64_t case_bits = 0x2020202020202020ull;
    std::uint64_t head = 0, tail = 0;
    const std::size_t size = name.size();
    if (size >= 9) {
        std::memcpy(&head, name.data() + 1, 8);
        std::memcpy(&tail, name.data() + size - 8, 8);
    } else {
        std::memcpy(&head, name.data(), size);
    }
    std::uint64_t key = (head | case_bits) * 0x9E3779B97F4A7C15ull;
    key ^= ((tail | case_bits) + size) * 0xC2B2AE3D27D4EB4Full;
    return key ^ (key >> 29);
}

void CifBlockNameFilter::add(std::string_view name) {
    const std::uint64_t key = key_of(name);
    bits_[(key >> 6) & (words - 1)] |= std::uint64_t{1} << (key & 63);
    bits_[(key >> 38) & (words - 1)] |= std::uint64_t{1} << ((key >> 32) & 63);
}

CifBlockNameFilter::Scope::Scope(const CifBlockNameFilter& names) : previous_(current_) { current_ = &names; }

CifBlockNameFilter::Scope::~Scope() { current_ = previous_; }
