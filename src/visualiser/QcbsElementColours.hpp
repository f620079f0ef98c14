// SPDX-License-Identifier: GPL-3.0-or-later
// The colour each chemical element is drawn in.
#pragma once

#include <QColor>

// The customary colours of molecular graphics (carbon grey, oxygen red,
// nitrogen blue, ...), by atomic number; pink for elements without one.
QColor elementColour(int atomicNumber);
