// SPDX-License-Identifier: MIT
// The values of one data item, plain values of long columns kept in two bytes each.
#include "cif/CifValueColumn.hpp"

#include <algorithm>
#include <new>
#include <utility>

#include "cif/CifTextScan.hpp"
#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace {

// A full chunk is 2 MiB, aligned to that, so that the system may back it
// with one huge page: the columns of a loop of millions of rows then cost
// a few page faults instead of thousands.
constexpr std::size_t huge_page = std::size_t(1) << 21;

}  // namespace

CifValueColumn::Chunk CifValueColumn::make_chunk(std::size_t capacity) {
    const std::size_t bytes = capacity * sizeof(std::uint16_t);
    if (bytes % huge_page != 0)
        return Chunk(static_cast<std::uint16_t*>(::operator new(bytes)), ChunkDelete{0});
    void* memory = ::operator new(bytes, std::align_val_t(huge_page));
#if defined(__linux__) && defined(MADV_HUGEPAGE)
    ::madvise(memory, bytes, MADV_HUGEPAGE);
#endif
    return Chunk(static_cast<std::uint16_t*>(memory), ChunkDelete{huge_page});
}

void CifValueColumn::ChunkDelete::operator()(std::uint16_t* chunk) const {
    if (alignment == 0) {
        ::operator delete(chunk);
    } else {
        ::operator delete(chunk, std::align_val_t(alignment));
    }
}

CifValueColumn::~CifValueColumn() { free_small(); }

void CifValueColumn::free_small() {
    if (is_small()) delete[] small();
}

CifValueColumn::CifValueColumn(const CifValueColumn& other) : text_(other.text_) {
    for (std::size_t n = 0; n < other.size_; ++n) push_back(other[n]);
}

CifValueColumn& CifValueColumn::operator=(const CifValueColumn& other) {
    if (this != &other) {
        clear();
        if (other.text_ != nullptr) text_ = other.text_;
        for (std::size_t n = 0; n < other.size_; ++n) push_back(other[n]);
    }
    return *this;
}

CifValueColumn::CifValueColumn(CifValueColumn&& other) noexcept { *this = std::move(other); }

CifValueColumn& CifValueColumn::operator=(CifValueColumn&& other) noexcept {
    if (this != &other) {
        free_small();
        store_ = std::move(other.store_);
        if (other.text_ != nullptr) text_ = other.text_;
        single_ = other.single_;
        size_ = other.size_;
        other.size_ = 0;
    }
    return *this;
}

bool CifValueColumn::fits(CifValueRef ref, bool plain) const {
    if (text_ == nullptr || ref.flags() != 0) return false;
    return plain || word_length(text_ + ref.offset) == ref.length();
}

void CifValueColumn::push(CifValueRef ref, bool plain) {
    if (store_ == nullptr) {
        if (size_ == 0) {
            single_ = ref;
            size_ = 1;
            return;
        }
        if (size_ == 1) {
            CifValueRef* refs = new CifValueRef[2];
            refs[0] = single_;
            refs[1] = ref;
            set_small(refs);
            size_ = 2;
            return;
        }
        if (size_ < small_limit) {
            if (std::has_single_bit(size_)) {
                CifValueRef* grown = new CifValueRef[2 * size_];
                std::copy(small(), small() + size_, grown);
                delete[] small();
                set_small(grown);
            }
            small()[size_++] = ref;
            return;
        }
        // Past the small array: the values so far go into a store.
        make_store(size_ + 1);
    }
    Store& store = *store_;
    const std::size_t n = size_;
    // Room for the distance of value n.
    if (n >> chunk_bits == store.chunks.size()) {
        store.chunks.push_back(make_chunk(chunk_size));
    } else if (store.chunks.size() == 1 && n == store.first_capacity) {
        const std::size_t capacity = std::min(store.first_capacity * 2, chunk_size);
        Chunk grown = make_chunk(capacity);
        std::copy(store.chunks[0].get(), store.chunks[0].get() + n, grown.get());
        store.chunks[0] = std::move(grown);
        store.first_capacity = capacity;
    }
    const std::size_t g = n >> group_bits;
    const std::size_t i = n & (group_size - 1);
    const bool short_form = fits(ref, plain);
    if (i == 0) store.groups.push_back(Group{short_form ? ref.offset : 0, compact});
    Group& group = store.groups[g];
    if (group.wide == compact && !(short_form && ref.offset - group.base <= 0xffff)) make_wide(g, i);
    if (group.wide == compact) {
        store.distance(n) = static_cast<std::uint16_t>(ref.offset - group.base);
    } else {
        store.wide[group.wide - 1].push_back(ref);
    }
    ++size_;
    resume();
}

void CifValueColumn::make_store(std::size_t expected) {
    const std::size_t count = size_;
    std::unique_ptr<CifValueRef[]> kept(is_small() ? small() : nullptr);
    const CifValueRef first = single_;
    store_ = std::make_unique<Store>();
    store_->first_capacity = std::min(std::max(2 * small_limit, std::bit_ceil(expected)), chunk_size);
    store_->chunks.push_back(make_chunk(store_->first_capacity));
    size_ = 0;
    if (count == 1) push(first, false);
    for (std::size_t k = 0; kept && k < count; ++k) push(kept[k], false);
}

void CifValueColumn::append_plain(const CifValueRef* refs, std::size_t stride, std::size_t count) {
    const CifValueRef* const stop = refs + count * stride;
    // Room for all of them at once where the column is still short: one
    // allocation instead of one each time the column doubles.
    if (store_ == nullptr && count > 1) {
        const std::size_t total = size_ + count;
        if (total > small_limit) {
            make_store(total);
        } else if (total > 2 && (size_ < 2 || std::bit_ceil(size_) < total)) {
            CifValueRef* grown = new CifValueRef[std::bit_ceil(total)];
            if (size_ == 1) grown[0] = single_;
            if (is_small()) {
                std::copy(small(), small() + size_, grown);
                delete[] small();
            }
            set_small(grown);
            for (; refs != stop; refs += stride) grown[size_++] = *refs;
            return;
        }
    }
    while (refs != stop) {
        Store* store = store_.get();
        if (store != nullptr) {
            // Straight into the last group while it has room and the values stay near its base.
            std::uint16_t* next = store->next;
            std::uint16_t* const limit = store->limit;
            const std::uint32_t base = store->base;
            std::uint16_t* const first = next;
            for (; refs != stop && next != limit; refs += stride) {
                const std::uint32_t distance = refs->offset - base;
                if (distance > 0xffff) break;
                *next++ = static_cast<std::uint16_t>(distance);
            }
            store->next = next;
            size_ += static_cast<std::size_t>(next - first);
            if (refs == stop) return;
        }
        push(*refs, true);
        refs += stride;
    }
}

void CifValueColumn::make_wide(std::size_t g, std::size_t count) {
    Store& store = *store_;
    std::vector<CifValueRef> refs(count);
    const std::size_t first = g << group_bits;
    for (std::size_t i = 0; i < count; ++i) refs[i] = store.at(first + i, text_);
    store.wide.push_back(std::move(refs));
    store.groups[g].wide = static_cast<std::uint32_t>(store.wide.size());
}

void CifValueColumn::resume() {
    Store& store = *store_;
    store.next = store.limit = nullptr;
    const std::size_t n = size_;
    if ((n & (group_size - 1)) == 0 || store.groups.empty()) return;  // a new group starts
    const Group& group = store.groups.back();
    if (group.wide != compact) return;
    const std::size_t capacity =
        store.chunks.size() == 1 ? store.first_capacity : store.chunks.size() << chunk_bits;
    const std::size_t end = std::min((n | (group_size - 1)) + 1, capacity);
    if (n >= end) return;
    store.next = &store.distance(n);
    store.limit = store.next + (end - n);
    store.base = group.base;
}

void CifValueColumn::copy_refs(std::size_t first, std::size_t count, CifValueRef* out,
                               const char* text_end) const {
    if (store_ != nullptr && text_end == nullptr && text_ != nullptr && count > 0) {
        // Without the text's end, where the column's last value ends bounds
        // what may be read at once: the text holds that byte (a word's stop,
        // a closing quote or the text's final NUL).
        const CifValueRef final_value = store_->at(size_ - 1, text_);
        if (!final_value.added()) text_end = text_ + final_value.offset + final_value.length();
    }
    const char* text = text_;
    visit(
        first, count,
        [&](std::size_t, std::size_t offset) {
            CifValueRef ref;
            ref.offset = static_cast<std::uint32_t>(offset);
            const char* word = text + offset;
            if (text_end != nullptr) {
                const char* word_end = cif_to_word_stop(word, text_end);
                ref.bits = static_cast<std::uint32_t>(word_end - word) + word_length(word_end);
            } else {
                ref.bits = word_length(word);
            }
            *out++ = ref;
        },
        [&](std::size_t, CifValueRef ref) { *out++ = ref; });
}

void CifValueColumn::set(std::size_t n, CifValueRef ref) {
    if (n >= size_) return;
    if (store_ == nullptr) {
        if (size_ <= 1) {
            single_ = ref;
        } else {
            small()[n] = ref;
        }
        return;
    }
    Store& store = *store_;
    const std::size_t g = n >> group_bits;
    const std::size_t i = n & (group_size - 1);
    Group& group = store.groups[g];
    if (group.wide == compact && fits(ref, false) && ref.offset - group.base <= 0xffff) {
        store.distance(n) = static_cast<std::uint16_t>(ref.offset - group.base);
        return;
    }
    if (group.wide == compact) {
        make_wide(g, std::min(group_size, size_ - (g << group_bits)));
        resume();
    }
    store.wide[group.wide - 1][i] = ref;
}

void CifValueColumn::insert(std::size_t n, CifValueRef ref) {
    if (n >= size_) {
        push_back(ref);
        return;
    }
    // Built anew: shifting would leave values far from their groups' bases.
    CifValueColumn grown(text_);
    for (std::size_t k = 0; k < n; ++k) grown.push_back((*this)[k]);
    grown.push_back(ref);
    for (std::size_t k = n; k < size_; ++k) grown.push_back((*this)[k]);
    *this = std::move(grown);
}

void CifValueColumn::erase(std::size_t n) {
    if (n >= size_) return;
    if (n + 1 == size_) {
        pop_back();
        return;
    }
    CifValueColumn kept(text_);
    for (std::size_t k = 0; k < size_; ++k)
        if (k != n) kept.push_back((*this)[k]);
    *this = std::move(kept);
}

void CifValueColumn::pop_back() {
    if (size_ == 0) return;
    if (is_small() && size_ == 2) {
        const CifValueRef first = small()[0];
        delete[] small();
        single_ = first;
    }
    --size_;
    if (store_ == nullptr) return;
    Store& store = *store_;
    const Group group = store.groups.back();
    if (group.wide != compact) store.wide[group.wide - 1].pop_back();
    if ((size_ & (group_size - 1)) == 0) {
        store.groups.pop_back();
        if (group.wide != compact && group.wide == store.wide.size()) store.wide.pop_back();
    }
    if (store.chunks.size() > 1 && size_ == (store.chunks.size() - 1) << chunk_bits) store.chunks.pop_back();
    resume();
}

void CifValueColumn::clear() {
    free_small();
    store_.reset();
    size_ = 0;
}

std::size_t CifValueColumn::heap_bytes() const {
    if (store_ == nullptr) return size_ <= 1 ? 0 : std::bit_ceil(size_) * sizeof(CifValueRef);
    const Store& store = *store_;
    std::size_t bytes = sizeof(Store) + store.groups.capacity() * sizeof(Group);
    for (const std::vector<CifValueRef>& refs : store.wide) bytes += refs.capacity() * sizeof(CifValueRef);
    bytes += store.chunks.size() == 1 ? store.first_capacity * 2 : store.chunks.size() * chunk_size * 2;
    return bytes;
}
