// SPDX-License-Identifier: GPL-3.0-or-later
// Runs the GUI tests in one QcbsApplication on the offscreen platform, with fresh settings.
#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "application/QcbsApplication.hpp"

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QTemporaryDir prefs;
    qputenv("TESSARYPREFS", prefs.path().toUtf8());
    // Recovery files of the windows tests make stay out of the user's own.
    QTemporaryDir state;
    qputenv("XDG_STATE_HOME", state.path().toUtf8());
    ::testing::InitGoogleTest(&argc, argv);
    QcbsApplication app(argc, argv);
    return RUN_ALL_TESTS();
}
