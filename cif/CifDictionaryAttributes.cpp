// SPDX-License-Identifier: MIT
// The attributes of one dictionary definition, looked up through the frames it is made of.
#include "cif/CifDictionaryAttributes.hpp"

#include <cstdlib>

#include "cif/CifItemDefinition.hpp"

namespace {

bool is_numeric_bound(std::string_view text) {
    return text.empty() || text.find_first_not_of("+-.0123456789eE") == std::string_view::npos;
}

bool parse_bound(std::string_view text, bool& present, double& value) {
    present = !text.empty();
    if (!present) return true;
    std::string copy(text);
    char* end = nullptr;
    value = std::strtod(copy.c_str(), &end);
    return end != copy.c_str() && *end == '\0';
}

}  // namespace

THandle<CifDataItem> CifDictionaryAttributes::find(std::string_view tag) const {
    for (const CifDataBlock* frame : frames_) {
        THandle<CifDataItem> item = frame->find(tag);
        if (!item.is_null()) return item;
    }
    return THandle<CifDataItem>();
}

std::string CifDictionaryAttributes::value(std::string_view tag) const {
    THandle<CifDataItem> item = find(tag);
    if (item.is_null() || !item->has_value()) return std::string();
    std::string_view value = item->value_view(0);
    if (!item->is_quoted(0) && (value == "?" || value == ".")) return std::string();
    return std::string(value);
}

std::vector<std::string> CifDictionaryAttributes::values(std::string_view tag) const {
    std::vector<std::string> result;
    THandle<CifDataItem> item = find(tag);
    if (item.is_null()) return result;
    result.reserve(item->size());
    for (std::size_t n = 0; n < item->size(); ++n) result.emplace_back(item->value_view(n));
    return result;
}

bool CifDictionaryAttributes::read_range(std::string_view range, bool numeric,
                                         CifItemDefinition& definition) {
    const std::size_t colon = range.find(':');
    if (colon == std::string_view::npos) return false;
    if (!numeric) return true;
    const std::string_view low = range.substr(0, colon);
    const std::string_view high = range.substr(colon + 1);
    return is_numeric_bound(low) && is_numeric_bound(high) &&
           parse_bound(low, definition.has_minimum, definition.minimum) &&
           parse_bound(high, definition.has_maximum, definition.maximum) &&
           (!definition.has_minimum || !definition.has_maximum || definition.minimum <= definition.maximum);
}
