// SPDX-License-Identifier: MIT
// Displacement tensors: from the file's axes to Cartesian ones, and the ellipsoid they describe.
#pragma once

#include <array>
#include <gemmi/math.hpp>
#include <gemmi/unitcell.hpp>

// The semi-axes of the 50 % probability ellipsoid are this many root-mean-square displacements.
constexpr double cif_probability_50 = 1.5382;

// An ellipsoid by its principal axes.
struct CifEllipsoid {
    std::array<double, 3> semi_axes{};      // longest first
    std::array<gemmi::Vec3, 3> directions;  // unit vectors, right-handed
    bool positive_definite = false;         // false: no real ellipsoid (axes then 0 where negative)
};

// U of the file (U11 ... U23 on the reciprocal axes) in Cartesian axes: A N U N A^T.
gemmi::SMat33<double> cif_u_cartesian(const gemmi::UnitCell& cell, const gemmi::SMat33<double>& u_cif);

// The ellipsoid of a Cartesian displacement tensor, with semi-axes scaled by
// scale (cif_probability_50 for the 50 % probability surface).
CifEllipsoid cif_ellipsoid(const gemmi::SMat33<double>& u_cartesian, double scale = cif_probability_50);
