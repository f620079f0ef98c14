// SPDX-License-Identifier: MIT
// The names of the blocks read so far, case ignored, to tell a block name used before.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

class CifBlockList;

// The names of the blocks read so far (case ignored) in a flat table at
// most three quarters full: a slot holds the upper half of a name's hash
// (which places it) and 1 + the block's place in the document's list, so
// that blocks are looked at only on a match. Files of millions of blocks
// exist: a large table has pages of its own, and when it grows the old
// table gives its pages back while it is emptied into the new one, so the
// two are never held whole at once.
class CifBlockNames {
public:
    CifBlockNames() = default;
    CifBlockNames(const CifBlockNames&) = delete;
    CifBlockNames& operator=(const CifBlockNames&) = delete;
    ~CifBlockNames();

    // The heading line of the first of blocks named so, or -1 when there is
    // none; then the block at place index, named so, is kept.
    int first_line(std::string_view name, std::size_t index, const CifBlockList& blocks);

private:
    struct Table {
        std::uint64_t* slots = nullptr;
        std::size_t size = 0;  // a power of two
    };
    static Table allocate(std::size_t size);
    static void release(const Table& table);
    // Gives back the pages wholly inside slots [from, to) of a large table.
    static void release_part(const Table& table, std::size_t from, std::size_t to);
    void grow();

    Table table_;
    std::size_t count_ = 0;
};
