// SPDX-License-Identifier: MIT
// Cross-checks of a block's chemistry: formula, weight, F(000), density, cell contents, moieties.
#include "cif/CifChemistryCheck.hpp"

#include <algorithm>
#include <cmath>
#include <map>
#include <unordered_map>

#include "cif/CifBlockSymmetry.hpp"
#include "cif/CifCellContents.hpp"
#include "cif/CifCheckFindings.hpp"
#include "cif/CifCheckValues.hpp"
#include "cif/CifDataBlock.hpp"
#include "cif/CifMoietyFormula.hpp"

namespace {

// The sum formula's text, its name put into name (read once: the formula is
// made of it only once).
std::string formula_text_of(const CifDataBlock& block, CifReadingName& name) {
    auto [found, text] = cif_check_text(block, {"_chemical_formula_sum", "_chemical_formula.sum"});
    name = found;
    return std::move(text);
}

constexpr double atomic_mass_unit = 1.66053907;  // g per mol per 1e-24 cm3

// Element symbol -> the real and imaginary parts of the anomalous
// dispersion the block's atom types give (the first type of an element).
using Dispersion = std::unordered_map<std::string, std::pair<double, double>>;

Dispersion dispersion_of(const CifDataBlock& block) {
    Dispersion result;
    THandle<CifDataItem> types = cif_check_find(block, "_atom_type_symbol");
    THandle<CifDataItem> real = cif_check_find(block, "_atom_type_scat_dispersion_real");
    if (types.is_null() || real.is_null() || real->size() != types->size()) return result;
    THandle<CifDataItem> imaginary = cif_check_find(block, "_atom_type_scat_dispersion_imag");
    if (!imaginary.is_null() && imaginary->size() != types->size()) imaginary = THandle<CifDataItem>();
    for (std::size_t n = 0; n < types->size(); ++n) {
        std::string element = cif_element_of(types->value_view(n));
        if (element.empty()) continue;
        CifNumber f1 = CifNumber::parse(real->value_view(n));
        if (!f1.ok()) continue;
        double f2 = 0.0;
        if (!imaginary.is_null()) {
            CifNumber parsed = CifNumber::parse(imaginary->value_view(n));
            if (parsed.ok()) f2 = parsed.value;
        }
        result.emplace(element, std::make_pair(f1.value, f2));
    }
    return result;
}

std::string percent(double fraction) { return cif_check_format(100.0 * fraction, 0.1) + " %"; }

// "C 24, H 48" of the counts, each as a count is usually written.
std::string counts_text(const std::map<std::string, double>& counts) {
    std::string text;
    for (const auto& [element, count] : counts) {
        if (!text.empty()) text += ", ";
        text += element + " " + cif_check_significant(count, 4);
    }
    return text;
}

}  // namespace

CifChemistryCheck::CifChemistryCheck(const CifDataBlock& block, const CifBlockSymmetry& symmetry,
                                     CifCheckFindings& findings)
    : block_(block),
      symmetry_(symmetry),
      findings_(findings),
      formula_text_(formula_text_of(block, formula_name_)),
      formula_(formula_text_),
      z_(cif_check_read(block, {"_cell_formula_units_Z", "_cell.formula_units_Z"})),
      weight_(cif_check_read(block, {"_chemical_formula_weight", "_chemical_formula.weight"})),
      volume_(symmetry.volume()) {}

void CifChemistryCheck::check_weight_and_density() {
    bool weight_disagrees = false;
    if (weight_.ok && weight_.value() > 0.0) {
        double calculated = 0.0;
        if (formula_.valid()) {
            calculated = formula_.weight();
        } else if (z_.ok && z_.value() > 0.0) {
            CifCellContents contents(block_, symmetry_);
            if (contents.valid()) calculated = contents.weight() / z_.value();
        }
        // Written for a message only.
        auto source = [this] {
            return formula_.valid()
                       ? formula_name_ + " '" + formula_text_ + "'"
                       : "the atom sites / " + z_.name + " " + cif_check_format(z_.value(), z_.number.unit);
        };
        if (calculated > 0.0) {
            double off = std::fabs(weight_.value() - calculated) / calculated;
            CifError::ErrorType level;
            weight_disagrees = off > 0.01 || !cif_check_agree(weight_.value(), weight_.sigma(), calculated,
                                                              0.0, std::max(0.1, 1e-3 * calculated));
            if (cif_check_level(off, 0.01, 0.05, 0.10, level))
                findings_.add(CifError::formula_weight_differs, level, block_, weight_.name,
                              " (" + cif_check_written(block_, weight_) + "; " + source() + " gives " +
                                  cif_check_format(calculated, 0.01) + ", off by " + percent(off) +
                                  ", more than " +
                                  (level == CifError::error     ? "10 %"
                                   : level == CifError::warning ? "5 %"
                                                                : "1 %") +
                                  ")");
            else if (weight_disagrees)
                findings_.add(
                    CifError::calculated_value_differs, block_, weight_.name,
                    " (calculated " + cif_check_format(calculated, 0.01) + " from " + formula_text_ + ")");
        }
    }

    CifReading f000 = cif_check_read(block_, {"_exptl_crystal_F_000", "_exptl_crystal.F_000"});
    if (formula_.valid() && z_.ok && f000.ok) {
        // F(000) = sqrt((sum of Z + f')^2 + (sum of f'')^2) over the cell,
        // with the atom types' anomalous dispersion where the block gives it.
        const Dispersion dispersion = dispersion_of(block_);
        double real = 0.0, imaginary = 0.0;
        for (const auto& [symbol, count] : formula_.parts()) {
            auto found = dispersion.find(symbol);
            real +=
                count * (cif_atomic_number(symbol) + (found == dispersion.end() ? 0.0 : found->second.first));
            imaginary += count * (found == dispersion.end() ? 0.0 : found->second.second);
        }
        double electrons = z_.value() * std::hypot(real, imaginary);
        // What dispersion the block does not give may add a few per cent.
        if (!cif_check_agree(f000.value(), 0.0, electrons, 0.0, std::max(2.0, 0.03 * electrons)))
            findings_.add(CifError::calculated_value_differs, block_, f000.name,
                          " (" + cif_check_format(electrons, 1.0) + " electrons in the cell" +
                              (dispersion.empty() ? "" : ", with anomalous dispersion") + ")");
    }

    // The density follows from Z, the weight and the volume. When the weight
    // disagrees with the formula (reported above) and the density agrees
    // with the formula's weight, the weight is the one at fault.
    const CalculatedDensity density_from = calculated_density();
    if (density_from.molar <= 0.0) return;
    const double molar = density_from.molar;
    const double calculated = density_from.value;
    CifReading density =
        cif_check_read(block_, {"_exptl_crystal_density_diffrn", "_exptl_crystal.density_diffrn"});
    if (density.ok) {
        auto fits = [&](double weight) {
            double value = z_.value() * weight * atomic_mass_unit / volume_.value();
            double sigma = value * volume_.sigma() / volume_.value();
            return cif_check_agree(density.value(), density.sigma(), value, sigma, 1e-3 * value);
        };
        bool blamed_weight = weight_disagrees && formula_.valid() && fits(formula_.weight());
        double off = std::fabs(density.value() - calculated) / calculated;
        CifError::ErrorType level;
        if (blamed_weight) {
        } else if (cif_check_level(off, 0.01, 0.02, 0.05, level)) {
            findings_.add(CifError::density_differs, level, block_, density.name,
                          " (" + cif_check_written(block_, density) + "; " +
                              cif_check_format(calculated, 0.001) + density_basis(density_from) +
                              ", off by " + percent(off) + ", more than " +
                              (level == CifError::error     ? "5 %"
                               : level == CifError::warning ? "2 %"
                                                            : "1 %") +
                              ")");
        } else if (!fits(molar)) {
            findings_.add(CifError::calculated_value_differs, block_, density.name,
                          " (calculated " + cif_check_format(calculated, density.number.unit) + ")");
        }
    }
}

void CifChemistryCheck::check_cell_contents() {
    if (!formula_.valid() || !z_.ok || z_.value() <= 0.0) return;
    std::map<std::string, double> expected;
    for (const auto& [element, count] : formula_.parts()) expected[element] += z_.value() * count;
    auto tolerance = [](double count) { return 0.1 + 0.03 * count; };
    auto basis = [this] {
        return z_.name + " " + cif_check_format(z_.value(), z_.number.unit) + " x '" + formula_text_ + "'";
    };

    // The atom types' numbers in the cell.
    THandle<CifDataItem> types = cif_check_find(block_, "_atom_type_symbol");
    THandle<CifDataItem> numbers = cif_check_find(block_, "_atom_type_number_in_cell");
    if (!types.is_null() && !numbers.is_null() && numbers->size() == types->size()) {
        std::map<std::string, double> stated;
        bool complete = true;
        for (std::size_t n = 0; n < types->size(); ++n) {
            std::string element = cif_element_of(types->value_view(n));
            CifNumber number = CifNumber::parse(numbers->value_view(n));
            if (element.empty() || !number.ok()) {
                complete = false;
                break;
            }
            stated[element] += number.value;
        }
        std::map<std::string, double> wrong_stated, wrong_expected;
        for (const auto& [element, count] : expected) {
            auto found = stated.find(element);
            double given = found == stated.end() ? 0.0 : found->second;
            if (std::fabs(given - count) > tolerance(count)) {
                wrong_stated[element] = given;
                wrong_expected[element] = count;
            }
        }
        if (complete && !wrong_stated.empty())
            findings_.add(CifError::cell_contents_differ, CifError::warning, block_, numbers->name(),
                          " (" + basis() + " gives " + counts_text(wrong_expected) + " +/- 0.1 + 3 %; " +
                              numbers->name() + " gives " + counts_text(wrong_stated) + ")");
    }

    CifCellContents contents(block_, symmetry_);
    if (!contents.valid()) return;
    std::map<std::string, double> wrong_sites, wrong_expected;
    std::map<std::string, double> all = expected;
    for (const auto& [element, count] : contents.counts()) all.emplace(element, 0.0);
    for (const auto& [element, count] : all) {
        double sites = contents.count(element);
        if (std::fabs(sites - count) > tolerance(count)) {
            wrong_sites[element] = sites;
            wrong_expected[element] = count;
        }
    }
    if (wrong_sites.empty()) return;
    // Hydrogen atoms left out of the model are a remark.
    bool only_hydrogen_missing =
        wrong_sites.size() == 1 && wrong_sites.begin()->first == "H" && (wrong_sites.begin()->second == 0.0);
    contents_disagree_ = !only_hydrogen_missing;
    findings_.add(CifError::cell_contents_differ,
                  only_hydrogen_missing ? CifError::remark : CifError::warning, block_, formula_name_,
                  " (" + basis() + " gives " + counts_text(wrong_expected) +
                      " +/- 0.1 + 3 %; the atom sites give " + counts_text(wrong_sites) +
                      (only_hydrogen_missing ? ": no hydrogen atom among the sites" : "") + ")");
}

void CifChemistryCheck::check_moieties() {
    auto [moiety_name, moiety_text] =
        cif_check_text(block_, {"_chemical_formula_moiety", "_chemical_formula.moiety"});
    if (moiety_text.empty()) return;
    CifMoietyFormula moiety(moiety_text);
    if (!moiety.valid()) {
        findings_.add(CifError::moiety_formula_differs, CifError::warning, block_, moiety_name,
                      " (" + moiety.problem() + ")");
        return;
    }
    if (formula_.valid()) {
        std::map<std::string, double> sum;
        for (const auto& [element, count] : formula_.parts()) sum[element] += count;
        std::map<std::string, double> all = sum;
        for (const auto& [element, count] : moiety.counts()) all.emplace(element, 0.0);
        std::map<std::string, double> wrong_moiety, wrong_sum;
        for (const auto& [element, count] : all) {
            double from_moiety = moiety.count(element);
            if (std::fabs(from_moiety - count) > 0.01 + 0.01 * count) {
                wrong_moiety[element] = from_moiety;
                wrong_sum[element] = count;
            }
        }
        if (!wrong_moiety.empty())
            findings_.add(CifError::moiety_formula_differs, CifError::warning, block_, moiety_name,
                          " ('" + moiety_text + "' adds up to " + counts_text(wrong_moiety) + "; " +
                              formula_name_ + " '" + formula_text_ + "' has " + counts_text(wrong_sum) +
                              ", +/- 0.01 + 1 %)");
    }
    if (std::fabs(moiety.charge()) > 0.01)
        findings_.add(CifError::moiety_formula_differs, CifError::remark, block_, moiety_name,
                      " ('" + moiety_text + "': the charges add up to " +
                          cif_check_significant(moiety.charge(), 3) + ", not 0)");
}

CifChemistryCheck::CalculatedDensity CifChemistryCheck::calculated_density() const {
    CalculatedDensity density;
    if (!volume_.ok || !z_.ok || volume_.value() <= 0.0) return density;
    density.molar = weight_.ok ? weight_.value() : (formula_.valid() ? formula_.weight() : 0.0);
    if (density.molar <= 0.0) return density;
    density.value = z_.value() * density.molar * atomic_mass_unit / volume_.value();
    return density;
}

std::string CifChemistryCheck::density_basis(const CalculatedDensity& density) const {
    return " from " + z_.name + " " + cif_check_format(z_.value(), 1.0) + ", " +
           (weight_.ok ? weight_.name : formula_name_) + " " + cif_check_format(density.molar, 0.01) +
           " and " + volume_.name + " " + cif_check_written(block_, volume_);
}

void CifChemistryCheck::check_measured_density() {
    // The formula is in doubt when the atom sites disagree with it (371).
    if (contents_disagree_) return;
    const CalculatedDensity density_from = calculated_density();
    if (density_from.molar <= 0.0) return;
    const double calculated = density_from.value;
    CifReading measured =
        cif_check_read(block_, {"_exptl_crystal_density_meas", "_exptl_crystal.density_meas"});
    if (measured.ok && measured.value() > 0.0) {
        double off = std::fabs(measured.value() - calculated) / calculated;
        CifError::ErrorType level;
        if (cif_check_level(off, 0.05, 0.10, 1e300, level))
            findings_.add(CifError::density_differs, level, block_, measured.name,
                          " (measured " + cif_check_written(block_, measured) + "; calculated " +
                              cif_check_format(calculated, 0.001) + density_basis(density_from) +
                              ", off by " + percent(off) + ", more than " +
                              (level == CifError::warning ? "10 %" : "5 %") + ")");
    }
}
