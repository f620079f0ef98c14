// SPDX-License-Identifier: MIT
// Cross-checks of a document's values: a consistent block passes, a changed value is found.
// Each check reports the changed value on the line of its item.
#include <gtest/gtest.h>

#include <string>

#include "cif/CifBlockSymmetry.hpp"
#include "cif/ORMACifConsistencyChecker.hpp"
#include "tests/cif/CifTestSupport.hpp"
#include "tests/cif/DictionaryTestSupport.hpp"

namespace {

using cif_test::Messages;

// A consistent monoclinic structure (values as a refinement program writes them).
const std::string consistent =
    "data_compound\n"
    "_chemical_formula_sum 'C6 H12 N2 O2'\n"
    "_chemical_formula_weight 144.17\n"
    "_symmetry_cell_setting monoclinic\n"
    "_symmetry_space_group_name_H-M 'P 21/c'\n"
    "_symmetry_Int_Tables_number 14\n"
    "loop_\n"
    "_symmetry_equiv_pos_as_xyz\n"
    "'x, y, z'\n"
    "'-x, y+1/2, -z+1/2'\n"
    "'-x, -y, -z'\n"
    "'x, -y-1/2, z-1/2'\n"
    "_cell_length_a 7.5632(3)\n"
    "_cell_length_b 10.2514(4)\n"
    "_cell_length_c 12.3345(5)\n"
    "_cell_angle_alpha 90\n"
    "_cell_angle_beta 101.234(2)\n"
    "_cell_angle_gamma 90\n"
    "_cell_volume 938.01(7)\n"
    "_cell_formula_units_Z 4\n"
    "_cell_measurement_theta_min 2.5\n"
    "_cell_measurement_theta_max 27.4\n"
    "_exptl_crystal_size_max 0.30\n"
    "_exptl_crystal_size_mid 0.20\n"
    "_exptl_crystal_size_min 0.10\n"
    "_exptl_crystal_density_diffrn 1.021\n"
    "_exptl_crystal_F_000 312\n"
    "_exptl_absorpt_correction_T_min 0.81\n"
    "_exptl_absorpt_correction_T_max 0.93\n"
    "_diffrn_reflns_number 12000\n"
    "_diffrn_reflns_limit_h_min -9\n"
    "_diffrn_reflns_limit_h_max 9\n"
    "_diffrn_reflns_theta_min 2.51\n"
    "_diffrn_reflns_theta_max 27.50\n"
    "_reflns_number_total 2140\n"
    "_reflns_number_gt 1890\n"
    "loop_\n"
    "_atom_site_label\n"
    "_atom_site_fract_x\n"
    "C1 0.1 \n"
    "N1 0.2 \n"
    "O1 0.3 \n"
    "loop_\n"
    "_atom_site_aniso_label\n"
    "_atom_site_aniso_U_11\n"
    "C1 0.02\n"
    "N1 0.03\n"
    "loop_\n"
    "_geom_bond_atom_site_label_1\n"
    "_geom_bond_atom_site_label_2\n"
    "_geom_bond_distance\n"
    "C1 N1 1.47\n"
    "N1 O1 1.40\n";

// The 1-based line of the first line that holds needle.
int line_of(const std::string& text, const std::string& needle) {
    std::size_t at = text.find(needle);
    EXPECT_NE(at, std::string::npos) << needle;
    return 1 +
           static_cast<int>(std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(at), '\n'));
}

// The consistent text with one line replaced.
std::string with(const std::string& old_line, const std::string& new_line) {
    std::string text = consistent;
    std::size_t at = text.find(old_line + "\n");
    EXPECT_NE(at, std::string::npos) << old_line;
    text.replace(at, old_line.size(), new_line);
    return text;
}

// The findings of the checker alone (the text itself reads cleanly).
THandle<Cif> checked(const std::string& text, THandle<CifDictionary> dictionary = THandle<CifDictionary>()) {
    THandle<Cif> cif(new Cif(dictionary));
    cif->read_text(text);
    EXPECT_TRUE(cif->errors()->empty()) << cif->errors()->begin()->complete_message();
    ORMACifConsistencyChecker(cif).check_cif();
    return cif;
}

TEST(ConsistencyChecker, AConsistentStructureGivesNoFinding) {
    THandle<Cif> cif = checked(consistent);
    EXPECT_TRUE(cif->errors()->empty()) << cif->errors()->begin()->complete_message();
}

struct Case {
    const char* old_line;
    const char* new_line;
    int code;
    const char* name;  // the text of the first finding, and where its line is
    CifError::ErrorType type = CifError::remark;
};

TEST(ConsistencyChecker, EachDerivedValueThatDisagreesIsReportedOnItsItem) {
    const Case cases[] = {
        // A volume off by more than three uncertainties of it and of the cell.
        {"_cell_volume 938.01(7)", "_cell_volume 938.5(1)", 303, "_cell_volume"},
        {"_exptl_crystal_density_diffrn 1.021", "_exptl_crystal_density_diffrn 1.025", 303,
         "_exptl_crystal_density_diffrn"},
        // Off by 10 %: the density itself is wrong.
        {"_exptl_crystal_density_diffrn 1.021", "_exptl_crystal_density_diffrn 1.121", 373,
         "_exptl_crystal_density_diffrn", CifError::error},
        // The density agrees with the formula, so only the weight is blamed.
        {"_chemical_formula_weight 144.17", "_chemical_formula_weight 160.17", 372,
         "_chemical_formula_weight", CifError::error},
        {"_chemical_formula_weight 144.17", "_chemical_formula_weight 144.57", 303,
         "_chemical_formula_weight"},
        {"_exptl_crystal_F_000 312", "_exptl_crystal_F_000 340", 303, "_exptl_crystal_F_000"},
        {"_symmetry_cell_setting monoclinic", "_symmetry_cell_setting orthorhombic", 303,
         "_symmetry_cell_setting"},
        {"_symmetry_Int_Tables_number 14", "_symmetry_Int_Tables_number 15", 303,
         "_symmetry_Int_Tables_number"},
        {"_cell_measurement_theta_max 27.4", "_cell_measurement_theta_max 2.4", 303,
         "_cell_measurement_theta_max"},
        {"_diffrn_reflns_limit_h_max 9", "_diffrn_reflns_limit_h_max -10", 303, "_diffrn_reflns_limit_h_max"},
        {"_exptl_crystal_size_mid 0.20", "_exptl_crystal_size_mid 0.35", 303, "_exptl_crystal_size_max"},
        {"_exptl_absorpt_correction_T_max 0.93", "_exptl_absorpt_correction_T_max 0.71", 303,
         "_exptl_absorpt_correction_T_max"},
        {"_reflns_number_gt 1890", "_reflns_number_gt 2890", 304, "_reflns_number_gt"},
        {"_reflns_number_total 2140", "_reflns_number_total 12140", 304, "_reflns_number_total"},
    };
    for (const Case& c : cases) {
        std::string text = with(c.old_line, c.new_line);
        THandle<Cif> cif = checked(text);
        ASSERT_EQ(cif->errors()->size(), 1u)
            << c.new_line << ": " << cif->errors()->begin()->complete_message();
        const CifError& finding = *cif->errors()->begin();
        EXPECT_EQ(finding.id(), c.code) << c.new_line;
        EXPECT_EQ(finding.type(), c.type) << c.new_line;
        EXPECT_EQ(finding.text(), c.name) << c.new_line;
        EXPECT_EQ(finding.line(), line_of(text, std::string(c.name) + " ")) << c.new_line;
    }
}

TEST(ConsistencyChecker, TellsWhatItCalculated) {
    THandle<Cif> cif = checked(with("_cell_volume 938.01(7)", "_cell_volume 938.5(1)"));
    EXPECT_EQ(
        cif->errors()->begin()->message(),
        "Value of _cell_volume differs from the value calculated from related items (calculated 938.0)");
    THandle<Cif> formula = checked(with("_exptl_crystal_F_000 312", "_exptl_crystal_F_000 400"));
    EXPECT_EQ(formula->errors()->begin()->detail(), " (312 electrons in the cell)");
}

TEST(ConsistencyChecker, ToleranceFollowsTheUncertainties) {
    // 938.2 is 0.19 off: within three uncertainties of 0.07, not of 0.01.
    EXPECT_TRUE(checked(with("_cell_volume 938.01(7)", "_cell_volume 938.2(1)"))->errors()->empty());
    THandle<Cif> tight = checked(with("_cell_length_a 7.5632(3)", "_cell_length_a 7.5632(0)"));
    EXPECT_TRUE(tight->errors()->empty());
    EXPECT_FALSE(checked(with("_cell_volume 938.01(7)", "_cell_volume 938.4(1)"))->errors()->empty());
    // A cell angle of a monoclinic cell that is 90 within its uncertainty is fine.
    EXPECT_TRUE(checked(with("_cell_angle_alpha 90", "_cell_angle_alpha 90.003(4)"))->errors()->empty());
}

TEST(ConsistencyChecker, CellShapesMustFitTheCrystalSystem) {
    const std::string tetragonal =
        "data_t\n_symmetry_cell_setting tetragonal\n_cell_length_a 5.0\n_cell_length_b 5.0\n_cell_length_c "
        "7.0\n"
        "_cell_angle_alpha 90\n_cell_angle_beta 90\n_cell_angle_gamma 90\n";
    EXPECT_TRUE(checked(tetragonal)->errors()->empty());
    std::string wrong = tetragonal;
    wrong.replace(wrong.find("_cell_length_b 5.0"), 18, "_cell_length_b 5.2");
    THandle<Cif> cif = checked(wrong);
    EXPECT_EQ(cif_test::messages(*cif), (Messages{{303, 2}}));
    const std::string hexagonal =
        "data_h\n_space_group_crystal_system trigonal\n_cell_length_a 5.0\n_cell_length_b 5.0\n"
        "_cell_length_c 7.0\n_cell_angle_alpha 90\n_cell_angle_beta 90\n_cell_angle_gamma 120\n";
    EXPECT_TRUE(checked(hexagonal)->errors()->empty());
    std::string rhombohedral = hexagonal;
    rhombohedral.replace(rhombohedral.find("trigonal"), 8, "cubic");
    EXPECT_EQ(cif_test::messages(*checked(rhombohedral)), (Messages{{303, 2}}));
}

TEST(ConsistencyChecker, SpaceGroupSymbolsAreCheckedAgainstOperatorsAndNumber) {
    // P 21/n is group 14 too, but another setting than the operators of P 21/c.
    THandle<Cif> setting =
        checked(with("_symmetry_space_group_name_H-M 'P 21/c'", "_symmetry_space_group_name_H-M 'P 21/n'"));
    ASSERT_EQ(cif_test::messages(*setting), (Messages{{362, 5}}));
    EXPECT_EQ(setting->errors()->begin()->message(),
              "Symmetry operators do not agree with the space group P 21/n");
    THandle<Cif> unknown =
        checked(with("_symmetry_space_group_name_H-M 'P 21/c'", "_symmetry_space_group_name_H-M 'P 21/x'"));
    EXPECT_EQ(cif_test::messages(*unknown), (Messages{{361, 5}}));
    // Old and full spellings of a symbol are recognised.
    THandle<Cif> full = checked(
        with("_symmetry_space_group_name_H-M 'P 21/c'", "_symmetry_space_group_name_H-M 'P 1 21/c 1'"));
    EXPECT_TRUE(full->errors()->empty());
}

TEST(CifBlockSymmetry, OperatorListsReadOnceAreToldApartByEveryOperator) {
    // The group of a list is kept for the process: the same list again, the
    // same operators in another order, and the same characters split into
    // other operators must each get their own answer.
    auto laue_and_readable = [](const std::string& operators) {
        THandle<Cif> cif = cif_test::read("data_a\nloop_\n_symmetry_equiv_pos_as_xyz\n" + operators);
        const CifBlockSymmetry symmetry(*cif->blocks().front());
        return std::to_string(symmetry.laue_order()) +
               (symmetry.operations_of_operators() ? " read" : " unread");
    };
    const std::string monoclinic = "'x, y, z'\n'-x, y+1/2, -z+1/2'\n'-x, -y, -z'\n'x, -y-1/2, z-1/2'\n";
    EXPECT_EQ(laue_and_readable(monoclinic), "4 read");
    EXPECT_EQ(laue_and_readable(monoclinic), "4 read");
    EXPECT_EQ(laue_and_readable("'-x, -y, -z'\n'x, y, z'\n'-x, y+1/2, -z+1/2'\n'x, -y-1/2, z-1/2'\n"),
              "4 read");
    EXPECT_EQ(laue_and_readable("'x, y, z-x'\n', y+1/2, -z+1/2'\n'-x, -y, -z'\n'x, -y-1/2, z-1/2'\n"),
              "0 unread");
    EXPECT_EQ(laue_and_readable("'x, y, z'\n'-x, -y, -z'\n"), "2 read");
}

TEST(ConsistencyChecker, AtomLabelsAreUniqueAndEveryReferenceToOneExists) {
    std::string text = with("O1 0.3 ", "C1 0.3 ");
    text = text.substr(0, text.find("N1 O1 1.40")) + "N1 O2 1.40\nN1 O2 1.41\n";
    THandle<Cif> cif = checked(text);
    EXPECT_EQ(cif_test::messages(*cif),
              (Messages{{359, line_of(text, "C1 0.3")}, {360, line_of(text, "N1 O2 1.40")}}));
    EXPECT_EQ((*cif->errors())[0].message(), "Value C1 of _atom_site_label occurs in more than one row");
    EXPECT_EQ((*cif->errors())[1].message(),
              "Value O2 of _geom_bond_atom_site_label_2 has no matching row in its parent item");
    EXPECT_EQ((*cif->errors())[1].type(), CifError::warning);
}

TEST(ConsistencyChecker, LabelsOfOneBlockNeverAnswerForTheNext) {
    // One table of labels serves block after block: a block with many labels
    // first, then smaller ones that refer to its labels and repeat them.
    std::string text = "data_big\nloop_\n_atom_site_label\n";
    for (int n = 1; n <= 40; ++n) text += "C" + std::to_string(n) + "\n";
    text +=
        "data_small\nloop_\n_atom_site_label\nC1\nN1\nloop_\n_geom_bond_atom_site_label_1\n"
        "_geom_bond_atom_site_label_2\nC1 C2\nN1 C1\n";
    text +=
        "data_again\nloop_\n_atom_site_label\nC2\nC3\nC2\nloop_\n_geom_bond_atom_site_label_1\n"
        "_geom_bond_atom_site_label_2\nC3 C1\n";
    THandle<Cif> cif = checked(text);
    const std::size_t again = text.find("data_again");
    EXPECT_EQ(cif_test::messages(*cif),
              (Messages{{360, line_of(text, "C1 C2")},
                        {359, line_of(text.substr(again), "C2\nloop_") + line_of(text, "data_again") - 1},
                        {360, line_of(text, "C3 C1")}}));
}

TEST(ConsistencyChecker, LabelsTheDictionaryLinksAreLeftToTheReader) {
    std::string text = with("C1 0.02", "X9 0.02");
    THandle<Cif> plain = checked(text);
    EXPECT_EQ(cif_test::messages(*plain), (Messages{{360, line_of(text, "X9")}}));
    // With the dictionary the reader reports it once, and the checker not again.
    THandle<Cif> cif(new Cif(cif_test::test_pool()));
    cif->read_text(text);
    ORMACifConsistencyChecker(cif).check_cif();
    int count = 0;
    for (const CifError& error : *cif->errors()) count += error.id() == CifError::parent_value_missing;
    EXPECT_EQ(count, 1);
}

TEST(ConsistencyChecker, CountsAgreeWithTheLoopsTheyCount) {
    std::string text =
        "data_d\n_diffrn_reflns_number 5\nloop_\n_diffrn_refln_index_h\n_diffrn_refln_index_k\n"
        "_diffrn_refln_index_l\n1 0 0\n0 1 0\n0 0 1\n";
    THandle<Cif> cif = checked(text);
    EXPECT_EQ(cif_test::messages(*cif), (Messages{{304, 2}}));
    EXPECT_EQ(cif->errors()->begin()->detail(), " (the loop of _diffrn_refln_index_h has 3 rows)");
    text.replace(text.find("number 5"), 8, "number 3");
    EXPECT_TRUE(checked(text)->errors()->empty());
}

TEST(ConsistencyChecker, FindingsFollowTheMessagesOfReadingInLineOrderAndEveryBlockIsChecked) {
    std::string text = "data_first\n_cell_formula_units_Z 4\n_undefined 1\n" +
                       with("_diffrn_reflns_theta_max 27.50", "_diffrn_reflns_theta_max 1.50") +
                       with("_reflns_number_gt 1890", "_reflns_number_gt 2890");
    THandle<Cif> cif(new Cif());
    cif->read_text(text + "_bad 'open\n");
    std::size_t read_messages = cif->errors()->size();
    ASSERT_GT(read_messages, 0u);
    ORMACifConsistencyChecker(cif).check_cif();
    ASSERT_EQ(cif->errors()->size(), read_messages + 2);
    EXPECT_EQ((*cif->errors())[read_messages].text(), "_diffrn_reflns_theta_max");
    EXPECT_LT((*cif->errors())[read_messages].line(), (*cif->errors())[read_messages + 1].line());
    // Nothing to check, nothing found; an empty document neither.
    THandle<Cif> empty(new Cif());
    ORMACifConsistencyChecker(empty).check_cif();
    EXPECT_TRUE(empty->errors()->empty());
}

}  // namespace

namespace {

TEST(ConsistencyChecker, FZeroUsesTheAnomalousDispersionTheAtomTypesGive) {
    // A uranium compound measured with Mo radiation: 278 electrons, but
    // with f' and f'' of the atom types F(000) is 259.5.
    const std::string block =
        "data_u\n_chemical_formula_sum 'C2 H3 O4 U'\n_cell_formula_units_Z 2\n_exptl_crystal_F_000 260\n";
    const std::string types =
        "loop_\n_atom_type_symbol\n_atom_type_scat_dispersion_real\n_atom_type_scat_dispersion_imag\n"
        "C 0.0033 0.0016\nH 0.0000 0.0000\nO 0.0106 0.0060\nU4+ -9.6767 9.6646\n";
    EXPECT_TRUE(checked(block + types)->errors()->empty());
    THandle<Cif> without = checked(block);
    ASSERT_EQ(without->errors()->size(), 1u);
    EXPECT_EQ(without->errors()->begin()->detail(), " (278 electrons in the cell)");
    std::string stated_without = block + types;
    stated_without.replace(stated_without.find("F_000 260"), 9, "F_000 278");
    THandle<Cif> cif = checked(stated_without);
    ASSERT_EQ(cif_test::messages(*cif), (Messages{{303, 4}}));
    EXPECT_EQ(cif->errors()->begin()->detail(), " (259 electrons in the cell, with anomalous dispersion)");
}

TEST(ConsistencyChecker, AnglesFixedAt90AreJudgedByThreeOfTheirUncertainties) {
    const std::string cell =
        "data_m\n_space_group_crystal_system monoclinic\n_cell_length_a 7.5632(3)\n_cell_length_b "
        "10.2514(4)\n"
        "_cell_length_c 12.3345(5)\n";
    const std::pair<std::string, bool> cases[] = {
        {"_cell_angle_alpha 90\n_cell_angle_beta 101.234(2)\n_cell_angle_gamma 90\n", true},
        {"_cell_angle_alpha 90.03(3)\n_cell_angle_beta 101.234(2)\n_cell_angle_gamma 90.03(3)\n", true},
        {"_cell_angle_alpha 89.92(3)\n_cell_angle_beta 101.234(2)\n_cell_angle_gamma 90.05(2)\n", true},
        {"_cell_angle_alpha 90\n_cell_angle_beta 90.03(3)\n_cell_angle_gamma 90\n", true},
        {"_cell_angle_alpha 90.4(1)\n_cell_angle_beta 101.234(2)\n_cell_angle_gamma 90\n", false},
        {"_cell_angle_alpha 90.03\n_cell_angle_beta 101.234(2)\n_cell_angle_gamma 90\n", false},
    };
    for (const auto& [angles, fine] : cases)
        EXPECT_EQ(checked(cell + angles)->errors()->empty(), fine) << angles;
}

TEST(ConsistencyChecker, WithoutADictionaryLabelsOfDamagedRowsGiveNoFindings) {
    // An unclosed quote makes the atom-site loop short: its labels are in
    // doubt, so the anisotropic label C3 is not reported missing, nor C1 twice.
    THandle<Cif> cif(new Cif());
    cif->read_text(
        "data_a\nloop_\n_atom_site_label\n_atom_site_fract_x\nC1 0.1\n'C2 0.2\nC3 0.3\nC1 0.4\n"
        "loop_\n_atom_site_aniso_label\n_atom_site_aniso_U_11\nC3 0.01\n");
    ORMACifConsistencyChecker(cif).check_cif();
    EXPECT_EQ(cif_test::messages(*cif), (Messages{{307, 2}, {305, 6}}));
}

}  // namespace
