// SPDX-License-Identifier: MIT
// What the atom sites put into the cell: occupancy times multiplicity, summed per element.
#pragma once

#include <map>
#include <string>
#include <string_view>

class CifBlockSymmetry;
class CifDataBlock;

// The element of an atom type or site label ("Cu2+", "O1-", "Ca1", "Ow3"
// give Cu, O, Ca, O), or an empty string when the text starts with no
// element symbol.
std::string cif_element_of(std::string_view text);
// The atomic number of an element symbol, 0 for none.
int cif_atomic_number(const std::string& element);
// The atomic weight of an element symbol, 0 for none.
double cif_atomic_weight(const std::string& element);

// The cell's contents from the atom sites: for every element the sum over
// its sites of occupancy times site multiplicity. The multiplicity is the
// number of copies the space group makes of the site, or, without a space
// group, its _atom_site_symmetry_multiplicity (which some programs fill
// with the order of the site's symmetry instead). When no site is a
// hydrogen atom, the sites' _atom_site_attached_hydrogens give them. Sites
// marked as dummies are left out.
class CifCellContents {
public:
    CifCellContents(const CifDataBlock& block, const CifBlockSymmetry& symmetry);

    // Whether every site could be counted (an element, coordinates or a
    // multiplicity, an occupancy that is a number).
    bool valid() const { return valid_; }
    // Why not, for a message; empty when valid.
    const std::string& problem() const { return problem_; }
    const std::map<std::string, double>& counts() const { return counts_; }
    double count(const std::string& element) const;
    // The molar mass of the cell's contents in g/mol.
    double weight() const;

private:
    std::map<std::string, double> counts_;
    bool valid_ = false;
    std::string problem_;
};
