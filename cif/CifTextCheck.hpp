// SPDX-License-Identifier: MIT
// Checks every line of a text for the characters CIF allows and for its length.
#pragma once

#include <bit>
#include <cstdint>
#include <string_view>

#include "cif/CifErrorSink.hpp"
#include "cif/CifParserSettings.hpp"
#include "cif/CifTextWindow.hpp"

// Checks every line of a text for the characters CIF allows (printable
// ASCII in CIF 1.1, valid UTF-8 without control characters in CIF 2.0) and
// for its length, one message per line and kind.
//
// The text is checked from front to back, 64 bytes at a time: either all
// at once (check), or as the lexer goes, which hands over the windows it
// has classified anyway (take) so that its fast path needs no second pass
// over the text; the check reads what the lexer skips itself.
class CifTextCheck {
public:
    CifTextCheck(const CifParserSettings& settings, int version, CifErrorSink& errors);

    // Checks the whole text; start skips a byte-order mark on the first line.
    void check(std::string_view text, std::size_t start) {
        begin(text, start);
        finish();
    }

    // Checking as the text is read: begin, then any number of take, then finish.
    void begin(std::string_view text, std::size_t start);
    // The 64 bytes at p, with a bit per byte for the line ends and for the
    // usual bytes (printable ASCII, TAB and LF); p + 64 lies within the text.
    // Windows may overlap what is checked, and may come in any order, but
    // only those from where the check stands onward save it any reading.
    void take(const char* p, std::uint64_t newlines, std::uint64_t usual) {
        if (p == done_ && usual == ~std::uint64_t(0) && !short_lines_) {
            clean_window(newlines, 64);
        } else {
            take_window(p, newlines, usual);
        }
    }
    // Checks the rest of the text.
    void finish();

private:
    // count bytes from done_ without unusual ones, their line ends in newlines.
    void clean_window(std::uint64_t newlines, unsigned count) {
        if (newlines != 0) {
            const char* stop = done_ + std::countr_zero(newlines);
            if (dirty_ || static_cast<std::size_t>(stop - line_start_) > limit_)
                check_line(line_start_, stop, line_);
            line_ += cif_count_bits(newlines);
            line_start_ = done_ + 64 - std::countl_zero(newlines);
            dirty_ = false;
        }
        done_ += count;
    }
    void take_window(const char* p, std::uint64_t newlines, std::uint64_t usual);
    // count bytes from done_; the bits of the bytes past them are clear.
    void window(std::uint64_t newlines, std::uint64_t unusual, unsigned count);
    // Reads on from done_ to p in windows of its own.
    void read_to(const char* p);

    void check_line(const char* begin, const char* end, int line);
    bool check_ascii(const char* begin, const char* end, int line);
    void check_utf8(const char* begin, const char* end, int line);

    std::size_t limit_;
    bool short_lines_;  // a line may be too long within 64 bytes
    int version_;
    CifErrorSink& errors_;

    const char* end_ = nullptr;
    const char* done_ = nullptr;        // everything before is checked but the line it is on
    const char* line_start_ = nullptr;  // where the line done_ is on starts
    bool dirty_ = false;                // that line holds an unusual byte before done_
    int line_ = 1;                      // its number
};
