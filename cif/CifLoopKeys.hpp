// SPDX-License-Identifier: MIT
// The keys of loops as a dictionary names them, and key values that repeat.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "cif/CifDataBlock.hpp"
#include "cif/CifDictionary.hpp"
#include "cif/CifKeyOrder.hpp"
#include "cif/CifValueReporter.hpp"

// The columns that identify the rows of a loop, read from a DDL1 dictionary:
// every item other items of its category refer to (_list_reference), a
// family such as _refln_index_ being one key of all its members together,
// and the items the category makes mandatory (_list_mandatory) where those
// are not already part of a key. A key of atom-site labels (the geometry
// loops) also takes the loop's site-symmetry columns: a bond between the
// same two atoms under other symmetry is another bond. A DDLm or DDL2
// dictionary names the key of a category itself (_category_key.name): its
// columns together are the key when the loop gives all of them.
class CifLoopKeys {
public:
    explicit CifLoopKeys(const CifDictionary& dictionary) : dictionary_(dictionary) {}

    // The keys of the loop, each as the indexes of its columns in loop order.
    std::vector<std::vector<std::size_t>> keys(const CifDataBlock::ItemList& loop,
                                               const std::vector<const CifItemDefinition*>& definitions);

    // The same, worked out once per loop (the same columns, the same items)
    // until forget(): a reader asks about a loop while reading it and again
    // when its block is checked. The loop's definitions are kept with them.
    // The keys stay valid until the next call.
    const std::vector<std::vector<std::size_t>>& remembered_keys(
        const CifDataBlock::ItemList& loop, const std::vector<const CifItemDefinition*>& definitions);
    // The definitions a loop of these very columns came with, or null.
    const std::vector<const CifItemDefinition*>* remembered_definitions(
        const CifDataBlock::ItemList& loop) const;
    // Lets go of the loops remembered (at the end of a block).
    void forget() { known_.clear(); }

    // Reports each key value (359) or combination of values (369) that
    // repeats in rows [0, rows), once, on the line of its first repetition.
    // Rows with an unknown or inapplicable key value are left out, and so
    // are keys whose order the reader followed and found proof in.
    void check(const CifDataBlock::ItemList& loop, const std::vector<const CifItemDefinition*>& definitions,
               std::size_t rows, CifValueReporter& reporter, const std::vector<CifKeyOrder>& proven = {});

    // The category's facts: the dictionary's own, or gathered here once.
    const CifCategoryFacts& facts(const std::string& category);

private:
    // The columns of the category's named key, empty when the dictionary
    // names none or the loop lacks one of them.
    std::vector<std::size_t> named_key(const CifDataBlock::ItemList& loop,
                                       const std::vector<const CifItemDefinition*>& definitions,
                                       const std::string& category) const;
    void check_key(const CifDataBlock::ItemList& loop, const std::vector<std::size_t>& key, std::size_t rows,
                   const std::vector<CifKeyOrder>& proven, CifValueReporter& reporter) const;
    // Whether a loop of a few rows holds each key once, told without
    // allocating; false when it may not (the full check then decides).
    static bool distinct_small_loop(const CifDataBlock::ItemList& loop, const std::vector<std::size_t>& key,
                                    std::size_t rows);
    // Reports the key values of the row; false once the sink keeps no more.
    static bool report(const CifDataBlock::ItemList& loop, const std::vector<std::size_t>& key,
                       std::size_t row, CifValueReporter& reporter);

    const CifDictionary& dictionary_;
    // Categories whose facts the dictionary does not keep.
    std::unordered_map<std::string, CifCategoryFacts> gathered_;
    // Loops asked about since forget(), with handles of their columns.
    struct Known {
        CifDataBlock::ItemList columns;
        std::vector<const CifItemDefinition*> definitions;
        std::vector<std::vector<std::size_t>> keys;
    };
    const Known* known(const CifDataBlock::ItemList& loop) const;
    std::vector<Known> known_;
    // Scratch of check_key(), kept from loop to loop.
    mutable std::vector<std::uint64_t> hashes_, slots_;
};
