// SPDX-License-Identifier: GPL-3.0-or-later
// Start-up: the splash screen, files handed over by a later launch, and FILE:LINE.
#include <gtest/gtest.h>

#include <QLabel>
#include <QLocalSocket>
#include <QRegularExpression>
#include <QScreen>
#include <QTemporaryDir>
#include <QTest>

#include "ApplicationTestSupport.hpp"
#include "DialogAnswerer.hpp"
#include "GuiTestSupport.hpp"
#include "application/QcbsApplication.hpp"
#include "application/QcbsInstanceSocket.hpp"
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
    ASSERT_FALSE(application()->socketPath().isEmpty()) << "the test program listens like the editor";
    ASSERT_TRUE(
        QcbsInstanceSocket::send(application()->socketPath(), {{"/data/a.cif", 0}, {"/data/b c.cif", 0}}));
    QTRY_COMPARE_WITH_TIMEOUT(window.opened.size(), 2, 5000);
    EXPECT_EQ(window.opened, (QStringList{"/data/a.cif", "/data/b c.cif"}));
}

// A main window with a file of numbered lines to open at one of them.
class OpenAtLine : public ::testing::Test {
protected:
    QString write(const QString& name, int lines) {
        QByteArray text = "data_lines\n";
        for (int i = 2; i <= lines; ++i)
            text += "_line_" + QByteArray::number(i) + " " + QByteArray::number(i) + "\n";
        return writeBytes(dir_.filePath(name), text);
    }
    // The line the window's status bar shows the cursor on.
    int cursorLine() const {
        static const QRegularExpression line("^Line ([0-9]+),");
        return line.match(window_.statusLine()->text()).captured(1).toInt();
    }
    bool showing(const QcbsMainWindow& window, const QString& path) const {
        return QFileInfo(window.document()->fileName()) == QFileInfo(path) && !window.document()->isLoading();
    }

    ScopedPrefsDir prefs_;
    QTemporaryDir dir_;
    DialogAnswerer answers_;
    QcbsMainWindow window_{buildTreeSharedData()};
};

TEST_F(OpenAtLine, TheCursorLandsOnTheLineOnceTheTextIsInEvenForALargeFile) {
    const struct {
        int lines;
        int asked;
        int landed;
    } cases[] = {
        {30, 17, 17},
        {30, 400, 30},          // past the end: the last line
        {60000, 45000, 45000},  // loaded in slices
    };
    for (const auto& c : cases) {
        const QString path = write(QString("lines-%1.cif").arg(c.lines), c.lines);
        application()->openAtLine(path, c.asked);
        ASSERT_TRUE(waitUntil([&] { return showing(window_, path) && cursorLine() == c.landed; }, 30000))
            << c.lines << " lines, line " << c.asked << ": " << window_.statusLine()->text().toStdString();
        ASSERT_TRUE(window_.fileClose());
    }
    EXPECT_TRUE(answers_.boxes.isEmpty());
}

TEST_F(OpenAtLine, AFileAlreadyOpenIsShownAtTheLineWithoutAQuestion) {
    const QString path = write("open.cif", 50);
    application()->open(path);
    ASSERT_TRUE(waitUntil([&] { return showing(window_, path); }));
    application()->openAtLine(path, 40);
    ASSERT_TRUE(waitUntil([&] { return cursorLine() == 40; }));
    EXPECT_TRUE(answers_.boxes.isEmpty()) << answers_.boxes.value(0).text.toStdString();
}

TEST_F(OpenAtLine, ALaterLaunchsFileLineGoesThroughTheSocket) {
    const QString path = write("sent.cif", 50);
    ASSERT_TRUE(QcbsInstanceSocket::send(application()->socketPath(), {{path, 33}}));
    ASSERT_TRUE(waitUntil([&] { return showing(window_, path) && cursorLine() == 33; }))
        << window_.statusLine()->text().toStdString();
    const QString missing = dir_.filePath("missing.cif");
    application()->openAtLine(missing, 3);
    ASSERT_EQ(answers_.boxes.size(), 1);
    EXPECT_EQ(answers_.boxes.last().text, "Could not open file \"" + missing + "\"");
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
    EXPECT_TRUE(waitUntil([] { return currentSplash() == nullptr || !currentSplash()->isVisible(); }));
    set_splash_status("after close");  // harmless without a splash
}

}  // namespace
