// SPDX-License-Identifier: MIT
// Edits that replace or add items, loops and blocks in a document's text.
#include "cif/CifTextEdits.hpp"

namespace {

// The text without its final line ends, its lines ended as the document's.
std::string as_document_lines(std::string_view text, const std::string& line_end) {
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.remove_suffix(1);
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '\r' || c == '\n') {
            if (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
            result += line_end;
        } else {
            result.push_back(c);
        }
    }
    return result;
}

// Added after the block's last token, on a line of its own.
std::optional<CifTextEdit> append_to_block(const CifTextLocator& text, std::string_view block,
                                           std::string_view added) {
    const auto span = text.block(block);
    if (!span) return std::nullopt;
    return CifTextEdit{span->end, span->end, text.line_end() + as_document_lines(added, text.line_end())};
}

}  // namespace

std::optional<CifTextEdit> cif_item_edit(const CifTextLocator& text, std::string_view block,
                                         std::string_view name, std::string_view item_text) {
    if (const auto span = text.item(block, name))
        return CifTextEdit{span->begin, span->end, as_document_lines(item_text, text.line_end())};
    if (text.loop(block, name)) return std::nullopt;
    return append_to_block(text, block, item_text);
}

std::optional<CifTextEdit> cif_block_edit(const CifTextLocator& text, std::string_view block,
                                          std::string_view block_text) {
    const auto span = text.block(block);
    if (!span) return std::nullopt;
    return CifTextEdit{span->begin, span->end, as_document_lines(block_text, text.line_end())};
}

CifTextEdit cif_new_block_edit(const CifTextLocator& text, std::string_view block_text,
                               std::string_view before) {
    const std::string& eol = text.line_end();
    const std::string lines = as_document_lines(block_text, eol);
    if (const auto span = text.block(before)) return CifTextEdit{span->begin, span->begin, lines + eol + eol};
    if (text.size() == 0) return CifTextEdit{0, 0, lines + eol};
    // At the end, after a blank line; a text without a final line end keeps
    // going without one.
    const bool ended = text.ends_with_line_end();
    return CifTextEdit{text.size(), text.size(), (ended ? eol : eol + eol) + lines + (ended ? eol : "")};
}

std::optional<CifTextEdit> cif_loop_edit(const CifTextLocator& text, std::string_view block,
                                         std::string_view column, std::string_view loop_text) {
    const auto span = text.loop(block, column);
    if (!span) return std::nullopt;
    return CifTextEdit{span->begin, span->end, as_document_lines(loop_text, text.line_end())};
}

std::optional<CifTextEdit> cif_new_loop_edit(const CifTextLocator& text, std::string_view block,
                                             std::string_view loop_text) {
    return append_to_block(text, block, loop_text);
}

std::string cif_apply_edit(std::string_view text, const CifTextEdit& edit) {
    std::string result;
    result.reserve(text.size() - (edit.end - edit.begin) + edit.text.size());
    result.append(text.substr(0, edit.begin));
    result.append(edit.text);
    result.append(text.substr(edit.end));
    return result;
}
