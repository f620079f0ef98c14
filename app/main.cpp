// SPDX-License-Identifier: GPL-3.0-or-later
// The launcher: application object, splash screen, shared data, first window, event loop.
// Everything else lives in libtessarylib.
#include <QFileInfo>
#include <QTimer>
#include <cstdio>

#include "application/QcbsApplication.hpp"
#include "application/QcbsCommandLine.hpp"
#include "application/QcbsMainWindow.hpp"
#include "application/QcbsMainWindowSharedData.hpp"
#include "base/QcbsUtilities.hpp"

int main(int argc, char** argv) {
    // --help and --version answer before Qt starts, so they work without a
    // display (in a terminal over ssh, in a package check).
    const QcbsCommandLine early = QcbsCommandLine::parse(QcbsCommandLine::arguments(argc, argv));
    if (early.help || early.version) {
        std::fputs((early.help ? QcbsCommandLine::helpText() : QcbsCommandLine::versionText()).toLocal8Bit(),
                   stdout);
        return 0;
    }

    QcbsApplication app(argc, argv);
    if (!app.commandLine().problem.isEmpty()) {
        std::fputs(
            ("tessary: " + app.commandLine().problem + "\nTry 'tessary --help' for more information.\n")
                .toLocal8Bit(),
            stderr);
        return 2;
    }
    if (app.handedOver()) return 0;  // a running Tessary opens the files

    app.showSplash();
    set_splash_status("Loading settings...");
    THandle<QcbsMainWindowSharedData> shared(
        new QcbsMainWindowSharedData(QFileInfo(app.applicationFilePath())));
    set_splash_status("Creating main window...");
    // The window shows itself once built.
    auto* window = new QcbsMainWindow(shared, QcbsMainWindow::StartWithNewFile);
    window->setAttribute(Qt::WA_DeleteOnClose);
    app.closeSplash();
    // Files named on the command line go to the first window.
    app.processArgs();
    // Unsaved edits left by a Tessary that ended without saving them.
    QTimer::singleShot(0, window, &QcbsMainWindow::offerRecoveryAtStart);
    return app.exec();
}
