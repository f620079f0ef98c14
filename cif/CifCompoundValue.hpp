// SPDX-License-Identifier: MIT
// A CIF 2.0 list or table read from its text into a tree of values.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// A CIF 2.0 list ([a b c]) or table ({'key':value ...}) read from its text
// into a tree, or a single value. Values keep their text without quotes;
// whether a value was quoted is kept too, so that "?" can be told apart.
struct CifCompoundValue {
    enum class Kind { single, list, table };

    Kind kind = Kind::single;
    std::string text;                       // a single value's text
    bool quoted = false;                    // a single value written in quotes
    std::vector<CifCompoundValue> entries;  // a list's values, or a table's values
    std::vector<std::string> keys;          // a table's keys, one per entry

    // Reads the text of one value; false (and a partial tree) when the text
    // is not a well-formed list, table or single value.
    static bool parse(std::string_view text, CifCompoundValue& value);

    // A table's value for the key (compared exactly), or null.
    const CifCompoundValue* find(std::string_view key) const;
};
