// SPDX-License-Identifier: MIT
// The names of the blocks read so far, case ignored, to tell a block name used before.
#include "cif/CifBlockNames.hpp"

#include <new>

#include "cif/CifBlockList.hpp"
#include "cif/CifNames.hpp"

#if defined(__unix__)
#include <sys/mman.h>
#define CIF_BLOCK_NAMES_PAGES 1
#endif

namespace {

// Tables of this many bytes or more have pages of their own.
constexpr std::size_t large_table = std::size_t(2) << 20;
constexpr std::size_t page = 4096;

bool is_large(std::size_t size) { return size * sizeof(std::uint64_t) >= large_table; }

}  // namespace

CifBlockNames::~CifBlockNames() { release(table_); }

int CifBlockNames::first_line(std::string_view name, std::size_t index, const CifBlockList& blocks) {
    if ((count_ + 1) * 4 > table_.size * 3) grow();
    const std::uint64_t tag = cif_name_hash(name) >> 32;
    const std::size_t mask = table_.size - 1;
    std::size_t i = static_cast<std::size_t>(tag) & mask;
    for (; table_.slots[i] != 0; i = (i + 1) & mask) {
        if (table_.slots[i] >> 32 != tag) continue;
        const std::size_t place = (table_.slots[i] & 0xffffffffu) - 1;
        if (cif_iequals(blocks.name(place), name)) return blocks.line(place);
    }
    table_.slots[i] = (tag << 32) | static_cast<std::uint64_t>(index + 1);
    ++count_;
    return -1;
}

void CifBlockNames::grow() {
    const Table old = table_;
    const Table bigger = allocate(old.size == 0 ? 16 : old.size * 2);
    const std::size_t mask = bigger.size - 1;
    // Old slots go to the same place or one old size further: the new
    // table fills nearly in order, and the old one is let go as it goes.
    constexpr std::size_t step = std::size_t(1) << 16;
    for (std::size_t start = 0; start < old.size; start += step) {
        const std::size_t stop = start + step < old.size ? start + step : old.size;
        for (std::size_t n = start; n < stop; ++n) {
            const std::uint64_t slot = old.slots[n];
            if (slot == 0) continue;
            std::size_t i = static_cast<std::size_t>(slot >> 32) & mask;
            while (bigger.slots[i] != 0) i = (i + 1) & mask;
            bigger.slots[i] = slot;
        }
        release_part(old, start, stop);
    }
    release(old);
    table_ = bigger;
}

CifBlockNames::Table CifBlockNames::allocate(std::size_t size) {
    Table table;
    table.size = size;
#ifdef CIF_BLOCK_NAMES_PAGES
    if (is_large(size)) {
        // Fresh pages read as zeros and cost nothing until written.
        void* memory = ::mmap(nullptr, size * sizeof(std::uint64_t), PROT_READ | PROT_WRITE,
                              MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED) throw std::bad_alloc();
#ifdef MADV_HUGEPAGE
        ::madvise(memory, size * sizeof(std::uint64_t), MADV_HUGEPAGE);
#endif
        table.slots = static_cast<std::uint64_t*>(memory);
        return table;
    }
#endif
    table.slots = new std::uint64_t[size]();
    return table;
}

void CifBlockNames::release(const Table& table) {
    if (table.slots == nullptr) return;
#ifdef CIF_BLOCK_NAMES_PAGES
    if (is_large(table.size)) {
        ::munmap(table.slots, table.size * sizeof(std::uint64_t));
        return;
    }
#endif
    delete[] table.slots;
}

void CifBlockNames::release_part(const Table& table, std::size_t from, std::size_t to) {
#ifdef CIF_BLOCK_NAMES_PAGES
    if (!is_large(table.size)) return;
    // The table starts on a page: its pages are its own.
    const std::size_t first = (from * sizeof(std::uint64_t) + page - 1) / page * page;
    const std::size_t last = to * sizeof(std::uint64_t) / page * page;
    if (last > first) ::madvise(reinterpret_cast<char*>(table.slots) + first, last - first, MADV_DONTNEED);
#else
    (void)table;
    (void)from;
    (void)to;
#endif
}
