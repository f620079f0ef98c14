// SPDX-License-Identifier: MIT
// Several dictionaries searched together; for a name both define, the first inserted wins.
#pragma once

#include <string>
#include <vector>

#include "cif/CifConcreteDictionary.hpp"
#include "cif/CifDictionary.hpp"
#include "support/THandle.hpp"

// Several concrete dictionaries searched together, in insertion order: a
// query is answered by the first member that defines the data name, so
// when two members (two versions of one dictionary, say) define the same
// name, the one inserted first wins. Members of the same name are both
// kept; only the same dictionary object is never inserted twice. A pool
// with no members defines nothing and is treated by readers as no
// dictionary at all.
class CifDictionaryPool : public CifDictionary {
public:
    using const_iterator = std::vector<THandle<CifConcreteDictionary>>::const_iterator;

    CifDictionaryPool() = default;

    // Appends the dictionary; a null handle or one already a member is ignored.
    void insert(THandle<CifConcreteDictionary> dictionary);
    // Removes the dictionary (compared by identity); absent ones are ignored.
    void erase(THandle<CifConcreteDictionary> dictionary);
    bool contains(const THandle<CifConcreteDictionary>& dictionary) const;

    const_iterator begin() const { return members_.begin(); }
    const_iterator end() const { return members_.end(); }
    std::size_t size() const { return members_.size(); }
    bool empty() const { return members_.empty(); }

    bool is_defined(const std::string& data_name) const override;
    const CifItemDefinition* definition(const std::string& data_name) const override;
    const CifItemDefinition* definition_hashed(const std::string& data_name,
                                               std::uint64_t name_hash) const override;
    bool has_definitions() const override;
    bool has_aliases() const override;
    // Its members are dictionaries read from files, which do.
    bool defines_by_definitions() const override { return true; }
    // A pool of one answers as its member does; several members may each be
    // read again, so their answers are not kept (0).
    std::uint64_t serial() const override { return members_.size() == 1 ? members_.front()->serial() : 0; }
    std::string name() const override;
    // The members' categories in member order, each name once.
    std::vector<std::string> categories() const override;
    // The category's data names from every member, each name once, in member order.
    std::vector<std::string> category_items(const std::string& category) const override;
    // Every member's data names in member order, each name once.
    std::vector<std::string> data_names() const override;
    std::vector<std::string> mandatory_items(const std::string& category) const override;
    // The members' similar names merged: nearest first, each name once.
    std::vector<SimilarName> similar_names(std::string_view data_name, int max_edits) const override;
    // One member's own facts; a pool of several keeps none.
    const CifCategoryFacts* category_facts(const std::string& category) const override;

private:
    std::vector<THandle<CifConcreteDictionary>> members_;
};
