// SPDX-License-Identifier: MIT
// Checks one file for tessary-check: read, mandatory items, consistency, messages collected.
#pragma once

#include <string>
#include <vector>

#include "cif/CifDictionary.hpp"
#include "tools/FileCheckResult.hpp"

// What a file is checked against.
struct FileCheckSettings {
    int line_length = 80;
    // Read-only and shared by all threads; null checks syntax only.
    const CifDictionary* dictionary = nullptr;
    std::vector<std::string> publication_items;  // mandatory in the document
    std::vector<std::string> crystal_items;      // mandatory in every block with crystal data
    bool consistency = true;
};

// Reads one file (or standard input for "-") into a document, runs the
// mandatory-item and consistency checks and collects its messages.
class FileCheck {
public:
    explicit FileCheck(int line_length) { settings_.line_length = line_length; }
    explicit FileCheck(FileCheckSettings settings) : settings_(std::move(settings)) {}

    FileCheckResult check(const std::string& file) const;

private:
    FileCheckSettings settings_;
};
