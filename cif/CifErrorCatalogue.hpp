// SPDX-License-Identifier: MIT
// The table of every message code with its kind, message and explanation.
#pragma once

#include <span>
#include <string>

// One row of the error catalogue.
struct CifErrorCatalogueEntry {
    int code;                 // 300-384
    int kind;                 // 0 remark, 1 warning, 2 error
    const char* name;         // the symbolic name of CifError::ErrorID
    const char* message;      // %1: the error's text, %2: its detail
    const char* explanation;  // one line for help pages and docs/errors.md
};

// The table of every code the library uses, with its kind, message and
// explanation; docs/errors.md lists the same rows.
class CifErrorCatalogue {
public:
    static constexpr int first_code = 300;
    static constexpr int last_code = 384;

    // The row of a code, or null for a code outside the catalogue.
    static const CifErrorCatalogueEntry* find(int code);
    // Every row, in code order.
    static std::span<const CifErrorCatalogueEntry> entries();
    // The message of a code with %1 and %2 replaced by text and detail; an
    // unknown code gives "Message " + code + ": " + text.
    static std::string format(int code, const std::string& text, const std::string& detail);
    // The same appended to out.
    static void append_format(std::string& out, int code, const std::string& text, const std::string& detail);
};
