// SPDX-License-Identifier: GPL-3.0-or-later
// The 3-D view of a crystal structure: drawing, turning, zooming, picking and measuring atoms.
#pragma once

#include <QOpenGLWidget>
#include <QPoint>
#include <QString>
#include <memory>
#include <vector>

#include "cif/CifStructure.hpp"
#include "support/THandle.hpp"
#include "visualiser/QcbsStructureCamera.hpp"
#include "visualiser/QcbsStructureScene.hpp"

class QcbsStructureLabels;
class QcbsStructureRenderer;
class QPainter;
class QPrinter;

// Mouse: drag with the left button to turn, with the right or middle button
// (or Shift and left) to move, wheel to zoom. A click on an atom names it;
// a second and a third click give a distance and an angle; a click on
// nothing forgets the picks. A double click asks for the atom's row.
class QcbsStructureView : public QOpenGLWidget {
    Q_OBJECT
public:
    explicit QcbsStructureView(QWidget* parent = nullptr);
    ~QcbsStructureView() override;

    // Shows a structure. The orientation is kept; zoom, pan and the picks
    // are kept too when keepFrame is set (the same block checked again),
    // otherwise the new structure is framed.
    void setStructure(THandle<CifStructure> structure, bool keepFrame);
    THandle<CifStructure> structure() const { return structure_; }

    const QcbsSceneOptions& options() const { return options_; }
    void setOptions(const QcbsSceneOptions& options);

    // Looks down a, b or c (0, 1, 2): the axis points at the viewer.
    void viewAlong(int axis);
    void resetView();

    // The camera; after changing it, redraw().
    QcbsStructureCamera& camera() { return camera_; }
    // Draws again, the text over the picture too.
    void redraw();
    const QcbsStructureScene& scene() const { return scene_; }
    // The scene atom (index into scene().atoms()) under a widget point, -1 for none.
    int atomAt(const QPoint& point) const;
    // Where a scene atom is drawn, in widget pixels.
    QPointF screenPosition(int sceneAtom) const;
    // Picks the atom under a point as a click does; returns the text it shows.
    QString pickAt(const QPoint& point);
    QString statusText() const { return statusText_; }

    // Why nothing can be drawn (empty while all is well).
    QString problem() const { return problem_; }
    // Frames drawn so far, and the triangles of the last one.
    long long framesDrawn() const { return frames_; }
    long long lastTriangles() const;

    // The view as a picture (grabFramebuffer), or saved as PNG; false when it could not be written.
    bool exportPng(const QString& fileName);
    void print(QPrinter* printer);

signals:
    void statusMessage(const QString& text);
    // A double click on an atom: the 1-based line of its site's row.
    void atomActivated(int line);
    // OpenGL turned out unusable after all.
    void openGLFailed(const QString& problem);
    void framePainted();

public:
    // Paints the labels, axis letters and pick lines for the current camera.
    void paintOverlay(QPainter& painter) const;

protected:
    void initializeGL() override;
    void resizeGL(int width, int height) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintGL() override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void rebuild();
    // The picture with the text over it.
    QImage picture();
    QString describe(int sceneAtom) const;
    QString measure() const;
    void releaseRenderer();

    THandle<CifStructure> structure_;
    QcbsSceneOptions options_;
    QcbsStructureScene scene_;
    QcbsStructureCamera camera_;
    std::unique_ptr<QcbsStructureRenderer> renderer_;
    QcbsStructureLabels* labels_;
    bool uploaded_ = false;
    std::vector<int> picks_;  // indexes into the shown atom set, in the order picked
    QString statusText_;
    QString problem_;
    QPoint pressPoint_, lastPoint_;
    bool dragged_ = false;
    long long frames_ = 0;
};
