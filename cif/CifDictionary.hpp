// SPDX-License-Identifier: MIT
// The interface of a source of data-name definitions that documents are checked against.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "cif/CifCategoryFacts.hpp"
#include "cif/CifEnumeration.hpp"
#include "cif/CifItemDefinition.hpp"

// A source of data-name definitions that documents are checked against.
// Data names are compared without regard to case. A concrete dictionary
// (one file read into memory, CifConcreteDictionary) and a pool of several
// dictionaries searched together (CifDictionaryPool) derive from it.
class CifDictionary {
public:
    using Enumeration = CifEnumeration;

    CifDictionary() : serial_(next_serial()) {}
    // A copy is another dictionary: it gets a number of its own.
    CifDictionary(const CifDictionary&) : serial_(next_serial()) {}
    CifDictionary& operator=(const CifDictionary&) {
        serial_ = next_serial();
        return *this;
    }
    virtual ~CifDictionary() = default;

    // A number given to no other dictionary of the process, renewed when the
    // dictionary's answers may change (read again): what is remembered of
    // its answers is kept under it. A view of another dictionary gives that
    // one's number; 0 says that its answers are not to be kept.
    virtual std::uint64_t serial() const { return serial_; }

    // Whether the dictionary defines the data name (with its leading
    // underscore), compared without regard to case.
    virtual bool is_defined(const std::string& data_name) const = 0;

    // The definition of a data name, or null when it has none. The pointer
    // stays valid while the dictionary lives and is not read again.
    virtual const CifItemDefinition* definition(const std::string& data_name) const {
        (void)data_name;
        return nullptr;
    }
    // The same for a name whose cif_name_hash() the caller knows (an item
    // keeps its name's), which a dictionary indexed by that hash takes.
    virtual const CifItemDefinition* definition_hashed(const std::string& data_name,
                                                       std::uint64_t name_hash) const {
        (void)name_hash;
        return definition(data_name);
    }

    // Whether definition() answers for every name is_defined() accepts, so
    // that a name without a definition is known to be undefined without
    // asking again (true for dictionaries read from files).
    virtual bool defines_by_definitions() const { return false; }

    // Whether a definition may give other names of its item (aliases);
    // false when none does (DDL1), and a search under them can be skipped.
    virtual bool has_aliases() const { return true; }

    // Whether documents are checked against this dictionary at all: false
    // for a dictionary that defines nothing (an empty pool), which readers
    // then treat as no dictionary (no data name is reported as undefined).
    virtual bool has_definitions() const { return true; }

    // The code (CifError::ErrorID) of the first problem of the value for the
    // data name, 0 when it is acceptable; a looped value is checked as one
    // entry of a loop column. Names without a definition accept every value.
    // The default checks the value against definition(); see CifValueCheck.
    virtual int check_value(const std::string& data_name, const std::string& value, bool looped) const;

    // The dictionary's name: for one file its descriptor's name; for a pool
    // the names of its members joined by ", ".
    virtual std::string name() const { return std::string(); }

    // The names of all categories, in the dictionary's own order. For DDL1
    // these are the category-overview names ("_atom_site_[]"), the overview
    // of overviews "_category_overview_[]" included; categories used by
    // definitions but lacking an overview follow in the same form.
    virtual std::vector<std::string> categories() const { return {}; }

    // The data names of one category, in the dictionary's order. The
    // category may be given as its overview name ("_atom_site_[]"), as its
    // plain name ("atom_site") or with a leading underscore ("_atom_site").
    virtual std::vector<std::string> category_items(const std::string& category) const {
        (void)category;
        return {};
    }

    // Every data name the dictionary defines (no category overviews), in
    // the dictionary's order, each once regardless of case: what an editor
    // offers when the user starts to type a name.
    virtual std::vector<std::string> data_names() const { return {}; }
    // A defined data name and how many edits it lies from the name asked for.
    struct SimilarName {
        std::string name;  // as the dictionary writes it
        int edits;
    };
    // The defined data names at most `max_edits` edits from `data_name`
    // (see cif_edit_distance), nearest first and in the dictionary's order
    // among equals; category overviews are left out. Meant for names the
    // dictionary lacks, to suggest what may have been meant.
    virtual std::vector<SimilarName> similar_names(std::string_view data_name, int max_edits) const {
        (void)data_name;
        (void)max_edits;
        return {};
    }

    // The category's members, references and mandatory items worked out in
    // advance, or null when the dictionary keeps none (callers then gather
    // them with CifCategoryFacts::of). Same category forms as category_items().
    virtual const CifCategoryFacts* category_facts(const std::string& category) const {
        (void)category;
        return nullptr;
    }

    // Shorthands over definition(); empty answers for undefined names.
    std::vector<Enumeration> enumerations(const std::string& data_name) const;
    std::string definition_text(const std::string& data_name) const;
    std::string category_of(const std::string& data_name) const;
    // The data names of a category that every loop of it must carry
    // (_list_mandatory). The default goes through category_items().
    virtual std::vector<std::string> mandatory_items(const std::string& category) const;

    // "atom_site" for "_atom_site_[]", "_atom_site" or "atom_site".
    static std::string plain_category_name(const std::string& category);

protected:
    // For a dictionary whose answers change (read again).
    void renew_serial() { serial_ = next_serial(); }

private:
    static std::uint64_t next_serial();
    std::uint64_t serial_;
};
