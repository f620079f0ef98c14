// SPDX-License-Identifier: MIT
// Checks every line of a text for the characters CIF allows and for its length.
#include "cif/CifTextCheck.hpp"

#include <bit>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

#include "cif/CifCharacters.hpp"
#include "cif/CifTextWindow.hpp"

namespace {

// CIF 1.1's own limit, which a larger setting does not lift.
constexpr std::size_t cif_line_limit = 2048;

std::string byte_text(unsigned char c) {
    char text[8];
    std::snprintf(text, sizeof text, "0x%02X", c);
    return text;
}

std::string code_point_text(std::uint32_t code) {
    char text[16];
    std::snprintf(text, sizeof text, "U+%04X", static_cast<unsigned>(code));
    return text;
}

// Whether a word of eight bytes holds only printable ASCII (32-126).
bool all_printable(std::uint64_t word) {
    constexpr std::uint64_t ones = 0x0101010101010101ull;
    constexpr std::uint64_t highs = 0x8080808080808080ull;
    std::uint64_t below_space = (word - ones * 0x20) & ~word & highs;
    std::uint64_t from_del = ((word + ones) | word) & highs;
    return (below_space | from_del) == 0;
}

bool allowed_in_cif2(std::uint32_t code) {
    if (code < 0x20) return code == '\t' || code == '\n' || code == '\r';
    if (code >= 0x7F && code <= 0x9F) return false;
    if (code >= 0xD800 && code <= 0xDFFF) return false;
    if (code >= 0xFDD0 && code <= 0xFDEF) return false;
    if ((code & 0xFFFE) == 0xFFFE) return false;
    return code <= 0x10FFFF;
}

}  // namespace

CifTextCheck::CifTextCheck(const CifParserSettings& settings, int version, CifErrorSink& errors)
    : limit_(settings.line_length > 0 && static_cast<std::size_t>(settings.line_length) < cif_line_limit
                 ? static_cast<std::size_t>(settings.line_length)
                 : cif_line_limit),
      short_lines_(limit_ < 64),
      version_(version),
      errors_(errors) {}

void CifTextCheck::begin(std::string_view text, std::size_t start) {
    end_ = text.data() + text.size();
    done_ = line_start_ = text.data() + start;
    dirty_ = false;
    line_ = 1;
}

void CifTextCheck::take_window(const char* p, std::uint64_t newlines, std::uint64_t usual) {
    if (p + 64 <= done_) return;
    if (p > done_) read_to(p);
    // The bytes from done_ on; those before were checked already.
    const unsigned skip = static_cast<unsigned>(done_ - p);
    window(newlines >> skip, ~usual >> skip, 64 - skip);
}

void CifTextCheck::window(std::uint64_t newlines, std::uint64_t unusual, unsigned count) {
    if (unusual == 0 && !short_lines_) {
        clean_window(newlines, count);
        return;
    }
    // A line is looked at closely when it holds an unusual byte or is too long.
    auto below = [](unsigned bit) { return bit >= 64 ? ~std::uint64_t(0) : (std::uint64_t(1) << bit) - 1; };
    unsigned from = 0;
    for (; newlines != 0; newlines &= newlines - 1) {
        const unsigned at = static_cast<unsigned>(std::countr_zero(newlines));
        if ((unusual & below(at) & ~below(from)) != 0) dirty_ = true;
        const char* stop = done_ + at;
        if (dirty_ || static_cast<std::size_t>(stop - line_start_) > limit_)
            check_line(line_start_, stop, line_);
        ++line_;
        line_start_ = stop + 1;
        dirty_ = false;
        from = at + 1;
    }
    if ((unusual & ~below(from)) != 0) dirty_ = true;
    done_ += count;
}

void CifTextCheck::read_to(const char* p) {
#if defined(__SSE2__)
    while (p - done_ >= 64) {
        const CifTextWindow bytes(done_, false);
        take(done_, bytes.newline, bytes.usual);
    }
    if (p > done_) {
        // Part of a window: p + 64 lies within the text, and so do these 64 bytes.
        const CifTextWindow bytes(done_, false);
        const unsigned count = static_cast<unsigned>(p - done_);
        const std::uint64_t mask = (std::uint64_t(1) << count) - 1;
        window(bytes.newline & mask, ~bytes.usual & mask, count);
    }
#else
    (void)p;
#endif
}

void CifTextCheck::finish() {
#if defined(__SSE2__)
    if (end_ - done_ >= 64) read_to(end_ - 64);
#endif
    // The rest, from the start of its line, line by line.
    const char* p = line_start_;
    int line = line_;
    while (p < end_) {
        const char* newline =
            static_cast<const char*>(std::memchr(p, '\n', static_cast<std::size_t>(end_ - p)));
        const char* stop = newline == nullptr ? end_ : newline;
        check_line(p, stop, line);
        p = stop + 1;
        ++line;
    }
    done_ = line_start_ = end_;
    line_ = line;
}

void CifTextCheck::check_line(const char* begin, const char* end, int line) {
    std::size_t length = static_cast<std::size_t>(end - begin);
    bool ascii = check_ascii(begin, end, line);
    if (!ascii && version_ >= 2) check_utf8(begin, end, line);
    if (length > limit_) {
        if (!ascii && version_ >= 2) {
            // Characters, not bytes: continuation bytes do not count.
            for (const char* p = begin; p < end; ++p) {
                if ((static_cast<unsigned char>(*p) & 0xC0) == 0x80) --length;
            }
        }
        if (length > limit_)
            errors_.add(CifError::line_too_long, line, std::string(), std::to_string(limit_));
    }
}

bool CifTextCheck::check_ascii(const char* begin, const char* end, int line) {
    const char* p = begin;
    while (end - p >= 8) {
        std::uint64_t word;
        std::memcpy(&word, p, sizeof word);
        if (!all_printable(word)) break;
        p += 8;
    }
    for (; p < end; ++p) {
        unsigned char c = static_cast<unsigned char>(*p);
        if (c >= 32 && c < 127) continue;
        if (c == '\t') continue;
        if (version_ >= 2) return false;  // UTF-8 and control characters: check_utf8
        if (is_bad_nonprinting_char(c) || is_bad_printing_char(c)) {
            errors_.add(CifError::invalid_character, line, std::string(), byte_text(c));
            return true;
        }
    }
    return true;
}

void CifTextCheck::check_utf8(const char* begin, const char* end, int line) {
    const unsigned char* p = reinterpret_cast<const unsigned char*>(begin);
    const unsigned char* stop = reinterpret_cast<const unsigned char*>(end);
    bool reported_character = false;
    while (p < stop) {
        unsigned char c = *p;
        if (c < 0x80) {
            if (!reported_character && !allowed_in_cif2(c)) {
                errors_.add(CifError::invalid_character, line, std::string(), code_point_text(c));
                reported_character = true;
            }
            ++p;
            continue;
        }
        int extra = c >= 0xF0 && c <= 0xF4 ? 3 : c >= 0xE0 ? 2 : c >= 0xC2 && c < 0xE0 ? 1 : -1;
        if (c >= 0xF5) extra = -1;
        std::uint32_t code = extra == 1 ? (c & 0x1Fu) : extra == 2 ? (c & 0x0Fu) : (c & 0x07u);
        bool valid = extra > 0 && stop - p > extra;
        for (int i = 1; valid && i <= extra; ++i) {
            if ((p[i] & 0xC0) != 0x80) valid = false;
            code = (code << 6) | (p[i] & 0x3Fu);
        }
        // Overlong forms and values past U+10FFFF are not UTF-8.
        if (valid && ((extra == 2 && code < 0x800) || (extra == 3 && (code < 0x10000 || code > 0x10FFFF)))) {
            valid = false;
        }
        if (!valid) {
            std::string bytes;
            for (int i = 0; i < 4 && p + i < stop; ++i) {
                if (i > 0 && (p[i] & 0xC0) != 0x80) break;
                if (i > 0) bytes += ' ';
                bytes += byte_text(p[i]);
            }
            errors_.add(CifError::invalid_utf8, line, std::string(), bytes);
            return;
        }
        if (!reported_character && !allowed_in_cif2(code)) {
            errors_.add(CifError::invalid_character, line, std::string(), code_point_text(code));
            reported_character = true;
        }
        p += extra + 1;
    }
}
