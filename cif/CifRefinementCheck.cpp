// SPDX-License-Identifier: MIT
// Cross-checks of a refinement: data per parameter, shifts, R factors, residual density, Flack.
#include "cif/CifRefinementCheck.hpp"

#include <cmath>

#include "cif/CifBlockSymmetry.hpp"
#include "cif/CifCellContents.hpp"
#include "cif/CifCheckFindings.hpp"
#include "cif/CifCheckValues.hpp"
#include "cif/CifChemicalFormula.hpp"
#include "cif/CifDataBlock.hpp"
#include "cif/CifNames.hpp"

namespace {

const char* threshold(CifError::ErrorType level, const char* remark, const char* warning, const char* error) {
    return level == CifError::error ? error : level == CifError::warning ? warning : remark;
}

}  // namespace

CifRefinementCheck::CifRefinementCheck(const CifDataBlock& block, const CifBlockSymmetry& symmetry,
                                       CifCheckFindings& findings)
    : block_(block), names_(CifBlockNameFilter::of(block)), symmetry_(symmetry), findings_(findings) {}

void CifRefinementCheck::check_data_per_parameter() {
    CifReading reflections =
        cif_check_read(block_, names_, {"_refine_ls_number_reflns", "_refine.ls_number_reflns"});
    CifReading parameters =
        cif_check_read(block_, names_, {"_refine_ls_number_parameters", "_refine.ls_number_parameters"});
    if (!reflections.ok || !parameters.ok || parameters.value() <= 0.0) return;
    const bool centric = symmetry_.centrosymmetric();
    const double least = centric ? 10.0 : 8.0;
    const double ratio = reflections.value() / parameters.value();
    if (ratio < least)
        findings_.add(
            CifError::data_to_parameter_ratio_low, CifError::warning, block_, reflections.name,
            " (" + cif_check_written(block_, reflections) + " / " + parameters.name + " " +
                cif_check_written(block_, parameters) + " = " + cif_check_format(ratio, 0.01) + ", below " +
                (centric ? "10 for a centrosymmetric" : "8 for a non-centrosymmetric") + " structure)");
}

void CifRefinementCheck::check_shift() {
    CifReading shift = cif_check_read(
        block_, names_,
        {"_refine_ls_shift/su_max", "_refine_ls_shift/esd_max", "_refine.ls_shift_over_su_max"});
    CifError::ErrorType level;
    if (shift.ok && cif_check_level(std::fabs(shift.value()), 0.05, 0.10, 0.20, level))
        findings_.add(CifError::shift_too_large, level, block_, shift.name,
                      " (" + cif_check_written(block_, shift) + ", above " +
                          threshold(level, "0.05", "0.10", "0.20") + ")");
}

void CifRefinementCheck::check_r_factors() {
    CifReading wr2 = cif_check_read(block_, names_, {"_refine_ls_wR_factor_ref", "_refine.ls_wR_factor_ref"});
    if (!wr2.ok) return;
    CifError::ErrorType level;
    if (cif_check_level(wr2.value(), 0.25, 0.35, 0.45, level)) {
        findings_.add(CifError::r_factor_high, level, block_, wr2.name,
                      " (" + cif_check_written(block_, wr2) + ", above " +
                          threshold(level, "0.25", "0.35", "0.45") + ")");
        return;
    }
    // On F squared wR2 is larger than R1 on F.
    auto [coefficient_name, coefficient] = cif_check_text(
        block_, names_, {"_refine_ls_structure_factor_coef", "_refine.ls_structure_factor_coef"});
    if (cif_lowercase(coefficient) != "fsqd") return;
    CifReading r1 = cif_check_read(block_, names_,
                                   {"_refine_ls_R_factor_gt", "_refine_ls_R_factor_all",
                                    "_refine.ls_R_factor_gt", "_refine.ls_R_factor_all"});
    if (r1.ok && r1.value() > wr2.value())
        findings_.add(CifError::r_factor_high, CifError::remark, block_, wr2.name,
                      " (" + cif_check_written(block_, wr2) + " below " + r1.name + " " +
                          cif_check_written(block_, r1) +
                          ", though a refinement on F squared gives wR2 above R1)");
}

void CifRefinementCheck::check_residual_density() {
    CifReading highest =
        cif_check_read(block_, names_, {"_refine_diff_density_max", "_refine.diff_density_max"});
    CifReading lowest =
        cif_check_read(block_, names_, {"_refine_diff_density_min", "_refine.diff_density_min"});
    if (lowest.ok && lowest.value() > 0.0)
        findings_.add(CifError::residual_density_implausible, CifError::error, block_, lowest.name,
                      " (" + cif_check_written(block_, lowest) + ": the deepest hole cannot be positive)");
    if (highest.ok && highest.value() < 0.0)
        findings_.add(CifError::residual_density_implausible, CifError::error, block_, highest.name,
                      " (" + cif_check_written(block_, highest) + ": the highest peak cannot be negative)");
    // Against the heaviest atom of the formula, else of the atom types.
    if (!highest.ok && !lowest.ok) return;
    std::string heaviest;
    int z = 0;
    auto consider = [&](const std::string& element) {
        int number = cif_atomic_number(element);
        if (number > z) {
            z = number;
            heaviest = element;
        }
    };
    auto [formula_name, formula_text] =
        cif_check_text(block_, names_, {"_chemical_formula_sum", "_chemical_formula.sum"});
    CifChemicalFormula formula(formula_text);
    if (formula.valid()) {
        for (const auto& [element, count] : formula.parts()) consider(element);
    } else if (THandle<CifDataItem> types = cif_check_find(block_, "_atom_type_symbol"); !types.is_null()) {
        for (std::size_t n = 0; n < types->size(); ++n) consider(cif_element_of(types->value_view(n)));
    }
    if (z == 0) return;
    const double limit = 0.1 * z;
    for (const CifReading* reading : {&highest, &lowest}) {
        if (!reading->ok || std::fabs(reading->value()) <= limit) continue;
        findings_.add(CifError::residual_density_implausible, CifError::warning, block_, reading->name,
                      " (" + cif_check_written(block_, *reading) +
                          " e/A^3; above 0.1 x Z of the heaviest atom, " + heaviest + " " +
                          std::to_string(z) + ", = " + cif_check_format(limit, 0.1) + ")");
    }
}

void CifRefinementCheck::check_absolute_structure() {
    CifReading flack =
        cif_check_read(block_, names_, {"_refine_ls_abs_structure_Flack", "_refine.ls_abs_structure_Flack"});
    if (!flack.ok) return;
    auto [details_name, details] = cif_check_text(
        block_, names_, {"_refine_ls_abs_structure_details", "_refine.ls_abs_structure_details"});
    if (details.empty())
        findings_.add(CifError::absolute_structure_unsettled, CifError::warning, block_, flack.name,
                      " (" + cif_check_written(block_, flack) +
                          " given without _refine_ls_abs_structure_details saying how it was found)");
    if (symmetry_.operations() != nullptr && !symmetry_.centrosymmetric() &&
        flack.stated_sigma() > 0.3 + 1e-9)
        findings_.add(CifError::absolute_structure_unsettled, CifError::remark, block_, flack.name,
                      " (" + cif_check_written(block_, flack) + ": its su " +
                          cif_check_format(flack.stated_sigma(), flack.number.unit) +
                          " is above 0.3 in a non-centrosymmetric structure)");
}
