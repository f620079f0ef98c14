// SPDX-License-Identifier: GPL-3.0-or-later
// What a file was when a document last read or wrote it: size, time, content hash.
#include "document/QcbsFileIdentity.hpp"

#include <sys/stat.h>

#include <QFile>

QcbsFileIdentity::Stamp QcbsFileIdentity::Stamp::of(const QString& fileName) {
    Stamp stamp;
    struct stat status {};
    if (::stat(QFile::encodeName(fileName).constData(), &status) != 0 || !S_ISREG(status.st_mode))
        return stamp;
    stamp.exists = true;
    stamp.size = status.st_size;
    stamp.modified = static_cast<qint64>(status.st_mtim.tv_sec) * 1000000000 + status.st_mtim.tv_nsec;
    stamp.node = status.st_ino;
    stamp.device = status.st_dev;
    return stamp;
}

QcbsFileIdentity QcbsFileIdentity::current(const QString& fileName) {
    const Stamp stamp = Stamp::of(fileName);
    if (!stamp.exists) return missing();
    QByteArray hash = hashFile(fileName);
    if (hash.isEmpty()) return missing();
    // The file may have changed while it was read: then the stamp differs
    // next time and the bytes are compared again.
    return QcbsFileIdentity(stamp, std::move(hash));
}

QcbsFileIdentity::State QcbsFileIdentity::compare(const QString& fileName) const {
    if (!known_) return State::Same;
    const Stamp now = Stamp::of(fileName);
    if (!stamp_.exists) return now.exists ? State::Changed : State::Same;
    if (!now.exists) return State::Missing;
    if (now.size != stamp_.size) return State::Changed;
    if (now == stamp_) return State::Same;
    return hashFile(fileName) == hash_ ? State::Touched : State::Changed;
}

QByteArray QcbsFileIdentity::hash(QByteArrayView bytes) {
    return QCryptographicHash::hash(bytes, kAlgorithm);
}

QByteArray QcbsFileIdentity::hashFile(const QString& fileName) {
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) return QByteArray();
    QCryptographicHash hash(kAlgorithm);
    if (!hash.addData(&file)) return QByteArray();
    return hash.result();
}
