// SPDX-License-Identifier: MIT
// Finds the images of the unit cell's atoms, in any cell of the lattice, near a point.
#include "cif/CifPeriodicSearch.hpp"

#include <algorithm>

CifPeriodicSearch::CifPeriodicSearch(const gemmi::UnitCell& cell, const std::vector<CifCellAtom>& atoms,
                                     double reach)
    : cell_(cell), atoms_(atoms) {
    // A bin is as thick as the reach, measured between lattice planes.
    const double reciprocal[3] = {cell.ar, cell.br, cell.cr};
    for (int i = 0; i < 3; ++i) {
        const double spacing = 1.0 / reciprocal[i];
        bins_[i] = std::clamp(static_cast<int>(spacing / std::max(reach, 0.5)), 1, 64);
    }
    bins_content_.resize(static_cast<std::size_t>(bins_[0]) * static_cast<std::size_t>(bins_[1]) *
                         static_cast<std::size_t>(bins_[2]));
    for (std::size_t n = 0; n < atoms.size(); ++n) {
        const gemmi::Fractional& f = atoms[n].fract;
        const int u = std::clamp(static_cast<int>(f.x * bins_[0]), 0, bins_[0] - 1);
        const int v = std::clamp(static_cast<int>(f.y * bins_[1]), 0, bins_[1] - 1);
        const int w = std::clamp(static_cast<int>(f.z * bins_[2]), 0, bins_[2] - 1);
        bins_content_[index(u, v, w)].push_back(static_cast<int>(n));
    }
}
