// SPDX-License-Identifier: GPL-3.0-or-later
// How a document's text is stored on disk: UTF-8 or Latin-1, with any byte-order mark.
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

// How a document's text is stored on disk: UTF-8 when the file's bytes are
// valid UTF-8 (plain ASCII included), otherwise Latin-1; a UTF-8 file may
// begin with a byte-order mark, which is kept out of the text and written
// back. Saving uses the encoding the file was read in, so that a file the
// user did not edit keeps its bytes.
class QcbsDocumentEncoding {
public:
    enum Kind { Utf8, Latin1 };

    QcbsDocumentEncoding() = default;
    explicit QcbsDocumentEncoding(Kind kind, bool byteOrderMark = false)
        : kind_(kind), byteOrderMark_(kind == Utf8 && byteOrderMark) {}

    // The encoding a file's bytes were written in; `text`, when given,
    // receives the bytes decoded in it.
    static QcbsDocumentEncoding detect(QByteArrayView bytes, QString* text = nullptr);

    Kind kind() const { return kind_; }
    bool hasByteOrderMark() const { return byteOrderMark_; }
    // "UTF-8" or "ISO-8859-1".
    QString name() const;

    // The text of bytes in this encoding (without the byte-order mark).
    QString decode(QByteArrayView bytes) const;
    // Whether every character of the text can be written in this encoding.
    bool canEncode(const QString& text) const;
    // The bytes of the text; a character Latin-1 cannot hold is written as
    // "?", so check canEncode() first.
    QByteArray encode(const QString& text) const;

    bool operator==(const QcbsDocumentEncoding& other) const = default;

private:
    Kind kind_ = Utf8;
    bool byteOrderMark_ = false;
};
