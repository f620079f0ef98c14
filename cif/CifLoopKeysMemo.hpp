// SPDX-License-Identifier: MIT
// The keys of loops worked out before, kept per thread by their data names and dictionary.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "cif/CifDataBlock.hpp"
#include "cif/CifItemDefinition.hpp"

// A loop's keys follow from its data names (in their order) and the
// dictionary alone, and the files of a run give the same loops again and
// again (atom sites, bonds, angles): worked out once, they are kept here
// under the dictionary's serial number and the names, which a hit compares
// byte for byte. A few dozen loops per thread, the oldest in a slot
// replaced: a run's memory does not grow with its files.
class CifLoopKeysMemo {
public:
    using Keys = std::vector<std::vector<std::size_t>>;

    using Definitions = std::vector<const CifItemDefinition*>;

    // The keys kept for a loop of these names and definitions from a
    // dictionary of this serial number, or null.
    const Keys* find(std::uint64_t serial, const CifDataBlock::ItemList& loop,
                     const Definitions& definitions) const;
    // Keeps them (a serial number of 0 keeps nothing).
    void keep(std::uint64_t serial, const CifDataBlock::ItemList& loop, const Definitions& definitions,
              const Keys& keys);

    // The calling thread's own.
    static CifLoopKeysMemo& of_thread();

private:
    static constexpr std::size_t slots = 64;
    struct Entry {
        std::uint64_t serial = 0;  // 0: empty
        std::vector<std::string> names;
        Definitions definitions;
        Keys keys;
    };
    static std::size_t slot_of(std::uint64_t serial, const CifDataBlock::ItemList& loop);

    std::array<Entry, slots> entries_;
};
