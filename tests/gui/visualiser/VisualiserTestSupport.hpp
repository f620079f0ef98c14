// SPDX-License-Identifier: GPL-3.0-or-later
// Helpers for the 3-D view's tests: structures from text, pixels, skipping without OpenGL.
#pragma once

#include <gtest/gtest.h>

#include <QByteArray>
#include <QImage>
#include <QString>
#include <array>
#include <cmath>
#include <string>

#include "cif/Cif.hpp"
#include "cif/CifDatabase.hpp"
#include "visualiser/QcbsOpenGLSupport.hpp"
#include "visualiser/QcbsStructureScene.hpp"

namespace vis_test {

#define VIS_REQUIRE_OPENGL()                                                                   \
    do {                                                                                       \
        const QString problem = openGLProblem();                                               \
        if (!problem.isEmpty()) GTEST_SKIP() << "needs OpenGL, and " << problem.toStdString(); \
    } while (false)

inline THandle<Cif> checked(const std::string& text) {
    THandle<Cif> cif(new Cif());
    cif->read_text(text);
    return cif;
}

inline THandle<CifDatabase> database(const std::string& text) {
    return THandle<CifDatabase>(new CifDatabase(checked(text)));
}

// A block in P 1 with an orthogonal cell, the given atom rows (label type x y z; none: no atom loop) and more
// text.
inline std::string block(const std::string& name, const std::string& rows, double a = 10, double b = 10,
                         double c = 10, const std::string& extra = "") {
    std::string text = "data_" + name + "\n_cell_length_a " + std::to_string(a) + "\n_cell_length_b " +
                       std::to_string(b) + "\n_cell_length_c " + std::to_string(c) +
                       "\n_cell_angle_alpha 90\n_cell_angle_beta 90\n_cell_angle_gamma 90\n"
                       "_symmetry_space_group_name_H-M 'P 1'\n";
    if (!rows.empty())
        text +=
            "loop_\n_atom_site_label\n_atom_site_type_symbol\n_atom_site_fract_x\n_atom_site_fract_y\n"
            "_atom_site_fract_z\n" +
            rows;
    return text + extra;
}

inline bool isBackground(QRgb pixel) { return QColor(pixel) == QcbsStructureScene::background(); }

// How far a pixel's colour is from a colour, ignoring brightness (shading darkens and lightens).
inline double hueDistance(QRgb pixel, const QColor& colour) {
    const auto unit = [](double r, double g, double b) {
        const double length = std::sqrt(r * r + g * g + b * b) + 1e-9;
        return std::array<double, 3>{r / length, g / length, b / length};
    };
    const auto p = unit(qRed(pixel), qGreen(pixel), qBlue(pixel));
    const auto c = unit(colour.red(), colour.green(), colour.blue());
    return std::sqrt((p[0] - c[0]) * (p[0] - c[0]) + (p[1] - c[1]) * (p[1] - c[1]) +
                     (p[2] - c[2]) * (p[2] - c[2]));
}

}  // namespace vis_test
