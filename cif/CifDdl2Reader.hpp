// SPDX-License-Identifier: MIT
// Fills a concrete dictionary from DDL2 (mmCIF) text: categories, items, types, keys and links.
#pragma once

#include <ostream>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "cif/CifErrorContainer.hpp"
#include "cif/CifItemDefinition.hpp"
#include "support/THandle.hpp"

class CifConcreteDictionary;
class CifDataBlock;

// Fills a CifConcreteDictionary from DDL2 text (mmCIF dictionaries such as
// mmcif_pdbx.dic): the data block gives the descriptor and the type codes
// (_item_type_list), each save frame defines a category (_category.id,
// _category_key.name) or an item (_item.name, _item_type.code,
// _item_enumeration, _item_range, _item_units, _item_aliases). A frame that
// lists several _item.name defines the ones without a frame of their own
// too, and its _item_linked rows make parents of children. Every item may
// be looped; a category's keys are the keys of its loops.
class CifDdl2Reader {
public:
    CifDdl2Reader(CifConcreteDictionary& dictionary, THandle<CifErrorContainer> errors, std::ostream* log);

    void read(std::string text);

private:
    struct TypeCode {
        CifItemDefinition::Type type = CifItemDefinition::Type::char_text;
        CifItemDefinition::Contents contents = CifItemDefinition::Contents::any;
    };

    void read_type_list(const CifDataBlock& block);
    void read_category(const CifDataBlock& frame);
    void read_item(const CifDataBlock& frame);
    void finish();

    CifConcreteDictionary& dictionary_;
    THandle<CifErrorContainer> errors_;
    std::ostream* log_;
    std::unordered_map<std::string, TypeCode> types_;  // _item_type_list.code -> what it allows
    std::vector<std::string> category_names_;          // as written, in order
    std::unordered_map<std::string, std::vector<std::string>> keys_;  // lower-case category -> keys
    // Items named by a frame of another item, with that frame's definition index.
    std::vector<std::pair<std::string, std::size_t>> shared_;
    std::vector<std::pair<std::string, std::string>> shared_categories_;  // name, category
    std::vector<std::pair<std::string, std::string>> links_;              // child, parent
    std::unordered_set<std::string> mandatory_;  // lower-case names of items with _item.mandatory_code yes
};
