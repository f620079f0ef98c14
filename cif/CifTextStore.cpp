// SPDX-License-Identifier: MIT
// The text a document was read from and the values given to its items afterwards.
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
