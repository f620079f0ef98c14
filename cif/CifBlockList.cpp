// SPDX-License-Identifier: MIT
// A document's data blocks in text order; empty ones read stay records until handed out.
#include "cif/CifBlockList.hpp"

#include <algorithm>
#include <atomic>
#include <bit>
#include <limits>
#include <string>

namespace {

constexpr std::uint64_t first_segment = 16;

// The segment and the place in it of the made block number index.
std::pair<int, std::size_t> segment_of(std::uint32_t index) {
    const std::uint64_t shifted = std::uint64_t(index) + first_segment;
    const int segment = std::bit_width(shifted) - std::bit_width(first_segment);
    return {segment, static_cast<std::size_t>(shifted - (first_segment << segment))};
}

}  // namespace

void CifBlockList::reset(THandle<CifDictionary> dictionary, THandle<CifTextStore> store) {
    records_.clear();
    line_count_ = 0;
    for (auto& segment : segments_) segment.reset();
    made_count_ = 0;
    dictionary_ = dictionary;
    store_ = store;
}

const THandle<CifDataBlock>& CifBlockList::operator[](std::size_t n) const {
    if (std::uint32_t slot = slot_of(records_[n])) return made_block(slot);
    return make(n);
}

std::string_view CifBlockList::name(std::size_t n) const {
    const Record& record = records_[n];
    if (std::uint32_t slot = slot_of(record)) return made_block(slot)->name();
    return std::string_view(store_->text().data() + record.name_offset, record.name_length);
}

int CifBlockList::line(std::size_t n) const {
    const Record& record = records_[n];
    if (std::uint32_t slot = slot_of(record)) return made_block(slot)->line();
    return record.line;
}

int CifBlockList::last_line(std::size_t n) const {
    const Record& record = records_[n];
    if (std::uint32_t slot = slot_of(record)) return made_block(slot)->last_line();
    return record.line + record.last_gap;
}

int CifBlockList::end_line(std::size_t n) const {
    const Record& record = records_[n];
    if (std::uint32_t slot = slot_of(record)) return made_block(slot)->end_line();
    // Blocks added (not read) have no lines.
    std::size_t next = n + 1;
    while (next < records_.size() && line(next) < 1) ++next;
    return std::max(next < records_.size() ? line(next) - 1 : line_count_, record.line);
}

bool CifBlockList::holds_nothing(std::size_t n) const {
    std::uint32_t slot = slot_of(records_[n]);
    if (slot == 0) return true;
    return made_block(slot)->holds_nothing();
}

void CifBlockList::add_record(std::size_t name_offset, std::size_t name_length, int line) {
    Record record;
    record.line = line;
    if (name_length > std::numeric_limits<std::uint16_t>::max() ||
        name_offset > std::numeric_limits<std::uint32_t>::max()) {
        // Too long a name for a record: the block is made at once.
        std::string name = "data_" + store_->text().substr(name_offset, name_length);
        push_back(THandle<CifDataBlock>(new CifDataBlock(dictionary_, name, line, store_)));
        return;
    }
    record.name_offset = static_cast<std::uint32_t>(name_offset);
    record.name_length = static_cast<std::uint16_t>(name_length);
    records_.push_back(record);
}

void CifBlockList::push_back(THandle<CifDataBlock> block) {
    Record record;
    record.slot = keep(block);
    records_.push_back(record);
}

CifBlockList::iterator CifBlockList::insert(iterator position, THandle<CifDataBlock> block) {
    Record record;
    record.slot = keep(block);
    records_.insert(records_.begin() + static_cast<std::ptrdiff_t>(position.index()), record);
    return iterator(this, position.index());
}

void CifBlockList::set_last_line(std::size_t n, int last) {
    Record& record = records_[n];
    const long gap = long(last) - long(record.line);
    if (slot_of(record) == 0 && gap >= 0 && gap <= std::numeric_limits<std::uint16_t>::max()) {
        record.last_gap = static_cast<std::uint16_t>(gap);
        return;
    }
    const THandle<CifDataBlock>& block = (*this)[n];
    block->set_lines(block->line(), last, last);
}

THandle<CifDataBlock> CifBlockList::unmade_block(std::size_t n) const {
    const Record& record = records_[n];
    std::string name = "data_";
    name.append(store_->text(), record.name_offset, record.name_length);
    // Made on the heap: the store's arena is not shared between threads.
    THandle<CifDataBlock> block(new CifDataBlock(dictionary_, name, record.line, store_));
    block->set_lines(record.line, record.line + record.last_gap, end_line(n));
    return block;
}

std::uint32_t CifBlockList::slot_of(const Record& record) {
    // Written once, under the lock, by make(); the block is in place before.
    return std::atomic_ref<std::uint32_t>(const_cast<std::uint32_t&>(record.slot))
        .load(std::memory_order_acquire);
}

const THandle<CifDataBlock>& CifBlockList::made_block(std::uint32_t slot) const {
    auto [segment, place] = segment_of(slot - 1);
    return segments_[static_cast<std::size_t>(segment)][place];
}

const THandle<CifDataBlock>& CifBlockList::make(std::size_t n) const {
    std::lock_guard<std::mutex> lock(making_);
    std::atomic_ref<std::uint32_t> slot(const_cast<std::uint32_t&>(records_[n].slot));
    if (std::uint32_t made = slot.load(std::memory_order_relaxed)) return made_block(made);
    std::uint32_t kept = keep(unmade_block(n));
    slot.store(kept, std::memory_order_release);
    return made_block(kept);
}

std::uint32_t CifBlockList::keep(THandle<CifDataBlock> block) const {
    auto [segment, place] = segment_of(made_count_);
    auto& storage = segments_[static_cast<std::size_t>(segment)];
    if (storage == nullptr) storage = std::make_unique<THandle<CifDataBlock>[]>(first_segment << segment);
    storage[place] = block;
    return ++made_count_;
}
