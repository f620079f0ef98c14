// SPDX-License-Identifier: MIT
// A block's crystal structure: cell, sites, symmetry and the atom sets the 3-D view draws.
#include "cif/CifStructure.hpp"

#include <algorithm>

gemmi::SMat33<double> CifStructure::displacement(const CifBuiltAtom& atom) const {
    const gemmi::SMat33<double>& u = u_cartesian_[static_cast<std::size_t>(atom.site)];
    const gemmi::Op& op = operators_[static_cast<std::size_t>(atom.op)];
    if (!sources_[static_cast<std::size_t>(atom.site)].has_aniso || op == gemmi::Op::identity()) return u;
    const gemmi::Mat33 turn = cell().orth.mat.multiply(gemmi::rot_as_mat33(op)).multiply(cell().frac.mat);
    return u.transformed_by<double>(turn);
}

std::string CifStructure::symmetry_code(const CifBuiltAtom& atom) const {
    gemmi::Op op = operators_[static_cast<std::size_t>(atom.op)];
    const CifCellAtom& image = cell_atoms_[static_cast<std::size_t>(atom.cell_atom)];
    for (int i = 0; i < 3; ++i)
        op.tran[static_cast<std::size_t>(i)] +=
            (image.base[static_cast<std::size_t>(i)] + atom.shift[static_cast<std::size_t>(i)]) *
            gemmi::Op::DEN;
    return op.triplet();
}

std::string CifStructure::disorder_key(const CifSiteSource& source) {
    if (source.disorder_group.empty()) return std::string();
    return source.disorder_assembly + ":" + source.disorder_group;
}

std::vector<std::string> CifStructure::disorder_groups() const {
    std::vector<std::string> keys;
    for (const CifSiteSource& source : sources_) {
        std::string key = disorder_key(source);
        if (!key.empty() && std::find(keys.begin(), keys.end(), key) == keys.end()) keys.push_back(key);
    }
    std::sort(keys.begin(), keys.end());
    return keys;
}
