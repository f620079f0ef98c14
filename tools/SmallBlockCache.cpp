// SPDX-License-Identifier: MIT
// Small blocks of memory a thread lets go of, kept by size to be handed out again.
#include "tools/SmallBlockCache.hpp"

#include <cstdlib>
#include <new>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace {

void* allocate(std::size_t size) {
    for (;;) {
        if (void* block = std::malloc(size == 0 ? 1 : size)) return block;
        std::new_handler handler = std::get_new_handler();
        if (handler == nullptr) throw std::bad_alloc();
        handler();
    }
}

// How many whole granules the block holds, as the C library tells.
std::size_t usable_granules(void* block, std::size_t granule) {
#if defined(__GLIBC__)
    return ::malloc_usable_size(block) / granule;
#else
    (void)block;
    (void)granule;
    return 0;  // unknown: never kept
#endif
}

}  // namespace

void* SmallBlockCache::take(std::size_t size) {
    if (size > classes * granule) return allocate(size);
    const std::size_t c = size == 0 ? 1 : (size + granule - 1) / granule;
    if (FreeBlock* block = lists_[c]) {
        lists_[c] = block->next;
        bytes_ -= c * granule;
        return block;
    }
    return allocate(c * granule);
}

void SmallBlockCache::give_back(void* block) noexcept {
    if (block == nullptr) return;
    const std::size_t c = usable_granules(block, granule);
    if (c == 0 || c > classes || bytes_ + c * granule > most_bytes_) {
        std::free(block);
        return;
    }
    auto* kept = static_cast<FreeBlock*>(block);
    kept->next = lists_[c];
    lists_[c] = kept;
    bytes_ += c * granule;
}

void SmallBlockCache::release() noexcept {
    for (FreeBlock*& list : lists_) {
        while (list != nullptr) {
            FreeBlock* next = list->next;
            std::free(list);
            list = next;
        }
    }
    bytes_ = 0;
}
