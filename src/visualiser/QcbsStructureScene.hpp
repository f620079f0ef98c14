// SPDX-License-Identifier: GPL-3.0-or-later
// What the 3-D view draws: atoms, ellipsoids, bonds, rings, the cell box, labels.
#pragma once

#include <QColor>
#include <QSet>
#include <QString>
#include <QVector3D>
#include <vector>

#include "cif/CifStructure.hpp"

// How a structure is drawn.
struct QcbsSceneOptions {
    enum Style { BallAndStick, Sticks, SpaceFilling, Ellipsoids };
    enum Contents { AsymmetricUnit, Molecules, UnitCell };

    Style style = BallAndStick;
    Contents contents = Molecules;
    bool labels = true;
    bool hydrogens = true;
    bool cell = true;
    QSet<QString> hiddenGroups;  // disorder groups not shown, as CifStructure::disorder_key
};

// An atom (a unit sphere, or a unit ring) drawn through a matrix: the point p
// is drawn at centre + axes * p, its normals turned by normals (the inverse
// transpose of axes); both matrices column by column.
struct QcbsMeshInstance {
    float centre[3];
    float axes[9];
    float normals[9];
    float colour[4];
};

// A bond: a cylinder from one atom to the other, each half in its atom's colour.
struct QcbsBondInstance {
    float from[3];
    float to[3];
    float radius;
    float fromColour[4];
    float toColour[4];
};

// A line of the cell box, in the colour of its axis.
struct QcbsLineVertex {
    float position[3];
    float colour[4];
};

class QcbsStructureScene {
public:
    // An atom as drawn: where, how big (for picking and labels), which one.
    struct Atom {
        int index = 0;  // in the structure's atom set
        QVector3D position;
        float radius = 0.0f;
        QString label;
    };

    // Fills the scene; highlighted are indexes into the atom set, drawn in the picking colour.
    void build(const CifStructure& structure, const QcbsSceneOptions& options,
               const std::vector<int>& highlighted = {});
    void clear();

    // Atoms as ellipsoids (spheres are round ones): unit spheres through their matrices.
    const std::vector<QcbsMeshInstance>& spheres() const { return spheres_; }
    const std::vector<QcbsBondInstance>& bonds() const { return bonds_; }
    // Principal-axis rings of displacement ellipsoids: unit rings in the xy plane through their matrices.
    const std::vector<QcbsMeshInstance>& rings() const { return rings_; }
    const std::vector<QcbsLineVertex>& lines() const { return lines_; }
    // The atoms shown, in the order of spheres().
    const std::vector<Atom>& atoms() const { return atoms_; }
    // Atoms (indexes into atoms()) whose labels are drawn.
    const std::vector<int>& labelled() const { return labelled_; }
    // The ends of the cell's axes from its origin: O, a, b, c (empty without the box).
    const std::vector<QVector3D>& axisEnds() const { return axisEnds_; }

    // A sphere around everything shown.
    QVector3D centre() const { return centre_; }
    float radius() const { return radius_; }

    // The atom set the options choose.
    static const CifAtomSet& atomSet(const CifStructure& structure, QcbsSceneOptions::Contents contents);
    // Whether an atom of the set is shown under the options.
    static bool shown(const CifStructure& structure, const CifBuiltAtom& atom,
                      const QcbsSceneOptions& options);

    static QColor background() { return QColor(30, 34, 40); }
    static QColor highlight() { return QColor(255, 215, 0); }

private:
    void addAtom(const CifStructure& structure, const CifBuiltAtom& atom, int index,
                 const QcbsSceneOptions& options, bool highlighted);
    void addBond(const QVector3D& from, const QVector3D& to, float radius, const QColor& fromColour,
                 const QColor& toColour);
    void addCell(const CifStructure& structure);
    void enclose();

    std::vector<QcbsMeshInstance> spheres_;
    std::vector<QcbsBondInstance> bonds_;
    std::vector<QcbsMeshInstance> rings_;
    std::vector<QcbsLineVertex> lines_;
    std::vector<Atom> atoms_;
    std::vector<int> labelled_;
    std::vector<QVector3D> axisEnds_;
    QVector3D centre_;
    float radius_ = 1.0f;
};
