// SPDX-License-Identifier: GPL-3.0-or-later
// The application base that receives the file names of later launches over a local socket.
#pragma once

#include <QApplication>
#include <QEvent>
#include <QString>
#include <QStringList>

class QLocalServer;

// The application base: file names named on the command line, and those a
// later launch of the program sends over a local socket, reach the virtual
// open(). A launch that finds a running program hands its file names over
// and should then exit (handedOver()).
class QtServerApplication : public QApplication {
    Q_OBJECT
public:
    QtServerApplication(const QString& name, int& argc, char** argv);
    ~QtServerApplication() override;

    virtual void open(const QString& filename);

    // Hands every file name of the command line to open().
    void processArgs();

    // The file names given on the command line (made absolute).
    const QStringList& fileArguments() const { return fileArguments_; }

    // True when a running program took this launch's file names.
    bool handedOver() const { return handedOver_; }

    // The name of the local socket the first launch listens on; it depends on
    // the user and the settings directory, so that separate setups (and
    // parallel tests) never meet.
    static QString serverName(const QString& name);

    // Remembers the first executable "tessary-browser" script found in the
    // directories; web pages are then opened through it, otherwise through
    // the desktop's browser.
    static void findBrowserScriptPath(const QStringList& directories);
    static QString browserScriptPath();
    static bool openWebPage(const QString& url);

    // The event that carries one file name from another launch to open().
    class OpenFileEvent : public QEvent {
    public:
        explicit OpenFileEvent(const QString& filename) : QEvent(eventType()), filename_(filename) {}
        static QEvent::Type eventType();
        const QString& filename() const { return filename_; }

    private:
        QString filename_;
    };

protected:
    void customEvent(QEvent* event) override;

private:
    bool handToRunningInstance();
    void listenForLaterLaunches();
    void readLaterLaunch();

    QString name_;
    QStringList fileArguments_;
    bool handedOver_ = false;
    QLocalServer* server_ = nullptr;
};
