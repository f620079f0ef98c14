// SPDX-License-Identifier: MIT
// A CIF or template file read to take items from, or why it cannot serve.
#include "cif/CifTemplateFile.hpp"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "cif/CifNames.hpp"

namespace {

bool is_utf8(const std::string& text) {
    for (std::size_t i = 0; i < text.size();) {
        const auto c = static_cast<unsigned char>(text[i]);
        const std::size_t length = c < 0x80           ? 1
                                   : (c >> 5) == 0x6  ? 2
                                   : (c >> 4) == 0xe  ? 3
                                   : (c >> 3) == 0x1e ? 4
                                                      : 0;
        if (length == 0 || i + length > text.size()) return false;
        for (std::size_t k = 1; k < length; ++k)
            if ((static_cast<unsigned char>(text[i + k]) >> 6) != 0x2) return false;
        i += length;
    }
    return true;
}

std::string latin1_to_utf8(const std::string& text) {
    std::string result;
    result.reserve(text.size());
    for (char ch : text) {
        const auto c = static_cast<unsigned char>(ch);
        if (c < 0x80) {
            result.push_back(ch);
        } else {
            result.push_back(static_cast<char>(0xc0 | (c >> 6)));
            result.push_back(static_cast<char>(0x80 | (c & 0x3f)));
        }
    }
    return result;
}

// Whether an error leaves the values read in doubt. Characters CIF 1.1 does
// not allow (a name with an umlaut in a Latin-1 file) and over-long names
// are read as they stand, as the document's own are.
bool breaks_structure(CifError::ErrorID id) {
    switch (id) {
        case CifError::invalid_character:
        case CifError::invalid_utf8:
        case CifError::data_name_too_long:
        case CifError::block_name_too_long:
        case CifError::reserved_first_character:
            return false;
        default:
            return true;
    }
}

}  // namespace

CifTemplateFile CifTemplateFile::read(const std::string& path, const CifParserSettings& settings) {
    CifTemplateFile file;
    std::error_code error;
    if (path.empty()) {
        file.problem_ = "No file chosen: choose a CIF or template file to merge from.";
    } else if (!std::filesystem::exists(path, error)) {
        file.problem_ = "The file " + path + " does not exist.";
    } else if (std::filesystem::is_directory(path, error)) {
        file.problem_ = path + " is a folder, not a CIF or template file.";
    }
    if (!file.ok()) return file;
    std::ifstream stream(path, std::ios::binary);
    std::string text((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
    if (!stream.is_open() || stream.bad()) {
        file.problem_ = "The file " + path + " cannot be read.";
        return file;
    }
    return from_text(std::move(text), path, settings);
}

CifTemplateFile CifTemplateFile::from_text(std::string text, const std::string& name,
                                           const CifParserSettings& settings) {
    CifTemplateFile file;
    if (text.find('\0') != std::string::npos) {
        file.problem_ = name + " is not a text file: choose a CIF or template file.";
        return file;
    }
    if (!is_utf8(text)) text = latin1_to_utf8(text);
    // The template's own dictionary check is the document's business once merged.
    CifParserSettings reading = settings;
    reading.check_data_names = false;
    reading.check_values = false;
    file.cif_ = THandle<Cif>(new Cif());
    file.cif_->read_text(std::move(text), reading);
    if (file.cif_->block_count() == 0)
        file.problem_ = name + " holds no data block (a line data_...): it is not a CIF or template.";
    for (const CifError& message : *file.cif_->errors()) {
        if (!file.ok()) break;
        if (message.type() != CifError::error || !breaks_structure(message.id())) continue;
        file.problem_ = name + " is not a well-formed CIF (line " + std::to_string(message.line()) + ": " +
                        message.message() + "): correct it before merging from it.";
    }
    if (!file.ok()) file.cif_ = THandle<Cif>();
    return file;
}

std::vector<std::string> CifTemplateFile::block_names() const {
    std::vector<std::string> names;
    if (cif_.is_null()) return names;
    for (const THandle<CifDataBlock>& block : cif_->blocks()) names.push_back(block->name());
    return names;
}

THandle<CifDataBlock> CifTemplateFile::block(const std::string& name) const {
    if (cif_.is_null()) return THandle<CifDataBlock>();
    for (const THandle<CifDataBlock>& block : cif_->blocks())
        if (cif_iequals(block->name(), name)) return block;
    return THandle<CifDataBlock>();
}
