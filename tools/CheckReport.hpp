// SPDX-License-Identifier: MIT
// Writes tessary-check's results as text lines or as one JSON document.
#pragma once

#include <memory>
#include <ostream>
#include <string>
#include <string_view>

#include "cif/CifErrorCatalogue.hpp"
#include "tools/FileCheck.hpp"

// Writes check results as text lines or as one JSON document.
class CheckReport {
public:
    CheckReport(std::ostream& out, std::ostream& problems, bool json)
        : out_(out), problems_(problems), json_(json) {}

    void begin();
    void add(const FileCheckResult& result);
    void end();

    // A text safe inside JSON quotes; bytes above 127 are read as Latin-1.
    static std::string json_string(const std::string& text);
    // A text safe to print on a terminal: control characters (C0, DEL, and
    // C1 whether written as UTF-8 or as single Latin-1 bytes) become \u00XX,
    // as in JSON; everything else, UTF-8 included, is kept.
    static std::string terminal_text(const std::string& text);
    static std::string kind_name(CifError::ErrorType type);

private:
    std::ostream& out_;
    std::ostream& problems_;
    bool json_;
    bool first_ = true;
    long errors_ = 0;
    long warnings_ = 0;
    long remarks_ = 0;
    long unreadable_ = 0;
    // Room for n more bytes of a file's lines after the first used ones.
    char* room(std::size_t used, std::size_t n);
    // Appends one message's line from at (its catalogue message split
    // beforehand, or null) and returns its end.
    char* put_message(char* at, std::string_view file, const CifError& message,
                      const CifErrorMessageRuns* runs);

    // A file's lines, put together here and written at once (kept from file
    // to file, so that a file's report costs no allocation).
    std::unique_ptr<char[]> lines_;
    std::size_t capacity_ = 0;
};
