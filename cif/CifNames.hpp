// SPDX-License-Identifier: MIT
// Data names and block names compared, lower-cased and hashed without regard to case.
#pragma once

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

// Hashing and comparing names without regard to case, for indexes keyed by
// views of the names themselves.
struct CifNameHash {
    std::size_t operator()(std::string_view name) const noexcept {
        std::size_t hash = 14695981039346656037ull;
        for (char c : name) hash = (hash ^ static_cast<unsigned char>(cif_lower(c))) * 1099511628211ull;
        return hash;
    }
};

struct CifNameEqual {
    bool operator()(std::string_view a, std::string_view b) const noexcept { return cif_iequals(a, b); }
};
