// SPDX-License-Identifier: GPL-3.0-or-later
// Draws a structure scene with OpenGL 3.3 core: ray-cast atoms and bonds, rings, lines.
// lines.
#include "visualiser/QcbsStructureRenderer.hpp"

#include <QOpenGLContext>
#include <QVector3D>
#include <cmath>
#include <cstddef>

namespace {

// The depth written by the ray casts is never nearer than the square's own;
// declared so, a GPU may test depth before shading (Mesa's software
// renderer does not, measured).
#define TESSARY_DEPTH                                 \
    "#extension GL_ARB_conservative_depth : enable\n" \
    "#ifdef GL_ARB_conservative_depth\n"              \
    "layout(depth_greater) out float gl_FragDepth;\n" \
    "#endif\n"

// One light from the upper left in front, and a highlight; the camera looks along -z.
#define TESSARY_LIGHT                                                                            \
    "const vec3 light = normalize(vec3(-0.4, 0.55, 0.75));\n"                                    \
    "const vec3 halfway = normalize(light + vec3(0.0, 0.0, 1.0));\n"                             \
    "vec4 shade(vec3 n, vec4 colour) {\n"                                                        \
    "    float diffuse = max(dot(n, light), 0.0);\n"                                             \
    "    float s = max(dot(n, halfway), 0.0);\n"                                                 \
    "    float s2 = s * s, s4 = s2 * s2, s8 = s4 * s4, s16 = s8 * s8;\n"                         \
    "    float specular = s16 * s16 * s16;\n"                                                    \
    "    return vec4(colour.rgb * (0.28 + 0.72 * diffuse) + vec3(0.35 * specular), colour.a);\n" \
    "}\n"                                                                                        \
    "uniform mat4 projection;\n"                                                                 \
    "float depthOf(vec3 view) {\n"                                                               \
    "    vec4 clip = projection * vec4(view, 1.0);\n"                                            \
    "    return 0.5 * clip.z / clip.w + 0.5;\n"                                                  \
    "}\n"

// An atom: the square around the ellipsoid, and the matrices that take view
// space to the unit sphere and the sphere's normals back to view space.
const char* const atomVertexShader = R"(#version 330 core
layout(location = 0) in vec2 corner;
layout(location = 2) in vec3 centre;
layout(location = 3) in vec3 axis0;
layout(location = 4) in vec3 axis1;
layout(location = 5) in vec3 axis2;
layout(location = 6) in vec3 normal0;
layout(location = 7) in vec3 normal1;
layout(location = 8) in vec3 normal2;
layout(location = 9) in vec4 colour;
uniform mat4 modelView;
uniform mat4 projection;
out vec2 viewXY;
out vec3 origin;
flat out vec3 direction;
flat out float centreDepth;
flat out mat3 normalTurn;
flat out vec4 surfaceColour;
void main() {
    mat3 turn = mat3(modelView);
    mat3 normals = mat3(normal0, normal1, normal2);
    float reach = max(length(axis0), max(length(axis1), length(axis2)));
    vec3 c = (modelView * vec4(centre, 1.0)).xyz;
    // The viewing ray in the space where the ellipsoid is the unit sphere:
    // its start depends linearly on the screen position, so it is interpolated.
    mat3 toUnit = transpose(normals) * transpose(turn);
    viewXY = c.xy + corner * reach;
    origin = toUnit * vec3(corner * reach, 0.0);
    direction = toUnit * vec3(0.0, 0.0, -1.0);
    centreDepth = c.z;
    normalTurn = turn * normals;
    surfaceColour = colour;
    // The square stands in front of the whole ellipsoid: the depth written is never nearer.
    gl_Position = projection * vec4(viewXY, c.z + reach, 1.0);
}
)";

const char* const atomFragmentShader = "#version 330 core\n" TESSARY_DEPTH TESSARY_LIGHT R"(
in vec2 viewXY;
in vec3 origin;
flat in vec3 direction;
flat in float centreDepth;
flat in mat3 normalTurn;
flat in vec4 surfaceColour;
out vec4 fragment;
void main() {
    vec3 o = origin;
    vec3 d = direction;
    float a = dot(d, d);
    float b = dot(o, d);
    float c = dot(o, o) - 1.0;
    float disc = b * b - a * c;
    if (disc < 0.0) discard;
    float t = (-b - sqrt(disc)) / a;
    vec3 n = normalize(normalTurn * (o + t * d));
    gl_FragDepth = depthOf(vec3(viewXY, centreDepth - t));
    fragment = shade(n, surfaceColour);
}
)";

// A bond: the rectangle around the cylinder's outline on the screen.
const char* const bondVertexShader = R"(#version 330 core
layout(location = 0) in vec2 corner;
layout(location = 2) in vec3 from;
layout(location = 3) in vec3 to;
layout(location = 4) in float radius;
layout(location = 5) in vec4 fromColour;
layout(location = 6) in vec4 toColour;
uniform mat4 modelView;
uniform mat4 projection;
out vec2 viewXY;
flat out vec3 start;
flat out vec3 axis;
flat out float len;
flat out float thickness;
flat out vec4 colour0;
flat out vec4 colour1;
void main() {
    vec3 a = (modelView * vec4(from, 1.0)).xyz;
    vec3 b = (modelView * vec4(to, 1.0)).xyz;
    len = length(b - a);
    axis = len > 1e-6 ? (b - a) / len : vec3(0.0, 0.0, 1.0);
    start = a;
    thickness = radius;
    colour0 = fromColour;
    colour1 = toColour;
    vec2 flat2 = b.xy - a.xy;
    float across = length(flat2);
    vec2 along = across > 1e-6 ? flat2 / across : vec2(1.0, 0.0);
    vec2 side = vec2(-along.y, along.x);
    viewXY = mix(a.xy - along * radius, b.xy + along * radius, corner.x) + side * radius * corner.y;
    gl_Position = projection * vec4(viewXY, max(a.z, b.z) + radius, 1.0);
}
)";

const char* const bondFragmentShader = "#version 330 core\n" TESSARY_DEPTH TESSARY_LIGHT R"(
in vec2 viewXY;
flat in vec3 start;
flat in vec3 axis;
flat in float len;
flat in float thickness;
flat in vec4 colour0;
flat in vec4 colour1;
out vec4 fragment;
void main() {
    vec3 q = vec3(viewXY, 0.0);
    vec3 d = vec3(0.0, 0.0, -1.0);
    vec3 w = q - start;
    vec3 dp = d - dot(d, axis) * axis;
    vec3 wp = w - dot(w, axis) * axis;
    float a = dot(dp, dp);
    if (a < 1e-8) discard;
    float b = dot(wp, dp);
    float c = dot(wp, wp) - thickness * thickness;
    float disc = b * b - a * c;
    if (disc < 0.0) discard;
    float t = (-b - sqrt(disc)) / a;
    vec3 hit = q + t * d;
    float s = dot(hit - start, axis);
    if (s < 0.0 || s > len) discard;
    vec3 n = normalize(hit - start - s * axis);
    gl_FragDepth = depthOf(hit);
    fragment = shade(n, s < 0.5 * len ? colour0 : colour1);
}
)";

const char* const ringVertexShader = R"(#version 330 core
layout(location = 0) in vec3 vertex;
layout(location = 1) in vec3 normal;
layout(location = 2) in vec3 centre;
layout(location = 3) in vec3 axis0;
layout(location = 4) in vec3 axis1;
layout(location = 5) in vec3 axis2;
layout(location = 6) in vec3 normal0;
layout(location = 7) in vec3 normal1;
layout(location = 8) in vec3 normal2;
layout(location = 9) in vec4 colour;
uniform mat4 modelView;
uniform mat4 projection;
out vec3 viewNormal;
out vec4 surfaceColour;
void main() {
    vec4 place = modelView * vec4(centre + mat3(axis0, axis1, axis2) * vertex, 1.0);
    viewNormal = mat3(modelView) * (mat3(normal0, normal1, normal2) * normal);
    surfaceColour = colour;
    gl_Position = projection * place;
}
)";

const char* const ringFragmentShader = "#version 330 core\n" TESSARY_LIGHT R"(
in vec3 viewNormal;
in vec4 surfaceColour;
out vec4 fragment;
void main() {
    vec3 n = normalize(viewNormal);
    if (!gl_FrontFacing) n = -n;
    fragment = shade(n, surfaceColour);
}
)";

const char* const lineVertexShader = R"(#version 330 core
layout(location = 0) in vec3 vertex;
layout(location = 1) in vec4 colour;
uniform mat4 modelView;
uniform mat4 projection;
out vec4 lineColour;
void main() {
    lineColour = colour;
    gl_Position = projection * modelView * vec4(vertex, 1.0);
}
)";

const char* const lineFragmentShader = R"(#version 330 core
in vec4 lineColour;
out vec4 fragment;
void main() { fragment = lineColour; }
)";

// A thin ring of radius 1 in the xy plane, as vertices (position, normal) and triangles.
void ringMesh(int segments, int sides, float thickness, std::vector<float>& vertices,
              std::vector<unsigned>& indices) {
    for (int i = 0; i < segments; ++i) {
        const float around = 2.0f * float(M_PI) * float(i) / float(segments);
        const QVector3D radial(std::cos(around), std::sin(around), 0.0f);
        for (int j = 0; j < sides; ++j) {
            const float tube = 2.0f * float(M_PI) * float(j) / float(sides);
            const QVector3D normal = radial * std::cos(tube) + QVector3D(0, 0, std::sin(tube));
            const QVector3D position = radial + normal * thickness;
            vertices.insert(vertices.end(),
                            {position.x(), position.y(), position.z(), normal.x(), normal.y(), normal.z()});
        }
    }
    for (int i = 0; i < segments; ++i) {
        for (int j = 0; j < sides; ++j) {
            const unsigned a = unsigned(i * sides + j), b = unsigned(((i + 1) % segments) * sides + j);
            const unsigned c = unsigned(i * sides + (j + 1) % sides),
                           d = unsigned(((i + 1) % segments) * sides + (j + 1) % sides);
            indices.insert(indices.end(), {a, b, c, b, d, c});
        }
    }
}

}  // namespace

QcbsStructureRenderer::~QcbsStructureRenderer() {
    if (!initialized_ || QOpenGLContext::currentContext() == nullptr) return;
    const GLuint buffers[] = {square_,        ringVertices_,  ringIndices_, atomInstances_,
                              bondInstances_, ringInstances_, lineVertices_};
    glDeleteBuffers(GLsizei(std::size(buffers)), buffers);
    const GLuint arrays[] = {atomArray_, bondArray_, ringArray_, lineArray_};
    glDeleteVertexArrays(GLsizei(std::size(arrays)), arrays);
}

bool QcbsStructureRenderer::build(QOpenGLShaderProgram& program, const char* vertex, const char* fragment,
                                  QString* problem) {
    if (program.addShaderFromSourceCode(QOpenGLShader::Vertex, vertex) &&
        program.addShaderFromSourceCode(QOpenGLShader::Fragment, fragment) && program.link())
        return true;
    *problem = "the shaders could not be compiled: " + program.log();
    return false;
}

bool QcbsStructureRenderer::initialize(QString* problem) {
    if (!initializeOpenGLFunctions()) {
        *problem = "OpenGL 3.3 core functions are not available";
        return false;
    }
    atomProgram_ = std::make_unique<QOpenGLShaderProgram>();
    bondProgram_ = std::make_unique<QOpenGLShaderProgram>();
    ringProgram_ = std::make_unique<QOpenGLShaderProgram>();
    lineProgram_ = std::make_unique<QOpenGLShaderProgram>();
    if (!build(*atomProgram_, atomVertexShader, atomFragmentShader, problem) ||
        !build(*bondProgram_, bondVertexShader, bondFragmentShader, problem) ||
        !build(*ringProgram_, ringVertexShader, ringFragmentShader, problem) ||
        !build(*lineProgram_, lineVertexShader, lineFragmentShader, problem))
        return false;
    makeArrays();
    initialized_ = true;
    return true;
}

void QcbsStructureRenderer::makeArrays() {
    GLuint buffers[7];
    glGenBuffers(7, buffers);
    square_ = buffers[0];
    ringVertices_ = buffers[1];
    ringIndices_ = buffers[2];
    atomInstances_ = buffers[3];
    bondInstances_ = buffers[4];
    ringInstances_ = buffers[5];
    lineVertices_ = buffers[6];
    GLuint arrays[4];
    glGenVertexArrays(4, arrays);
    atomArray_ = arrays[0];
    bondArray_ = arrays[1];
    ringArray_ = arrays[2];
    lineArray_ = arrays[3];

    // Corners as strips: both coordinates -1 to 1 for atoms, then x 0 to 1 for bonds.
    const float corners[16] = {-1, -1, 1, -1, -1, 1, 1, 1, 0, -1, 1, -1, 0, 1, 1, 1};
    glBindBuffer(GL_ARRAY_BUFFER, square_);
    glBufferData(GL_ARRAY_BUFFER, sizeof(corners), corners, GL_STATIC_DRAW);

    const auto instanced = [&](GLuint location, int size, GLsizei stride, std::size_t offset) {
        glEnableVertexAttribArray(location);
        glVertexAttribPointer(location, size, GL_FLOAT, GL_FALSE, stride, reinterpret_cast<void*>(offset));
        glVertexAttribDivisor(location, 1);
    };
    const auto meshInstance = [&](GLuint buffer) {
        glBindBuffer(GL_ARRAY_BUFFER, buffer);
        const GLsizei stride = sizeof(QcbsMeshInstance);
        instanced(2, 3, stride, offsetof(QcbsMeshInstance, centre));
        for (int i = 0; i < 3; ++i) {
            instanced(GLuint(3 + i), 3, stride,
                      offsetof(QcbsMeshInstance, axes) + std::size_t(3 * i) * sizeof(float));
            instanced(GLuint(6 + i), 3, stride,
                      offsetof(QcbsMeshInstance, normals) + std::size_t(3 * i) * sizeof(float));
        }
        instanced(9, 4, stride, offsetof(QcbsMeshInstance, colour));
    };

    glBindVertexArray(atomArray_);
    glBindBuffer(GL_ARRAY_BUFFER, square_);
    glEnableVertexAttribArray(0);
    glVertexAttribPointer(0, 2, GL_FLOAT, GL_FALSE, 2 * sizeof(float), nullptr);
    meshInstance(atomInstances_);

    glBindVertexArray(bondArray_);
    glBindBuffer(GL_ARRAY_BUFFER, square_);
    glEnableVertexAttribArray(0);
    glVertexAttribPointer(0, 2, GL_FLOAT, GL_FALSE, 2 * sizeof(float),
                          reinterpret_cast<void*>(8 * sizeof(float)));
    glBindBuffer(GL_ARRAY_BUFFER, bondInstances_);
    const GLsizei bondStride = sizeof(QcbsBondInstance);
    instanced(2, 3, bondStride, offsetof(QcbsBondInstance, from));
    instanced(3, 3, bondStride, offsetof(QcbsBondInstance, to));
    instanced(4, 1, bondStride, offsetof(QcbsBondInstance, radius));
    instanced(5, 4, bondStride, offsetof(QcbsBondInstance, fromColour));
    instanced(6, 4, bondStride, offsetof(QcbsBondInstance, toColour));

    std::vector<float> vertices;
    std::vector<unsigned> indices;
    ringMesh(36, 5, 0.035f, vertices, indices);
    glBindVertexArray(ringArray_);
    glBindBuffer(GL_ARRAY_BUFFER, ringVertices_);
    glBufferData(GL_ARRAY_BUFFER, GLsizeiptr(vertices.size() * sizeof(float)), vertices.data(),
                 GL_STATIC_DRAW);
    glEnableVertexAttribArray(0);
    glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, 6 * sizeof(float), nullptr);
    glEnableVertexAttribArray(1);
    glVertexAttribPointer(1, 3, GL_FLOAT, GL_FALSE, 6 * sizeof(float),
                          reinterpret_cast<void*>(3 * sizeof(float)));
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, ringIndices_);
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, GLsizeiptr(indices.size() * sizeof(unsigned)), indices.data(),
                 GL_STATIC_DRAW);
    ringIndexCount_ = GLsizei(indices.size());
    meshInstance(ringInstances_);

    glBindVertexArray(lineArray_);
    glBindBuffer(GL_ARRAY_BUFFER, lineVertices_);
    glEnableVertexAttribArray(0);
    glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, sizeof(QcbsLineVertex),
                          reinterpret_cast<void*>(offsetof(QcbsLineVertex, position)));
    glEnableVertexAttribArray(1);
    glVertexAttribPointer(1, 4, GL_FLOAT, GL_FALSE, sizeof(QcbsLineVertex),
                          reinterpret_cast<void*>(offsetof(QcbsLineVertex, colour)));
    glBindVertexArray(0);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
}

void QcbsStructureRenderer::upload(const QcbsStructureScene& scene) {
    if (!initialized_) return;
    const auto fill = [&](GLuint buffer, const void* data, std::size_t bytes) {
        glBindBuffer(GL_ARRAY_BUFFER, buffer);
        glBufferData(GL_ARRAY_BUFFER, GLsizeiptr(bytes), data, GL_STATIC_DRAW);
    };
    fill(atomInstances_, scene.spheres().data(), scene.spheres().size() * sizeof(QcbsMeshInstance));
    fill(bondInstances_, scene.bonds().data(), scene.bonds().size() * sizeof(QcbsBondInstance));
    fill(ringInstances_, scene.rings().data(), scene.rings().size() * sizeof(QcbsMeshInstance));
    fill(lineVertices_, scene.lines().data(), scene.lines().size() * sizeof(QcbsLineVertex));
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    atomCount_ = int(scene.spheres().size());
    bondCount_ = int(scene.bonds().size());
    ringCount_ = int(scene.rings().size());
    lineCount_ = int(scene.lines().size());
}

void QcbsStructureRenderer::render(const QcbsStructureCamera& camera, const QColor& background) {
    glClearColor(float(background.redF()), float(background.greenF()), float(background.blueF()), 1.0f);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    if (!initialized_) return;
    triangles_ = 0;
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LESS);
    glDisable(GL_CULL_FACE);
    glDisable(GL_BLEND);
    const QMatrix4x4 modelView = camera.modelView();
    const QMatrix4x4 projection = camera.projection();
    const auto use = [&](QOpenGLShaderProgram& program) {
        program.bind();
        program.setUniformValue("modelView", modelView);
        program.setUniformValue("projection", projection);
    };
    if (atomCount_ > 0) {
        use(*atomProgram_);
        glBindVertexArray(atomArray_);
        glDrawArraysInstanced(GL_TRIANGLE_STRIP, 0, 4, atomCount_);
        triangles_ += 2LL * atomCount_;
    }
    if (bondCount_ > 0) {
        use(*bondProgram_);
        glBindVertexArray(bondArray_);
        glDrawArraysInstanced(GL_TRIANGLE_STRIP, 0, 4, bondCount_);
        triangles_ += 2LL * bondCount_;
    }
    if (ringCount_ > 0) {
        use(*ringProgram_);
        glBindVertexArray(ringArray_);
        glDrawElementsInstanced(GL_TRIANGLES, ringIndexCount_, GL_UNSIGNED_INT, nullptr, ringCount_);
        triangles_ += (long long)(ringIndexCount_ / 3) * ringCount_;
    }
    if (lineCount_ > 0) {
        use(*lineProgram_);
        glBindVertexArray(lineArray_);
        glDrawArrays(GL_LINES, 0, lineCount_);
    }
    glBindVertexArray(0);
    glUseProgram(0);
    glDisable(GL_DEPTH_TEST);
}
