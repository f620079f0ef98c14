// SPDX-License-Identifier: MIT
// The items of a block by name, as an index the cross-checks ask instead of the block.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "cif/CifCheckName.hpp"
#include "cif/CifDataItem.hpp"
#include "support/THandle.hpp"

class CifDataBlock;

// The cross-checks ask a block for about a hundred names, most of which a
// small block lacks. This index, made once per block from its items' names,
// files each item under the name's key (CifCheckName); a name asked for
// with its key ready costs a probe or two and, when found, one comparison
// of the names (ASCII case ignored, as the block compares them). Its
// answers are those of the block. Blocks of very many names are not
// indexed: the block is asked itself.
class CifBlockNameFilter {
public:
    explicit CifBlockNameFilter(const CifDataBlock& block);
    ~CifBlockNameFilter();
    CifBlockNameFilter(const CifBlockNameFilter&) = delete;
    CifBlockNameFilter& operator=(const CifBlockNameFilter&) = delete;

    // Whether the block was too large to index (find() is not to be asked).
    bool asks_block() const { return slots_ == nullptr; }
    // The block's handle of the item of that name, or null when it holds none.
    const THandle<CifDataItem>* find(const CifCheckName& name) const {
        const std::uint64_t key = name.key();
        for (std::size_t at = key & mask_;; at = (at + 1) & mask_) {
            const Slot& slot = slots_[at];
            if (slot.generation != generation_) return nullptr;
            if (slot.key == key && named(*slot.item, name.text())) return slot.item;
        }
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
    // Whether the item's name is name, ASCII case ignored (out of line: the
    // probe above stays small enough to inline where names are asked).
    static bool named(const THandle<CifDataItem>& item, std::string_view name);

    // A slot is free unless it was filled for this filter: a table serves
    // block after block without being cleared in between.
    struct Slot {
        std::uint64_t key;
        const THandle<CifDataItem>* item;
        std::uint32_t generation;
    };
    // The table of the last filter of the thread, kept for the next block,
    // with the generation its slots were last filled in.
    struct Spare {
        std::unique_ptr<Slot[]> slots;
        std::size_t size = 0;
        std::uint32_t generation = 0;
    };
    static thread_local Spare spare_;

    const CifDataBlock* block_;
    std::unique_ptr<Slot[]> slots_;
    std::size_t size_ = 0;  // of slots_, of which mask_ + 1 are in use
    std::size_t mask_ = 0;
    std::uint32_t generation_ = 0;  // of the slots filled for this filter
    // Constant-initialised: asked without the call that would set it up first.
    static constinit thread_local const CifBlockNameFilter* current_;
};
