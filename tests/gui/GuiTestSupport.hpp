// SPDX-License-Identifier: GPL-3.0-or-later
// Helpers of the GUI tests: fresh settings, a capture of the log, an environment variable set.
#pragma once

#include <QDeadlineTimer>
#include <QString>
#include <QTemporaryDir>
#include <QTest>
#include <sstream>

#include "support/ORMALog.hpp"

// Gives a test its own, empty settings directory (TESSARYPREFS) and restores
// the previous one afterwards.
class ScopedPrefsDir {
public:
    ScopedPrefsDir() : previous_(qgetenv("TESSARYPREFS")) { qputenv("TESSARYPREFS", dir_.path().toUtf8()); }
    ~ScopedPrefsDir() { qputenv("TESSARYPREFS", previous_); }
    QString path() const { return dir_.path(); }
    QString iniFile() const { return dir_.filePath("tessary.ini"); }

private:
    QTemporaryDir dir_;
    QByteArray previous_;
};

// Collects the log lines written while it lives, at the given level.
class ScopedLogCapture {
public:
    explicit ScopedLogCapture(int level = 0) : level_(ORMALog::level_), minimum_(ORMALog::minimum_level_) {
        ORMALog::level_ = level;
        ORMALog::minimum_level_ = 0;
        ORMALog::set_sink(&out_);
    }
    ~ScopedLogCapture() {
        ORMALog::set_sink(nullptr);
        ORMALog::level_ = level_;
        ORMALog::minimum_level_ = minimum_;
    }
    std::string text() const { return out_.str(); }

private:
    std::ostringstream out_;
    int level_;
    int minimum_;
};

// Lets the event loop run until the condition holds or the time is up;
// tells whether it holds. GUI tests wait for conditions this way, never for
// one pass of the event loop.
template <class Condition>
bool waitUntil(Condition condition, int milliseconds = 20000) {
    const QDeadlineTimer deadline(milliseconds);
    while (!condition()) {
        if (deadline.hasExpired()) return false;
        QTest::qWait(5);
    }
    return true;
}

// Sets or clears an environment variable for the life of the object.
class ScopedEnvironment {
public:
    ScopedEnvironment(const char* name, const QByteArray& value)
        : name_(name), had_(qEnvironmentVariableIsSet(name)), previous_(qgetenv(name)) {
        if (value.isNull())
            qunsetenv(name);
        else
            qputenv(name, value);
    }
    ~ScopedEnvironment() {
        if (had_)
            qputenv(name_, previous_);
        else
            qunsetenv(name_);
    }

private:
    const char* name_;
    bool had_;
    QByteArray previous_;
};
