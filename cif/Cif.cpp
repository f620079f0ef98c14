// SPDX-License-Identifier: MIT
// One CIF document: its data blocks in text order, its dictionary and its messages.
#include "cif/Cif.hpp"

#include <algorithm>

#include "cif/CifNames.hpp"
#include "cif/CifReader.hpp"
#include "cif/CifStreamText.hpp"

Cif::Cif(THandle<CifDictionary> dictionary)
    : dictionary_(dictionary), errors_(new CifErrorContainer()), store_(new CifTextStore()) {
    blocks_.reset(dictionary_, store_);
}

void Cif::read(std::istream& stream, const CifParserSettings& settings) {
    std::string text;
    bool failed = !cif_read_stream(stream, text);
    read_text(std::move(text), settings);
    if (failed)
        errors_->add(
            CifError(CifError::input_unreadable, std::max(line_count_, 1), std::string(), "read error"));
}

void Cif::read_text(std::string text, const CifParserSettings& settings) {
    blocks_.reset(dictionary_, store_);
    errors_->clear();
    CifReader(*this, settings).read(std::move(text));
}

void Cif::check_mandatory(const std::vector<std::string>& document_names,
                          const std::vector<std::string>& block_names) {
    if (document_names.empty() && block_names.empty()) return;
    auto present_in = [](const CifDataBlock& block, const std::string& name) {
        return !block.find(name).is_null();
    };
    auto holds_crystal_data = [](const CifDataBlock& block) {
        static const char* const categories[] = {"cell",     "atom_site",   "chemical",
                                                 "symmetry", "space_group", "exptl_crystal",
                                                 "diffrn",   "refine",      "refln"};
        return std::any_of(std::begin(categories), std::end(categories),
                           [&](const char* category) { return block.has_item_with_category(category); });
    };
    int first_line = blocks_.empty() || blocks_.line(0) < 1 ? 1 : blocks_.line(0);
    // Blocks that hold nothing lack every name and hold no crystal data.
    const CifBlockList::Filled filled = blocks_.filled();
    auto in_document = [&](const std::string& name) {
        return std::any_of(filled.begin(), filled.end(),
                           [&](const THandle<CifDataBlock>& block) { return present_in(*block, name); });
    };
    std::vector<CifError> found;
    for (const std::string& name : document_names) {
        if (!in_document(name)) found.emplace_back(CifError::mandatory_item_missing, first_line, name);
    }
    bool any_crystal_block = false;
    for (const THandle<CifDataBlock>& block : filled) {
        if (!holds_crystal_data(*block)) continue;
        any_crystal_block = true;
        for (const std::string& name : block_names) {
            if (!present_in(*block, name))
                found.emplace_back(CifError::mandatory_item_missing, std::max(block->line(), 1), name);
        }
    }
    if (!any_crystal_block) {
        for (const std::string& name : block_names) {
            if (!in_document(name)) found.emplace_back(CifError::mandatory_item_missing, first_line, name);
        }
    }
    // A name on both lists is reported once per line.
    std::vector<CifError> unique;
    for (const CifError& error : found) {
        bool seen = std::any_of(unique.begin(), unique.end(), [&](const CifError& other) {
            return other.line() == error.line() && cif_iequals(other.text(), error.text());
        });
        if (!seen) unique.push_back(error);
    }
    std::stable_sort(unique.begin(), unique.end(),
                     [](const CifError& a, const CifError& b) { return a.line() < b.line(); });
    for (const CifError& error : unique) errors_->add(error);
}

THandle<CifDataBlock> Cif::block(unsigned int n) const {
    return n < blocks_.size() ? blocks_[n] : THandle<CifDataBlock>();
}

Cif::iterator Cif::block_with_name(const std::string& name) const {
    std::string code = cif_block_code(name);
    std::size_t n = 0;
    while (n < blocks_.size() && !cif_iequals(blocks_.name(n), code)) ++n;
    return iterator(&blocks_, n);
}

Cif::iterator Cif::block_at_line(int line) const {
    std::size_t n = 0;
    for (; n < blocks_.size(); ++n) {
        const int first = blocks_.line(n);
        if (first > 0 && line >= first && line <= blocks_.end_line(n)) break;
    }
    return iterator(&blocks_, n);
}

Cif::iterator Cif::new_block(const std::string& name, iterator position) {
    return blocks_.insert(position, store_->make<CifDataBlock>(dictionary_, name, -1, store_));
}

namespace {

// Whether a CIF 1.1 document's printed text would begin with a version code
// other than 1.0 or 1.1: its first block's first comment line, read further
// down the source as a comment, is read on the first line as the code.
bool opens_with_foreign_code(const CifBlockList& blocks, const CifWriteSettings& settings) {
    if (settings.cif_version >= 2 || !settings.write_comments || blocks.size() == 0 || !blocks.made(0))
        return false;
    const std::string comments = blocks[0]->comments(CifCommentable::preceding_comment);
    const std::string_view code = std::string_view(comments).substr(0, comments.find_first_of(" \t\r\n"));
    return code.substr(0, 7) == "#\\#CIF_" && code != "#\\#CIF_1.1" && code != "#\\#CIF_1.0";
}

}  // namespace

void Cif::print(std::ostream& stream, const CifWriteSettings& settings) const {
    if (settings.cif_version >= 2) stream << "#\\#CIF_2.0\n";
    if (opens_with_foreign_code(blocks_, settings)) stream << "#\\#CIF_1.1\n";
    for (std::size_t n = 0; n < blocks_.size(); ++n) {
        if (n > 0) stream << '\n';
        (blocks_.made(n) ? blocks_[n] : blocks_.unmade_block(n))->print(stream, settings);
    }
}
