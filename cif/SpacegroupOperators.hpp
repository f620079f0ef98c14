// SPDX-License-Identifier: MIT
// An operator list as written, its operations and its tabulated group, found once per process.
#pragma once

#include <cstddef>
#include <gemmi/symmetry.hpp>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cif/SpacegroupCache.hpp"

class CifTextStore;
struct CifValueRef;

namespace gemmi {
struct GroupOps;
}  // namespace gemmi

// Files checked together mostly write the same few operator lists alike.
// Each list as written (the same texts in the same order) has one entry for
// the process, under one key: the operations it forms and the tabulated
// group it names are each worked out at most once, when first asked for.
// Entries are shared between threads and outlive the blocks that asked.
class SpacegroupOperators {
public:
    // A triplet ("x, y+1/2, -z") read as an operation, wrapped into the
    // cell; throws when it cannot be read or is singular. Numbers too large
    // for the reading's integers, and factors of x, y or z whose
    // determinant would overflow, make it unreadable rather than wrong.
    static gemmi::Op read_triplet(std::string_view triplet);

    // The operations a Hall symbol generates; throws when it cannot be read.
    // A screw subscript on a rotation without a principal axis (an axis
    // along a diagonal, or a one-fold) is unreadable: read as it stands, its
    // translation would go to no axis at all. A change of basis written as
    // x, y, z is read as read_triplet() reads operators.
    static gemmi::GroupOps read_hall(const std::string& hall);

    // The entry of the list (texts as the values give them).
    static std::shared_ptr<const SpacegroupOperators> of(const std::vector<std::string_view>& texts);

    // The operations, each triplet read as written; null when one cannot
    // be read or is singular.
    const gemmi::GroupOps* operations() const;
    // The tabulated group (quotes around a triplet removed, any order or
    // form of the same operators alike); number only orders the search.
    const SpacegroupCache::Group& group(int number) const;

    // How many lists were looked up and how many of them were new.
    static std::size_t lookups();
    static std::size_t misses();

    explicit SpacegroupOperators(const std::vector<std::string_view>& texts);
    ~SpacegroupOperators();

    // Whether the entry is of these texts (byte for byte).
    bool holds(const std::vector<std::string_view>& texts) const;
    // The same of the texts of count values of the store.
    bool holds(const CifTextStore& store, const CifValueRef* values, std::size_t count) const;

private:
    std::vector<std::string> texts() const;

    // The texts trimmed and read, not kept (an entry stays for the process);
    // nothing when one cannot be read.
    std::optional<std::vector<gemmi::Op>> triplets() const;

    // The texts one after another, each after its length (four bytes):
    // entries stay for the process.
    std::string texts_;
    std::size_t count_ = 0;  // texts
    bool quoted_ = false;    // a text in quotes, which only the group's reading removes
    mutable std::once_flag operations_once_, group_once_;
    mutable std::unique_ptr<gemmi::GroupOps> operations_;
    mutable SpacegroupCache::Group group_;
};
