// SPDX-License-Identifier: MIT
// A comment line met between tokens, as the lexer hands it on.
#pragma once

#include <cstddef>

// A comment line met between tokens; trailing when it follows a token on
// that token's last line.
struct CifComment {
    const char* begin;
    std::size_t length;
    int line;
    bool trailing;
};
