// SPDX-License-Identifier: MIT
// Writes blocks as CIF text, every value delimited as CIF requires.
#include "cif/CifPrinter.hpp"

#include <algorithm>
#include <unordered_map>
#include <vector>

#include "cif/CifDataBlock.hpp"
#include "cif/CifNames.hpp"

namespace {

bool is_blank(char c) { return c == ' ' || c == '\t'; }

bool is_reserved_word(std::string_view value) {
    return cif_istarts_with(value, "data_") || cif_istarts_with(value, "save_") ||
           cif_iequals(value, "loop_") || cif_iequals(value, "global_") || cif_iequals(value, "stop_");
}

bool can_be_bare(std::string_view value, int cif_version) {
    if (value.empty()) return false;
    switch (value[0]) {
        case '_':
        case '#':
        case '$':
        case '\'':
        case '"':
        case ';':
        case '[':
        case ']':
            return false;
        default:
            break;
    }
    for (char c : value) {
        if (is_blank(c) || c == '\n' || c == '\r') return false;
        if (cif_version >= 2 && (c == '[' || c == ']' || c == '{' || c == '}')) return false;
    }
    if (cif_version >= 2 && value[0] == '{') return false;
    return !is_reserved_word(value);
}

// CIF 1.1 ends a quoted value at a quote followed by white space.
bool can_quote_1(std::string_view value, char quote) {
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] == '\n' || value[i] == '\r') return false;
        if (value[i] == quote && i + 1 < value.size() && is_blank(value[i + 1])) return false;
    }
    return true;
}

// CIF 2.0 ends a quoted value at the first matching quote.
bool can_quote_2(std::string_view value, char quote) {
    return value.find(quote) == std::string_view::npos && value.find('\n') == std::string_view::npos &&
           value.find('\r') == std::string_view::npos;
}

bool can_triple_quote(std::string_view value, char quote) {
    std::string triple(3, quote);
    return value.find(triple) == std::string_view::npos && (value.empty() || value.back() != quote);
}

std::string delimited(std::string_view value, std::string_view quote) {
    std::string text;
    text.reserve(value.size() + 2 * quote.size());
    text.append(quote).append(value).append(quote);
    return text;
}

std::string comment_line(std::string_view line) {
    if (!line.empty() && line[0] == '#') return std::string(line);
    return "# " + std::string(line);
}

}  // namespace

CifPrinter::Form CifPrinter::choose_form(std::string_view value, bool quoted, bool compound,
                                         int cif_version) {
    if (compound) return Form::verbatim;
    bool multi_line = value.find_first_of("\n\r") != std::string_view::npos;
    if (multi_line) {
        if (cif_version >= 2 && value.find("\n;") != std::string_view::npos) {
            if (can_triple_quote(value, '\'')) return Form::triple_single;
            if (can_triple_quote(value, '"')) return Form::triple_double;
        }
        return Form::text_field;
    }
    if (!quoted && can_be_bare(value, cif_version)) return Form::bare;
    if (cif_version >= 2) {
        if (can_quote_2(value, '\'')) return Form::single_quoted;
        if (can_quote_2(value, '"')) return Form::double_quoted;
        if (can_triple_quote(value, '\'')) return Form::triple_single;
        if (can_triple_quote(value, '"')) return Form::triple_double;
        return Form::text_field;
    }
    if (can_quote_1(value, '\'')) return Form::single_quoted;
    if (can_quote_1(value, '"')) return Form::double_quoted;
    return Form::text_field;
}

std::string CifPrinter::format(std::string_view value, Form form) {
    switch (form) {
        case Form::bare:
        case Form::verbatim:
            return std::string(value);
        case Form::single_quoted:
            return delimited(value, "'");
        case Form::double_quoted:
            return delimited(value, "\"");
        case Form::triple_single:
            return delimited(value, "'''");
        case Form::triple_double:
            return delimited(value, "\"\"\"");
        case Form::text_field:
            break;
    }
    // A line that began with ";" would end the field early; CIF 1.1 has no
    // way to write it, so such a line gets a leading blank.
    std::string text = ";";
    for (std::size_t i = 0; i < value.size(); ++i) {
        char c = value[i];
        if (c == '\r') c = '\n';
        text += c;
        if (c == '\n' && i + 1 < value.size() && value[i + 1] == ';') text += ' ';
    }
    text += "\n;";
    return text;
}

void CifPrinter::print_block(const CifDataBlock& block, std::ostream& stream) const {
    if (settings_.write_comments) print_comments(block.comments(CifCommentable::preceding_comment), stream);
    stream << "data_" << block.name() << '\n';
    print_contents(block, stream);
    for (const THandle<CifDataBlock>& frame : block.save_frames()) print_frame(*frame, stream);
    if (settings_.write_comments) print_comments(block.comments(CifCommentable::following_comment), stream);
}

void CifPrinter::print_frame(const CifDataBlock& frame, std::ostream& stream) const {
    if (settings_.write_comments) print_comments(frame.comments(CifCommentable::preceding_comment), stream);
    stream << "\nsave_" << frame.name() << '\n';
    print_contents(frame, stream);
    if (settings_.write_comments) print_comments(frame.comments(CifCommentable::following_comment), stream);
    stream << "save_\n";
}

void CifPrinter::print_contents(const CifDataBlock& block, std::ostream& stream) const {
    std::unordered_map<const CifDataItem*, std::size_t> loop_of;
    for (std::size_t i = 0; i < block.loops().size(); ++i) {
        for (const THandle<CifDataItem>& column : block.loops()[i]) loop_of[column.get()] = i;
    }
    std::vector<bool> printed(block.loops().size(), false);
    for (auto it = block.begin_write_order(); it != block.end_write_order(); ++it) {
        auto found = loop_of.find(it->get());
        if (found == loop_of.end()) {
            print_item(**it, stream);
        } else if (!printed[found->second]) {
            printed[found->second] = true;
            print_loop(block, found->second, stream);
        }
    }
}

void CifPrinter::print_item(const CifDataItem& item, std::ostream& stream) const {
    if (settings_.write_comments) print_comments(item.comments(CifCommentable::preceding_comment), stream);
    std::string value = "?";
    Form form = Form::bare;
    if (item.has_value()) {
        form = choose_form(item.value_view(0), item.is_quoted(0), item.is_compound(0), settings_.cif_version);
        value = format(item.value_view(0), form);
    }
    std::size_t limit =
        settings_.line_length > 0 ? static_cast<std::size_t>(settings_.line_length) : SIZE_MAX;
    std::string trailing =
        settings_.write_comments ? item.comments(CifCommentable::trailing_comment) : std::string();
    if (form == Form::text_field) {
        stream << item.name() << '\n' << value << '\n';
        if (!trailing.empty()) print_comments(trailing, stream);
        return;
    }
    std::string line = item.name();
    bool multi_line = value.find('\n') != std::string::npos;
    if (!multi_line && line.size() + 1 + value.size() <= limit) {
        std::size_t column =
            settings_.value_column > 1 ? static_cast<std::size_t>(settings_.value_column - 1) : 0;
        std::size_t padded = std::max(line.size() + 1, column);
        line.append(padded + value.size() <= limit ? padded - line.size() : 1, ' ');
        line += value;
    } else {
        // A value that does not fit beside its name takes the next line.
        stream << line << '\n';
        line = value;
    }
    if (!trailing.empty() && trailing.find('\n') == std::string::npos &&
        line.size() + 1 + comment_line(trailing).size() <= limit) {
        stream << line << ' ' << comment_line(trailing) << '\n';
    } else {
        stream << line << '\n';
        if (!trailing.empty()) print_comments(trailing, stream);
    }
}

void CifPrinter::print_loop(const CifDataBlock& block, std::size_t loop, std::ostream& stream) const {
    const CifDataBlock::ItemList& columns = block.loops()[loop];
    bool comments = settings_.write_comments;
    if (comments) print_comments(columns.front()->comments(CifCommentable::preceding_comment), stream);
    stream << "loop_\n";
    std::size_t rows = 0;
    for (std::size_t c = 0; c < columns.size(); ++c) {
        if (comments && c > 0)
            print_comments(columns[c]->comments(CifCommentable::preceding_comment), stream);
        stream << columns[c]->name() << '\n';
        rows = std::max(rows, columns[c]->size());
    }
    if (comments) print_comments(columns.front()->comments(CifCommentable::inner_comment), stream);
    std::size_t limit =
        settings_.line_length > 0 ? static_cast<std::size_t>(settings_.line_length) : SIZE_MAX;
    int version = settings_.cif_version;

    // Columns are aligned when a row of the widest values fits on a line.
    std::vector<std::size_t> widths(columns.size(), 0);
    for (std::size_t c = 0; c < columns.size(); ++c) {
        const CifDataItem& item = *columns[c];
        for (std::size_t r = 0; r < item.size(); ++r) {
            std::string_view v = item.value_view(r);
            Form form = choose_form(v, item.is_quoted(r), item.is_compound(r), version);
            if (form == Form::text_field || v.find('\n') != std::string_view::npos) continue;
            std::size_t width =
                v.size() + (form == Form::bare || form == Form::verbatim                   ? 0
                            : (form == Form::triple_single || form == Form::triple_double) ? 6
                                                                                           : 2);
            widths[c] = std::max(widths[c], width);
        }
        if (item.size() < rows) widths[c] = std::max<std::size_t>(widths[c], 1);
    }
    std::size_t total = columns.size() - 1;
    for (std::size_t width : widths) total += width;
    bool aligned = total <= limit;

    std::string line;
    auto flush = [&]() {
        if (!line.empty()) stream << line << '\n';
        line.clear();
    };
    for (std::size_t r = 0; r < rows; ++r) {
        for (std::size_t c = 0; c < columns.size(); ++c) {
            const CifDataItem& item = *columns[c];
            std::string text = "?";
            Form form = Form::bare;
            if (r < item.size()) {
                std::string_view v = item.value_view(r);
                form = choose_form(v, item.is_quoted(r), item.is_compound(r), version);
                text = format(v, form);
            }
            if (form == Form::text_field) {
                flush();
                stream << text << '\n';
                continue;
            }
            if (aligned && c + 1 < columns.size() && text.size() < widths[c])
                text.append(widths[c] - text.size(), ' ');
            if (!line.empty() && line.size() + 1 + text.size() > limit) flush();
            if (!line.empty()) line += ' ';
            line += text;
        }
        if (!line.empty()) {
            while (!line.empty() && line.back() == ' ') line.pop_back();
            flush();
        }
    }
}

void CifPrinter::print_comments(const std::string& text, std::ostream& stream) const {
    if (text.empty()) return;
    std::size_t start = 0;
    while (start <= text.size()) {
        std::size_t end = text.find('\n', start);
        if (end == std::string::npos) end = text.size();
        stream << comment_line(std::string_view(text).substr(start, end - start)) << '\n';
        start = end + 1;
    }
}
