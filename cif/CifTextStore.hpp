// SPDX-License-Identifier: MIT
// The text a document was read from and the values given to its items afterwards.
#pragma once

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>

#include "cif/CifValueRef.hpp"

// The text a document was read from, with line ends made LF, and the
// values given to items afterwards. Values refer into it by CifValueRef;
// both parts only grow, so views of values stay valid while the store lives.
class CifTextStore {
public:
    CifTextStore() = default;
    explicit CifTextStore(std::string text) : text_(std::move(text)) {}
    CifTextStore(const CifTextStore&) = delete;
    CifTextStore& operator=(const CifTextStore&) = delete;
    virtual ~CifTextStore() = default;

    const std::string& text() const { return text_; }

    std::string_view view(CifValueRef ref) const {
        if (ref.added()) return added_[ref.offset];
        return std::string_view(text_.data() + ref.offset, ref.length());
    }

    // Keeps a copy of the value; flags may hold quoted_flag or compound_flag.
    CifValueRef add(std::string_view value, std::uint32_t flags = 0);

    std::size_t added_count() const { return added_.size(); }

private:
    std::string text_;
    std::deque<std::string> added_;
};
