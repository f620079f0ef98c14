// SPDX-License-Identifier: MIT
// One DDL1 dictionary file read into memory: its descriptor and definitions.
#pragma once

#include <istream>
#include <ostream>
#include <string>
#include <unordered_map>
#include <vector>

#include "cif/CifDictionary.hpp"
#include "cif/CifDictionaryDescriptor.hpp"
#include "cif/CifErrorContainer.hpp"
#include "cif/CifItemDefinition.hpp"
#include "cif/CifNames.hpp"
#include "support/THandle.hpp"

// One dictionary file read into memory. Reads DDL1 dictionaries (such as
// the IUCr core dictionary cif_core.dic 2.x): data_on_this_dictionary gives
// the descriptor, every other block is one definition with a single or a
// looped _name.
class CifConcreteDictionary : public CifDictionary {
public:
    CifConcreteDictionary() = default;

    // Reads the dictionary text. Every problem goes into errors with its
    // line (an empty container afterwards means the dictionary is fit for
    // use); remarks that do not make the dictionary unfit (a category
    // without an overview, say) and a summary go to log when it is not
    // null. Earlier contents are dropped. Returns whether errors stayed empty.
    bool read(std::istream& stream, THandle<CifErrorContainer> errors, std::ostream* log = nullptr);

    // Name, version and date of the dictionary (empty fields when the file
    // does not state them).
    const CifDictionaryDescriptor& descriptor() const { return descriptor_; }

    bool is_defined(const std::string& data_name) const override;
    const CifItemDefinition* definition(const std::string& data_name) const override;
    bool has_definitions() const override { return !definitions_.empty(); }
    std::string name() const override { return descriptor_.name; }
    std::vector<std::string> categories() const override { return categories_; }
    std::vector<std::string> category_items(const std::string& category) const override;
    std::vector<std::string> data_names() const override;
    std::vector<std::string> mandatory_items(const std::string& category) const override;
    std::vector<SimilarName> similar_names(std::string_view data_name, int max_edits) const override;

    // Every definition, in the dictionary's order (one per data name).
    const std::vector<CifItemDefinition>& definitions() const { return definitions_; }
    std::size_t definition_count() const { return definitions_.size(); }

private:
    friend class CifDdl1Reader;

    void index_by_length();

    CifDictionaryDescriptor descriptor_;
    std::vector<CifItemDefinition> definitions_;
    std::vector<std::string> categories_;
    // Lower-case data name -> index into definitions_; looked up without
    // regard to case, so a query needs no lower-case copy.
    std::unordered_map<std::string, std::size_t, CifNameHash, CifNameEqual> index_;
    // Lower-case plain category name -> indexes of its definitions.
    std::unordered_map<std::string, std::vector<std::size_t>> members_;
    // Name length -> indexes of the definitions of data names that long
    // (category overviews left out), so that a search for similar names
    // looks only at names of about the right length.
    std::vector<std::vector<std::size_t>> by_length_;
};

// The library's name for a handle of a concrete dictionary.
using HCifConcreteDictionary = THandle<CifConcreteDictionary>;
