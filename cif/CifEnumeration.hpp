// SPDX-License-Identifier: MIT
// One permitted value of a data item, with the dictionary's explanation of it.
#pragma once

#include <string>

// One permitted value of a data item as its dictionary lists it, with the
// dictionary's explanation of it (empty when the dictionary gives none).
struct CifEnumeration {
    std::string value;
    std::string detail;
};
