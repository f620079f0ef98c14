// SPDX-License-Identifier: GPL-3.0-or-later
// How a document's bytes are to be read: UTF-8 or Latin-1, with any byte-order mark.
#pragma once

#include <QString>

// How a document's bytes are to be read: UTF-8 when the file's bytes are
// valid UTF-8 (plain ASCII included), otherwise Latin-1; a UTF-8 file may
// begin with a byte-order mark, which is kept out of the editor's text and
// written back. The bytes themselves are never converted: a file the user
// did not edit keeps every byte.
class QcbsDocumentEncoding {
public:
    enum Kind { Utf8, Latin1 };

    QcbsDocumentEncoding() = default;
    explicit QcbsDocumentEncoding(Kind kind, bool byteOrderMark = false)
        : kind_(kind), byteOrderMark_(kind == Utf8 && byteOrderMark) {}

    Kind kind() const { return kind_; }
    bool hasByteOrderMark() const { return byteOrderMark_; }
    // "UTF-8" or "ISO-8859-1".
    QString name() const { return kind_ == Utf8 ? "UTF-8" : "ISO-8859-1"; }

    bool operator==(const QcbsDocumentEncoding& other) const = default;

private:
    Kind kind_ = Utf8;
    bool byteOrderMark_ = false;
};
