// SPDX-License-Identifier: MIT
// One DDL1 dictionary file read into memory: its descriptor and definitions.
#include "cif/CifConcreteDictionary.hpp"

#include <iterator>

#include "cif/CifDdl1Reader.hpp"
#include "cif/CifNames.hpp"
#include "cif/CifStreamText.hpp"

bool CifConcreteDictionary::read(std::istream& stream, THandle<CifErrorContainer> errors, std::ostream* log) {
    descriptor_ = CifDictionaryDescriptor();
    definitions_.clear();
    categories_.clear();
    index_.clear();
    members_.clear();
    std::size_t before = errors.is_null() ? 0 : errors->size();
    std::string text;
    if (!cif_read_stream(stream, text) && !errors.is_null())
        errors->add(CifError(CifError::input_unreadable, 1, std::string(), "read error"));
    CifDdl1Reader(*this, errors, log).read(std::move(text));
    return errors.is_null() || errors->size() == before;
}

bool CifConcreteDictionary::is_defined(const std::string& data_name) const {
    return definition(data_name) != nullptr;
}

const CifItemDefinition* CifConcreteDictionary::definition(const std::string& data_name) const {
    auto found = index_.find(data_name);
    return found == index_.end() ? nullptr : &definitions_[found->second];
}

std::vector<std::string> CifConcreteDictionary::category_items(const std::string& category) const {
    std::vector<std::string> result;
    auto found = members_.find(plain_category_name(category));
    if (found == members_.end()) return result;
    for (std::size_t index : found->second) result.push_back(definitions_[index].name);
    return result;
}

std::vector<std::string> CifConcreteDictionary::mandatory_items(const std::string& category) const {
    std::vector<std::string> result;
    auto found = members_.find(plain_category_name(category));
    if (found == members_.end()) return result;
    for (std::size_t index : found->second) {
        if (definitions_[index].list_mandatory) result.push_back(definitions_[index].name);
    }
    return result;
}
