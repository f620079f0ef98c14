// SPDX-License-Identifier: MIT
// Splits CIF 1.1 or 2.0 text into tokens in one pass, with the line of each.
#include "cif/CifLexer.hpp"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

#include "cif/CifNames.hpp"
#include "cif/CifTextScan.hpp"
#include "cif/CifTextWindow.hpp"
#include "cif/CifValueRef.hpp"

namespace {

// Bytes that end an unquoted word: white space and the NUL that follows the
// text (a NUL inside the text is checked against the end). CIF 2.0 adds the
// list and table brackets.
struct WordEnds {
    bool cif1[256] = {};
    bool cif2[256] = {};
    constexpr WordEnds() {
        for (unsigned char c : {' ', '\t', '\n', '\0'}) cif1[c] = cif2[c] = true;
        for (unsigned char c : {'[', ']', '{', '}'}) cif2[c] = true;
    }
};
constexpr WordEnds word_ends;

// First bytes that read_plain_values leaves to next(): anything that is not
// a plain unquoted value, or that may begin a reserved word.
struct PlainStarts {
    bool other[256] = {};
    constexpr PlainStarts() {
        for (unsigned char c : {'#', '_', '\'', '"', ';', '$', '[', ']', '{', '}', '\0', 'd', 'D', 's', 'S',
                                'l', 'L', 'g', 'G'}) {
            other[c] = true;
        }
    }
};
constexpr PlainStarts plain_starts;

// Bytes after a plain word that send it to next(): a NUL, or a bracket
// (a CIF 2.0 list or table begins or ends there).
struct OddEnds {
    bool odd[256] = {};
    constexpr OddEnds() {
        for (unsigned char c : {'\0', '[', ']', '{', '}'}) odd[c] = true;
    }
};
constexpr OddEnds odd_ends;

bool is_space(char c) { return c == ' ' || c == '\t' || c == '\n'; }

std::string excerpt(const char* begin, std::size_t length) {
    constexpr std::size_t shown = 40;
    if (length <= shown) return std::string(begin, length);
    return std::string(begin, shown) + "...";
}

}  // namespace

CifLexer::CifLexer(const char* begin, const char* end, const char* start, int version,
                   const CifParserSettings& settings, CifErrorSink& errors)
    : begin_(begin), end_(end), p_(start), version_(version), settings_(settings), errors_(errors) {}

void CifLexer::skip_blank_and_comments(bool keep_comments) {
    while (p_ < end_) {
        char c = *p_;
        if (c == ' ' || c == '\t') {
            p_ = cif_skip_spaces(p_ + 1, end_);
        } else if (c == '\n') {
            ++line_;
            ++p_;
        } else if (c == '#') {
            const char* stop =
                static_cast<const char*>(std::memchr(p_, '\n', static_cast<std::size_t>(end_ - p_)));
            if (stop == nullptr) stop = end_;
            if (keep_comments) {
                comments_.push_back(
                    {p_, static_cast<std::size_t>(stop - p_), line_, line_ == last_end_line_});
            }
            p_ = stop;
        } else {
            break;
        }
    }
}

CifToken CifLexer::next() {
    CifToken token;
    for (;;) {
        skip_blank_and_comments(true);
        token.line = line_;
        if (p_ >= end_) {
            token.kind = CifToken::end;
            return token;
        }
        char c = *p_;
        if (c == '_') {
            const char* start = p_;
            p_ = cif_to_word_stop(p_, end_);
            while (!word_ends.cif1[static_cast<unsigned char>(*p_)] || (*p_ == '\0' && p_ < end_)) ++p_;
            token.kind = CifToken::name;
            token.begin = start;
            token.length = static_cast<std::size_t>(p_ - start);
            limit_size(token);
        } else if (c == '\'' || c == '"') {
            if (version_ >= 2 && end_ - p_ >= 3 && p_[1] == c && p_[2] == c) {
                scan_triple_quoted(token);
            } else {
                scan_quoted(token, false);
            }
        } else if (c == ';' && at_line_start(p_)) {
            scan_text_field(token, false);
        } else if (version_ >= 2 && (c == '[' || c == '{')) {
            scan_compound(token);
        } else if (version_ >= 2 && (c == ']' || c == '}')) {
            errors_.add(CifError::unexpected_closing_bracket, line_, std::string(1, c));
            ++p_;
            continue;
        } else {
            scan_unquoted(token, false);
            classify_word(token);
        }
        last_end_line_ = line_;
        return token;
    }
}

std::size_t CifLexer::read_plain_values(CifValueColumn* const* columns, std::size_t width,
                                        std::size_t& column, std::size_t max_count) {
    const bool* ends = version_ >= 2 ? word_ends.cif2 : word_ends.cif1;
    std::size_t limit = settings_.max_token_size < CifValueRef::length_mask ? settings_.max_token_size
                                                                            : CifValueRef::length_mask;
    const char* p = p_;
    int line = line_;
    int last_line = last_end_line_;
    std::size_t count = 0;
    // Most calls meet no plain value at all (a quoted one, a name or the
    // end of the loop comes next, as in a list of symmetry operators): the
    // first byte after the blanks tells, before any window is classified.
    if (max_count > 0) {
        const char* q = p;
        int lines = 0;
        while (q < end_ && is_space(*q)) lines += *q++ == '\n';
        if (q >= end_ || plain_starts.other[static_cast<unsigned char>(*q)]) {
            p_ = q;
            line_ = line + lines;
            return 0;
        }
    }
#if defined(__SSE2__)
    // Windows of 64 bytes one after the other from p: the words that begin
    // in a window are found from its bits and those of the next one (where
    // a word may end), its line ends counted at once when it is left. The
    // loop below takes over, from the start of a word or of a window, with
    // whatever this one leaves (and the last 64 bytes of the text).
    if (count < max_count && end_ - p >= 64) {
        const bool cif2 = version_ >= 2;
        CifTextCheck* const check = check_;
        const char* base = p;
        auto classify = [&](const char* at) {
            if (end_ - at < 64) return CifTextWindow();  // no stops: a word reaching it goes below
            CifTextWindow seen(at, cif2);
            if (check != nullptr) check->take(at, seen.newline, seen.usual);
            return seen;
        };
        CifTextWindow window = classify(base);
        CifTextWindow next = classify(base + 64);
        // A word begins at a byte that is not white space after one that is;
        // p counts as after white space.
        std::uint64_t starts = ~window.space & ((window.space << 1) | 1);
        // Values are gathered a few rows at a time and then handed to their
        // columns, each of which takes its own in one go.
        constexpr std::size_t gathered = 510;
        // Left as it is (4 KiB set to zero on every call otherwise): a
        // reference is written before it is read.
        union Gathered {
            Gathered() {}
            CifValueRef refs[gathered];
        } gathered_refs;
        CifValueRef* const refs = gathered_refs.refs;
        std::size_t held = 0;
        std::size_t room = std::min(gathered, max_count - count);
        const char* last_word = nullptr;
        auto hand_over = [&]() {
            for (std::size_t k = 0; k < width && k < held; ++k) {
                std::size_t target = column + k;
                if (target >= width) target -= width;
                columns[target]->append_plain(refs + k, width, (held - k + width - 1) / width);
            }
            if (held > 0) last_word = begin_ + refs[held - 1].offset;
            column = (column + held) % width;
            count += held;
            held = 0;
            room = std::min(gathered, max_count - count);
        };
        for (;;) {
            if (starts == 0) {
                line += cif_count_bits(window.newline);
                const std::uint64_t carry = window.space >> 63;
                base += 64;
                p = base;
                if (end_ - base < 64) break;
                window = next;
                next = classify(base + 64);
                starts = ~window.space & ((window.space << 1) | carry);
                continue;
            }
            const unsigned at = static_cast<unsigned>(std::countr_zero(starts));
            const char* word = base + at;
            // Where the word ends, in this window or the next.
            const std::uint64_t stops = (window.stop >> at) | ((next.stop << 1) << (63 - at));
            const std::size_t length = static_cast<std::size_t>(std::countr_zero(stops));
            // Longer words, anything but a plain value, and NULs or brackets
            // after a word take the slow path.
            if (stops == 0 || (plain_starts.other[static_cast<unsigned char>(*word)] |
                               odd_ends.odd[static_cast<unsigned char>(word[length])] | (length > limit))) {
                p = word;
                line += cif_count_bits(window.newline & ((std::uint64_t(1) << at) - 1));
                break;
            }
            refs[held].offset = static_cast<std::uint32_t>(word - begin_);
            refs[held].bits = static_cast<std::uint32_t>(length);
            starts &= starts - 1;
            if (++held == room) {
                hand_over();
                if (count == max_count) {
                    p = word + length;
                    line += cif_count_bits(window.newline & ((std::uint64_t(1) << at) - 1));
                    break;
                }
            }
        }
        hand_over();
        // The line of the last value: that of p, less the line ends after it.
        if (last_word != nullptr) {
            last_line = line;
            for (const char* s = last_word; s < p; ++s) last_line -= *s == '\n';
        }
    }
#endif
    while (count < max_count) {
        char c = *p;
        while (c == ' ' || c == '\t' || c == '\n') {
            if (c == '\n') ++line;
            c = *++p;
        }
        if (p >= end_ || plain_starts.other[static_cast<unsigned char>(c)]) break;
        const char* start = p;
        while (!ends[static_cast<unsigned char>(*p)]) ++p;
        std::size_t length = static_cast<std::size_t>(p - start);
        // NULs, brackets after a word and oversized words take the slow path.
        if ((p < end_ && (*p == '\0' || *p == '[' || *p == ']' || *p == '{' || *p == '}')) ||
            length > limit) {
            p = start;
            break;
        }
        CifValueRef ref;
        ref.offset = static_cast<std::uint32_t>(start - begin_);
        ref.bits = static_cast<std::uint32_t>(length);
        columns[column]->push_plain(ref);
        if (++column == width) column = 0;
        ++count;
        last_line = line;
    }
    p_ = p;
    line_ = line;
    last_end_line_ = last_line;
    return count;
}

void CifLexer::scan_unquoted(CifToken& token, bool in_compound) {
    const char* start = p_;
    const bool* ends = version_ >= 2 ? word_ends.cif2 : word_ends.cif1;
    if (version_ < 2) p_ = cif_to_word_stop(p_, end_);
    while (!ends[static_cast<unsigned char>(*p_)] || (*p_ == '\0' && p_ < end_)) ++p_;
    if (p_ == start) ++p_;  // never stand still
    token.kind = CifToken::value;
    token.begin = start;
    token.length = static_cast<std::size_t>(p_ - start);
    token.flags = 0;
    if (!in_compound && version_ >= 2 && p_ < end_ && (*p_ == '[' || *p_ == '{')) {
        errors_.add(CifError::missing_white_space, line_, excerpt(start, token.length));
    }
}

void CifLexer::classify_word(CifToken& token) {
    const char* word = token.begin;
    std::size_t length = token.length;
    std::string_view text(word, length);
    char first = cif_lower(word[0]);
    if (first == 'd' && cif_istarts_with(text, "data_")) {
        token.kind = CifToken::data;
        token.begin += 5;
        token.length -= 5;
    } else if (first == 's' && cif_istarts_with(text, "save_")) {
        token.kind = length == 5 ? CifToken::save_end : CifToken::save;
        token.begin += 5;
        token.length -= 5;
    } else if (first == 'l' && cif_iequals(text, "loop_")) {
        token.kind = CifToken::loop;
    } else if (first == 'g' && cif_iequals(text, "global_")) {
        token.kind = CifToken::global;
    } else if (first == 's' && cif_iequals(text, "stop_")) {
        token.kind = CifToken::stop;
    } else if (first == '$' || (version_ < 2 && (first == '[' || first == ']'))) {
        errors_.add(CifError::reserved_first_character, token.line, excerpt(word, length));
    }
    limit_size(token);
}

void CifLexer::scan_quoted(CifToken& token, bool in_compound) {
    char quote = *p_;
    const char* start = p_ + 1;
    const char* s = start;
    bool closed = false;
    s = cif_to_quote_or_line_end(s, end_, quote);
    if (version_ >= 2) {
        while (s < end_ && *s != quote && *s != '\n') ++s;
        closed = s < end_ && *s == quote;
    } else {
        // CIF 1.1: the quote that ends the value is followed by white space.
        for (; s < end_ && *s != '\n'; ++s) {
            if (*s == quote && (s + 1 == end_ || is_space(s[1]))) {
                closed = true;
                break;
            }
        }
    }
    token.kind = CifToken::value;
    token.flags = CifValueRef::quoted_flag;
    token.begin = start;
    token.length = static_cast<std::size_t>(s - start);
    if (closed) {
        p_ = s + 1;
        if (version_ >= 2 && p_ < end_ && !is_space(*p_)) {
            bool allowed = in_compound && (*p_ == ']' || *p_ == '}' || *p_ == ':');
            if (!allowed)
                errors_.add(CifError::missing_white_space, line_,
                            std::string(1, quote) + excerpt(start, token.length) + quote);
        }
    } else {
        p_ = s;
        errors_.add(CifError::unterminated_quoted_string, line_,
                    std::string(1, quote) + excerpt(start, token.length));
    }
    limit_size(token);
}

void CifLexer::scan_triple_quoted(CifToken& token) {
    char quote = *p_;
    int open_line = line_;
    const char* start = p_ + 3;
    token.kind = CifToken::value;
    token.flags = CifValueRef::quoted_flag;
    token.begin = start;
    for (const char* s = start; s < end_; ++s) {
        if (*s == '\n') {
            ++line_;
        } else if (*s == quote && end_ - s >= 3 && s[1] == quote && s[2] == quote) {
            token.length = static_cast<std::size_t>(s - start);
            p_ = s + 3;
            if (p_ < end_ && !is_space(*p_) && *p_ != ']' && *p_ != '}' && *p_ != ':') {
                errors_.add(CifError::missing_white_space, line_,
                            std::string(3, quote) + excerpt(start, token.length));
            }
            limit_size(token);
            return;
        }
    }
    // Not closed: the string ends before the next data block heading, if any.
    int line = open_line;
    const char* stop = recovery_point(start, open_line, line);
    token.length = static_cast<std::size_t>(stop - start);
    if (token.length > 0 && start[token.length - 1] == '\n') --token.length;
    p_ = stop;
    line_ = line;
    errors_.add(CifError::unterminated_quoted_string, open_line,
                std::string(3, quote) + excerpt(start, token.length));
    limit_size(token);
}

void CifLexer::scan_text_field(CifToken& token, bool in_compound) {
    int open_line = line_;
    const char* start = p_ + 1;
    const char* s = start;
    const char* heading = nullptr;
    int heading_line = 0;
    token.kind = CifToken::value;
    token.flags = CifValueRef::quoted_flag;
    token.begin = start;
    for (;;) {
        const char* newline =
            static_cast<const char*>(std::memchr(s, '\n', static_cast<std::size_t>(end_ - s)));
        if (newline == nullptr) break;
        ++line_;
        s = newline + 1;
        if (s < end_ && *s == ';') {
            token.length = static_cast<std::size_t>(newline - start);
            p_ = s + 1;
            // ";_b 1" closes the field; the text after it is read on as the next
            // token. A comment may follow directly.
            if (p_ < end_ && !is_space(*p_) && *p_ != '#' && !(in_compound && (*p_ == ']' || *p_ == '}')))
                errors_.add(CifError::missing_white_space, line_, ";");
            limit_size(token);
            return;
        }
        if (heading == nullptr && s < end_ && (*s == 'd' || *s == 'D') && end_ - s > 5 &&
            cif_istarts_with(std::string_view(s, 5), "data_") && !is_space(s[5])) {
            heading = s;
            heading_line = line_;
        }
    }
    // Not closed: the field ends before the first data block heading in it,
    // or at the end of the text.
    int last_line = 0;
    if (heading != nullptr) {
        token.length = static_cast<std::size_t>(heading - 1 - start);
        p_ = heading;
        line_ = heading_line;
        last_line = heading_line - 1;
    } else {
        token.length = static_cast<std::size_t>(end_ - start);
        if (token.length > 0 && start[token.length - 1] == '\n') --token.length;
        p_ = end_;
        last_line = end_[-1] == '\n' ? line_ - 1 : line_;
    }
    errors_.add(CifError::unterminated_text_field, open_line, std::string(), std::to_string(last_line));
    limit_size(token);
}

void CifLexer::scan_compound(CifToken& token) {
    const char* open = p_;
    int open_line = line_;
    // One entry per open bracket: '[' a list, 'k' a table awaiting a key,
    // 'v' a table awaiting the value of a key.
    std::string stack;
    int overflow = 0;
    auto push = [&](char bracket) {
        if (static_cast<int>(stack.size()) >= settings_.max_nesting) {
            if (overflow == 0)
                errors_.add(CifError::nesting_too_deep, line_, std::string(),
                            std::to_string(settings_.max_nesting));
            ++overflow;
        } else {
            stack.push_back(bracket == '[' ? '[' : 'k');
        }
    };
    auto unterminated = [&]() {
        errors_.add(stack.front() == '[' ? CifError::unterminated_list : CifError::unterminated_table,
                    open_line);
    };
    push(*p_);
    ++p_;
    while (!stack.empty()) {
        skip_blank_and_comments(false);
        if (p_ >= end_) {
            unterminated();
            break;
        }
        char c = *p_;
        if (c == ']' || c == '}') {
            ++p_;
            if (overflow > 0) {
                --overflow;
                continue;
            }
            char top = stack.back();
            if ((c == ']') != (top == '['))
                errors_.add(CifError::unexpected_closing_bracket, line_, std::string(1, c));
            if (top == 'v') errors_.add(CifError::table_entry_without_value, line_, std::string(1, c));
            stack.pop_back();
            if (p_ < end_ && !is_space(*p_) && *p_ != ']' && *p_ != '}') {
                errors_.add(CifError::missing_white_space, line_, std::string(1, c));
            }
            continue;
        }
        // A data name or reserved word cannot be part of a list: the list was not closed.
        const char* word = p_;
        bool reserved = false;
        if (c == '_') {
            reserved = true;
        } else if (c != '\'' && c != '"' && c != '[' && c != '{') {
            const char* stop = word;
            while (stop < end_ && !word_ends.cif2[static_cast<unsigned char>(*stop)]) ++stop;
            std::string_view text(word, static_cast<std::size_t>(stop - word));
            reserved = cif_istarts_with(text, "data_") || cif_istarts_with(text, "save_") ||
                       cif_iequals(text, "loop_") || cif_iequals(text, "global_") ||
                       cif_iequals(text, "stop_");
        }
        if (reserved) {
            unterminated();
            break;
        }
        char& state = stack.back();
        bool expecting_key = overflow == 0 && state == 'k';
        if (overflow == 0 && state == 'v') state = 'k';
        CifToken element;
        element.line = line_;
        if (c == '[' || c == '{') {
            if (expecting_key) errors_.add(CifError::table_key_not_quoted, line_, std::string(1, c));
            ++p_;
            push(c);
            continue;
        }
        if (c == '\'' || c == '"') {
            if (end_ - p_ >= 3 && p_[1] == c && p_[2] == c) {
                scan_triple_quoted(element);
            } else {
                scan_quoted(element, true);
            }
            if (expecting_key) {
                if (p_ < end_ && *p_ == ':') {
                    ++p_;
                    state = 'v';
                } else {
                    // Read on as if the colon were there.
                    errors_.add(CifError::table_key_not_quoted, element.line,
                                excerpt(element.begin, element.length));
                    state = 'v';
                }
            }
            continue;
        }
        if (c == ';' && at_line_start(p_)) {
            scan_text_field(element, true);
        } else {
            scan_unquoted(element, true);
        }
        if (expecting_key)
            errors_.add(CifError::table_key_not_quoted, element.line, excerpt(element.begin, element.length));
    }
    token.kind = CifToken::value;
    token.flags = CifValueRef::compound_flag;
    token.begin = open;
    token.length = static_cast<std::size_t>(p_ - open);
    // Text after a list or table is checked where the list closes.
    limit_size(token);
}

void CifLexer::cut_to_size(CifToken& token) {
    std::size_t limit = settings_.max_token_size;
    if (limit > CifValueRef::length_mask) limit = CifValueRef::length_mask;
    if (token.length > limit) {
        errors_.add(CifError::token_too_long, token.line, excerpt(token.begin, token.length),
                    std::to_string(limit));
        token.length = limit;
    }
}

const char* CifLexer::recovery_point(const char* from, int from_line, int& line) const {
    const char* s = from;
    line = from_line;
    for (;;) {
        const char* newline =
            static_cast<const char*>(std::memchr(s, '\n', static_cast<std::size_t>(end_ - s)));
        if (newline == nullptr) return end_;
        ++line;
        s = newline + 1;
        if (end_ - s > 5 && cif_istarts_with(std::string_view(s, 5), "data_") && !is_space(s[5])) return s;
    }
}
