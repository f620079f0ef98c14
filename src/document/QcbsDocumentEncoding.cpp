// SPDX-License-Identifier: GPL-3.0-or-later
// How a document's text is stored on disk: UTF-8 or Latin-1, with any byte-order mark.
#include "document/QcbsDocumentEncoding.hpp"

#include <QStringDecoder>
#include <algorithm>
#include <utility>

namespace {

const QByteArray kByteOrderMark("\xef\xbb\xbf");

}  // namespace

QcbsDocumentEncoding QcbsDocumentEncoding::detect(QByteArrayView bytes, QString* text) {
    // The decoder drops an initial byte-order mark; it is remembered apart.
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString decoded = utf8(bytes);
    if (utf8.hasError()) {
        const QcbsDocumentEncoding latin1(Latin1);
        if (text != nullptr) *text = latin1.decode(bytes);
        return latin1;
    }
    if (text != nullptr) *text = std::move(decoded);
    return QcbsDocumentEncoding(Utf8, bytes.startsWith(kByteOrderMark));
}

QString QcbsDocumentEncoding::name() const { return kind_ == Utf8 ? "UTF-8" : "ISO-8859-1"; }

QString QcbsDocumentEncoding::decode(QByteArrayView bytes) const {
    if (kind_ == Latin1) return QString::fromLatin1(bytes);
    if (bytes.startsWith(kByteOrderMark)) bytes = bytes.sliced(kByteOrderMark.size());
    // A mark further on is a character of the text, and stays one.
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom);
    return utf8(bytes);
}

bool QcbsDocumentEncoding::canEncode(const QString& text) const {
    if (kind_ == Utf8) return true;
    return std::all_of(text.cbegin(), text.cend(), [](QChar c) { return c.unicode() <= 0xff; });
}

QByteArray QcbsDocumentEncoding::encode(const QString& text) const {
    if (kind_ == Latin1) return text.toLatin1();
    QByteArray bytes = text.toUtf8();
    if (byteOrderMark_) bytes.prepend(kByteOrderMark);
    return bytes;
}
