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

// A hash of the span by its size, the number of values and its first,
// middle and last eight bytes (spans of operators are longer than eight).
std::uint64_t hash_of(std::string_view span, std::size_t count) {
    std::uint64_t hash = (span.size() * 0x9E3779B97F4A7C15ull) ^ count;
    if (span.size() >= 8) {
        const char* p = span.data();
        hash ^= word_at(p) * 0xC2B2AE3D27D4EB4Full;
        hash = (hash ^ (hash >> 29)) * 0xFF51AFD7ED558CCDull;
        hash ^= word_at(p + span.size() / 2 - 4) * 0xC4CEB9FE1A85EC53ull;
        hash ^= word_at(p + span.size() - 8);
    } else {
        for (char c : span) hash = hash * 131 + static_cast<unsigned char>(c);
    }
    hash = (hash ^ (hash >> 32)) * 0xFF51AFD7ED558CCDull;
    return hash ^ (hash >> 29);
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
    List* set = &lists_[(hash_of(span, count) % sets) * ways];
    List* oldest = set;
    ++clock_;
    for (List* list = set; list != set + ways; ++list) {
        if (list->places.size() == count && list->span == span &&
            std::memcmp(list->places.data(), places_.data(), count * sizeof(CifValueRef)) == 0) {
            list->used = clock_;
            return list->entry;
        }
        if (list->used < oldest->used) oldest = list;
    }
    oldest->entry = by_texts(store, begin);
    oldest->places.assign(places_.begin(), places_.end());
    oldest->span.assign(span);
    oldest->used = clock_;
    return oldest->entry;
}

SpacegroupOperatorsRecent& SpacegroupOperatorsRecent::of_thread() {
    thread_local SpacegroupOperatorsRecent recent;
    return recent;
}
