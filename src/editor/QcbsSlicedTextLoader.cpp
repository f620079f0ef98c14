// SPDX-License-Identifier: GPL-3.0-or-later
// Puts a file's bytes into a Scintilla editor: a first slice at once, the rest off the event loop.
#include "editor/QcbsSlicedTextLoader.hpp"

#include <Qsci/qsciscintilla.h>

#include <QFile>
#include <QFileInfo>
#include <QMetaObject>
#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

// Scintilla's interface for filling a document on another thread, as its
// documentation gives it (QScintilla does not install the header). Not in an
// anonymous namespace: the compiler would then take this declaration for the
// only one there is and call its pure functions.
namespace scintilla_api {
class ILoader {
public:
    virtual int Release() = 0;
    virtual int AddData(const char* data, std::ptrdiff_t length) = 0;
    virtual void* ConvertToDocument() = 0;

protected:
    ~ILoader() = default;
};
}  // namespace scintilla_api

namespace {

using Sci = QsciScintillaBase;
using ScintillaLoader = scintilla_api::ILoader;

const char kByteOrderMark[] = "\xef\xbb\xbf";
constexpr qint64 kReadPiece = 16 * 1024 * 1024;

// Looks at bytes once, piece after piece: line ends and whether they are UTF-8.
class ByteSurvey {
public:
    QcbsSlicedTextLoader::Summary summary;

    void look(const char* data, qint64 size) {
        if (size <= 0) return;
        const auto* bytes = reinterpret_cast<const unsigned char*>(data);
        // Line ends: a CR of the last piece may pair with an LF of this one.
        const qint64 lfs = std::count(bytes, bytes + size, '\n');
        const qint64 crs = std::count(bytes, bytes + size, '\r');
        qint64 pairs = (lastWasCr_ && bytes[0] == '\n') ? 1 : 0;
        for (const unsigned char* p = bytes;
             crs > 0 && (p = static_cast<const unsigned char*>(
                             std::memchr(p, '\r', static_cast<std::size_t>(bytes + size - p)))) != nullptr;
             ++p) {
            if (p + 1 < bytes + size && p[1] == '\n') ++pairs;
        }
        // Every CR that pairs stops counting as a lone CR; one pairing across
        // pieces was counted as lone in the last piece.
        summary.crlf += pairs;
        summary.lf += lfs - pairs;
        summary.cr += crs - pairs;
        lastWasCr_ = bytes[size - 1] == '\r';
        summary.finalLineEnd = bytes[size - 1] == '\n' || bytes[size - 1] == '\r';
        if (summary.utf8) checkUtf8(bytes, size);
    }

    // No more bytes: a character cut short at the very end is no UTF-8 either.
    void end() {
        if (pending_ != 0) summary.utf8 = false;
    }

private:
    // UTF-8 as a strict decoder takes it: no overlong forms, no surrogates,
    // nothing above U+10FFFF.
    void checkUtf8(const unsigned char* bytes, qint64 size) {
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
                    summary.utf8 = false;
                    return;
                }
            } else {
                const unsigned char c = bytes[i++];
                if (c < low_ || c > high_) {
                    summary.utf8 = false;
                    return;
                }
                low_ = 0x80;
                high_ = 0xbf;
                --pending_;
            }
        }
    }

    int pending_ = 0;  // continuation bytes still expected
    unsigned char low_ = 0x80;
    unsigned char high_ = 0xbf;
    bool lastWasCr_ = false;
};

bool startsWithByteOrderMark(const QByteArray& bytes) { return bytes.startsWith(kByteOrderMark); }

}  // namespace

// One text read on the worker thread into a document of its own. Made on the
// event loop's thread; the worker fills `document` and `summary`, then hands
// the job back.
struct QcbsSlicedTextLoader::Job {
    QString file;      // the source: a file,
    QByteArray bytes;  // or bytes
    ScintillaLoader* document = nullptr;
    std::atomic<bool> abandoned = false;
    bool failed = false;
    Summary summary;

    ~Job() {
        if (document != nullptr) document->Release();
    }

    // On the worker thread.
    void read() {
        QByteArray data = bytes;
        if (!file.isEmpty()) {
            QFile in(file);
            if (!in.open(QIODevice::ReadOnly)) {
                failed = true;
                return;
            }
            data.reserve(in.size());
            while (!in.atEnd() && !abandoned) {
                const QByteArray piece = in.read(kReadPiece);
                if (piece.isEmpty()) break;
                data.append(piece);
            }
        }
        if (abandoned) return;
        ByteSurvey survey;
        const bool marked = startsWithByteOrderMark(data);
        for (qsizetype at = marked ? 3 : 0; at < data.size() && !abandoned; at += kReadPiece)
            survey.look(data.constData() + at, std::min<qsizetype>(kReadPiece, data.size() - at));
        survey.end();
        if (abandoned) return;
        // A mark followed by bytes that are not UTF-8 is Latin-1 text itself.
        const qsizetype skip = marked && survey.summary.utf8 ? 3 : 0;
        summary = survey.summary;
        summary.byteOrderMark = skip != 0;
        summary.bytes = data.size() - skip;
        // In two pieces: the first makes Scintilla allocate what it needs, the
        // small second makes it grow its buffer the way it grows it for typing
        // (by a sixth or more). Grown here, the buffer is not copied on the
        // event loop's thread a few keystrokes after the text is shown.
        const qsizetype length = data.size() - skip;
        const qsizetype tail = std::min<qsizetype>(length, 64);
        failed = document->AddData(data.constData() + skip, length - tail) != Sci::SC_STATUS_OK ||
                 document->AddData(data.constData() + skip + length - tail, tail) != Sci::SC_STATUS_OK;
    }
};

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

QcbsSlicedTextLoader::QcbsSlicedTextLoader(QsciScintilla* editor) : QObject(editor), editor_(editor) {}

QcbsSlicedTextLoader::~QcbsSlicedTextLoader() {
    abandon();
    workers_.waitForDone();
}

void QcbsSlicedTextLoader::abandon() {
    if (job_) job_->abandoned = true;
    job_.reset();
}

void QcbsSlicedTextLoader::loadBytes(const QByteArray& bytes) {
    abandon();
    if (bytes.size() <= BackgroundThreshold) {
        start(bytes, bytes.size(), nullptr);
        return;
    }
    auto job = std::make_shared<Job>();
    job->bytes = bytes;
    start(bytes.left(FirstSliceBytes), bytes.size(), job);
}

bool QcbsSlicedTextLoader::loadFile(const QString& fileName) {
    if (QFileInfo(fileName).isDir()) return false;
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) return false;
    const qint64 size = file.size();
    abandon();
    if (size <= BackgroundThreshold) {
        start(file.readAll(), size, nullptr);
        return true;
    }
    auto job = std::make_shared<Job>();
    job->file = fileName;
    start(file.read(FirstSliceBytes), size, job);
    return true;
}

void QcbsSlicedTextLoader::start(QByteArray firstSlice, qint64, const std::shared_ptr<Job>& job) {
    if (editor_.isNull()) return;
    if (!loading_) wasReadOnly_ = editor_->isReadOnly();
    loading_ = true;
    summary_ = Summary();
    editor_->SendScintilla(Sci::SCI_SETREADONLY, 0L);
    editor_->SendScintilla(Sci::SCI_SETUNDOCOLLECTION, 0L);
    editor_->SendScintilla(Sci::SCI_CLEARALL);
    if (job) {
        // Made while the shown text is empty: Scintilla resets the view's
        // folding state as it makes it.
        job->document = reinterpret_cast<ScintillaLoader*>(editor_->SendScintilla(
            Sci::SCI_CREATELOADER, 0UL, static_cast<long>(Sci::SC_DOCUMENTOPTION_DEFAULT)));
    }

    // The first slice (or the whole of a small text) into the shown document.
    ByteSurvey survey;
    const bool marked = startsWithByteOrderMark(firstSlice);
    survey.look(firstSlice.constData() + (marked ? 3 : 0), firstSlice.size() - (marked ? 3 : 0));
    if (!job) survey.end();
    const qsizetype skip = marked && survey.summary.utf8 ? 3 : 0;
    editor_->setUtf8(survey.summary.utf8);
    if (firstSlice.size() > skip)
        editor_->SendScintilla(Sci::SCI_APPENDTEXT, static_cast<unsigned long>(firstSlice.size() - skip),
                               firstSlice.constData() + skip);
    if (!job) {
        summary_ = survey.summary;
        summary_.byteOrderMark = skip != 0;
        summary_.bytes = firstSlice.size() - skip;
        finish();
        return;
    }
    editor_->SendScintilla(Sci::SCI_SETREADONLY, 1L);
    if (job->document == nullptr) {
        job->failed = true;
        finishInBackground(job);
        return;
    }
    job_ = job;
    workers_.start([this, job]() mutable {
        std::shared_ptr<Job> mine = std::move(job);
        mine->read();
        // Handed back whole; the loader waits for its threads before it goes,
        // so it is there to take the job.
        QMetaObject::invokeMethod(
            this, [this, back = std::move(mine)] { finishInBackground(back); }, Qt::QueuedConnection);
    });
}

void QcbsSlicedTextLoader::finishInBackground(const std::shared_ptr<Job>& job) {
    if (job != job_ || editor_.isNull()) return;  // abandoned: the job drops its document
    if (job->failed) {
        // The text could not be read whole: the first slice stays, and says so by its size.
        summary_.bytes = editor_->length();
        finish();
        return;
    }
    // The whole text takes the first slice's place, the view where it was.
    const long top = editor_->SendScintilla(Sci::SCI_GETFIRSTVISIBLELINE);
    const long x = editor_->SendScintilla(Sci::SCI_GETXOFFSET);
    void* document = job->document->ConvertToDocument();
    job->document = nullptr;
    editor_->SendScintilla(Sci::SCI_SETDOCPOINTER, 0UL, document);
    editor_->SendScintilla(Sci::SCI_RELEASEDOCUMENT, 0UL, document);  // the view holds it now
    editor_->setUtf8(job->summary.utf8);
    editor_->SendScintilla(Sci::SCI_SETFIRSTVISIBLELINE, top);
    editor_->SendScintilla(Sci::SCI_SETXOFFSET, x);
    summary_ = job->summary;
    finish();
}

void QcbsSlicedTextLoader::finish() {
    loading_ = false;
    job_.reset();
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
