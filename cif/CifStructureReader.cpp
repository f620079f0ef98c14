// SPDX-License-Identifier: MIT
// Reads a block's cell, atom sites, symmetry, displacements and listed bonds.
#include "cif/CifStructureReader.hpp"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <map>
#include <optional>

#include "cif/CifDisplacement.hpp"
#include "cif/CifNames.hpp"
#include "cif/CifNumber.hpp"
#include "cif/Spacegroup.hpp"
#include "cif/SpacegroupOperators.hpp"

namespace {

constexpr double eight_pi_squared = 78.95683520871486;

std::optional<double> number_at(const THandle<CifDataItem>& item, std::size_t row) {
    if (item.is_null() || row >= item->size()) return std::nullopt;
    const CifNumber number = CifNumber::parse(item->value_view(row));
    if (!number.ok() || !std::isfinite(number.value)) return std::nullopt;
    return number.value;
}

// A value as text, empty for the CIF unknown and inapplicable values.
std::string text_at(const THandle<CifDataItem>& item, std::size_t row) {
    if (item.is_null() || row >= item->size()) return std::string();
    std::string_view text = item->value_view(row);
    if (!item->is_quoted(row) && (text == "?" || text == ".")) return std::string();
    return std::string(text);
}

// Every operator once, translations wrapped into the cell, x,y,z first.
std::vector<gemmi::Op> tidy(std::vector<gemmi::Op> ops) {
    std::vector<gemmi::Op> result{gemmi::Op::identity()};
    for (gemmi::Op& op : ops) {
        op.wrap();
        if (std::find(result.begin(), result.end(), op) == result.end()) result.push_back(op);
    }
    return result;
}

std::string site_name(const CifStructure& structure, int site) {
    return structure.sites()[static_cast<std::size_t>(site)].label;
}

}  // namespace

gemmi::Element cif_element_of(const std::string& text, bool strict) {
    std::size_t start = 0;
    while (start < text.size() && !std::isalpha(static_cast<unsigned char>(text[start]))) {
        if (strict) return gemmi::El::X;
        ++start;
    }
    if (start >= text.size()) return gemmi::El::X;
    const char first = text[start];
    const bool has_second =
        start + 1 < text.size() && std::isalpha(static_cast<unsigned char>(text[start + 1]));
    const std::string one(1, first);
    if (!has_second) return gemmi::Element(one);
    const std::string two{first, text[start + 1]};
    // Type symbols name an element first; in a label a capital second letter
    // more often starts a name ("CA1" is a carbon) than it ends a symbol.
    if (strict || std::islower(static_cast<unsigned char>(text[start + 1]))) {
        gemmi::Element element(two);
        if (element != gemmi::El::X) return element;
        return gemmi::Element(one);
    }
    gemmi::Element element(one);
    if (element != gemmi::El::X) return element;
    return gemmi::Element(two);
}

THandle<CifDataItem> CifStructureReader::find(std::initializer_list<const char*> names) const {
    for (const char* name : names) {
        THandle<CifDataItem> item = block_.find(name);
        if (!item.is_null() && item->has_value()) return item;
    }
    return THandle<CifDataItem>();
}

int CifStructureReader::line_of(const CifDataItem& item, std::size_t row) const {
    if (row < item.size() && lines_ != nullptr) {
        const CifValueRef& ref = item.values()[row];
        if (!ref.added()) return lines_->line_at(ref.offset);
    }
    return item.line();
}

void CifStructureReader::read(CifStructure& structure) {
    structure.block_name_ = block_.name();
    structure.small_.name = block_.name();
    if (!read_cell(structure)) return;
    if (!read_sites(structure)) return;
    read_anisotropic(structure);
    read_symmetry(structure);
    read_listed_bonds(structure);
}

bool CifStructureReader::read_cell(CifStructure& structure) {
    const std::optional<double> a = number_at(find({"_cell_length_a", "_cell.length_a"}), 0);
    const std::optional<double> b = number_at(find({"_cell_length_b", "_cell.length_b"}), 0);
    const std::optional<double> c = number_at(find({"_cell_length_c", "_cell.length_c"}), 0);
    if (!a || !b || !c || *a <= 0 || *b <= 0 || *c <= 0) {
        structure.reason_ = "no cell parameters";
        return false;
    }
    double angles[3] = {90, 90, 90};
    const char* const names[3][2] = {{"_cell_angle_alpha", "_cell.angle_alpha"},
                                     {"_cell_angle_beta", "_cell.angle_beta"},
                                     {"_cell_angle_gamma", "_cell.angle_gamma"}};
    bool assumed = false;
    for (int i = 0; i < 3; ++i) {
        const std::optional<double> angle = number_at(find({names[i][0], names[i][1]}), 0);
        if (angle) {
            angles[i] = *angle;
        } else {
            assumed = true;
        }
    }
    if (assumed) structure.notes_.push_back("cell angles not given: 90 degrees assumed");
    structure.small_.cell.set(*a, *b, *c, angles[0], angles[1], angles[2]);
    const double volume = structure.small_.cell.volume;
    if (!std::isfinite(volume) || volume <= 0.0) {
        structure.reason_ = "the cell parameters describe no cell";
        return false;
    }
    return true;
}

bool CifStructureReader::read_sites(CifStructure& structure) {
    const THandle<CifDataItem> x = find({"_atom_site_fract_x", "_atom_site.fract_x"});
    const THandle<CifDataItem> y = find({"_atom_site_fract_y", "_atom_site.fract_y"});
    const THandle<CifDataItem> z = find({"_atom_site_fract_z", "_atom_site.fract_z"});
    if (x.is_null() || y.is_null() || z.is_null()) {
        structure.reason_ = "no atom coordinates";
        return false;
    }
    const THandle<CifDataItem> label = find({"_atom_site_label", "_atom_site.label"});
    const THandle<CifDataItem> type = find({"_atom_site_type_symbol", "_atom_site.type_symbol"});
    const THandle<CifDataItem> occupancy = find({"_atom_site_occupancy", "_atom_site.occupancy"});
    const THandle<CifDataItem> u_iso = find({"_atom_site_U_iso_or_equiv", "_atom_site.U_iso_or_equiv"});
    const THandle<CifDataItem> b_iso = find({"_atom_site_B_iso_or_equiv", "_atom_site.B_iso_or_equiv"});
    const THandle<CifDataItem> assembly =
        find({"_atom_site_disorder_assembly", "_atom_site.disorder_assembly"});
    const THandle<CifDataItem> group = find({"_atom_site_disorder_group", "_atom_site.disorder_group"});

    const std::size_t rows = std::min({x->size(), y->size(), z->size()});
    int skipped = 0;
    for (std::size_t row = 0; row < rows; ++row) {
        const std::optional<double> fx = number_at(x, row), fy = number_at(y, row), fz = number_at(z, row);
        std::string name = text_at(label, row);
        if (!fx || !fy || !fz) {
            ++skipped;
            continue;
        }
        gemmi::SmallStructure::Site site;
        site.label = name.empty() ? "#" + std::to_string(row + 1) : name;
        site.type_symbol = text_at(type, row);
        site.fract = gemmi::Fractional(*fx, *fy, *fz);
        site.occ = number_at(occupancy, row).value_or(1.0);
        site.element = cif_element_of(site.type_symbol, true);
        if (site.element == gemmi::El::X) site.element = cif_element_of(site.label, false);
        CifSiteSource source;
        source.line = line_of(label.is_null() ? *x : *label, row);
        source.disorder_assembly = text_at(assembly, row);
        source.disorder_group = text_at(group, row);
        if (std::optional<double> u = number_at(u_iso, row)) {
            site.u_iso = *u;
            source.has_u_iso = true;
        } else if (std::optional<double> bv = number_at(b_iso, row)) {
            site.u_iso = *bv / eight_pi_squared;
            source.has_u_iso = true;
        }
        if (!source.disorder_group.empty()) {
            char* end = nullptr;
            const long number = std::strtol(source.disorder_group.c_str(), &end, 10);
            site.disorder_group = end != nullptr && *end == '\0' ? static_cast<int>(number) : 0;
        }
        if (site.element == gemmi::El::X) structure.notes_.push_back("no element known for " + site.label);
        structure.small_.sites.push_back(site);
        structure.sources_.push_back(source);
        const double u = source.has_u_iso ? site.u_iso : 0.0;
        structure.u_cartesian_.push_back(gemmi::SMat33<double>{u, u, u, 0, 0, 0});
    }
    if (skipped > 0)
        structure.notes_.push_back(std::to_string(skipped) +
                                   " atom site(s) without readable coordinates left out");
    if (structure.small_.sites.empty()) {
        structure.reason_ = "no atom coordinates";
        return false;
    }
    return true;
}

void CifStructureReader::read_anisotropic(CifStructure& structure) {
    const char* const u_names[6][2] = {{"_atom_site_aniso_U_11", "_atom_site_aniso.U_11"},
                                       {"_atom_site_aniso_U_22", "_atom_site_aniso.U_22"},
                                       {"_atom_site_aniso_U_33", "_atom_site_aniso.U_33"},
                                       {"_atom_site_aniso_U_12", "_atom_site_aniso.U_12"},
                                       {"_atom_site_aniso_U_13", "_atom_site_aniso.U_13"},
                                       {"_atom_site_aniso_U_23", "_atom_site_aniso.U_23"}};
    const char* const b_names[6][2] = {{"_atom_site_aniso_B_11", "_atom_site_aniso.B_11"},
                                       {"_atom_site_aniso_B_22", "_atom_site_aniso.B_22"},
                                       {"_atom_site_aniso_B_33", "_atom_site_aniso.B_33"},
                                       {"_atom_site_aniso_B_12", "_atom_site_aniso.B_12"},
                                       {"_atom_site_aniso_B_13", "_atom_site_aniso.B_13"},
                                       {"_atom_site_aniso_B_23", "_atom_site_aniso.B_23"}};
    THandle<CifDataItem> columns[6];
    double factor = 1.0;
    for (int i = 0; i < 6; ++i) columns[i] = find({u_names[i][0], u_names[i][1]});
    if (columns[0].is_null()) {
        for (int i = 0; i < 6; ++i) columns[i] = find({b_names[i][0], b_names[i][1]});
        factor = 1.0 / eight_pi_squared;
    }
    if (columns[0].is_null()) return;
    const THandle<CifDataItem> labels = find({"_atom_site_aniso_label", "_atom_site_aniso.label"});
    std::map<std::string, int> site_of;
    for (std::size_t i = 0; i < structure.sites().size(); ++i)
        site_of.emplace(structure.sites()[i].label, int(i));
    const std::size_t rows = columns[0]->size();
    for (std::size_t row = 0; row < rows; ++row) {
        int site = -1;
        if (!labels.is_null()) {
            auto found = site_of.find(text_at(labels, row));
            if (found != site_of.end()) site = found->second;
        } else if (row < structure.sites().size()) {
            site = static_cast<int>(row);  // the columns stand in the atom-site loop itself
        }
        if (site < 0) continue;
        double u[6];
        bool complete = true;
        for (int i = 0; i < 6; ++i) {
            const std::optional<double> value = number_at(columns[i], row);
            complete = complete && value.has_value();
            u[i] = value.value_or(0.0) * factor;
        }
        if (!complete) continue;
        gemmi::SmallStructure::Site& record = structure.small_.sites[static_cast<std::size_t>(site)];
        record.aniso = gemmi::SMat33<double>{u[0], u[1], u[2], u[3], u[4], u[5]};
        structure.sources_[static_cast<std::size_t>(site)].has_aniso = true;
        structure.u_cartesian_[static_cast<std::size_t>(site)] =
            cif_u_cartesian(structure.small_.cell, record.aniso);
    }
}

bool CifStructureReader::symmetry_from_operators(CifStructure& structure) {
    const THandle<CifDataItem> item =
        find({"_space_group_symop_operation_xyz", "_space_group_symop.operation_xyz",
              "_symmetry_equiv_pos_as_xyz", "_symmetry_equiv.pos_as_xyz"});
    if (item.is_null()) return false;
    std::vector<gemmi::Op> ops;
    for (std::size_t row = 0; row < item->size(); ++row) {
        const std::string text = text_at(item, row);
        if (text.empty()) continue;
        try {
            ops.push_back(SpacegroupOperators::read_triplet(text));  // guards against overflow
        } catch (const std::exception&) {
            structure.notes_.push_back("symmetry operator '" + text + "' not readable");
            return false;
        }
    }
    if (ops.empty()) return false;
    structure.operators_ = tidy(ops);
    structure.symmetry_source_ = "operators";
    return true;
}

void CifStructureReader::read_symmetry(CifStructure& structure) {
    const gemmi::UnitCell& cell = structure.small_.cell;
    const std::string hall = text_at(
        find({"_space_group_name_Hall", "_symmetry_space_group_name_Hall", "_space_group.name_Hall"}), 0);
    const std::string hm = text_at(
        find({"_space_group_name_H-M_alt", "_symmetry_space_group_name_H-M", "_space_group.name_H-M_alt"}),
        0);
    const std::optional<double> number = number_at(
        find({"_space_group_IT_number", "_symmetry_Int_Tables_number", "_space_group.IT_number"}), 0);
    const gemmi::SpaceGroup* group = nullptr;
    if (!hm.empty()) {
        group = gemmi::find_spacegroup_by_name(hm, cell.alpha, cell.gamma);
        if (group == nullptr) {
            const std::string symbol = Spacegroup::derive_orma_symbol(hm);
            if (symbol != "Unknown") group = gemmi::find_spacegroup_by_name(symbol, cell.alpha, cell.gamma);
        }
    }
    structure.small_.spacegroup_hm = group != nullptr ? group->xhm() : hm;
    if (symmetry_from_operators(structure)) return;
    if (!hall.empty()) {
        try {
            structure.operators_ = tidy(SpacegroupOperators::read_hall(hall).all_ops_sorted());
            structure.symmetry_source_ = "Hall symbol " + hall;
            return;
        } catch (const std::exception&) {
            structure.notes_.push_back("Hall symbol '" + hall + "' not readable");
        }
    }
    if (group == nullptr && number && *number >= 1 && *number <= 230 && std::floor(*number) == *number)
        group = &gemmi::get_spacegroup_reference_setting(static_cast<int>(*number));
    if (group != nullptr) {
        structure.operators_ = tidy(group->operations().all_ops_sorted());
        structure.symmetry_source_ = "space group " + group->xhm();
        if (structure.small_.spacegroup_hm.empty()) structure.small_.spacegroup_hm = group->xhm();
        return;
    }
    structure.operators_ = {gemmi::Op::identity()};
    structure.symmetry_source_ = "none";
    structure.notes_.push_back("no symmetry given: P 1 assumed");
}

void CifStructureReader::read_listed_bonds(CifStructure& structure) {
    const THandle<CifDataItem> first = find({"_geom_bond_atom_site_label_1", "_geom_bond.atom_site_label_1"});
    const THandle<CifDataItem> second =
        find({"_geom_bond_atom_site_label_2", "_geom_bond.atom_site_label_2"});
    if (first.is_null() || second.is_null()) return;
    const THandle<CifDataItem> distance = find({"_geom_bond_distance", "_geom_bond.distance"});
    std::map<std::string, int> site_of;
    for (std::size_t i = 0; i < structure.sites().size(); ++i)
        site_of.emplace(cif_lowercase(site_name(structure, int(i))), int(i));
    const std::size_t rows = std::min(first->size(), second->size());
    for (std::size_t row = 0; row < rows; ++row) {
        auto a = site_of.find(cif_lowercase(text_at(first, row)));
        auto b = site_of.find(cif_lowercase(text_at(second, row)));
        if (a == site_of.end() || b == site_of.end()) continue;
        structure.listed_bonds_.push_back({a->second, b->second, number_at(distance, row).value_or(0.0)});
    }
}
