// SPDX-License-Identifier: GPL-3.0-or-later
// Whether this display can draw the 3-D view, and the OpenGL the view asks for.
#pragma once

#include <QString>
#include <QSurfaceFormat>

// OpenGL 3.3 core with a depth buffer.
QSurfaceFormat structureViewFormat();

// Empty when an OpenGL context of that format can be made and used here,
// in windows that can be shown; otherwise, in words, why not. Tried once;
// the answer is kept.
QString openGLProblem();
