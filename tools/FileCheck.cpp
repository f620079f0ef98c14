// SPDX-License-Identifier: MIT
// Checks one file for tessary-check: read, mandatory items, consistency, messages collected.
#include "tools/FileCheck.hpp"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "cif/Cif.hpp"
#include "tools/SharedDictionary.hpp"

FileCheckResult FileCheck::check(const std::string& file, THandle<Cif>* keep) const {
    FileCheckResult result;
    result.file = file;
    THandle<CifDictionary> dictionary;
    if (settings_.dictionary != nullptr)
        dictionary = THandle<CifDictionary>(new SharedDictionary(*settings_.dictionary));
    const CifDocumentCheck check(dictionary, settings_.check);
    THandle<Cif> document;
    if (file == "-") {
        document = check.run(std::cin);
    } else {
        std::error_code error;
        if (std::filesystem::is_directory(file, error)) {
            result.io_problem = "is a directory";
            return result;
        }
        std::ifstream stream(file, std::ios::binary);
        if (!stream) {
            result.io_problem = std::strerror(errno);
            return result;
        }
        document = check.run(stream);
    }
    for (const CifError& message : *document->errors()) {
        result.messages.push_back(message);
        if (message.type() == CifError::error) ++result.errors;
        if (message.type() == CifError::warning) ++result.warnings;
        if (message.type() == CifError::remark) ++result.remarks;
    }
    if (keep != nullptr) *keep = document;
    return result;
}
