// SPDX-License-Identifier: MIT
// The values of one data item, plain values of long columns kept in two bytes each.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "cif/CifValueRef.hpp"

// The bytes that end a plain word in a column's text: white space and NUL.
struct CifWordStops {
    bool stop[256] = {};
    constexpr CifWordStops() {
        for (unsigned char c : {' ', '\t', '\n', '\0'}) stop[c] = true;
    }
};
inline constexpr CifWordStops cif_word_stops{};

// The values of one data item. A single value is kept in the object
// itself, a few (up to small_limit) as full references in one small array.
// A longer column keeps its values in groups of group_size: a group
// of plain values read from the column's text (see set_text) keeps one base
// offset and, for each value, two bytes of distance from it; a value's
// length is where its word ends in the text. Any other value (quoted, added
// later, a list, or too far from the group's first) makes its group keep
// full references. A loop of millions of numbers so costs two bytes a value
// beyond its text, and a column never needs one huge block nor a copy of
// itself while it grows.
class CifValueColumn {
public:
    static constexpr std::size_t group_bits = 8;
    static constexpr std::size_t group_size = std::size_t(1) << group_bits;
    // Columns up to this many values keep full references in one array
    // (a dictionary's loops are short): less than a store costs.
    static constexpr std::size_t small_limit = 32;

    CifValueColumn() = default;
    // A column whose plain values may be kept short: text is the NUL-ended
    // text they were read from, which outlives the column.
    explicit CifValueColumn(const char* text) : text_(text) {}
    CifValueColumn(const CifValueColumn& other);
    CifValueColumn& operator=(const CifValueColumn& other);
    CifValueColumn(CifValueColumn&& other) noexcept;
    // A column without text of its own takes the other's values and keeps
    // its text (the other's values are full references then).
    CifValueColumn& operator=(CifValueColumn&& other) noexcept;
    ~CifValueColumn();

    // The text plain values refer into; set before the first value.
    void set_text(const char* text) { text_ = text; }
    const char* text() const { return text_; }

    std::size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }

    CifValueRef operator[](std::size_t n) const {
        if (store_ != nullptr) return store_->at(n, text_);
        return size_ <= 1 ? single_ : small()[n];
    }
    // Copies the references of the values first to first + count - 1 to out.
    // The ends of the words kept in two bytes are found sixteen bytes at a
    // time up to the end of the column's text, when given, or else up to the
    // end of its last value (beyond that a byte at a time).
    void copy_refs(std::size_t first, std::size_t count, CifValueRef* out,
                   const char* text_end = nullptr) const;

    // Visits the values first to first + count - 1 in order: word(n, offset)
    // for a plain word kept in two bytes (its length is where the word ends
    // in text(), which the caller finds only if it needs it), full(n, ref)
    // for any other value.
    template <class Word, class Full>
    void visit(std::size_t first, std::size_t count, Word&& word, Full&& full) const {
        if (store_ == nullptr) {
            const CifValueRef* refs = size_ <= 1 ? &single_ : small();
            for (std::size_t n = first; n < first + count; ++n) full(n, refs[n]);
            return;
        }
        const Store& store = *store_;
        const std::size_t last = first + count;
        for (std::size_t n = first; n < last;) {
            const Group& group = store.groups[n >> group_bits];
            const std::size_t stop = std::min(last, ((n >> group_bits) + 1) << group_bits);
            if (group.wide != compact) {
                const CifValueRef* refs = store.wide[group.wide - 1].data();
                for (; n < stop; ++n) full(n, refs[n & (group_size - 1)]);
            } else {
                const std::uint16_t* distances = store.chunks[n >> chunk_bits].get() + (n & (chunk_size - 1));
                for (; n < stop; ++n) word(n, group.base + *distances++);
            }
        }
    }

    void push_back(CifValueRef ref) { push(ref, false); }
    // The fast path of the reader: a plain value of this column's text,
    // read up to the white space that ends it.
    void push_plain(CifValueRef ref) {
        Store* store = store_.get();
        if (store != nullptr && store->next != store->limit) {
            const std::uint32_t distance = ref.offset - store->base;
            if (distance <= 0xffff) {
                *store->next++ = static_cast<std::uint16_t>(distance);
                ++size_;
                return;
            }
        }
        push(ref, true);
    }

    // push_plain for count values, refs[0], refs[stride], ...: the reader
    // gathers the values of a loop's rows and hands each column its own.
    void append_plain(const CifValueRef* refs, std::size_t stride, std::size_t count);

    void set(std::size_t n, CifValueRef ref);
    void insert(std::size_t n, CifValueRef ref);
    void erase(std::size_t n);
    void pop_back();
    void clear();

    // The bytes kept beyond the object itself.
    std::size_t heap_bytes() const;

    // The length of the word at p: up to white space or a NUL (inline: a
    // column's values are found so one by one).
    static std::uint32_t word_length(const char* p) {
        const char* q = p;
        while (!cif_word_stops.stop[static_cast<unsigned char>(*q)]) ++q;
        return static_cast<std::uint32_t>(q - p);
    }
    // Whether c ends a word so (white space or a NUL).
    static bool word_stop(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\0'; }

private:
    static constexpr std::size_t chunk_bits = 20;  // distances kept in chunks of 2 MiB
    static constexpr std::size_t chunk_size = std::size_t(1) << chunk_bits;
    static constexpr std::uint32_t compact = 0;  // Group::wide of a group of distances

    struct ChunkDelete {
        std::size_t alignment = 0;  // 0: the default one
        void operator()(std::uint16_t* chunk) const;
    };
    using Chunk = std::unique_ptr<std::uint16_t[], ChunkDelete>;
    static Chunk make_chunk(std::size_t capacity);

    struct Group {
        std::uint32_t base = 0;        // the offset distances count from
        std::uint32_t wide = compact;  // else 1 + the index of its full references
    };

    // Kept apart, so that the many items of one value stay small.
    struct Store {
        std::vector<Group> groups;
        std::vector<Chunk> chunks;  // distances; the first grows by doubling up to chunk_size
        std::size_t first_capacity = 0;
        std::vector<std::vector<CifValueRef>> wide;  // grown as values come
        // Where the next plain value of the last group goes while it is short.
        std::uint16_t* next = nullptr;
        std::uint16_t* limit = nullptr;
        std::uint32_t base = 0;

        std::uint16_t& distance(std::size_t n) { return chunks[n >> chunk_bits][n & (chunk_size - 1)]; }
        std::uint16_t distance(std::size_t n) const { return chunks[n >> chunk_bits][n & (chunk_size - 1)]; }
        CifValueRef at(std::size_t n, const char* text) const {
            const Group& group = groups[n >> group_bits];
            if (group.wide != compact) return wide[group.wide - 1][n & (group_size - 1)];
            CifValueRef ref;
            ref.offset = group.base + distance(n);
            ref.bits = word_length(text + ref.offset);
            return ref;
        }
    };

    // The array of a small column (2 to small_limit values, no store): its
    // address is kept where a single value would be; it holds at least
    // std::bit_ceil(size_) references.
    CifValueRef* small() const { return std::bit_cast<CifValueRef*>(single_); }
    void set_small(CifValueRef* refs) { single_ = std::bit_cast<CifValueRef>(refs); }
    bool is_small() const { return store_ == nullptr && size_ >= 2; }
    void free_small();
    bool fits(CifValueRef ref, bool plain) const;
    void push(CifValueRef ref, bool plain);
    // Moves the values into a store whose first chunk has room for about
    // expected values.
    void make_store(std::size_t expected);
    void make_wide(std::size_t group, std::size_t count);
    void resume();

    std::unique_ptr<Store> store_;  // null while there are at most small_limit values
    const char* text_ = nullptr;
    CifValueRef single_;
    std::size_t size_ = 0;
};
