// SPDX-License-Identifier: MIT
// A block's symmetry items and cell read once: symbols, number, operators, group, cell.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cif/CifCheckValues.hpp"
#include "cif/Spacegroup.hpp"

class CifDataBlock;
class CifDataItem;
class SpacegroupOperators;

namespace gemmi {
struct GroupOps;
struct SpaceGroup;
}  // namespace gemmi

// A block's symmetry items, read once for all the checks of the block: the
// Hermann-Mauguin symbol, the Hall symbol, the number and the operators,
// with the data names they were found under. Every check that needs a
// space group asks this class; it is the one place where they are built.
class CifBlockSymmetry {
public:
    explicit CifBlockSymmetry(const CifDataBlock& block);
    ~CifBlockSymmetry();
    CifBlockSymmetry(const CifBlockSymmetry&) = delete;
    CifBlockSymmetry& operator=(const CifBlockSymmetry&) = delete;

    // Name and text of each item; the text is empty when the block lacks it
    // or gives ? or ., the number 0.
    const std::string& symbol_name() const { return name(symbol_name_); }
    const std::string& symbol() const { return symbol_; }
    const std::string& hall_name() const { return name(hall_name_); }
    const std::string& hall() const { return hall_; }
    const std::string& number_name() const { return name(number_name_); }
    int number() const { return number_; }
    const std::string& operators_name() const { return name(operators_name_); }
    // The setting the H-M symbol names (Spacegroup::named(), asked once
    // per block) and its suite symbol, "Unknown" when not recognised.
    const SpacegroupCache::Group& symbol_group() const;
    const std::string& derived_symbol() const;
    // The operators as the block's values give them (views of its text).
    const std::vector<std::string_view>& operators() const;

    // The group the operators form (built on first use); null without operators.
    const Spacegroup* spacegroup_of_operators() const;
    // The same when something asked for it already; null otherwise.
    const Spacegroup* spacegroup_of_operators_if_built() const {
        return spacegroup_ ? &*spacegroup_ : nullptr;
    }

    // The group's operations, from the first source that can be read: the
    // operators, the Hall symbol, the Hermann-Mauguin symbol, the number.
    // Null when none can.
    const gemmi::GroupOps* operations() const;
    // The operations of the operators alone, of the Hall symbol alone, of
    // the H-M symbol alone; null when that source is missing or unreadable.
    const gemmi::GroupOps* operations_of_operators() const;
    const gemmi::GroupOps* operations_of_hall() const;
    bool hall_readable() const;
    // The tabulated setting whose Hall symbol is written as the block's
    // (blanks aside); null for none. Found without building any group.
    const gemmi::SpaceGroup* hall_setting() const;

    // Whether the group has a centre of symmetry; false when unknown.
    bool centrosymmetric() const;
    // The order of the Laue class (the point group with the inversion
    // added) and the number of lattice points of the cell; 0 when unknown.
    int laue_order() const;
    int centring_count() const;
    // How many copies of a site the group makes in the cell (images less
    // than 0.05 Angstrom apart along the axes are one); 0 when unknown.
    int multiplicity(const double xyz[3], const double cell_lengths[3]) const;

    // The cell's lengths a, b, c and angles alpha, beta, gamma as
    // cif_check_read_cell() reads them, read once for all the checks.
    const CifReading* cell() const { return cell_; }
    // The cell volume as cif_check_read() reads it, read once as well.
    const CifReading& volume() const { return volume_; }

private:
    struct Ops;
    // The names as the block's items keep them (null: not given).
    static const std::string& name(const std::string* kept);
    const std::string *symbol_name_ = nullptr, *hall_name_ = nullptr, *number_name_ = nullptr,
                      *operators_name_ = nullptr;
    std::string symbol_, hall_;
    int number_ = 0;
    const CifDataItem* operators_item_ = nullptr;
    std::size_t operator_count_ = 0;
    mutable std::vector<std::string_view> operators_;  // made when asked for
    CifReading cell_[6];
    CifReading volume_;
    // The process's entry for the list as written (its operations and group).
    const SpacegroupOperators& list() const;
    // hall_setting() found in the tables.
    const gemmi::SpaceGroup* tabulated_hall_setting() const;
    mutable std::shared_ptr<const SpacegroupOperators> list_;
    mutable const SpacegroupCache::Group* symbol_group_ = nullptr;
    mutable std::optional<SpacegroupCache::Group> own_symbol_group_;  // when the thread keeps no more
    mutable std::optional<Spacegroup> spacegroup_;
    mutable std::unique_ptr<Ops> ops_;
};
