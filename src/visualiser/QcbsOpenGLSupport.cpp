// SPDX-License-Identifier: GPL-3.0-or-later
// Whether this display can draw the 3-D view, and the OpenGL the view asks for.
#include "visualiser/QcbsOpenGLSupport.hpp"

#include <QGuiApplication>
#include <QOpenGLContext>

QSurfaceFormat structureViewFormat() {
    QSurfaceFormat format;
    format.setRenderableType(QSurfaceFormat::OpenGL);
    format.setVersion(3, 3);
    format.setProfile(QSurfaceFormat::CoreProfile);
    format.setDepthBufferSize(24);
    format.setSamples(0);
    return format;
}

namespace {

QString probe() {
    if (QGuiApplication::instance() == nullptr) return "the program has no display";
    // These platforms draw OpenGL at best into hidden pictures: a window
    // holding an OpenGL widget cannot be shown on them.
    const QString platform = QGuiApplication::platformName();
    if (platform == "offscreen" || platform == "minimal")
        return "the " + platform + " platform cannot show OpenGL windows";
    QOpenGLContext context;
    context.setFormat(structureViewFormat());
    if (!context.create()) return "this display offers no OpenGL";
    const QSurfaceFormat got = context.format();
    if (got.version() < qMakePair(3, 3))
        return QString("this display offers OpenGL %1.%2, and the view needs 3.3")
            .arg(got.majorVersion())
            .arg(got.minorVersion());
    return QString();
}

}  // namespace

QString openGLProblem() {
    static const QString problem = probe();
    return problem;
}
