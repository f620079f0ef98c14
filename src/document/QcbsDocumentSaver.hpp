// SPDX-License-Identifier: GPL-3.0-or-later
// Writes a document's bytes over its file through a synced temporary file, with a backup.
#pragma once

#include <QByteArrayView>
#include <QString>
#include <functional>

// Writes a document's bytes over its file so that neither a failure of the
// disk nor the process killed at any moment can cost the old content: the
// bytes go to a temporary file in the same directory, are flushed and
// synced, and only then is that file renamed over the old one. So the name
// holds the whole old content or the whole new one at every instant. With a
// backup asked for, a second name for the old file (a hard link, or a synced
// copy) is made once the new content is on the disk, just before the rename,
// and renamed over the backup name: the backup is whole whenever it exists,
// and a failed save leaves an older one in place.
class QcbsDocumentSaver {
public:
    // What made a save fail, for the user.
    enum class Failure {
        None,
        NoSpace,             // the device (or the user's quota, or the size limit) is full
        ReadOnlyDirectory,   // no new file may be made in the directory
        ReadOnlyFile,        // the file may not be written
        ReadOnlyFileSystem,  // the file system is mounted read-only
        Other,
    };

    struct Result {
        bool saved = false;
        // A backup was asked for but could not be made at backupName; the
        // save itself went on.
        bool backupFailed = false;
        QString backupName;
        // The write was stopped by the progress function.
        bool cancelled = false;
        // Why the write failed, for the log.
        QString error;
        Failure failure = Failure::None;
    };

    // Told how many bytes are written of how many; returning false stops
    // the write, and the old content stays. May be called on any thread.
    using Progress = std::function<bool(qint64 written, qint64 total)>;

    // The whole path with "_backup" inserted before the first "." at index 1
    // or later, so that a dot in a directory name takes it
    // ("a.b/c.cif" -> "a_backup.b/c.cif"); a path without such a dot gets
    // "_backup" at its end.
    static QString backupName(const QString& fileName);

    // What failed, from the system's error number (0 when unknown) and the
    // file and its directory as they are.
    static Failure failureOf(const QString& fileName, int error);

    // Safe on a worker thread: it touches nothing but the file system.
    static Result save(const QString& fileName, QByteArrayView bytes, bool backup,
                       const Progress& progress = {});
};
