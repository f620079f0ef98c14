// SPDX-License-Identifier: GPL-3.0-or-later
// The application base that receives the file names of later launches over a local socket.
#include "application/QtServerApplication.hpp"

#include <QCryptographicHash>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>
#include <QProcess>
#include <QUrl>

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
    const QStringList args = arguments();
    for (qsizetype i = 1; i < args.size(); ++i) {
        if (args.at(i).startsWith('-')) continue;
        fileArguments_ << QFileInfo(args.at(i)).absoluteFilePath();
    }
    if (qEnvironmentVariable("TESSARY_SINGLE_INSTANCE") == "0") return;
    if (!fileArguments_.isEmpty() && handToRunningInstance()) {
        handedOver_ = true;
        return;
    }
    listenForLaterLaunches();
}

QtServerApplication::~QtServerApplication() = default;

void QtServerApplication::open(const QString& /*filename*/) {}

void QtServerApplication::processArgs() {
    for (const QString& file : fileArguments_) open(file);
}

QString QtServerApplication::serverName(const QString& name) {
    const QByteArray setup = qEnvironmentVariable("USER").toUtf8() + '\n' + qEnvironmentVariable("TESSARYPREFS").toUtf8();
    const QByteArray digest = QCryptographicHash::hash(setup, QCryptographicHash::Sha1).toHex().left(16);
    return name.toLower() + '-' + QString::fromLatin1(digest);
}

bool QtServerApplication::handToRunningInstance() {
    QLocalSocket socket;
    socket.connectToServer(serverName(name_));
    if (!socket.waitForConnected(500)) return false;
    socket.write(fileArguments_.join('\n').toUtf8() + '\n');
    const bool sent = socket.waitForBytesWritten(2000);
    socket.disconnectFromServer();
    if (socket.state() != QLocalSocket::UnconnectedState) socket.waitForDisconnected(1000);
    return sent;
}

void QtServerApplication::listenForLaterLaunches() {
    server_ = new QLocalServer(this);
    const QString serverId = serverName(name_);
    if (!server_->listen(serverId)) {
        // A server left behind by a program that crashed: nobody answers it.
        QLocalServer::removeServer(serverId);
        if (!server_->listen(serverId)) {
            if (ORMALog::wants(1)) {
                ORMALog::start_debug_line(1) << "QtServerApplication - cannot listen on " << serverId << ": "
                                             << server_->errorString();
                ORMALog::end_debug_line();
            }
            return;
        }
    }
    connect(server_, &QLocalServer::newConnection, this, &QtServerApplication::readLaterLaunch);
}

void QtServerApplication::readLaterLaunch() {
    while (QLocalSocket* socket = server_->nextPendingConnection()) {
        // The names arrive as lines; they are opened once the sender is done.
        auto deliver = [this, socket]() {
            const QStringList names = QString::fromUtf8(socket->readAll()).split('\n', Qt::SkipEmptyParts);
            for (const QString& name : names) postEvent(this, new OpenFileEvent(name));
            socket->deleteLater();
        };
        if (socket->state() == QLocalSocket::UnconnectedState) {
            deliver();
        } else {
            connect(socket, &QLocalSocket::disconnected, socket, deliver);
        }
    }
}

QEvent::Type QtServerApplication::OpenFileEvent::eventType() {
    static const QEvent::Type type = static_cast<QEvent::Type>(QEvent::registerEventType());
    return type;
}

void QtServerApplication::customEvent(QEvent* event) {
    if (event->type() == OpenFileEvent::eventType()) {
        open(static_cast<OpenFileEvent*>(event)->filename());
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
