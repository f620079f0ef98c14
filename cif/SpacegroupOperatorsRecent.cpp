// SPDX-License-Identifier: MIT
// The operator lists a thread met last, found again by where their values lie in the text.
#include "cif/SpacegroupOperatorsRecent.hpp"

#include <algorithm>
#include <cstring>
#include <limits>

#include "cif/CifDataItem.hpp"
#include "cif/SpacegroupOperators.hpp"

namespace {

std::uint64_t word_at(const char* p) {
    std::uint64_t word;
    std::memcpy(&word, p, 8);
    return word;
}

// A key of the span, every byte of it, and of the values' places in it
// (offsets from its start, with lengths and flags).
std::uint64_t key_of(std::string_view span, const std::vector<CifValueRef>& places) {
    std::uint64_t hash = (span.size() * 0x9E3779B97F4A7C15ull) ^ places.size();
    auto mix = [&hash](std::uint64_t word) {
        hash = (hash ^ word) * 0xFF51AFD7ED558CCDull;
        hash ^= hash >> 32;
    };
    const char* p = span.data();
    std::size_t left = span.size();
    for (; left >= 8; p += 8, left -= 8) mix(word_at(p));
    std::uint64_t tail = 0;
    std::memcpy(&tail, p, left);
    mix(tail);
    for (const CifValueRef& place : places) mix((std::uint64_t(place.offset) << 32) | place.bits);
    hash = (hash ^ (hash >> 29)) * 0xC4CEB9FE1A85EC53ull;
    return hash ^ (hash >> 32);
}

}  // namespace

std::shared_ptr<const SpacegroupOperators> SpacegroupOperatorsRecent::by_texts(const CifTextStore& store,
                                                                               std::uint32_t base) {
    texts_.resize(places_.size());
    for (std::size_t n = 0; n < places_.size(); ++n) {
        CifValueRef place = places_[n];
        place.offset += base;
        texts_[n] = store.view(place);
    }
    return SpacegroupOperators::of(texts_);
}

std::shared_ptr<const SpacegroupOperators> SpacegroupOperatorsRecent::entry(const CifDataItem& item) {
    const CifValueColumn& column = item.values();
    const std::size_t count = column.size();
    const CifTextStore& store = *item.store();
    // The references read for the key serve the texts too.
    places_.resize(count);
    column.copy_refs(0, count, places_.data());
    std::uint32_t begin = std::numeric_limits<std::uint32_t>::max(), end = 0, added = 0;
    for (const CifValueRef& place : places_) {
        added |= place.bits & CifValueRef::added_flag;
        begin = std::min(begin, place.offset);
        end = std::max(end, place.offset + place.length());
    }
    // Values added after reading live outside the text: no span holds them.
    if (count == 0 || added != 0 || end - begin > longest_span) return by_texts(store, 0);
    const std::string_view span(store.text().data() + begin, end - begin);
    for (CifValueRef& place : places_) place.offset -= begin;
    const std::uint64_t key = key_of(span, places_);
    if (lists_.empty()) lists_.resize(sets * ways);
    List* set = &lists_[(key % sets) * ways];
    List* oldest = set;
    ++clock_;
    for (List* list = set; list != set + ways; ++list) {
        if (list->entry != nullptr && list->key == key && list->count == count) {
            // The key told it; the texts prove it.
            texts_.resize(count);
            for (std::size_t n = 0; n < count; ++n) {
                CifValueRef place = places_[n];
                place.offset += begin;
                texts_[n] = store.view(place);
            }
            if (list->entry->holds(texts_)) {
                list->used = clock_;
                return list->entry;
            }
        }
        if (list->used < oldest->used) oldest = list;
    }
    oldest->entry = by_texts(store, begin);
    oldest->key = key;
    oldest->count = count;
    oldest->used = clock_;
    return oldest->entry;
}

SpacegroupOperatorsRecent& SpacegroupOperatorsRecent::of_thread() {
    thread_local SpacegroupOperatorsRecent recent;
    return recent;
}
