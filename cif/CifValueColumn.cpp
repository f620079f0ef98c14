// SPDX-License-Identifier: MIT
// The values of one data item, long columns kept in chunks of fixed size.
#include "cif/CifValueColumn.hpp"

#include <algorithm>
#include <utility>

CifValueColumn::CifValueColumn(const CifValueColumn& other) {
    for (std::size_t n = 0; n < other.size_; ++n) push_back(other[n]);
}

CifValueColumn& CifValueColumn::operator=(const CifValueColumn& other) {
    if (this != &other) {
        clear();
        for (std::size_t n = 0; n < other.size_; ++n) push_back(other[n]);
    }
    return *this;
}

CifValueColumn::CifValueColumn(CifValueColumn&& other) noexcept { *this = std::move(other); }

CifValueColumn& CifValueColumn::operator=(CifValueColumn&& other) noexcept {
    if (this != &other) {
        chunks_ = std::move(other.chunks_);
        single_ = other.single_;
        next_ = other.next_;
        limit_ = other.limit_;
        size_ = other.size_;
        first_capacity_ = other.first_capacity_;
        other.chunks_.clear();
        other.next_ = other.limit_ = nullptr;
        other.size_ = other.first_capacity_ = 0;
    }
    return *this;
}

void CifValueColumn::grow_and_push(CifValueRef ref) {
    if (chunks_.empty()) {
        if (size_ == 0) {
            single_ = ref;
            size_ = 1;
            return;
        }
        first_capacity_ = 8;
        chunks_.emplace_back(new CifValueRef[first_capacity_]);
        chunks_[0][0] = single_;
        next_ = chunks_[0].get() + 1;
        limit_ = chunks_[0].get() + first_capacity_;
    } else if (chunks_.size() == 1 && first_capacity_ < chunk_size) {
        std::size_t capacity = std::min(first_capacity_ * 2, chunk_size);
        std::unique_ptr<CifValueRef[]> grown(new CifValueRef[capacity]);
        std::copy(chunks_[0].get(), chunks_[0].get() + size_, grown.get());
        chunks_[0] = std::move(grown);
        first_capacity_ = capacity;
        next_ = chunks_[0].get() + size_;
        limit_ = chunks_[0].get() + capacity;
    } else {
        chunks_.emplace_back(new CifValueRef[chunk_size]);
        next_ = chunks_.back().get();
        limit_ = next_ + chunk_size;
    }
    *next_++ = ref;
    ++size_;
}

void CifValueColumn::insert(std::size_t n, CifValueRef ref) {
    if (n >= size_) {
        push_back(ref);
        return;
    }
    push_back((*this)[size_ - 1]);
    for (std::size_t i = size_ - 2; i > n; --i) (*this)[i] = (*this)[i - 1];
    (*this)[n] = ref;
}

void CifValueColumn::erase(std::size_t n) {
    if (n >= size_) return;
    for (std::size_t i = n; i + 1 < size_; ++i) (*this)[i] = (*this)[i + 1];
    pop_back();
}

void CifValueColumn::pop_back() {
    if (size_ == 0) return;
    --size_;
    if (chunks_.empty()) return;
    --next_;
    if (next_ == chunks_.back().get() && chunks_.size() > 1) {
        chunks_.pop_back();
        next_ = limit_ = chunks_.back().get() + (chunks_.size() == 1 ? first_capacity_ : chunk_size);
    }
}

void CifValueColumn::clear() {
    chunks_.clear();
    next_ = limit_ = nullptr;
    size_ = 0;
    first_capacity_ = 0;
}
