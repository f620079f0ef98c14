// The launcher: application object, splash screen, the first window, then
// the event loop. Everything else lives in libtessarylib.
#include <QFileInfo>
#include <QMainWindow>

#include "application/QcbsApplication.hpp"
#include "application/QcbsUtilities.hpp"

int main(int argc, char** argv) {
    QcbsApplication app(argc, argv);
    if (app.handedOver()) return 0;  // a running Tessary opens the files

    app.showSplash();
    set_splash_status("Creating main window...");
    QMainWindow window;
    window.setWindowTitle(programQName());
    window.resize(800, 650);
    window.show();
    app.closeSplash();
    app.processArgs();
    return app.exec();
}
