// SPDX-License-Identifier: MIT
// The definition of one data name as a dictionary gives it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "cif/CifEnumeration.hpp"

// The definition of one data name as a dictionary gives it. One DDL1
// definition block that names several data names (a looped _name) gives one
// CifItemDefinition per name, each with the block's attributes.
struct CifItemDefinition {
    // The type of the values: numb (numbers), char (text), null (category
    // overviews and other definitions without values).
    enum class Type : std::uint8_t { numb, char_text, null };
    // Whether a numeric value may carry a standard uncertainty in
    // parentheses: DDL1 _type_conditions esd or su.
    enum class Uncertainty : std::uint8_t { none, allowed };
    // DDL1 _list: whether the item must be (yes), must not be (no) or may be
    // (both) a loop column. DDL1 reads an absent _list as no.
    enum class List : std::uint8_t { no, yes, both };

    // What a value must look like beyond numb or char: DDLm _type.contents
    // and DDL2 _item_type.code. DDL1 definitions leave it at any.
    enum class Contents : std::uint8_t {
        any,        // every value of the type
        real,       // a number
        integer,    // a whole number
        count,      // a whole number, not negative
        word,       // text without white space
        code,       // a word whose case does not matter (permitted values compared without case)
        date,       // yyyy-mm-dd
        date_time,  // yyyy-mm-dd, optionally followed by a time
        symop,      // a symmetry operation's number, optionally _ and three translation digits
    };
    // DDLm _type.container: how many values one value holds.
    enum class Container : std::uint8_t { single, list, matrix, array, table };

    struct Example {
        std::string text;
        std::string detail;
    };
    struct Related {
        std::string name;      // a data name, or a name prefix such as "_atom_site_Cartn_"
        std::string function;  // "alternate", "replace", "conversion", ...
    };
    // What only explains the item to a person (the data-item help shows
    // it); no check looks at it.
    struct Notes {
        std::string definition;  // the explanation text
        std::string units;
        std::string units_detail;
        std::string enumeration_default;
        std::vector<Example> examples;
        std::vector<std::string> list_link_child;

        bool empty() const {
            return definition.empty() && units.empty() && units_detail.empty() &&
                   enumeration_default.empty() && examples.empty() && list_link_child.empty();
        }
    };

    std::string name;       // as the dictionary writes it: "_atom_site_fract_x", "_atom_site_[]"
    std::string category;   // "atom_site"; "category_overview" for overview definitions
    std::string type_text;  // as written: "numb", "char", "null"
    std::vector<CifEnumeration> enumerations;
    std::string range_text;  // as written: "0.0:180.0"
    // _enumeration_range min:max, either end may be open; for char items the
    // ends are compared as texts.
    double minimum = 0.0;
    double maximum = 0.0;
    std::vector<std::string> list_reference;  // the item(s) a loop of this item must carry
    std::vector<std::string> list_link_parent;
    // The sizes of a List, Matrix or Array ([3,3] gives 3, 3); empty: any size.
    std::vector<std::size_t> dimension;
    // The data names whose values together tell the rows of the item's
    // category apart (DDLm and DDL2 _category_key.name); empty when the
    // dictionary names none or the category is not a loop.
    std::vector<std::string> category_keys;
    // The category whose loops this item's column may join when it is not
    // the item's own (DDLm: a Loop category inside a Loop category, such as
    // atom_type_scat inside atom_type); empty otherwise.
    std::string loop_category;
    std::vector<Related> related;
    // Other names of the same item (DDLm _alias.definition_id, DDL2
    // _item_aliases.alias_name): the dictionary answers for them too.
    std::vector<std::string> aliases;
    int line = 0;  // the 1-based line of the definition block in the dictionary file
    Type type = Type::char_text;
    Uncertainty uncertainty = Uncertainty::none;
    // The value is a run of the single-letter codes of the enumeration
    // ("SG" for S and G), as definitions that speak of a concatenated series
    // of codes allow (_atom_site_refinement_flags).
    bool enumeration_concatenated = false;
    bool has_range = false;
    bool has_minimum = false;
    bool has_maximum = false;
    List list = List::no;
    bool list_mandatory = false;  // every loop of the category must carry this item
    Contents contents = Contents::any;
    Container container = Container::single;

    bool is_category_overview() const { return category == "category_overview"; }

    // The explanations (empty ones when the dictionary gives none or was
    // read without them). Kept apart from what the checks use, and shared
    // by the definitions of one block that names several items.
    const Notes& notes() const {
        static const Notes none;
        return notes_ ? *notes_ : none;
    }
    void set_notes(Notes notes) {
        notes_ = notes.empty() ? nullptr : std::make_shared<const Notes>(std::move(notes));
    }

    // Drops the explanations, and the permitted values' details with them.
    void drop_explanations() {
        notes_.reset();
        // Swapped with empty ones: assigning an empty string keeps the old buffer.
        for (CifEnumeration& entry : enumerations) std::string().swap(entry.detail);
    }

private:
    friend class CifDictionaryStore;
    std::shared_ptr<const Notes> notes_;
};
