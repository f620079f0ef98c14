// SPDX-License-Identifier: MIT
// Edits that replace or add items, loops and blocks in a document's text.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "cif/CifTextLocator.hpp"

// One change of a document's text: the bytes [begin, end) become `text`.
// Everything outside the span stays as it was.
struct CifTextEdit {
    std::size_t begin = 0;
    std::size_t end = 0;
    std::string text;
};

// The edits that views and wizards ask for, worked out on a document's text.
// The texts given (an item, a block, a loop, as the printer writes them) may
// end in line ends, which are dropped; their line ends become the document's
// own. Each returns nothing when what it should replace or extend is not in
// the text.

// The item's name and value where it stands, or the item text added on a
// line of its own after the block's last token when the block lacks it. A
// looped item is not replaced: its loop is.
std::optional<CifTextEdit> cif_item_edit(const CifTextLocator& text, std::string_view block,
                                         std::string_view name, std::string_view item_text);
// The block from its heading to its last token.
std::optional<CifTextEdit> cif_block_edit(const CifTextLocator& text, std::string_view block,
                                          std::string_view block_text);
// A new block before the heading of `before` (a blank line between them),
// or at the end of the text when there is no such block.
CifTextEdit cif_new_block_edit(const CifTextLocator& text, std::string_view block_text,
                               std::string_view before);
// The loop holding the column `column`, from "loop_" to its last value.
std::optional<CifTextEdit> cif_loop_edit(const CifTextLocator& text, std::string_view block,
                                         std::string_view column, std::string_view loop_text);
// A loop added on a line of its own after the block's last token.
std::optional<CifTextEdit> cif_new_loop_edit(const CifTextLocator& text, std::string_view block,
                                             std::string_view loop_text);

// The text with the edit made.
std::string cif_apply_edit(std::string_view text, const CifTextEdit& edit);
