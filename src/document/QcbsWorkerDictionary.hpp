// SPDX-License-Identifier: GPL-3.0-or-later
// The dictionary a check on the worker thread reads, with handle counts no other thread touches.
#pragma once

#include <string>
#include <vector>

#include "cif/CifDictionary.hpp"
#include "cif/CifDictionaryPool.hpp"
#include "support/THandle.hpp"

// The dictionary a check on the worker thread reads. Handles count without
// locks, so the worker must never copy a handle the event loop's thread
// copies too. This object is made on the event loop's thread and holds the
// window's dictionaries through a handle of its own (a pool is copied, so
// that enabling a dictionary meanwhile changes nothing under the worker);
// the worker only ever copies the handle of this object, and the document
// that comes back, holding such a handle, is released on the event loop's
// thread again. Every question is answered by the dictionaries behind it,
// which are only read.
class QcbsWorkerDictionary : public CifDictionary {
public:
    // Made on the event loop's thread; null when there is no dictionary.
    static THandle<CifDictionary> forWorker(const THandle<CifDictionary>& dictionary) {
        if (dictionary.is_null()) return THandle<CifDictionary>();
        THandle<CifDictionary> owner = dictionary;
        if (const THandle<CifDictionaryPool> pool = dictionary.cast<CifDictionaryPool>(); !pool.is_null()) {
            THandle<CifDictionaryPool> copy(new CifDictionaryPool());
            for (const THandle<CifConcreteDictionary>& member : *pool) copy->insert(member);
            owner = copy;
        }
        return THandle<CifDictionary>(new QcbsWorkerDictionary(owner));
    }

    bool is_defined(const std::string& name) const override { return target_->is_defined(name); }
    const CifItemDefinition* definition(const std::string& name) const override {
        return target_->definition(name);
    }
    const CifItemDefinition* definition_hashed(const std::string& name, std::uint64_t hash) const override {
        return target_->definition_hashed(name, hash);
    }
    bool has_definitions() const override { return target_->has_definitions(); }
    // A view answers as what it views, and remembers under its number.
    std::uint64_t serial() const override { return target_->serial(); }
    bool defines_by_definitions() const override { return target_->defines_by_definitions(); }
    bool has_aliases() const override { return target_->has_aliases(); }
    int check_value(const std::string& name, const std::string& value, bool looped) const override {
        return target_->check_value(name, value, looped);
    }
    std::string name() const override { return target_->name(); }
    std::vector<std::string> categories() const override { return target_->categories(); }
    std::vector<std::string> category_items(const std::string& category) const override {
        return target_->category_items(category);
    }
    std::vector<std::string> data_names() const override { return target_->data_names(); }
    // Both are worked out when the dictionary is read (the suggestions kept under a lock),
    // so the worker may ask them too; without them a large document's check lost its
    // "did you mean" and gathered every category's facts again.
    std::vector<SimilarName> similar_names(std::string_view data_name, int max_edits) const override {
        return target_->similar_names(data_name, max_edits);
    }
    const CifCategoryFacts* category_facts(const std::string& category) const override {
        return target_->category_facts(category);
    }
    std::vector<std::string> mandatory_items(const std::string& category) const override {
        return target_->mandatory_items(category);
    }

private:
    explicit QcbsWorkerDictionary(THandle<CifDictionary> target) : target_(std::move(target)) {}

    THandle<CifDictionary> target_;
};
