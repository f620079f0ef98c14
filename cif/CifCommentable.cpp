// SPDX-License-Identifier: MIT
// The comment text that blocks and data items carry.
#include "cif/CifCommentable.hpp"

#include <cstdlib>
#include <cstring>
#include <new>
#include <stdexcept>

namespace {

constexpr std::size_t header_bytes = 4 * sizeof(std::uint32_t);

struct LoneHash {
    std::uint32_t lengths[4];
    char text[4];
};
constexpr LoneHash lone_hash{{1, 0, 0, 0}, "#"};

const char* text_of(const std::uint32_t* packed) { return reinterpret_cast<const char*>(packed + 4); }

std::size_t total_of(const std::uint32_t* packed) {
    return std::size_t(packed[0]) + packed[1] + packed[2] + packed[3];
}

std::uint32_t* copy_of(const std::uint32_t* packed) {
    if (packed == nullptr || packed == lone_hash.lengths) return const_cast<std::uint32_t*>(packed);
    const std::size_t bytes = header_bytes + total_of(packed);
    void* copy = std::malloc(bytes);
    if (copy == nullptr) throw std::bad_alloc();
    std::memcpy(copy, packed, bytes);
    return static_cast<std::uint32_t*>(copy);
}

}  // namespace

CifCommentable::CifCommentable(const CifCommentable& other) : packed_(copy_of(other.packed_)) {}

CifCommentable::CifCommentable(CifCommentable&& other) noexcept : packed_(other.packed_) {
    other.packed_ = nullptr;
}

CifCommentable& CifCommentable::operator=(const CifCommentable& other) {
    if (this != &other) {
        const std::uint32_t* copy = copy_of(other.packed_);
        release();
        packed_ = copy;
    }
    return *this;
}

CifCommentable& CifCommentable::operator=(CifCommentable&& other) noexcept {
    if (this != &other) {
        release();
        packed_ = other.packed_;
        other.packed_ = nullptr;
    }
    return *this;
}

CifCommentable::~CifCommentable() { release(); }

void CifCommentable::release() {
    if (packed_ != lone_hash.lengths) std::free(const_cast<std::uint32_t*>(packed_));
    packed_ = nullptr;
}

std::string_view CifCommentable::part(int type) const {
    if (packed_ == nullptr) return std::string_view();
    std::size_t offset = 0;
    for (int i = 0; i < type; ++i) offset += packed_[i];
    return std::string_view(text_of(packed_) + offset, packed_[type]);
}

std::string CifCommentable::comments(CommentType type) const {
    if (type < 0 || type > 3) return std::string();
    return std::string(part(type));
}

// Makes the part of that kind first + second (either may be empty), the
// other kinds as they were. The texts may lie in the record replaced.
void CifCommentable::replace(int type, std::string_view first, std::string_view second) {
    std::string_view parts[4];
    for (int i = 0; i < 4; ++i) parts[i] = part(i);
    std::size_t lengths[4] = {parts[0].size(), parts[1].size(), parts[2].size(), parts[3].size()};
    lengths[type] = first.size() + second.size();
    const std::size_t total = lengths[0] + lengths[1] + lengths[2] + lengths[3];
    if (total == 0) {
        release();
        return;
    }
    if (type == preceding_comment && total == 1 && first.size() + second.size() == 1 &&
        (first.empty() ? second : first) == "#") {
        release();
        packed_ = lone_hash.lengths;
        return;
    }
    if (total > UINT32_MAX) throw std::length_error("comment text too long");
    auto* packed = static_cast<std::uint32_t*>(std::malloc(header_bytes + total));
    if (packed == nullptr) throw std::bad_alloc();
    char* out = reinterpret_cast<char*>(packed + 4);
    for (int i = 0; i < 4; ++i) {
        packed[i] = static_cast<std::uint32_t>(lengths[i]);
        if (i == type) {
            if (!first.empty()) std::memcpy(out, first.data(), first.size());
            if (!second.empty()) std::memcpy(out + first.size(), second.data(), second.size());
        } else if (!parts[i].empty()) {
            std::memcpy(out, parts[i].data(), parts[i].size());
        }
        out += lengths[i];
    }
    release();
    packed_ = packed;
}

void CifCommentable::set_comments(std::string_view text, CommentType type) {
    if (type < 0 || type > 3) return;
    if (text.empty() && part(type).empty()) return;
    replace(type, text, std::string_view());
}

void CifCommentable::append_comments(std::string_view text, CommentType type) {
    if (text.empty() || type < 0 || type > 3) return;
    std::string_view held = part(type);
    if (held.empty()) {
        replace(type, text, std::string_view());
        return;
    }
    // Held text, a line end, the new text: the line end goes with the held part.
    std::string joined;
    joined.reserve(held.size() + 1 + text.size());
    joined.append(held).append(1, '\n').append(text);
    replace(type, joined, std::string_view());
}
