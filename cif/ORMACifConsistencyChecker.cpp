// SPDX-License-Identifier: MIT
// Cross-checks of a document's values: cell, density, formula, symmetry, counts, labels.
#include "cif/ORMACifConsistencyChecker.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <initializer_list>
#include <numbers>
#include <unordered_map>
#include <unordered_set>

#include "cif/CifChemicalFormula.hpp"
#include "cif/CifLineIndex.hpp"
#include "cif/CifLoopDamage.hpp"
#include "cif/CifNames.hpp"
#include "cif/CifNumber.hpp"
#include "cif/Spacegroup.hpp"

namespace {

// One numeric value of a block, under the first of several names given.
struct Reading {
    std::string name;
    CifNumber number;
    bool ok = false;

    double value() const { return number.value; }
    double sigma() const { return number.effective_uncertainty(); }
    // The uncertainty as written; 0 for a value given without one.
    double stated_sigma() const { return number.has_uncertainty ? number.uncertainty : 0.0; }
};

bool is_unknown(std::string_view value) { return value.empty() || value == "?" || value == "."; }

Reading read(const CifDataBlock& block, std::initializer_list<const char*> names) {
    Reading reading;
    for (const char* name : names) {
        THandle<CifDataItem> item = block.find(name);
        if (item.is_null() || !item->has_value()) continue;
        reading.name = item->name();
        std::string_view text = item->value_view(0);
        if (is_unknown(text)) return reading;
        reading.number = CifNumber::parse(text);
        reading.ok = reading.number.ok();
        return reading;
    }
    return reading;
}

// The text of the first of the names the block holds with a known value.
std::pair<std::string, std::string> text_of(const CifDataBlock& block,
                                            std::initializer_list<const char*> names) {
    for (const char* name : names) {
        THandle<CifDataItem> item = block.find(name);
        if (item.is_null() || !item->has_value()) continue;
        std::string value(item->value_view(0));
        if (is_unknown(value) && !item->is_quoted(0)) return {item->name(), std::string()};
        return {item->name(), value};
    }
    return {};
}

// Whether two values agree within three combined uncertainties and a slack.
bool agree(double a, double sigma_a, double b, double sigma_b, double slack = 0.0) {
    return std::fabs(a - b) <= 3.0 * std::sqrt(sigma_a * sigma_a + sigma_b * sigma_b) + slack;
}

// A value with as many decimals as the unit of a written value shows.
std::string format(double value, double unit) {
    int decimals = unit >= 1.0 ? 0 : std::min(6, static_cast<int>(std::lround(-std::log10(unit))));
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

std::string format(const Reading& reading) { return format(reading.value(), reading.number.unit); }

double cell_volume(const double p[6]) {
    constexpr double radians = std::numbers::pi / 180.0;
    double ca = std::cos(p[3] * radians), cb = std::cos(p[4] * radians), cg = std::cos(p[5] * radians);
    double root = 1.0 - ca * ca - cb * cb - cg * cg + 2.0 * ca * cb * cg;
    return root <= 0.0 ? 0.0 : p[0] * p[1] * p[2] * std::sqrt(root);
}

std::string lower(std::string text) { return cif_lowercase(text); }

// The labels of the item's values, with the row of each.
std::vector<std::string> values(const CifDataBlock& block, const std::string& name) {
    std::vector<std::string> result;
    THandle<CifDataItem> item = block.find(name);
    if (item.is_null()) return result;
    for (std::size_t n = 0; n < item->size(); ++n) result.emplace_back(item->value_view(n));
    return result;
}

// Element symbol -> the real and imaginary parts of the anomalous
// dispersion the block's atom types give (the first type of an element).
using Dispersion = std::unordered_map<std::string, std::pair<double, double>>;

Dispersion dispersion_of(const CifDataBlock& block) {
    Dispersion result;
    THandle<CifDataItem> types = block.find("_atom_type_symbol");
    THandle<CifDataItem> real = block.find("_atom_type_scat_dispersion_real");
    if (types.is_null() || real.is_null() || real->size() != types->size()) return result;
    THandle<CifDataItem> imaginary = block.find("_atom_type_scat_dispersion_imag");
    if (!imaginary.is_null() && imaginary->size() != types->size()) imaginary = THandle<CifDataItem>();
    for (std::size_t n = 0; n < types->size(); ++n) {
        // "Cu2+" and "O1-" are types of copper and oxygen.
        std::string_view symbol = types->value_view(n);
        std::size_t length = !symbol.empty() && symbol[0] >= 'A' && symbol[0] <= 'Z' ? 1 : 0;
        if (length == 1 && symbol.size() > 1 && symbol[1] >= 'a' && symbol[1] <= 'z') length = 2;
        if (length == 0) continue;
        CifNumber f1 = CifNumber::parse(real->value_view(n));
        if (!f1.ok()) continue;
        double f2 = 0.0;
        if (!imaginary.is_null()) {
            CifNumber parsed = CifNumber::parse(imaginary->value_view(n));
            if (parsed.ok()) f2 = parsed.value;
        }
        result.emplace(std::string(symbol.substr(0, length)), std::make_pair(f1.value, f2));
    }
    return result;
}

}  // namespace

ORMACifConsistencyChecker::ORMACifConsistencyChecker(THandle<Cif> cif) : cif_(cif) {}

ORMACifConsistencyChecker::~ORMACifConsistencyChecker() = default;

void ORMACifConsistencyChecker::check_cif() {
    if (cif_.is_null()) return;
    findings_.clear();
    lines_.reset();
    damage_lines_.clear();
    for (const CifError& error : *cif_->errors()) {
        if (CifLoopDamage::displaces_values(error.id())) damage_lines_.push_back(error.line());
    }
    std::sort(damage_lines_.begin(), damage_lines_.end());
    for (const THandle<CifDataBlock>& block : cif_->blocks()) check_block(*block);
    std::stable_sort(findings_.begin(), findings_.end(),
                     [](const CifError& a, const CifError& b) { return a.line() < b.line(); });
    for (const CifError& finding : findings_) cif_->errors()->add(finding);
    findings_.clear();
}

void ORMACifConsistencyChecker::check_block(const CifDataBlock& block) {
    check_cell(block);
    check_chemistry(block);
    check_crystal_system(block);
    check_space_group(block);
    check_order(block);
    check_counts(block);
    check_labels(block);
}

void ORMACifConsistencyChecker::add(CifError::ErrorID id, const CifDataBlock& block, const std::string& name,
                                    const std::string& detail) {
    THandle<CifDataItem> item = block.find(name);
    int line = !item.is_null() && item->line() > 0 ? item->line() : std::max(block.line(), 1);
    findings_.emplace_back(id, line, name, detail);
}

const CifLineIndex& ORMACifConsistencyChecker::line_index() const {
    if (lines_ == nullptr) lines_ = std::make_unique<CifLineIndex>(cif_->store()->text());
    return *lines_;
}

int ORMACifConsistencyChecker::value_line(const CifDataBlock& block, const std::string& name,
                                          std::size_t n) const {
    THandle<CifDataItem> item = block.find(name);
    if (item.is_null()) return std::max(block.line(), 1);
    if (n < item->size() && !item->values()[n].added()) {
        return line_index().line_at(item->values()[n].offset);
    }
    return item->line() > 0 ? item->line() : std::max(block.line(), 1);
}

void ORMACifConsistencyChecker::check_cell(const CifDataBlock& block) {
    const Reading cell[6] = {read(block, {"_cell_length_a", "_cell.length_a"}),
                             read(block, {"_cell_length_b", "_cell.length_b"}),
                             read(block, {"_cell_length_c", "_cell.length_c"}),
                             read(block, {"_cell_angle_alpha", "_cell.angle_alpha"}),
                             read(block, {"_cell_angle_beta", "_cell.angle_beta"}),
                             read(block, {"_cell_angle_gamma", "_cell.angle_gamma"})};
    Reading volume = read(block, {"_cell_volume", "_cell.volume"});
    if (!volume.ok || !std::all_of(std::begin(cell), std::end(cell), [](const Reading& r) { return r.ok; }))
        return;
    double p[6];
    for (int i = 0; i < 6; ++i) p[i] = cell[i].value();
    double calculated = cell_volume(p);
    if (calculated <= 0.0) {
        add(CifError::calculated_value_differs, block, cell[3].name, " (the cell angles form no cell)");
        return;
    }
    // The volume's uncertainty from those of the lengths and angles.
    double variance = 0.0;
    for (int i = 0; i < 6; ++i) {
        // Central differences: an angle of 90 degrees changes the volume
        // only to second order.
        double up[6], down[6];
        std::copy(p, p + 6, up);
        std::copy(p, p + 6, down);
        double step = std::max(cell[i].sigma(), 1e-9);
        up[i] += step;
        down[i] -= step;
        double derivative = (cell_volume(up) - cell_volume(down)) / (2.0 * step);
        variance += std::pow(derivative * cell[i].sigma(), 2);
    }
    if (!agree(volume.value(), volume.sigma(), calculated, std::sqrt(variance), 1e-6 * calculated))
        add(CifError::calculated_value_differs, block, volume.name,
            " (calculated " + format(calculated, volume.number.unit) + ")");
}

void ORMACifConsistencyChecker::check_chemistry(const CifDataBlock& block) {
    auto [formula_name, formula_text] = text_of(block, {"_chemical_formula_sum", "_chemical_formula.sum"});
    CifChemicalFormula formula(formula_text);
    Reading weight = read(block, {"_chemical_formula_weight", "_chemical_formula.weight"});
    bool weight_disagrees = false;
    if (formula.valid() && weight.ok) {
        double calculated = formula.weight();
        weight_disagrees =
            !agree(weight.value(), weight.sigma(), calculated, 0.0, std::max(0.1, 1e-3 * calculated));
        if (weight_disagrees)
            add(CifError::calculated_value_differs, block, weight.name,
                " (calculated " + format(calculated, 0.01) + " from " + formula_text + ")");
    }

    Reading z = read(block, {"_cell_formula_units_Z", "_cell.formula_units_Z"});
    Reading f000 = read(block, {"_exptl_crystal_F_000", "_exptl_crystal.F_000"});
    if (formula.valid() && z.ok && f000.ok) {
        // F(000) = sqrt((sum of Z + f')^2 + (sum of f'')^2) over the cell,
        // with the atom types' anomalous dispersion where the block gives it.
        const Dispersion dispersion = dispersion_of(block);
        double real = 0.0, imaginary = 0.0;
        for (const auto& [symbol, count] : formula.parts()) {
            auto found = dispersion.find(symbol);
            CifChemicalFormula one(symbol);
            real += count * (one.electrons() + (found == dispersion.end() ? 0.0 : found->second.first));
            imaginary += count * (found == dispersion.end() ? 0.0 : found->second.second);
        }
        double electrons = z.value() * std::hypot(real, imaginary);
        // What dispersion the block does not give may add a few per cent.
        if (!agree(f000.value(), 0.0, electrons, 0.0, std::max(2.0, 0.03 * electrons)))
            add(CifError::calculated_value_differs, block, f000.name,
                " (" + format(electrons, 1.0) + " electrons in the cell" +
                    (dispersion.empty() ? "" : ", with anomalous dispersion") + ")");
    }

    // The density follows from Z, the weight and the volume. When the weight
    // disagrees with the formula (reported above) and the density agrees
    // with the formula's weight, the weight is the one at fault.
    Reading density = read(block, {"_exptl_crystal_density_diffrn", "_exptl_crystal.density_diffrn"});
    Reading volume = read(block, {"_cell_volume", "_cell.volume"});
    if (density.ok && volume.ok && z.ok && volume.value() > 0.0) {
        constexpr double atomic_mass_unit = 1.66053907;  // g per mol per 1e-24 cm3
        auto fits = [&](double molar, double& calculated) {
            calculated = z.value() * molar * atomic_mass_unit / volume.value();
            double sigma = calculated * volume.sigma() / volume.value();
            return agree(density.value(), density.sigma(), calculated, sigma, 1e-3 * calculated);
        };
        double calculated = 0.0, from_formula = 0.0;
        double molar = weight.ok ? weight.value() : (formula.valid() ? formula.weight() : 0.0);
        bool blamed_weight = weight_disagrees && fits(formula.weight(), from_formula);
        if (molar > 0.0 && !fits(molar, calculated) && !blamed_weight)
            add(CifError::calculated_value_differs, block, density.name,
                " (calculated " + format(calculated, density.number.unit) + ")");
    }
}

void ORMACifConsistencyChecker::check_crystal_system(const CifDataBlock& block) {
    auto [system_name, system_text] = text_of(
        block, {"_symmetry_cell_setting", "_space_group_crystal_system", "_space_group.crystal_system"});
    std::string system = lower(system_text);
    if (system.empty()) return;

    Reading number =
        read(block, {"_symmetry_Int_Tables_number", "_space_group_IT_number", "_space_group.IT_number"});
    if (number.ok) {
        int n = static_cast<int>(std::lround(number.value()));
        int expected = Spacegroup::crystal_system(n);
        bool trigonal_family = expected >= Spacegroup::rhombohedral && expected <= Spacegroup::trigonal;
        bool fits =
            system == Spacegroup::crystal_system_name(expected) ||
            (trigonal_family && (system == "trigonal" || system == "rhombohedral" || system == "hexagonal"));
        // One finding per item: the space group's word first.
        if (expected != Spacegroup::unknown_system && !fits) {
            add(CifError::calculated_value_differs, block, system_name,
                std::string(" (space group ") + std::to_string(n) + " is " +
                    Spacegroup::crystal_system_name(expected) + ")");
            return;
        }
    }

    const Reading cell[6] = {read(block, {"_cell_length_a", "_cell.length_a"}),
                             read(block, {"_cell_length_b", "_cell.length_b"}),
                             read(block, {"_cell_length_c", "_cell.length_c"}),
                             read(block, {"_cell_angle_alpha", "_cell.angle_alpha"}),
                             read(block, {"_cell_angle_beta", "_cell.angle_beta"}),
                             read(block, {"_cell_angle_gamma", "_cell.angle_gamma"})};
    if (!std::all_of(std::begin(cell), std::end(cell), [](const Reading& r) { return r.ok; })) return;
    // Values fixed by symmetry are written without uncertainty; a small
    // slack covers their rounding.
    auto same = [&](int i, int j) {
        return agree(cell[i].value(), cell[i].stated_sigma(), cell[j].value(), cell[j].stated_sigma(), 0.01);
    };
    auto is = [&](int i, double angle) {
        return agree(cell[i].value(), cell[i].stated_sigma(), angle, 0.0, 0.01);
    };
    bool right = is(3, 90.0) && is(4, 90.0) && is(5, 90.0);
    bool hexagonal_axes = same(0, 1) && is(3, 90.0) && is(4, 90.0) && is(5, 120.0);
    bool rhombohedral_axes = same(0, 1) && same(1, 2) && same(3, 4) && same(4, 5);
    std::string problem;
    if (system == "monoclinic") {
        int right_angles = is(3, 90.0) + is(4, 90.0) + is(5, 90.0);
        if (right_angles < 2) problem = "two of the angles must be 90";
    } else if (system == "orthorhombic") {
        if (!right) problem = "all angles must be 90";
    } else if (system == "tetragonal") {
        if (!right || !same(0, 1)) problem = "a = b and all angles 90 required";
    } else if (system == "hexagonal") {
        if (!hexagonal_axes) problem = "a = b, alpha = beta = 90 and gamma = 120 required";
    } else if (system == "trigonal" || system == "rhombohedral") {
        if (!hexagonal_axes && !rhombohedral_axes)
            problem = "hexagonal axes or a = b = c with equal angles required";
    } else if (system == "cubic") {
        if (!right || !same(0, 1) || !same(1, 2)) problem = "a = b = c and all angles 90 required";
    }
    if (!problem.empty()) add(CifError::calculated_value_differs, block, system_name, " (" + problem + ")");
}

void ORMACifConsistencyChecker::check_space_group(const CifDataBlock& block) {
    auto [symbol_name, symbol] = text_of(
        block, {"_symmetry_space_group_name_H-M", "_space_group_name_H-M_alt", "_space_group.name_H-M_alt"});
    if (symbol.empty()) return;
    std::string derived = Spacegroup::derive_orma_symbol(symbol);
    if (derived == "Unknown") {
        findings_.emplace_back(CifError::space_group_unknown, value_line(block, symbol_name, 0), symbol);
        return;
    }
    Reading number =
        read(block, {"_symmetry_Int_Tables_number", "_space_group_IT_number", "_space_group.IT_number"});
    int symbol_number = Spacegroup::number_of(symbol);
    if (number.ok && std::lround(number.value()) != symbol_number)
        add(CifError::calculated_value_differs, block, number.name,
            " (" + std::to_string(symbol_number) + " for " + symbol + ")");

    std::string operators_name;
    for (const char* name : {"_symmetry_equiv_pos_as_xyz", "_space_group_symop_operation_xyz",
                             "_space_group_symop.operation_xyz"}) {
        if (!block.find(name).is_null()) {
            operators_name = name;
            break;
        }
    }
    if (operators_name.empty()) return;
    Spacegroup group(values(block, operators_name), symbol_number, symbol);
    if (!group.operators_readable() || group.symbol() == "Unknown") return;
    // A symbol without an origin or axes choice agrees with either choice.
    auto without_choice = [](const std::string& text) { return text.substr(0, text.find(':')); };
    bool agrees = group.symbol() == derived || (symbol.find(':') == std::string::npos &&
                                                without_choice(group.symbol()) == without_choice(derived));
    if (!agrees)
        findings_.emplace_back(CifError::symmetry_disagrees, value_line(block, symbol_name, 0), symbol,
                               group.symbol());
}

void ORMACifConsistencyChecker::check_order(const CifDataBlock& block) {
    // Pairs (smaller, larger) that must be in order.
    static const char* const pairs[][2] = {
        {"_diffrn_reflns_theta_min", "_diffrn_reflns_theta_max"},
        {"_cell_measurement_theta_min", "_cell_measurement_theta_max"},
        {"_diffrn_reflns_limit_h_min", "_diffrn_reflns_limit_h_max"},
        {"_diffrn_reflns_limit_k_min", "_diffrn_reflns_limit_k_max"},
        {"_diffrn_reflns_limit_l_min", "_diffrn_reflns_limit_l_max"},
        {"_exptl_absorpt_correction_T_min", "_exptl_absorpt_correction_T_max"},
        {"_exptl_crystal_size_min", "_exptl_crystal_size_mid"},
        {"_exptl_crystal_size_mid", "_exptl_crystal_size_max"},
        {"_exptl_crystal_size_min", "_exptl_crystal_size_max"},
        {"_diffrn_reflns_theta_full", "_diffrn_reflns_theta_max"},
    };
    std::unordered_set<std::string> reported;
    for (const auto& pair : pairs) {
        Reading low = read(block, {pair[0]});
        Reading high = read(block, {pair[1]});
        if (!low.ok || !high.ok) continue;
        if (low.value() <= high.value() + 3.0 * std::hypot(low.stated_sigma(), high.stated_sigma())) continue;
        if (!reported.insert(high.name).second) continue;
        add(CifError::calculated_value_differs, block, high.name,
            " (smaller than " + low.name + " " + format(low) + ")");
    }
}

void ORMACifConsistencyChecker::check_counts(const CifDataBlock& block) {
    static const char* const pairs[][2] = {
        {"_reflns_number_gt", "_reflns_number_total"},
        {"_reflns_number_total", "_diffrn_reflns_number"},
        {"_refine_ls_number_restraints", "_refine_ls_number_reflns"},
    };
    for (const auto& pair : pairs) {
        Reading low = read(block, {pair[0]});
        Reading high = read(block, {pair[1]});
        if (low.ok && high.ok && low.value() > high.value())
            add(CifError::count_mismatch, block, low.name,
                " (larger than " + high.name + " " + format(high) + ")");
    }
    // A count given with its loop must count the loop's rows.
    static const char* const counted[][2] = {
        {"_diffrn_reflns_number", "_diffrn_refln_index_h"},
        {"_diffrn_standards_number", "_diffrn_standard_refln_index_h"},
        {"_cell_measurement_reflns_used", "_cell_measurement_refln_index_h"},
    };
    for (const auto& pair : counted) {
        Reading count = read(block, {pair[0]});
        THandle<CifDataItem> rows = block.find(pair[1]);
        if (!count.ok || rows.is_null() || !rows->is_looped()) continue;
        if (std::fabs(count.value() - static_cast<double>(rows->size())) > 0.5)
            add(CifError::count_mismatch, block, count.name,
                " (the loop of " + rows->name() + " has " + std::to_string(rows->size()) + " rows)");
    }
}

void ORMACifConsistencyChecker::check_labels(const CifDataBlock& block) {
    THandle<CifDataItem> sites = block.find("_atom_site_label");
    if (sites.is_null()) sites = block.find("_atom_site.label");
    if (sites.is_null()) return;
    // Keys and children the dictionary names are checked while reading.
    THandle<CifDictionary> dictionary = cif_->dictionary();
    bool checked_by_dictionary = !dictionary.is_null() && dictionary->has_definitions();
    auto linked = [&](const std::string& name) {
        if (!checked_by_dictionary) return false;
        const CifItemDefinition* definition = dictionary->definition(name);
        return definition != nullptr && (!definition->list_link_parent.empty() || definition->list_mandatory);
    };
    std::unordered_map<std::string, std::size_t> rows;  // labels are compared as written
    const std::size_t sound_sites = sound_rows(block, *sites);
    bool keyed = linked(sites->name());
    for (std::size_t n = 0; n < sound_sites; ++n) {
        std::string label(sites->value_view(n));
        if (is_unknown(label)) continue;
        auto [found, inserted] = rows.emplace(label, n);
        // Each repeated label once, on the line of its first repetition.
        if (!inserted && !keyed && found->second != static_cast<std::size_t>(-1)) {
            findings_.emplace_back(CifError::duplicate_key_value, value_line(block, sites->name(), n),
                                   sites->name(), label);
            found->second = static_cast<std::size_t>(-1);
        }
    }
    static const char* const children[] = {
        "_atom_site_aniso_label",          "_geom_bond_atom_site_label_1",
        "_geom_bond_atom_site_label_2",    "_geom_angle_atom_site_label_1",
        "_geom_angle_atom_site_label_2",   "_geom_angle_atom_site_label_3",
        "_geom_torsion_atom_site_label_1", "_geom_torsion_atom_site_label_2",
        "_geom_torsion_atom_site_label_3", "_geom_torsion_atom_site_label_4",
        "_geom_hbond_atom_site_label_D",   "_geom_hbond_atom_site_label_H",
        "_geom_hbond_atom_site_label_A",   "_geom_contact_atom_site_label_1",
        "_geom_contact_atom_site_label_2", "_atom_site_aniso.label",
        "_geom_bond.atom_site_label_1",    "_geom_bond.atom_site_label_2",
    };
    // A site's rows damaged by a syntax problem may hold any label.
    if (sound_sites < sites->size()) return;
    for (const char* child : children) {
        THandle<CifDataItem> item = block.find(child);
        if (item.is_null() || linked(child)) continue;
        std::unordered_set<std::string> reported;
        const std::size_t sound = sound_rows(block, *item);
        for (std::size_t n = 0; n < sound; ++n) {
            std::string label(item->value_view(n));
            if (is_unknown(label) || rows.count(label) != 0 || !reported.insert(label).second) continue;
            findings_.emplace_back(CifError::parent_value_missing, value_line(block, item->name(), n),
                                   item->name(), label);
        }
    }
}

std::size_t ORMACifConsistencyChecker::sound_rows(const CifDataBlock& block, const CifDataItem& item) const {
    if (!item.is_looped()) return item.size();
    for (const CifDataBlock::ItemList& loop : block.loops()) {
        for (const THandle<CifDataItem>& column : loop) {
            if (column.get() == &item)
                return std::min(item.size(), CifLoopDamage::first_damaged_row(loop, damage_lines_, line_index()));
        }
    }
    return item.size();
}
