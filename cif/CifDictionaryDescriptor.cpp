// SPDX-License-Identifier: MIT
// What identifies a dictionary file: its name, version and date.
#include "cif/CifDictionaryDescriptor.hpp"

std::string CifDictionaryDescriptor::text() const {
    std::string result = name;
    if (!version.empty()) result += (result.empty() ? "" : " ") + version;
    if (!date.empty()) result += (result.empty() ? "(" : " (") + date + ")";
    return result;
}
