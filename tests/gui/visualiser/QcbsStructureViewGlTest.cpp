// SPDX-License-Identifier: GPL-3.0-or-later
// The 3-D view drawn: atoms where projected, ellipsoids, picks, navigation, export.
// export.
#include <gtest/gtest.h>

#include <QFile>
#include <QPrinter>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QWheelEvent>
#include <sstream>

#include "VisualiserTestSupport.hpp"
#include "visualiser/QcbsElementColours.hpp"
#include "visualiser/QcbsStructureView.hpp"

namespace {

using vis_test::block;
using vis_test::hueDistance;
using vis_test::isBackground;

// The 1-based line of the row that starts with label.
int rowLine(const std::string& text, const std::string& label) {
    std::istringstream in(text);
    int number = 0;
    for (std::string line; std::getline(in, line);) {
        ++number;
        if (line.rfind(label + " ", 0) == 0) return number;
    }
    return -1;
}

class StructureView : public ::testing::Test {
protected:
    void SetUp() override {
        VIS_REQUIRE_OPENGL();
        view = std::make_unique<QcbsStructureView>();
        view->resize(400, 300);
        view->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(view.get()));
    }

    void show(const std::string& text, QcbsSceneOptions options) {
        database = vis_test::database(text);
        ASSERT_TRUE(database->entry(0)->usable()) << database->entry(0)->reason();
        view->setOptions(options);
        view->setStructure(database->entry(0), false);
    }

    static QcbsSceneOptions plain(QcbsSceneOptions::Style style = QcbsSceneOptions::BallAndStick) {
        QcbsSceneOptions options;
        options.style = style;
        options.labels = false;
        options.cell = false;
        return options;
    }

    int sceneAtom(const QString& label) const {
        const auto& atoms = view->scene().atoms();
        for (std::size_t n = 0; n < atoms.size(); ++n) {
            if (atoms[n].label == label) return int(n);
        }
        return -1;
    }

    QPoint at(const QString& label) const { return view->screenPosition(sceneAtom(label)).toPoint(); }

    // Pixels from the centre to the first background pixel in a direction.
    static int reach(const QImage& image, QPoint centre, QPoint step) {
        int n = 0;
        for (QPoint p = centre; image.rect().contains(p) && !isBackground(image.pixel(p)); p += step) ++n;
        return n;
    }

    std::unique_ptr<QcbsStructureView> view;
    THandle<CifDatabase> database;
};

TEST_F(StructureView, AtomsAppearWhereTheProjectionPutsThemFromEverySide) {
    show(block("three", "O1 O 0.3 0.45 0.5\nN1 N 0.7 0.55 0.4\nS1 S 0.5 0.8 0.62\n"), plain());
    ASSERT_EQ(view->scene().atoms().size(), 3u);
    const QColor colours[3] = {elementColour(8), elementColour(7), elementColour(16)};
    const std::function<void()> turns[] = {[] {}, [&] { view->viewAlong(0); }, [&] { view->viewAlong(1); },
                                           [&] { view->viewAlong(2); },
                                           [&] { view->camera().rotateBy(QPoint(40, 25)); }};
    for (const auto& turn : turns) {
        turn();
        const QImage image = view->grabFramebuffer();
        ASSERT_EQ(image.size(), view->size());
        EXPECT_TRUE(isBackground(image.pixel(3, 3)));
        for (int i = 0; i < 3; ++i) {
            const QPoint centre = view->screenPosition(i).toPoint();
            ASSERT_TRUE(image.rect().contains(centre));
            const QRgb pixel = image.pixel(centre);
            ASSERT_FALSE(isBackground(pixel)) << i;
            for (int j = 0; j < 3; ++j) {
                if (j != i) {
                    EXPECT_LT(hueDistance(pixel, colours[i]), hueDistance(pixel, colours[j])) << i << j;
                }
            }
            EXPECT_EQ(view->atomAt(centre), i);
        }
    }
}

TEST_F(StructureView, AnEllipsoidIsLongestAlongItsLargestDisplacement) {
    const std::string aniso =
        "loop_\n_atom_site_aniso_label\n_atom_site_aniso_U_11\n_atom_site_aniso_U_22\n_atom_site_aniso_U_33\n"
        "_atom_site_aniso_U_12\n_atom_site_aniso_U_13\n_atom_site_aniso_U_23\nS1 0.08 0.01 0.01 0 0 0\n";
    show(block("one", "S1 S 0.5 0.5 0.5\n", 10, 10, 10, aniso), plain(QcbsSceneOptions::Ellipsoids));
    ASSERT_EQ(view->scene().rings().size(), 3u);
    const auto semiAxes = [&] {
        const QImage image = view->grabFramebuffer();
        const QPoint centre = view->screenPosition(0).toPoint();
        const double scale = view->camera().pixelsPerAngstrom();
        return std::pair<double, double>{reach(image, centre, {1, 0}) / scale,
                                         reach(image, centre, {0, -1}) / scale};
    };
    const double longest = 1.5382 * std::sqrt(0.08), shortest = 1.5382 * std::sqrt(0.01);
    // Down c, a runs across the screen and b up it.
    view->viewAlong(2);
    auto [across, up] = semiAxes();
    EXPECT_NEAR(across, longest, 0.06 * longest);
    EXPECT_NEAR(up, shortest, 0.1 * shortest);
    // Down a the ellipsoid is seen end on: round.
    view->viewAlong(0);
    std::tie(across, up) = semiAxes();
    EXPECT_NEAR(across, shortest, 0.1 * shortest);
    EXPECT_NEAR(up, shortest, 0.1 * shortest);
}

TEST_F(StructureView, ClicksNameAtomsThenMeasureDistanceAndAngleAndDoubleClickAsksForTheRow) {
    const std::string text = block("mol", "C1 C 0.1 0.1 0.1\nC2 C 0.25 0.1 0.1\nC3 C 0.25 0.25 0.1\n");
    show(text, plain());
    view->viewAlong(2);
    QSignalSpy status(view.get(), &QcbsStructureView::statusMessage);
    QSignalSpy rows(view.get(), &QcbsStructureView::atomActivated);
    QWindow* window = view->windowHandle();
    QTest::mouseClick(window, Qt::LeftButton, {}, at("C1"));
    ASSERT_EQ(status.count(), 1);
    EXPECT_EQ(status.last()[0].toString(), "C1 (C): x 0.1000, y 0.1000, z 0.1000; occupancy 1");
    QTest::mouseClick(window, Qt::LeftButton, {}, at("C2"));
    EXPECT_EQ(status.last()[0].toString(), QString::fromUtf8("C1\u2013C2: 1.500 Å"));
    QTest::mouseClick(window, Qt::LeftButton, {}, at("C3"));
    EXPECT_EQ(status.last()[0].toString(), QString::fromUtf8("C1\u2013C2\u2013C3: 90.0°"));
    // A fourth pick starts again; a click on nothing forgets them.
    QTest::mouseClick(window, Qt::LeftButton, {}, at("C3"));
    EXPECT_TRUE(status.last()[0].toString().startsWith("C3 (C)"));
    QTest::mouseClick(window, Qt::LeftButton, {}, QPoint(3, 3));
    EXPECT_EQ(status.last()[0].toString(), "");

    QTest::mouseDClick(window, Qt::LeftButton, {}, at("C3"));
    ASSERT_EQ(rows.count(), 1);
    EXPECT_EQ(rows.last()[0].toInt(), rowLine(text, "C3"));
    QTest::mouseDClick(window, Qt::LeftButton, {}, QPoint(3, 3));
    EXPECT_EQ(rows.count(), 1);
}

TEST_F(StructureView, DraggingTurnsWheelingZoomsAndDraggingWithTheRightButtonMoves) {
    show(block("mol", "C1 C 0.1 0.1 0.1\nC2 C 0.25 0.1 0.1\n"), plain());
    QSignalSpy status(view.get(), &QcbsStructureView::statusMessage);
    QWindow* window = view->windowHandle();
    const QQuaternion before = view->camera().rotation();
    const QPoint start(200, 150);
    QTest::mousePress(window, Qt::LeftButton, {}, start);
    QTest::mouseMove(window, start + QPoint(30, 0));
    QTest::mouseMove(window, start + QPoint(60, 10));
    QTest::mouseRelease(window, Qt::LeftButton, {}, start + QPoint(60, 10));
    EXPECT_FALSE(qFuzzyCompare(view->camera().rotation(), before));
    EXPECT_EQ(status.count(), 0);  // a drag picks nothing

    const QPointF c1 = view->screenPosition(sceneAtom("C1"));
    QTest::mousePress(window, Qt::RightButton, {}, start);
    QTest::mouseMove(window, start + QPoint(25, -15));
    QTest::mouseRelease(window, Qt::RightButton, {}, start + QPoint(25, -15));
    const QPointF moved = view->screenPosition(sceneAtom("C1")) - c1;
    EXPECT_NEAR(moved.x(), 25, 1.0);
    EXPECT_NEAR(moved.y(), -15, 1.0);

    const float zoom = view->camera().zoom();
    QWheelEvent wheel(QPointF(200, 150), view->mapToGlobal(QPointF(200, 150)), QPoint(), QPoint(0, 240),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(view.get(), &wheel);
    EXPECT_GT(view->camera().zoom(), zoom * 1.3f);
    view->resetView();
    EXPECT_FLOAT_EQ(view->camera().zoom(), 1.0f);
    EXPECT_TRUE(qFuzzyCompare(view->camera().rotation(), QcbsStructureCamera::firstRotation()));
}

TEST_F(StructureView, KeepsItsOrientationWhenTheSameBlockIsCheckedAgain) {
    show(block("mol", "C1 C 0.1 0.1 0.1\nC2 C 0.25 0.1 0.1\n"), plain());
    view->camera().rotateBy(QPoint(50, 20));
    view->camera().zoomBy(2.0f);
    const QQuaternion turned = view->camera().rotation();
    view->pickAt(at("C1"));
    // The text edited and checked again: one atom moved.
    THandle<CifDatabase> again = vis_test::database(block("mol", "C1 C 0.1 0.1 0.1\nC2 C 0.26 0.1 0.1\n"));
    view->setStructure(again->entry(0), true);
    EXPECT_TRUE(qFuzzyCompare(view->camera().rotation(), turned));
    EXPECT_FLOAT_EQ(view->camera().zoom(), 2.0f);
    EXPECT_EQ(view->scene().spheres()[std::size_t(sceneAtom("C1"))].colour[0],
              float(QcbsStructureScene::highlight().redF()));
    // Another block is framed anew, still seen from the same side.
    THandle<CifDatabase> other = vis_test::database(block("other", "O1 O 0.5 0.5 0.5\n"));
    view->setStructure(other->entry(0), false);
    EXPECT_TRUE(qFuzzyCompare(view->camera().rotation(), turned));
    EXPECT_FLOAT_EQ(view->camera().zoom(), 1.0f);
}

TEST_F(StructureView, ExportsThePictureWithItsLabelsAndPrintsIt) {
    QcbsSceneOptions options = plain();
    options.labels = true;
    show(block("mol", "C1 C 0.1 0.1 0.1\nC2 C 0.25 0.1 0.1\n"), options);
    QTemporaryDir dir;
    const QString png = dir.filePath("view.png");
    ASSERT_TRUE(view->exportPng(png));
    const QImage saved = QImage(png).convertToFormat(QImage::Format_RGB32);
    EXPECT_EQ(saved.size(), view->size());
    EXPECT_FALSE(isBackground(saved.pixel(view->screenPosition(0).toPoint())));
    // The labels are painted over the OpenGL picture, and the export has them.
    const QImage bare = view->grabFramebuffer().convertToFormat(QImage::Format_RGB32);
    EXPECT_NE(saved, bare);
    EXPECT_FALSE(view->exportPng(dir.filePath("no/such/folder/view.png")));

    QPrinter printer;
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(dir.filePath("view.pdf"));
    view->print(&printer);
    QFile pdf(dir.filePath("view.pdf"));
    ASSERT_TRUE(pdf.open(QIODevice::ReadOnly));
    EXPECT_TRUE(pdf.read(4) == "%PDF");
    EXPECT_GT(pdf.size(), 1000);
}

}  // namespace
