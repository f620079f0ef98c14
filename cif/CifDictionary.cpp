// SPDX-License-Identifier: MIT
// The interface of a source of data-name definitions that documents are checked against.
#include "cif/CifDictionary.hpp"

#include <atomic>

#include "cif/CifNames.hpp"
#include "cif/CifValueCheck.hpp"

std::uint64_t CifDictionary::next_serial() {
    static std::atomic<std::uint64_t> last{0};
    return last.fetch_add(1, std::memory_order_relaxed) + 1;
}

int CifDictionary::check_value(const std::string& data_name, const std::string& value, bool looped) const {
    const CifItemDefinition* found = definition(data_name);
    if (found == nullptr) return 0;
    if (CifValueCheck::Result result = CifValueCheck::check_list(*found, looped)) return result.code;
    return CifValueCheck::check(*found, value).code;
}

std::vector<CifDictionary::Enumeration> CifDictionary::enumerations(const std::string& data_name) const {
    const CifItemDefinition* found = definition(data_name);
    return found == nullptr ? std::vector<Enumeration>() : found->enumerations;
}

std::string CifDictionary::definition_text(const std::string& data_name) const {
    const CifItemDefinition* found = definition(data_name);
    return found == nullptr ? std::string() : found->notes().definition;
}

std::string CifDictionary::category_of(const std::string& data_name) const {
    const CifItemDefinition* found = definition(data_name);
    return found == nullptr ? std::string() : found->category;
}

std::vector<std::string> CifDictionary::mandatory_items(const std::string& category) const {
    std::vector<std::string> names;
    for (const std::string& name : category_items(category)) {
        const CifItemDefinition* found = definition(name);
        if (found != nullptr && found->list_mandatory) names.push_back(name);
    }
    return names;
}

std::string CifDictionary::plain_category_name(const std::string& category) {
    std::string_view name = category;
    if (name.size() >= 3 && name.substr(name.size() - 3) == "_[]")
        name.remove_suffix(3);
    else if (name.size() >= 2 && name.substr(name.size() - 2) == "[]")
        name.remove_suffix(2);
    if (!name.empty() && name.front() == '_') name.remove_prefix(1);
    return cif_lowercase(name);
}
