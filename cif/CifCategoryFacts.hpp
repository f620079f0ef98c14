// SPDX-License-Identifier: MIT
// What the loop checks need of one dictionary category, worked out once.
#pragma once

#include <string>
#include <vector>

class CifDictionary;

// The members of a category, what its loops must refer to and what they
// must carry. A dictionary read from a file works these out for all its
// categories when it is read, so that checking many small files does not
// gather them again for every loop (CifDictionary::category_facts).
struct CifCategoryFacts {
    // The category's data names, in the dictionary's order (category_items()).
    std::vector<std::string> items;
    // The _list_reference values of its members, each once regardless of case.
    std::vector<std::string> references;
    // The items every loop of it must carry (mandatory_items()).
    std::vector<std::string> mandatory;

    // The facts as the dictionary's own answers give them.
    static CifCategoryFacts of(const CifDictionary& dictionary, const std::string& category);
};
