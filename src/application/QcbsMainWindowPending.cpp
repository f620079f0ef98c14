// SPDX-License-Identifier: GPL-3.0-or-later
// The main window's connected functions whose work is not built yet.
// Each tells the user so in the status bar instead of doing nothing. Replace them one by one,
// deleting each from this file as its real version lands elsewhere.
#include <QDropEvent>

#include "application/QcbsMainWindow.hpp"

// --- checking, views and wizards -------------------------------------------------------

void QcbsMainWindow::publicationWizard() { showNotAvailable("The publication wizard"); }
