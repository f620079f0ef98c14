// SPDX-License-Identifier: MIT
// The keys of loops worked out before, kept per thread by their data names and dictionary.
#include "cif/CifLoopKeysMemo.hpp"

std::size_t CifLoopKeysMemo::slot_of(std::uint64_t serial, const CifDataBlock::ItemList& loop) {
    // Items keep their names' hashes: nothing to hash again.
    std::uint64_t hash = serial * 0x9E3779B97F4A7C15ull;
    for (const THandle<CifDataItem>& item : loop) hash = (hash ^ item->name_hash()) * 0x100000001B3ull;
    return static_cast<std::size_t>(hash ^ (hash >> 29)) & (slots - 1);
}

const CifLoopKeysMemo::Keys* CifLoopKeysMemo::find(std::uint64_t serial, const CifDataBlock::ItemList& loop,
                                                   const Definitions& definitions) const {
    if (serial == 0) return nullptr;
    const Entry& entry = entries_[slot_of(serial, loop)];
    if (entry.serial != serial || entry.names.size() != loop.size() || entry.definitions != definitions)
        return nullptr;
    for (std::size_t i = 0; i < loop.size(); ++i) {
        if (entry.names[i] != loop[i]->name()) return nullptr;
    }
    return &entry.keys;
}

void CifLoopKeysMemo::keep(std::uint64_t serial, const CifDataBlock::ItemList& loop,
                           const Definitions& definitions, const Keys& keys) {
    if (serial == 0) return;
    Entry& entry = entries_[slot_of(serial, loop)];
    entry.serial = serial;
    entry.definitions = definitions;
    entry.names.resize(loop.size());
    for (std::size_t i = 0; i < loop.size(); ++i) entry.names[i] = loop[i]->name();
    entry.keys = keys;
}

CifLoopKeysMemo& CifLoopKeysMemo::of_thread() {
    thread_local CifLoopKeysMemo memo;
    return memo;
}
