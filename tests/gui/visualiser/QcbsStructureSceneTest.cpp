// SPDX-License-Identifier: GPL-3.0-or-later
// What the view draws for the user's choices, and the camera.
// camera.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "VisualiserTestSupport.hpp"
#include "visualiser/QcbsStructureCamera.hpp"

namespace {

using vis_test::block;

const std::string disordered =
    block("d", "", 10, 10, 10,
          "loop_\n_atom_site_label\n_atom_site_type_symbol\n_atom_site_fract_x\n_atom_site_fract_y\n_atom_"
          "site_fract_z\n"
          "_atom_site_U_iso_or_equiv\n_atom_site_disorder_assembly\n_atom_site_disorder_group\n"
          "C1 C 0.30 0.30 0.30 0.02 . .\nH1 H 0.30 0.40 0.30 0.03 . .\nC2A C 0.45 0.30 0.30 0.02 A 1\n"
          "C2B C 0.44 0.35 0.30 0.02 A 2\n");

TEST(StructureScene, StylesHydrogensAndDisorderGroupsChooseWhatIsDrawn) {
    THandle<CifDatabase> database = vis_test::database(disordered);
    THandle<CifStructure> structure = database->entry(0);
    ASSERT_TRUE(structure->usable()) << structure->reason();
    const struct {
        const char* what;
        QcbsSceneOptions::Style style;
        bool hydrogens;
        QSet<QString> hidden;
        std::size_t atoms;
        std::size_t bonds;
    } table[] = {
        {"all, balls and sticks", QcbsSceneOptions::BallAndStick, true, {}, 4, 3},
        {"space filling draws no bonds", QcbsSceneOptions::SpaceFilling, true, {}, 4, 0},
        {"without hydrogens", QcbsSceneOptions::Sticks, false, {}, 3, 2},
        {"one part of the disorder hidden", QcbsSceneOptions::Ellipsoids, true, {"A:2"}, 3, 2},
        {"both parts hidden", QcbsSceneOptions::BallAndStick, false, {"A:1", "A:2"}, 1, 0},
    };
    for (const auto& row : table) {
        QcbsSceneOptions options;
        options.style = row.style;
        options.hydrogens = row.hydrogens;
        options.hiddenGroups = row.hidden;
        options.contents = QcbsSceneOptions::AsymmetricUnit;
        QcbsStructureScene scene;
        scene.build(*structure, options);
        EXPECT_EQ(scene.atoms().size(), row.atoms) << row.what;
        EXPECT_EQ(scene.spheres().size(), row.atoms) << row.what;
        EXPECT_EQ(scene.bonds().size(), row.bonds) << row.what;
        for (const QcbsStructureScene::Atom& atom : scene.atoms()) {
            if (row.hidden.contains("A:2")) {
                EXPECT_NE(atom.label, "C2B") << row.what;
            }
            if (!row.hydrogens) {
                EXPECT_NE(atom.label, "H1") << row.what;
            }
        }
    }
    EXPECT_EQ(structure->disorder_groups(), (std::vector<std::string>{"A:1", "A:2"}));
}

TEST(StructureScene, AtomSizesFollowTheStyle) {
    THandle<CifDatabase> database = vis_test::database(disordered);
    THandle<CifStructure> structure = database->entry(0);
    const auto radiusOf = [&](QcbsSceneOptions::Style style, const QString& label) {
        QcbsSceneOptions options;
        options.style = style;
        options.contents = QcbsSceneOptions::AsymmetricUnit;
        QcbsStructureScene scene;
        scene.build(*structure, options);
        for (const QcbsStructureScene::Atom& atom : scene.atoms()) {
            if (atom.label == label) return atom.radius;
        }
        return -1.0f;
    };
    // Space filling: van der Waals radii; isotropic atoms among ellipsoids: the 50 % sphere of U iso.
    EXPECT_NEAR(radiusOf(QcbsSceneOptions::SpaceFilling, "C1"), 1.70f, 0.01f);
    EXPECT_NEAR(radiusOf(QcbsSceneOptions::Ellipsoids, "C1"), 1.5382f * std::sqrt(0.02f), 1e-4f);
    EXPECT_LT(radiusOf(QcbsSceneOptions::BallAndStick, "H1"), radiusOf(QcbsSceneOptions::BallAndStick, "C1"));
    EXPECT_EQ(radiusOf(QcbsSceneOptions::Sticks, "H1"), radiusOf(QcbsSceneOptions::Sticks, "C1"));
}

TEST(StructureScene, CrowdedScenesLabelEachSiteOnceAndTheCellIsFramed) {
    const std::string path = "/usr/share/avogadro2/crystals/zeolites/FAU.cif";
    if (!std::filesystem::exists(path))
        GTEST_SKIP() << path << " is missing (Debian package libavogadro-data)";
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    THandle<CifDatabase> database = vis_test::database(text.str());
    THandle<CifStructure> structure = database->entry(0);
    QcbsSceneOptions options;
    options.contents = QcbsSceneOptions::UnitCell;
    QcbsStructureScene scene;
    scene.build(*structure, options);
    ASSERT_GT(scene.atoms().size(), 400u);
    EXPECT_EQ(scene.labelled().size(), structure->sites().size());
    EXPECT_EQ(scene.lines().size(), 24u);  // twelve edges
    ASSERT_EQ(scene.axisEnds().size(), 4u);
    // Every corner of the cell is inside the framing sphere.
    const gemmi::UnitCell& cell = structure->cell();
    for (int corner = 0; corner < 8; ++corner) {
        const gemmi::Position p =
            cell.orthogonalize(gemmi::Fractional(corner & 1, (corner >> 1) & 1, corner >> 2));
        EXPECT_LE((QVector3D(float(p.x), float(p.y), float(p.z)) - scene.centre()).length(),
                  scene.radius() + 1e-3f);
    }
    // A small molecule labels every atom.
    options.contents = QcbsSceneOptions::AsymmetricUnit;
    scene.build(*structure, options);
    EXPECT_EQ(scene.labelled().size(), scene.atoms().size());
    options.labels = false;
    scene.build(*structure, options);
    EXPECT_TRUE(scene.labelled().empty());
}

TEST(StructureCamera, ProjectsLooksDownAxesZoomsAndPans) {
    QcbsStructureCamera camera;
    camera.setViewport(QSize(400, 300));
    camera.frame(QVector3D(1, 2, 3), 5.0f);
    camera.setRotation(QQuaternion());
    EXPECT_EQ(camera.project(QVector3D(1, 2, 3)), QPointF(200, 150));
    const float scale = camera.pixelsPerAngstrom();
    EXPECT_NEAR(scale * 5.0f * 2.0f * 1.08f, 300.0f, 0.01f);  // the sphere fits the shorter side
    // x to the right, y up, z toward the viewer.
    EXPECT_NEAR(camera.project(QVector3D(2, 2, 3)).x(), 200 + scale, 1e-3);
    EXPECT_NEAR(camera.project(QVector3D(1, 3, 3)).y(), 150 - scale, 1e-3);
    float near = 0, far = 0;
    camera.project(QVector3D(1, 2, 4), &near);
    camera.project(QVector3D(1, 2, 2), &far);
    EXPECT_LT(near, far);

    // Looking along a direction: it points at the viewer, and up is up.
    camera.lookAlong(QVector3D(1, 1, 0), QVector3D(0, 0, 1));
    float depth = 0;
    const QPointF along = camera.project(QVector3D(2, 3, 3), &depth);
    EXPECT_NEAR(along.x(), 200, 1e-3);
    EXPECT_NEAR(along.y(), 150, 1e-3);
    EXPECT_LT(depth, 0.0f);
    EXPECT_LT(camera.project(QVector3D(1, 2, 4)).y(), 150.0);

    camera.zoomBy(2.0f);
    EXPECT_NEAR(camera.pixelsPerAngstrom(), 2 * scale, 1e-3);
    camera.panBy(QPoint(10, -20));
    EXPECT_NEAR(camera.project(QVector3D(1, 2, 3)).x(), 210, 1e-3);
    EXPECT_NEAR(camera.project(QVector3D(1, 2, 3)).y(), 130, 1e-3);
    camera.zoomBy(1e6f);
    EXPECT_FLOAT_EQ(camera.zoom(), 50.0f);  // bounded
}

}  // namespace
