// SPDX-License-Identifier: GPL-3.0-or-later
// The single-instance socket: where it lives, who may use it, and what it carries.
#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QLocalSocket>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QThread>
#include <cstring>

#include "ApplicationTestSupport.hpp"
#include "GuiTestSupport.hpp"
#include "application/QcbsInstanceSocket.hpp"

namespace {

using Files = QcbsInstanceSocket::Files;

mode_t modeOf(const QString& path) {
    struct stat status {};
    return ::lstat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_mode : 0;
}

// A socket file with nobody listening, as a program that crashed leaves it.
bool leaveSocket(const QString& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const QByteArray name = QFile::encodeName(path);
    if (name.size() >= qsizetype(sizeof address.sun_path)) return false;
    std::memcpy(address.sun_path, name.constData(), name.size());
    const int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
    const bool bound = fd >= 0 && ::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
    if (fd >= 0) ::close(fd);
    return bound;
}

const Files kFiles = {{"/data/a.cif", 0}, {"/data/b c:7.cif", 12}, {"/data/new\nline.cif", 3}};

// --- where it lives ----------------------------------------------------------------------

TEST(InstanceSocket, LivesInThePrivateRuntimeDirectoryNamedByUidAndSettings) {
    QTemporaryDir runtime;
    ASSERT_EQ(::chmod(QFile::encodeName(runtime.path()).constData(), 0700), 0);
    ScopedEnvironment xdg("XDG_RUNTIME_DIR", runtime.path().toUtf8());
    ScopedEnvironment prefs("TESSARYPREFS", "/settings/one");
    const QString path = QcbsInstanceSocket::defaultPath("Tessary");
    EXPECT_EQ(QFileInfo(path).path(), runtime.path());
    EXPECT_TRUE(QFileInfo(path).fileName().startsWith("tessary-" + QString::number(::geteuid()) + "-"))
        << path.toStdString();
    {
        ScopedEnvironment user("USER", "mallory");  // the user's name plays no part
        EXPECT_EQ(QcbsInstanceSocket::defaultPath("Tessary"), path);
    }
    ScopedEnvironment otherPrefs("TESSARYPREFS", "/settings/two");
    EXPECT_NE(QcbsInstanceSocket::defaultPath("Tessary"), path);
}

TEST(InstanceSocket, WithoutAPrivateRuntimeDirectoryADirectoryOfMode0700IsMadeOrRefused) {
    QTemporaryDir temp;
    ScopedEnvironment tmpdir("TMPDIR", temp.path().toUtf8());
    const QString own = temp.filePath("tessary-" + QString::number(::geteuid()));
    QTemporaryDir open;  // a runtime directory others may enter does not count
    ASSERT_EQ(::chmod(QFile::encodeName(open.path()).constData(), 0755), 0);
    for (const QByteArray& runtime : {QByteArray(), QByteArray(""), open.path().toUtf8()}) {
        ScopedEnvironment xdg("XDG_RUNTIME_DIR", runtime);
        EXPECT_EQ(QFileInfo(QcbsInstanceSocket::defaultPath("Tessary")).path(), own) << runtime.constData();
        EXPECT_EQ(modeOf(own) & 07777, mode_t(0700));
    }
    ScopedEnvironment xdg("XDG_RUNTIME_DIR", QByteArray());
    // A directory of ours left open is closed again.
    ASSERT_EQ(::chmod(QFile::encodeName(own).constData(), 0777), 0);
    EXPECT_FALSE(QcbsInstanceSocket::defaultPath("Tessary").isEmpty());
    EXPECT_EQ(modeOf(own) & 07777, mode_t(0700));
    // A link put in its place is never followed.
    ASSERT_TRUE(QDir(own).removeRecursively());
    ASSERT_TRUE(QFile::link(open.path(), own));
    EXPECT_EQ(QcbsInstanceSocket::defaultPath("Tessary"), QString());
    EXPECT_EQ(modeOf(open.path()) & 07777, mode_t(0755)) << "the link's target is left alone";
}

// --- what it carries -----------------------------------------------------------------------

TEST(InstanceSocket, AMessageCarriesNamesOfAnyTextWithTheirLinesAndNothingElseIsTaken) {
    const QByteArray message = QcbsInstanceSocket::encode(kFiles);
    EXPECT_EQ(QcbsInstanceSocket::decode(message), kFiles);
    EXPECT_EQ(QcbsInstanceSocket::decode(QcbsInstanceSocket::encode({})), Files{});
    for (const QByteArray& bad :
         {QByteArray(), QByteArray("/data/a.cif\n/data/b.cif\n"), message.chopped(1), message + "x",
          QByteArray(message).replace(0, 1, "X"), QcbsInstanceSocket::encode({{"", 0}}),
          QcbsInstanceSocket::encode({{"/a", -2}})})
        EXPECT_EQ(QcbsInstanceSocket::decode(bad), std::nullopt) << bad.toHex().constData();
}

TEST(InstanceSocket, OnlyItsOwnerMayConnectEvenUnderUmask000AndStaleSocketsAreReplaced) {
    QTemporaryDir dir;
    const QString path = dir.filePath("s");
    const mode_t previous = ::umask(0);
    QcbsInstanceSocket server;
    const bool listening = server.listen(path);
    ::umask(previous);
    ASSERT_TRUE(listening) << server.errorString().toStdString();
    EXPECT_TRUE(S_ISSOCK(modeOf(path)));
    EXPECT_EQ(modeOf(path) & 077, mode_t(0)) << std::oct << modeOf(path);

    QSignalSpy received(&server, &QcbsInstanceSocket::filesReceived);
    ASSERT_TRUE(QcbsInstanceSocket::send(path, kFiles));
    ASSERT_TRUE(received.wait(5000));
    EXPECT_EQ(received.at(0).at(0).value<Files>(), kFiles);

    // A second program of the same setup does not take the name over...
    QcbsInstanceSocket second;
    EXPECT_FALSE(second.listen(path));
    // ...but a socket left behind by a program that crashed is replaced.
    const QString left = dir.filePath("left");
    ASSERT_TRUE(leaveSocket(left));
    QcbsInstanceSocket third;
    EXPECT_TRUE(third.listen(left)) << third.errorString().toStdString();
    EXPECT_FALSE(QcbsInstanceSocket::send(dir.filePath("nobody"), kFiles));
}

// --- another user ------------------------------------------------------------------------

// Another local user, made for the test with useradd and removed after it.
class OtherUser {
public:
    OtherUser() : name_("tessary-peer-" + QString::number(::getpid())) {
        if (::geteuid() != 0) return;
        // Tests running side by side may hold the lock of the user database a moment.
        bool made = false;
        for (int attempt = 0; attempt < 20 && !made; ++attempt) {
            made = QProcess::execute("useradd", {"--system", "--no-create-home", "--shell",
                                                 "/usr/sbin/nologin", name_}) == 0;
            if (!made) QThread::msleep(250);
        }
        if (!made) return;
        if (const passwd* entry = ::getpwnam(name_.toLocal8Bit().constData())) {
            uid_ = entry->pw_uid;
            gid_ = entry->pw_gid;
        }
    }
    ~OtherUser() {
        if (uid_ != 0) QProcess::execute("userdel", {name_});
    }
    bool exists() const { return uid_ != 0; }
    uid_t uid() const { return uid_; }
    // Starts a program as this user.
    void start(QProcess& process, const QString& program, const QStringList& arguments) const {
        process.start("setpriv",
                      QStringList{"--reuid=" + QString::number(uid_), "--regid=" + QString::number(gid_),
                                  "--clear-groups", "--", program} +
                          arguments);
    }

private:
    QString name_;
    uid_t uid_ = 0;
    gid_t gid_ = 0;
};

class AnotherUser : public ::testing::Test {
protected:
    void SetUp() override {
        if (::geteuid() != 0)
            GTEST_SKIP() << "needs root to act as a second user; not tested as uid " << ::geteuid();
        if (!user_.exists()) GTEST_SKIP() << "useradd could not make a second user";
        // A place both users reach, and the stand-in program where both may run it.
        ASSERT_EQ(::chmod(QFile::encodeName(dir_.path()).constData(), 0777), 0);
        peer_ = dir_.filePath("instance_peer");
        ASSERT_TRUE(QFile::copy(INSTANCE_PEER_BINARY, peer_));
        ASSERT_EQ(::chmod(QFile::encodeName(peer_).constData(), 0755), 0);
    }
    // The stand-in listening at `path` as the other user.
    void listenAsOther(QProcess& process, const QString& path) {
        user_.start(process, peer_, {"listen", path});
        ASSERT_TRUE(process.waitForReadyRead(10000)) << process.readAllStandardError().toStdString();
        ASSERT_EQ(process.readLine(), "listening\n");
    }
    // Ends the stand-in and returns the byte counts of the connections it had.
    static QStringList connectionsOf(QProcess& process, const QString& path) {
        QLocalSocket stop;
        stop.connectToServer(path);
        EXPECT_TRUE(stop.waitForConnected(5000));
        stop.write("stop");
        stop.waitForBytesWritten(5000);
        stop.disconnectFromServer();
        EXPECT_TRUE(process.waitForFinished(10000));
        QStringList counts =
            QString::fromLatin1(process.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
        EXPECT_EQ(counts.value(counts.size() - 1), "4") << "the stop message ends the list";
        counts.removeLast();
        return counts;
    }

    OtherUser user_;
    QTemporaryDir dir_;
    QString peer_;
};

TEST_F(AnotherUser, ANameHeldByAnotherUserIsNeverUsed) {
    const QString path = dir_.filePath("taken");
    QProcess other;
    listenAsOther(other, path);
    EXPECT_FALSE(QcbsInstanceSocket::send(path, kFiles));
    QcbsInstanceSocket server;
    EXPECT_FALSE(server.listen(path)) << "nor is it removed to listen there";
    EXPECT_TRUE(QFileInfo::exists(path));
    // Even when the socket's file looks like ours, the program at the other
    // end is asked who it runs as, and learns nothing.
    ASSERT_EQ(::lchown(QFile::encodeName(path).constData(), ::geteuid(), ::getegid()), 0);
    EXPECT_FALSE(QcbsInstanceSocket::send(path, kFiles));
    EXPECT_EQ(connectionsOf(other, path), QStringList{"0"})
        << "one connection, refused before a byte was sent";
}

TEST_F(AnotherUser, AnotherUserCannotMakeTheProgramOpenFiles) {
    const QString path = dir_.filePath("ours");
    QcbsInstanceSocket server;
    ASSERT_TRUE(server.listen(path));
    QSignalSpy received(&server, &QcbsInstanceSocket::filesReceived);
    // Past the file's permissions (as if they had been lost), the server
    // still asks who connects.
    ASSERT_EQ(::chmod(QFile::encodeName(path).constData(), 0777), 0);
    const QString message = dir_.filePath("message");
    QFile file(message);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QcbsInstanceSocket::encode({{"/etc/shadow", 1}}));
    file.close();
    QProcess other;
    user_.start(other, peer_, {"send", path, message});
    // The other user's connection is taken and dropped while the test's
    // event loop runs.
    ASSERT_TRUE(waitUntil([&] { return other.state() == QProcess::NotRunning; }, 15000));
    EXPECT_EQ(other.exitCode(), 0) << other.readAllStandardError().toStdString();
    // Connections are served in order: once ours arrives, theirs was handled.
    ASSERT_TRUE(QcbsInstanceSocket::send(path, kFiles));
    ASSERT_TRUE(received.wait(5000));
    EXPECT_EQ(received.size(), 1);
    EXPECT_EQ(received.at(0).at(0).value<Files>(), kFiles);
}

}  // namespace
