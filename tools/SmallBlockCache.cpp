// SPDX-License-Identifier: MIT
// Small blocks of memory a thread lets go of, kept by size to be handed out again.
#include "tools/SmallBlockCache.hpp"

#include <cstdlib>
#include <new>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

void* SmallBlockCache::allocate(std::size_t size) {
    for (;;) {
        if (void* block = std::malloc(size == 0 ? 1 : size)) return block;
        std::new_handler handler = std::get_new_handler();
        if (handler == nullptr) throw std::bad_alloc();
        handler();
    }
}

// How many whole granules the block holds, as the C library tells.
std::size_t SmallBlockCache::usable_granules(void* block) {
#if defined(__GLIBC__)
    return ::malloc_usable_size(block) / granule;
#else
    (void)block;
    return 0;  // unknown: never kept
#endif
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
