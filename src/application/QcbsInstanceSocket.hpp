// SPDX-License-Identifier: GPL-3.0-or-later
// The private local socket through which a later launch hands its files to the running program.
#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QString>
#include <optional>

#include "application/QcbsCommandLine.hpp"

class QLocalServer;
class QLocalSocket;

// The local socket through which a later launch of the program hands its
// files to the one running. Only the user who runs the program may use it:
// it lives in a directory that only the user can enter, is created for the
// user alone, and both ends check the other's user id (SO_PEERCRED) before
// trusting it, so another user can neither receive the names of the files
// opened nor make the program open any.
class QcbsInstanceSocket : public QObject {
    Q_OBJECT
public:
    using Files = QList<QcbsCommandLine::File>;

    explicit QcbsInstanceSocket(QObject* parent = nullptr);
    ~QcbsInstanceSocket() override;

    // The socket of the program `name` for this user and settings directory
    // (TESSARYPREFS): in $XDG_RUNTIME_DIR when that is a directory of the
    // user's that nobody else may enter, otherwise in <temp>/<name>-<uid>,
    // made with mode 0700 (or set so when it is the user's). Empty when
    // neither is safe to use.
    static QString defaultPath(const QString& name);

    // Whether `path` is a directory (not a link) of this user's that nobody
    // else may enter.
    static bool isPrivateDirectory(const QString& path);

    // Listens at `path`. A socket left there by a program of this user that
    // no longer runs is replaced; a name held by another user is never used.
    bool listen(const QString& path);
    QString path() const { return path_; }
    QString errorString() const { return error_; }

    // Hands files to the program listening at `path` when it runs as this
    // user; false when there is none (or another user holds the name).
    static bool send(const QString& path, const Files& files, int timeoutMs = 2000);

    // The message a launch sends, and the files read back from one
    // (nothing when the bytes are not such a message).
    static QByteArray encode(const Files& files);
    static std::optional<Files> decode(const QByteArray& bytes);

    // Whether the process at the other end of a connected local socket runs
    // as this user.
    static bool peerIsThisUser(qintptr descriptor);

signals:
    // Files handed over by a later launch of this user.
    void filesReceived(const QcbsInstanceSocket::Files& files);

private:
    void acceptConnections();
    void receive(QLocalSocket* socket);

    QLocalServer* server_ = nullptr;
    QString path_;
    QString error_;
};
