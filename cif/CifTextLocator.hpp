// SPDX-License-Identifier: MIT
// Finds where blocks, items and loops stand in a document's text.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// A stretch of a document's text: bytes [begin, end).
struct CifTextSpan {
    std::size_t begin = 0;
    std::size_t end = 0;
    bool operator==(const CifTextSpan&) const = default;
};

// Where the blocks, items and loops of a document stand in its text, found
// by the lexer in one pass (so names in comments and text fields never
// count), for edits that replace them in place. Works on the text as the
// file holds it: any line ends (offsets are those of the given text), a
// byte-order mark, CIF 1.1 or 2.0. Names are compared ignoring case; with
// two blocks of one name the first counts. Items and loops of save frames
// belong to their frame and are not looked up.
class CifTextLocator {
public:
    explicit CifTextLocator(std::string_view text);

    // From the "data_" heading to the end of the block's last token (later
    // comments and blank lines stay outside, as they usually lead into the
    // next block).
    std::optional<CifTextSpan> block(std::string_view name) const;
    // An unlooped item: from its data name to the end of its value.
    std::optional<CifTextSpan> item(std::string_view block, std::string_view name) const;
    // The loop holding the named column: from "loop_" to the end of its last value.
    std::optional<CifTextSpan> loop(std::string_view block, std::string_view name) const;
    // The name of the block whose heading or text holds the offset; empty
    // before the first block.
    std::string block_at(std::size_t offset) const;
    // The first data name token of the block at or after `from` that is the
    // name itself or, for a category name ("_atom_site"), begins with it and
    // a "_" or "."; the whole block when `from` lies before it.
    std::optional<CifTextSpan> name(std::string_view block, std::string_view name,
                                    std::size_t from = 0) const;

    // The line end most lines of the text use ("\n" when it has none).
    const std::string& line_end() const { return line_end_; }
    // Whether the text ends with a line end (an empty text counts as ending so).
    bool ends_with_line_end() const { return ends_with_line_end_; }
    std::size_t size() const { return size_; }

private:
    struct Entry {
        std::vector<std::string> names;  // one for an item, the columns for a loop
        CifTextSpan span;
        std::vector<CifTextSpan> name_spans;  // where each name stands
        bool loop = false;
    };
    struct Block {
        std::string name;
        CifTextSpan span;
        std::vector<Entry> entries;
    };
    const Block* find_block(std::string_view name) const;

    std::vector<Block> blocks_;
    std::string line_end_ = "\n";
    bool ends_with_line_end_ = true;
    std::size_t size_ = 0;
};
