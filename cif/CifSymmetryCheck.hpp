// SPDX-License-Identifier: MIT
// Cross-checks of a block's space-group items: H-M symbol, Hall symbol, number and operators.
#pragma once

class CifBlockSymmetry;
class CifCheckFindings;
class CifDataBlock;

// The space-group items of one block against each other: the H-M symbol
// recognised (361), against the number (303) and the operators (362); the
// Hall symbol readable and against the operators, the H-M symbol and the
// number, and the operators against the number (383).
class CifSymmetryCheck {
public:
    CifSymmetryCheck(const CifDataBlock& block, const CifBlockSymmetry& symmetry, CifCheckFindings& findings);

    void check_symbol();
    void check_hall_and_number();

private:
    const CifDataBlock& block_;
    const CifBlockSymmetry& symmetry_;
    CifCheckFindings& findings_;
};
