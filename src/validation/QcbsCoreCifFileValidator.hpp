// SPDX-License-Identifier: GPL-3.0-or-later
// Decides, before a file is loaded, whether it looks like a CIF.
#pragma once

#include <QByteArrayView>
#include <QString>

// Decides, before a file is loaded, whether it looks like a CIF: a readable
// text (no NUL byte among its first bytes, not a compressed archive, image,
// PDF or program) that holds a "data_" line or starts with the CIF 2.0
// magic code "#\#CIF_2.0". A file that fails is still loaded; the verdict
// only decides whether the user is warned.
class QcbsCoreCifFileValidator {
public:
    enum Verdict {
        LooksLikeCif,
        Unreadable,   // the file could not be read
        Binary,       // NUL bytes or the signature of a known binary format
        NoDataBlock,  // text, but neither a "data_" line nor the CIF 2.0 code
    };

    // How many bytes at the start are searched for NUL bytes.
    static constexpr qsizetype kProbeSize = 8192;

    // The verdict on a whole file's bytes.
    static Verdict examine(QByteArrayView bytes);
    static bool isValid(QByteArrayView bytes) { return examine(bytes) == LooksLikeCif; }
    // The verdict on a file on disk.
    static Verdict examineFile(const QString& fileName);
    static bool isValidFile(const QString& fileName) { return examineFile(fileName) == LooksLikeCif; }

    // A short explanation of a verdict, for the log.
    static QString describe(Verdict verdict);
};
