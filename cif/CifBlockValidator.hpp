// SPDX-License-Identifier: MIT
// Checks a block's items and loops against a dictionary, each finding on its own line.
#pragma once

#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "cif/CifDataBlock.hpp"
#include "cif/CifDictionary.hpp"
#include "cif/CifKeyOrder.hpp"
#include "cif/CifLoopKeys.hpp"
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
// parent's values (360, once per value); key values that repeat (359, 369,
// CifLoopKeys); names the dictionary replaces (356), and those that stand
// beside their replacement (367).
class CifBlockValidator {
public:
    // What the reader learnt of a loop beyond its columns: the first of its
    // rows a syntax problem damaged (the row count when none), the data names
    // it gave that were dropped as duplicates of earlier ones, and the keys
    // whose rows came in an order that proves them unique.
    struct LoopNotes {
        std::size_t first_damaged_row;
        std::vector<std::string> dropped_names;
        std::vector<CifKeyOrder> sorted_keys;
    };
    // First column of a loop -> what is known of it.
    using Notes = std::unordered_map<const CifDataItem*, LoopNotes>;

    // names and values say which checks run; values of the items in
    // checked were checked already (by the reader, while reading a loop);
    // rows from the damaged row of a loop on are left out of the key and
    // parent checks, whose findings there would only follow from the damage,
    // and a loop does not lack a name it gave that was dropped. keys, when
    // given (the reader's), already knows the loops it was asked about.
    CifBlockValidator(CifValueReporter& reporter, bool names, bool values,
                      const std::unordered_set<const CifDataItem*>* checked = nullptr,
                      const Notes* notes = nullptr, CifLoopKeys* keys = nullptr);

    void validate(const CifDataBlock& block);

private:
    void validate_single(const CifDataItem& item);
    // Adds a message whose text is the item's name.
    void add(CifError::ErrorID id, int line, const CifDataItem& item, std::string detail);
    void validate_loop(const CifDataBlock::ItemList& loop);
    void check_replaced(const CifDataItem& item, const CifItemDefinition& definition);
    // The messages of an item whose definition names a replacement (kept
    // apart, so that the usual answer, none, costs only the look).
    [[gnu::noinline]] void report_replaced(const CifDataItem& item, const CifItemDefinition& definition);
    void check_loop_keys(const CifDataBlock::ItemList& loop,
                         const std::vector<const CifItemDefinition*>& defs,
                         const std::vector<std::string>& dropped);
    void check_parents(const CifDataBlock& block);
    // The item's rows before the first a syntax problem damaged.
    std::size_t sound_rows(const CifDataItem& item) const;
    const std::vector<std::string>& mandatory_items(const std::string& category);
    // "; did you mean _cell_length_b?" for a name the dictionary lacks, or
    // empty when no defined name is near it.
    std::string suggestion(const CifDataItem& item) const;
    std::string find_suggestion(const std::string& name) const;

    CifValueReporter& reporter_;
    const CifDictionary& dictionary_;
    CifErrorSink& sink_;
    bool names_;
    bool values_;
    const std::unordered_set<const CifDataItem*>* checked_;
    const Notes* notes_;
    CifLoopKeys own_keys_;
    CifLoopKeys& keys_;
    const CifDataBlock* block_ = nullptr;
    // Items of the current block that name a parent, with their definitions
    // and the number of their rows that are checked.
    struct Linked {
        const CifDataItem* item;
        const CifItemDefinition* definition;
        std::size_t rows;
    };
    std::vector<Linked> linked_;
};
