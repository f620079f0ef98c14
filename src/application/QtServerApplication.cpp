// SPDX-License-Identifier: GPL-3.0-or-later
// The application base that receives the file names of later launches over a local socket.
#include "application/QtServerApplication.hpp"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QUrl>

#include "application/QcbsInstanceSocket.hpp"
#include "base/ORMALogQString.hpp"
#include "support/ORMALog.hpp"

namespace {

QString& storedBrowserScript() {
    static QString path;
    return path;
}

}  // namespace

QtServerApplication::QtServerApplication(const QString& name, int& argc, char** argv)
    : QApplication(argc, argv), name_(name) {
    setApplicationName(name);
    // Qt has taken its own options (-platform, -style, ...) out by now.
    commandLine_ = QcbsCommandLine::parse(arguments().mid(1));
    if (!commandLine_.problem.isEmpty() || commandLine_.help || commandLine_.version) return;
    if (qEnvironmentVariable("TESSARY_SINGLE_INSTANCE") == "0") return;
    const QString path = QcbsInstanceSocket::defaultPath(name);
    if (path.isEmpty()) {
        ORMALog::start_error_line() << "QtServerApplication - no private directory for the socket of " << name
                                    << "; files of later launches open in their own program";
        ORMALog::end_error_line();
        return;
    }
    if (!commandLine_.files.isEmpty() && QcbsInstanceSocket::send(path, commandLine_.files)) {
        handedOver_ = true;
        return;
    }
    listenForLaterLaunches(path);
}

QtServerApplication::~QtServerApplication() = default;

void QtServerApplication::open(const QString& /*filename*/) {}

void QtServerApplication::openAtLine(const QString& filename, int /*line*/) { open(filename); }

void QtServerApplication::processArgs() {
    for (const QcbsCommandLine::File& file : commandLine_.files) {
        if (file.line > 0)
            openAtLine(file.path, file.line);
        else
            open(file.path);
    }
}

QString QtServerApplication::socketPath() const {
    return instanceSocket_ != nullptr ? instanceSocket_->path() : QString();
}

void QtServerApplication::listenForLaterLaunches(const QString& path) {
    auto* socket = new QcbsInstanceSocket(this);
    if (!socket->listen(path)) {
        if (ORMALog::wants(1)) {
            ORMALog::start_debug_line(1)
                << "QtServerApplication - cannot listen on " << path << ": " << socket->errorString();
            ORMALog::end_debug_line();
        }
        delete socket;
        return;
    }
    instanceSocket_ = socket;
    // Each file is opened from the event loop, like a file named at start-up.
    connect(socket, &QcbsInstanceSocket::filesReceived, this, [this](const QcbsInstanceSocket::Files& files) {
        for (const QcbsCommandLine::File& file : files)
            postEvent(this, new OpenFileEvent(file.path, file.line));
    });
}

QEvent::Type QtServerApplication::OpenFileEvent::eventType() {
    static const QEvent::Type type = static_cast<QEvent::Type>(QEvent::registerEventType());
    return type;
}

void QtServerApplication::customEvent(QEvent* event) {
    if (event->type() == OpenFileEvent::eventType()) {
        const auto* file = static_cast<OpenFileEvent*>(event);
        if (file->line() > 0)
            openAtLine(file->filename(), file->line());
        else
            open(file->filename());
        return;
    }
    QApplication::customEvent(event);
}

void QtServerApplication::findBrowserScriptPath(const QStringList& directories) {
    for (const QString& directory : directories) {
        const QFileInfo script(QDir(directory).filePath("tessary-browser"));
        if (script.isFile() && script.isExecutable()) {
            storedBrowserScript() = script.absoluteFilePath();
            return;
        }
    }
}

QString QtServerApplication::browserScriptPath() { return storedBrowserScript(); }

bool QtServerApplication::openWebPage(const QString& url) {
    if (!storedBrowserScript().isEmpty()) return QProcess::startDetached(storedBrowserScript(), {url});
    return QDesktopServices::openUrl(QUrl(url));
}
