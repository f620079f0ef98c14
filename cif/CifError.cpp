// SPDX-License-Identifier: MIT
// One message of reading or checking a CIF: its code, line, text and detail.
#include "cif/CifError.hpp"

#include <utility>

#include "cif/CifErrorCatalogue.hpp"
#include "cif/CifNamePool.hpp"

namespace {

CifError::ErrorType catalogue_type(CifError::ErrorID id) {
    const CifErrorCatalogueEntry* entry = CifErrorCatalogue::find(id);
    return entry == nullptr ? CifError::information : static_cast<CifError::ErrorType>(entry->kind);
}

}  // namespace

CifError::CifError(ErrorID id, int line, std::string text, std::string detail)
    : CifError(id, catalogue_type(id), line, std::move(text), std::move(detail)) {}

CifError::CifError(ErrorID id, ErrorType type, int line, std::string text, std::string detail)
    : id_(id), type_(type), line_(line), text_(std::move(text)), detail_(std::move(detail)) {}

CifError::CifError(ErrorID id, int line, const CifKeptName& kept_text, std::string detail)
    : id_(id),
      type_(catalogue_type(id)),
      line_(line),
      detail_(std::move(detail)),
      kept_text_(&kept_text.text) {}

std::string CifError::message() const { return CifErrorCatalogue::format(id_, text(), detail_); }

std::string CifError::complete_message() const {
    return std::string(type_name(type_)) + ": Line " + std::to_string(line_) + " : " + message();
}

const char* CifError::type_name(ErrorType type) {
    switch (type) {
        case remark:
            return "Remark";
        case warning:
            return "Warning";
        case error:
            return "Error";
        default:
            return "Information";
    }
}
