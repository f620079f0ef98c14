// SPDX-License-Identifier: MIT
// Checks one file for tessary-check: read, mandatory items, consistency, messages collected.
#include "tools/FileCheck.hpp"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "cif/Cif.hpp"
#include "cif/ORMACifConsistencyChecker.hpp"
#include "tools/SharedDictionary.hpp"

FileCheckResult FileCheck::check(const std::string& file) const {
    FileCheckResult result;
    result.file = file;
    CifParserSettings settings;
    settings.line_length = settings_.line_length;
    THandle<CifDictionary> dictionary;
    if (settings_.dictionary != nullptr)
        dictionary = THandle<CifDictionary>(new SharedDictionary(*settings_.dictionary));
    THandle<Cif> document(new Cif(dictionary));
    Cif& cif = *document;
    if (file == "-") {
        cif.read(std::cin, settings);
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
        cif.read(stream, settings);
    }
    cif.check_mandatory(settings_.publication_items, settings_.crystal_items);
    if (settings_.consistency) ORMACifConsistencyChecker(document).check_cif();
    for (const CifError& message : *cif.errors()) {
        result.messages.push_back(message);
        if (message.type() == CifError::error) ++result.errors;
        if (message.type() == CifError::warning) ++result.warnings;
        if (message.type() == CifError::remark) ++result.remarks;
    }
    return result;
}
