// SPDX-License-Identifier: MIT
// The operator lists a thread met last, found again by where their values lie in the text.
#include "cif/SpacegroupOperatorsRecent.hpp"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "cif/CifDataItem.hpp"
#include "cif/SpacegroupOperators.hpp"

std::shared_ptr<const SpacegroupOperators> SpacegroupOperatorsRecent::entry(const CifDataItem& item) {
    const CifValueColumn& column = item.values();
    const std::size_t count = column.size();
    const CifTextStore& store = *item.store();
    // The references read for the key serve the texts too (their offsets
    // less base).
    auto by_texts = [this, &store, count](std::uint32_t base) {
        texts_.resize(count);
        for (std::size_t n = 0; n < count; ++n) {
            CifValueRef place = places_[n];
            place.offset += base;
            texts_[n] = store.view(place);
        }
        return SpacegroupOperators::of(texts_);
    };
    places_.resize(count);
    column.copy_refs(0, count, places_.data());
    if (count == 0) return by_texts(0);
    // Values added after reading live outside the text: no span holds them.
    std::uint32_t begin = places_[0].offset, end = begin;
    for (const CifValueRef& place : places_) {
        if (place.added()) return by_texts(0);
        begin = std::min(begin, place.offset);
        end = std::max(end, place.offset + place.length());
    }
    if (end - begin > longest_span) return by_texts(0);
    const std::string_view span(store.text().data() + begin, end - begin);
    for (CifValueRef& place : places_) place.offset -= begin;
    const std::size_t place_bytes = count * sizeof(CifValueRef);
    for (const List& list : lists_) {
        if (list.places.size() == count && list.span.size() == span.size() &&
            std::memcmp(list.places.data(), places_.data(), place_bytes) == 0 &&
            std::memcmp(list.span.data(), span.data(), span.size()) == 0)
            return list.entry;
    }
    std::shared_ptr<const SpacegroupOperators> found = by_texts(begin);
    List* kept = nullptr;
    if (lists_.size() < capacity) {
        kept = &lists_.emplace_back();
    } else {
        kept = &lists_[next_];
        next_ = (next_ + 1) % capacity;
    }
    kept->places.assign(places_.begin(), places_.end());
    kept->span.assign(span);
    kept->entry = found;
    return found;
}

SpacegroupOperatorsRecent& SpacegroupOperatorsRecent::of_thread() {
    thread_local SpacegroupOperatorsRecent recent;
    return recent;
}
