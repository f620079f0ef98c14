// SPDX-License-Identifier: MIT
// Builds a structure's asymmetric unit, whole molecules and one packed unit cell.
#include "cif/CifStructureBuilder.hpp"

#include <cmath>
#include <deque>
#include <unordered_set>

#include "cif/CifStructureReader.hpp"

namespace {

// Images of one site closer than this are one atom on a special position.
constexpr double same_place = 0.05;
// Coordinates this close to 0 count as on the cell's face (and get a copy on the opposite one).
constexpr double on_face = 1e-4;

double wrapped(double x) {
    double w = x - std::floor(x);
    if (w < 1e-9 || w > 1.0 - 1e-9) w = 0.0;
    return w;
}

}  // namespace

THandle<CifStructure> CifStructureBuilder::build(const CifDataBlock& block, const CifLineIndex* lines) {
    THandle<CifStructure> structure(new CifStructure);
    CifStructureReader(block, lines).read(*structure);
    if (!structure->usable()) return structure;
    make_cell_atoms(*structure);
    CifStructureBuilder builder(*structure);
    builder.build_asymmetric_unit();
    builder.grow();
    builder.pack();
    return structure;
}

CifStructureBuilder::CifStructureBuilder(CifStructure& structure)
    : structure_(structure),
      rule_(structure),
      search_(structure.cell(), structure.cell_atoms_, rule_.longest_reach()),
      first_image_(structure.sites().size(), -1) {
    for (std::size_t n = 0; n < structure.cell_atoms_.size(); ++n) {
        const CifCellAtom& image = structure.cell_atoms_[n];
        if (image.op == 0 && first_image_[static_cast<std::size_t>(image.site)] < 0)
            first_image_[static_cast<std::size_t>(image.site)] = static_cast<int>(n);
    }
}

void CifStructureBuilder::make_cell_atoms(CifStructure& structure) {
    const gemmi::UnitCell& cell = structure.cell();
    std::vector<CifCellAtom>& atoms = structure.cell_atoms_;
    for (std::size_t s = 0; s < structure.sites().size(); ++s) {
        const gemmi::Fractional& f = structure.sites()[s].fract;
        const std::size_t first = atoms.size();
        for (std::size_t k = 0; k < structure.operators().size(); ++k) {
            const gemmi::Op& op = structure.operators()[k];
            const std::array<double, 3> moved = op.apply_to_xyz({f.x, f.y, f.z});
            CifCellAtom image;
            image.site = static_cast<int>(s);
            image.op = static_cast<int>(k);
            image.fract = gemmi::Fractional(wrapped(moved[0]), wrapped(moved[1]), wrapped(moved[2]));
            for (int i = 0; i < 3; ++i)
                image.base[static_cast<std::size_t>(i)] =
                    static_cast<int>(std::lround(image.fract.at(i) - moved[static_cast<std::size_t>(i)]));
            bool seen = false;
            for (std::size_t n = first; n < atoms.size() && !seen; ++n) {
                const gemmi::Fractional delta = (image.fract - atoms[n].fract).wrap_to_zero();
                seen = cell.orthogonalize_difference(delta).length() < same_place;
            }
            if (!seen) atoms.push_back(image);
        }
    }
}

CifStructureBuilder::Key CifStructureBuilder::key(int cell_atom, const std::array<int, 3>& shift) {
    Key k = static_cast<Key>(static_cast<std::uint32_t>(cell_atom)) << 30;
    for (int i = 0; i < 3; ++i)
        k |= static_cast<Key>((shift[static_cast<std::size_t>(i)] + 512) & 1023) << (10 * i);
    return k;
}

CifBuiltAtom CifStructureBuilder::atom(int cell_atom, const std::array<int, 3>& shift) const {
    const CifCellAtom& image = structure_.cell_atoms_[static_cast<std::size_t>(cell_atom)];
    CifBuiltAtom result;
    result.site = image.site;
    result.cell_atom = cell_atom;
    result.op = image.op;
    result.shift = shift;
    result.fract =
        gemmi::Fractional(image.fract.x + shift[0], image.fract.y + shift[1], image.fract.z + shift[2]);
    result.pos = structure_.cell().orthogonalize(result.fract);
    return result;
}

CifBuiltAtom CifStructureBuilder::site_atom(int site) const {
    const int image = first_image_[static_cast<std::size_t>(site)];
    const std::array<int, 3>& base = structure_.cell_atoms_[static_cast<std::size_t>(image)].base;
    return atom(image, {-base[0], -base[1], -base[2]});
}

template <typename Visit>
void CifStructureBuilder::for_each_bonded(const CifBuiltAtom& from, Visit&& visit) const {
    search_.for_each_near(from.fract, rule_.reach(from.site),
                          [&](int cell_atom, const std::array<int, 3>& shift, double distance) {
                              const CifBuiltAtom other = atom(cell_atom, shift);
                              if (rule_.bonded(from, other, distance)) visit(other, distance);
                          });
}

void CifStructureBuilder::build_asymmetric_unit() {
    CifAtomSet& set = structure_.asymmetric_unit_;
    for (std::size_t s = 0; s < structure_.sites().size(); ++s)
        set.atoms.push_back(site_atom(static_cast<int>(s)));
    connect(set);
}

// Each site not yet placed starts a breadth-first walk along bonds. A walk
// that meets one cell atom under two lattice shifts is on a network without
// end (a finite molecule never holds two translates of one atom), so it
// stops at once; since such a walk meets a repeat after at most one cell's
// worth of atoms, every walk is short. Networks are shown as their sites'
// atoms with the atoms bonded to them.
void CifStructureBuilder::grow() {
    CifAtomSet& set = structure_.grown_;
    const std::size_t sites = structure_.sites().size();
    std::vector<bool> placed(sites, false);
    std::vector<bool> in_network(sites, false);
    std::unordered_set<Key> members;
    for (std::size_t s = 0; s < sites; ++s) {
        if (placed[s]) continue;
        std::vector<CifBuiltAtom> molecule{site_atom(static_cast<int>(s))};
        std::unordered_map<int, std::array<int, 3>> shift_of{{molecule[0].cell_atom, molecule[0].shift}};
        bool endless = false;
        for (std::size_t next = 0; next < molecule.size() && !endless; ++next) {
            const CifBuiltAtom from = molecule[next];
            for_each_bonded(from, [&](const CifBuiltAtom& other, double) {
                if (endless) return;
                auto [it, fresh] = shift_of.emplace(other.cell_atom, other.shift);
                if (!fresh) {
                    endless = it->second != other.shift;
                    return;
                }
                molecule.push_back(other);
            });
        }
        for (const CifBuiltAtom& member : molecule) {
            placed[static_cast<std::size_t>(member.site)] = true;
            if (endless) in_network[static_cast<std::size_t>(member.site)] = true;
        }
        if (endless) continue;
        for (const CifBuiltAtom& member : molecule) {
            if (members.insert(key(member.cell_atom, member.shift)).second) set.atoms.push_back(member);
        }
    }
    for (std::size_t s = 0; s < sites; ++s) {
        if (!in_network[s]) continue;
        set.extended = true;
        const CifBuiltAtom own = site_atom(static_cast<int>(s));
        if (members.insert(key(own.cell_atom, own.shift)).second) set.atoms.push_back(own);
        for_each_bonded(own, [&](const CifBuiltAtom& other, double) {
            if (members.insert(key(other.cell_atom, other.shift)).second) set.atoms.push_back(other);
        });
    }
    connect(set);
}

void CifStructureBuilder::pack() {
    CifAtomSet& set = structure_.packed_cell_;
    for (std::size_t n = 0; n < structure_.cell_atoms_.size(); ++n) {
        const gemmi::Fractional& f = structure_.cell_atoms_[n].fract;
        // Atoms on faces, edges and corners are shown on each of them.
        const bool face[3] = {f.x < on_face, f.y < on_face, f.z < on_face};
        for (int copy = 0; copy < 8; ++copy) {
            bool wanted = true;
            std::array<int, 3> shift{};
            for (int i = 0; i < 3; ++i) {
                if ((copy >> i) & 1) {
                    wanted = wanted && face[i];
                    shift[static_cast<std::size_t>(i)] = 1;
                }
            }
            if (wanted) set.atoms.push_back(atom(static_cast<int>(n), shift));
        }
    }
    connect(set);
}

void CifStructureBuilder::connect(CifAtomSet& set) const {
    std::unordered_map<Key, int> index;
    index.reserve(set.atoms.size() * 2);
    for (std::size_t i = 0; i < set.atoms.size(); ++i)
        index.emplace(key(set.atoms[i].cell_atom, set.atoms[i].shift), static_cast<int>(i));
    for (std::size_t i = 0; i < set.atoms.size(); ++i) {
        for_each_bonded(set.atoms[i], [&](const CifBuiltAtom& other, double distance) {
            auto found = index.find(key(other.cell_atom, other.shift));
            if (found != index.end() && found->second > static_cast<int>(i))
                set.bonds.push_back({static_cast<int>(i), found->second, distance});
        });
    }
}
