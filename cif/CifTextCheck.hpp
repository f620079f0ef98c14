// SPDX-License-Identifier: MIT
// Checks every line of a text for the characters CIF allows and for its length.
#pragma once

#include <string_view>

#include "cif/CifErrorSink.hpp"
#include "cif/CifParserSettings.hpp"

// Checks every line of a text for the characters CIF allows (printable
// ASCII in CIF 1.1, valid UTF-8 without control characters in CIF 2.0) and
// for its length, one message per line and kind.
class CifTextCheck {
public:
    CifTextCheck(const CifParserSettings& settings, int version, CifErrorSink& errors);

    // start skips a byte-order mark on the first line.
    void check(std::string_view text, std::size_t start);

private:
    void check_line(const char* begin, const char* end, int line);
    bool check_ascii(const char* begin, const char* end, int line);
    void check_utf8(const char* begin, const char* end, int line);

    std::size_t limit_;
    int version_;
    CifErrorSink& errors_;
};
