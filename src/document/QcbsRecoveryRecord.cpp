// SPDX-License-Identifier: GPL-3.0-or-later
// What a recovery file says about the unsaved text it holds, and its header's format.
#include "document/QcbsRecoveryRecord.hpp"

#include <QCryptographicHash>
#include <QList>
#include <QMap>

#include "document/QcbsCifDocument.hpp"

namespace {

// A header is small; anything longer is not one.
constexpr qint64 kMaxHeader = 64 * 1024;

QByteArray number(qint64 value) { return QByteArray::number(value); }

// The hash as the header writes it; "-" for none.
QByteArray hex(const QByteArray& hash) { return hash.isEmpty() ? QByteArray("-") : hash.toHex(); }

std::optional<qint64> toNumber(const QByteArray& text) {
    bool ok = false;
    const qint64 value = text.toLongLong(&ok);
    return ok ? std::optional<qint64>(value) : std::nullopt;
}

std::optional<QByteArray> fromHex(const QByteArray& text) {
    if (text == "-") return QByteArray();
    if (text.isEmpty() || text.size() % 2 != 0) return std::nullopt;
    for (const char c : text)
        if (!((c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'))) return std::nullopt;
    return QByteArray::fromHex(text);
}

}  // namespace

bool QcbsRecoveryRecord::isUntitled() const { return QcbsCifDocument::isUntitled(fileName); }

QByteArray QcbsRecoveryRecord::header() const {
    const QcbsFileIdentity::Stamp& stamp = disk.stamp();
    QByteArray out = QByteArray(Magic) + "\n";
    // Percent-encoded: a name may hold line ends and blanks.
    out += "file " + fileName.toUtf8().toPercentEncoding() + "\n";
    out += "written " + written.toUTC().toString(Qt::ISODateWithMs).toLatin1() + "\n";
    out += QByteArray("encoding ") + (utf8 ? "utf-8" : "latin-1") + "\n";
    out += QByteArray("bom ") + (byteOrderMark ? "1" : "0") + "\n";
    if (disk.isKnown())
        out += "disk " + number(stamp.exists) + " " + number(stamp.size) + " " + number(stamp.modified) +
               " " + QByteArray::number(stamp.node) + " " + QByteArray::number(stamp.device) + " " +
               hex(disk.hash()) + "\n";
    out += "size " + number(size) + "\n";
    out += "hash " + hex(hash) + "\n";
    out += "\n";
    return out;
}

std::optional<QcbsRecoveryRecord> QcbsRecoveryRecord::readHeader(QIODevice& device) {
    QMap<QByteArray, QByteArray> fields;
    qint64 headerBytes = 0;
    for (bool first = true;; first = false) {
        const QByteArray line = device.readLine(kMaxHeader);
        headerBytes += line.size();
        if (!line.endsWith('\n') || headerBytes > kMaxHeader) return std::nullopt;
        const QByteArray content = line.chopped(1);
        if (first) {
            if (content != Magic) return std::nullopt;
            continue;
        }
        if (content.isEmpty()) break;
        const qsizetype blank = content.indexOf(' ');
        if (blank <= 0 || fields.contains(content.left(blank))) return std::nullopt;
        fields.insert(content.left(blank), content.mid(blank + 1));
    }

    QcbsRecoveryRecord record;
    if (!fields.contains("file") || !fields.contains("written")) return std::nullopt;
    record.fileName = QString::fromUtf8(QByteArray::fromPercentEncoding(fields.value("file")));
    record.written = QDateTime::fromString(QString::fromLatin1(fields.value("written")), Qt::ISODateWithMs);
    const QByteArray encoding = fields.value("encoding");
    const QByteArray bom = fields.value("bom");
    if (record.fileName.isEmpty() || !record.written.isValid() ||
        (encoding != "utf-8" && encoding != "latin-1") || (bom != "0" && bom != "1"))
        return std::nullopt;
    record.utf8 = encoding == "utf-8";
    record.byteOrderMark = bom == "1";
    if (fields.contains("disk")) {
        const QList<QByteArray> parts = fields.value("disk").split(' ');
        if (parts.size() != 6) return std::nullopt;
        QcbsFileIdentity::Stamp stamp;
        const auto exists = toNumber(parts[0]);
        const auto size = toNumber(parts[1]);
        const auto modified = toNumber(parts[2]);
        bool nodeOk = false;
        bool deviceOk = false;
        stamp.node = parts[3].toULongLong(&nodeOk);
        stamp.device = parts[4].toULongLong(&deviceOk);
        const auto hash = fromHex(parts[5]);
        if (!exists || !size || !modified || !nodeOk || !deviceOk || !hash) return std::nullopt;
        stamp.exists = *exists != 0;
        stamp.size = *size;
        stamp.modified = *modified;
        record.disk = QcbsFileIdentity(stamp, *hash);
    }
    const auto size = toNumber(fields.value("size"));
    const auto hash = fromHex(fields.value("hash"));
    if (!size || *size < 0 || !hash || hash->isEmpty()) return std::nullopt;
    record.size = *size;
    record.hash = *hash;
    if (!device.isSequential() && device.size() - device.pos() != record.size) return std::nullopt;
    return record;
}

std::optional<QcbsRecoveryRecord> QcbsRecoveryRecord::read(QIODevice& device, QByteArray* text) {
    std::optional<QcbsRecoveryRecord> record = readHeader(device);
    if (!record) return std::nullopt;
    // The text: exactly `size` bytes of this hash, and nothing after them.
    if (text != nullptr) {
        *text = device.read(record->size);
        if (text->size() != record->size || QcbsFileIdentity::hash(*text) != record->hash)
            return std::nullopt;
    } else {
        QCryptographicHash hasher = QcbsFileIdentity::hasher();
        qint64 left = record->size;
        while (left > 0) {
            const QByteArray piece = device.read(std::min<qint64>(left, 4 * 1024 * 1024));
            if (piece.isEmpty()) return std::nullopt;
            hasher.addData(piece);
            left -= piece.size();
        }
        if (hasher.result() != record->hash) return std::nullopt;
    }
    if (!device.read(1).isEmpty()) return std::nullopt;
    return record;
}
