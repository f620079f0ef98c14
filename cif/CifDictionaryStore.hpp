// SPDX-License-Identifier: MIT
// A dictionary's definitions kept packed, each made into an object when first asked for.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "cif/CifItemDefinition.hpp"

// The definitions of a dictionary once read, packed one after another in
// one text (lengths and values, no empty strings or lists of their own),
// since a check asks for a few hundred of a dictionary's thousands. A
// definition becomes a CifItemDefinition the first time it is asked for,
// once even when threads ask together, and stays where it is for the
// store's life. Explanations (Notes) are kept as they are, shared.
class CifDictionaryStore {
public:
    explicit CifDictionaryStore(std::vector<CifItemDefinition> definitions);
    ~CifDictionaryStore();
    CifDictionaryStore(const CifDictionaryStore&) = delete;
    CifDictionaryStore& operator=(const CifDictionaryStore&) = delete;

    std::size_t size() const { return starts_.size(); }
    // The definition at index, made when first asked for (inline: every
    // lookup of a data name ends here, and all but the first find it made).
    const CifItemDefinition& operator[](std::size_t index) const {
        if (const CifItemDefinition* made = objects_[index].load(std::memory_order_acquire)) return *made;
        return make(index);
    }
    // Its data name and its aliases (views of the store), without making it.
    std::string_view name(std::size_t index) const;
    std::vector<std::string_view> names(std::size_t index) const;
    std::string_view category(std::size_t index) const;
    // The packed text the views above look into.
    std::string_view packed() const { return packed_; }
    // How many definitions have been made so far.
    std::size_t made() const;

private:
    CifItemDefinition unpack(std::size_t index) const;
    // Makes the definition at index unless another thread just did.
    const CifItemDefinition& make(std::size_t index) const;

    std::string packed_;
    std::vector<std::uint32_t> starts_;  // where each definition begins in packed_
    // The definitions' explanations, when any has some.
    std::vector<std::shared_ptr<const CifItemDefinition::Notes>> notes_;
    std::unique_ptr<std::atomic<const CifItemDefinition*>[]> objects_;
    mutable std::mutex mutex_;
};
