// SPDX-License-Identifier: GPL-3.0-or-later
// Searching and replacing in an editor's bytes: literal find, regular-expression replace all.
#include "find/QcbsTextSearch.hpp"

#include <QByteArray>
#include <QRegularExpression>
#include <algorithm>
#include <array>

#include "editor/QcbsRichTextEdit.hpp"

namespace {

bool isWordByte(unsigned char c) { return std::isalnum(c) != 0 || c == '_' || c >= 0x80; }

bool isWholeWord(std::string_view text, std::size_t begin, std::size_t end) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    return (begin == 0 || !isWordByte(byte(begin - 1))) && (end >= text.size() || !isWordByte(byte(end)));
}

constexpr std::array<unsigned char, 256> makeFoldTable() {
    std::array<unsigned char, 256> table{};
    for (int c = 0; c < 256; ++c) table[c] = static_cast<unsigned char>(c >= 'A' && c <= 'Z' ? c + 32 : c);
    return table;
}
constexpr std::array<unsigned char, 256> kFold = makeFoldTable();

bool matchesFolded(const char* at, std::string_view needle) {
    for (std::size_t i = 0; i < needle.size(); ++i)
        if (kFold[static_cast<unsigned char>(at[i])] != kFold[static_cast<unsigned char>(needle[i])])
            return false;
    return true;
}

// The begin of the next (forward) or previous candidate at or after / at or
// before `at`, or npos.
std::size_t nextCandidate(std::string_view text, std::string_view needle, std::size_t at, bool forward,
                          bool caseSensitive) {
    if (caseSensitive) return forward ? text.find(needle, at) : text.rfind(needle, at);
    const std::size_t last = text.size() - needle.size();
    if (forward) {
        // Both cases of the first byte are looked for with memchr-speed finds.
        const char lower = static_cast<char>(kFold[static_cast<unsigned char>(needle[0])]);
        const char upper = (lower >= 'a' && lower <= 'z') ? static_cast<char>(lower - 32) : lower;
        constexpr std::size_t npos = std::string_view::npos;
        // The next place of each case is kept, so every byte is looked at once.
        std::size_t a = text.find(lower, at);
        std::size_t b = upper != lower ? text.find(upper, at) : npos;
        for (;;) {
            const std::size_t next = std::min(a, b);
            if (next == npos || next > last) return npos;
            if (matchesFolded(text.data() + next, needle)) return next;
            if (next == a)
                a = text.find(lower, next + 1);
            else
                b = text.find(upper, next + 1);
        }
    }
    for (std::size_t p = std::min(at, last) + 1; p-- > 0;)
        if (matchesFolded(text.data() + p, needle)) return p;
    return std::string_view::npos;
}

bool fitsLatin1(const QString& text) {
    return std::all_of(text.cbegin(), text.cend(), [](QChar c) { return c.unicode() < 256; });
}

bool isAscii(const QString& text) {
    return std::all_of(text.cbegin(), text.cend(), [](QChar c) { return c.unicode() < 128; });
}

// Case-blind text beyond ASCII: the bytes on the searched side are decoded
// and searched with Unicode case folding (a rare search, so the decoding is
// not worth avoiding).
std::pair<int, int> decodedFind(const QcbsRichTextEdit& editor, int from, const QcbsSearchOptions& options) {
    const std::string_view all = editor.byteView();
    const bool utf8 = editor.isUtf8Text();
    const auto decode = [utf8](std::string_view bytes) {
        const QByteArrayView view(bytes.data(), static_cast<qsizetype>(bytes.size()));
        return utf8 ? QString::fromUtf8(view) : QString::fromLatin1(view);
    };
    const auto byteSize = [utf8](QStringView text) {
        return static_cast<int>(utf8 ? text.toUtf8().size() : text.size());
    };
    from = std::clamp(from, 0, static_cast<int>(all.size()));
    const int base = options.forward ? from : 0;
    const QString text =
        decode(options.forward ? all.substr(static_cast<std::size_t>(from)) : all.substr(0, from));
    qsizetype at = options.forward ? 0 : text.size();
    for (;;) {
        const qsizetype index = options.forward ? text.indexOf(options.text, at, Qt::CaseInsensitive)
                                                : text.lastIndexOf(options.text, at, Qt::CaseInsensitive);
        if (index < 0) return {-1, -1};
        const int begin = base + byteSize(QStringView(text).left(index));
        const int end = begin + byteSize(QStringView(text).mid(index, options.text.size()));
        if (!options.wholeWords ||
            isWholeWord(all, static_cast<std::size_t>(begin), static_cast<std::size_t>(end)))
            return {begin, end};
        if (options.forward) {
            at = index + 1;
        } else {
            if (index == 0) return {-1, -1};
            at = index - 1;
        }
    }
}

}  // namespace

namespace QcbsTextSearch {

std::pair<int, int> findBytes(std::string_view text, std::string_view needle, int from,
                              const QcbsSearchOptions& options) {
    constexpr std::pair<int, int> none{-1, -1};
    if (needle.empty() || needle.size() > text.size()) return none;
    const std::size_t size = needle.size();
    std::size_t at = static_cast<std::size_t>(std::clamp(from, 0, static_cast<int>(text.size())));
    if (!options.forward) {
        if (at < size) return none;
        at -= size;  // the match ends at or before `from`
    }
    for (;;) {
        const std::size_t begin = nextCandidate(text, needle, at, options.forward, options.caseSensitive);
        if (begin == std::string_view::npos) return none;
        if (!options.wholeWords || isWholeWord(text, begin, begin + size))
            return {static_cast<int>(begin), static_cast<int>(begin + size)};
        if (options.forward) {
            at = begin + 1;
        } else {
            if (begin == 0) return none;
            at = begin - 1;
        }
    }
}

int searchStart(const QcbsRichTextEdit& editor, bool forward, bool fromBeginning) {
    if (fromBeginning) return forward ? 0 : editor.byteLength();
    const int cursor = editor.cursorBytePosition();
    const long selectionStart = editor.SendScintilla(QsciScintillaBase::SCI_GETSELECTIONSTART);
    const long selectionEnd = editor.SendScintilla(QsciScintillaBase::SCI_GETSELECTIONEND);
    if (selectionStart == selectionEnd) return cursor;
    if (!forward && cursor == selectionEnd)
        return static_cast<int>(editor.SendScintilla(QsciScintillaBase::SCI_POSITIONBEFORE, cursor));
    if (forward && cursor == selectionStart)
        return static_cast<int>(editor.SendScintilla(QsciScintillaBase::SCI_POSITIONAFTER, cursor));
    return cursor;
}

std::pair<int, int> locate(QcbsRichTextEdit& editor, const QcbsSearchOptions& options, int from) {
    if (options.text.isEmpty() || editor.isLoading()) return {-1, -1};
    if (!editor.isUtf8Text() && !fitsLatin1(options.text)) return {-1, -1};
    const QByteArray needle = editor.isUtf8Text() ? options.text.toUtf8() : options.text.toLatin1();
    return options.caseSensitive || isAscii(options.text)
               ? findBytes(editor.byteView(), std::string_view(needle.constData(), needle.size()), from,
                           options)
               : decodedFind(editor, from, options);
}

bool findInEditor(QcbsRichTextEdit& editor, const QcbsSearchOptions& options, int from) {
    const auto [begin, end] = locate(editor, options, from);
    if (begin < 0) return false;
    const int line = static_cast<int>(
        editor.SendScintilla(QsciScintillaBase::SCI_LINEFROMPOSITION, static_cast<unsigned long>(begin)));
    editor.SendScintilla(QsciScintillaBase::SCI_ENSUREVISIBLEENFORCEPOLICY, line);
    int paraFrom = 0, indexFrom = 0, paraTo = 0, indexTo = 0;
    editor.paragraphIndexOf(begin, &paraFrom, &indexFrom);
    editor.paragraphIndexOf(end, &paraTo, &indexTo);
    editor.setSelection(paraFrom, indexFrom, paraTo, indexTo);
    editor.SendScintilla(QsciScintillaBase::SCI_SCROLLRANGE, static_cast<unsigned long>(end),
                         static_cast<long>(begin));
    return true;
}

int replaceAll(QcbsRichTextEdit& editor, const QString& pattern, const QString& replacement,
               bool caseSensitive) {
    QRegularExpression expression(pattern, caseSensitive ? QRegularExpression::NoPatternOption
                                                         : QRegularExpression::CaseInsensitiveOption);
    if (!expression.isValid()) return -1;
    expression.optimize();
    std::string_view old = editor.byteView();
    const QByteArrayView oldView(old.data(), static_cast<qsizetype>(old.size()));
    QString text = editor.isUtf8Text() ? QString::fromUtf8(oldView) : QString::fromLatin1(oldView);
    text.replace(expression, replacement);
    if (!editor.isUtf8Text() && !fitsLatin1(text)) {
        editor.widenToUtf8();
        old = editor.byteView();
    }
    const QByteArray now = editor.isUtf8Text() ? text.toUtf8() : text.toLatin1();
    text.clear();
    const std::string_view changed(now.constData(), static_cast<std::size_t>(now.size()));
    // Only the stretch between the first and the last differing byte is
    // replaced, cut at character boundaries.
    std::size_t prefix = static_cast<std::size_t>(
        std::mismatch(old.begin(), old.end(), changed.begin(), changed.end()).first - old.begin());
    if (prefix == old.size() && prefix == changed.size()) return 0;
    const std::size_t most = std::min(old.size(), changed.size()) - prefix;
    std::size_t suffix = 0;
    while (suffix < most && old[old.size() - 1 - suffix] == changed[changed.size() - 1 - suffix]) ++suffix;
    if (editor.isUtf8Text()) {
        const auto continuation = [](char c) { return (static_cast<unsigned char>(c) & 0xc0) == 0x80; };
        while (prefix > 0 && prefix < old.size() && continuation(old[prefix])) --prefix;
        while (suffix > 0 && continuation(old[old.size() - suffix])) --suffix;
    }
    editor.replaceBytes(static_cast<int>(prefix), static_cast<int>(old.size() - suffix),
                        changed.substr(prefix, changed.size() - prefix - suffix));
    // A selection that held a match would now cover a piece of its replacement.
    editor.SendScintilla(QsciScintillaBase::SCI_SETEMPTYSELECTION,
                         editor.SendScintilla(QsciScintillaBase::SCI_GETCURRENTPOS));
    return 1;
}

}  // namespace QcbsTextSearch
