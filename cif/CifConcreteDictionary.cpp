// SPDX-License-Identifier: MIT
// One DDL1 dictionary file read into memory: its descriptor and definitions.
#include "cif/CifConcreteDictionary.hpp"

#include <algorithm>
#include <iterator>

#include "cif/CifDdl1Reader.hpp"
#include "cif/CifEditDistance.hpp"
#include "cif/CifNames.hpp"
#include "cif/CifStreamText.hpp"

bool CifConcreteDictionary::read(std::istream& stream, THandle<CifErrorContainer> errors, std::ostream* log) {
    descriptor_ = CifDictionaryDescriptor();
    definitions_.clear();
    categories_.clear();
    index_.clear();
    members_.clear();
    by_length_.clear();
    std::size_t before = errors.is_null() ? 0 : errors->size();
    std::string text;
    if (!cif_read_stream(stream, text) && !errors.is_null())
        errors->add(CifError(CifError::input_unreadable, 1, std::string(), "read error"));
    CifDdl1Reader(*this, errors, log).read(std::move(text));
    index_by_length();
    return errors.is_null() || errors->size() == before;
}

bool CifConcreteDictionary::is_defined(const std::string& data_name) const {
    return definition(data_name) != nullptr;
}

const CifItemDefinition* CifConcreteDictionary::definition(const std::string& data_name) const {
    auto found = index_.find(data_name);
    return found == index_.end() ? nullptr : &definitions_[found->second];
}

std::vector<std::string> CifConcreteDictionary::data_names() const {
    // The reader keeps no second definition of a name, so each comes once.
    std::vector<std::string> result;
    result.reserve(definitions_.size());
    for (const CifItemDefinition& definition : definitions_)
        if (!definition.is_category_overview()) result.push_back(definition.name);
    return result;
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

void CifConcreteDictionary::index_by_length() {
    for (std::size_t i = 0; i < definitions_.size(); ++i) {
        const std::string& name = definitions_[i].name;
        if (name.find('[') != std::string::npos) continue;  // a category overview
        if (by_length_.size() <= name.size()) by_length_.resize(name.size() + 1);
        by_length_[name.size()].push_back(i);
    }
}

std::vector<CifDictionary::SimilarName> CifConcreteDictionary::similar_names(std::string_view data_name,
                                                                             int max_edits) const {
    std::vector<SimilarName> result;
    if (max_edits < 0) return result;
    const std::size_t edits = static_cast<std::size_t>(max_edits);
    const std::size_t shortest = data_name.size() > edits ? data_name.size() - edits : 0;
    const std::size_t longest = std::min(data_name.size() + edits + 1, by_length_.size());
    std::vector<std::pair<std::size_t, int>> found;  // definition index, edits
    for (std::size_t length = shortest; length < longest; ++length) {
        for (std::size_t index : by_length_[length]) {
            const int distance = cif_edit_distance(data_name, definitions_[index].name, max_edits);
            if (distance <= max_edits) found.emplace_back(index, distance);
        }
    }
    std::sort(found.begin(), found.end(), [](const auto& a, const auto& b) {
        return a.second != b.second ? a.second < b.second : a.first < b.first;
    });
    for (const auto& [index, distance] : found) result.push_back({definitions_[index].name, distance});
    return result;
}
