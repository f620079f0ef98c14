// SPDX-License-Identifier: MIT
// Displacement tensors: from the file's axes to Cartesian ones, and the ellipsoid they describe.
#include "cif/CifDisplacement.hpp"

#include <algorithm>
#include <cmath>

gemmi::SMat33<double> cif_u_cartesian(const gemmi::UnitCell& cell, const gemmi::SMat33<double>& u_cif) {
    const gemmi::Mat33 an = cell.orth.mat.multiply_by_diagonal(gemmi::Vec3(cell.ar, cell.br, cell.cr));
    return u_cif.transformed_by<double>(an);
}

CifEllipsoid cif_ellipsoid(const gemmi::SMat33<double>& u, double scale) {
    // Jacobi rotations: exact enough in a few sweeps for 3 x 3, and unlike a
    // closed form it keeps orthogonal axes when eigenvalues coincide.
    double a[3][3] = {{u.u11, u.u12, u.u13}, {u.u12, u.u22, u.u23}, {u.u13, u.u23, u.u33}};
    double v[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    for (int sweep = 0; sweep < 32; ++sweep) {
        const double off = a[0][1] * a[0][1] + a[0][2] * a[0][2] + a[1][2] * a[1][2];
        const double diagonal = a[0][0] * a[0][0] + a[1][1] * a[1][1] + a[2][2] * a[2][2];
        if (off <= 1e-30 * std::max(diagonal, 1e-300)) break;
        for (int p = 0; p < 2; ++p) {
            for (int q = p + 1; q < 3; ++q) {
                if (a[p][q] == 0.0) continue;
                const double theta = (a[q][q] - a[p][p]) / (2.0 * a[p][q]);
                const double t =
                    (theta >= 0 ? 1.0 : -1.0) / (std::fabs(theta) + std::sqrt(theta * theta + 1.0));
                const double c = 1.0 / std::sqrt(t * t + 1.0);
                const double s = t * c;
                for (int k = 0; k < 3; ++k) {
                    const double akp = a[k][p], akq = a[k][q];
                    a[k][p] = c * akp - s * akq;
                    a[k][q] = s * akp + c * akq;
                }
                for (int k = 0; k < 3; ++k) {
                    const double apk = a[p][k], aqk = a[q][k];
                    a[p][k] = c * apk - s * aqk;
                    a[q][k] = s * apk + c * aqk;
                }
                for (int k = 0; k < 3; ++k) {
                    const double vkp = v[k][p], vkq = v[k][q];
                    v[k][p] = c * vkp - s * vkq;
                    v[k][q] = s * vkp + c * vkq;
                }
            }
        }
    }
    int order[3] = {0, 1, 2};
    std::sort(order, order + 3, [&](int x, int y) { return a[x][x] > a[y][y]; });
    CifEllipsoid result;
    result.positive_definite = true;
    for (int i = 0; i < 3; ++i) {
        const int k = order[i];
        const double value = a[k][k];
        if (!(value > 0.0)) result.positive_definite = false;
        result.semi_axes[static_cast<std::size_t>(i)] = value > 0.0 ? scale * std::sqrt(value) : 0.0;
        result.directions[static_cast<std::size_t>(i)] = gemmi::Vec3(v[0][k], v[1][k], v[2][k]);
    }
    // Right-handed, so that the axes can serve as a rotation.
    if (result.directions[0].cross(result.directions[1]).dot(result.directions[2]) < 0)
        result.directions[2] = -result.directions[2];
    return result;
}
