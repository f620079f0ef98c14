// SPDX-License-Identifier: MIT
// Cross-checks of a document's values: cell, density, formula, symmetry, counts, labels.
#include "cif/ORMACifConsistencyChecker.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <numbers>
#include <optional>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "cif/CifBlockNameFilter.hpp"
#include "cif/CifBlockSymmetry.hpp"
#include "cif/CifCheckFindings.hpp"
#include "cif/CifCheckValues.hpp"
#include "cif/CifChemistryCheck.hpp"
#include "cif/CifDiffractionCheck.hpp"
#include "cif/CifNames.hpp"
#include "cif/CifPublicationCheck.hpp"
#include "cif/CifRefinementCheck.hpp"
#include "cif/CifSymmetryCheck.hpp"
#include "cif/Spacegroup.hpp"

namespace {

using Reading = CifReading;

bool is_unknown(std::string_view value) { return cif_check_unknown(value); }

bool agree(double a, double sigma_a, double b, double sigma_b, double slack = 0.0) {
    return cif_check_agree(a, sigma_a, b, sigma_b, slack);
}

std::string format(double value, double unit) { return cif_check_format(value, unit); }
std::string format(const Reading& reading) { return format(reading.value(), reading.number.unit); }

std::string lower(std::string text) { return cif_lowercase(text); }

// The atom-site labels of a block and the row of each, as written: one
// table of open addressing instead of a node per label.
class SiteLabels {
public:
    explicit SiteLabels(std::size_t count) : table_(kept_table()) {
        std::size_t size = 16;
        while (size < 2 * count) size *= 2;
        // The thread's table serves again when large enough: its slots of
        // earlier blocks are of an older generation, free without clearing.
        if (table_.slots.size() < size || ++table_.generation == 0) {
            table_.slots.assign(std::max(size, table_.slots.size()), Slot());
            table_.generation = 1;
        }
        generation_ = table_.generation;
        mask_ = size - 1;
    }
    // The row kept for the label, the given row when it is new (then true).
    std::pair<std::size_t*, bool> insert(std::string_view label, std::size_t row) {
        Slot& slot = table_.slots[index_of(label)];
        if (slot.generation == generation_) return {&slot.row, false};
        slot = {label, row, generation_};
        return {&slot.row, true};
    }
    bool contains(std::string_view label) const {
        return table_.slots[index_of(label)].generation == generation_;
    }

private:
    struct Slot {
        std::string_view label;
        std::size_t row = 0;
        std::uint32_t generation = 0;  // in use for the block of this generation
    };
    struct Table {
        std::vector<Slot> slots;
        std::uint32_t generation = 0;
    };
    // The label's slot, or the free one where it would go (the first
    // mask_ + 1 slots serve the block).
    std::size_t index_of(std::string_view label) const {
        // A hash that ignores case serves as well: labels equal as written hash alike.
        std::size_t at = cif_name_hash(label) & mask_;
        while (table_.slots[at].generation == generation_ && table_.slots[at].label != label)
            at = (at + 1) & mask_;
        return at;
    }
    // The thread's table, kept from block to block (one check at a time).
    static Table& kept_table() {
        thread_local Table table;
        return table;
    }
    Table& table_;
    std::uint32_t generation_ = 0;
    std::size_t mask_ = 0;
};

// The cell's volume with one of its parameters moved, as
// cif_check_cell_volume() gives it, with the cosines of the angles kept:
// the propagation of uncertainties moves each parameter up and down.
class CellVolumes {
public:
    explicit CellVolumes(const double p[6]) {
        std::copy(p, p + 6, p_);
        for (int k = 0; k < 3; ++k) cos_[k] = std::cos(p[3 + k] * radians);
    }
    double with(int i, double value) const {
        double q[6], c[3];
        std::copy(p_, p_ + 6, q);
        std::copy(cos_, cos_ + 3, c);
        q[i] = value;
        if (i >= 3) c[i - 3] = std::cos(value * radians);
        double root = 1.0 - c[0] * c[0] - c[1] * c[1] - c[2] * c[2] + 2.0 * c[0] * c[1] * c[2];
        return root <= 0.0 ? 0.0 : q[0] * q[1] * q[2] * std::sqrt(root);
    }

private:
    static constexpr double radians = std::numbers::pi / 180.0;
    double p_[6];
    double cos_[3];
};

}  // namespace

ORMACifConsistencyChecker::ORMACifConsistencyChecker(THandle<Cif> cif) : cif_(cif) {}

ORMACifConsistencyChecker::~ORMACifConsistencyChecker() = default;

void ORMACifConsistencyChecker::check_cif() {
    if (cif_.is_null()) return;
    CifCheckFindings findings(*cif_);
    findings_ = &findings;
    CifPublicationCheck publication(*cif_, findings);
    publication_ = &publication;
    for (const THandle<CifDataBlock>& block : cif_->blocks().filled()) check_block(*block);
    check_publication();
    for (CifError& finding : findings.take()) cif_->errors()->add(std::move(finding));
    publication_ = nullptr;
    findings_ = nullptr;
}

void ORMACifConsistencyChecker::check_block(const CifDataBlock& block) {
    // A block without items has nothing to compare (files of millions of
    // empty blocks exist).
    if (block.item_count() == 0) return;
    // Most names the checks ask for are missing from a small block: its
    // filter turns them away without a lookup each.
    const CifBlockNameFilter names(block);
    const CifBlockNameFilter::Scope scope(names);
    // Every check of the block asks this one for its space group.
    CifBlockSymmetry symmetry(block);
    check_cell(block, symmetry);
    check_chemistry(block, symmetry);
    check_crystal_system(block, symmetry);
    check_space_group(block, symmetry);
    check_order(block);
    check_counts(block);
    check_labels(block);
    check_experiment(block, symmetry);
    check_refinement(block, symmetry);
    // What the document's publication check needs of the block, asked while its filter answers.
    publication_->note(block);
}

void ORMACifConsistencyChecker::add(CifError::ErrorID id, const CifDataBlock& block, const std::string& name,
                                    const std::string& detail) {
    findings_->add(id, block, name, detail);
}

void ORMACifConsistencyChecker::check_cell(const CifDataBlock& block, const CifBlockSymmetry& symmetry) {
    const Reading* cell = symmetry.cell();
    const Reading& volume = symmetry.volume();
    if (!volume.ok || !std::all_of(cell, cell + 6, [](const Reading& r) { return r.ok; })) return;
    double p[6];
    for (int i = 0; i < 6; ++i) p[i] = cell[i].value();
    double calculated = cif_check_cell_volume(p);
    if (calculated <= 0.0) {
        add(CifError::calculated_value_differs, block, cell[3].name, " (the cell angles form no cell)");
        return;
    }
    // The volume's uncertainty from those of the lengths and angles, by
    // central differences (an angle of 90 degrees changes the volume only
    // to second order): with the effective uncertainties for the value
    // check, with the stated ones for the check of the stated uncertainty.
    // Equal lengths of which one has no uncertainty are taken as fixed to
    // each other by symmetry and share the other's.
    double stated_sigma[6];
    for (int i = 0; i < 6; ++i) stated_sigma[i] = cell[i].stated_sigma();
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            if (stated_sigma[i] == 0.0 && stated_sigma[j] > 0.0 &&
                std::fabs(p[i] - p[j]) <= cell[j].number.unit)
                stated_sigma[i] = stated_sigma[j];
        }
    }
    double variance = 0.0, stated_variance = 0.0, stated_linear = 0.0;
    const CellVolumes volumes(p);
    for (int i = 0; i < 6; ++i) {
        auto derivative = [&](double step) {
            return (volumes.with(i, p[i] + step) - volumes.with(i, p[i] - step)) / (2.0 * step);
        };
        const double step = std::max(cell[i].sigma(), 1e-9);
        const double slope = derivative(step);
        variance += std::pow(slope * cell[i].sigma(), 2);
        if (stated_sigma[i] > 0.0) {
            // A value given with its uncertainty moves by the same step twice.
            double part =
                std::fabs((stated_sigma[i] == step ? slope : derivative(stated_sigma[i])) * stated_sigma[i]);
            stated_variance += part * part;
            stated_linear += part;
        }
    }
    const double ratio = volume.value() / calculated;
    if (ratio < 0.999 || ratio > 1.001) {
        findings_->add(CifError::cell_volume_differs, CifError::error, block, volume.name,
                       " (" + cif_check_written(block, volume) + "; a, b, c, alpha, beta, gamma give " +
                           format(calculated, std::min(volume.number.unit, 0.1)) + ", ratio " +
                           format(ratio, 0.0001) + " outside 0.999-1.001)");
        return;
    }
    if (!agree(volume.value(), volume.sigma(), calculated, std::sqrt(variance), 1e-6 * calculated))
        add(CifError::calculated_value_differs, block, volume.name,
            " (calculated " + format(calculated, volume.number.unit) + ")");
    // The stated uncertainty against the propagated one: between the
    // independent and the fully correlated sum, and never below a unit of
    // the volume's last digit.
    if (!volume.number.has_uncertainty || stated_variance <= 0.0) return;
    const double least = std::sqrt(stated_variance);
    const double most = std::max(stated_linear, volume.number.unit);
    const double stated = volume.stated_sigma();
    const double apart = std::max(stated / most, least / stated);
    CifError::ErrorType level;
    if (cif_check_level(apart, 2.0, 4.0, 8.0, level))
        findings_->add(CifError::cell_volume_differs, level, block, volume.name,
                       " (su " + format(stated, volume.number.unit) + "; the cell's uncertainties give " +
                           cif_check_significant(least, 2) +
                           (most > least * 1.05 ? " to " + cif_check_significant(most, 2) : "") + ", " +
                           format(apart, 0.1) + " times apart, more than " +
                           (level == CifError::error     ? "8"
                            : level == CifError::warning ? "4"
                                                         : "2") +
                           ")");
}

void ORMACifConsistencyChecker::check_chemistry(const CifDataBlock& block, const CifBlockSymmetry& symmetry) {
    CifChemistryCheck chemistry(block, symmetry, *findings_);
    chemistry.check_weight_and_density();
    chemistry.check_cell_contents();
    chemistry.check_moieties();
    chemistry.check_measured_density();
}

void ORMACifConsistencyChecker::check_space_group(const CifDataBlock& block,
                                                  const CifBlockSymmetry& symmetry) {
    CifSymmetryCheck check(block, symmetry, *findings_);
    check.check_symbol();
    check.check_hall_and_number();
}

void ORMACifConsistencyChecker::check_experiment(const CifDataBlock& block,
                                                 const CifBlockSymmetry& symmetry) {
    CifDiffractionCheck experiment(block, symmetry, *findings_);
    experiment.check_absorption();
    experiment.check_transmission();
    experiment.check_reflections();
}

void ORMACifConsistencyChecker::check_refinement(const CifDataBlock& block,
                                                 const CifBlockSymmetry& symmetry) {
    CifRefinementCheck refinement(block, symmetry, *findings_);
    refinement.check_data_per_parameter();
    refinement.check_shift();
    refinement.check_r_factors();
    refinement.check_residual_density();
    refinement.check_absolute_structure();
}

void ORMACifConsistencyChecker::check_publication() { publication_->report(); }

void ORMACifConsistencyChecker::check_crystal_system(const CifDataBlock& block,
                                                     const CifBlockSymmetry& symmetry) {
    auto [system_name, system_text] = cif_check_text(
        block, {"_symmetry_cell_setting", "_space_group_crystal_system", "_space_group.crystal_system"});
    std::string system = lower(system_text);
    if (system.empty()) return;

    // The space group's number as the symmetry items read it (0: none, or no
    // number, either of which has no crystal system).
    if (const int n = symmetry.number(); n != 0) {
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

    const Reading* cell = symmetry.cell();
    if (!std::all_of(cell, cell + 6, [](const Reading& r) { return r.ok; })) return;
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

void ORMACifConsistencyChecker::check_order(const CifDataBlock& block) {
    static constexpr CifCheckName names[] = {
        "_diffrn_reflns_theta_min",    "_diffrn_reflns_theta_max",        "_cell_measurement_theta_min",
        "_cell_measurement_theta_max", "_diffrn_reflns_limit_h_min",      "_diffrn_reflns_limit_h_max",
        "_diffrn_reflns_limit_k_min",  "_diffrn_reflns_limit_k_max",      "_diffrn_reflns_limit_l_min",
        "_diffrn_reflns_limit_l_max",  "_exptl_absorpt_correction_T_min", "_exptl_absorpt_correction_T_max",
        "_exptl_crystal_size_min",     "_exptl_crystal_size_mid",         "_exptl_crystal_size_max",
        "_diffrn_reflns_theta_full",
    };
    // Pairs (smaller, larger) of names that must be in order.
    static constexpr int pairs[][2] = {{0, 1},   {2, 3},   {4, 5},   {6, 7},   {8, 9},
                                       {10, 11}, {12, 13}, {13, 14}, {12, 14}, {15, 1}};
    // Each name read once, when a pair first asks for it.
    std::optional<Reading> readings[std::size(names)];
    const CifBlockNameFilter* filter = CifBlockNameFilter::of(block);
    auto reading = [&](int n) -> const Reading& {
        if (!readings[n]) readings[n] = cif_check_read(block, filter, {names[n]});
        return *readings[n];
    };
    std::unordered_set<std::string> reported;
    for (const auto& pair : pairs) {
        const Reading& low = reading(pair[0]);
        if (!low.ok) continue;
        const Reading& high = reading(pair[1]);
        if (!high.ok) continue;
        if (low.value() <= high.value() + 3.0 * std::hypot(low.stated_sigma(), high.stated_sigma())) continue;
        if (!reported.insert(high.name).second) continue;
        add(CifError::calculated_value_differs, block, high.name,
            " (smaller than " + low.name + " " + format(low) + ")");
    }
}

void ORMACifConsistencyChecker::check_counts(const CifDataBlock& block) {
    static constexpr CifCheckName pairs[][2] = {
        {"_reflns_number_gt", "_reflns_number_total"},
        {"_reflns_number_total", "_diffrn_reflns_number"},
        {"_refine_ls_number_restraints", "_refine_ls_number_reflns"},
    };
    const CifBlockNameFilter* filter = CifBlockNameFilter::of(block);
    for (const auto& pair : pairs) {
        Reading low = cif_check_read(block, filter, {pair[0]});
        Reading high = cif_check_read(block, filter, {pair[1]});
        if (low.ok && high.ok && low.value() > high.value())
            add(CifError::count_mismatch, block, low.name,
                " (larger than " + high.name + " " + format(high) + ")");
    }
    // A count given with its loop must count the loop's rows.
    static constexpr CifCheckName counted[][2] = {
        {"_diffrn_reflns_number", "_diffrn_refln_index_h"},
        {"_diffrn_standards_number", "_diffrn_standard_refln_index_h"},
        {"_cell_measurement_reflns_used", "_cell_measurement_refln_index_h"},
    };
    for (const auto& pair : counted) {
        Reading count = cif_check_read(block, filter, {pair[0]});
        const CifDataItem* rows = cif_check_item(block, filter, pair[1]);
        if (!count.ok || rows == nullptr || !rows->is_looped()) continue;
        if (std::fabs(count.value() - static_cast<double>(rows->size())) > 0.5)
            add(CifError::count_mismatch, block, count.name,
                " (the loop of " + rows->name() + " has " + std::to_string(rows->size()) + " rows)");
    }
}

void ORMACifConsistencyChecker::check_labels(const CifDataBlock& block) {
    THandle<CifDataItem> sites = cif_check_find(block, "_atom_site_label");
    if (sites.is_null()) sites = cif_check_find(block, "_atom_site.label");
    if (sites.is_null()) return;
    // Keys and children the dictionary names are checked while reading.
    THandle<CifDictionary> dictionary = cif_->dictionary();
    bool checked_by_dictionary = !dictionary.is_null() && dictionary->has_definitions();
    auto linked = [&](const std::string& name) {
        if (!checked_by_dictionary) return false;
        const CifItemDefinition* definition = dictionary->definition(name);
        return definition != nullptr && (!definition->list_link_parent.empty() || definition->list_mandatory);
    };
    // Labels are compared as written, as views of the block's values.
    const std::size_t sound_sites = findings_->sound_rows(block, *sites);
    SiteLabels rows(sound_sites);
    bool keyed = linked(sites->name());
    for (std::size_t n = 0; n < sound_sites; ++n) {
        const std::string_view label = sites->value_view(n);
        if (is_unknown(label)) continue;
        auto [found, inserted] = rows.insert(label, n);
        // Each repeated label once, on the line of its first repetition.
        if (!inserted && !keyed && *found != static_cast<std::size_t>(-1)) {
            findings_->add(CifError(CifError::duplicate_key_value,
                                    findings_->value_line(block, sites->name(), n), sites->name(),
                                    std::string(label)));
            *found = static_cast<std::size_t>(-1);
        }
    }
    static constexpr CifCheckName children[] = {
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
    const CifBlockNameFilter* filter = CifBlockNameFilter::of(block);
    for (const CifCheckName& child : children) {
        const CifDataItem* item = cif_check_item(block, filter, child);
        if (item == nullptr || linked(std::string(child.text()))) continue;
        std::unordered_set<std::string_view> reported;
        const std::size_t sound = findings_->sound_rows(block, *item);
        for (std::size_t n = 0; n < sound; ++n) {
            const std::string_view label = item->value_view(n);
            if (is_unknown(label) || rows.contains(label) || !reported.insert(label).second) continue;
            findings_->add(CifError(CifError::parent_value_missing,
                                    findings_->value_line(block, item->name(), n), item->name(),
                                    std::string(label)));
        }
    }
}
