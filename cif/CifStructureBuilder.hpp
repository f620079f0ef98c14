// SPDX-License-Identifier: MIT
// Builds a structure's asymmetric unit, whole molecules and one packed unit cell.
#pragma once

#include <cstdint>
#include <unordered_map>

#include "cif/CifBondRule.hpp"
#include "cif/CifDataBlock.hpp"
#include "cif/CifLineIndex.hpp"
#include "cif/CifPeriodicSearch.hpp"
#include "cif/CifStructure.hpp"
#include "support/THandle.hpp"

class CifStructureBuilder {
public:
    // The structure of a block; when it cannot be built, reason() says why
    // and the atom sets are empty. lines: see CifStructureReader.
    static THandle<CifStructure> build(const CifDataBlock& block, const CifLineIndex* lines = nullptr);

private:
    explicit CifStructureBuilder(CifStructure& structure);

    using Key = std::uint64_t;  // a cell atom and a lattice shift
    static Key key(int cell_atom, const std::array<int, 3>& shift);

    static void make_cell_atoms(CifStructure& structure);
    CifBuiltAtom atom(int cell_atom, const std::array<int, 3>& shift) const;
    CifBuiltAtom site_atom(int site) const;
    // Calls visit(neighbour, distance) for every atom bonded to the given one.
    template <typename Visit>
    void for_each_bonded(const CifBuiltAtom& from, Visit&& visit) const;

    void build_asymmetric_unit();
    void grow();
    void pack();
    void connect(CifAtomSet& set) const;

    CifStructure& structure_;
    CifBondRule rule_;
    CifPeriodicSearch search_;
    std::vector<int> first_image_;  // the cell atom of each site under x,y,z
};
