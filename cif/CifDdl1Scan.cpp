// SPDX-License-Identifier: MIT
// Finds the blocks, items and values of a plain DDL1 dictionary text in one pass.
#include "cif/CifDdl1Scan.hpp"

#include <algorithm>
#include <bit>
#include <cstring>
#include <unordered_set>

#include "cif/CifNames.hpp"
#include "cif/CifTextScan.hpp"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace {

// Names and block names longer than this are reported by the document reader.
constexpr std::size_t longest_name = 75;
// So are lines longer than this.
constexpr std::ptrdiff_t longest_line = 2048;

bool is_space(char c) { return c == ' ' || c == '\t' || c == '\n'; }

// The first byte from p on that is not a space (values stand in columns).
const char* skip_spaces(const char* p, const char* end) {
    p = cif_skip_spaces(p, end);
    while (*p == ' ') ++p;
    return p;
}

// The first white space from p on (the text ends in a line end and holds no
// NUL: both checked before).
const char* word_end(const char* p, const char* end) {
    p = cif_to_word_stop(p, end);
    while (!is_space(*p)) ++p;
    return p;
}

struct Token {
    enum Kind { end, name, value, data, loop, other } kind = end;
    std::string_view text;
    int line = 0;
    bool quoted = false;
};

// Splits the text into tokens; anything the plain subset lacks is `other`.
class Tokens {
public:
    explicit Tokens(std::string_view text)
        : begin_(text.data()), p_(text.data()), end_(text.data() + text.size()) {}

    Token next() {
        Token token;
        while (p_ < end_) {
            const char c = *p_;
            if (c == ' ' || c == '\t') {
                p_ = skip_spaces(p_ + 1, end_);
            } else if (c == '\n') {
                ++line_;
                ++p_;
            } else if (c == '#') {
                // The text ends in a line end (checked before).
                p_ = static_cast<const char*>(std::memchr(p_, '\n', static_cast<std::size_t>(end_ - p_)));
            } else {
                break;
            }
        }
        token.line = line_;
        if (p_ == end_) return token;
        const char c = *p_;
        if (c == '\'' || c == '"') return quoted(token, c);
        if (c == ';' && (p_ == begin_ || p_[-1] == '\n')) return text_field(token);
        const char* start = p_;
        p_ = word_end(p_, end_);
        token.text = std::string_view(start, static_cast<std::size_t>(p_ - start));
        token.kind = c == '_' ? Token::name : classify(token.text);
        return token;
    }

private:
    static Token::Kind classify(std::string_view& word) {
        const char first = cif_lower(word.front());
        if (first == 'd' && cif_istarts_with(word, "data_")) {
            word.remove_prefix(5);
            return Token::data;
        }
        if (first == 'l' && cif_iequals(word, "loop_")) return Token::loop;
        if ((first == 's' && (cif_istarts_with(word, "save_") || cif_iequals(word, "stop_"))) ||
            (first == 'g' && cif_iequals(word, "global_")) || first == '$' || first == '[' || first == ']')
            return Token::other;
        return Token::value;
    }

    // A quoted value ends at its quote followed by white space, on its line.
    Token quoted(Token& token, char quote) {
        const char* start = p_ + 1;
        for (const char* s = start; *s != '\n'; ++s) {
            if (*s == quote && is_space(s[1])) {
                token.kind = Token::value;
                token.quoted = true;
                token.text = std::string_view(start, static_cast<std::size_t>(s - start));
                p_ = s + 1;
                return token;
            }
        }
        token.kind = Token::other;
        return token;
    }

    // A text field runs to the next line that begins with a semicolon.
    Token text_field(Token& token) {
        const char* start = p_ + 1;
        const char* s = start;
        for (;;) {
            const char* newline =
                static_cast<const char*>(std::memchr(s, '\n', static_cast<std::size_t>(end_ - s)));
            if (newline == nullptr) {
                token.kind = Token::other;
                return token;
            }
            ++line_;
            s = newline + 1;
            if (s < end_ && *s == ';') {
                p_ = s + 1;
                // Text right after the closing semicolon is reported.
                token.kind = is_space(*p_) || *p_ == '#' ? Token::value : Token::other;
                token.quoted = true;
                token.text = std::string_view(start, static_cast<std::size_t>(newline - start));
                return token;
            }
        }
    }

    const char* begin_;
    const char* p_;
    const char* end_;
    int line_ = 1;
};

}  // namespace

void CifDdl1Scan::fail() {
    text_ = std::string_view();
    blocks_.clear();
    items_.clear();
    values_.clear();
}

bool CifDdl1Scan::plain_bytes(std::string_view text) {
    if (text.empty() || text.back() != '\n') return false;
    // Only CIF 1.0 and 1.1 headers (any other is reported).
    if (cif_istarts_with(text, "#\\#CIF_") && !text.starts_with("#\\#CIF_1.1\n") &&
        !text.starts_with("#\\#CIF_1.1 ") && !text.starts_with("#\\#CIF_1.0\n") &&
        !text.starts_with("#\\#CIF_1.0 "))
        return false;
    const char* p = text.data();
    const char* const end = p + text.size();
    const char* line = p;
#if defined(__SSE2__)
    // Thirty-two bytes at a time: control bytes but tab and LF, DEL and
    // anything above ASCII (negative as signed bytes) are not plain; a
    // line's length is measured at its end, the first line end in the
    // bytes, and the last one starts the next line.
    const __m128i below = _mm_set1_epi8(0x20), del = _mm_set1_epi8(0x7F);
    const __m128i tab = _mm_set1_epi8('\t'), newline = _mm_set1_epi8('\n');
    auto odd = [&](__m128i bytes, __m128i ends) {
        const __m128i allowed = _mm_or_si128(_mm_cmpeq_epi8(bytes, tab), ends);
        return _mm_andnot_si128(allowed,
                                _mm_or_si128(_mm_cmplt_epi8(bytes, below), _mm_cmpeq_epi8(bytes, del)));
    };
    // Odd bytes are gathered and looked at once: plain texts have none.
    __m128i bad = _mm_setzero_si128();
    for (; end - p >= 32; p += 32) {
        const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
        const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 16));
        const __m128i low_ends = _mm_cmpeq_epi8(low, newline), high_ends = _mm_cmpeq_epi8(high, newline);
        bad = _mm_or_si128(bad, _mm_or_si128(odd(low, low_ends), odd(high, high_ends)));
        const std::uint32_t ends = static_cast<std::uint32_t>(_mm_movemask_epi8(low_ends)) |
                                   static_cast<std::uint32_t>(_mm_movemask_epi8(high_ends)) << 16;
        if (ends == 0) continue;
        if (p + std::countr_zero(ends) - line > longest_line) return false;
        line = p + (32 - std::countl_zero(ends));
    }
    if (_mm_movemask_epi8(bad) != 0) return false;
#endif
    for (; p < end; ++p) {
        const auto c = static_cast<unsigned char>(*p);
        if (c == '\n') {
            if (p - line > longest_line) return false;
            line = p + 1;
        } else if ((c < 0x20 && c != '\t') || c >= 0x7F) {
            return false;
        }
    }
    return true;
}

bool CifDdl1Scan::scan(std::string_view text) {
    fail();
    if (!plain_bytes(text) || !scan_tokens(text)) {
        fail();
        return false;
    }
    return true;
}

bool CifDdl1Scan::scan_tokens(std::string_view text) {
    text_ = text;
    // Offsets are 32 bits wide, a value's size 31.
    if (text.size() >= (std::size_t(1) << 31)) return false;
    Tokens tokens(text);
    auto value_of = [&](const Token& token) {
        Value value;
        value.at = static_cast<std::uint32_t>(token.text.data() - text.data());
        value.size = static_cast<std::uint32_t>(token.text.size()) & 0x7FFFFFFFu;
        value.quoted = token.quoted ? 1 : 0;
        return value;
    };
    auto item_of = [&](const Token& token) {
        Item item;
        item.name_at = static_cast<std::uint32_t>(token.text.data() - text.data());
        item.name_size = static_cast<std::uint32_t>(token.text.size());
        item.line = token.line;
        return item;
    };
    std::vector<Value> row;  // a loop's values
    Token t = tokens.next();
    while (t.kind != Token::end) {
        if (t.kind == Token::data) {
            if (t.text.empty() || t.text.size() > longest_name) return false;
            Block block;
            block.scan = this;
            block.name = t.text;
            block.line = t.line;
            block.first_item = static_cast<std::uint32_t>(items_.size());
            blocks_.push_back(block);
            t = tokens.next();
        } else if (blocks_.empty()) {
            return false;
        } else if (t.kind == Token::name) {
            const Token value = tokens.next();
            if (t.text.size() > longest_name || value.kind != Token::value) return false;
            Item item = item_of(t);
            item.first_value = static_cast<std::uint32_t>(values_.size());
            item.value_count = 1;
            items_.push_back(item);
            values_.push_back(value_of(value));
            t = tokens.next();
            if (t.kind == Token::value) return false;  // a value without a name
        } else if (t.kind == Token::loop) {
            const std::size_t first = items_.size();
            for (t = tokens.next(); t.kind == Token::name; t = tokens.next()) {
                if (t.text.size() > longest_name) return false;
                items_.push_back(item_of(t));
            }
            const std::size_t width = items_.size() - first;
            row.clear();
            for (; t.kind == Token::value; t = tokens.next()) row.push_back(value_of(t));
            if (width == 0 || row.empty() || row.size() % width != 0) return false;
            // Each column's values one after the other.
            for (std::size_t k = 0; k < width; ++k) {
                items_[first + k].first_value = static_cast<std::uint32_t>(values_.size());
                items_[first + k].value_count = static_cast<std::uint32_t>(row.size() / width);
                for (std::size_t at = k; at < row.size(); at += width) values_.push_back(row[at]);
            }
        } else {
            return false;
        }
    }
    if (blocks_.empty()) return false;
    for (std::size_t b = 0; b < blocks_.size(); ++b) {
        const std::size_t stop = b + 1 < blocks_.size() ? blocks_[b + 1].first_item : items_.size();
        blocks_[b].item_count = static_cast<std::uint32_t>(stop - blocks_[b].first_item);
        for (const Item& item : blocks_[b].items())
            blocks_[b].name_sizes |= std::uint64_t(1) << (item.name_size & 63);
        // A name twice in a block is reported.
        const std::span<const Item> items = blocks_[b].items();
        for (std::size_t i = 1; i < items.size(); ++i) {
            for (std::size_t j = 0; j < i; ++j) {
                if (items[i].name_size == items[j].name_size &&
                    cif_iequals(blocks_[b].name_of(items[i]), blocks_[b].name_of(items[j])))
                    return false;
            }
        }
    }
    // So is a block name twice.
    std::unordered_set<std::string_view, CifNameHash, CifNameEqual> names;
    names.reserve(blocks_.size());
    for (const Block& block : blocks_) {
        if (!names.insert(block.name).second) return false;
    }
    return true;
}
