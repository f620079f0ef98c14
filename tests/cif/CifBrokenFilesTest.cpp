// SPDX-License-Identifier: MIT
// The team's broken files (tests/data/broken) checked as tessary-check does against the core dictionary.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "cif/CifDocumentCheck.hpp"
#include "tests/cif/CifTestSupport.hpp"
#include "tests/cif/DictionaryTestSupport.hpp"

namespace {

// (code, line, kind) of a message: 0 remark, 1 warning, 2 error.
using Finding = std::tuple<int, int, int>;
using Findings = std::vector<Finding>;

Findings check_file(const std::string& name) {
    std::ifstream stream(std::string(TESSARY_SOURCE_DIR) + "/tests/data/broken/" + name, std::ios::binary);
    EXPECT_TRUE(stream) << name;
    const THandle<Cif> cif = CifDocumentCheck(cif_test::core_dictionary(), CifCheckSettings()).run(stream);
    Findings findings;
    for (const CifError& error : *cif->errors())
        findings.emplace_back(error.id(), error.line(), error.type());
    return findings;
}

struct BrokenFile {
    const char* name;
    Findings expected;  // every message, in the order the check gives them
};

// Each file is small enough to read; the lines below are those of the
// problem each message is about.
const BrokenFile broken_files[] = {
    {"03_enumerations.cif", {{326, 2, 2}, {326, 3, 1}, {356, 11, 0}, {326, 15, 2}, {326, 16, 1}}},
    {"07_parents.cif", {{357, 4, 0}, {360, 14, 1}, {360, 20, 1}}},
    {"09_duplicates.cif", {{312, 3, 2}, {359, 8, 1}}},
    {"10_syntax.cif", {{305, 2, 2}, {307, 4, 2}}},
    // Obsolete names are remarks naming their replacement; one standing
    // beside its replacement is also a warning.
    {"14_replaced_names.cif", {{356, 2, 0}, {367, 2, 1}, {356, 4, 0}, {356, 5, 0}, {356, 7, 0}}},
    // Operators twice, an atom type twice, an anisotropic label twice, a bond
    // twice under the same symmetry, an angle twice in a loop without
    // symmetry; the bond under other symmetry (line 36) is another bond.
    {"15_keys.cif", {{356, 3, 0}, {359, 6, 1}, {359, 12, 1}, {359, 27, 1}, {369, 34, 1}, {369, 43, 1}}},
    // ";_chemical_name_common" closes the text field without white space;
    // [, ] and $ may not begin unquoted values in CIF 1.1.
    {"16_reserved_characters.cif", {{338, 5, 2}, {330, 6, 2}, {330, 7, 2}, {330, 8, 2}, {324, 8, 2}}},
    // Row 3 (line 15) lacks a value: C3 lands in the U column. No type error
    // for O2 further on, and no parent values for the shifted type symbols
    // or for the anisotropic label O2.
    {"17_shifted_loop.cif", {{307, 6, 2}, {368, 15, 2}}},
};

TEST(CifBrokenFiles, EachFileGivesExactlyTheFindingsAReadingOfItShows) {
    if (cif_test::core_dictionary().is_null())
        GTEST_SKIP() << "the IUCr core dictionary is not at " << cif_test::core_dictionary_path();
    for (const BrokenFile& file : broken_files) {
        SCOPED_TRACE(file.name);
        EXPECT_EQ(check_file(file.name), file.expected);
    }
}

TEST(CifBrokenFiles, MessagesNameTheReplacementTheRepeatedKeyAndTheShiftedRow) {
    if (cif_test::core_dictionary().is_null())
        GTEST_SKIP() << "the IUCr core dictionary is not at " << cif_test::core_dictionary_path();
    auto message_at = [](const std::string& name, int code) {
        std::ifstream stream(std::string(TESSARY_SOURCE_DIR) + "/tests/data/broken/" + name,
                             std::ios::binary);
        const THandle<Cif> cif =
            CifDocumentCheck(cif_test::core_dictionary(), CifCheckSettings()).run(stream);
        for (const CifError& error : *cif->errors())
            if (error.id() == code) return error.message();
        return std::string();
    };
    EXPECT_EQ(message_at("14_replaced_names.cif", 367),
              "Data name _symmetry_cell_setting stands in the same block as its replacement "
              "_space_group_crystal_system");
    EXPECT_EQ(message_at("03_enumerations.cif", 356),
              "Data name _atom_site_refinement_flags is obsolete; use _atom_site_refinement_flags_posn, "
              "_atom_site_refinement_flags_adp, _atom_site_refinement_flags_occupancy");
    EXPECT_EQ(message_at("15_keys.cif", 369),
              "Values C1, C2, . of _geom_bond_atom_site_label_1, _geom_bond_atom_site_label_2, "
              "_geom_bond_site_symmetry_2 occur together in more than one row");
    EXPECT_EQ(message_at("17_shifted_loop.cif", 368),
              "Values of the loop are shifted from here: _atom_site_U_iso_or_equiv gets a value of the wrong "
              "kind (C3 in row 3; and 1 further value of the following rows)");
}

}  // namespace
