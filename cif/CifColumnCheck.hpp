// SPDX-License-Identifier: MIT
// The quick first look at a loop column's values, before the full check of doubtful ones.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

#include "cif/CifItemDefinition.hpp"
#include "cif/CifValueRef.hpp"

// The quick first look at the values of one loop column: accepts() says yes
// at once for the common valid values of the column's definition (a plain
// number, a listed code) and no for everything else, which then gets the
// full check (CifValueCheck) that finds the problem, if any. It keeps the
// check of millions of loop values to a few instructions each.
class CifColumnCheck {
public:
    explicit CifColumnCheck(const CifItemDefinition& definition);
    // A column whose every value gets the full check.
    CifColumnCheck() = default;

    // Whether no value of the column needs looking at (text without an
    // enumeration or range).
    bool accepts_everything() const { return kind_ == Kind::anything; }

    // The index of the first of count values (refs into text) that the
    // quick look does not accept, or count when it accepts them all. Values
    // read quoted, compound or added later are never accepted here.
    std::size_t first_doubtful(const CifValueRef* refs, std::size_t count, const char* text,
                               std::size_t text_size) const {
        switch (kind_) {
            case Kind::anything:
                return count;
            case Kind::number:
                return scan(refs, count, text, text_size, [this](const char* p, std::size_t n, bool wide) {
                    return (wide && n <= 8 && short_number(p, n)) || plain_number(p, n);
                });
            case Kind::code:
                return scan(refs, count, text, text_size,
                            [this](const char* p, std::size_t n, bool) { return listed(p, n); });
            case Kind::full_check:
                return 0;
        }
        return 0;
    }

    // wide: at least 8 bytes can be read from p (the value or text after it).
    bool accepts(const char* p, std::size_t n, bool wide) const {
        if (n == 1 && (*p == '?' || *p == '.')) return true;
        switch (kind_) {
            case Kind::anything:
                return true;
            case Kind::number:
                return (wide && n <= 8 && short_number(p, n)) || plain_number(p, n);
            case Kind::code:
                return listed(p, n);
            case Kind::full_check:
                return false;
        }
        return false;
    }

private:
    enum class Kind { anything, number, code, full_check };

    static bool is_digit(char c) { return static_cast<unsigned char>(c - '0') < 10; }

    template <class Test>
    static std::size_t scan(const CifValueRef* refs, std::size_t count, const char* text,
                            std::size_t text_size, Test test) {
        constexpr std::uint32_t special =
            CifValueRef::quoted_flag | CifValueRef::compound_flag | CifValueRef::added_flag;
        for (std::size_t i = 0; i < count; ++i) {
            const CifValueRef ref = refs[i];
            if ((ref.bits & special) != 0) return i;
            const char* p = text + ref.offset;
            const std::size_t n = ref.length();
            if (!test(p, n, ref.offset + 8 <= text_size) && !(n == 1 && (*p == '?' || *p == '.'))) return i;
        }
        return count;
    }

    bool listed(const char* p, std::size_t n) const {
        for (std::string_view code : codes_) {
            if (code.size() == n && std::memcmp(code.data(), p, n) == 0) return true;
        }
        return false;
    }

    // The plain-number test of up to 8 bytes at once, without branches on
    // the characters: digits, at most one point, a minus sign in front
    // where allowed, at least one digit. Values it does not pass (an
    // uncertainty, an exponent, a plus sign) go to plain_number.
    bool short_number(const char* p, std::size_t n) const {
        constexpr std::uint64_t high = 0x8080808080808080ull;
        constexpr std::uint64_t low7 = 0x7F7F7F7F7F7F7F7Full;
        std::uint64_t w;
        std::memcpy(&w, p, 8);
        const std::uint64_t keep = keep_masks[n];
        // Digits become 0-9, and the bytes after the value 0 (digits too).
        const std::uint64_t t = (w ^ 0x3030303030303030ull) & keep;
        const std::uint64_t digit = ~(((t & low7) + 0x7676767676767676ull) | t) & high;
        const std::uint64_t y = t ^ 0x1E1E1E1E1E1E1E1Eull;  // '.' becomes 0
        const std::uint64_t point = ~(((y & low7) + low7) | y) & high;
        const std::uint64_t minus = static_cast<std::uint64_t>(negative_ok_ && (w & 0xFF) == '-') << 7;
        const std::uint64_t points_allowed = point_ok_ ? (point & (point - 1)) : point;
        return (digit | point | minus) == high && points_allowed == 0 && (digit & keep) != 0;
    }

    static constexpr std::uint64_t keep_masks[9] = {0,
                                                    0xFFull,
                                                    0xFFFFull,
                                                    0xFFFFFFull,
                                                    0xFFFFFFFFull,
                                                    0xFFFFFFFFFFull,
                                                    0xFFFFFFFFFFFFull,
                                                    0xFFFFFFFFFFFFFFull,
                                                    ~0ull};

    // Digits with an optional sign and point, and an uncertainty where
    // allowed; no exponent (left to the full check).
    bool plain_number(const char* p, std::size_t n) const {
        const char* end = p + n;
        if (*p == '-') {
            if (!negative_ok_) return false;
            ++p;
        } else if (*p == '+') {
            ++p;
        }
        const char* start = p;
        while (p < end && is_digit(*p)) ++p;
        std::size_t digits = static_cast<std::size_t>(p - start);
        if (p < end && *p == '.') {
            if (!point_ok_) return false;
            const char* fraction = ++p;
            while (p < end && is_digit(*p)) ++p;
            digits += static_cast<std::size_t>(p - fraction);
        }
        if (digits == 0) return false;
        if (p == end) return true;
        if (*p != '(' || !uncertainty_ok_) return false;
        const char* su = ++p;
        while (p < end && is_digit(*p)) ++p;
        return p != su && p + 1 == end && *p == ')';
    }

    Kind kind_ = Kind::full_check;
    bool negative_ok_ = true;
    bool uncertainty_ok_ = false;
    bool point_ok_ = true;  // false for whole numbers
    std::vector<std::string_view> codes_;
};
