// SPDX-License-Identifier: MIT
// A document seen as a list of crystal structures, one per block that describes one.
#include "cif/CifDatabase.hpp"

#include "cif/CifNames.hpp"
#include "cif/CifStructureBuilder.hpp"

CifDatabase::CifDatabase(THandle<Cif> cif) : cif_(cif) {
    if (cif_.is_null()) return;
    for (const THandle<CifDataBlock>& block : cif_->blocks()) {
        if (block->has_item_with_category("_cell") || block->has_item_with_category("_atom_site"))
            entries_.push_back(block);
    }
    built_.resize(entries_.size());
    if (!cif_->store().is_null()) lines_ = std::make_unique<CifLineIndex>(cif_->store()->text());
}

CifDatabase::~CifDatabase() = default;

THandle<CifStructure> CifDatabase::entry(int n) {
    if (n < 0 || n >= size()) return THandle<CifStructure>();
    THandle<CifStructure>& built = built_[static_cast<std::size_t>(n)];
    if (built.is_null()) {
        built = CifStructureBuilder::build(*entries_[static_cast<std::size_t>(n)], lines_.get());
        const std::string prefix = entries_[static_cast<std::size_t>(n)]->name() + ": ";
        if (!built->usable()) errors_.push_back(prefix + built->reason());
        for (const std::string& note : built->notes()) errors_.push_back(prefix + note);
    }
    return built;
}

std::string CifDatabase::block_name(int n) const {
    if (n < 0 || n >= size()) return std::string();
    return entries_[static_cast<std::size_t>(n)]->name();
}

int CifDatabase::index_of(const std::string& block_name) const {
    const std::string code = cif_block_code(block_name);
    for (std::size_t n = 0; n < entries_.size(); ++n) {
        if (cif_iequals(entries_[n]->name(), code)) return static_cast<int>(n);
    }
    return -1;
}

int CifDatabase::index_at_line(int line) const {
    if (cif_.is_null()) return -1;
    Cif::iterator block = cif_->block_at_line(line);
    if (block == cif_->block_end()) return -1;
    for (std::size_t n = 0; n < entries_.size(); ++n) {
        if (entries_[n] == *block) return static_cast<int>(n);
    }
    return -1;
}
