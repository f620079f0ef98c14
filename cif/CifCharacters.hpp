// SPDX-License-Identifier: MIT
// Character classes of CIF 1.1 text, shared by the reader and the editor's highlighter.
#pragma once

// CIF 1.1 allows printable ASCII (32-126), TAB, LF and CR.

// Control characters other than TAB, LF and CR, and DEL (127).
constexpr bool is_bad_nonprinting_char(unsigned char c) {
    return (c < 32 && c != '\t' && c != '\n' && c != '\r') || c == 127;
}

// Bytes above 126: DEL and everything outside ASCII, which CIF 1.1 does not
// allow (CIF 2.0 allows non-ASCII characters as UTF-8).
constexpr bool is_bad_printing_char(unsigned char c) { return c > 126; }

// White space that separates CIF tokens.
constexpr bool is_cif_whitespace(unsigned char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }
