// SPDX-License-Identifier: MIT
// A document's data blocks in text order; empty ones read stay records until handed out.
#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <iterator>
#include <memory>
#include <mutex>
#include <string_view>

#include "cif/CifDataBlock.hpp"
#include "cif/CifDictionary.hpp"
#include "cif/CifTextStore.hpp"
#include "support/THandle.hpp"

// A document's data blocks in text order. A block read from text is kept as
// a record of 16 bytes (where its name stands in the text, its lines) for as
// long as nothing is in it: the reader makes its object when the first item,
// loop, save frame or comment comes, and every other block is made when it
// is first handed out (operator[], iterators), then kept. Files of millions
// of empty blocks so cost little, and the checks pass over them through
// filled() and holds_nothing() without making them.
//
// Threads: const accesses may run on several threads at once: a record is made
// once, under the list's lock, and made handles never move (handed out by
// reference, without a lock); copying a handle counts without atomics, as
// THandle does. Changing the list must not overlap any other access.
class CifBlockList {
public:
    class iterator;
    class filled_iterator;

    CifBlockList() = default;
    CifBlockList(const CifBlockList&) = delete;
    CifBlockList& operator=(const CifBlockList&) = delete;
    ~CifBlockList() = default;

    // Drops every block; blocks made from records later get this dictionary
    // and store (whose text holds the records' names).
    void reset(THandle<CifDictionary> dictionary, THandle<CifTextStore> store);

    std::size_t size() const { return records_.size(); }
    bool empty() const { return records_.empty(); }

    // The n-th block (n < size()), made from its record on first access.
    const THandle<CifDataBlock>& operator[](std::size_t n) const;
    const THandle<CifDataBlock>& front() const { return (*this)[0]; }
    const THandle<CifDataBlock>& back() const { return (*this)[size() - 1]; }
    iterator begin() const;
    iterator end() const;

    // What is known of the n-th block without making it.
    std::string_view name(std::size_t n) const;
    int line(std::size_t n) const;
    int last_line(std::size_t n) const;
    // A record's end line is the line before the next heading read (the end
    // of the text for the last), as the reader gives a made block's.
    int end_line(std::size_t n) const;
    bool made(std::size_t n) const { return slot_of(records_[n]) != 0; }
    // Whether the block holds no items, loops, save frames or comments.
    bool holds_nothing(std::size_t n) const;

    // The blocks that hold something, in text order; the others are passed
    // over without being made.
    struct Filled {
        const CifBlockList* list;
        filled_iterator begin() const;
        filled_iterator end() const;
    };
    Filled filled() const { return Filled{this}; }

    // A block read from text: its name is name_length bytes at name_offset
    // of the store's text, its heading on line. It stays a record until
    // something is added to it or it is handed out.
    void add_record(std::size_t name_offset, std::size_t name_length, int line);
    void push_back(THandle<CifDataBlock> block);
    iterator insert(iterator position, THandle<CifDataBlock> block);
    // The last line that holds any of the n-th block's text (a made block's
    // end line is this too, until the reader sets it).
    void set_last_line(std::size_t n, int last);
    // The number of lines of the text the records were read from.
    void set_line_count(int lines) { line_count_ = lines; }

    // The n-th block (not made) as its record tells, made apart: the list
    // does not keep it (printing millions of records keeps none of them).
    THandle<CifDataBlock> unmade_block(std::size_t n) const;

private:
    struct Record {
        std::uint32_t name_offset = 0;
        std::uint16_t name_length = 0;
        std::uint16_t last_gap = 0;  // last line - heading line
        std::int32_t line = -1;
        // 1 + the made block's place in made_, 0 while there is none; read
        // and written through atomic_ref (made from const accesses).
        std::uint32_t slot = 0;
    };
    static_assert(sizeof(Record) == 16);

    static std::uint32_t slot_of(const Record& record);
    const THandle<CifDataBlock>& made_block(std::uint32_t slot) const;
    const THandle<CifDataBlock>& make(std::size_t n) const;
    // Keeps the block in made_ and returns its slot (the lock held or the list not shared).
    std::uint32_t keep(THandle<CifDataBlock> block) const;

    THandle<CifDictionary> dictionary_;
    THandle<CifTextStore> store_;
    std::deque<Record> records_;
    int line_count_ = 0;
    mutable std::mutex making_;
    // The made blocks in segments of 16, 32, 64, ... handles that never move.
    static constexpr int segment_count = 28;
    mutable std::array<std::unique_ptr<THandle<CifDataBlock>[]>, segment_count> segments_;
    mutable std::uint32_t made_count_ = 0;
};

class CifBlockList::iterator {
public:
    using iterator_category = std::random_access_iterator_tag;
    using value_type = THandle<CifDataBlock>;
    using difference_type = std::ptrdiff_t;
    using pointer = const THandle<CifDataBlock>*;
    using reference = const THandle<CifDataBlock>&;

    iterator() = default;
    iterator(const CifBlockList* list, std::size_t n) : list_(list), n_(n) {}

    reference operator*() const { return (*list_)[n_]; }
    pointer operator->() const { return &(*list_)[n_]; }
    reference operator[](difference_type d) const { return (*list_)[n_ + static_cast<std::size_t>(d)]; }
    std::size_t index() const { return n_; }

    iterator& operator++() { return *this += 1; }
    iterator operator++(int) {
        iterator before = *this;
        ++*this;
        return before;
    }
    iterator& operator--() { return *this -= 1; }
    iterator operator--(int) {
        iterator before = *this;
        --*this;
        return before;
    }
    iterator& operator+=(difference_type d) {
        n_ = static_cast<std::size_t>(static_cast<difference_type>(n_) + d);
        return *this;
    }
    iterator& operator-=(difference_type d) { return *this += -d; }
    friend iterator operator+(iterator it, difference_type d) { return it += d; }
    friend iterator operator+(difference_type d, iterator it) { return it += d; }
    friend iterator operator-(iterator it, difference_type d) { return it -= d; }
    friend difference_type operator-(const iterator& a, const iterator& b) {
        return static_cast<difference_type>(a.n_) - static_cast<difference_type>(b.n_);
    }
    bool operator==(const iterator& other) const = default;
    auto operator<=>(const iterator& other) const = default;

private:
    const CifBlockList* list_ = nullptr;
    std::size_t n_ = 0;
};

class CifBlockList::filled_iterator {
public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = THandle<CifDataBlock>;
    using difference_type = std::ptrdiff_t;
    using pointer = const THandle<CifDataBlock>*;
    using reference = const THandle<CifDataBlock>&;

    filled_iterator() = default;
    filled_iterator(const CifBlockList* list, std::size_t n) : list_(list), n_(next(list, n)) {}

    reference operator*() const { return (*list_)[n_]; }
    pointer operator->() const { return &(*list_)[n_]; }
    std::size_t index() const { return n_; }
    filled_iterator& operator++() {
        n_ = next(list_, n_ + 1);
        return *this;
    }
    filled_iterator operator++(int) {
        filled_iterator before = *this;
        ++*this;
        return before;
    }
    bool operator==(const filled_iterator& other) const = default;

private:
    static std::size_t next(const CifBlockList* list, std::size_t n) {
        while (n < list->size() && list->holds_nothing(n)) ++n;
        return n;
    }

    const CifBlockList* list_ = nullptr;
    std::size_t n_ = 0;
};

inline CifBlockList::iterator CifBlockList::begin() const { return iterator(this, 0); }
inline CifBlockList::iterator CifBlockList::end() const { return iterator(this, size()); }
inline CifBlockList::filled_iterator CifBlockList::Filled::begin() const { return filled_iterator(list, 0); }
inline CifBlockList::filled_iterator CifBlockList::Filled::end() const {
    return filled_iterator(list, list->size());
}
