// SPDX-License-Identifier: GPL-3.0-or-later
// Writes a document's bytes over its file through a synced temporary file, with a backup.
#include "document/QcbsDocumentSaver.hpp"

#include <errno.h>
#include <fcntl.h>
#include <unistd.h>

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <algorithm>
#include <cstdio>

namespace {

// rename(2) replaces an existing target in one step, so an older backup is
// never gone while the file is not yet in its place.
bool renameReplacing(const QString& from, const QString& to) {
    return std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

// Makes the directory's new entry (the rename) durable as well.
void syncDirectory(const QString& fileName) {
    const int fd = ::open(QFile::encodeName(QFileInfo(fileName).absolutePath()).constData(),
                          O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) return;
    ::fsync(fd);
    ::close(fd);
}

// Fsyncs a file by its name.
bool syncFile(const QString& fileName) {
    const int fd = ::open(QFile::encodeName(fileName).constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return false;
    const bool synced = ::fsync(fd) == 0;
    ::close(fd);
    return synced;
}

// Makes the backup of the old file without ever moving the old file away:
// a second name for it (a hard link; a synced copy where the file system has
// none) is made under a temporary name and renamed over the backup name. So
// the backup is whole whenever it exists, an older one stays until then, and
// the file's own name keeps the old content until the new one replaces it.
bool makeBackup(const QString& fileName, const QString& backup) {
    const QString temporary = backup + QString(".%1.tmp").arg(::getpid());
    const QByteArray from = QFile::encodeName(fileName);
    const QByteArray to = QFile::encodeName(temporary);
    ::unlink(to.constData());
    if (::link(from.constData(), to.constData()) != 0) {
        if (!QFile::copy(fileName, temporary) || !syncFile(temporary)) {
            QFile::remove(temporary);
            return false;
        }
    }
    if (!renameReplacing(temporary, backup)) {
        QFile::remove(temporary);
        return false;
    }
    syncDirectory(backup);
    return true;
}

// Big texts go out in pieces, so that the progress can be told and the
// write stopped.
constexpr qsizetype kPiece = 8 * 1024 * 1024;

// Writes and syncs the temporary file; the caller commits it.
bool writeAll(QSaveFile& file, QByteArrayView bytes, const QcbsDocumentSaver::Progress& progress,
              QcbsDocumentSaver::Result& result) {
    QString& error = result.error;
    // The system's error number is taken at once, before anything else can set it.
    errno = 0;
    if (!file.open(QIODevice::WriteOnly)) {
        result.failure = QcbsDocumentSaver::failureOf(file.fileName(), errno);
        error = file.errorString();
        return false;
    }
    for (qsizetype written = 0; written < bytes.size();) {
        const qsizetype piece = std::min(kPiece, bytes.size() - written);
        errno = 0;
        if (file.write(bytes.data() + written, piece) != piece) {
            result.failure = QcbsDocumentSaver::failureOf(file.fileName(), errno);
            error = file.errorString();
            file.cancelWriting();
            return false;
        }
        written += piece;
        if (progress && !progress(written, bytes.size())) {
            error = "cancelled";
            result.cancelled = true;
            file.cancelWriting();
            return false;
        }
    }
    errno = 0;
    if (!file.flush()) {
        result.failure = QcbsDocumentSaver::failureOf(file.fileName(), errno);
        error = file.errorString();
        file.cancelWriting();
        return false;
    }
    if (::fsync(file.handle()) != 0) {
        result.failure = QcbsDocumentSaver::failureOf(file.fileName(), errno);
        error = "could not sync the file to the disk";
        file.cancelWriting();
        return false;
    }
    return true;
}

}  // namespace

QString QcbsDocumentSaver::backupName(const QString& fileName) {
    const qsizetype dot = fileName.indexOf(u'.', 1);
    if (dot < 0) return fileName + "_backup";
    return fileName.left(dot) + "_backup" + fileName.mid(dot);
}

QcbsDocumentSaver::Failure QcbsDocumentSaver::failureOf(const QString& fileName, int error) {
    switch (error) {
        case ENOSPC:
        case EDQUOT:
        case EFBIG:
            return Failure::NoSpace;
        case EROFS:
            return Failure::ReadOnlyFileSystem;
        default:
            break;
    }
    // A refusal (or no error number at all) is told by what may be written.
    const auto refused = [](int denied, Failure failure) {
        if (denied == EROFS) return Failure::ReadOnlyFileSystem;
        return denied == EACCES || denied == EPERM ? failure : Failure::Other;
    };
    const QByteArray file = QFile::encodeName(fileName);
    const QByteArray directory = QFile::encodeName(QFileInfo(fileName).absolutePath());
    if (QFileInfo::exists(fileName) && ::access(file.constData(), W_OK) != 0)
        return refused(errno, Failure::ReadOnlyFile);
    if (::access(directory.constData(), W_OK) != 0) return refused(errno, Failure::ReadOnlyDirectory);
    return refused(error, Failure::ReadOnlyDirectory);
}

QcbsDocumentSaver::Result QcbsDocumentSaver::save(const QString& fileName, QByteArrayView bytes, bool backup,
                                                  const Progress& progress) {
    Result result;
    // The new content goes to a synced temporary file renamed over the name:
    // until then the name holds the old content, whole. The backup is made
    // only once the new content is safe, so a failed or cancelled save
    // leaves everything as it was, an older backup included.
    QSaveFile file(fileName);
    if (!writeAll(file, bytes, progress, result)) return result;
    if (backup && QFileInfo::exists(fileName)) {
        result.backupName = backupName(fileName);
        result.backupFailed = !makeBackup(fileName, result.backupName);
    }
    errno = 0;
    if (!file.commit()) {
        result.failure = failureOf(fileName, errno);
        result.error = file.errorString();
        return result;
    }
    result.saved = true;
    syncDirectory(fileName);
    return result;
}
