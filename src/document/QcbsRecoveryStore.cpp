// SPDX-License-Identifier: GPL-3.0-or-later
// The directory of recovery files: where it is, who owns each record, writing one safely.
#include "document/QcbsRecoveryStore.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <algorithm>
#include <cerrno>
#include <cstring>

namespace {

// The first characters of the boot's id: a process id means nothing after a reboot.
QString bootId() {
    static const QString id = [] {
        QFile file("/proc/sys/kernel/random/boot_id");
        if (!file.open(QIODevice::ReadOnly)) return QString("noboot");
        return QString::fromLatin1(file.readAll().trimmed()).remove('-').left(12);
    }();
    return id;
}

// The start time of a running process (in clock ticks since boot); nothing
// for a process that is gone or a zombie.
std::optional<qulonglong> startTime(qint64 pid) {
    QFile file(QString("/proc/%1/stat").arg(pid));
    if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
    const QByteArray stat = file.readAll();
    // The command name in parentheses may hold blanks: the fields follow its last ")".
    const qsizetype close = stat.lastIndexOf(')');
    if (close < 0) return std::nullopt;
    const QList<QByteArray> fields = stat.mid(close + 2).split(' ');
    // Field 3 is the state, field 22 the start time.
    if (fields.size() < 20 || fields[0] == "Z" || fields[0] == "X") return std::nullopt;
    bool ok = false;
    const qulonglong start = fields[19].toULongLong(&ok);
    return ok ? std::optional<qulonglong>(start) : std::nullopt;
}

const QRegularExpression& idPattern() {
    static const QRegularExpression pattern("^([0-9a-z]+)-([0-9]+)-([0-9]+)-([0-9]+)$");
    return pattern;
}

QString systemError(const QString& what, int error) {
    return what + ": " + QString::fromLocal8Bit(std::strerror(error));
}

bool writeAll(int fd, const char* data, std::size_t size) {
    while (size > 0) {
        const ssize_t written = ::write(fd, data, size);
        if (written < 0) {
            if (errno == EINTR) continue;
            return false;
        }
        data += written;
        size -= static_cast<std::size_t>(written);
    }
    return true;
}

}  // namespace

QString QcbsRecoveryStore::directory() {
    const QString state = qEnvironmentVariable("XDG_STATE_HOME");
    // A relative value is to be ignored.
    const QString base =
        !state.isEmpty() && QDir::isAbsolutePath(state) ? state : QDir::homePath() + "/.local/state";
    return QDir::cleanPath(base + "/tessary/recovery");
}

bool QcbsRecoveryStore::makeDirectory(QString* error) {
    const QString path = directory();
    if (!QDir().mkpath(path)) {
        if (error != nullptr) *error = "cannot make the directory " + path;
        return false;
    }
    // Made by an older run or by hand with other rights: the text of unsaved
    // documents is the user's alone.
    if (::chmod(QFile::encodeName(path).constData(), 0700) != 0) {
        if (error != nullptr) *error = systemError("cannot make " + path + " private", errno);
        return false;
    }
    return true;
}

QString QcbsRecoveryStore::newId() {
    static std::atomic<int> count = 0;
    static const QString process = [] {
        const qint64 pid = QCoreApplication::applicationPid();
        return QString("%1-%2-%3").arg(bootId()).arg(pid).arg(startTime(pid).value_or(0));
    }();
    return process + "-" + QString::number(++count);
}

QString QcbsRecoveryStore::pathOf(const QString& id) { return directory() + "/" + id + Suffix; }

bool QcbsRecoveryStore::ownerAlive(const QString& id) {
    const QRegularExpressionMatch match = idPattern().match(id);
    if (!match.hasMatch() || match.captured(1) != bootId()) return false;
    const std::optional<qulonglong> start = startTime(match.captured(2).toLongLong());
    return start && QString::number(*start) == match.captured(3);
}

QList<QcbsRecoveryRecord> QcbsRecoveryStore::orphans(
    const std::function<bool(const QcbsRecoveryRecord&)>& wanted) {
    QList<QcbsRecoveryRecord> records;
    const QDir dir(directory());
    for (const QFileInfo& entry : dir.entryInfoList(QDir::Files | QDir::Hidden)) {
        const QString name = entry.fileName();
        if (name.endsWith(PartSuffix)) {
            // Left by a process killed while it wrote: never a record.
            const QString id = name.section('.', 0, 0);
            if (!ownerAlive(id)) QFile::remove(entry.filePath());
            continue;
        }
        if (!name.endsWith(Suffix)) continue;
        const QString id = name.chopped(static_cast<qsizetype>(std::strlen(Suffix)));
        if (ownerAlive(id)) continue;
        QFile file(entry.filePath());
        if (!file.open(QIODevice::ReadOnly)) continue;
        std::optional<QcbsRecoveryRecord> record = QcbsRecoveryRecord::readHeader(file);
        if (!record) continue;
        record->id = id;
        // Only the records wanted have their whole text read and checked.
        if (wanted && !wanted(*record)) continue;
        if (!file.seek(0) || !QcbsRecoveryRecord::read(file)) continue;
        records << *record;
    }
    std::stable_sort(
        records.begin(), records.end(),
        [](const QcbsRecoveryRecord& a, const QcbsRecoveryRecord& b) { return a.written < b.written; });
    return records;
}

std::optional<QcbsRecoveryRecord> QcbsRecoveryStore::load(const QString& id, QByteArray* text) {
    QFile file(pathOf(id));
    if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
    std::optional<QcbsRecoveryRecord> record = QcbsRecoveryRecord::read(file, text);
    if (record) record->id = id;
    return record;
}

QString QcbsRecoveryStore::write(const QString& id, const QByteArray& header, std::string_view text,
                                 const std::atomic<bool>* cancel) {
    QString problem;
    if (!makeDirectory(&problem)) return problem;
    const QByteArray path = QFile::encodeName(pathOf(id));
    const QByteArray part = path + PartSuffix;
    const int fd = ::open(part.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (fd < 0) return systemError("cannot write " + QFile::decodeName(part), errno);
    const auto fail = [&](const QString& what) {
        const int error = errno;
        ::close(fd);
        ::unlink(part.constData());
        return systemError(what, error);
    };
    if (::fchmod(fd, 0600) != 0) return fail("cannot make the record private");
    if (!writeAll(fd, header.constData(), static_cast<std::size_t>(header.size())))
        return fail("cannot write the record");
    // In pieces, so that a write no longer wanted stops soon.
    constexpr std::size_t kPiece = 8 * 1024 * 1024;
    for (std::size_t at = 0; at < text.size(); at += kPiece) {
        if (cancel != nullptr && cancel->load()) {
            errno = ECANCELED;
            return fail("cancelled");
        }
        if (!writeAll(fd, text.data() + at, std::min(kPiece, text.size() - at)))
            return fail("cannot write the record");
    }
    if (::fsync(fd) != 0) return fail("cannot sync the record");
    if (::close(fd) != 0) {
        const int error = errno;
        ::unlink(part.constData());
        return systemError("cannot write the record", error);
    }
    if (cancel != nullptr && cancel->load()) {
        ::unlink(part.constData());
        return "cancelled";
    }
    if (::rename(part.constData(), path.constData()) != 0) {
        const int error = errno;
        ::unlink(part.constData());
        return systemError("cannot put the record in place", error);
    }
    // The rename itself on the disk.
    const int dir = ::open(QFile::encodeName(directory()).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (dir >= 0) {
        ::fsync(dir);
        ::close(dir);
    }
    return QString();
}

void QcbsRecoveryStore::remove(const QString& id) {
    QFile::remove(pathOf(id));
    QFile::remove(pathOf(id) + PartSuffix);
}
