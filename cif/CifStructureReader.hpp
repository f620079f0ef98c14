// SPDX-License-Identifier: MIT
// Reads a block's cell, atom sites, symmetry, displacements and listed bonds.
#pragma once

#include <string>
#include <vector>

#include "cif/CifDataBlock.hpp"
#include "cif/CifLineIndex.hpp"
#include "cif/CifStructure.hpp"

class CifStructureReader {
public:
    // lines finds the line of a value from its place in the document's
    // text; without it sites get the line of their loop's data name.
    CifStructureReader(const CifDataBlock& block, const CifLineIndex* lines) : block_(block), lines_(lines) {}

    // Fills everything but the atom sets. When the block holds no usable
    // cell or no usable coordinates, structure.reason() says so.
    void read(CifStructure& structure);

private:
    THandle<CifDataItem> find(std::initializer_list<const char*> names) const;
    int line_of(const CifDataItem& item, std::size_t row) const;
    bool read_cell(CifStructure& structure);
    bool read_sites(CifStructure& structure);
    void read_anisotropic(CifStructure& structure);
    void read_symmetry(CifStructure& structure);
    bool symmetry_from_operators(CifStructure& structure);
    void read_listed_bonds(CifStructure& structure);

    const CifDataBlock& block_;
    const CifLineIndex* lines_;
};

// The element an atom-type symbol ("Fe3+", "O2-") or, when strict is false,
// a site label ("C11", "Cl2", "H(4A)") names; El::X when none.
gemmi::Element cif_element_of(const std::string& text, bool strict);
