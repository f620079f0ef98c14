// SPDX-License-Identifier: MIT
// Checks one file for tessary-check: read, mandatory items, consistency, messages collected.
#pragma once

#include <string>

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
    explicit FileCheck(FileCheckSettings settings) : settings_(std::move(settings)) {}

    FileCheckResult check(const std::string& file) const;

private:
    FileCheckSettings settings_;
};
