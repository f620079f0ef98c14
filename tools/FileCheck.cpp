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

namespace {

// A device or a pipe may never end (/dev/zero): it is read up to this size.
constexpr std::size_t kStreamCap = 256u * 1024 * 1024;

// The stream's bytes up to `cap`; false when there were more.
bool read_capped(std::istream& stream, std::string& text, std::size_t cap) {
    char buffer[1 << 16];
    while (stream.read(buffer, sizeof buffer) || stream.gcount() > 0) {
        const auto count = static_cast<std::size_t>(stream.gcount());
        if (text.size() + count > cap) return false;
        text.append(buffer, count);
    }
    return true;
}

const char* const kCapProblem =
    "not a regular file, and longer than 256 MB: stopped reading (save it to a file to check it)";

}  // namespace

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
        if (std::filesystem::is_regular_file(file, error)) {
            document = check.run(stream);
        } else {
            std::string text;
            if (!read_capped(stream, text, kStreamCap)) {
                result.io_problem = kCapProblem;
                return result;
            }
            document = check.run(std::move(text));
        }
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
