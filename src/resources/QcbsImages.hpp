#pragma once

#include <QPixmap>

// The program's built-in pictures that are not numbered icons.
QPixmap splashScreen();
QPixmap aboutImage();
