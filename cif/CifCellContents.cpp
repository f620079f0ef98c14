// SPDX-License-Identifier: MIT
// What the atom sites put into the cell: occupancy times multiplicity, summed per element.
#include "cif/CifCellContents.hpp"

#include <charconv>
#include <cmath>
#include <gemmi/elem.hpp>

#include "cif/CifBlockSymmetry.hpp"
#include "cif/CifCheckValues.hpp"
#include "cif/CifDataBlock.hpp"

namespace {

gemmi::El element_exact(const std::string& symbol) {
    gemmi::El el = gemmi::find_element(symbol.c_str());
    if (el == gemmi::El::X) return el;
    // find_element is case-blind; symbols here are case-exact.
    return gemmi::element_name(el) == symbol ? el : gemmi::El::X;
}

// Column n of a loop item, or "" when the block lacks the item.
std::string_view column(const THandle<CifDataItem>& item, std::size_t n) {
    return item.is_null() || n >= item->size() ? std::string_view() : item->value_view(n);
}

// The value of a number, its uncertainty left out; false for a text that is
// no number. Quicker than a full CifNumber for the many coordinates.
bool value_of(std::string_view text, double& value) {
    if (!text.empty() && text.front() == '+') text.remove_prefix(1);
    std::size_t bracket = text.find('(');
    if (bracket != std::string_view::npos) text = text.substr(0, bracket);
    if (text.empty()) return false;
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size();
}

}  // namespace

std::string cif_element_of(std::string_view text) {
    if (text.empty() || text[0] < 'A' || text[0] > 'Z') return std::string();
    if (text.size() > 1 && text[1] >= 'a' && text[1] <= 'z') {
        std::string two(text.substr(0, 2));
        if (element_exact(two) != gemmi::El::X) return two;
    }
    std::string one(text.substr(0, 1));
    return element_exact(one) != gemmi::El::X ? one : std::string();
}

int cif_atomic_number(const std::string& element) {
    gemmi::El el = element_exact(element);
    return el == gemmi::El::X ? 0 : gemmi::Element(el).atomic_number();
}

double cif_atomic_weight(const std::string& element) {
    gemmi::El el = element_exact(element);
    return el == gemmi::El::X ? 0.0 : gemmi::molecular_weight(el);
}

CifCellContents::CifCellContents(const CifDataBlock& block, const CifBlockSymmetry& symmetry) {
    THandle<CifDataItem> labels = cif_check_find(block, "_atom_site_label");
    THandle<CifDataItem> types = cif_check_find(block, "_atom_site_type_symbol");
    if (labels.is_null() && types.is_null()) {
        problem_ = "no atom sites";
        return;
    }
    const std::size_t rows = labels.is_null() ? types->size() : labels->size();
    THandle<CifDataItem> occupancy = cif_check_find(block, "_atom_site_occupancy");
    THandle<CifDataItem> multiplicity = cif_check_find(block, "_atom_site_symmetry_multiplicity");
    THandle<CifDataItem> flags = cif_check_find(block, "_atom_site_calc_flag");
    THandle<CifDataItem> attached = cif_check_find(block, "_atom_site_attached_hydrogens");
    THandle<CifDataItem> xyz[3] = {cif_check_find(block, "_atom_site_fract_x"),
                                   cif_check_find(block, "_atom_site_fract_y"),
                                   cif_check_find(block, "_atom_site_fract_z")};
    const CifReading* cell = symmetry.cell();
    const double lengths[3] = {cell[0].ok ? cell[0].value() : 10.0, cell[1].ok ? cell[1].value() : 10.0,
                               cell[2].ok ? cell[2].value() : 10.0};
    // Hydrogen atoms counted with the atom that carries them. They should be
    // those without a site of their own, but files that give hydrogen sites
    // often count those too: they are added only when no site is hydrogen.
    double carried_hydrogens = 0.0;
    for (std::size_t n = 0; n < rows; ++n) {
        if (column(flags, n) == "dum") continue;
        std::string_view label = column(labels, n);
        std::string_view type = column(types, n);
        std::string element = cif_element_of(cif_check_unknown(type) ? label : type);
        if (element.empty()) {
            problem_ = "no element for site " + std::string(label.empty() ? type : label);
            return;
        }
        double weight = 1.0;
        std::string_view occupied = column(occupancy, n);
        if (!cif_check_unknown(occupied)) {
            if (!value_of(occupied, weight)) {
                problem_ = "occupancy of " + std::string(label) + " not a number";
                return;
            }
        }
        // The space group's multiplicity first: some programs write the
        // order of the site's symmetry under _atom_site_symmetry_multiplicity.
        double copies = 0.0;
        double position[3];
        bool placed = true;
        for (int i = 0; i < 3 && placed; ++i) placed = value_of(column(xyz[i], n), position[i]);
        if (placed) copies = symmetry.multiplicity(position, lengths);
        std::string_view stated = column(multiplicity, n);
        if (copies <= 0.0 && !cif_check_unknown(stated) && !value_of(stated, copies)) copies = 0.0;
        if (copies <= 0.0) {
            problem_ = placed ? "no space group" : "no coordinates for site " + std::string(label);
            return;
        }
        counts_[element] += weight * copies;
        double hydrogens = 0.0;
        std::string_view carried = column(attached, n);
        if (!cif_check_unknown(carried) && value_of(carried, hydrogens) && hydrogens > 0.0)
            carried_hydrogens += weight * copies * hydrogens;
    }
    if (carried_hydrogens > 0.0 && counts_.count("H") == 0) counts_["H"] = carried_hydrogens;
    valid_ = !counts_.empty();
    if (!valid_) problem_ = "no atom sites";
}

double CifCellContents::count(const std::string& element) const {
    auto found = counts_.find(element);
    return found == counts_.end() ? 0.0 : found->second;
}

double CifCellContents::weight() const {
    double sum = 0.0;
    for (const auto& [element, count] : counts_) sum += count * cif_atomic_weight(element);
    return sum;
}
