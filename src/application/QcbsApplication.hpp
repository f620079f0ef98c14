// SPDX-License-Identifier: GPL-3.0-or-later
// The editor's application object: the splash screen at start-up, files opened in a window.
#pragma once

#include <QDate>
#include <QPixmap>
#include <QString>

#include "application/QtServerApplication.hpp"

class QLabel;
class QcbsMainWindow;

// The editor's application object: shows the splash screen while start-up
// runs and opens the files that reach it in the first main window.
class QcbsApplication : public QtServerApplication {
    Q_OBJECT
public:
    QcbsApplication(int& argc, char** argv);
    ~QcbsApplication() override;

    // Opens a file named on the command line or sent by a later launch in the
    // first main window; before any main window exists the name is logged as
    // an error and dropped.
    void open(const QString& filename) override;
    // Opens a file as open() does, or turns to the window that shows it
    // already, and puts the cursor on the line (the last line when the text
    // is shorter) once the text is in.
    void openAtLine(const QString& filename, int line) override;

    QLabel* showSplash();
    void closeSplash();

private:
    static QcbsMainWindow* firstMainWindow();
    static QcbsMainWindow* windowShowing(const QString& filename);

    // Kept for the suite's windows; this program does not use them.
    void* reserved1_ = nullptr;
    void* reserved2_ = nullptr;
    void* reserved3_ = nullptr;
    void* reserved4_ = nullptr;
    QString reservedText_;
};

// The status line on the splash screen; nothing happens when none is shown.
void set_splash_status(const QString& txt);

// The splash screen currently shown, or null.
QLabel* currentSplash();
