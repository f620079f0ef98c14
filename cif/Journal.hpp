// SPDX-License-Identifier: MIT
// The journals crystal structures are submitted to and published in: names, abbreviations, codes.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// One journal of the program's journal table: the journals of the
// International Union of Crystallography and those where small-molecule
// structures are most often published, each with its full name, its
// common abbreviation and a code of the program's own. Codes are stable:
// a journal keeps its code when the table grows or its name changes, and a
// code is never given to another journal. Journals are numbered from 0 in
// table order; a title that stopped appearing is kept (older papers cite
// it) but marked as no longer current.
class Journal {
public:
    // The journal numbered `number`, 0 <= number < count().
    explicit Journal(int number);

    static int count();

    int number() const { return number_; }
    std::string_view name() const;
    std::string_view abbreviation() const;
    std::string_view code() const;
    // Whether the journal still takes submissions.
    bool current() const;

    // A text as journal names are compared: letters and digits only,
    // ASCII letters in lower case ("Acta Cryst. C" -> "actacrystc").
    static std::string cleaned(std::string_view text);

    // The journals whose cleaned full name or abbreviation begins with the
    // cleaned text, then those whose cleaned full name contains it, each
    // group in table order; every journal for a text that cleans to
    // nothing. With `currentOnly`, titles no longer current are left out.
    static std::vector<int> matching(std::string_view typed, bool currentOnly);

    // The journal whose full name, abbreviation or code equals the text
    // once both are cleaned; -1 when none does.
    static int find(std::string_view text);

private:
    int number_;
};
