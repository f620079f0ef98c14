// SPDX-License-Identifier: GPL-3.0-or-later
// Start-up: the splash screen, and files handed over by a later launch.
#include <gtest/gtest.h>

#include <QLabel>
#include <QLocalSocket>
#include <QScreen>
#include <QTest>

#include "GuiTestSupport.hpp"
#include "application/QcbsApplication.hpp"
#include "application/QcbsMainWindow.hpp"
#include "base/QcbsUtilities.hpp"

namespace {

class RecordingWindow : public QcbsMainWindow {
public:
    RecordingWindow()
        : QcbsMainWindow(THandle<QcbsMainWindowSharedData>(
              new QcbsMainWindowSharedData(QFileInfo(QCoreApplication::applicationFilePath())))) {}
    void fileOpen(const QString& filename, bool interactive) override {
        if (interactive) opened << filename;
    }
    QStringList opened;
};

QcbsApplication* application() { return static_cast<QcbsApplication*>(QCoreApplication::instance()); }

TEST(StartUp, AFileBeforeAnyMainWindowIsLoggedAndDropped) {
    ScopedLogCapture log;
    QMainWindow plain;  // a main window of another class does not count
    application()->open("/data/first.cif");
    EXPECT_EQ(log.text(),
              "Error: QcbsApplication - cannot open file because main window has not yet been created: "
              "/data/first.cif\n");
}

TEST(StartUp, FilesFromALaterLaunchOpenInteractivelyInTheEditorWindow) {
    QMainWindow plain;
    RecordingWindow window;
    QLocalSocket socket;
    socket.connectToServer(QtServerApplication::serverName("Tessary"));
    ASSERT_TRUE(socket.waitForConnected(2000));
    socket.write("/data/a.cif\n/data/b c.cif\n");
    ASSERT_TRUE(socket.waitForBytesWritten(2000));
    socket.disconnectFromServer();
    QTRY_COMPARE_WITH_TIMEOUT(window.opened.size(), 2, 5000);
    EXPECT_EQ(window.opened, (QStringList{"/data/a.cif", "/data/b c.cif"}));
}

TEST(StartUp, TheSplashIsCentredShowsItsStatusAndGoesAway) {
    QLabel* splash = application()->showSplash();
    ASSERT_NE(splash, nullptr);
    EXPECT_TRUE(splash->isVisible());
    EXPECT_EQ(splash->windowTitle(), "Tessary");
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    EXPECT_EQ(splash->x(), (screen.left() + screen.right()) / 2 - splash->width() / 2);
    EXPECT_EQ(splash->y(), (screen.top() + screen.bottom()) / 2 - splash->height() / 2);
    const QImage before = splash->pixmap().toImage();
    set_splash_status("Loading dictionaries...");
    EXPECT_NE(splash->pixmap().toImage(), before) << "the status line is drawn";
    application()->closeSplash();
    QTest::qWait(0);
    EXPECT_TRUE(currentSplash() == nullptr || !currentSplash()->isVisible());
    set_splash_status("after close");  // harmless without a splash
}

}  // namespace
