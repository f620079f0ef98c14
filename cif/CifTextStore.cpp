// SPDX-License-Identifier: MIT
// The text a document was read from and the values given to its items afterwards.
#include "cif/CifTextStore.hpp"

#include "cif/CifNamePool.hpp"
#include "cif/CifNames.hpp"

CifValueRef CifTextStore::add(std::string_view value, std::uint32_t flags) {
    CifValueRef ref;
    if (!added_) added_ = std::make_unique<std::deque<std::string>>();
    ref.offset = static_cast<std::uint32_t>(added_->size());
    std::uint32_t length = value.size() > CifValueRef::length_mask ? CifValueRef::length_mask
                                                                   : static_cast<std::uint32_t>(value.size());
    ref.bits =
        length | (flags & (CifValueRef::quoted_flag | CifValueRef::compound_flag)) | CifValueRef::added_flag;
    added_->emplace_back(value);
    return ref;
}

const CifKeptName& CifTextStore::intern(std::string_view name) {
    const std::uint64_t hash = cif_name_hash(name);
    // The process's copy when it has one (or room for one).
    if (const CifKeptName* shared = CifNamePool::find_shared(name, hash)) return *shared;
    // Else a copy of our own, once: a flat table of them, at most half full.
    if ((name_count_ + 1) * 2 > name_slots_.size()) {
        std::vector<const CifKeptName*> old(name_slots_.empty() ? 32 : name_slots_.size() * 2, nullptr);
        old.swap(name_slots_);
        for (const CifKeptName* kept : old) {
            if (kept == nullptr) continue;
            std::size_t i = kept->hash & (name_slots_.size() - 1);
            while (name_slots_[i] != nullptr) i = (i + 1) & (name_slots_.size() - 1);
            name_slots_[i] = kept;
        }
    }
    std::size_t i = hash & (name_slots_.size() - 1);
    for (; name_slots_[i] != nullptr; i = (i + 1) & (name_slots_.size() - 1)) {
        if (name_slots_[i]->hash == hash && name_slots_[i]->text == name) return *name_slots_[i];
    }
    if (!names_) names_ = std::make_unique<std::deque<CifKeptName>>();
    name_slots_[i] = &names_->emplace_back(CifKeptName{std::string(name), hash});
    ++name_count_;
    return *name_slots_[i];
}

const THandle<CifDictionary>* CifTextStore::keep(const THandle<CifDictionary>& dictionary) {
    if (dictionary.is_null()) return nullptr;
    for (const THandle<CifDictionary>& kept : dictionaries_) {
        if (kept == dictionary) return &kept;
    }
    dictionaries_.push_front(dictionary);
    return &dictionaries_.front();
}
