// SPDX-License-Identifier: MIT
// Data names and block names compared, lower-cased and hashed without regard to case.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

// CIF compares data names and block names without regard to (ASCII) case.

inline char cif_lower(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c + ('a' - 'A')) : c; }

inline std::string cif_lowercase(std::string_view text) {
    std::string result(text);
    for (char& c : result) c = cif_lower(c);
    return result;
}

// The last 1-7 bytes of a name, ending at end, in the low bytes of a word
// (as copying them into a word of zeros gives): one load of the eight bytes
// before end when the name has them, a small loop otherwise. A copy of a
// length only known when running is a call to the C library.
inline std::uint64_t cif_tail_word(const char* end, std::size_t left, bool eight_before) {
    std::uint64_t word = 0;
    if (eight_before) {
        std::memcpy(&word, end - 8, 8);
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
        return word & ((std::uint64_t(1) << (8 * left)) - 1);
#else
        return word >> (8 * (8 - left));
#endif
    }
    const char* start = end - left;
    for (std::size_t i = 0; i < left; ++i) word |= std::uint64_t(static_cast<unsigned char>(start[i])) << (8 * i);
    return word;
}

// Eight bytes with their capitals A-Z made small letters, all at once:
// per byte, a high bit where the byte is at least "A" and not above "Z"
// (bytes with their own high bit set are left as they are), shifted down
// to the 0x20 bit that tells a capital from its small letter.
inline std::uint64_t cif_lower_word(std::uint64_t word) {
    constexpr std::uint64_t ones = 0x0101010101010101ull;
    const std::uint64_t low_seven = word & (0x7F * ones);
    const std::uint64_t from_a = low_seven + (0x80 - 'A') * ones;
    const std::uint64_t beyond_z = low_seven + (0x80 - 'Z' - 1) * ones;
    const std::uint64_t capitals = from_a & ~beyond_z & ~word & (0x80 * ones);
    return word | (capitals >> 2);
}

inline bool cif_iequals(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    const char* p = a.data();
    const char* q = b.data();
    std::size_t left = a.size();
    for (; left >= 8; p += 8, q += 8, left -= 8) {
        std::uint64_t x;
        std::uint64_t y;
        std::memcpy(&x, p, 8);
        std::memcpy(&y, q, 8);
        if (x != y && cif_lower_word(x) != cif_lower_word(y)) return false;
    }
    if (left == 0) return true;
    const bool eight_before = a.size() >= 8;
    const std::uint64_t x = cif_tail_word(p + left, left, eight_before);
    const std::uint64_t y = cif_tail_word(q + left, left, eight_before);
    return x == y || cif_lower_word(x) == cif_lower_word(y);
}

inline bool cif_istarts_with(std::string_view text, std::string_view prefix) {
    return text.size() >= prefix.size() && cif_iequals(text.substr(0, prefix.size()), prefix);
}

// A block name without its "data_" heading, as blocks keep it.
inline std::string cif_block_code(std::string_view name) {
    if (cif_istarts_with(name, "data_")) name.remove_prefix(5);
    return std::string(name);
}

// A hash of a name that ignores (ASCII) case: eight bytes at a time, each
// byte with its 0x20 bit set, which a letter and its capital share (other
// bytes that then meet only collide, they never tell equal names apart).
inline std::uint64_t cif_name_hash(std::string_view name) {
    constexpr std::uint64_t case_bits = 0x2020202020202020ull;
    std::uint64_t hash = name.size() * 0x9E3779B97F4A7C15ull;
    const char* p = name.data();
    std::size_t left = name.size();
    for (; left >= 8; p += 8, left -= 8) {
        std::uint64_t word;
        std::memcpy(&word, p, 8);
        hash = (hash ^ (word | case_bits)) * 0xFF51AFD7ED558CCDull;
        hash ^= hash >> 32;
    }
    if (left > 0) {
        const std::uint64_t word = cif_tail_word(p + left, left, name.size() >= 8);
        hash = (hash ^ (word | case_bits)) * 0xFF51AFD7ED558CCDull;
    }
    hash ^= hash >> 29;
    hash *= 0xC4CEB9FE1A85EC53ull;
    return hash ^ (hash >> 32);
}

// Hashing and comparing names without regard to case, for indexes keyed by
// views of the names themselves.
struct CifNameHash {
    std::size_t operator()(std::string_view name) const noexcept { return cif_name_hash(name); }
};

struct CifNameEqual {
    bool operator()(std::string_view a, std::string_view b) const noexcept { return cif_iequals(a, b); }
};
