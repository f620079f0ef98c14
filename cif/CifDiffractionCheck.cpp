// SPDX-License-Identifier: MIT
// Cross-checks of a block's diffraction experiment: absorption, transmission, reflections.
#include "cif/CifDiffractionCheck.hpp"

#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>

#include "cif/CifBlockSymmetry.hpp"
#include "cif/CifCellContents.hpp"
#include "cif/CifCheckFindings.hpp"
#include "cif/CifChemicalFormula.hpp"
#include "cif/CifDataBlock.hpp"
#include "cif/CifMassAttenuation.hpp"
#include "cif/CifNames.hpp"

namespace {

constexpr double avogadro_per_cubic_angstrom = 0.60221408;  // N_A * 1e-24

std::string percent(double fraction) { return cif_check_format(100.0 * fraction, 0.1) + " %"; }

// Whether the block holds an item of the powder category (_pd_... or _pd....,
// case ignored), as has_item_with_category("pd") answers, from the first
// four bytes of each name: asked of every block.
bool holds_powder_items(const CifDataBlock& block) {
    for (auto item = block.begin_write_order(), end = block.end_write_order(); item != end; ++item) {
        const std::string& name = (*item)->name();
        if (name.size() >= 3 && name[0] == '_' && (name[1] | 0x20) == 'p' && (name[2] | 0x20) == 'd' &&
            (name.size() == 3 || name[3] == '_' || name[3] == '.'))
            return true;
    }
    return false;
}

}  // namespace

CifDiffractionCheck::CifDiffractionCheck(const CifDataBlock& block, const CifBlockSymmetry& symmetry,
                                         CifCheckFindings& findings)
    : block_(block),
      names_(CifBlockNameFilter::of(block)),
      symmetry_(symmetry),
      findings_(findings),
      mu_(cif_check_read(block, names_, {"_exptl_absorpt_coefficient_mu", "_exptl_absorpt.coefficient_mu"})) {
}

double CifDiffractionCheck::wavelength() const {
    CifReading wavelength = cif_check_read(
        block_, names_, {"_diffrn_radiation_wavelength", "_diffrn_radiation_wavelength.wavelength"});
    return wavelength.ok ? wavelength.value() : 0.0;
}

void CifDiffractionCheck::check_absorption() {
    if (!mu_.ok || mu_.value() <= 0.0) return;
    CifReading z = cif_check_read(block_, names_, {"_cell_formula_units_Z", "_cell.formula_units_Z"});
    const CifReading& volume = symmetry_.volume();
    if (!volume.ok || volume.value() <= 0.0) return;
    CifRadiation radiation = CifRadiation::unknown;
    const double lambda = wavelength();
    if (lambda > 0.0) {
        radiation = cif_radiation_of_wavelength(lambda);
    } else {
        auto [type_name, type] =
            cif_check_text(block_, names_, {"_diffrn_radiation_type", "_diffrn_radiation.type"});
        radiation = cif_radiation_of_type(type);
    }
    if (radiation == CifRadiation::unknown) return;

    // The cell's contents: Z times the sum formula, else the atom sites.
    std::map<std::string, double> contents;
    std::string source;
    auto [formula_name, formula_text] =
        cif_check_text(block_, names_, {"_chemical_formula_sum", "_chemical_formula.sum"});
    CifChemicalFormula formula(formula_text);
    if (formula.valid() && z.ok && z.value() > 0.0) {
        for (const auto& [element, count] : formula.parts()) contents[element] += z.value() * count;
        source = z.name + " " + cif_check_format(z.value(), 1.0) + " x '" + formula_text + "'";
    } else {
        CifCellContents sites(block_, symmetry_);
        if (!sites.valid()) return;
        contents = sites.counts();
        source = "the atom sites";
    }
    double sum = 0.0;
    for (const auto& [element, count] : contents) {
        double coefficient = cif_mass_attenuation(element, radiation);
        if (coefficient <= 0.0) return;  // an element the table leaves out
        sum += count * cif_atomic_weight(element) * coefficient;
    }
    const double calculated = sum / (avogadro_per_cubic_angstrom * volume.value()) / 10.0;  // per mm
    if (calculated <= 0.0) return;
    const double ratio = mu_.value() / calculated;
    const double off = std::max(ratio, 1.0 / ratio) - 1.0;
    CifError::ErrorType level;
    if (cif_check_level(off, 0.15, 0.30, 1.0, level))
        findings_.add(
            CifError::absorption_coefficient_differs, level, block_, mu_.name,
            " (" + cif_check_written(block_, mu_) + " per mm; " + source + " in " +
                cif_check_written(block_, volume) + " A^3 gives " + cif_check_significant(calculated, 3) +
                " for " + cif_radiation_name(radiation) + ", off by " +
                (level == CifError::error
                     ? "a factor " + cif_check_significant(ratio < 1 ? 1 / ratio : ratio, 3) + ", more than 2"
                     : percent(off) + ", more than " + (level == CifError::warning ? "30 %" : "15 %")) +
                ")");
}

void CifDiffractionCheck::check_transmission() {
    auto [type_name, type] =
        cif_check_text(block_, names_, {"_exptl_absorpt_correction_type", "_exptl_absorpt.correction_type"});
    std::string correction = cif_lowercase(type);
    if (correction.empty() || correction == "none") return;
    CifReading t_min = cif_check_read(block_, names_,
                                      {"_exptl_absorpt_correction_T_min", "_exptl_absorpt.correction_T_min"});
    CifReading t_max = cif_check_read(block_, names_,
                                      {"_exptl_absorpt_correction_T_max", "_exptl_absorpt.correction_T_max"});
    if (!t_min.ok || !t_max.ok) {
        std::string missing = !t_min.ok && !t_max.ok ? "_exptl_absorpt_correction_T_min and _T_max"
                              : !t_min.ok            ? "_exptl_absorpt_correction_T_min"
                                                     : "_exptl_absorpt_correction_T_max";
        findings_.add(CifError::transmission_inconsistent, CifError::error, block_, type_name,
                      " (" + type_name + " " + type + " names a correction; " + missing + " not given)");
        return;
    }
    if (!mu_.ok) return;
    CifReading size_min =
        cif_check_read(block_, names_, {"_exptl_crystal_size_min", "_exptl_crystal.size_min"});
    CifReading size_mid =
        cif_check_read(block_, names_, {"_exptl_crystal_size_mid", "_exptl_crystal.size_mid"});
    CifReading size_max =
        cif_check_read(block_, names_, {"_exptl_crystal_size_max", "_exptl_crystal.size_max"});
    if (correction == "multi-scan" && size_mid.ok && mu_.value() * size_mid.value() > 3.0) {
        findings_.add(CifError::transmission_inconsistent, CifError::error, block_, mu_.name,
                      " (" + cif_check_written(block_, mu_) + " per mm times " + size_mid.name + " " +
                          cif_check_written(block_, size_mid) + " mm is " +
                          cif_check_significant(mu_.value() * size_mid.value(), 3) +
                          ", above 3 for a multi-scan correction)");
        return;
    }
    if (!size_min.ok || !size_max.ok || t_max.value() <= 0.0) return;
    const double expected = std::exp(-mu_.value() * (size_max.value() - size_min.value()));
    const double stated = t_min.value() / t_max.value();
    const double ratio = stated / expected;
    if (ratio < 0.75)
        findings_.add(
            CifError::transmission_inconsistent, CifError::remark, block_, t_min.name,
            " (T_min/T_max " + cif_check_written(block_, t_min) + "/" + cif_check_written(block_, t_max) +
                " = " + cif_check_format(stated, 0.001) + "; exp(-mu (t_max - t_min)) with mu " +
                cif_check_written(block_, mu_) + " per mm and sizes " + cif_check_written(block_, size_max) +
                ", " + cif_check_written(block_, size_min) + " mm gives " +
                cif_check_format(expected, 0.001) + ", and T_min/T_max may not be below 0.75 times that)");
}

void CifDiffractionCheck::check_reflections() {
    CifReading theta =
        cif_check_read(block_, names_, {"_diffrn_reflns_theta_max", "_diffrn_reflns.theta_max"});
    const double lambda = wavelength();
    if (!theta.ok || lambda <= 0.0 || theta.value() <= 0.0 || theta.value() >= 90.0) return;
    const CifReading* cell = symmetry_.cell();
    if (!std::all_of(cell, cell + 6, [](const CifReading& r) { return r.ok; })) return;
    // Powder patterns count reflections otherwise (asked last: it reads
    // every name of the block).
    if (holds_powder_items(block_)) return;
    double p[6];
    for (int i = 0; i < 6; ++i) p[i] = cell[i].value();
    const double volume = cif_check_cell_volume(p);
    const double s = 2.0 * std::sin(theta.value() * std::numbers::pi / 180.0) / lambda;
    const std::string basis = " to " + theta.name + " " + cif_check_written(block_, theta) +
                              " with wavelength " + cif_check_format(lambda, 0.00001);

    // The index limits: |h| reaches at most s times a.
    static constexpr CifCheckName limits[3][2] = {
        {"_diffrn_reflns_limit_h_min", "_diffrn_reflns_limit_h_max"},
        {"_diffrn_reflns_limit_k_min", "_diffrn_reflns_limit_k_max"},
        {"_diffrn_reflns_limit_l_min", "_diffrn_reflns_limit_l_max"}};
    for (int axis = 0; axis < 3; ++axis) {
        CifReading low = cif_check_read(block_, names_, {limits[axis][0]});
        CifReading high = cif_check_read(block_, names_, {limits[axis][1]});
        if (!low.ok || !high.ok) continue;
        const CifReading& reach = std::fabs(low.value()) > std::fabs(high.value()) ? low : high;
        const double allowed = s * p[axis];
        const double stated = std::fabs(reach.value());
        std::string what = " (|" + cif_check_format(reach.value(), 1.0) + "|; the cell's " + "abc"[axis] +
                           " " + cif_check_written(block_, cell[axis]) + " allows " +
                           cif_check_format(allowed, 0.1) + basis;
        if (stated > allowed + 1.0)
            findings_.add(CifError::reflections_incomplete, CifError::warning, block_, reach.name,
                          what + ", more than one beyond)");
        else if (stated < 0.9 * allowed - 1.0)
            findings_.add(CifError::reflections_incomplete, CifError::remark, block_, reach.name,
                          what + ", below 90 % of it less one)");
    }

    // Reciprocal lattice points in the sphere, over the centring's lattice
    // points and the Laue class's equivalents.
    const int laue = symmetry_.laue_order();
    const int centring = symmetry_.centring_count();
    if (laue == 0 || centring == 0 || volume <= 0.0) return;
    const double expected = 4.0 / 3.0 * std::numbers::pi * s * s * s * volume / (laue * centring);
    if (expected < 50.0) return;  // too few for the estimate
    for (const CifCheckName& name :
         {CifCheckName("_reflns_number_total"), CifCheckName("_diffrn_reflns_number")}) {
        CifReading count = cif_check_read(block_, names_, {name});
        if (!count.ok) continue;
        const double completeness = count.value() / expected;
        if (completeness < 0.85)
            findings_.add(CifError::reflections_incomplete, CifError::error, block_, count.name,
                          " (" + cif_check_format(count.value(), 1.0) + "; " +
                              cif_check_format(expected, 1.0) + " unique expected" + basis +
                              " in Laue class of order " + std::to_string(laue) +
                              (centring > 1 ? " and a centred cell" : "") + ": " + percent(completeness) +
                              ", below 85 %)");
    }
}
