// SPDX-License-Identifier: MIT
// Splits CIF 1.1 or 2.0 text into tokens in one pass, with the line of each.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "cif/CifComment.hpp"
#include "cif/CifErrorSink.hpp"
#include "cif/CifParserSettings.hpp"
#include "cif/CifTextCheck.hpp"
#include "cif/CifToken.hpp"
#include "cif/CifValueColumn.hpp"

// Splits CIF text (line ends already LF, and a NUL byte at end, as in a
// std::string) into tokens in one pass, with the
// line of each. CIF 1.1 or CIF 2.0 rules by version. Problems of single
// tokens (unterminated quotes and text fields, bad lists and tables, size
// limits) are reported here; the lexer always moves on, so it never loops
// and never recurses.
class CifLexer {
public:
    CifLexer(const char* begin, const char* end, const char* start, int version,
             const CifParserSettings& settings, CifErrorSink& errors);

    CifToken next();

    // Reads plain unquoted values straight into the columns, row by row from
    // `column` on, while they come; stops before anything else (a quoted
    // value, a name, a comment, a word that may be reserved), which next()
    // then returns, or after max_count values. The fast path for the rows of
    // large loops.
    std::size_t read_plain_values(CifValueColumn* const* columns, std::size_t width, std::size_t& column,
                                  std::size_t max_count = static_cast<std::size_t>(-1));

    // Hands the windows of text the fast path classifies to the check of
    // characters and line lengths (see CifTextCheck::take).
    void set_text_check(CifTextCheck* check) { check_ = check; }

    // Comments met since the reader last took them, in text order.
    std::vector<CifComment>& comments() { return comments_; }
    // The line on which the last token returned ended.
    int last_end_line() const { return last_end_line_; }
    // The number of the line the lexer is on (the last line at the end).
    int line() const { return line_; }
    // Just past the last token returned (after its closing quote or ";").
    const char* position() const { return p_; }

private:
    bool at_line_start(const char* p) const { return p == begin_ || p[-1] == '\n'; }
    void skip_blank_and_comments(bool keep_comments);
    void scan_unquoted(CifToken& token, bool in_compound);
    void scan_quoted(CifToken& token, bool in_compound);
    void scan_triple_quoted(CifToken& token);
    void scan_text_field(CifToken& token, bool in_compound);
    void scan_compound(CifToken& token);
    void classify_word(CifToken& token);
    // Cuts a token longer than the settings allow, with a message (the
    // check inline: every token passes it).
    void limit_size(CifToken& token) {
        if (token.length > CifValueRef::length_mask || token.length > settings_.max_token_size)
            cut_to_size(token);
    }
    void cut_to_size(CifToken& token);
    // The start of the first later line that begins a data block, or end_;
    // where an unterminated text field or string is closed.
    const char* recovery_point(const char* from, int from_line, int& line) const;

    const char* begin_;
    const char* end_;
    const char* p_;
    int line_ = 1;
    int last_end_line_ = 0;
    int version_;
    const CifParserSettings& settings_;
    CifErrorSink& errors_;
    CifTextCheck* check_ = nullptr;
    std::vector<CifComment> comments_;
};
