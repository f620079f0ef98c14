// SPDX-License-Identifier: GPL-3.0-or-later
// The private local socket through which a later launch hands its files to the running program.
#include "application/QcbsInstanceSocket.hpp"

#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QCryptographicHash>
#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QIODevice>
#include <QLocalServer>
#include <QLocalSocket>

#include "base/ORMALogQString.hpp"

namespace {

// The first bytes of a launch's message, and the most it may hold.
constexpr quint32 kMagic = 0x54534631;  // "TSF1"
constexpr qint64 kMaximumMessage = 4 * 1024 * 1024;

std::optional<struct stat> linkStatus(const QString& path) {
    struct stat status {};
    if (::lstat(QFile::encodeName(path).constData(), &status) != 0) return std::nullopt;
    return status;
}

}  // namespace

QcbsInstanceSocket::QcbsInstanceSocket(QObject* parent) : QObject(parent) {}

QcbsInstanceSocket::~QcbsInstanceSocket() = default;

bool QcbsInstanceSocket::isPrivateDirectory(const QString& path) {
    const std::optional<struct stat> status = linkStatus(path);
    return status && S_ISDIR(status->st_mode) && status->st_uid == ::geteuid() &&
           (status->st_mode & (S_IRWXG | S_IRWXO)) == 0;
}

QString QcbsInstanceSocket::defaultPath(const QString& name) {
    const QString uid = QString::number(::geteuid());
    QString directory = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (directory.isEmpty() || !isPrivateDirectory(directory)) {
        directory = QDir(QDir::tempPath()).filePath(name.toLower() + '-' + uid);
        ::mkdir(QFile::encodeName(directory).constData(), S_IRWXU);
        const std::optional<struct stat> status = linkStatus(directory);
        // A directory of ours that others may enter is closed; one of
        // another user's (or a link) is never used.
        if (status && S_ISDIR(status->st_mode) && status->st_uid == ::geteuid())
            ::chmod(QFile::encodeName(directory).constData(), S_IRWXU);
        if (!isPrivateDirectory(directory)) return QString();
    }
    // Separate settings directories (parallel tests, separate setups) get
    // separate programs.
    const QByteArray prefs = qEnvironmentVariable("TESSARYPREFS").toUtf8();
    const QString digest =
        QString::fromLatin1(QCryptographicHash::hash(prefs, QCryptographicHash::Sha1).toHex().left(12));
    return QDir(directory).filePath(name.toLower() + '-' + uid + '-' + digest);
}

bool QcbsInstanceSocket::peerIsThisUser(qintptr descriptor) {
    struct ucred credentials {};
    socklen_t size = sizeof credentials;
    if (descriptor < 0 ||
        ::getsockopt(static_cast<int>(descriptor), SOL_SOCKET, SO_PEERCRED, &credentials, &size) != 0)
        return false;
    return size == sizeof credentials && credentials.uid == ::geteuid();
}

bool QcbsInstanceSocket::listen(const QString& path) {
    path_ = path;
    if (const std::optional<struct stat> status = linkStatus(path)) {
        if (status->st_uid != ::geteuid()) {
            error_ = "the name is held by another user";
            return false;
        }
        // Ours: a program still listening keeps it; a crashed one left it.
        QLocalSocket probe;
        probe.connectToServer(path);
        if (probe.waitForConnected(500)) {
            error_ = "another program of this user listens there";
            return false;
        }
        QLocalServer::removeServer(path);
    }
    server_ = new QLocalServer(this);
    server_->setSocketOptions(QLocalServer::UserAccessOption);
    if (!server_->listen(path)) {
        error_ = server_->errorString();
        return false;
    }
    connect(server_, &QLocalServer::newConnection, this, &QcbsInstanceSocket::acceptConnections);
    return true;
}

void QcbsInstanceSocket::acceptConnections() {
    while (QLocalSocket* socket = server_->nextPendingConnection()) {
        if (!peerIsThisUser(socket->socketDescriptor())) {
            debugLine(1, "QcbsInstanceSocket - refused a connection from another user");
            socket->abort();
            socket->deleteLater();
            continue;
        }
        receive(socket);
    }
}

void QcbsInstanceSocket::receive(QLocalSocket* socket) {
    // The message is read once the sender is done; a sender that goes on
    // past any sensible size is cut off.
    auto buffer = std::make_shared<QByteArray>();
    auto read = [socket, buffer] {
        buffer->append(socket->readAll());
        if (buffer->size() > kMaximumMessage) socket->abort();
    };
    auto deliver = [this, socket, buffer, read] {
        read();
        socket->deleteLater();
        if (buffer->size() > kMaximumMessage) return;
        if (const std::optional<Files> files = decode(*buffer)) emit filesReceived(*files);
    };
    connect(socket, &QLocalSocket::readyRead, this, read);
    if (socket->state() == QLocalSocket::UnconnectedState)
        deliver();
    else
        connect(socket, &QLocalSocket::disconnected, this, deliver);
}

bool QcbsInstanceSocket::send(const QString& path, const Files& files, int timeoutMs) {
    const std::optional<struct stat> status = linkStatus(path);
    if (!status || !S_ISSOCK(status->st_mode) || status->st_uid != ::geteuid()) return false;
    QLocalSocket socket;
    socket.connectToServer(path);
    if (!socket.waitForConnected(timeoutMs)) return false;
    // The listener must be this user's program: the names of the files one
    // opens are nobody else's business.
    if (!peerIsThisUser(socket.socketDescriptor())) {
        socket.abort();
        return false;
    }
    socket.write(encode(files));
    bool sent = true;
    while (sent && socket.bytesToWrite() > 0) sent = socket.waitForBytesWritten(timeoutMs);
    socket.disconnectFromServer();
    if (socket.state() != QLocalSocket::UnconnectedState) socket.waitForDisconnected(timeoutMs);
    return sent;
}

QByteArray QcbsInstanceSocket::encode(const Files& files) {
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_6_0);
    stream << kMagic << qint32(files.size());
    for (const QcbsCommandLine::File& file : files) stream << file.path << qint32(file.line);
    return bytes;
}

std::optional<QcbsInstanceSocket::Files> QcbsInstanceSocket::decode(const QByteArray& bytes) {
    QDataStream stream(bytes);
    stream.setVersion(QDataStream::Qt_6_0);
    quint32 magic = 0;
    qint32 count = 0;
    stream >> magic >> count;
    if (stream.status() != QDataStream::Ok || magic != kMagic || count < 0) return std::nullopt;
    Files files;
    for (qint32 i = 0; i < count; ++i) {
        QcbsCommandLine::File file;
        qint32 line = 0;
        stream >> file.path >> line;
        if (stream.status() != QDataStream::Ok || line < 0 || file.path.isEmpty()) return std::nullopt;
        file.line = line;
        files << file;
    }
    if (!stream.atEnd()) return std::nullopt;
    return files;
}
