#pragma once

#include <cstddef>
#include <vector>

#include "cif/CifValueRef.hpp"

// The values of one data item. Kept in chunks of fixed size so that a
// column of millions of values never needs one huge block nor a copy of
// itself while it grows; small columns take a single small vector.
class CifValueColumn {
public:
    static constexpr std::size_t chunk_bits = 16;
    static constexpr std::size_t chunk_size = std::size_t(1) << chunk_bits;

    std::size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }

    const CifValueRef& operator[](std::size_t n) const {
        return chunks_[n >> chunk_bits][n & (chunk_size - 1)];
    }
    CifValueRef& operator[](std::size_t n) { return chunks_[n >> chunk_bits][n & (chunk_size - 1)]; }

    void push_back(CifValueRef ref) {
        if (chunks_.empty() || chunks_.back().size() == chunk_size) add_chunk();
        chunks_.back().push_back(ref);
        ++size_;
    }

    void insert(std::size_t n, CifValueRef ref);
    void erase(std::size_t n);
    void pop_back();
    void clear();

private:
    void add_chunk();

    std::vector<std::vector<CifValueRef>> chunks_;
    std::size_t size_ = 0;
};
