// SPDX-License-Identifier: GPL-3.0-or-later
// Runs the OpenGL view tests on an X server: DISPLAY's, or a private Xvfb.
#include <gtest/gtest.h>
#include <sys/prctl.h>

#include <QApplication>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <csignal>
#include <memory>

namespace {

// Xvfb picks a free display number itself (-displayfd) and writes it, so
// test processes running side by side never race for one.
std::unique_ptr<QProcess> startPrivateDisplay() {
    const QString xvfb = QStandardPaths::findExecutable("Xvfb");
    if (xvfb.isEmpty()) return nullptr;
    auto server = std::make_unique<QProcess>();
    // The server ends with this process, even when a test crashes it.
    server->setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGTERM); });
    server->start(xvfb, {"-displayfd", "1", "-nolisten", "tcp", "-screen", "0", "1280x1024x24"});
    QByteArray number;
    while (!number.contains('\n') && server->waitForReadyRead(15000))
        number += server->readAllStandardOutput();
    if (number.trimmed().isEmpty()) return nullptr;
    qputenv("DISPLAY", ":" + number.trimmed());
    return server;
}

}  // namespace

int main(int argc, char** argv) {
    QTemporaryDir prefs;
    qputenv("TESSARYPREFS", prefs.path().toUtf8());
    std::unique_ptr<QProcess> server;
    if (qEnvironmentVariableIsEmpty("DISPLAY")) server = startPrivateDisplay();
    // Without any X server the tests run offscreen, where they say why they skip.
    qputenv("QT_QPA_PLATFORM", qEnvironmentVariableIsEmpty("DISPLAY") ? "offscreen" : "xcb");
    ::testing::InitGoogleTest(&argc, argv);
    int result = 0;
    {
        QApplication app(argc, argv);
        result = RUN_ALL_TESTS();
    }
    if (server) {
        server->terminate();
        if (!server->waitForFinished(3000)) server->kill();
    }
    return result;
}
