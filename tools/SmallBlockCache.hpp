// SPDX-License-Identifier: MIT
// Small blocks of memory a thread lets go of, kept by size to be handed out again.
#pragma once

#include <cstddef>
#include <cstdlib>

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
    void* take(std::size_t size) {
        if (size <= classes * granule) {
            const std::size_t c = size == 0 ? 1 : (size + granule - 1) / granule;
            if (FreeBlock* block = lists_[c]) {
                lists_[c] = block->next;
                bytes_ -= c * granule;
                return block;
            }
            size = c * granule;
        }
        return allocate(size);
    }
    // Keeps the block, or frees it when it is large or the cache is full.
    void give_back(void* block) noexcept {
        if (block != nullptr) keep(block, usable_granules(block));
    }
    // The same for a block taken for size bytes (no need to ask its size).
    void give_back(void* block, std::size_t size) noexcept {
        if (block == nullptr) return;
        keep(block, size > classes * granule ? classes + 1 : size == 0 ? 1 : (size + granule - 1) / granule);
    }
    // Frees every block kept.
    void release() noexcept;

    std::size_t kept_bytes() const { return bytes_; }

private:
    struct FreeBlock {
        FreeBlock* next;
    };
    static void* allocate(std::size_t size);
    static std::size_t usable_granules(void* block);
    void keep(void* block, std::size_t c) noexcept {
        if (c == 0 || c > classes || bytes_ + c * granule > most_bytes_) {
            std::free(block);
            return;
        }
        auto* kept = static_cast<FreeBlock*>(block);
        kept->next = lists_[c];
        lists_[c] = kept;
        bytes_ += c * granule;
    }
    FreeBlock* lists_[classes + 1] = {};
    std::size_t bytes_ = 0;
    std::size_t most_bytes_;
};
