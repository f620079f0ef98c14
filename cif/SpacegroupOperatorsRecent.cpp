// SPDX-License-Identifier: MIT
// The operator lists a thread met last, found again by where their values lie in the text.
#include "cif/SpacegroupOperatorsRecent.hpp"

#include <cstring>

#include "cif/CifDataItem.hpp"
#include "cif/CifTextStore.hpp"
#include "cif/SpacegroupOperators.hpp"

namespace {

std::uint64_t word_at(const char* p) {
    std::uint64_t word;
    std::memcpy(&word, p, 8);
    return word;
}

// A key of the values' places (each from the first value's, with its length
// and flags) and of up to eight bytes at each end of the first and the last
// value: lists laid out alike mostly differ there, and the texts tell the rest.
std::uint64_t key_of(const CifTextStore& store, const std::vector<CifValueRef>& places) {
    std::uint64_t hash = places.size() * 0x9E3779B97F4A7C15ull;
    auto mix = [&hash](std::uint64_t word) {
        hash = (hash ^ word) * 0xFF51AFD7ED558CCDull;
        hash ^= hash >> 32;
    };
    const std::uint32_t base = places.front().offset;
    for (const CifValueRef& place : places) mix((std::uint64_t(place.offset - base) << 32) | place.bits);
    for (const CifValueRef& place : {places.front(), places.back()}) {
        const std::string_view text = store.view(place);
        if (text.size() >= 8) {
            mix(word_at(text.data()));
            mix(word_at(text.data() + text.size() - 8));
        } else {
            std::uint64_t word = 0;
            std::memcpy(&word, text.data(), text.size());
            mix(word);
        }
    }
    hash = (hash ^ (hash >> 29)) * 0xC4CEB9FE1A85EC53ull;
    return hash ^ (hash >> 32);
}

}  // namespace

std::shared_ptr<const SpacegroupOperators> SpacegroupOperatorsRecent::by_texts(const CifTextStore& store) {
    texts_.resize(places_.size());
    for (std::size_t n = 0; n < places_.size(); ++n) texts_[n] = store.view(places_[n]);
    return SpacegroupOperators::of(texts_);
}

std::shared_ptr<const SpacegroupOperators> SpacegroupOperatorsRecent::entry(const CifDataItem& item) {
    const CifValueColumn& column = item.values();
    const std::size_t count = column.size();
    const CifTextStore& store = *item.store();
    places_.resize(count);
    column.copy_refs(0, count, places_.data());
    if (count == 0) return by_texts(store);
    const std::uint64_t key = key_of(store, places_);
    if (lists_.empty()) lists_.resize(sets * ways);
    List* set = &lists_[(key % sets) * ways];
    List* oldest = set;
    ++clock_;
    for (List* list = set; list != set + ways; ++list) {
        // The key told it; the texts prove it.
        if (list->entry != nullptr && list->key == key && list->count == count &&
            list->entry->holds(store, places_.data(), count)) {
            list->used = clock_;
            return list->entry;
        }
        if (list->used < oldest->used) oldest = list;
    }
    oldest->entry = by_texts(store);
    oldest->key = key;
    oldest->count = count;
    oldest->used = clock_;
    return oldest->entry;
}

SpacegroupOperatorsRecent& SpacegroupOperatorsRecent::of_thread() {
    thread_local SpacegroupOperatorsRecent recent;
    return recent;
}
