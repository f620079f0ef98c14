// SPDX-License-Identifier: MIT
// The text a document was read from and the values given to its items afterwards.
#pragma once

#include <cstddef>
#include <deque>
#include <forward_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "cif/CifArena.hpp"
#include "cif/CifDictionary.hpp"
#include "cif/CifNamePool.hpp"
#include "cif/CifValueRef.hpp"

// The text a document was read from, with line ends made LF, and the
// values given to items afterwards. Values refer into it by CifValueRef;
// both parts only grow, so views of values stay valid while the store lives.
// It also keeps the data names of its items, each once, and the arena the
// items and blocks of its document are made in.
class CifTextStore {
public:
    CifTextStore() = default;
    explicit CifTextStore(std::string text) : text_(std::move(text)) {}
    CifTextStore(const CifTextStore&) = delete;
    CifTextStore& operator=(const CifTextStore&) = delete;
    virtual ~CifTextStore() = default;

    const std::string& text() const { return text_; }

    std::string_view view(CifValueRef ref) const {
        if (ref.added()) return (*added_)[ref.offset];
        return std::string_view(text_.data() + ref.offset, ref.length());
    }

    // Keeps a copy of the value; flags may hold quoted_flag or compound_flag.
    CifValueRef add(std::string_view value, std::uint32_t flags = 0);

    std::size_t added_count() const { return added_ ? added_->size() : 0; }

    // The name kept once (as written; names repeat across blocks and frames).
    const CifKeptName& intern(std::string_view name);

    // A new item or block of this store's document, made in its arena.
    template <class T, class... Args>
    THandle<T> make(Args&&... args) {
        return arena_.make<T>(std::forward<Args>(args)...);
    }
    const CifArena& arena() const { return arena_; }

    // The dictionary's handle kept once for the store's items: an item
    // holds a pointer to it (one word instead of a handle's two) and keeps
    // the dictionary alive through its handle of the store. Null for none.
    const THandle<CifDictionary>* keep(const THandle<CifDictionary>& dictionary);

private:
    std::string text_;
    // Made on first use: most documents never add a value, and most names
    // are the process's (CifNamePool).
    std::unique_ptr<std::deque<std::string>> added_;
    std::unique_ptr<std::deque<CifKeptName>> names_;
    std::vector<const CifKeptName*> name_slots_;  // the names by hash
    std::size_t name_count_ = 0;
    CifArena arena_;
    std::forward_list<THandle<CifDictionary>> dictionaries_;  // mostly one; nothing while none
};
