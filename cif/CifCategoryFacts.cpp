// SPDX-License-Identifier: MIT
// What the loop checks need of one dictionary category, worked out once.
#include "cif/CifCategoryFacts.hpp"

#include <algorithm>

#include "cif/CifDictionary.hpp"
#include "cif/CifNames.hpp"

CifCategoryFacts CifCategoryFacts::of(const CifDictionary& dictionary, const std::string& category) {
    CifCategoryFacts facts;
    facts.items = dictionary.category_items(category);
    for (const std::string& name : facts.items) {
        const CifItemDefinition* definition = dictionary.definition(name);
        if (definition == nullptr) continue;
        for (const std::string& reference : definition->list_reference) {
            bool known = std::any_of(facts.references.begin(), facts.references.end(),
                                     [&](const std::string& other) { return cif_iequals(other, reference); });
            if (!known) facts.references.push_back(reference);
        }
    }
    facts.mandatory = dictionary.mandatory_items(category);
    return facts;
}
