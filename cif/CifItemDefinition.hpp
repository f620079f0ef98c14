// SPDX-License-Identifier: MIT
// The definition of one data name as a dictionary gives it.
#pragma once

#include <string>
#include <vector>

#include "cif/CifEnumeration.hpp"

// The definition of one data name as a dictionary gives it. One DDL1
// definition block that names several data names (a looped _name) gives one
// CifItemDefinition per name, each with the block's attributes.
struct CifItemDefinition {
    // The type of the values: numb (numbers), char (text), null (category
    // overviews and other definitions without values).
    enum class Type { numb, char_text, null };
    // Whether a numeric value may carry a standard uncertainty in
    // parentheses: DDL1 _type_conditions esd or su.
    enum class Uncertainty { none, allowed };
    // DDL1 _list: whether the item must be (yes), must not be (no) or may be
    // (both) a loop column. DDL1 reads an absent _list as no.
    enum class List { no, yes, both };

    struct Example {
        std::string text;
        std::string detail;
    };
    struct Related {
        std::string name;      // a data name, or a name prefix such as "_atom_site_Cartn_"
        std::string function;  // "alternate", "replace", "conversion", ...
    };

    std::string name;      // as the dictionary writes it: "_atom_site_fract_x", "_atom_site_[]"
    std::string category;  // "atom_site"; "category_overview" for overview definitions
    Type type = Type::char_text;
    std::string type_text;  // as written: "numb", "char", "null"
    Uncertainty uncertainty = Uncertainty::none;
    std::vector<CifEnumeration> enumerations;
    std::string enumeration_default;
    // The value is a run of the single-letter codes of the enumeration
    // ("SG" for S and G), as definitions that speak of a concatenated series
    // of codes allow (_atom_site_refinement_flags).
    bool enumeration_concatenated = false;
    // _enumeration_range min:max, either end may be open; for char items the
    // ends are compared as texts.
    bool has_range = false;
    bool has_minimum = false;
    bool has_maximum = false;
    double minimum = 0.0;
    double maximum = 0.0;
    std::string range_text;  // as written: "0.0:180.0"
    List list = List::no;
    std::vector<std::string> list_reference;  // the item(s) a loop of this item must carry
    bool list_mandatory = false;              // every loop of the category must carry this item
    std::vector<std::string> list_link_parent;
    std::vector<std::string> list_link_child;
    std::string units;
    std::string units_detail;
    std::vector<Example> examples;
    std::vector<Related> related;
    std::string definition;  // the explanation text
    int line = 0;            // the 1-based line of the definition block in the dictionary file

    bool is_category_overview() const { return category == "category_overview"; }
};
