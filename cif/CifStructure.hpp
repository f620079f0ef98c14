// SPDX-License-Identifier: MIT
// A block's crystal structure: cell, sites, symmetry and the atom sets the 3-D view draws.
#pragma once

#include <array>
#include <gemmi/small.hpp>
#include <gemmi/symmetry.hpp>
#include <gemmi/unitcell.hpp>
#include <string>
#include <vector>

// What a site keeps besides gemmi's record of it.
struct CifSiteSource {
    int line = -1;                  // the 1-based line of its row in the atom-site loop
    std::string disorder_assembly;  // empty when the file gives none
    std::string disorder_group;     // empty when the file gives none ("." and "?" included)
    bool has_u_iso = false;         // an isotropic U (or B) was given
    bool has_aniso = false;         // anisotropic U (or B) were given
};

// One atom of a drawn set: a site moved by one of the symmetry operators and
// a lattice translation.
struct CifBuiltAtom {
    int site = 0;                // index into CifStructure::sites()
    int cell_atom = 0;           // which image of the site in the unit cell
    int op = 0;                  // index into CifStructure::operators()
    std::array<int, 3> shift{};  // lattice translation from that image in the cell
    gemmi::Fractional fract;
    gemmi::Position pos;  // Cartesian, in Angstrom
};

struct CifBond {
    int first = 0;  // indexes into the set's atoms
    int second = 0;
    double length = 0.0;
};

// Atoms with the bonds between them.
struct CifAtomSet {
    std::vector<CifBuiltAtom> atoms;
    std::vector<CifBond> bonds;
    // Growing met a network that extends without end (a framework, a
    // polymer): such parts are shown with their bonded neighbours only.
    bool extended = false;
};

// A bond the block lists (_geom_bond_*), between two sites.
struct CifListedBond {
    int first_site = 0;
    int second_site = 0;
    double distance = 0.0;  // 0 when the file gives none
};

// One site's image in the unit cell: coordinates wrapped into [0, 1).
struct CifCellAtom {
    int site = 0;
    int op = 0;
    std::array<int, 3> base{};  // the translation that wraps op(site) into the cell
    gemmi::Fractional fract;
};

class CifStructure {
public:
    const std::string& block_name() const { return block_name_; }

    // Empty when the structure could be built; otherwise why not ("no cell
    // parameters", "no atom coordinates").
    const std::string& reason() const { return reason_; }
    bool usable() const { return reason_.empty(); }
    // Problems that did not stop the building (rows left out, symmetry assumed).
    const std::vector<std::string>& notes() const { return notes_; }

    const gemmi::UnitCell& cell() const { return small_.cell; }
    const gemmi::SmallStructure& small() const { return small_; }
    const std::vector<gemmi::SmallStructure::Site>& sites() const { return small_.sites; }
    const CifSiteSource& source(int site) const { return sources_[static_cast<std::size_t>(site)]; }
    // All symmetry operators, centring included; the first is x,y,z.
    const std::vector<gemmi::Op>& operators() const { return operators_; }
    // Where the symmetry came from: "operators", "Hall symbol", a space-group symbol or number, "none".
    const std::string& symmetry_source() const { return symmetry_source_; }
    const std::vector<CifCellAtom>& cell_atoms() const { return cell_atoms_; }
    const std::vector<CifListedBond>& listed_bonds() const { return listed_bonds_; }

    const CifAtomSet& asymmetric_unit() const { return asymmetric_unit_; }
    const CifAtomSet& grown() const { return grown_; }
    const CifAtomSet& packed_cell() const { return packed_cell_; }

    // The displacement tensor of an atom in Cartesian axes (Angstrom^2):
    // the anisotropic one turned by the atom's operator, U iso times the
    // unit matrix, or zero when the file gives neither.
    gemmi::SMat33<double> displacement(const CifBuiltAtom& atom) const;
    // The operator that takes the site to the atom, as "-x+1,-y,-z".
    std::string symmetry_code(const CifBuiltAtom& atom) const;
    // The disorder groups of the sites, as "assembly:group" (":group" without an assembly), sorted.
    std::vector<std::string> disorder_groups() const;
    static std::string disorder_key(const CifSiteSource& source);

    // Bonds are drawn between atoms closer than the sum of their covalent
    // radii and this tolerance.
    static constexpr double bond_tolerance = 0.4;

private:
    friend class CifStructureReader;
    friend class CifStructureBuilder;

    std::string block_name_;
    std::string reason_;
    std::vector<std::string> notes_;
    gemmi::SmallStructure small_;
    std::vector<CifSiteSource> sources_;
    std::vector<gemmi::SMat33<double>> u_cartesian_;  // per site
    std::vector<gemmi::Op> operators_;
    std::string symmetry_source_ = "none";
    std::vector<CifCellAtom> cell_atoms_;
    std::vector<CifListedBond> listed_bonds_;
    CifAtomSet asymmetric_unit_;
    CifAtomSet grown_;
    CifAtomSet packed_cell_;
};
