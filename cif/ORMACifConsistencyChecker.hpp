// SPDX-License-Identifier: MIT
// Cross-checks of a document's values: cell, density, formula, symmetry, counts, labels.
#pragma once

#include <string>

#include "cif/Cif.hpp"
#include "cif/CifError.hpp"
#include "support/THandle.hpp"

class CifBlockSymmetry;
class CifCheckFindings;
class CifPublicationCheck;
class CifDataBlock;

// Cross-checks of the values of a document, block by block, each tolerant
// by the values' standard uncertainties (three of them, combined; a value
// without one is taken to half a unit of its last digit):
// - the cell volume against the cell lengths and angles;
// - the calculated density against Z, the formula weight and the volume;
// - the formula weight and F(000) against _chemical_formula_sum and Z (with
//   the atom types' anomalous dispersion where given);
// - the crystal system against the cell and against the space-group number;
// - the space-group symbol against the number and against the operators;
// - minimum and maximum pairs in order (theta, index limits, transmission,
//   crystal sizes) and reflection counts in order, and the reflection count
//   against the rows of the reflection loop;
// - atom-site labels unique, and every label that refers to an atom site
//   (anisotropic parameters, bonds, angles, torsions, hydrogen bonds,
//   contacts) present among them, in rows no syntax problem damaged (left
//   to the reader where the dictionary names the key or the link).
// A finding about a value is a remark, 303 for a value that disagrees with
// others and 304 for a count, with the data name as its text and the line
// of the item; labels give warnings 359 and 360 on the line of the value;
// the space-group symbol gives remarks 361 (not recognised) and 362 (the
// operators form another group).
class ORMACifConsistencyChecker {
public:
    explicit ORMACifConsistencyChecker(THandle<Cif> cif);
    ~ORMACifConsistencyChecker();

    // Adds the findings of every block to the document's error container,
    // in line order after the messages already there.
    void check_cif();

private:
    void check_block(const CifDataBlock& block);
    void check_cell(const CifDataBlock& block, const CifBlockSymmetry& symmetry);
    void check_chemistry(const CifDataBlock& block, const CifBlockSymmetry& symmetry);
    void check_crystal_system(const CifDataBlock& block, const CifBlockSymmetry& symmetry);
    void check_space_group(const CifDataBlock& block, const CifBlockSymmetry& symmetry);
    void check_order(const CifDataBlock& block);
    void check_counts(const CifDataBlock& block);
    void check_labels(const CifDataBlock& block);
    void check_experiment(const CifDataBlock& block, const CifBlockSymmetry& symmetry);
    void check_refinement(const CifDataBlock& block, const CifBlockSymmetry& symmetry);
    void check_publication();
    void add(CifError::ErrorID id, const CifDataBlock& block, const std::string& name,
             const std::string& detail);

    THandle<Cif> cif_;
    CifCheckFindings* findings_ = nullptr;        // of the run of check_cif()
    CifPublicationCheck* publication_ = nullptr;  // the same; notes each block
};
