// SPDX-License-Identifier: GPL-3.0-or-later
// How the 3-D view looks at a structure: orientation, zoom, pan, projection.
#pragma once

#include <QMatrix4x4>
#include <QPoint>
#include <QPointF>
#include <QQuaternion>
#include <QSize>
#include <QVector2D>
#include <QVector3D>

// An orthographic camera, as crystallographic drawings are made: sizes do
// not shrink with depth. The scene is turned about its centre; zoom and pan
// act on the picture.
class QcbsStructureCamera {
public:
    // The part of space to show: a sphere around centre.
    void frame(const QVector3D& centre, float radius);
    void setViewport(const QSize& size) { viewport_ = size; }
    QSize viewport() const { return viewport_; }

    // Turns the scene as if a ball under the mouse were dragged by delta pixels.
    void rotateBy(const QPoint& delta);
    // Turns the scene about the viewing direction (degrees, counter-clockwise).
    void spin(float degrees);
    // Magnifies by factor (> 1 enlarges), limited to sensible bounds.
    void zoomBy(float factor);
    // Moves the picture by delta pixels.
    void panBy(const QPoint& delta);
    // Looks along direction (which then points at the viewer) with up pointing up the screen.
    void lookAlong(const QVector3D& direction, const QVector3D& up);
    // Back to the first orientation, zoom and pan.
    void reset();
    static QQuaternion firstRotation();

    QQuaternion rotation() const { return rotation_; }
    void setRotation(const QQuaternion& rotation) { rotation_ = rotation.normalized(); }
    float zoom() const { return zoom_; }
    QVector3D centre() const { return centre_; }
    float radius() const { return radius_; }

    QMatrix4x4 modelView() const;
    QMatrix4x4 projection() const;
    // Widget pixels (y down) of a point in space; the depth grows away from the viewer.
    QPointF project(const QVector3D& point, float* depth = nullptr) const;
    float pixelsPerAngstrom() const;

private:
    float halfHeight() const;

    QQuaternion rotation_ = firstRotation();
    QVector3D centre_;
    float radius_ = 10.0f;
    float zoom_ = 1.0f;
    QVector2D pan_;  // Angstrom on the screen plane
    QSize viewport_{800, 600};
};
