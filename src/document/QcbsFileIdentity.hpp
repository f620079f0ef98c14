// SPDX-License-Identifier: GPL-3.0-or-later
// What a file was when a document last read or wrote it: size, time, content hash.
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QCryptographicHash>
#include <QString>
#include <utility>

// What a file was when a document last read or wrote it: its size, its
// modification time and node, and the hash of the bytes the document read
// or wrote. Comparing it with the file as it is now tells whether another
// program changed the file meanwhile; a file only touched (a new time, the
// same bytes) counts as the same, so that the user is not asked in vain.
class QcbsFileIdentity {
public:
    // How a file on disk stands against the identity.
    enum class State {
        Same,     // nothing changed (or no identity is known)
        Touched,  // a new time or node but the same bytes
        Changed,  // other bytes
        Missing,  // the file is gone (deleted or moved)
    };

    // The size, time and node of a file as they are now, without reading it.
    struct Stamp {
        bool exists = false;
        qint64 size = -1;
        qint64 modified = 0;  // nanoseconds since the epoch
        quint64 node = 0;
        quint64 device = 0;
        bool operator==(const Stamp&) const = default;
        static Stamp of(const QString& fileName);
    };

    // No identity: every file is the same to it.
    QcbsFileIdentity() = default;
    // The file with this stamp held bytes of this hash.
    QcbsFileIdentity(const Stamp& stamp, QByteArray hash)
        : known_(true), stamp_(stamp), hash_(std::move(hash)) {}
    // The file that is gone, as the user was told: the same while it stays away.
    static QcbsFileIdentity missing() { return QcbsFileIdentity(Stamp(), QByteArray()); }
    // The file as it is now on disk (reading it for its hash); missing() when it cannot be read.
    static QcbsFileIdentity current(const QString& fileName);

    bool isKnown() const { return known_; }
    const Stamp& stamp() const { return stamp_; }
    const QByteArray& hash() const { return hash_; }

    // The file as it is now against this identity. The bytes are read only
    // when the size is the same but the time or node is not.
    State compare(const QString& fileName) const;

    // The hash of bytes as the identity keeps it; a hasher to feed in pieces.
    static QByteArray hash(QByteArrayView bytes);
    static QCryptographicHash hasher() { return QCryptographicHash(kAlgorithm); }
    // The hash of a file's bytes, empty when it cannot be read.
    static QByteArray hashFile(const QString& fileName);

private:
    static constexpr QCryptographicHash::Algorithm kAlgorithm = QCryptographicHash::Blake2b_256;
    bool known_ = false;
    Stamp stamp_;
    QByteArray hash_;
};
