// SPDX-License-Identifier: MIT
// Writes blocks as CIF text, every value delimited as CIF requires.
#pragma once

#include <ostream>
#include <string>
#include <string_view>

#include "cif/CifWriteSettings.hpp"

class CifDataBlock;
class CifDataItem;

// Writes blocks as CIF text: the "data_" heading, items in write order,
// loops at the place of their first column, comments, and every value
// delimited the way CIF requires, with lines kept within the line length
// limit wherever CIF allows.
class CifPrinter {
public:
    // How a value is written.
    enum class Form {
        bare,           // as it is
        single_quoted,  // 'value'
        double_quoted,  // "value"
        triple_single,  // '''value''' (CIF 2.0)
        triple_double,  // """value""" (CIF 2.0)
        text_field,     // ;value on lines of its own;
        verbatim,       // a CIF 2.0 list or table, written as read
    };

    explicit CifPrinter(const CifWriteSettings& settings) : settings_(settings) {}

    void print_block(const CifDataBlock& block, std::ostream& stream) const;
    void print_frame(const CifDataBlock& frame, std::ostream& stream) const;

    // The simplest form that reads back as the same value. quoted keeps a
    // value that was read quoted (such as '?') quoted.
    static Form choose_form(std::string_view value, bool quoted, bool compound, int cif_version);
    // The value in that form; a text field is ";" + value + line end + ";",
    // to be written at the start of a line and followed by a line end.
    static std::string format(std::string_view value, Form form);

private:
    void print_contents(const CifDataBlock& block, std::ostream& stream) const;
    void print_item(const CifDataItem& item, std::ostream& stream) const;
    void print_loop(const CifDataBlock& block, std::size_t loop, std::ostream& stream) const;
    void print_comments(const std::string& text, std::ostream& stream) const;

    CifWriteSettings settings_;
};
