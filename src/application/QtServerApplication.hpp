// SPDX-License-Identifier: GPL-3.0-or-later
// The application base that receives the file names of later launches over a local socket.
#pragma once

#include <QApplication>
#include <QEvent>
#include <QString>
#include <QStringList>

#include "application/QcbsCommandLine.hpp"

class QcbsInstanceSocket;

// The application base: file names named on the command line, and those a
// later launch of the program sends over a local socket, reach the virtual
// open() (openAtLine() for FILE:LINE). A launch that finds a running program
// of the same user hands its file names over and should then exit
// (handedOver()); one whose command line asks for help, the version or is
// not usable neither hands over nor listens.
class QtServerApplication : public QApplication {
    Q_OBJECT
public:
    QtServerApplication(const QString& name, int& argc, char** argv);
    ~QtServerApplication() override;

    virtual void open(const QString& filename);
    // A file named with a line to go to (FILE:LINE); here it is just opened.
    virtual void openAtLine(const QString& filename, int line);

    // Hands every file of the command line to open() or openAtLine().
    void processArgs();

    // The command line after Qt took its own options; its files are absolute.
    const QcbsCommandLine& commandLine() const { return commandLine_; }

    // True when a running program took this launch's file names.
    bool handedOver() const { return handedOver_; }

    // The local socket this program listens on for later launches; empty
    // when it does not listen.
    QString socketPath() const;

    // Remembers the first executable "tessary-browser" script found in the
    // directories; web pages are then opened through it, otherwise through
    // the desktop's browser.
    static void findBrowserScriptPath(const QStringList& directories);
    static QString browserScriptPath();
    static bool openWebPage(const QString& url);

    // The event that carries one file name from another launch to open().
    class OpenFileEvent : public QEvent {
    public:
        explicit OpenFileEvent(const QString& filename, int line = 0)
            : QEvent(eventType()), filename_(filename), line_(line) {}
        static QEvent::Type eventType();
        const QString& filename() const { return filename_; }
        int line() const { return line_; }

    private:
        QString filename_;
        int line_;
    };

protected:
    void customEvent(QEvent* event) override;

private:
    void listenForLaterLaunches(const QString& path);

    QString name_;
    QcbsCommandLine commandLine_;
    bool handedOver_ = false;
    QcbsInstanceSocket* instanceSocket_ = nullptr;
};
