// SPDX-License-Identifier: MIT
// The findings of a document's cross-checks, each on the line of the item or value it concerns.
#include "cif/CifCheckFindings.hpp"

#include <algorithm>

#include "cif/CifDataBlock.hpp"
#include "cif/CifLineIndex.hpp"
#include "cif/CifLoopDamage.hpp"

CifCheckFindings::CifCheckFindings(const Cif& cif) : text_(cif.store()->text()) {
    for (const CifError& error : *cif.errors()) {
        if (CifLoopDamage::displaces_values(error.id())) damage_lines_.push_back(error.line());
    }
    std::sort(damage_lines_.begin(), damage_lines_.end());
}

CifCheckFindings::~CifCheckFindings() = default;

const CifLineIndex& CifCheckFindings::line_index() const {
    if (lines_ == nullptr) lines_ = std::make_unique<CifLineIndex>(text_);
    return *lines_;
}

void CifCheckFindings::add(CifError::ErrorID id, const CifDataBlock& block, const std::string& name,
                           const std::string& detail) {
    findings_.emplace_back(id, item_line(block, name), name, detail);
}

void CifCheckFindings::add(CifError::ErrorID id, CifError::ErrorType type, const CifDataBlock& block,
                           const std::string& name, const std::string& detail) {
    findings_.emplace_back(id, type, item_line(block, name), name, detail);
}

int CifCheckFindings::item_line(const CifDataBlock& block, const std::string& name) const {
    THandle<CifDataItem> item = name.empty() ? THandle<CifDataItem>() : block.find(name);
    return !item.is_null() && item->line() > 0 ? item->line() : std::max(block.line(), 1);
}

int CifCheckFindings::value_line(const CifDataBlock& block, const std::string& name, std::size_t n) const {
    THandle<CifDataItem> item = block.find(name);
    if (item.is_null()) return std::max(block.line(), 1);
    if (n < item->size() && !item->values()[n].added()) return line_index().line_at(item->values()[n].offset);
    return item->line() > 0 ? item->line() : std::max(block.line(), 1);
}

std::size_t CifCheckFindings::sound_rows(const CifDataBlock& block, const CifDataItem& item) const {
    if (!item.is_looped()) return item.size();
    for (const CifDataBlock::ItemList& loop : block.loops()) {
        for (const THandle<CifDataItem>& column : loop) {
            if (column.get() == &item)
                return std::min(item.size(),
                                CifLoopDamage::first_damaged_row(loop, damage_lines_, line_index()));
        }
    }
    return item.size();
}

std::vector<CifError> CifCheckFindings::take() {
    std::vector<CifError> result;
    result.swap(findings_);
    std::stable_sort(result.begin(), result.end(),
                     [](const CifError& a, const CifError& b) { return a.line() < b.line(); });
    return result;
}
