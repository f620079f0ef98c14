// SPDX-License-Identifier: MIT
// Checks a block's items and loops against a dictionary, each finding on its own line.
#pragma once

#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "cif/CifDataBlock.hpp"
#include "cif/CifDictionary.hpp"
#include "cif/CifValueReporter.hpp"

// Checks the items and loops of a block against a dictionary, each finding
// on the line of what it is about (a value's own line, also inside a loop):
// data names the dictionary does not define (320, with the defined names
// one or two edits away as a suggestion); every value against its
// definition (CifValueCheck); the loop rules of DDL1 (_list: 327, 328);
// loops that mix categories or rows of different keys (329); loops that
// lack the item their columns refer to (_list_reference) or an item their
// category makes mandatory (_list_mandatory), both 358; items whose parent
// (_list_link_parent) the block lacks (357) and values not found among the
// parent's values (360, once per value).
class CifBlockValidator {
public:
    // names and values say which checks run; values of the items in
    // checked were checked already (by the reader, while reading a loop).
    CifBlockValidator(CifValueReporter& reporter, bool names, bool values,
                      const std::unordered_set<const CifDataItem*>* checked = nullptr);

    void validate(const CifDataBlock& block);

private:
    void validate_single(const CifDataItem& item);
    void validate_loop(const CifDataBlock::ItemList& loop);
    void check_loop_keys(const CifDataBlock::ItemList& loop,
                         const std::vector<const CifItemDefinition*>& defs);
    void check_parents(const CifDataBlock& block);
    const std::vector<std::string>& mandatory_items(const std::string& category);
    // "; did you mean _cell_length_b?" for a name the dictionary lacks, or
    // empty when no defined name is near it.
    std::string suggestion(const std::string& name) const;

    CifValueReporter& reporter_;
    const CifDictionary& dictionary_;
    CifErrorSink& sink_;
    bool names_;
    bool values_;
    const std::unordered_set<const CifDataItem*>* checked_;
    std::unordered_map<std::string, std::vector<std::string>> mandatory_;  // category -> its mandatory items
    // Items of the current block that name a parent, with their definitions.
    std::vector<std::pair<const CifDataItem*, const CifItemDefinition*>> linked_;
};
