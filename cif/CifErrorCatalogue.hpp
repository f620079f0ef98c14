// SPDX-License-Identifier: MIT
// The table of every message code with its kind, message and explanation.
#pragma once

#include <span>
#include <string>
#include <string_view>

// One row of the error catalogue.
struct CifErrorCatalogueEntry {
    int code;                 // 300-384
    int kind;                 // 0 remark, 1 warning, 2 error
    const char* name;         // the symbolic name of CifError::ErrorID
    const char* message;      // %1: the error's text, %2: its detail
    const char* explanation;  // one line for help pages and docs/errors.md
};

// A catalogue message split at its placeholders once, for printing many
// messages without looking for them again: runs[0], the fill of gap 0,
// runs[1], the fill of gap 1, runs[2].
struct CifErrorMessageRuns {
    std::string_view runs[3];
    int fills[2];      // 1 the error's text, 2 its detail, 0 no gap
    std::size_t size;  // the runs' length together
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
    // The message of a code split at its placeholders (every message is
    // printable ASCII), or null for a code outside the catalogue.
    static const CifErrorMessageRuns* runs(int code);
};
