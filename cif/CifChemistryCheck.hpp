// SPDX-License-Identifier: MIT
// Cross-checks of a block's chemistry: formula, weight, F(000), density, cell contents, moieties.
#pragma once

#include "cif/CifCheckValues.hpp"
#include "cif/CifChemicalFormula.hpp"

class CifBlockSymmetry;
class CifCheckFindings;
class CifDataBlock;

// The chemistry of one block against itself:
// - the formula weight against the sum formula (303 within 1 %, 372 beyond
//   with its level), or against the atom sites without a sum formula;
// - F(000) against Z and the formula (303);
// - the calculated density against Z, the weight and the volume (303 within
//   1 %, 373 beyond) and the measured density against it (373) unless the
//   atom sites disagree with the formula;
// - Z times the sum formula against the atom sites and the atom types'
//   numbers in the cell (371);
// - the moiety formula against the sum formula (374).
class CifChemistryCheck {
public:
    CifChemistryCheck(const CifDataBlock& block, const CifBlockSymmetry& symmetry,
                      CifCheckFindings& findings);

    void check_weight_and_density();
    void check_cell_contents();
    void check_moieties();
    // After check_cell_contents(): left out when the atom sites disagree
    // with the formula, which then makes the calculated density doubtful.
    void check_measured_density();

private:
    // The density Z, the weight (or the formula's) and the volume give;
    // molar 0 when it cannot be.
    struct CalculatedDensity {
        double molar = 0.0;
        double value = 0.0;
    };
    CalculatedDensity calculated_density() const;
    // How it was worked out, for the messages.
    std::string density_basis(const CalculatedDensity& density) const;

    const CifDataBlock& block_;
    const CifBlockSymmetry& symmetry_;
    CifCheckFindings& findings_;
    CifReadingName formula_name_;
    std::string formula_text_;
    CifChemicalFormula formula_;
    CifReading z_, weight_, volume_;
    bool contents_disagree_ = false;
};
