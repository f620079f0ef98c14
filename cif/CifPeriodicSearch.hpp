// SPDX-License-Identifier: MIT
// Finds the images of the unit cell's atoms, in any cell of the lattice, near a point.
#pragma once

#include <array>
#include <cmath>
#include <vector>

#include "cif/CifStructure.hpp"

// The atoms of one unit cell sorted into bins, so that a query looks only
// at the bins that a sphere around the point can reach, in whichever
// translated cell they lie.
class CifPeriodicSearch {
public:
    // reach: the radius most queries ask for; it sets the size of the bins.
    CifPeriodicSearch(const gemmi::UnitCell& cell, const std::vector<CifCellAtom>& atoms, double reach);

    // Calls visit(cell_atom, shift, distance) for every image (a cell atom
    // translated by shift) within radius of the point.
    template <typename Visit>
    void for_each_near(const gemmi::Fractional& point, double radius, Visit&& visit) const {
        const double reciprocal[3] = {cell_.ar, cell_.br, cell_.cr};
        const double coordinate[3] = {point.x, point.y, point.z};
        int low[3], high[3];
        for (int i = 0; i < 3; ++i) {
            const double extent = radius * reciprocal[i];
            low[i] = static_cast<int>(std::floor((coordinate[i] - extent) * bins_[i]));
            high[i] = static_cast<int>(std::floor((coordinate[i] + extent) * bins_[i]));
        }
        const double limit = radius * radius;
        for (int w = low[2]; w <= high[2]; ++w) {
            const int bw = wrap(w, 2), sw = (w - bw) / bins_[2];
            for (int v = low[1]; v <= high[1]; ++v) {
                const int bv = wrap(v, 1), sv = (v - bv) / bins_[1];
                for (int u = low[0]; u <= high[0]; ++u) {
                    const int bu = wrap(u, 0), su = (u - bu) / bins_[0];
                    const std::vector<int>& bin = bins_content_[index(bu, bv, bw)];
                    for (int n : bin) {
                        const gemmi::Fractional& f = atoms_[static_cast<std::size_t>(n)].fract;
                        const gemmi::Fractional delta(f.x + su - point.x, f.y + sv - point.y,
                                                      f.z + sw - point.z);
                        const double squared = cell_.orthogonalize_difference(delta).length_sq();
                        if (squared <= limit) visit(n, std::array<int, 3>{su, sv, sw}, std::sqrt(squared));
                    }
                }
            }
        }
    }

private:
    int wrap(int g, int axis) const {
        const int n = bins_[axis];
        return ((g % n) + n) % n;
    }
    std::size_t index(int u, int v, int w) const {
        return (static_cast<std::size_t>(w) * static_cast<std::size_t>(bins_[1]) +
                static_cast<std::size_t>(v)) *
                   static_cast<std::size_t>(bins_[0]) +
               static_cast<std::size_t>(u);
    }

    const gemmi::UnitCell& cell_;
    const std::vector<CifCellAtom>& atoms_;
    int bins_[3] = {1, 1, 1};
    std::vector<std::vector<int>> bins_content_;
};
