// SPDX-License-Identifier: GPL-3.0-or-later
// Writes a document's bytes over its file through a synced temporary file, with a backup.
#include "document/QcbsDocumentSaver.hpp"

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

// Big texts go out in pieces, so that the progress can be told and the
// write stopped.
constexpr qsizetype kPiece = 8 * 1024 * 1024;

bool writeAll(QSaveFile& file, QByteArrayView bytes, const QcbsDocumentSaver::Progress& progress,
              QString& error, bool& cancelled) {
    if (!file.open(QIODevice::WriteOnly)) {
        error = file.errorString();
        return false;
    }
    for (qsizetype written = 0; written < bytes.size();) {
        const qsizetype piece = std::min(kPiece, bytes.size() - written);
        if (file.write(bytes.data() + written, piece) != piece) {
            error = file.errorString();
            file.cancelWriting();
            return false;
        }
        written += piece;
        if (progress && !progress(written, bytes.size())) {
            error = "cancelled";
            cancelled = true;
            file.cancelWriting();
            return false;
        }
    }
    if (!file.flush()) {
        error = file.errorString();
        file.cancelWriting();
        return false;
    }
    if (::fsync(file.handle()) != 0) {
        error = "could not sync the file to the disk";
        file.cancelWriting();
        return false;
    }
    if (!file.commit()) {
        error = file.errorString();
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

QcbsDocumentSaver::Result QcbsDocumentSaver::save(const QString& fileName, QByteArrayView bytes, bool backup,
                                                  const Progress& progress) {
    Result result;
    bool movedToBackup = false;
    QFile::Permissions permissions;
    if (backup && QFileInfo::exists(fileName)) {
        result.backupName = backupName(fileName);
        permissions = QFile::permissions(fileName);
        movedToBackup = renameReplacing(fileName, result.backupName);
        result.backupFailed = !movedToBackup;
    }

    QSaveFile file(fileName);
    result.saved = writeAll(file, bytes, progress, result.error, result.cancelled);
    if (!result.saved) {
        // The old content goes back to its name; should that fail too, it
        // is still whole at the backup name.
        if (movedToBackup) renameReplacing(result.backupName, fileName);
        return result;
    }
    // A file made afresh after the backup rename keeps the old file's permissions.
    if (movedToBackup) QFile::setPermissions(fileName, permissions);
    syncDirectory(fileName);
    return result;
}
