// SPDX-License-Identifier: MIT
// A dictionary that answers from a pool owned elsewhere, one handle per thread.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cif/CifConcreteDictionary.hpp"
#include "cif/CifDictionary.hpp"
#include "cif/CifDictionaryPool.hpp"

// A dictionary that answers from another one owned elsewhere. Handles count
// without locks, so each thread checks its files through a handle of its
// own view of one read-only pool instead of sharing the pool's handle.
// A pool of one dictionary (the usual case) answers as that dictionary
// does, so the lookups every item makes go to it straight.
class SharedDictionary : public CifDictionary {
public:
    explicit SharedDictionary(const CifDictionary& target)
        : target_(target), only_(sole_dictionary(target)) {}
    // The same with sole_dictionary(target) worked out beforehand.
    SharedDictionary(const CifDictionary& target, const CifConcreteDictionary* only)
        : target_(target), only_(only) {}

    bool is_defined(const std::string& name) const override {
        return only_ != nullptr ? only_->CifConcreteDictionary::definition(name) != nullptr
                                : target_.is_defined(name);
    }
    const CifItemDefinition* definition(const std::string& name) const override {
        return only_ != nullptr ? only_->CifConcreteDictionary::definition(name) : target_.definition(name);
    }
    const CifItemDefinition* definition_hashed(const std::string& name, std::uint64_t hash) const override {
        return only_ != nullptr ? only_->CifConcreteDictionary::definition_hashed(name, hash)
                                : target_.definition_hashed(name, hash);
    }
    bool has_definitions() const override {
        return only_ != nullptr ? only_->CifConcreteDictionary::has_definitions() : target_.has_definitions();
    }
    bool has_aliases() const override {
        return only_ != nullptr ? only_->CifConcreteDictionary::has_aliases() : target_.has_aliases();
    }
    bool defines_by_definitions() const override {
        return only_ != nullptr || target_.defines_by_definitions();
    }
    std::uint64_t serial() const override { return only_ != nullptr ? only_->serial() : target_.serial(); }
    int check_value(const std::string& name, const std::string& value, bool looped) const override {
        return target_.check_value(name, value, looped);
    }
    std::string name() const override { return target_.name(); }
    std::vector<std::string> categories() const override { return target_.categories(); }
    std::vector<std::string> category_items(const std::string& category) const override {
        return only_ != nullptr ? only_->CifConcreteDictionary::category_items(category)
                                : target_.category_items(category);
    }
    std::vector<std::string> data_names() const override { return target_.data_names(); }
    std::vector<std::string> mandatory_items(const std::string& category) const override {
        return only_ != nullptr ? only_->CifConcreteDictionary::mandatory_items(category)
                                : target_.mandatory_items(category);
    }
    std::vector<SimilarName> similar_names(std::string_view name, int max_edits) const override {
        return only_ != nullptr ? only_->CifConcreteDictionary::similar_names(name, max_edits)
                                : target_.similar_names(name, max_edits);
    }
    const CifCategoryFacts* category_facts(const std::string& category) const override {
        return only_ != nullptr ? only_->CifConcreteDictionary::category_facts(category)
                                : target_.category_facts(category);
    }

    // The one concrete dictionary the target is or holds alone, or null.
    static const CifConcreteDictionary* sole_dictionary(const CifDictionary& target) {
        if (const auto* pool = dynamic_cast<const CifDictionaryPool*>(&target))
            return pool->size() == 1 ? pool->begin()->get() : nullptr;
        return dynamic_cast<const CifConcreteDictionary*>(&target);
    }

private:
    const CifDictionary& target_;
    const CifConcreteDictionary* only_;
};
