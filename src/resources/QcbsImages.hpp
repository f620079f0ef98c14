// SPDX-License-Identifier: GPL-3.0-or-later
// The program's built-in pictures that are not numbered icons: splash and about images.
#pragma once

#include <QPixmap>

// The program's built-in pictures that are not numbered icons.
QPixmap splashScreen();
QPixmap aboutImage();
// The picture on the left of every wizard page.
QPixmap wizardImage();
