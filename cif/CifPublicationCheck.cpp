// SPDX-License-Identifier: MIT
// The items a journal submission needs, listed once per document when missing.
#include "cif/CifPublicationCheck.hpp"

#include "cif/CifCheckFindings.hpp"
#include "cif/CifCheckValues.hpp"
#include "cif/CifDataBlock.hpp"
#include "cif/CifNames.hpp"

namespace {

// Whether the name is of the category: the prefix (an underscore and the
// category in lower case) and then nothing, '_' or '.', ASCII case ignored.
bool of_category(const std::string& name, std::string_view prefix) {
    if (name.size() < prefix.size()) return false;
    for (std::size_t i = 1; i < prefix.size(); ++i)
        if ((name[i] | 0x20) != prefix[i]) return false;
    return name[0] == '_' &&
           (name.size() == prefix.size() || name[prefix.size()] == '_' || name[prefix.size()] == '.');
}

// Whether the block has an item of the publ or journal category, as
// has_item_with_category() answers for each, in one pass over its names.
bool holds_publication_items(const CifDataBlock& block) {
    for (auto item = block.begin_write_order(), end = block.end_write_order(); item != end; ++item) {
        const std::string& name = (*item)->name();
        if (of_category(name, "_publ") || of_category(name, "_journal")) return true;
    }
    return false;
}

}  // namespace

void CifPublicationCheck::check() {
    const auto& blocks = cif_.blocks();
    if (blocks.empty()) return;
    bool for_publication = false;
    std::string journal, journal_name;
    // A value that is only ? or ., in a text field too, is not given.
    auto given_as = [&](const char* name) {
        for (const THandle<CifDataBlock>& block : blocks.filled()) {
            THandle<CifDataItem> item = block->find(name);
            if (item.is_null() || !item->has_value()) continue;
            std::string_view value = item->value_view(0);
            std::size_t first = value.find_first_not_of(" \t\r\n");
            std::size_t last = value.find_last_not_of(" \t\r\n");
            if (first != std::string_view::npos && !cif_check_unknown(value.substr(first, last - first + 1)))
                return true;
        }
        return false;
    };
    // The contact author's name may come with the address in the older _publ_contact_author.
    auto given = [&](const char* name) {
        return given_as(name) ||
               (std::string_view(name) == "_publ_contact_author_name" && given_as("_publ_contact_author"));
    };
    for (const THandle<CifDataBlock>& block : blocks.filled()) {
        for_publication = for_publication || holds_publication_items(*block);
        if (journal.empty())
            std::tie(journal_name, journal) = cif_check_text(*block, {"_publ_requested_journal"});
    }
    if (!for_publication) return;
    // Whether the mandatory items already reported the name missing (asked
    // only of names not given, which are few).
    auto reported = [this](const char* name) {
        for (const CifError& error : *cif_.errors())
            if (error.id() == CifError::mandatory_item_missing && cif_iequals(error.text(), name))
                return true;
        return false;
    };
    const CifDataBlock& first = *blocks.front();
    auto require = [&](const char* name, const std::string& why) {
        if (given(name) || reported(name)) return;
        findings_.add(CifError(CifError::publication_item_missing, CifError::remark,
                               findings_.item_line(first, std::string()), name, why));
    };
    require("_publ_section_title", " (the paper's title)");
    require("_publ_author_name", " (the authors)");
    if (journal.empty()) return;
    const std::string requested = " (" + journal_name + " '" + journal + "' requests a journal)";
    for (const char* name :
         {"_publ_contact_author_name", "_publ_contact_author_email", "_publ_requested_category"})
        require(name, requested);
    // Co-editor codes are those of the IUCr's journals.
    const std::string lowered = cif_lowercase(journal);
    bool iucr = false;
    for (const char* name : {"acta cryst", "iucr", "appl. cryst", "applied cryst", "synchrotron rad"})
        iucr = iucr || lowered.find(name) != std::string::npos;
    if (iucr) require("_journal_coeditor_code", requested);
}
