// SPDX-License-Identifier: MIT
// A template block set against a block: what it would add or change, and the merged text.
#include "cif/CifBlockMerge.hpp"

#include <algorithm>
#include <map>
#include <sstream>

#include "cif/CifNames.hpp"
#include "cif/CifPrinter.hpp"
#include "cif/CifTextLocator.hpp"

namespace {

bool is_unknown(const CifDataItem& item, std::size_t n) {
    const std::string_view value = item.value_view(n);
    return n >= item.size() || value.empty() || (!item.is_quoted(n) && (value == "?" || value == "."));
}

// The same value: the same text, and a quoted '?' is not the unknown ?.
bool same_value(const CifDataItem& a, std::size_t m, const CifDataItem& b, std::size_t n) {
    return a.value_view(m) == b.value_view(n) && is_unknown(a, m) == is_unknown(b, n);
}

bool is_line_end(char c) { return c == '\n' || c == '\r'; }

// The span widened to its whole lines (with one line end) when nothing else
// stands on them, so that taking it out leaves no blank line behind.
CifTextSpan whole_lines(const std::string& text, CifTextSpan span) {
    std::size_t begin = span.begin;
    std::size_t end = span.end;
    while (begin > 0 && (text[begin - 1] == ' ' || text[begin - 1] == '\t')) --begin;
    while (end < text.size() && (text[end] == ' ' || text[end] == '\t')) ++end;
    if (begin > 0 && !is_line_end(text[begin - 1])) return span;
    if (end < text.size() && !is_line_end(text[end])) return span;
    if (end < text.size() && text[end] == '\r') {
        ++end;
        if (end < text.size() && text[end] == '\n') ++end;
    } else if (end < text.size()) {
        ++end;
    }
    return {begin, end};
}

// Where the value of the single item at the span starts, counted from the
// span's beginning: after the name and the blanks on its line; nothing for
// a value on a line of its own.
std::optional<std::size_t> value_offset(std::string_view item) {
    std::size_t name_end = 0;
    while (name_end < item.size() && item[name_end] != ' ' && item[name_end] != '\t' &&
           !is_line_end(item[name_end]))
        ++name_end;
    std::size_t value = name_end;
    while (value < item.size() && (item[value] == ' ' || item[value] == '\t')) ++value;
    if (value == name_end || value >= item.size() || is_line_end(item[value])) return std::nullopt;
    return value;
}

std::size_t line_start(const std::string& text, std::size_t offset) {
    while (offset > 0 && !is_line_end(text[offset - 1])) --offset;
    return offset;
}

// The column (from 1) in which most of the block's single values start,
// when at least two agree; 0 when the block has no such layout.
int layout_column(const std::string& text, const CifDataBlock& block) {
    const CifTextLocator locator(text);
    std::map<std::size_t, int> columns;
    int counted = 0;
    for (auto it = block.begin_write_order(); it != block.end_write_order(); ++it) {
        if ((*it)->is_looped()) continue;
        const std::optional<CifTextSpan> span = locator.item(block.name(), (*it)->name());
        if (!span || line_start(text, span->begin) != span->begin) continue;
        const auto value = value_offset(std::string_view(text).substr(span->begin, span->end - span->begin));
        if (!value) continue;
        ++columns[*value + 1];
        ++counted;
    }
    std::size_t best = 0;
    int votes = 0;
    for (const auto& [column, count] : columns)
        if (count > votes) best = column, votes = count;
    return votes >= 2 && 2 * votes >= counted ? static_cast<int>(best) : 0;
}

// The code line of CIF 2.0, ended as the text's first line is.
std::string cif2_code_line(const std::string& text) {
    const std::size_t at = text.find_first_of("\r\n");
    if (at == std::string::npos || text[at] == '\n') return "#\\#CIF_2.0\n";
    return at + 1 < text.size() && text[at + 1] == '\n' ? "#\\#CIF_2.0\r\n" : "#\\#CIF_2.0\r";
}

}  // namespace

CifBlockMerge::CifBlockMerge(std::string block_text, THandle<CifDataBlock> incoming, int cif_version,
                             const CifWriteSettings& settings)
    : prefix_(cif_version >= 2 ? cif2_code_line(block_text) : std::string()),
      text_(prefix_ + std::move(block_text)),
      cif_(new Cif()),
      incoming_(incoming),
      settings_(settings) {
    settings_.cif_version = cif_version >= 2 ? 2 : 1;
    // Fragments from another file: its comments speak of that file.
    settings_.write_comments = false;
    CifParserSettings reading;
    reading.line_length = 0;
    reading.check_data_names = false;
    reading.check_values = false;
    cif_->read_text(text_, reading);
    if (cif_->block_count() == 0) {
        problem_ = "There is no data block here to merge into: put the cursor in a block (data_...).";
        return;
    }
    if (incoming_.is_null()) {
        problem_ = "There is no block to merge from.";
        return;
    }
    target_ = cif_->block(0);
    // From the heading to the last token: comments and blank lines after it
    // lead into whatever follows and are not the block's to rewrite.
    const CifTextLocator locator(text_);
    if (const std::optional<CifTextSpan> span = locator.block(target_->name()))
        text_ = prefix_ + text_.substr(span->begin, span->end - span->begin);
    // New items line up with the block's own.
    if (const int column = layout_column(text_, *target_)) settings_.value_column = column;
    compare();
}

std::string CifBlockMerge::block_name() const { return target_.is_null() ? std::string() : target_->name(); }

int CifBlockMerge::target_loop_of(std::string_view name) const {
    const auto& loops = target_->loops();
    for (std::size_t i = 0; i < loops.size(); ++i)
        for (const THandle<CifDataItem>& column : loops[i])
            if (cif_iequals(column->name(), name)) return static_cast<int>(i);
    return -1;
}

void CifBlockMerge::compare() {
    std::vector<bool> loop_done(incoming_->loops().size(), false);
    for (auto it = incoming_->begin_write_order(); it != incoming_->end_write_order(); ++it) {
        const CifDataItem& item = **it;
        if (!item.is_looped()) {
            rows_.push_back(compare_item(item));
            continue;
        }
        const auto& loops = incoming_->loops();
        for (std::size_t i = 0; i < loops.size(); ++i) {
            if (loop_done[i] || std::find(loops[i].begin(), loops[i].end(), *it) == loops[i].end()) continue;
            loop_done[i] = true;
            rows_.push_back(compare_loop(loops[i]));
        }
    }
}

CifMergeRow CifBlockMerge::compare_item(const CifDataItem& item) const {
    CifMergeRow row;
    row.names = {item.name()};
    row.incoming = item.value();
    const THandle<CifDataItem> mine = target_->find(item.name());
    if (mine.is_null()) {
        row.kind = CifMergeRow::added;
        row.proposed = true;
        return row;
    }
    row.current = mine->value();
    if (mine->is_looped()) {
        row.current_looped = true;
        row.current_rows = mine->size();
        row.kind = CifMergeRow::changed;
        return row;
    }
    row.kind = same_value(*mine, 0, item, 0) ? CifMergeRow::same : CifMergeRow::changed;
    row.proposed = row.kind == CifMergeRow::changed && is_unknown(*mine, 0) && !is_unknown(item, 0);
    return row;
}

CifMergeRow CifBlockMerge::compare_loop(const CifDataBlock::ItemList& columns) const {
    CifMergeRow row;
    row.loop = true;
    for (const THandle<CifDataItem>& column : columns) {
        row.names.push_back(column->name());
        row.incoming_rows = std::max(row.incoming_rows, column->size());
    }
    // The same loop: the block holds exactly these names as one loop, with the same rows.
    int loop = -2;
    bool any = false;
    bool equal = true;
    for (const THandle<CifDataItem>& column : columns) {
        const THandle<CifDataItem> mine = target_->find(column->name());
        if (mine.is_null()) {
            equal = false;
            continue;
        }
        const int its_loop = target_loop_of(column->name());
        if (!any) row.current_rows = mine->size();
        any = true;
        if (its_loop < 0 || (loop != -2 && its_loop != loop) || mine->size() != column->size()) {
            equal = false;
        } else {
            for (std::size_t n = 0; equal && n < column->size(); ++n)
                equal = same_value(*mine, n, *column, n);
        }
        loop = its_loop;
    }
    if (equal && loop >= 0 && target_->loops()[std::size_t(loop)].size() != columns.size()) equal = false;
    row.kind = !any ? CifMergeRow::added : equal ? CifMergeRow::same : CifMergeRow::changed;
    row.proposed = row.kind == CifMergeRow::added;
    return row;
}

std::string CifBlockMerge::print(const std::vector<THandle<CifDataItem>>& items, bool loop,
                                 const std::string& eol) const {
    CifDataBlock fragment(THandle<CifDictionary>(), "fragment");
    CifDataBlock::ItemList copies;
    for (const THandle<CifDataItem>& item : items) copies.push_back(item->clone());
    if (loop) {
        fragment.add_loop(copies);
    } else {
        for (const THandle<CifDataItem>& copy : copies) fragment.add_item(copy);
    }
    std::ostringstream stream;
    fragment.print(stream, settings_);
    std::string printed = stream.str();
    printed.erase(0, printed.find('\n') + 1);  // the "data_" heading
    while (!printed.empty() && printed.back() == '\n') printed.pop_back();
    std::string text;
    for (char c : printed) text += c == '\n' ? eol : std::string(1, c);
    return text;
}

std::optional<std::string> CifBlockMerge::in_place(const CifTextSpan& span, const CifDataItem& item) const {
    const std::string_view old(text_.data() + span.begin, span.end - span.begin);
    // A value on a line of its own (a text field) is written as the printer would.
    const std::optional<std::size_t> value_begin = value_offset(old);
    if (!value_begin || !item.has_value()) return std::nullopt;
    const CifPrinter::Form form = CifPrinter::choose_form(item.value_view(0), item.is_quoted(0),
                                                          item.is_compound(0), settings_.cif_version);
    if (form == CifPrinter::Form::text_field) return std::nullopt;
    const std::string value = CifPrinter::format(item.value_view(0), form);
    if (value.find_first_of("\r\n") != std::string::npos) return std::nullopt;
    const std::size_t width = span.begin - line_start(text_, span.begin) + *value_begin + value.size();
    if (settings_.line_length > 0 && width > static_cast<std::size_t>(settings_.line_length))
        return std::nullopt;
    return std::string(old.substr(0, *value_begin)) + value;
}

// What becomes of one stretch of the block's text: the columns of a loop
// that stay (a loop that loses some), and the merged items and loops put
// where the first of the block's items they replace stood.
struct CifBlockMerge::Placement {
    int loop = -1;
    std::vector<std::string> inserted;
};

std::string CifBlockMerge::merged(const std::vector<std::size_t>& chosen) const {
    if (!ok()) return text_.substr(prefix_.size());
    const CifTextLocator locator(text_);
    const std::string& eol = locator.line_end();
    const std::string block = target_->name();

    std::vector<std::size_t> order(chosen);
    std::sort(order.begin(), order.end());
    order.erase(std::unique(order.begin(), order.end()), order.end());

    // The names chosen rows take away from the block, and where each row's text goes.
    std::vector<std::string> taken;
    std::map<std::size_t, Placement> placements;  // by where the stretch begins
    std::map<std::size_t, std::size_t> ends;
    std::vector<std::string> appended;
    for (std::size_t index : order) {
        if (index >= rows_.size() || rows_[index].kind == CifMergeRow::same) continue;
        const CifMergeRow& row = rows_[index];
        std::optional<CifTextSpan> first;
        for (const std::string& name : row.names) {
            const THandle<CifDataItem> mine = target_->find(name);
            if (mine.is_null()) continue;
            taken.push_back(name);
            const int loop = target_loop_of(name);
            const std::optional<CifTextSpan> span =
                loop >= 0 ? locator.loop(block, name) : locator.item(block, name);
            if (!span) continue;
            Placement& placement = placements[span->begin];
            placement.loop = loop;
            ends[span->begin] = span->end;
            if (!first || span->begin < first->begin) first = span;
        }
        std::vector<THandle<CifDataItem>> items;
        for (const std::string& name : row.names) items.push_back(incoming_->find(name));
        std::string text;
        if (!row.loop && first && target_loop_of(row.names.front()) < 0)
            text = in_place(*first, *items.front()).value_or(std::string());
        if (text.empty()) text = print(items, row.loop, eol);
        if (first)
            placements[first->begin].inserted.push_back(std::move(text));
        else
            appended.push_back(std::move(text));
    }

    std::string result = text_;
    // The block's end first, then the stretches from the last to the first:
    // offsets before an edit stay valid.
    if (!appended.empty()) {
        const std::optional<CifTextSpan> whole = locator.block(block);
        std::string text;
        for (const std::string& part : appended) text += eol + part;
        result.insert(whole ? whole->end : result.size(), text);
    }
    for (auto it = placements.rbegin(); it != placements.rend(); ++it) {
        const Placement& placement = it->second;
        std::vector<std::string> parts;
        if (placement.loop >= 0) {
            std::vector<THandle<CifDataItem>> staying;
            for (const THandle<CifDataItem>& column : target_->loops()[std::size_t(placement.loop)]) {
                const bool gone = std::any_of(taken.begin(), taken.end(), [&](const std::string& n) {
                    return cif_iequals(n, column->name());
                });
                if (!gone) staying.push_back(column);
            }
            if (!staying.empty()) parts.push_back(print(staying, true, eol));
        }
        parts.insert(parts.end(), placement.inserted.begin(), placement.inserted.end());
        std::string text;
        for (const std::string& part : parts) text += (text.empty() ? "" : eol) + part;
        CifTextSpan span{it->first, ends[it->first]};
        if (text.empty()) span = whole_lines(result, span);
        result.replace(span.begin, span.end - span.begin, text);
    }
    return result.substr(prefix_.size());
}
