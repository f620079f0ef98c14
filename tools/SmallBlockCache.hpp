// SPDX-License-Identifier: MIT
// Small blocks of memory a thread lets go of, kept by size to be handed out again.
#pragma once

#include <cstddef>

// The small blocks (up to classes * granule bytes) given back to it, kept
// in one list per size instead of going back to the general allocator, up
// to most_bytes in all; take() hands them out again. Blocks come from and
// go back to malloc, so a kept block serves any request up to its usable
// size. Constant-initialised and trivially destroyed, so that a thread's
// own cache needs no guard: its owner calls release() if the blocks kept
// should go back before the end of the process.
class SmallBlockCache {
public:
    static constexpr std::size_t granule = 16;
    static constexpr std::size_t classes = 16;

    explicit constexpr SmallBlockCache(std::size_t most_bytes) : most_bytes_(most_bytes) {}

    // A block of at least size bytes (malloc's when none is kept); throws
    // std::bad_alloc as operator new does.
    void* take(std::size_t size);
    // Keeps the block, or frees it when it is large or the cache is full.
    void give_back(void* block) noexcept;
    // Frees every block kept.
    void release() noexcept;

    std::size_t kept_bytes() const { return bytes_; }

private:
    struct FreeBlock {
        FreeBlock* next;
    };
    FreeBlock* lists_[classes + 1] = {};
    std::size_t bytes_ = 0;
    std::size_t most_bytes_;
};
