#include "application/QcbsMainWindow.hpp"

#include <QStatusBar>

#include "application/QcbsUtilities.hpp"

QcbsMainWindow::QcbsMainWindow(QWidget* parent) : QMainWindow(parent) {
    setObjectName("mainwindow");
    setWindowTitle(programQName());
}

QcbsMainWindow::~QcbsMainWindow() = default;

void QcbsMainWindow::fileOpen(const QString& filename, bool /*interactive*/) {
    statusBar()->showMessage("Opening files is not available yet: " + filename);
}
