// SPDX-License-Identifier: GPL-3.0-or-later
// What a recovery file says about the unsaved text it holds, and its header's format.
#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QIODevice>
#include <QString>
#include <optional>

#include "document/QcbsFileIdentity.hpp"

// What a recovery file says about the unsaved text it holds: which file the
// text belongs to (a path, or the name of an untitled document), when it was
// written, the file's identity as the document knew it then, and the size
// and hash of the text, so that a damaged or partial record is never taken
// for a good one.
//
// A record is a short header of "key value" lines ended by an empty line,
// then exactly `size` bytes of text (the document's bytes, a byte-order mark
// included when the file has one).
class QcbsRecoveryRecord {
public:
    QString id;        // the record's name in the recovery directory
    QString fileName;  // the file, or an untitled document's name
    QDateTime written;
    bool utf8 = true;
    bool byteOrderMark = false;
    QcbsFileIdentity disk;  // the file when the text was written (unknown for a new document)
    qint64 size = 0;
    QByteArray hash;  // of the text

    // Whether the text belongs to a document that was never saved.
    bool isUntitled() const;

    // The header for these bytes (size and hash are taken from them).
    QByteArray header() const;
    // Reads a record from a device at its start: the header, then the text,
    // which must be whole and match its hash. The text is kept in `text`
    // when asked for, else only checked. Nothing for a damaged record.
    static std::optional<QcbsRecoveryRecord> read(QIODevice& device, QByteArray* text = nullptr);
    // Only the header, and whether the text after it has the size it gives
    // (a quick look; read() tells whether the text is good).
    static std::optional<QcbsRecoveryRecord> readHeader(QIODevice& device);

    static constexpr const char* Magic = "TESSARY RECOVERY 1";
};
