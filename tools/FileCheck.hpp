// SPDX-License-Identifier: MIT
// Checks one file for tessary-check: read, mandatory items, consistency, messages collected.
#pragma once

#include <string>

#include "cif/Cif.hpp"
#include "cif/CifConcreteDictionary.hpp"
#include "cif/CifDictionary.hpp"
#include "cif/CifDocumentCheck.hpp"
#include "tools/FileCheckResult.hpp"

// What a file is checked against.
struct FileCheckSettings {
    CifCheckSettings check;
    // Read-only and shared by all threads; null checks syntax only.
    const CifDictionary* dictionary = nullptr;
};

// Checks one file (or standard input for "-") with the document check of
// the CIF library and collects its messages and counts.
class FileCheck {
public:
    explicit FileCheck(FileCheckSettings settings);

    // keep, when given, receives the document instead of its being freed
    // here (a process about to end need not free it piece by piece).
    FileCheckResult check(const std::string& file, THandle<Cif>* keep = nullptr) const;

private:
    FileCheckSettings settings_;
    // The one dictionary settings_.dictionary is or holds alone, or null:
    // found once, not for every file.
    const CifConcreteDictionary* sole_dictionary_ = nullptr;
};
