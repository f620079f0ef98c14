// SPDX-License-Identifier: MIT
// A CIF 2.0 list or table read from its text into a tree of values.
#include "cif/CifCompoundValue.hpp"

namespace {

class CompoundParser {
public:
    explicit CompoundParser(std::string_view text) : text_(text) {}

    bool parse_whole(CifCompoundValue& value) {
        if (!parse_value(value, 0)) return false;
        skip_blank();
        return at_ == text_.size();
    }

private:
    static constexpr int max_depth = 64;

    bool is_blank(char c) const { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

    void skip_blank() {
        while (at_ < text_.size() && is_blank(text_[at_])) ++at_;
    }

    bool parse_value(CifCompoundValue& value, int depth) {
        skip_blank();
        if (at_ >= text_.size() || depth > max_depth) return false;
        const char c = text_[at_];
        if (c == '[') return parse_list(value, depth);
        if (c == '{') return parse_table(value, depth);
        if (c == '\'' || c == '"') return parse_quoted(value);
        value.kind = CifCompoundValue::Kind::single;
        const std::size_t start = at_;
        while (at_ < text_.size() && !is_blank(text_[at_]) && text_[at_] != ']' && text_[at_] != '}') ++at_;
        value.text.assign(text_.substr(start, at_ - start));
        return at_ > start;
    }

    bool parse_quoted(CifCompoundValue& value) {
        value.kind = CifCompoundValue::Kind::single;
        value.quoted = true;
        const char quote = text_[at_];
        const bool triple = text_.substr(at_, 3) == std::string(3, quote);
        const std::string_view close = triple ? text_.substr(at_, 3) : text_.substr(at_, 1);
        at_ += close.size();
        const std::size_t end = text_.find(close, at_);
        if (end == std::string_view::npos) return false;
        value.text.assign(text_.substr(at_, end - at_));
        at_ = end + close.size();
        return true;
    }

    bool parse_list(CifCompoundValue& value, int depth) {
        value.kind = CifCompoundValue::Kind::list;
        ++at_;
        for (;;) {
            skip_blank();
            if (at_ >= text_.size()) return false;
            if (text_[at_] == ']') {
                ++at_;
                return true;
            }
            value.entries.emplace_back();
            if (!parse_value(value.entries.back(), depth + 1)) return false;
        }
    }

    bool parse_table(CifCompoundValue& value, int depth) {
        value.kind = CifCompoundValue::Kind::table;
        ++at_;
        for (;;) {
            skip_blank();
            if (at_ >= text_.size()) return false;
            if (text_[at_] == '}') {
                ++at_;
                return true;
            }
            CifCompoundValue key;
            if ((text_[at_] != '\'' && text_[at_] != '"') || !parse_quoted(key)) return false;
            if (at_ >= text_.size() || text_[at_] != ':') return false;
            ++at_;
            value.keys.push_back(std::move(key.text));
            value.entries.emplace_back();
            if (!parse_value(value.entries.back(), depth + 1)) return false;
        }
    }

    std::string_view text_;
    std::size_t at_ = 0;
};

}  // namespace

bool CifCompoundValue::parse(std::string_view text, CifCompoundValue& value) {
    value = CifCompoundValue();
    return CompoundParser(text).parse_whole(value);
}

const CifCompoundValue* CifCompoundValue::find(std::string_view key) const {
    for (std::size_t i = 0; i < keys.size() && i < entries.size(); ++i) {
        if (keys[i] == key) return &entries[i];
    }
    return nullptr;
}
