// SPDX-License-Identifier: MIT
// The checker's allocation: small blocks kept by each thread for the next file to reuse.
//
// A check reads a file into a few hundred small objects (items, columns,
// names, messages) and lets go of them all before the next file. Each
// thread keeps the small blocks it frees and hands them out again for the
// next file: an allocation then costs a few instructions instead of the
// general allocator's search, and a file's blocks do not pile up in its
// free lists to be sorted when a larger block is asked for. A thread keeps
// at most 32 KiB, about what one small file uses, so that memory held for
// reuse does not raise the run's peak. Builds with a sanitizer keep
// nothing, so that it sees every block.
#include <cstddef>
#include <new>

#include "tools/SmallBlockCache.hpp"

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(memory_sanitizer) || __has_feature(thread_sanitizer)
#define TESSARY_CHECK_PLAIN_ALLOCATION 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || !defined(__GLIBC__)
#define TESSARY_CHECK_PLAIN_ALLOCATION 1
#endif

#if !defined(TESSARY_CHECK_PLAIN_ALLOCATION)

namespace {

// The blocks a thread keeps when it ends are left to the end of the process.
thread_local constinit SmallBlockCache cache(std::size_t(32) << 10);

void* take_or_null(std::size_t size) noexcept {
    try {
        return cache.take(size);
    } catch (...) {
        return nullptr;
    }
}

}  // namespace

void* operator new(std::size_t size) { return cache.take(size); }
void* operator new[](std::size_t size) { return cache.take(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return take_or_null(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return take_or_null(size); }
void operator delete(void* block) noexcept { cache.give_back(block); }
void operator delete[](void* block) noexcept { cache.give_back(block); }
void operator delete(void* block, std::size_t size) noexcept { cache.give_back(block, size); }
void operator delete[](void* block, std::size_t size) noexcept { cache.give_back(block, size); }
void operator delete(void* block, const std::nothrow_t&) noexcept { cache.give_back(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { cache.give_back(block); }

#endif
