// SPDX-License-Identifier: MIT
// Checks one file for tessary-check: read, mandatory items, consistency, messages collected.
#include "tools/FileCheck.hpp"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>

#include "cif/Cif.hpp"
#include "cif/CifFileText.hpp"
#include "tools/SharedDictionary.hpp"

namespace {

// A device or a pipe may never end (/dev/zero): it is read up to this size.
constexpr std::size_t kStreamCap = 256u * 1024 * 1024;

const char* const kCapProblem =
    "not a regular file, and longer than 256 MB: stopped reading (save it to a file to check it)";

}  // namespace

FileCheck::FileCheck(FileCheckSettings settings) : settings_(std::move(settings)) {
    if (settings_.dictionary != nullptr)
        sole_dictionary_ = SharedDictionary::sole_dictionary(*settings_.dictionary);
}

FileCheckResult FileCheck::check(const std::string& file, THandle<Cif>* keep) const {
    FileCheckResult result;
    result.file = file;
    THandle<CifDictionary> dictionary;
    if (settings_.dictionary != nullptr)
        dictionary = THandle<CifDictionary>(new SharedDictionary(*settings_.dictionary, sole_dictionary_));
    const CifDocumentCheck check(dictionary, settings_.check);
    THandle<Cif> document;
    if (file == "-") {
        document = check.run(std::cin);
    } else {
        std::string text;
        switch (cif_read_file(file, text, kStreamCap)) {
            case CifFileRead::read:
                document = check.run(std::move(text));
                break;
            case CifFileRead::directory:
                result.io_problem = "is a directory";
                return result;
            case CifFileRead::not_opened:
                result.io_problem = std::strerror(errno);
                return result;
            case CifFileRead::too_long:
                result.io_problem = kCapProblem;
                return result;
            case CifFileRead::read_error: {
                // The stream's reading tells what it kept and on which line it stopped.
                std::ifstream stream(file, std::ios::binary);
                if (!stream) {
                    result.io_problem = std::strerror(errno);
                    return result;
                }
                document = check.run(stream);
                break;
            }
        }
    }
    // The messages are moved out: only the last document outlives its check.
    result.messages = document->errors()->take();
    for (const CifError& message : result.messages) {
        if (message.type() == CifError::error) ++result.errors;
        if (message.type() == CifError::warning) ++result.warnings;
        if (message.type() == CifError::remark) ++result.remarks;
    }
    if (keep != nullptr) *keep = document;
    return result;
}
