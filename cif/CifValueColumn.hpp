// SPDX-License-Identifier: MIT
// The values of one data item, long columns kept in chunks of fixed size.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "cif/CifValueRef.hpp"

// The values of one data item. A single value is kept in the object
// itself; longer columns in chunks of fixed size, so that a column of
// millions of values never needs one huge block nor a copy of itself while
// it grows (the first chunk grows by doubling up to the chunk size).
class CifValueColumn {
public:
    static constexpr std::size_t chunk_bits = 18;
    static constexpr std::size_t chunk_size = std::size_t(1) << chunk_bits;

    CifValueColumn() = default;
    CifValueColumn(const CifValueColumn& other);
    CifValueColumn& operator=(const CifValueColumn& other);
    CifValueColumn(CifValueColumn&& other) noexcept;
    CifValueColumn& operator=(CifValueColumn&& other) noexcept;

    std::size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }

    const CifValueRef& operator[](std::size_t n) const {
        return chunks_ == nullptr ? single_ : chunks_->list[n >> chunk_bits][n & (chunk_size - 1)];
    }
    CifValueRef& operator[](std::size_t n) {
        return chunks_ == nullptr ? single_ : chunks_->list[n >> chunk_bits][n & (chunk_size - 1)];
    }

    // The values as runs of consecutive entries, for loops over millions of
    // them: run k holds the entries from k * chunk_size on (all of them when
    // there is one run), the same for every column of the same length.
    std::size_t run_count() const { return chunks_ == nullptr ? (size_ == 0 ? 0 : 1) : chunks_->list.size(); }
    const CifValueRef* run(std::size_t k) const {
        return chunks_ == nullptr ? &single_ : chunks_->list[k].get();
    }

    void push_back(CifValueRef ref) {
        if (next_ != limit_) {
            *next_++ = ref;
            ++size_;
        } else {
            grow_and_push(ref);
        }
    }

    void insert(std::size_t n, CifValueRef ref);
    void erase(std::size_t n);
    void pop_back();
    void clear();

private:
    void grow_and_push(CifValueRef ref);

    // Chunks come from aligned storage (full ones on huge pages where the
    // system offers them), given back with the alignment they were taken with.
    struct ChunkDelete {
        std::size_t alignment = 64;
        void operator()(CifValueRef* chunk) const;
    };
    using Chunk = std::unique_ptr<CifValueRef[], ChunkDelete>;
    static Chunk make_chunk(std::size_t capacity);

    // Kept apart, so that the many items of one value stay small.
    struct Chunks {
        std::vector<Chunk> list;
        std::size_t first_capacity = 0;
    };

    std::unique_ptr<Chunks> chunks_;  // null while there is at most one value
    CifValueRef single_;
    CifValueRef* next_ = nullptr;   // the free slot of the last chunk
    CifValueRef* limit_ = nullptr;  // the end of the last chunk
    std::size_t size_ = 0;
};
