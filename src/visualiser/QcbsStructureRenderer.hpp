// SPDX-License-Identifier: GPL-3.0-or-later
// Draws a structure scene with OpenGL 3.3 core: ray-cast atoms and bonds, rings, lines.
// lines.
#pragma once

#include <QColor>
#include <QOpenGLFunctions_3_3_Core>
#include <QOpenGLShaderProgram>
#include <QString>
#include <memory>
#include <vector>

#include "visualiser/QcbsStructureCamera.hpp"
#include "visualiser/QcbsStructureScene.hpp"

// Atoms and bonds are drawn as impostors: one screen-facing square each,
// on which the fragment shader finds where the viewing ray meets the
// ellipsoid or cylinder, and writes its colour, light and depth. Four
// vertices per atom instead of a sphere's hundreds keep a software
// rasteriser fast; the surfaces are exact at every size. The principal
// rings of ellipsoids are meshes. Lives while its OpenGL context does; every
// call needs the context current.
class QcbsStructureRenderer : protected QOpenGLFunctions_3_3_Core {
public:
    QcbsStructureRenderer() = default;
    ~QcbsStructureRenderer();
    QcbsStructureRenderer(const QcbsStructureRenderer&) = delete;
    QcbsStructureRenderer& operator=(const QcbsStructureRenderer&) = delete;

    // Compiles the shaders and makes the buffers; false (with the reason) when the context cannot.
    bool initialize(QString* problem);
    // Copies the scene's instances to the graphics memory.
    void upload(const QcbsStructureScene& scene);
    void render(const QcbsStructureCamera& camera, const QColor& background);
    // The number of triangles of the last frame.
    long long triangles() const { return triangles_; }

private:
    bool build(QOpenGLShaderProgram& program, const char* vertex, const char* fragment, QString* problem);
    void makeArrays();

    bool initialized_ = false;
    std::unique_ptr<QOpenGLShaderProgram> atomProgram_, bondProgram_, ringProgram_, lineProgram_;
    GLuint square_ = 0;  // the corners of a square, for atoms and bonds
    GLuint ringVertices_ = 0, ringIndices_ = 0;
    GLsizei ringIndexCount_ = 0;
    GLuint atomInstances_ = 0, bondInstances_ = 0, ringInstances_ = 0, lineVertices_ = 0;
    GLuint atomArray_ = 0, bondArray_ = 0, ringArray_ = 0, lineArray_ = 0;
    int atomCount_ = 0, bondCount_ = 0, ringCount_ = 0, lineCount_ = 0;
    long long triangles_ = 0;
};
