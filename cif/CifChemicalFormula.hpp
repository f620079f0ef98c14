// SPDX-License-Identifier: MIT
// A chemical formula as _chemical_formula_sum writes it, with weights and electron counts.
#pragma once

#include <string>
#include <utility>
#include <vector>

// A chemical formula as _chemical_formula_sum writes it: element symbols,
// each followed by an optional count ("C12 H10 N2 O", "C6 H12 Cl2 Ni0.5"),
// with the weights and electron counts of gemmi's element table.
class CifChemicalFormula {
public:
    // Reads the formula; valid() is false when a part is not an element
    // with an optional count.
    explicit CifChemicalFormula(const std::string& text);

    bool valid() const { return valid_; }
    // The elements with their counts, in the formula's order.
    const std::vector<std::pair<std::string, double>>& parts() const { return parts_; }
    // Molar mass in g/mol.
    double weight() const;
    // The number of electrons of one formula unit.
    double electrons() const;

private:
    std::vector<std::pair<std::string, double>> parts_;
    bool valid_ = false;
};
