// SPDX-License-Identifier: GPL-3.0-or-later
// The directory of recovery files: where it is, who owns each record, writing one safely.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <atomic>
#include <functional>
#include <optional>
#include <string_view>

#include "document/QcbsRecoveryRecord.hpp"

// The directory of recovery files, private to the user (mode 0700, each file
// 0600): $XDG_STATE_HOME/tessary/recovery, or ~/.local/state/tessary/recovery
// when that variable is unset or not an absolute path.
//
// A record's id names the process that wrote it (the boot, the process id
// and its start time), so that a record whose process still runs (another
// window of a running Tessary) is never offered, while one left by a process
// that died is. A record is written beside itself and renamed into place
// once synced: a record under its name is always whole, and the temporary
// files a killed process leaves are never offered.
class QcbsRecoveryStore {
public:
    static QString directory();
    // Makes the directory (and its parents) and gives it mode 0700; false
    // with a reason when that fails.
    static bool makeDirectory(QString* error = nullptr);

    // A new id for a record of this process.
    static QString newId();
    static QString pathOf(const QString& id);
    // Whether the process that wrote the record still runs.
    static bool ownerAlive(const QString& id);

    // The good records of processes that no longer run, oldest first, of
    // those `wanted` (by their headers) when given. Damaged records are
    // passed over (and left for the user to look at); temporary files of
    // dead processes are removed.
    static QList<QcbsRecoveryRecord> orphans(
        const std::function<bool(const QcbsRecoveryRecord&)>& wanted = {});
    // One record, with its text; nothing when it is gone or damaged.
    static std::optional<QcbsRecoveryRecord> load(const QString& id, QByteArray* text);

    // Writes the record: header and text to a temporary file of mode 0600
    // beside it, synced, then renamed over it. Safe on a worker thread;
    // `cancel` stops it with the older record left as it was. Returns an
    // empty text on success, else what failed.
    static QString write(const QString& id, const QByteArray& header, std::string_view text,
                         const std::atomic<bool>* cancel = nullptr);
    static void remove(const QString& id);

    static constexpr const char* Suffix = ".recovery";
    static constexpr const char* PartSuffix = ".part";
};
