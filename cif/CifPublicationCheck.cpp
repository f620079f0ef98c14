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
        // The second byte tells which of the two a name may be of.
        if (name.size() < 5) continue;
        const char second = static_cast<char>(name[1] | 0x20);
        if (second == 'p' ? of_category(name, "_publ") : second == 'j' && of_category(name, "_journal"))
            return true;
    }
    return false;
}

}  // namespace

namespace {

// The names the check asks every block for, a bit each in given_.
constexpr CifCheckName asked[] = {
    "_publ_section_title",    "_publ_author_name",          "_publ_contact_author_name",
    "_publ_contact_author",   "_publ_contact_author_email", "_publ_requested_category",
    "_journal_coeditor_code",
};

unsigned bit_of(std::string_view name) {
    for (std::size_t n = 0; n < std::size(asked); ++n)
        if (asked[n].text() == name) return 1u << n;
    return 0;
}

}  // namespace

void CifPublicationCheck::check() {
    for (const THandle<CifDataBlock>& block : cif_.blocks().filled()) note(*block);
    report();
}

void CifPublicationCheck::note(const CifDataBlock& block) {
    for_publication_ = for_publication_ || holds_publication_items(block);
    if (journal_.empty())
        std::tie(journal_name_, journal_) = cif_check_text(block, {"_publ_requested_journal"});
    // A value that is only ? or ., in a text field too, is not given.
    const CifBlockNameFilter* filter = CifBlockNameFilter::of(block);
    for (std::size_t n = 0; n < std::size(asked); ++n) {
        if ((given_ & (1u << n)) != 0) continue;
        const CifDataItem* item = cif_check_item(block, filter, asked[n]);
        if (item == nullptr || !item->has_value()) continue;
        std::string_view value = item->value_view(0);
        std::size_t first = value.find_first_not_of(" \t\r\n");
        std::size_t last = value.find_last_not_of(" \t\r\n");
        if (first != std::string_view::npos && !cif_check_unknown(value.substr(first, last - first + 1)))
            given_ |= 1u << n;
    }
}

void CifPublicationCheck::report() {
    const auto& blocks = cif_.blocks();
    if (blocks.empty() || !for_publication_) return;
    // The contact author's name may come with the address in the older _publ_contact_author.
    auto given = [this](const char* name) {
        return (given_ & bit_of(name)) != 0 || (std::string_view(name) == "_publ_contact_author_name" &&
                                                (given_ & bit_of("_publ_contact_author")) != 0);
    };
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
    if (journal_.empty()) return;
    const std::string requested = " (" + journal_name_ + " '" + journal_ + "' requests a journal)";
    for (const char* name :
         {"_publ_contact_author_name", "_publ_contact_author_email", "_publ_requested_category"})
        require(name, requested);
    // Co-editor codes are those of the IUCr's journals.
    const std::string lowered = cif_lowercase(journal_);
    bool iucr = false;
    for (const char* name : {"acta cryst", "iucr", "appl. cryst", "applied cryst", "synchrotron rad"})
        iucr = iucr || lowered.find(name) != std::string::npos;
    if (iucr) require("_journal_coeditor_code", requested);
}
