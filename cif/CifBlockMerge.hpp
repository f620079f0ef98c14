// SPDX-License-Identifier: MIT
// A template block set against a block: what it would add or change, and the merged text.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cif/Cif.hpp"
#include "cif/CifDataBlock.hpp"
#include "cif/CifTextLocator.hpp"
#include "cif/CifWriteSettings.hpp"
#include "support/THandle.hpp"

// One item or loop of the incoming block, as it would meet the block.
struct CifMergeRow {
    enum Kind {
        added,    // the block lacks it (a loop: lacks all its data names)
        changed,  // the block holds it with another value (a loop: other names, rows or values)
        same,     // the block holds it as it comes: nothing to merge
    };
    std::vector<std::string> names;  // the data name, or the loop's data names in column order
    bool loop = false;
    Kind kind = added;
    // Items: the block's value (empty when absent) and the incoming one.
    std::string current;
    std::string incoming;
    // Loops: the rows of the block's loop holding the first present name
    // (0 when absent) and the incoming rows. For an item the block holds in
    // a loop, current_rows is that loop's rows.
    std::size_t current_rows = 0;
    std::size_t incoming_rows = 0;
    bool current_looped = false;
    // Whether the row starts chosen: additions, and values filling one the
    // block leaves unknown (? or .). Replacing a known value is the user's
    // choice.
    bool proposed = false;
};

// Compares a block's text with an incoming block (a template's), item by
// item and loop by loop, and writes the block's text with the chosen rows
// merged in: a chosen item replaces the block's item where it stands or
// goes after the block's last token; a chosen loop replaces the block's
// items of its names, in place of the first of them, or goes at the end.
// Every byte of the block that no chosen row touches stays as it was; a
// loop that loses a column to a chosen row is written anew.
class CifBlockMerge {
public:
    // block_text: one block as the document holds it (any line ends), of
    // which the first block counts; cif_version: the document's (1 or 2).
    CifBlockMerge(std::string block_text, THandle<CifDataBlock> incoming, int cif_version = 1,
                  const CifWriteSettings& settings = CifWriteSettings());

    // Whether the text held a block; otherwise problem() tells the user why not.
    bool ok() const { return problem_.empty(); }
    const std::string& problem() const { return problem_; }
    // The block's name (without "data_").
    std::string block_name() const;
    const std::vector<CifMergeRow>& rows() const { return rows_; }

    // The block's text, from its heading to its last token, with the rows
    // at these indices of rows() merged in (rows that are the same change
    // nothing); the block as it was when nothing is chosen.
    std::string merged(const std::vector<std::size_t>& chosen) const;

private:
    struct Placement;
    void compare();
    CifMergeRow compare_item(const CifDataItem& item) const;
    CifMergeRow compare_loop(const CifDataBlock::ItemList& columns) const;
    int target_loop_of(std::string_view name) const;
    // A single value replacing the one at the span: the name as the block
    // writes it and the blanks before the value kept, when the value fits
    // on the line so; nothing when it must be printed afresh.
    std::optional<std::string> in_place(const CifTextSpan& span, const CifDataItem& item) const;
    // An item or a loop printed as CIF text, in the block's line ends.
    std::string print(const std::vector<THandle<CifDataItem>>& items, bool loop,
                      const std::string& eol) const;

    std::string prefix_;  // "#\#CIF_2.0" for a CIF 2.0 document: the text is read as the document is
    std::string text_;    // prefix_ + the block's text
    THandle<Cif> cif_;
    THandle<CifDataBlock> target_;
    THandle<CifDataBlock> incoming_;
    CifWriteSettings settings_;
    std::string problem_;
    std::vector<CifMergeRow> rows_;
};
