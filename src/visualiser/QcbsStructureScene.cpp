// SPDX-License-Identifier: GPL-3.0-or-later
// What the 3-D view draws: atoms, ellipsoids, bonds, rings, the cell box, labels.
#include "visualiser/QcbsStructureScene.hpp"

#include <algorithm>
#include <cmath>

#include "cif/CifDisplacement.hpp"
#include "visualiser/QcbsElementColours.hpp"

namespace {

// Beyond this many atoms, each site is labelled once instead of every atom.
constexpr std::size_t label_every_atom_up_to = 400;
// Hydrogen atoms among ellipsoids are drawn as small spheres of this radius.
constexpr float hydrogen_radius = 0.12f;
// Atoms without a displacement among ellipsoids.
constexpr float plain_radius = 0.25f;

void setColour(float* out, const QColor& colour) {
    out[0] = float(colour.redF());
    out[1] = float(colour.greenF());
    out[2] = float(colour.blueF());
    out[3] = float(colour.alphaF());
}

QVector3D vector(const gemmi::Vec3& v) { return QVector3D(float(v.x), float(v.y), float(v.z)); }

// An instance drawing the unit mesh through the matrix of columns c0, c1, c2.
QcbsMeshInstance instance(const QVector3D& centre, const QVector3D& c0, const QVector3D& c1,
                          const QVector3D& c2, const QColor& colour) {
    QcbsMeshInstance result;
    const QVector3D columns[3] = {c0, c1, c2};
    // The inverse transpose has the columns c1 x c2, c2 x c0, c0 x c1 over the determinant.
    const QVector3D normals[3] = {QVector3D::crossProduct(c1, c2), QVector3D::crossProduct(c2, c0),
                                  QVector3D::crossProduct(c0, c1)};
    float determinant = QVector3D::dotProduct(c0, normals[0]);
    if (std::fabs(determinant) < 1e-12f) determinant = 1e-12f;
    for (int i = 0; i < 3; ++i) {
        result.centre[i] = centre[i];
        for (int j = 0; j < 3; ++j) {
            result.axes[3 * i + j] = columns[i][j];
            result.normals[3 * i + j] = normals[i][j] / determinant;
        }
    }
    setColour(result.colour, colour);
    return result;
}

int atomicNumber(gemmi::Element element) {
    if (element.is_hydrogen()) return 1;
    return element.atomic_number();
}

void addLine(std::vector<QcbsLineVertex>& lines, const QVector3D& from, const QVector3D& to,
             const QColor& colour) {
    for (const QVector3D& point : {from, to}) {
        QcbsLineVertex vertex;
        for (int i = 0; i < 3; ++i) vertex.position[i] = point[i];
        setColour(vertex.colour, colour);
        lines.push_back(vertex);
    }
}

}  // namespace

const CifAtomSet& QcbsStructureScene::atomSet(const CifStructure& structure,
                                              QcbsSceneOptions::Contents contents) {
    switch (contents) {
        case QcbsSceneOptions::AsymmetricUnit:
            return structure.asymmetric_unit();
        case QcbsSceneOptions::UnitCell:
            return structure.packed_cell();
        case QcbsSceneOptions::Molecules:
            break;
    }
    return structure.grown();
}

bool QcbsStructureScene::shown(const CifStructure& structure, const CifBuiltAtom& atom,
                               const QcbsSceneOptions& options) {
    const gemmi::SmallStructure::Site& site = structure.sites()[static_cast<std::size_t>(atom.site)];
    if (!options.hydrogens && site.element.is_hydrogen()) return false;
    if (options.hiddenGroups.isEmpty()) return true;
    const std::string key = CifStructure::disorder_key(structure.source(atom.site));
    return key.empty() || !options.hiddenGroups.contains(QString::fromStdString(key));
}

void QcbsStructureScene::clear() {
    spheres_.clear();
    bonds_.clear();
    rings_.clear();
    lines_.clear();
    atoms_.clear();
    labelled_.clear();
    axisEnds_.clear();
    centre_ = QVector3D();
    radius_ = 1.0f;
}

void QcbsStructureScene::build(const CifStructure& structure, const QcbsSceneOptions& options,
                               const std::vector<int>& highlighted) {
    clear();
    if (!structure.usable()) return;
    const CifAtomSet& set = atomSet(structure, options.contents);
    std::vector<int> place(set.atoms.size(), -1);  // index in atoms_ of each atom of the set
    for (std::size_t i = 0; i < set.atoms.size(); ++i) {
        if (!shown(structure, set.atoms[i], options)) continue;
        place[i] = static_cast<int>(atoms_.size());
        const bool marked = std::find(highlighted.begin(), highlighted.end(), int(i)) != highlighted.end();
        addAtom(structure, set.atoms[i], static_cast<int>(i), options, marked);
    }
    if (options.style != QcbsSceneOptions::SpaceFilling) {
        const float radius = options.style == QcbsSceneOptions::Sticks       ? 0.15f
                             : options.style == QcbsSceneOptions::Ellipsoids ? 0.06f
                                                                             : 0.09f;
        for (const CifBond& bond : set.bonds) {
            const int a = place[static_cast<std::size_t>(bond.first)];
            const int b = place[static_cast<std::size_t>(bond.second)];
            if (a < 0 || b < 0) continue;
            const auto colourOf = [&](int n) {
                const CifBuiltAtom& atom = set.atoms[static_cast<std::size_t>(n)];
                return elementColour(
                    atomicNumber(structure.sites()[static_cast<std::size_t>(atom.site)].element));
            };
            addBond(atoms_[static_cast<std::size_t>(a)].position,
                    atoms_[static_cast<std::size_t>(b)].position, radius, colourOf(bond.first),
                    colourOf(bond.second));
        }
    }
    if (options.labels) {
        std::vector<bool> siteLabelled(structure.sites().size(), false);
        for (std::size_t n = 0; n < atoms_.size(); ++n) {
            const int site = set.atoms[static_cast<std::size_t>(atoms_[n].index)].site;
            if (atoms_.size() > label_every_atom_up_to && siteLabelled[static_cast<std::size_t>(site)])
                continue;
            siteLabelled[static_cast<std::size_t>(site)] = true;
            labelled_.push_back(static_cast<int>(n));
        }
    }
    if (options.cell) addCell(structure);
    enclose();
    if (options.contents == QcbsSceneOptions::UnitCell || atoms_.empty()) {
        // The whole cell is the subject: frame it.
        const gemmi::UnitCell& cell = structure.cell();
        QVector3D low(1e30f, 1e30f, 1e30f), high(-1e30f, -1e30f, -1e30f);
        for (int corner = 0; corner < 8; ++corner) {
            const QVector3D p =
                vector(cell.orthogonalize(gemmi::Fractional(corner & 1, (corner >> 1) & 1, corner >> 2)));
            low = QVector3D(std::min(low.x(), p.x()), std::min(low.y(), p.y()), std::min(low.z(), p.z()));
            high = QVector3D(std::max(high.x(), p.x()), std::max(high.y(), p.y()), std::max(high.z(), p.z()));
        }
        centre_ = (low + high) / 2.0f;
        radius_ = std::max(radius_, (high - low).length() / 2.0f);
        for (const Atom& atom : atoms_)
            radius_ = std::max(radius_, (atom.position - centre_).length() + atom.radius);
    }
}

void QcbsStructureScene::addAtom(const CifStructure& structure, const CifBuiltAtom& atom, int index,
                                 const QcbsSceneOptions& options, bool highlighted) {
    const gemmi::SmallStructure::Site& site = structure.sites()[static_cast<std::size_t>(atom.site)];
    const CifSiteSource& source = structure.source(atom.site);
    const QColor colour = highlighted ? highlight() : elementColour(atomicNumber(site.element));
    const QVector3D centre = vector(atom.pos);
    // Atoms made by symmetry are marked with a prime, as in crystallographic drawings.
    const bool image = atom.op != 0 || (atom.fract - site.fract).length_sq() > 1e-12;
    const QString label = QString::fromStdString(site.label) + (image ? "'" : "");
    float radius = 0.0f;
    switch (options.style) {
        case QcbsSceneOptions::BallAndStick:
            radius = std::max(0.15f, 0.35f * site.element.covalent_r() + 0.05f);
            break;
        case QcbsSceneOptions::Sticks:
            radius = 0.15f;
            break;
        case QcbsSceneOptions::SpaceFilling:
            radius = site.element.vdw_r();
            break;
        case QcbsSceneOptions::Ellipsoids:
            if (site.element.is_hydrogen()) {
                radius = hydrogen_radius;
            } else if (source.has_aniso) {
                const CifEllipsoid ellipsoid = cif_ellipsoid(structure.displacement(atom));
                if (ellipsoid.positive_definite) {
                    QVector3D axes[3];
                    for (int i = 0; i < 3; ++i)
                        axes[i] = vector(ellipsoid.directions[static_cast<std::size_t>(i)]) *
                                  float(ellipsoid.semi_axes[static_cast<std::size_t>(i)]);
                    spheres_.push_back(instance(centre, axes[0], axes[1], axes[2], colour));
                    // Rings in the three principal planes, just outside the surface.
                    const QColor ringColour(40, 40, 40);
                    for (int k = 0; k < 3; ++k) {
                        rings_.push_back(instance(centre, axes[k] * 1.01f, axes[(k + 1) % 3] * 1.01f,
                                                  axes[(k + 2) % 3] * 1.01f, ringColour));
                    }
                    atoms_.push_back({index, centre, float(ellipsoid.semi_axes[0]), label});
                    return;
                }
                const double u = structure.displacement(atom).trace() / 3.0;
                radius = u > 0 ? float(cif_probability_50 * std::sqrt(u)) : plain_radius;
            } else if (source.has_u_iso && site.u_iso > 0) {
                radius = float(cif_probability_50 * std::sqrt(site.u_iso));
            } else {
                radius = plain_radius;
            }
            break;
    }
    spheres_.push_back(
        instance(centre, QVector3D(radius, 0, 0), QVector3D(0, radius, 0), QVector3D(0, 0, radius), colour));
    atoms_.push_back({index, centre, radius, label});
}

void QcbsStructureScene::addBond(const QVector3D& from, const QVector3D& to, float radius,
                                 const QColor& fromColour, const QColor& toColour) {
    QcbsBondInstance bond;
    for (int i = 0; i < 3; ++i) {
        bond.from[i] = from[i];
        bond.to[i] = to[i];
    }
    bond.radius = radius;
    setColour(bond.fromColour, fromColour);
    setColour(bond.toColour, toColour);
    bonds_.push_back(bond);
}

void QcbsStructureScene::addCell(const CifStructure& structure) {
    const gemmi::UnitCell& cell = structure.cell();
    const auto corner = [&](int x, int y, int z) {
        return vector(cell.orthogonalize(gemmi::Fractional(x, y, z)));
    };
    const QColor axisColours[3] = {QColor(240, 80, 80), QColor(90, 210, 90), QColor(100, 140, 255)};
    const QColor edge(170, 170, 170);
    for (int axis = 0; axis < 3; ++axis) {
        for (int other = 0; other < 4; ++other) {
            int from[3] = {0, 0, 0};
            from[(axis + 1) % 3] = other & 1;
            from[(axis + 2) % 3] = other >> 1;
            int to[3] = {from[0], from[1], from[2]};
            to[axis] = 1;
            addLine(lines_, corner(from[0], from[1], from[2]), corner(to[0], to[1], to[2]),
                    other == 0 ? axisColours[axis] : edge);
        }
    }
    axisEnds_ = {corner(0, 0, 0), corner(1, 0, 0), corner(0, 1, 0), corner(0, 0, 1)};
}

void QcbsStructureScene::enclose() {
    if (atoms_.empty()) return;
    QVector3D low = atoms_.front().position, high = low;
    for (const Atom& atom : atoms_) {
        const QVector3D& p = atom.position;
        low = QVector3D(std::min(low.x(), p.x()), std::min(low.y(), p.y()), std::min(low.z(), p.z()));
        high = QVector3D(std::max(high.x(), p.x()), std::max(high.y(), p.y()), std::max(high.z(), p.z()));
    }
    centre_ = (low + high) / 2.0f;
    radius_ = 1.0f;
    for (const Atom& atom : atoms_)
        radius_ = std::max(radius_, (atom.position - centre_).length() + atom.radius);
}
