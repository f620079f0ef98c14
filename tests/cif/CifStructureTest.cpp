// SPDX-License-Identifier: MIT
// Structures built from blocks: cells, symmetry, molecules, packing, bonds, displacements.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "cif/Cif.hpp"
#include "cif/CifDatabase.hpp"
#include "cif/CifDisplacement.hpp"
#include "cif/CifStructureBuilder.hpp"
#include "cif/CifStructureReader.hpp"

namespace {

const char* const crystals = "/usr/share/avogadro2/crystals/";

THandle<Cif> read_text(const std::string& text) {
    THandle<Cif> cif(new Cif());
    cif->read_text(text);
    return cif;
}

// The structure of the first block of a text.
THandle<CifStructure> build(const std::string& text) {
    CifDatabase database(read_text(text));
    return database.entry(0);
}

std::string file_text(const std::string& path) {
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

using LabelPairs = std::set<std::pair<std::string, std::string>>;

LabelPairs bonds_by_label(const CifStructure& structure, const CifAtomSet& set) {
    LabelPairs pairs;
    for (const CifBond& bond : set.bonds) {
        std::string a = structure.sites()[static_cast<std::size_t>(set.atoms[bond.first].site)].label;
        std::string b = structure.sites()[static_cast<std::size_t>(set.atoms[bond.second].site)].label;
        pairs.insert(std::minmax(a, b));
    }
    return pairs;
}

// Atoms of the packed cell that are not copies on the far faces.
int cell_content(const CifAtomSet& packed) {
    return static_cast<int>(
        std::count_if(packed.atoms.begin(), packed.atoms.end(), [](const CifBuiltAtom& atom) {
            return atom.shift == std::array<int, 3>{0, 0, 0};
        }));
}

// A cubic cell of 10 Angstrom with the given symmetry lines and atom rows (label x y z).
std::string cubic_block(const std::string& symmetry, const std::string& rows, const std::string& extra = "") {
    return "data_test\n_cell_length_a 10\n_cell_length_b 10\n_cell_length_c 10\n"
           "_cell_angle_alpha 90\n_cell_angle_beta 90\n_cell_angle_gamma 90\n" +
           symmetry +
           "loop_\n_atom_site_label\n_atom_site_fract_x\n_atom_site_fract_y\n_atom_site_fract_z\n" + rows +
           extra;
}

struct KnownCrystal {
    const char* file;
    int sites;
    int formula_atoms;  // atoms of one formula unit (or molecule)
    int z;              // formula units in the cell
    int grown_atoms;    // a whole molecule, or an atom of a network with its neighbours
    int grown_bonds;
    bool network;
};

TEST(CifStructure, KnownCrystalsGrowWholeMoleculesAndPackTheirFormulaUnits) {
    const KnownCrystal table[] = {
        // Fe on an inversion centre: the half molecule of the file grows to C10H10Fe,
        // with ten Fe-C, ten C-C and ten C-H bonds.
        {"other/C10H10Fe-Ferrocene.cif", 11, 21, 2, 21, 30, false},
        // S8 rings on two-fold axes: half a ring in the file, sixteen rings in the cell.
        {"elements/S8-Sulfur-alpha.cif", 4, 8, 16, 8, 8, false},
        // Rock salt: every ion has six neighbours of the other kind.
        {"halides/NaCl-Halite.cif", 2, 2, 4, 14, 12 + 6, true},
        // Quartz: SiO4 tetrahedra sharing corners; Si with its four O, O with its two Si.
        {"oxides/SiO2-Quartz-alpha.cif", 2, 3, 3, 6, 5, true},
        {"elements/C-Diamond.cif", 1, 1, 8, 5, 4, true},
    };
    for (const KnownCrystal& known : table) {
        const std::string path = std::string(crystals) + known.file;
        if (!std::filesystem::exists(path)) {
            GTEST_SKIP() << path << " is missing (Debian package libavogadro-data)";
        }
        SCOPED_TRACE(known.file);
        THandle<CifStructure> structure = build(file_text(path));
        ASSERT_TRUE(structure->usable()) << structure->reason();
        EXPECT_EQ(static_cast<int>(structure->sites().size()), known.sites);
        EXPECT_EQ(static_cast<int>(structure->asymmetric_unit().atoms.size()), known.sites);
        EXPECT_EQ(cell_content(structure->packed_cell()), known.z * known.formula_atoms);
        EXPECT_EQ(static_cast<int>(structure->grown().atoms.size()), known.grown_atoms);
        EXPECT_EQ(static_cast<int>(structure->grown().bonds.size()), known.grown_bonds);
        EXPECT_EQ(structure->grown().extended, known.network);
        for (const CifBuiltAtom& atom : structure->packed_cell().atoms) {
            for (int i = 0; i < 3; ++i) {
                EXPECT_GE(atom.fract.at(i), 0.0);
                EXPECT_LE(atom.fract.at(i), 1.001);  // faces within the rounding of the file's coordinates
            }
        }
    }
}

TEST(CifStructure, AtomsOnFacesOfTheCellAreShownOnEveryFace) {
    const std::string path = std::string(crystals) + "halides/NaCl-Halite.cif";
    if (!std::filesystem::exists(path))
        GTEST_SKIP() << path << " is missing (Debian package libavogadro-data)";
    THandle<CifStructure> structure = build(file_text(path));
    // Na at the corners and face centres: 8 + 6; Cl at the edge centres and the body centre: 12 + 1.
    int sodium = 0, chlorine = 0;
    for (const CifBuiltAtom& atom : structure->packed_cell().atoms)
        (structure->sites()[static_cast<std::size_t>(atom.site)].element == gemmi::El::Na ? sodium
                                                                                          : chlorine)++;
    EXPECT_EQ(sodium, 14);
    EXPECT_EQ(chlorine, 13);
    // The 27 ions form a 3 x 3 x 3 grid of spacing a/2 = 2.82 Angstrom; neighbours along
    // each axis are bonded: 3 axes x 2 steps x 3 x 3 rows.
    EXPECT_EQ(structure->packed_cell().bonds.size(), 54u);
}

TEST(CifStructure, BlocksWithoutCellOrCoordinatesSayWhy) {
    const struct {
        const char* text;
        const char* reason;
    } table[] = {
        {"data_a\nloop_\n_atom_site_label\n_atom_site_fract_x\n_atom_site_fract_y\n_atom_site_fract_z\n"
         "C1 0 0 0\n",
         "no cell parameters"},
        {"data_a\n_cell_length_a 10\n_cell_length_b ?\n_cell_length_c 10\n", "no cell parameters"},
        {"data_a\n_cell_length_a 10\n_cell_length_b 10\n_cell_length_c 10\n", "no atom coordinates"},
        {"data_a\n_cell_length_a 10\n_cell_length_b 10\n_cell_length_c 10\nloop_\n_atom_site_label\n"
         "_atom_site_fract_x\n_atom_site_fract_y\n_atom_site_fract_z\nC1 ? 0 0\nC2 0.1 . 0\n",
         "no atom coordinates"},
        {"data_a\n_cell_length_a 10\n_cell_length_b 10\n_cell_length_c 10\n_cell_angle_alpha 10\n"
         "_cell_angle_beta 10\n_cell_angle_gamma 170\nloop_\n_atom_site_label\n_atom_site_fract_x\n"
         "_atom_site_fract_y\n_atom_site_fract_z\nC1 0 0 0\n",
         "the cell parameters describe no cell"},
    };
    for (const auto& row : table) {
        THandle<CifStructure> structure = build(row.text);
        ASSERT_FALSE(structure.is_null()) << row.text;
        EXPECT_FALSE(structure->usable()) << row.text;
        EXPECT_EQ(structure->reason(), row.reason) << row.text;
        EXPECT_TRUE(structure->packed_cell().atoms.empty());
    }
    // Rows without coordinates are left out of a structure that has others, and said so.
    THandle<CifStructure> partial = build(cubic_block("", "C1 0.1 0.1 0.1\nC2 ? 0 0\n"));
    ASSERT_TRUE(partial->usable());
    EXPECT_EQ(partial->sites().size(), 1u);
    EXPECT_FALSE(partial->notes().empty());
}

TEST(CifStructure, SymmetryComesFromOperatorsOrFromTheSpaceGroup) {
    // One atom in a general position of P 21/c: four atoms in the cell, whatever names the group.
    const std::string atom = "C1 0.1234 0.2345 0.3456\n";
    const struct {
        const char* symmetry;
        const char* source;
    } table[] = {
        {"loop_\n_space_group_symop_operation_xyz\nx,y,z\n-x,y+1/2,-z+1/2\n-x,-y,-z\nx,-y-1/2,z-1/2\n",
         "operators"},
        {"loop_\n_symmetry_equiv_pos_as_xyz\n'x, y, z'\n'-x, 1/2+y, 1/2-z'\n'-x, -y, -z'\n'x, 1/2-y, "
         "1/2+z'\n",
         "operators"},
        {"_symmetry_space_group_name_Hall '-P 2ybc'\n", "Hall symbol -P 2ybc"},
        {"_symmetry_space_group_name_H-M 'P 21/c'\n", "space group P 1 21/c 1"},
        {"_space_group_name_H-M_alt 'P 1 21/c 1'\n", "space group P 1 21/c 1"},
        {"_space_group_IT_number 14\n", "space group P 1 21/c 1"},
        // Unreadable operators: the symbol given beside them serves.
        {"_symmetry_space_group_name_H-M 'P 21/c'\nloop_\n_symmetry_equiv_pos_as_xyz\nx,y,z\n-x,y+1/2,q\n",
         "space group P 1 21/c 1"},
    };
    for (const auto& row : table) {
        THandle<CifStructure> structure = build(cubic_block(row.symmetry, atom));
        ASSERT_TRUE(structure->usable()) << row.symmetry;
        EXPECT_EQ(structure->symmetry_source(), row.source) << row.symmetry;
        EXPECT_EQ(structure->operators().size(), 4u) << row.symmetry;
        EXPECT_EQ(structure->operators()[0], gemmi::Op::identity()) << row.symmetry;
        EXPECT_EQ(cell_content(structure->packed_cell()), 4) << row.symmetry;
    }
    THandle<CifStructure> bare = build(cubic_block("", atom));
    EXPECT_EQ(bare->symmetry_source(), "none");
    EXPECT_EQ(cell_content(bare->packed_cell()), 1);
    EXPECT_FALSE(bare->notes().empty());
}

TEST(CifStructure, AtomsKnowTheirSiteTheirRowsLineAndTheirSymmetry) {
    const std::string text = cubic_block("loop_\n_symmetry_equiv_pos_as_xyz\nx,y,z\n-x,-y,-z\n",
                                         "C1 0.05 0.02 0.01\nC2 0.15 0.03 0.02\n\nO1 0.3 0.3 0.3\n");
    THandle<CifStructure> structure = build(text);
    ASSERT_TRUE(structure->usable());
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    for (const CifAtomSet* set :
         {&structure->asymmetric_unit(), &structure->grown(), &structure->packed_cell()}) {
        for (const CifBuiltAtom& atom : set->atoms) {
            const std::string& label = structure->sites()[static_cast<std::size_t>(atom.site)].label;
            const int line = structure->source(atom.site).line;
            ASSERT_GE(line, 1);
            EXPECT_EQ(lines[static_cast<std::size_t>(line - 1)].rfind(label + " ", 0), 0u) << label;
            // The operator and shift recorded take the site to the atom.
            gemmi::Op op = gemmi::parse_triplet(structure->symmetry_code(atom));
            const gemmi::Fractional& f = structure->sites()[static_cast<std::size_t>(atom.site)].fract;
            const std::array<double, 3> moved = op.apply_to_xyz({f.x, f.y, f.z});
            for (int i = 0; i < 3; ++i)
                EXPECT_NEAR(moved[static_cast<std::size_t>(i)], atom.fract.at(i), 1e-9);
        }
    }
    // C1 and C2 (1.0 Angstrom apart) with C1's inversion image (1.1 Angstrom away) make one
    // molecule of four carbon atoms about the centre; O1 stays alone.
    EXPECT_EQ(structure->grown().atoms.size(), 5u);
    EXPECT_EQ(structure->symmetry_code(structure->asymmetric_unit().atoms[0]), "x,y,z");
}

TEST(CifStructure, BondsFollowRadiiDisorderAndTheBlocksOwnList) {
    const std::string disorder_columns =
        "loop_\n_atom_site_label\n_atom_site_fract_x\n_atom_site_fract_y\n_atom_site_fract_z\n"
        "_atom_site_disorder_assembly\n_atom_site_disorder_group\n";
    const std::string cell =
        "data_test\n_cell_length_a 10\n_cell_length_b 10\n_cell_length_c 10\n"
        "loop_\n_symmetry_equiv_pos_as_xyz\nx,y,z\n-x,-y,-z\n";
    const struct {
        const char* what;
        std::string text;
        LabelPairs bonds;  // of the asymmetric unit, or of the grown molecule when grown is set
        bool grown;
    } table[] = {
        {"radii: C-C at 1.5, C-H at 1.0, C...C at 2.5 and H...H at 0.74 are no bonds",
         cubic_block("", "C1 0 0 0\nC2 0.15 0 0\nC3 0.4 0 0\nH1 0 0.1 0\nH2 0 0.1 0.074\n"),
         {{"C1", "C2"}, {"C1", "H1"}, {"C1", "H2"}},
         false},
        {"alternative parts of one assembly are never bonded to each other",
         cell + disorder_columns + "C1 0.3 0.3 0.3 . .\nC2A 0.45 0.3 0.3 A 1\nC2B 0.44 0.35 0.3 A 2\n",
         {{"C1", "C2A"}, {"C1", "C2B"}},
         false},
        {"a negative group is not bonded to its own symmetry image",
         cell + disorder_columns + "C3 0.03 0 0 . -1\n",
         {},
         true},
        {"the same group without the sign is",
         cell + disorder_columns + "C3 0.03 0 0 . 1\n",
         {{"C3", "C3"}},
         true},
        {"a listed bond is drawn at its length, an unlisted pair of listed sites is not; "
         "sites the list never names follow radii",
         cubic_block(
             "", "C1 0 0 0\nC2 0.15 0 0\nC3 0.3 0 0\nH1 0 0.1 0\n",
             "loop_\n_geom_bond_atom_site_label_1\n_geom_bond_atom_site_label_2\n_geom_bond_distance\n"
             "C1 C2 1.500(3)\nC3 C1 3.000(4)\n"),
         {{"C1", "C2"}, {"C1", "C3"}, {"C1", "H1"}},
         false},
    };
    for (const auto& row : table) {
        SCOPED_TRACE(row.what);
        THandle<CifStructure> structure = build(row.text);
        ASSERT_TRUE(structure->usable()) << structure->reason();
        const CifAtomSet& set = row.grown ? structure->grown() : structure->asymmetric_unit();
        EXPECT_EQ(bonds_by_label(*structure, set), row.bonds);
    }
}

TEST(CifStructure, ElementsComeFromTypeSymbolsOrLabels) {
    const struct {
        const char* text;
        bool type_symbol;
        gemmi::El element;
    } table[] = {
        {"Fe3+", true, gemmi::El::Fe},  {"O2-", true, gemmi::El::O},   {"Cl", true, gemmi::El::Cl},
        {"CA", true, gemmi::El::Ca},    {"Ow", true, gemmi::El::O},    {"?", true, gemmi::El::X},
        {"C11", false, gemmi::El::C},   {"Cl2", false, gemmi::El::Cl}, {"CA1", false, gemmi::El::C},
        {"H(4A)", false, gemmi::El::H}, {"Fe", false, gemmi::El::Fe},  {"Xx1", false, gemmi::El::X},
        {"D1", false, gemmi::El::D},
    };
    for (const auto& row : table)
        EXPECT_EQ(cif_element_of(row.text, row.type_symbol).elem, row.element) << row.text;
    // The type symbol wins over the label.
    THandle<CifStructure> structure = build(
        "data_t\n_cell_length_a 5\n_cell_length_b 5\n_cell_length_c 5\nloop_\n_atom_site_label\n"
        "_atom_site_type_symbol\n_atom_site_fract_x\n_atom_site_fract_y\n_atom_site_fract_z\nCA1 Ca2+ 0 0 "
        "0\n");
    ASSERT_TRUE(structure->usable()) << structure->reason();
    EXPECT_EQ(structure->sites()[0].element.elem, gemmi::El::Ca);
}

TEST(CifStructure, DisplacementEllipsoidsTurnWithTheirAtoms) {
    // Ellipsoid axes of a diagonal tensor: 1.5382 root-mean-square displacements, longest first.
    const CifEllipsoid plain = cif_ellipsoid({0.0025, 0.04, 0.01, 0, 0, 0});
    EXPECT_TRUE(plain.positive_definite);
    EXPECT_NEAR(plain.semi_axes[0], 1.5382 * 0.2, 1e-9);
    EXPECT_NEAR(plain.semi_axes[1], 1.5382 * 0.1, 1e-9);
    EXPECT_NEAR(plain.semi_axes[2], 1.5382 * 0.05, 1e-9);
    EXPECT_NEAR(std::fabs(plain.directions[0].y), 1.0, 1e-9);
    EXPECT_FALSE(cif_ellipsoid({0.01, -0.01, 0.01, 0, 0, 0}).positive_definite);
    // Equal eigenvalues still give three orthogonal axes.
    const CifEllipsoid round = cif_ellipsoid({0.02, 0.02, 0.02, 0.0, 0.0, 0.0});
    EXPECT_NEAR(round.directions[0].dot(round.directions[1]), 0.0, 1e-9);
    // A tilted tensor: the axes diagonalise it.
    const gemmi::SMat33<double> tilted{0.03, 0.02, 0.01, 0.005, -0.002, 0.004};
    const CifEllipsoid axes = cif_ellipsoid(tilted, 1.0);
    for (int i = 0; i < 3; ++i) {
        const gemmi::Vec3& d = axes.directions[static_cast<std::size_t>(i)];
        const double along = axes.semi_axes[static_cast<std::size_t>(i)];
        EXPECT_NEAR((tilted.multiply(d) - d * (along * along)).length(), 0.0, 1e-9);
    }

    // The trace of the Cartesian tensor is three times U(eq) of the file's tensor.
    gemmi::UnitCell monoclinic(7.1, 9.3, 11.2, 90, 104.5, 90);
    const gemmi::SMat33<double> u_cif{0.031, 0.027, 0.044, 0.004, 0.012, -0.003};
    EXPECT_NEAR(cif_u_cartesian(monoclinic, u_cif).trace() / 3, monoclinic.calculate_u_eq(u_cif), 1e-12);

    // A four-fold axis along c turns an ellipsoid elongated along a into one along b.
    const std::string text =
        "data_t\n_cell_length_a 8\n_cell_length_b 8\n_cell_length_c 6\n_cell_angle_alpha 90\n"
        "_cell_angle_beta 90\n_cell_angle_gamma "
        "90\nloop_\n_symmetry_equiv_pos_as_xyz\nx,y,z\n-y,x,z\n-x,-y,z\n"
        "y,-x,z\nloop_\n_atom_site_label\n_atom_site_fract_x\n_atom_site_fract_y\n_atom_site_fract_z\n"
        "_atom_site_U_iso_or_equiv\nS1 0.3 0.1 0.2 "
        "0.03\nloop_\n_atom_site_aniso_label\n_atom_site_aniso_U_11\n"
        "_atom_site_aniso_U_22\n_atom_site_aniso_U_33\n_atom_site_aniso_U_12\n_atom_site_aniso_U_13\n"
        "_atom_site_aniso_U_23\nS1 0.08 0.01 0.01 0 0 0\n";
    THandle<CifStructure> structure = build(text);
    ASSERT_TRUE(structure->usable()) << structure->reason();
    ASSERT_TRUE(structure->source(0).has_aniso);
    int along_a = 0, along_b = 0;
    for (const CifBuiltAtom& atom : structure->packed_cell().atoms) {
        const CifEllipsoid e = cif_ellipsoid(structure->displacement(atom));
        EXPECT_NEAR(e.semi_axes[0], 1.5382 * std::sqrt(0.08), 1e-9);
        along_a += std::fabs(e.directions[0].x) > 0.999;
        along_b += std::fabs(e.directions[0].y) > 0.999;
    }
    EXPECT_EQ(along_a, 2);
    EXPECT_EQ(along_b, 2);
}

TEST(CifDatabase, ListsTheBlocksThatDescribeStructures) {
    const std::string text = "data_global\n_publ_section_title 'A study'\n" + cubic_block("", "C1 0 0 0\n") +
                             "data_empty\n_cell_length_a 5\n_cell_length_b 5\n_cell_length_c 5\n";
    THandle<Cif> cif = read_text(text);
    CifDatabase database(cif);
    ASSERT_EQ(database.size(), 2);
    EXPECT_EQ(database.block_name(0), "test");
    EXPECT_EQ(database.block_name(1), "empty");
    EXPECT_EQ(database.block_name(2), "");
    EXPECT_EQ(database.index_of("data_EMPTY"), 1);
    EXPECT_EQ(database.index_of("global"), -1);
    EXPECT_EQ(database.index_at_line(1), -1);  // the publication block
    EXPECT_EQ(database.index_at_line(5), 0);
    EXPECT_EQ(database.index_at_line(18), 1);
    EXPECT_TRUE(database.entry(-1).is_null());
    EXPECT_TRUE(database.entry(2).is_null());

    EXPECT_TRUE(database.entry(0)->usable());
    EXPECT_EQ(database.errors(), std::vector<std::string>{"test: no symmetry given: P 1 assumed"});
    database.clear_errors();
    THandle<CifStructure> empty = database.entry(1);
    EXPECT_EQ(empty->reason(), "no atom coordinates");
    ASSERT_FALSE(database.errors().empty());
    EXPECT_EQ(database.errors().front(), "empty: no atom coordinates");
    // Built once: the same structure comes back, without a second message.
    const std::size_t messages = database.errors().size();
    EXPECT_EQ(database.entry(1), empty);
    EXPECT_EQ(database.errors().size(), messages);
    database.clear_errors();
    EXPECT_TRUE(database.errors().empty());

    CifDatabase nothing{THandle<Cif>()};
    EXPECT_EQ(nothing.size(), 0);
}

}  // namespace
