// SPDX-License-Identifier: MIT
// Cross-checks of a block's diffraction experiment: absorption, transmission, reflections.
#pragma once

#include "cif/CifCheckValues.hpp"

class CifBlockSymmetry;
class CifCheckFindings;
class CifBlockNameFilter;
class CifDataBlock;

// The experiment of one block against its crystal:
// - mu against the cell's contents and the radiation (375);
// - the transmission range against the correction, mu and the crystal's
//   sizes (376);
// - the reflection counts and index limits against the cell, the Laue
//   class and theta max (377).
class CifDiffractionCheck {
public:
    CifDiffractionCheck(const CifDataBlock& block, const CifBlockSymmetry& symmetry,
                        CifCheckFindings& findings);

    void check_absorption();
    void check_transmission();
    void check_reflections();

private:
    // The wavelength in Angstrom, 0 when not given.
    double wavelength() const;

    const CifDataBlock& block_;
    const CifBlockNameFilter* names_;  // the block's, found once (CifBlockNameFilter::of())
    const CifBlockSymmetry& symmetry_;
    CifCheckFindings& findings_;
    CifReading mu_;
};
