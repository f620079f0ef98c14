// SPDX-License-Identifier: MIT
// Several dictionaries searched together; for a name both define, the first inserted wins.
#include "cif/CifDictionaryPool.hpp"

#include <algorithm>
#include <unordered_set>

#include "cif/CifNames.hpp"

void CifDictionaryPool::insert(THandle<CifConcreteDictionary> dictionary) {
    if (dictionary.is_null() || contains(dictionary)) return;
    members_.push_back(dictionary);
}

void CifDictionaryPool::erase(THandle<CifConcreteDictionary> dictionary) {
    auto found = std::find(members_.begin(), members_.end(), dictionary);
    if (found != members_.end()) members_.erase(found);
}

bool CifDictionaryPool::contains(const THandle<CifConcreteDictionary>& dictionary) const {
    return std::find(members_.begin(), members_.end(), dictionary) != members_.end();
}

bool CifDictionaryPool::is_defined(const std::string& data_name) const {
    return definition(data_name) != nullptr;
}

const CifItemDefinition* CifDictionaryPool::definition(const std::string& data_name) const {
    return definition_hashed(data_name, cif_name_hash(data_name));
}

const CifItemDefinition* CifDictionaryPool::definition_hashed(const std::string& data_name,
                                                              std::uint64_t name_hash) const {
    for (const THandle<CifConcreteDictionary>& member : members_) {
        if (const CifItemDefinition* found = member->definition_hashed(data_name, name_hash)) return found;
    }
    return nullptr;
}

bool CifDictionaryPool::has_aliases() const {
    return std::any_of(members_.begin(), members_.end(),
                       [](const THandle<CifConcreteDictionary>& member) { return member->has_aliases(); });
}

bool CifDictionaryPool::has_definitions() const {
    return std::any_of(members_.begin(), members_.end(), [](const THandle<CifConcreteDictionary>& member) {
        return member->has_definitions();
    });
}

std::string CifDictionaryPool::name() const {
    std::string result;
    for (const THandle<CifConcreteDictionary>& member : members_) {
        if (!result.empty()) result += ", ";
        result += member->name();
    }
    return result;
}

std::vector<std::string> CifDictionaryPool::categories() const {
    std::vector<std::string> result;
    std::unordered_set<std::string> seen;
    for (const THandle<CifConcreteDictionary>& member : members_) {
        for (const std::string& category : member->categories()) {
            if (seen.insert(cif_lowercase(category)).second) result.push_back(category);
        }
    }
    return result;
}

std::vector<std::string> CifDictionaryPool::category_items(const std::string& category) const {
    if (members_.size() == 1) return members_.front()->category_items(category);
    std::vector<std::string> result;
    std::unordered_set<std::string> seen;
    for (const THandle<CifConcreteDictionary>& member : members_) {
        for (const std::string& name : member->category_items(category)) {
            if (seen.insert(cif_lowercase(name)).second) result.push_back(name);
        }
    }
    return result;
}

std::vector<std::string> CifDictionaryPool::data_names() const {
    std::vector<std::string> result;
    std::unordered_set<std::string> seen;
    for (const THandle<CifConcreteDictionary>& member : members_) {
        for (const std::string& name : member->data_names()) {
            if (seen.insert(cif_lowercase(name)).second) result.push_back(name);
        }
    }
    return result;
}

std::vector<std::string> CifDictionaryPool::mandatory_items(const std::string& category) const {
    // One member answers alone; several go through the merged category.
    if (members_.size() == 1) return members_.front()->mandatory_items(category);
    return CifDictionary::mandatory_items(category);
}

const CifCategoryFacts* CifDictionaryPool::category_facts(const std::string& category) const {
    return members_.size() == 1 ? members_.front()->category_facts(category) : nullptr;
}

std::vector<CifDictionary::SimilarName> CifDictionaryPool::similar_names(std::string_view data_name,
                                                                         int max_edits) const {
    std::vector<SimilarName> result;
    for (const THandle<CifConcreteDictionary>& member : members_) {
        for (SimilarName& similar : member->similar_names(data_name, max_edits)) {
            const bool known = std::any_of(result.begin(), result.end(), [&](const SimilarName& other) {
                return cif_iequals(other.name, similar.name);
            });
            if (!known) result.push_back(std::move(similar));
        }
    }
    // Members in pool order among names equally near.
    std::stable_sort(result.begin(), result.end(),
                     [](const SimilarName& a, const SimilarName& b) { return a.edits < b.edits; });
    return result;
}
