// SPDX-License-Identifier: GPL-3.0-or-later
// How the 3-D view looks at a structure: orientation, zoom, pan, projection.
#include "visualiser/QcbsStructureCamera.hpp"

#include <algorithm>
#include <cmath>

namespace {

// Degrees of turn per pixel of mouse travel.
constexpr float degrees_per_pixel = 0.5f;
// Room around the structure when it is framed.
constexpr float margin = 1.08f;

}  // namespace

void QcbsStructureCamera::frame(const QVector3D& centre, float radius) {
    centre_ = centre;
    radius_ = std::max(radius, 1.0f);
    zoom_ = 1.0f;
    pan_ = QVector2D();
}

void QcbsStructureCamera::rotateBy(const QPoint& delta) {
    if (delta.isNull()) return;
    const QVector3D axis(float(delta.y()), float(delta.x()), 0.0f);
    const float angle = degrees_per_pixel * std::hypot(float(delta.x()), float(delta.y()));
    rotation_ = (QQuaternion::fromAxisAndAngle(axis.normalized(), angle) * rotation_).normalized();
}

void QcbsStructureCamera::spin(float degrees) {
    rotation_ = (QQuaternion::fromAxisAndAngle(0, 0, 1, degrees) * rotation_).normalized();
}

void QcbsStructureCamera::zoomBy(float factor) { zoom_ = std::clamp(zoom_ * factor, 0.05f, 50.0f); }

void QcbsStructureCamera::panBy(const QPoint& delta) {
    const float scale = pixelsPerAngstrom();
    pan_ += QVector2D(float(delta.x()) / scale, -float(delta.y()) / scale);
}

void QcbsStructureCamera::lookAlong(const QVector3D& direction, const QVector3D& up) {
    const QVector3D z = direction.normalized();
    QVector3D y = up - QVector3D::dotProduct(up, z) * z;
    if (y.lengthSquared() < 1e-8f) y = std::fabs(z.y()) < 0.9f ? QVector3D(0, 1, 0) : QVector3D(1, 0, 0);
    y.normalize();
    const QVector3D x = QVector3D::crossProduct(y, z);
    // The rotation taking x, y, z of the structure's frame to the screen's axes.
    rotation_ = QQuaternion::fromAxes(x, y, z).inverted().normalized();
    pan_ = QVector2D();
}

QQuaternion QcbsStructureCamera::firstRotation() {
    // Slightly from above and the side, so that a cell is seen as a box.
    return QQuaternion::fromAxisAndAngle(1, 0, 0, 20) * QQuaternion::fromAxisAndAngle(0, 1, 0, -25);
}

void QcbsStructureCamera::reset() {
    rotation_ = firstRotation();
    zoom_ = 1.0f;
    pan_ = QVector2D();
}

QMatrix4x4 QcbsStructureCamera::modelView() const {
    QMatrix4x4 matrix;
    matrix.translate(pan_.x(), pan_.y(), 0.0f);
    matrix.rotate(rotation_);
    matrix.translate(-centre_);
    return matrix;
}

float QcbsStructureCamera::halfHeight() const {
    const float aspect = viewport_.height() > 0 ? float(viewport_.width()) / float(viewport_.height()) : 1.0f;
    // The framed sphere fits the shorter side.
    return radius_ * margin / zoom_ * (aspect < 1.0f ? 1.0f / aspect : 1.0f);
}

QMatrix4x4 QcbsStructureCamera::projection() const {
    const float aspect = viewport_.height() > 0 ? float(viewport_.width()) / float(viewport_.height()) : 1.0f;
    const float h = halfHeight();
    const float depth = radius_ * 4.0f + 10.0f;
    QMatrix4x4 matrix;
    matrix.ortho(-h * aspect, h * aspect, -h, h, -depth, depth);
    return matrix;
}

float QcbsStructureCamera::pixelsPerAngstrom() const {
    return float(std::max(viewport_.height(), 1)) / (2.0f * halfHeight());
}

QPointF QcbsStructureCamera::project(const QVector3D& point, float* depth) const {
    const QVector3D view = modelView().map(point);
    if (depth != nullptr) *depth = -view.z();
    const float scale = pixelsPerAngstrom();
    return QPointF(viewport_.width() / 2.0 + view.x() * scale, viewport_.height() / 2.0 - view.y() * scale);
}
