// SPDX-License-Identifier: GPL-3.0-or-later
// Puts a file's bytes into a Scintilla editor a slice at a time, so the window stays live.
#include "editor/QcbsSlicedTextLoader.hpp"

#include <Qsci/qsciscintilla.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace {

using Sci = QsciScintillaBase;

constexpr qint64 kFirstSliceBytes = 256 * 1024;  // a screenful many times over, quick to put in
constexpr qint64 kMinimumSliceBytes = 64 * 1024;
constexpr qint64 kMaximumSliceBytes = 64 * 1024 * 1024;
const char kByteOrderMark[] = "\xef\xbb\xbf";

}  // namespace

QByteArray QcbsSlicedTextLoader::Summary::dominantLineEnd() const {
    if (crlf > lf && crlf >= cr) return "\r\n";
    if (cr > lf && cr > crlf) return "\r";
    return "\n";
}

qint64 QcbsSlicedTextLoader::Summary::lines() const {
    const qint64 ends = lf + crlf + cr;
    if (bytes == 0) return 0;
    return finalLineEnd ? ends : ends + 1;
}

QcbsSlicedTextLoader::QcbsSlicedTextLoader(QsciScintilla* editor) : QObject(editor), editor_(editor) {
    timer_.setSingleShot(true);
    timer_.setInterval(0);
    connect(&timer_, &QTimer::timeout, this, &QcbsSlicedTextLoader::insertSlice);
}

QcbsSlicedTextLoader::~QcbsSlicedTextLoader() = default;

void QcbsSlicedTextLoader::loadBytes(const QByteArray& bytes) {
    file_.reset();
    bytes_ = bytes;
    offset_ = 0;
    start(bytes.size());
}

bool QcbsSlicedTextLoader::loadFile(const QString& fileName) {
    auto file = std::make_unique<QFile>(fileName);
    if (!file->open(QIODevice::ReadOnly)) return false;
    bytes_.clear();
    offset_ = 0;
    file_ = std::move(file);
    start(file_->size());
    return true;
}

void QcbsSlicedTextLoader::start(qint64 size) {
    if (editor_.isNull()) return;
    if (!loading_) wasReadOnly_ = editor_->isReadOnly();
    loading_ = true;
    timer_.stop();
    summary_ = Summary();
    pending_ = 0;
    lastWasCr_ = false;
    lastByte_ = 0;
    first_ = true;
    sliceBytes_ = kFirstSliceBytes;
    editor_->SendScintilla(Sci::SCI_SETREADONLY, 0L);
    editor_->SendScintilla(Sci::SCI_SETUNDOCOLLECTION, 0L);
    editor_->SendScintilla(Sci::SCI_CLEARALL);
    // Room for the whole text at once, so the buffer never grows by copying.
    editor_->SendScintilla(Sci::SCI_ALLOCATE, static_cast<unsigned long>(size + 1));
    editor_->setUtf8(true);
    editor_->SendScintilla(Sci::SCI_SETREADONLY, 1L);
    insertSlice();
}

QByteArray QcbsSlicedTextLoader::next(qint64 count) {
    if (file_) return file_->read(count);
    const qint64 take = std::min(count, static_cast<qint64>(bytes_.size()) - offset_);
    if (take <= 0) return QByteArray();
    // A view of the source, no copy.
    QByteArray slice = QByteArray::fromRawData(bytes_.constData() + offset_, take);
    offset_ += take;
    return slice;
}

void QcbsSlicedTextLoader::insertSlice() {
    if (editor_.isNull()) {
        loading_ = false;
        return;
    }
    QElapsedTimer clock;
    clock.start();
    const QByteArray slice = next(sliceBytes_);
    const char* data = slice.constData();
    qint64 size = slice.size();
    if (first_ && size >= 3 && std::memcmp(data, kByteOrderMark, 3) == 0) {
        summary_.byteOrderMark = true;
        data += 3;
        size -= 3;
    }
    first_ = false;
    const bool wasUtf8 = summary_.utf8;
    look(data, size);
    editor_->SendScintilla(Sci::SCI_SETREADONLY, 0L);
    if (wasUtf8 && !summary_.utf8) {
        // Not UTF-8 after all: the bytes are Latin-1, a leading mark included.
        editor_->setUtf8(false);
        if (summary_.byteOrderMark) {
            editor_->SendScintilla(Sci::SCI_INSERTTEXT, static_cast<uintptr_t>(0), kByteOrderMark);
            summary_.byteOrderMark = false;
            summary_.bytes += 3;
        }
    }
    if (size > 0) editor_->SendScintilla(Sci::SCI_APPENDTEXT, static_cast<unsigned long>(size), data);
    editor_->SendScintilla(Sci::SCI_SETREADONLY, 1L);
    summary_.bytes += size;

    if (slice.isEmpty() || (file_ ? file_->atEnd() : offset_ >= bytes_.size())) {
        finish();
        return;
    }
    // Aim the next slice at the budget from the pace of this one, growing at
    // most fourfold.
    const qint64 nanoseconds = std::max<qint64>(clock.nsecsElapsed(), 1);
    const qint64 aimed = std::min<qint64>(static_cast<qint64>(slice.size()) * budget_ * 1000000 / nanoseconds,
                                          4 * static_cast<qint64>(slice.size()));
    sliceBytes_ = std::clamp<qint64>(aimed, kMinimumSliceBytes, kMaximumSliceBytes);
    timer_.start();
}

void QcbsSlicedTextLoader::look(const char* data, qint64 size) {
    if (size <= 0) return;
    const auto* bytes = reinterpret_cast<const unsigned char*>(data);
    // Line ends: a CR of the last slice may pair with an LF of this one.
    const qint64 lfs = std::count(bytes, bytes + size, '\n');
    const qint64 crs = std::count(bytes, bytes + size, '\r');
    qint64 pairs = (lastWasCr_ && bytes[0] == '\n') ? 1 : 0;
    if (crs > 0) {
        for (const unsigned char* p = bytes;
             (p = static_cast<const unsigned char*>(
                  std::memchr(p, '\r', static_cast<std::size_t>(bytes + size - p)))) != nullptr;
             ++p) {
            if (p + 1 < bytes + size && p[1] == '\n') ++pairs;
        }
    }
    // Every CR that pairs stops counting as a lone CR; the one pairing
    // across slices was counted as lone in the last slice.
    summary_.crlf += pairs;
    summary_.lf += lfs - pairs;
    summary_.cr += crs - pairs;
    lastWasCr_ = bytes[size - 1] == '\r';
    lastByte_ = static_cast<char>(bytes[size - 1]);
    summary_.finalLineEnd = lastByte_ == '\n' || lastByte_ == '\r';

    if (!summary_.utf8) return;
    // UTF-8 as a strict decoder takes it: no overlong forms, no surrogates,
    // nothing above U+10FFFF.
    qint64 i = 0;
    while (i < size) {
        if (pending_ == 0) {
            // Plain ASCII eight bytes at a time.
            while (i + 8 <= size) {
                std::uint64_t word;
                std::memcpy(&word, bytes + i, 8);
                if (word & 0x8080808080808080ULL) break;
                i += 8;
            }
            if (i >= size) break;
            const unsigned char c = bytes[i++];
            if (c < 0x80) continue;
            low_ = 0x80;
            high_ = 0xbf;
            if (c >= 0xc2 && c <= 0xdf) {
                pending_ = 1;
            } else if (c >= 0xe0 && c <= 0xef) {
                pending_ = 2;
                if (c == 0xe0) low_ = 0xa0;
                if (c == 0xed) high_ = 0x9f;
            } else if (c >= 0xf0 && c <= 0xf4) {
                pending_ = 3;
                if (c == 0xf0) low_ = 0x90;
                if (c == 0xf4) high_ = 0x8f;
            } else {
                summary_.utf8 = false;
                return;
            }
        } else {
            const unsigned char c = bytes[i++];
            if (c < low_ || c > high_) {
                summary_.utf8 = false;
                return;
            }
            low_ = 0x80;
            high_ = 0xbf;
            --pending_;
        }
    }
}

void QcbsSlicedTextLoader::finish() {
    loading_ = false;
    // A character cut short at the very end is not UTF-8 either.
    if (summary_.utf8 && pending_ != 0) {
        summary_.utf8 = false;
        editor_->setUtf8(false);
        if (summary_.byteOrderMark) {
            editor_->SendScintilla(Sci::SCI_SETREADONLY, 0L);
            editor_->SendScintilla(Sci::SCI_INSERTTEXT, static_cast<uintptr_t>(0), kByteOrderMark);
            summary_.byteOrderMark = false;
            summary_.bytes += 3;
        }
    }
    bytes_.clear();
    file_.reset();
    const QByteArray end = summary_.dominantLineEnd();
    editor_->SendScintilla(Sci::SCI_SETEOLMODE, end == "\r\n" ? Sci::SC_EOL_CRLF
                                                : end == "\r" ? Sci::SC_EOL_CR
                                                              : Sci::SC_EOL_LF);
    editor_->SendScintilla(Sci::SCI_SETREADONLY, 0L);
    editor_->SendScintilla(Sci::SCI_SETUNDOCOLLECTION, 1L);
    editor_->SendScintilla(Sci::SCI_EMPTYUNDOBUFFER);
    editor_->SendScintilla(Sci::SCI_SETSAVEPOINT);
    editor_->SendScintilla(Sci::SCI_SETREADONLY, wasReadOnly_ ? 1L : 0L);
    emit finished();
}
