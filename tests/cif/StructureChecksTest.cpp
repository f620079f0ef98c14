// SPDX-License-Identifier: MIT
// The structure checks (370-384): each trips on its own file and passes near its threshold.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "cif/CifBlockSymmetry.hpp"
#include "cif/CifDocumentCheck.hpp"
#include "cif/CifMassAttenuation.hpp"
#include "cif/CifMoietyFormula.hpp"
#include "cif/ORMACifConsistencyChecker.hpp"
#include "tests/cif/CifTestSupport.hpp"

namespace {

// (code, line, level) of a message: 0 remark, 1 warning, 2 error.
using Finding = std::tuple<int, int, int>;
using Findings = std::vector<Finding>;

THandle<Cif> checked(const std::string& text) {
    return CifDocumentCheck(THandle<CifDictionary>(), CifCheckSettings()).run(text);
}

Findings findings_of(const Cif& cif) {
    Findings findings;
    for (const CifError& error : *cif.errors()) findings.emplace_back(error.id(), error.line(), error.type());
    return findings;
}

std::string file_text(const std::string& name) {
    std::ifstream stream(std::string(TESSARY_SOURCE_DIR) + "/tests/data/structure_checks/" + name);
    EXPECT_TRUE(stream) << name;
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

struct CheckFiles {
    const char* stem;  // NN_name: NN_name_trips.cif and NN_name_passes.cif
    int code;
    Findings trips;  // every message of the file that trips the check
};

// The file's first lines say what each value is against its threshold.
const CheckFiles check_files[] = {
    {"01_cell_volume", 370, {{370, 9, 2}}},
    {"02_cell_contents", 371, {{371, 4, 1}}},
    {"03_formula_weight", 372, {{372, 4, 0}}},
    {"04_density", 373, {{373, 8, 0}}},
    {"05_moiety", 374, {{374, 5, 1}, {374, 5, 0}}},
    {"06_absorption", 375, {{375, 9, 0}}},
    {"07_transmission", 376, {{376, 3, 2}}},
    {"08_completeness", 377, {{377, 18, 2}}},
    {"09_data_per_parameter", 378, {{378, 11, 1}}},
    {"10_shift", 379, {{379, 3, 0}}},
    {"11_r_factors", 380, {{380, 5, 0}}},
    {"12_residual_density", 381, {{381, 4, 1}}},
    {"13_flack", 382, {{382, 10, 0}}},
    {"14_hall_symbol", 383, {{383, 10, 1}}},
    {"15_publication", 384, {{384, 2, 0}}},
};

TEST(StructureChecks, EachCheckTripsOnItsFileAndPassesNearItsThreshold) {
    int files = 0;
    for (const CheckFiles& check : check_files) {
        SCOPED_TRACE(check.stem);
        EXPECT_EQ(findings_of(*checked(file_text(std::string(check.stem) + "_trips.cif"))), check.trips);
        // Near the threshold nothing is found; the formula weight just below
        // 1 % is still beyond rounding (303).
        Findings passing = findings_of(*checked(file_text(std::string(check.stem) + "_passes.cif")));
        const Findings near = check.code == 372 ? Findings{{303, 5, 0}} : Findings{};
        EXPECT_EQ(passing, near);
        files += 2;
    }
    // Every file of the folder is in the table.
    int present = 0;
    for (const auto& entry : std::filesystem::directory_iterator(std::string(TESSARY_SOURCE_DIR) +
                                                                 "/tests/data/structure_checks"))
        present += entry.path().extension() == ".cif";
    EXPECT_EQ(present, files);
}

TEST(StructureChecks, FindingsNameTheValuesTheExpectationAndItsTolerance) {
    const std::pair<const char*, const char*> cases[] = {
        {"01_cell_volume_trips.cif",
         "Value of _cell_volume does not follow from the cell (939.04(7); a, b, c, alpha, beta, gamma give "
         "938.01, "
         "ratio 1.0011 outside 0.999-1.001)"},
        {"02_cell_contents_trips.cif",
         "Value of _chemical_formula_sum times Z does not match the atom sites (_cell_formula_units_Z 4 x "
         "'Cl Na' "
         "gives Na 4.000 +/- 0.1 + 3 %; the atom sites give Na 3.760)"},
        {"06_absorption_trips.cif",
         "Value of _exptl_absorpt_coefficient_mu is off the absorption of the cell's contents (0.096 per mm; "
         "_cell_formula_units_Z 4 x 'C6 H12 N2 O2' in 938.01(7) A^3 gives 0.0829 for Mo K-alpha, off by 15.7 "
         "%, "
         "more than 15 %)"},
        {"14_hall_symbol_trips.cif",
         "Value of _symmetry_space_group_name_Hall does not agree with the other space-group items ('-P 2yn' "
         "gives "
         "P 1 21/n 1 (14); the operators of _symmetry_equiv_pos_as_xyz form P 1 21/c 1 (14))"},
    };
    for (const auto& [file, message] : cases) {
        THandle<Cif> cif = checked(file_text(file));
        ASSERT_FALSE(cif->errors()->empty()) << file;
        EXPECT_EQ(cif->errors()->begin()->message(), message);
    }
}

// The consistent part every level test starts from.
const std::string refinement =
    "data_r\n_symmetry_space_group_name_H-M 'P 21 21 21'\n"
    "_chemical_formula_sum 'C8 H8 Br N O'\n";

TEST(StructureChecks, LevelsFollowTheThresholds) {
    struct Case {
        const char* items;
        Findings expected;  // lines counted from 4, where the items start
    };
    const Case cases[] = {
        {"_refine_ls_shift/su_max 0.11\n", {{379, 4, 1}}},
        {"_refine_ls_shift/su_max -0.21\n", {{379, 4, 2}}},
        {"_refine_ls_wR_factor_ref 0.36\n", {{380, 4, 1}}},
        {"_refine_ls_wR_factor_ref 0.46\n", {{380, 4, 2}}},
        // R1 above wR2 only matters on F squared.
        {"_refine_ls_structure_factor_coef Fsqd\n_refine_ls_R_factor_gt 0.05\n_refine_ls_wR_factor_ref "
         "0.04\n",
         {{380, 6, 0}}},
        {"_refine_ls_structure_factor_coef F\n_refine_ls_R_factor_gt 0.05\n_refine_ls_wR_factor_ref 0.04\n",
         {}},
        // Non-centrosymmetric: 8 reflections per parameter suffice.
        {"_refine_ls_number_reflns 799\n_refine_ls_number_parameters 100\n", {{378, 4, 1}}},
        {"_refine_ls_number_reflns 800\n_refine_ls_number_parameters 100\n", {}},
        {"_refine_diff_density_max 0.5\n_refine_diff_density_min 0.1\n", {{381, 5, 2}}},
        {"_refine_diff_density_max 0.5\n_refine_diff_density_min -3.6\n", {{381, 5, 1}}},
        {"_refine_ls_abs_structure_Flack 0.02(3)\n", {{382, 4, 1}}},
        {"_chemical_formula_weight 229.0\n", {{372, 4, 1}}},
        {"_chemical_formula_weight 290\n", {{372, 4, 2}}},
        {"_symmetry_Int_Tables_number 18\nloop_\n_symmetry_equiv_pos_as_xyz\nx,y,z\n-x+1/2,-y,z+1/2\n"
         "-x,y+1/2,-z+1/2\nx+1/2,-y+1/2,-z\n",
         {{303, 4, 0}}},
        {"_symmetry_space_group_name_Hall 'P 2ac 2ab'\n_symmetry_Int_Tables_number 19\n", {}},
        {"_symmetry_space_group_name_Hall 'P 2ac 2ab'\n_symmetry_Int_Tables_number 18\n",
         {{303, 5, 0}, {383, 5, 1}}},
        {"_symmetry_space_group_name_Hall 'P 2x 2q'\n", {{383, 4, 1}}},
    };
    for (const Case& c : cases) {
        THandle<Cif> cif = checked(refinement + c.items);
        EXPECT_EQ(findings_of(*cif), c.expected) << c.items;
    }
}

TEST(StructureChecks, TheVolumesUncertaintyIsComparedWithTheCells) {
    const std::string cell =
        "data_v\n_cell_length_a 7.5632(3)\n_cell_length_b 10.2514(4)\n_cell_length_c 12.3345(5)\n"
        "_cell_angle_alpha 90\n_cell_angle_beta 101.234(2)\n_cell_angle_gamma 90\n";
    // The cell's uncertainties give 0.07 to 0.1 for the volume.
    const std::pair<const char*, Findings> cases[] = {
        {"_cell_volume 938.01(7)\n", {}},
        {"_cell_volume 938.01(15)\n", {}},
        {"_cell_volume 938.0(3)\n", {{370, 8, 0}}},
        {"_cell_volume 938.0(5)\n", {{370, 8, 1}}},
        {"_cell_volume 938.0(15)\n", {{370, 8, 2}}},
        {"_cell_volume 938.010(5)\n", {{370, 8, 2}}},
        // Written to one decimal, 0.1 is the smallest uncertainty it can have.
        {"_cell_volume 938.0(1)\n", {}},
        {"_cell_volume 938\n", {}},
    };
    for (const auto& [volume, expected] : cases)
        EXPECT_EQ(findings_of(*checked(cell + volume)), expected) << volume;
    // Lengths fixed equal by symmetry share an uncertainty: a cubic cell
    // with only a's gives 3 a^2 su(a).
    const std::string cubic =
        "data_c\n_cell_length_a 10.000(1)\n_cell_length_b 10.000\n_cell_length_c 10.000\n_cell_angle_alpha "
        "90\n"
        "_cell_angle_beta 90\n_cell_angle_gamma 90\n_cell_volume 1000.0(3)\n";
    EXPECT_TRUE(checked(cubic)->errors()->empty());
}

TEST(StructureChecks, SiteMultiplicitiesComeFromTheSpaceGroup) {
    // An I m m a structure whose writer filled _atom_site_symmetry_multiplicity
    // with the site symmetry's order (4 and 2): the group gives 4 and 8.
    const std::string text =
        "data_i\n_chemical_formula_sum 'Ba In2'\n_cell_formula_units_Z 4\n_symmetry_space_group_name_H-M 'I "
        "m m a'\n"
        "_cell_length_a 5.2204(19)\n_cell_length_b 8.504(3)\n_cell_length_c 8.520(3)\n"
        "_cell_angle_alpha 90\n_cell_angle_beta 90\n_cell_angle_gamma 90\n"
        "loop_\n_atom_site_label\n_atom_site_fract_x\n_atom_site_fract_y\n_atom_site_fract_z\n"
        "_atom_site_occupancy\n_atom_site_symmetry_multiplicity\n"
        "Ba1 0 0.25 0.54945 1 4\nIn2 0 0.06797 0.16085 1 2\n";
    EXPECT_TRUE(checked(text)->errors()->empty()) << checked(text)->errors()->begin()->complete_message();
    CifBlockSymmetry symmetry(*checked(text)->blocks().front());
    const double lengths[3] = {5.22, 8.50, 8.52};
    const double general[3] = {0.1, 0.2, 0.3}, special[3] = {0, 0.25, 0.54945}, centre[3] = {0, 0, 0};
    EXPECT_EQ(symmetry.multiplicity(general, lengths), 16);
    EXPECT_EQ(symmetry.multiplicity(special, lengths), 4);
    EXPECT_EQ(symmetry.multiplicity(centre, lengths), 4);
    EXPECT_TRUE(symmetry.centrosymmetric());
    EXPECT_EQ(symmetry.laue_order(), 8);
    EXPECT_EQ(symmetry.centring_count(), 2);
    // Without a space group the stated multiplicity counts.
    std::string without = text;
    without.replace(without.find("_symmetry_space_group_name_H-M 'I m m a'"), 40, "");
    EXPECT_EQ(findings_of(*checked(without)), (Findings{{371, 2, 1}}));
}

TEST(StructureChecks, AFormulaTheAtomSitesContradictIsNotUsedForTheMeasuredDensity) {
    // Calcium oxalate hydrate with a sum formula that lacks the carbon: the
    // measured density fits the real contents, so only the formula is reported.
    // In P 1 each site is one position; the occupancies count the atoms.
    const std::string text =
        "data_w\n_chemical_formula_sum '%s'\n_cell_formula_units_Z 8\n_cell_volume 874.9\n"
        "_exptl_crystal_density_meas 2.23\n_symmetry_space_group_name_H-M 'P 1'\n"
        "_cell_length_a 9.57\n_cell_length_b 9.57\n_cell_length_c 9.553\n_cell_angle_alpha 90\n"
        "_cell_angle_beta 90\n_cell_angle_gamma 90\nloop_\n_atom_site_label\n_atom_site_fract_x\n"
        "_atom_site_fract_y\n_atom_site_fract_z\n_atom_site_occupancy\n"
        "Ca1 0 0 0 8\nC1 0 0 0.5 16\nO1 0 0.5 0 40\nH1 0.5 0 0 16\n";
    auto with = [&](const char* formula) {
        std::string filled = text;
        filled.replace(filled.find("%s"), 2, formula);
        return findings_of(*checked(filled));
    };
    EXPECT_EQ(with("H2 Ca O5"), (Findings{{371, 2, 1}}));
    EXPECT_EQ(with("C2 H2 Ca O5"), Findings{});
    EXPECT_EQ(with("C2 H2 Ca O6"), (Findings{{371, 2, 1}}));
    // Only hydrogen left out of the sites: the formula stands, and the
    // density is checked (2.23 against 2.218 from the formula).
    std::string without_hydrogen = text;
    without_hydrogen.replace(without_hydrogen.find("H1 0.5 0 0 16\n"), 14, "");
    without_hydrogen.replace(without_hydrogen.find("%s"), 2, "C2 H2 Ca O5");
    EXPECT_EQ(findings_of(*checked(without_hydrogen)), (Findings{{371, 2, 0}}));
    without_hydrogen.replace(without_hydrogen.find("meas 2.23"), 9, "meas 2.53");
    EXPECT_EQ(findings_of(*checked(without_hydrogen)), (Findings{{371, 2, 0}, {373, 5, 1}}));
    // Hydrogen atoms given as attached to another site count.
    std::string attached = text;
    attached.replace(attached.find("H1 0.5 0 0 16\n"), 14, "");
    attached.replace(attached.find("%s"), 2, "C2 H2 Ca O5");
    attached.replace(attached.find("_atom_site_occupancy\n"), 21,
                     "_atom_site_occupancy\n_atom_site_attached_hydrogens\n");
    for (const char* site : {"Ca1 0 0 0 8", "C1 0 0 0.5 16", "O1 0 0.5 0 40"})
        attached.replace(attached.find(site), std::strlen(site),
                         std::string(site) + (site[0] == 'O' ? " 0.4" : " 0"));
    EXPECT_EQ(findings_of(*checked(attached)), Findings{});
}

TEST(StructureChecks, MoietyFormulasAreReadPartByPart) {
    struct Case {
        const char* text;
        bool valid;
        double carbon, chlorine, charge;
    };
    const Case cases[] = {
        {"C10 H16 N2 2+, 2(Cl -)", true, 10, 2, 0},
        {"(Cd 2+)3, (C6 N6 Cr 3-)2", true, 12, 0, 0},
        {"C18 H15 P, 0.5(C H2 Cl2)", true, 18.5, 1, 0},
        {"Cu2+, 2(Cl-)", true, 0, 2, 0},
        {"C6 H5 N O2 1-, Na +", true, 6, 0, 0},
        {"C6 H6, 2(C H2 Cl2", false, 0, 0, 0},
        {"C6 H6, Xx2", false, 0, 0, 0},
        {"C6 H6 + -", false, 0, 0, 0},
        {"C6 H6,", false, 0, 0, 0},
        {"2(C6 H6)3", false, 0, 0, 0},
    };
    for (const Case& c : cases) {
        CifMoietyFormula moiety(c.text);
        ASSERT_EQ(moiety.valid(), c.valid) << c.text << ": " << moiety.problem();
        if (!c.valid) continue;
        EXPECT_DOUBLE_EQ(moiety.count("C"), c.carbon) << c.text;
        EXPECT_DOUBLE_EQ(moiety.count("Cl"), c.chlorine) << c.text;
        EXPECT_DOUBLE_EQ(moiety.charge(), c.charge) << c.text;
    }
}

TEST(StructureChecks, PowderBlocksAreLeftOutOfTheCompletenessCheck) {
    // Any item of the pd category, in any case, under either separator, makes
    // the block a powder pattern; names that only begin with the letters do not.
    const std::pair<const char*, bool> items[] = {
        {"_pd_meas_2theta_range_min 5", true},
        {"_PD_Proc_LS_Prof_R_factor 0.1", true},
        {"_pd.block_id x", true},
        {"_Pd 1", true},
        {"_pdx_note 1", false},
        {"_xpd_note 1", false},
        {"_p_d 1", false},
        {"_pd_ 1", true},
    };
    const std::string text = file_text("08_completeness_trips.cif");
    const Findings tripped = {{377, 18, 2}};
    for (const auto& [item, powder] : items)
        EXPECT_EQ(findings_of(*checked(text + item + "\n")), powder ? Findings() : tripped) << item;
}

TEST(StructureChecks, RadiationsAreKnownByWavelengthAndName) {
    const std::pair<double, CifRadiation> wavelengths[] = {
        {0.71073, CifRadiation::mo}, {1.54184, CifRadiation::cu},     {1.5406, CifRadiation::cu},
        {0.56087, CifRadiation::ag}, {0.6889, CifRadiation::unknown}, {1.0, CifRadiation::unknown}};
    for (const auto& [wavelength, radiation] : wavelengths)
        EXPECT_EQ(cif_radiation_of_wavelength(wavelength), radiation) << wavelength;
    const std::pair<const char*, CifRadiation> types[] = {
        {"Mo K\\a", CifRadiation::mo},      {"'CuK\\a'", CifRadiation::cu},
        {"AgKa", CifRadiation::ag},         {"Mo K-alpha", CifRadiation::mo},
        {"Cu K\\b", CifRadiation::unknown}, {"synchrotron", CifRadiation::unknown},
        {"neutron", CifRadiation::unknown}, {"", CifRadiation::unknown}};
    for (const auto& [type, radiation] : types) EXPECT_EQ(cif_radiation_of_type(type), radiation) << type;
    // Heavier atoms absorb more, but for an element whose K edge lies just
    // above the radiation's energy (Zr for Mo, Ni for Cu) the coefficient drops.
    EXPECT_GT(cif_mass_attenuation("Br", CifRadiation::mo), cif_mass_attenuation("Cl", CifRadiation::mo));
    EXPECT_LT(cif_mass_attenuation("Zr", CifRadiation::mo), cif_mass_attenuation("Y", CifRadiation::mo));
    EXPECT_LT(cif_mass_attenuation("Ni", CifRadiation::cu), cif_mass_attenuation("Co", CifRadiation::cu));
    EXPECT_EQ(cif_mass_attenuation("Ga", CifRadiation::cu), 0.0);
    EXPECT_EQ(cif_mass_attenuation("Xx", CifRadiation::mo), 0.0);
}

TEST(StructureChecks, PublicationItemsAreListedOncePerDocumentAndNotBesideTheMandatoryOnes) {
    const std::string text =
        "data_a\n_publ_section_title 'T'\n_cell_length_a 5\ndata_b\n_journal_name_full 'J'\n";
    THandle<Cif> cif = checked(text);
    EXPECT_EQ(findings_of(*cif), (Findings{{384, 1, 0}}));
    EXPECT_EQ(cif->errors()->begin()->text(), "_publ_author_name");
    CifCheckSettings settings;
    settings.publication_items = {"_publ_author_name"};
    THandle<Cif> mandatory = CifDocumentCheck(THandle<CifDictionary>(), settings).run(text);
    EXPECT_EQ(findings_of(*mandatory), (Findings{{347, 1, 1}}));
    // The older contact-author item gives the name; ? in a text field is no
    // title; only the IUCr's journals use co-editor codes.
    const std::string elsewhere =
        "data_p\n_publ_requested_journal 'J. Alloys and Compounds'\n_publ_requested_category FA\n"
        "_publ_contact_author\n;\nA. Author, Freiburg\n;\n_publ_contact_author_email a@b.de\n"
        "_publ_section_title\n; ?\n;\nloop_\n_publ_author_name\n'Author, A.'\n";
    THandle<Cif> placeholder = checked(elsewhere);
    EXPECT_EQ(findings_of(*placeholder), (Findings{{384, 1, 0}}));
    EXPECT_EQ(placeholder->errors()->begin()->text(), "_publ_section_title");
    // Items given in any block count for the document, an empty block between
    // them too; the journal of a later block asks for its items.
    THandle<Cif> spread = checked(
        "data_a\n_publ_author_name 'A'\n_publ_contact_author_email a@b.de\ndata_e\n"
        "data_b\n_publ_requested_journal 'Acta Cryst. E'\n_publ_section_title T\n_publ_contact_author A\n");
    std::vector<std::string> missing;
    for (const CifError& error : *spread->errors())
        if (error.id() == CifError::publication_item_missing) missing.push_back(error.text());
    EXPECT_EQ(missing, (std::vector<std::string>{"_publ_requested_category", "_journal_coeditor_code"}));
    // A document that is not meant for publication is left alone.
    EXPECT_TRUE(checked("data_a\n_cell_length_a 5\n")->errors()->empty());
}

}  // namespace
