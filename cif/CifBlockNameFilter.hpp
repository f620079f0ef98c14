// SPDX-License-Identifier: MIT
// The names a block holds, as a filter the cross-checks ask before looking a name up.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

class CifDataBlock;

// The cross-checks ask a block for about a hundred names, most of which a
// small block lacks. This filter, made once per block from its items' names,
// answers "not held" for most of the missing ones at the cost of two loads
// and a multiplication, without hashing the whole name or probing the
// block's table; a name it lets through is looked up as before. It never
// turns away a name the block holds (ASCII case aside), so answers are those
// of the block itself. Blocks of very many names let every name through.
class CifBlockNameFilter {
public:
    explicit CifBlockNameFilter(const CifDataBlock& block);

    // False only when the block holds no item of this name.
    bool may_hold(std::string_view name) const {
        if (all_) return true;
        const std::uint64_t key = key_of(name);
        return (bits_[(key >> 6) & (words - 1)] & (std::uint64_t{1} << (key & 63))) != 0 &&
               (bits_[(key >> 38) & (words - 1)] & (std::uint64_t{1} << ((key >> 32) & 63))) != 0;
    }

    // The filter that check_block() set up for this block on this thread;
    // null when it set up none or one of another block.
    static const CifBlockNameFilter* of(const CifDataBlock& block) {
        return current_ != nullptr && current_->block_ == &block ? current_ : nullptr;
    }

    // Makes a filter the thread's own while it lives (one block at a time).
    class Scope {
    public:
        explicit Scope(const CifBlockNameFilter& names);
        ~Scope();
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;

    private:
        const CifBlockNameFilter* previous_;
    };

private:
    static constexpr std::size_t words = 16;  // 1,024 bits
    static std::uint64_t key_of(std::string_view name);
    void add(std::string_view name);

    const CifDataBlock* block_;
    bool all_ = false;
    std::uint64_t bits_[words] = {};
    static thread_local const CifBlockNameFilter* current_;
};
