// SPDX-License-Identifier: GPL-3.0-or-later
// Decides, before a file is loaded, whether it looks like a CIF.
#include "validation/QcbsCoreCifFileValidator.hpp"

#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <string_view>

namespace {

// File signatures of formats a user may pick by mistake; some of them have
// no NUL byte near their start.
constexpr std::string_view kBinarySignatures[] = {
    std::string_view("\x1f\x8b", 2),    // gzip
    std::string_view("PK\x03\x04", 4),  // zip (and office documents)
    std::string_view("BZh", 3),         // bzip2
    std::string_view("\xfd"
                     "7zXZ\x00",
                     6),                        // xz
    std::string_view("\x28\xb5\x2f\xfd", 4),    // zstd
    std::string_view("7z\xbc\xaf\x27\x1c", 6),  // 7-zip
    std::string_view("%PDF-", 5),               // PDF
    std::string_view("\x89PNG", 4),             // PNG
    std::string_view("\xff\xd8\xff", 3),        // JPEG
    std::string_view("GIF8", 4),                // GIF
    std::string_view("\x7f"
                     "ELF",
                     4),  // programs and libraries
};

constexpr std::string_view kUtf8Bom("\xef\xbb\xbf", 3);
constexpr std::string_view kCif2Magic("#\\#CIF_2.0");

bool startsWith(std::string_view text, std::string_view prefix) {
    return text.size() >= prefix.size() && text.compare(0, prefix.size(), prefix) == 0;
}

bool isBinary(std::string_view bytes) {
    const std::string_view probe = bytes.substr(0, QcbsCoreCifFileValidator::kProbeSize);
    if (probe.find('\0') != std::string_view::npos) return true;
    return std::any_of(std::begin(kBinarySignatures), std::end(kBinarySignatures),
                       [&](std::string_view signature) { return startsWith(bytes, signature); });
}

bool startsWithDataKeyword(std::string_view line) {
    const std::size_t first = line.find_first_not_of(" \t");
    if (first == std::string_view::npos || line.size() - first < 5) return false;
    static constexpr char kData[] = "data_";
    for (std::size_t i = 0; i < 5; ++i) {
        const char c = line[first + i];
        if ((c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c) != kData[i]) return false;
    }
    return true;
}

// Whether any line (whatever its ending) starts, after blanks, with "data_".
bool holdsDataLine(std::string_view bytes) {
    std::size_t start = 0;
    while (start < bytes.size()) {
        std::size_t end = bytes.find_first_of("\r\n", start);
        if (end == std::string_view::npos) end = bytes.size();
        if (startsWithDataKeyword(bytes.substr(start, end - start))) return true;
        start = end + 1;
    }
    return false;
}

}  // namespace

QcbsCoreCifFileValidator::Verdict QcbsCoreCifFileValidator::examine(QByteArrayView bytes) {
    const std::string_view text(bytes.data(), static_cast<std::size_t>(bytes.size()));
    if (isBinary(text)) return Binary;
    std::string_view body = text;
    if (startsWith(body, kUtf8Bom)) body.remove_prefix(kUtf8Bom.size());
    if (startsWith(body, kCif2Magic)) return LooksLikeCif;
    return holdsDataLine(body) ? LooksLikeCif : NoDataBlock;
}

QcbsCoreCifFileValidator::Verdict QcbsCoreCifFileValidator::examineFile(const QString& fileName) {
    QFile file(fileName);
    if (QFileInfo(fileName).isDir() || !file.open(QIODevice::ReadOnly)) return Unreadable;
    return examine(file.readAll());
}

QString QcbsCoreCifFileValidator::describe(Verdict verdict) {
    switch (verdict) {
        case LooksLikeCif:
            return "looks like a CIF";
        case Unreadable:
            return "cannot be read";
        case Binary:
            return "is not a text file";
        case NoDataBlock:
            return "holds no data_ line";
    }
    return QString();
}
