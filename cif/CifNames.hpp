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

inline bool cif_iequals(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (cif_lower(a[i]) != cif_lower(b[i])) return false;
    }
    return true;
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
        std::uint64_t word = 0;
        std::memcpy(&word, p, left);
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
