// SPDX-License-Identifier: MIT
// Cross-checks of a refinement: data per parameter, shifts, R factors, residual density, Flack.
#pragma once

class CifBlockSymmetry;
class CifCheckFindings;
class CifBlockNameFilter;
class CifDataBlock;

// The refinement of one block: reflections per parameter (378), the
// largest shift over its uncertainty (379), wR2 and R1 (380), the residual
// density against the heaviest atom (381) and the Flack parameter (382).
class CifRefinementCheck {
public:
    CifRefinementCheck(const CifDataBlock& block, const CifBlockSymmetry& symmetry,
                       CifCheckFindings& findings);

    void check_data_per_parameter();
    void check_shift();
    void check_r_factors();
    void check_residual_density();
    void check_absolute_structure();

private:
    const CifDataBlock& block_;
    const CifBlockNameFilter* names_;  // the block's, found once (CifBlockNameFilter::of())
    const CifBlockSymmetry& symmetry_;
    CifCheckFindings& findings_;
};
