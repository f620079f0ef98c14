// SPDX-License-Identifier: MIT
// The findings of a document's cross-checks, each on the line of the item or value it concerns.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "cif/Cif.hpp"
#include "cif/CifError.hpp"

class CifDataBlock;
class CifDataItem;
class CifLineIndex;

// Collects the findings of the cross-checks of one document: each on the
// line of the item it names (the block's heading when the block lacks the
// item) or of one of the item's values. Knows which loop rows a syntax
// problem damaged, so that checks of rows can leave them out.
class CifCheckFindings {
public:
    explicit CifCheckFindings(const Cif& cif);
    ~CifCheckFindings();

    // A finding of the catalogue's kind, on the line of the item.
    void add(CifError::ErrorID id, const CifDataBlock& block, const std::string& name,
             const std::string& detail);
    // The same with a level of its own.
    void add(CifError::ErrorID id, CifError::ErrorType type, const CifDataBlock& block,
             const std::string& name, const std::string& detail);
    void add(CifError error) { findings_.push_back(std::move(error)); }

    // The line of an item, or of the block's heading when the block lacks it.
    int item_line(const CifDataBlock& block, const std::string& name) const;
    // The line of the item's value n.
    int value_line(const CifDataBlock& block, const std::string& name, std::size_t n) const;
    // The item's rows before the first a syntax problem damaged.
    std::size_t sound_rows(const CifDataBlock& block, const CifDataItem& item) const;

    // The findings in line order (stable); the collection is empty afterwards.
    std::vector<CifError> take();

private:
    // The line index of the document's text, made when a value first needs its line.
    const CifLineIndex& line_index() const;

    std::string_view text_;
    mutable std::unique_ptr<CifLineIndex> lines_;
    std::vector<int> damage_lines_;  // sorted lines of syntax problems that displace values
    std::vector<CifError> findings_;
};
