// SPDX-License-Identifier: MIT
// The values of one data item, long columns kept in chunks of fixed size.
#include "cif/CifValueColumn.hpp"

#include <algorithm>
#include <new>
#include <utility>
#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace {

// A full chunk is 2 MiB, aligned to that, so that the system may back it
// with one huge page: the columns of a loop of millions of rows then cost
// a few page faults instead of hundreds of thousands.
constexpr std::size_t huge_page = std::size_t(1) << 21;

}  // namespace

CifValueColumn::Chunk CifValueColumn::make_chunk(std::size_t capacity) {
    const std::size_t bytes = capacity * sizeof(CifValueRef);
    const std::size_t alignment = bytes % huge_page == 0 ? huge_page : 64;
    void* memory = ::operator new(bytes, std::align_val_t(alignment));
#if defined(__linux__) && defined(MADV_HUGEPAGE)
    if (alignment == huge_page) ::madvise(memory, bytes, MADV_HUGEPAGE);
#endif
    return Chunk(new (memory) CifValueRef[capacity], ChunkDelete{alignment});
}

void CifValueColumn::ChunkDelete::operator()(CifValueRef* chunk) const {
    ::operator delete(chunk, std::align_val_t(alignment));
}

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
        other.next_ = other.limit_ = nullptr;
        other.size_ = 0;
    }
    return *this;
}

void CifValueColumn::grow_and_push(CifValueRef ref) {
    if (chunks_ == nullptr) {
        if (size_ == 0) {
            single_ = ref;
            size_ = 1;
            return;
        }
        chunks_ = std::make_unique<Chunks>();
        chunks_->first_capacity = 8;
        chunks_->list.push_back(make_chunk(chunks_->first_capacity));
        chunks_->list[0][0] = single_;
        next_ = chunks_->list[0].get() + 1;
        limit_ = chunks_->list[0].get() + chunks_->first_capacity;
    } else if (chunks_->list.size() == 1 && chunks_->first_capacity < chunk_size) {
        std::size_t capacity = std::min(chunks_->first_capacity * 2, chunk_size);
        Chunk grown = make_chunk(capacity);
        std::copy(chunks_->list[0].get(), chunks_->list[0].get() + size_, grown.get());
        chunks_->list[0] = std::move(grown);
        chunks_->first_capacity = capacity;
        next_ = chunks_->list[0].get() + size_;
        limit_ = chunks_->list[0].get() + capacity;
    } else {
        chunks_->list.push_back(make_chunk(chunk_size));
        next_ = chunks_->list.back().get();
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
    if (chunks_ == nullptr) return;
    std::vector<Chunk>& list = chunks_->list;
    --next_;
    if (next_ == list.back().get() && list.size() > 1) {
        list.pop_back();
        next_ = limit_ = list.back().get() + (list.size() == 1 ? chunks_->first_capacity : chunk_size);
    }
}

void CifValueColumn::clear() {
    chunks_.reset();
    next_ = limit_ = nullptr;
    size_ = 0;
}
