// SPDX-License-Identifier: MIT
// The team's broken files checked as tessary-check does against the core dictionary.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
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
// problem each message is about (docs/validation-vs-cod-tools.md says what
// each file breaks).
const BrokenFile broken_files[] = {
    {"01_undefined_names.cif", {{320, 3, 1}, {320, 4, 1}, {320, 5, 1}, {320, 6, 1}}},
    {"02_numbers.cif", {{324, 3, 2}, {354, 4, 2}, {355, 5, 2}, {355, 6, 2}, {343, 8, 2}, {354, 9, 2}}},
    // The Flack parameter comes without the details of how it was found.
    {"04_ranges.cif", {{325, 3, 2}, {325, 4, 2}, {325, 5, 2}, {325, 12, 2}, {325, 13, 2}, {382, 6, 1}}},
    // Authors without a title.
    {"05_loop_rules.cif", {{328, 3, 2}, {328, 4, 2}, {327, 6, 1}, {327, 7, 1}, {384, 1, 0}}},
    {"06_loop_keys.cif", {{358, 9, 1}, {358, 14, 1}}},
    {"08_mixed_loop.cif", {{329, 5, 1}, {358, 5, 1}, {329, 10, 1}, {358, 10, 1}}},
    // Reading first, then the consistency checks in line order.
    {"11_consistency.cif",
     {{356, 4, 0},
      {372, 3, 1},
      {303, 4, 0},
      {370, 11, 2},
      {373, 13, 2},
      {303, 14, 0},
      {303, 15, 0},
      {303, 20, 0},
      {304, 21, 0},
      {304, 22, 0}}},
    {"12_space_group.cif",
     {{356, 2, 0},
      {356, 3, 0},
      {356, 4, 0},
      {356, 6, 0},
      {356, 13, 0},
      {362, 2, 0},
      {303, 3, 0},
      {361, 13, 0}}},
    {"13_quoted_and_null.cif", {{324, 2, 2}, {324, 7, 2}, {324, 11, 2}}},
    // A correction named without its transmission range.
    {"03_enumerations.cif", {{326, 2, 2}, {326, 3, 1}, {356, 11, 0}, {326, 15, 2}, {326, 16, 1}, {376, 2, 2}}},
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
    {"16_reserved_characters.cif", {{338, 5, 2}, {330, 6, 2}, {330, 7, 2}, {330, 8, 2}, {324, 8, 2}, {384, 1, 0}}},
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
    // Every file of the folder has its row.
    for (const auto& entry :
         std::filesystem::directory_iterator(std::string(TESSARY_SOURCE_DIR) + "/tests/data/broken")) {
        const std::string name = entry.path().filename().string();
        EXPECT_TRUE(std::any_of(std::begin(broken_files), std::end(broken_files),
                                [&](const BrokenFile& file) { return name == file.name; }))
            << name;
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
