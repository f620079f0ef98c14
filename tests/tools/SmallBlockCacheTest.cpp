// SPDX-License-Identifier: MIT
// The checker's cache of small blocks: reuse by size, the limit, large blocks passed through.
#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <vector>

#include "tools/SmallBlockCache.hpp"

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace {

TEST(SmallBlockCache, BlocksGivenBackServeLaterRequestsOfTheirSizeOrLess) {
    SmallBlockCache cache(std::size_t(1) << 20);
    // Every size up to the largest kept, and a few beyond, each block
    // written over its whole length.
    std::vector<void*> blocks;
    for (std::size_t size = 0; size <= SmallBlockCache::classes * SmallBlockCache::granule + 40; ++size) {
        void* block = cache.take(size);
        ASSERT_NE(block, nullptr);
        std::memset(block, 0x5a, size);
#if defined(__GLIBC__)
        ASSERT_GE(::malloc_usable_size(block), size);
#endif
        blocks.push_back(block);
    }
    for (void* block : blocks) cache.give_back(block);
#if defined(__GLIBC__)
    EXPECT_GT(cache.kept_bytes(), 0u);
    // The kept blocks come back, none twice, each large enough.
    std::set<void*> given(blocks.begin(), blocks.end());
    std::set<void*> again;
    for (std::size_t size = 1; size <= SmallBlockCache::classes * SmallBlockCache::granule; size += 7) {
        void* block = cache.take(size);
        ASSERT_GE(::malloc_usable_size(block), size);
        std::memset(block, 0xa5, size);
        EXPECT_TRUE(again.insert(block).second) << size;
        if (given.count(block) == 0) cache.give_back(block);
    }
    for (void* block : again) {
        if (given.count(block) != 0) cache.give_back(block);
    }
#endif
    cache.release();
    EXPECT_EQ(cache.kept_bytes(), 0u);
}

TEST(SmallBlockCache, KeepsNoMoreThanItsLimitAndNoLargeBlock) {
    SmallBlockCache cache(1024);
    std::vector<void*> blocks;
    for (int n = 0; n < 100; ++n) blocks.push_back(cache.take(64));
    for (void* block : blocks) {
        cache.give_back(block);
        ASSERT_LE(cache.kept_bytes(), 1024u);
    }
    void* large = cache.take(4096);
    std::memset(large, 1, 4096);
    const std::size_t before = cache.kept_bytes();
    cache.give_back(large);
    EXPECT_EQ(cache.kept_bytes(), before);
    cache.give_back(nullptr);
    cache.release();

    // Told its size, a block goes to the list of that size, and a large one is freed.
    SmallBlockCache sized(std::size_t(1) << 20);
    void* small = sized.take(40);
    sized.give_back(small, 40);
    EXPECT_EQ(sized.kept_bytes(), 48u);
    EXPECT_EQ(sized.take(33), small);
    EXPECT_EQ(sized.kept_bytes(), 0u);
    sized.give_back(small, 40);
    sized.give_back(sized.take(300), 300);
    EXPECT_EQ(sized.kept_bytes(), 48u);
    sized.release();
    EXPECT_EQ(cache.kept_bytes(), 0u);
}

}  // namespace
