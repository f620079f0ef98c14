// SPDX-License-Identifier: MIT
// Finds where blocks, items and loops stand in a document's text.
#include "cif/CifTextLocator.hpp"

#include <algorithm>

#include "cif/CifErrorSink.hpp"
#include "cif/CifLexer.hpp"
#include "cif/CifNames.hpp"
#include "cif/CifParserSettings.hpp"

namespace {

// The text with CR LF and lone CR made LF, as the lexer reads it, and the
// start of every line in both texts, so that offsets can be taken back.
struct LfText {
    std::string text;
    std::vector<std::size_t> starts;  // empty when the text had no CR
    std::vector<std::size_t> original_starts;

    explicit LfText(std::string_view original) {
        if (original.find('\r') == std::string_view::npos) {
            text.assign(original);
            return;
        }
        text.reserve(original.size());
        starts.push_back(0);
        original_starts.push_back(0);
        for (std::size_t i = 0; i < original.size(); ++i) {
            const char c = original[i];
            if (c != '\r' && c != '\n') {
                text.push_back(c);
                continue;
            }
            if (c == '\r' && i + 1 < original.size() && original[i + 1] == '\n') ++i;
            text.push_back('\n');
            starts.push_back(text.size());
            original_starts.push_back(i + 1);
        }
    }

    std::size_t back(std::size_t offset) const {
        if (starts.empty()) return offset;
        const auto next = std::upper_bound(starts.begin(), starts.end(), offset);
        const auto line = static_cast<std::size_t>(next - starts.begin()) - 1;
        return original_starts[line] + (offset - starts[line]);
    }
};

std::string dominant_line_end(std::string_view text) {
    std::size_t lf = 0, crlf = 0, cr = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\n') {
            ++lf;
        } else if (text[i] == '\r') {
            if (i + 1 < text.size() && text[i + 1] == '\n') {
                ++crlf;
                ++i;
            } else {
                ++cr;
            }
        }
    }
    if (crlf > lf && crlf >= cr) return "\r\n";
    if (cr > lf && cr > crlf) return "\r";
    return "\n";
}

// Whether a name found in the text stands for the name asked for: the same
// name, or an item of the category asked for.
bool names_match(std::string_view found, std::string_view asked, bool category) {
    if (cif_iequals(found, asked)) return true;
    if (!category || found.size() <= asked.size() || !cif_istarts_with(found, asked)) return false;
    const char next = found[asked.size()];
    return next == '_' || next == '.';
}

}  // namespace

CifTextLocator::CifTextLocator(std::string_view original) : size_(original.size()) {
    line_end_ = dominant_line_end(original);
    ends_with_line_end_ = original.empty() || original.back() == '\n' || original.back() == '\r';

    const LfText lf(original);
    const std::string& text = lf.text;
    std::size_t start = text.compare(0, 3, "\xEF\xBB\xBF") == 0 ? 3 : 0;
    const bool cif2 = text.compare(start, 10, "#\\#CIF_2.0") == 0 &&
                      (text.size() == start + 10 || text[start + 10] == ' ' || text[start + 10] == '\t' ||
                       text[start + 10] == '\n');
    const CifParserSettings settings;
    CifErrorSink ignored(1);
    const char* base = text.data();
    CifLexer lexer(base, base + text.size(), base + start, cif2 ? 2 : 1, settings, ignored);

    enum class State { none, item, loop_names, loop_values } state = State::none;
    bool in_frame = false;
    Entry* entry = nullptr;  // the item or loop being read, when it is recorded
    for (CifToken token = lexer.next(); token.kind != CifToken::end; token = lexer.next()) {
        const auto at = static_cast<std::size_t>(token.begin - base);
        const auto after = static_cast<std::size_t>(lexer.position() - base);
        switch (token.kind) {
            case CifToken::data:
                blocks_.push_back({std::string(token.begin, token.length), {at - 5, after}, {}});
                state = State::none;
                in_frame = false;
                entry = nullptr;
                break;
            case CifToken::save:
            case CifToken::save_end:
                in_frame = token.kind == CifToken::save;
                state = State::none;
                entry = nullptr;
                break;
            case CifToken::loop:
                state = State::loop_names;
                entry = nullptr;
                if (!blocks_.empty() && !in_frame) {
                    blocks_.back().entries.push_back({{}, {at, after}, {}, true});
                    entry = &blocks_.back().entries.back();
                }
                break;
            case CifToken::name:
                if (state == State::loop_names) {
                    if (entry != nullptr) {
                        entry->names.emplace_back(token.begin, token.length);
                        entry->name_spans.push_back({at, at + token.length});
                        entry->span.end = after;
                    }
                    break;
                }
                state = State::item;
                entry = nullptr;
                if (!blocks_.empty() && !in_frame) {
                    blocks_.back().entries.push_back(
                        {{std::string(token.begin, token.length)}, {at, after}, {{at, after}}, false});
                    entry = &blocks_.back().entries.back();
                }
                break;
            case CifToken::value:
                if (state == State::item) {
                    if (entry != nullptr) entry->span.end = after;
                    state = State::none;
                    entry = nullptr;
                } else if (state == State::loop_names || state == State::loop_values) {
                    if (entry != nullptr) entry->span.end = after;
                    state = State::loop_values;
                }
                break;
            default:
                state = State::none;
                entry = nullptr;
                break;
        }
        if (!blocks_.empty()) blocks_.back().span.end = after;
    }

    // Offsets of the text as given.
    if (lf.starts.empty()) return;
    const auto back = [&lf](CifTextSpan& span) {
        span.begin = lf.back(span.begin);
        span.end = lf.back(span.end);
    };
    for (Block& block : blocks_) {
        back(block.span);
        for (Entry& item : block.entries) {
            back(item.span);
            for (CifTextSpan& span : item.name_spans) back(span);
        }
    }
}

const CifTextLocator::Block* CifTextLocator::find_block(std::string_view name) const {
    const std::string code = cif_block_code(name);
    for (const Block& block : blocks_)
        if (cif_iequals(block.name, code)) return &block;
    return nullptr;
}

std::optional<CifTextSpan> CifTextLocator::block(std::string_view name) const {
    const Block* found = find_block(name);
    if (found == nullptr) return std::nullopt;
    return found->span;
}

std::optional<CifTextSpan> CifTextLocator::item(std::string_view block, std::string_view name) const {
    const Block* found = find_block(block);
    if (found == nullptr) return std::nullopt;
    for (const Entry& entry : found->entries)
        if (!entry.loop && cif_iequals(entry.names.front(), name)) return entry.span;
    return std::nullopt;
}

std::optional<CifTextSpan> CifTextLocator::loop(std::string_view block, std::string_view name) const {
    const Block* found = find_block(block);
    if (found == nullptr) return std::nullopt;
    for (const Entry& entry : found->entries) {
        if (!entry.loop) continue;
        for (const std::string& column : entry.names)
            if (cif_iequals(column, name)) return entry.span;
    }
    return std::nullopt;
}

std::string CifTextLocator::block_at(std::size_t offset) const {
    std::string name;
    for (const Block& block : blocks_) {
        if (block.span.begin > offset) break;
        name = block.name;
    }
    return name;
}

std::optional<CifTextSpan> CifTextLocator::name(std::string_view block, std::string_view name,
                                                std::size_t from) const {
    const Block* found = find_block(block);
    if (found == nullptr) return std::nullopt;
    for (const bool category : {false, true}) {
        for (const Entry& entry : found->entries) {
            for (std::size_t i = 0; i < entry.names.size(); ++i) {
                const CifTextSpan& span = entry.name_spans[i];
                if (span.begin >= from && names_match(entry.names[i], name, category)) return span;
            }
        }
    }
    return std::nullopt;
}
