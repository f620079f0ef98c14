// SPDX-License-Identifier: MIT
// A data name the cross-checks ask for, with its key for a block's name index worked out once.
#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>
#include <type_traits>

// The key of a name as CifBlockNameFilter files it: the length, the first
// eight bytes after the leading underscore and the last eight, each byte
// with its 0x20 bit set (a letter and its capital alike), mixed. Names that
// are equal but for ASCII case have equal keys.
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
    const std::uint64_t head = size >= 9 ? bytes(1, 8) : bytes(0, size);
    const std::uint64_t tail = size >= 9 ? bytes(size - 8, 8) : 0;
    std::uint64_t key = (head | case_bits) * 0x9E3779B97F4A7C15ull;
    key ^= ((tail | case_bits) + size) * 0xC2B2AE3D27D4EB4Full;
    return key ^ (key >> 29);
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
