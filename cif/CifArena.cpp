// SPDX-License-Identifier: MIT
// Storage for the items and blocks of one document, handed out in order and freed at once.
#include "cif/CifArena.hpp"

#include <algorithm>
#include <cstdint>

void* CifArena::allocate(std::size_t size, std::size_t alignment) {
    auto aligned = [&](unsigned char* p) {
        std::uintptr_t address = reinterpret_cast<std::uintptr_t>(p);
        return reinterpret_cast<unsigned char*>((address + alignment - 1) & ~(alignment - 1));
    };
    unsigned char* start = next_ == nullptr ? nullptr : aligned(next_);
    if (start == nullptr || start + size > end_) {
        // Chunks double from 4 KiB (a small file needs one) up to 1 MiB.
        std::size_t chunk = chunks_.empty() ? 4096
                                            : std::min<std::size_t>(
                                                  std::size_t(1) << 20,
                                                  2 * static_cast<std::size_t>(end_ - chunks_.back().get()));
        chunk = std::max(chunk, size + alignment);
        chunks_.emplace_back(new unsigned char[chunk]);
        next_ = chunks_.back().get();
        end_ = next_ + chunk;
        start = aligned(next_);
    }
    next_ = start + size;
    used_ += size;
    return start;
}
