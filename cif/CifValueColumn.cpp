#include "cif/CifValueColumn.hpp"

void CifValueColumn::add_chunk() {
    chunks_.emplace_back();
    // The first chunk grows as needed; later ones are full-sized at once.
    if (chunks_.size() > 1) chunks_.back().reserve(chunk_size);
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
    chunks_.back().pop_back();
    if (chunks_.back().empty()) chunks_.pop_back();
    --size_;
}

void CifValueColumn::clear() {
    chunks_.clear();
    size_ = 0;
}
