#include "cif/CifTextStore.hpp"

CifValueRef CifTextStore::add(std::string_view value, std::uint32_t flags) {
    CifValueRef ref;
    ref.offset = static_cast<std::uint32_t>(added_.size());
    std::uint32_t length = value.size() > CifValueRef::length_mask ? CifValueRef::length_mask
                                                                   : static_cast<std::uint32_t>(value.size());
    ref.bits =
        length | (flags & (CifValueRef::quoted_flag | CifValueRef::compound_flag)) | CifValueRef::added_flag;
    added_.emplace_back(value);
    return ref;
}

const std::string& CifTextStore::intern(std::string_view name) {
    auto found = name_index_.find(name);
    if (found != name_index_.end()) return *found->second;
    const std::string& kept = names_.emplace_back(name);
    name_index_.emplace(kept, &kept);
    return kept;
}
