// SPDX-License-Identifier: MIT
// A data name the cross-checks ask for, with its key for a block's name index worked out once.
#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>
#include <type_traits>

// The key of a name as CifBlockNameFilter files it: cif_name_hash(), which
// every item keeps with its name (eight bytes at a time, each byte with its
// 0x20 bit set: a letter and its capital alike), worked out here so that the
// compiler can compute it. Names that are equal but for ASCII case have
// equal keys.
constexpr std::uint64_t cif_check_name_key(std::string_view name) {
    constexpr std::uint64_t case_bits = 0x2020202020202020ull;
    auto bytes = [&name](std::size_t at, std::size_t count) {
        std::uint64_t word = 0;
        if (std::is_constant_evaluated()) {
            for (std::size_t i = 0; i < count; ++i)
                word |= std::uint64_t(static_cast<unsigned char>(name[at + i])) << (8 * i);
        } else {
            std::memcpy(&word, name.data() + at, count);  // little-endian, as the loop above
        }
        return word;
    };
    const std::size_t size = name.size();
    std::uint64_t hash = size * 0x9E3779B97F4A7C15ull;
    std::size_t at = 0;
    for (; size - at >= 8; at += 8) {
        hash = (hash ^ (bytes(at, 8) | case_bits)) * 0xFF51AFD7ED558CCDull;
        hash ^= hash >> 32;
    }
    if (at < size) hash = (hash ^ (bytes(at, size - at) | case_bits)) * 0xFF51AFD7ED558CCDull;
    hash ^= hash >> 29;
    hash *= 0xC4CEB9FE1A85EC53ull;
    return hash ^ (hash >> 32);
}

// A name and its key. Written as a literal, the key is computed by the
// compiler, so a check that asks for a hundred names per block hashes none
// of them; a name known only at run time is made explicitly.
class CifCheckName {
public:
    template <std::size_t N>
    consteval CifCheckName(const char (&text)[N])
        : text_(text, N - 1), key_(cif_check_name_key(std::string_view(text, N - 1))) {}
    explicit CifCheckName(std::string_view text) : text_(text), key_(cif_check_name_key(text)) {}

    std::string_view text() const { return text_; }
    std::uint64_t key() const { return key_; }

private:
    std::string_view text_;
    std::uint64_t key_;
};
