// SPDX-License-Identifier: GPL-3.0-or-later
// Colours an editor's CIF text line by line through the line classifier: a Scintilla lexer.
#include "editor/QcbsSyntaxHighlighter_CIF.hpp"

#include <Qsci/qsciscintilla.h>

#include <algorithm>
#include <cstdlib>

#include "cif/CifDictionary.hpp"
#include "editor/QcbsCifFolding.hpp"

namespace {

using Sci = QsciScintillaBase;

// Scintilla asks for a line or two at a time when it walks a fold; lines
// are styled at least this many bytes at a time so that such walks stay quick.
constexpr int kMinimumChunk = 64 * 1024;
// The lines in view are coloured ahead of the styling from the top only
// while they hold at most this many bytes.
constexpr int kPreviewLimit = 4 * 1024 * 1024;
// Styling that nothing in view waits for (idle time, the slice Scintilla
// styles when the view is far below) stops after this long; Scintilla asks
// again for the rest. Its own measure of a line's cost is thrown far off by
// the lines skipped after an edit, so it cannot be left to bound the work.
constexpr qint64 kBudgetNanoseconds = 8 * 1000 * 1000;
// The same during a paint, which the user waits for: a minimal step.
constexpr qint64 kPaintBudgetNanoseconds = 0;

bool inTextField(int state) {
    return state != QcbsSyntaxHighlighter_CIF::FreshState &&
           (QcbsSyntaxHighlighter_CIF::classifierState(state) & 0xff) ==
               QcbsCifLineClassifier::InTextFieldState;
}

int foldContext(int state) {
    return state == QcbsSyntaxHighlighter_CIF::FreshState
               ? QcbsCifFolding::NoContext
               : (state & QcbsCifFolding::StateMask) >> QcbsCifFolding::StateShift;
}

}  // namespace

QcbsSyntaxHighlighter_CIF::QcbsSyntaxHighlighter_CIF(THandle<CifDictionary> dictionary,
                                                     THandle<QcbsFontStyleSettings> styles, QObject* parent)
    : QsciLexerCustom(parent), dictionary_(dictionary), styles_(styles), classifier_(dictionary.get()) {
    setDefaultColor(Qt::black);
    setDefaultPaper(Qt::white);
    if (styles_) setDefaultFont(styles_->editorFont());
}

QcbsSyntaxHighlighter_CIF::~QcbsSyntaxHighlighter_CIF() = default;

QString QcbsSyntaxHighlighter_CIF::description(int style) const {
    if (!QcbsFontStyleSettings::validSyntaxStyle(style)) return QString();
    return QcbsFontStyleSettings::styleText(static_cast<SyntaxStyle>(style));
}

QColor QcbsSyntaxHighlighter_CIF::defaultColor(int style) const {
    if (!styles_ || !QcbsFontStyleSettings::validSyntaxStyle(style)) return QsciLexer::defaultColor(style);
    return format(static_cast<SyntaxStyle>(style)).second;
}

QFont QcbsSyntaxHighlighter_CIF::defaultFont(int style) const {
    if (!styles_ || !QcbsFontStyleSettings::validSyntaxStyle(style)) return QsciLexer::defaultFont(style);
    return format(static_cast<SyntaxStyle>(style)).first;
}

QColor QcbsSyntaxHighlighter_CIF::defaultPaper(int) const { return Qt::white; }

std::pair<QFont, QColor> QcbsSyntaxHighlighter_CIF::format(SyntaxStyle style) const {
    return styles_->highlightStyle(style);
}

void QcbsSyntaxHighlighter_CIF::updateStyles() {
    if (!styles_) return;
    setDefaultFont(styles_->editorFont());
    for (int style = 0; QcbsFontStyleSettings::validSyntaxStyle(style); ++style) {
        const auto [font, colour] = format(static_cast<SyntaxStyle>(style));
        // Each change reaches the editor's style at once.
        setFont(font, style);
        setColor(colour, style);
        setPaper(Qt::white, style);
    }
}

void QcbsSyntaxHighlighter_CIF::setDictionary(THandle<CifDictionary> dictionary) {
    dictionary_ = dictionary;
    classifier_.setDictionary(dictionary_.get());
    rehighlightInSlices();
}

void QcbsSyntaxHighlighter_CIF::rehighlightInSlices() {
    QsciScintilla* view = editor();
    if (view == nullptr || inStyleText_) return;
    forgetCleanLines();
    // Everything counts as unstyled: the next paint styles what it shows,
    // idle time the rest.
    view->SendScintilla(Sci::SCI_STARTSTYLING, 0L);
    view->viewport()->update();
}

int QcbsSyntaxHighlighter_CIF::highlightParagraph(const QString& text, int endStateOfLastPara) {
    const int incoming = endStateOfLastPara == FreshState || endStateOfLastPara == -2
                             ? FreshState
                             : classifierState(endStateOfLastPara);
    return classifier_.classify(text, incoming);
}

int QcbsSyntaxHighlighter_CIF::lineState(int line) const {
    const QsciScintilla* view = editor();
    if (view == nullptr || line < 0 || line >= view->SendScintilla(Sci::SCI_GETMAXLINESTATE)) return 0;
    return static_cast<int>(view->SendScintilla(Sci::SCI_GETLINESTATE, line));
}

// --- following edits ---------------------------------------------------------------------

void QcbsSyntaxHighlighter_CIF::textAboutToChange(int position, int delta) {
    QsciScintilla* view = editor();
    if (view == nullptr || delta == 0) return;
    const int length = std::abs(delta);
    const auto lineOf = [view](int at) {
        return static_cast<int>(view->SendScintilla(Sci::SCI_LINEFROMPOSITION, at));
    };
    const auto lineStart = [view](int line) {
        return static_cast<int>(view->SendScintilla(Sci::SCI_POSITIONFROMLINE, line));
    };
    const auto stateOf = [this](int line) { return lineState(line); };
    // The last line the change touches, and where the untouched lines after it start.
    const int lastLine = lineOf(delta > 0 ? position : position + length);
    const int lineCount = static_cast<int>(view->SendScintilla(Sci::SCI_GETLINECOUNT));
    const int untouched = lastLine + 1 < lineCount ? lineStart(lastLine + 1) : -1;

    std::vector<Clean> kept;
    for (Clean clean : clean_) {
        if (clean.to <= position) {
            kept.push_back(clean);
        } else if (clean.from > position + (delta > 0 ? 0 : length)) {
            clean.from += delta;
            clean.to += delta;
            kept.push_back(clean);
        } else {
            // The change falls within: the lines before it stay clean, and so
            // do those after the lines it touches.
            const int before = lineStart(lineOf(position));
            if (before > clean.from) kept.push_back({clean.from, before, clean.incoming});
            if (untouched >= 0 && untouched < clean.to)
                kept.push_back({untouched + delta, clean.to + delta, stateOf(lastLine)});
        }
    }
    // The styled lines below the change looked right before it.
    const int endStyled = static_cast<int>(view->SendScintilla(Sci::SCI_GETENDSTYLED));
    if (untouched >= 0 && untouched < endStyled)
        kept.push_back({untouched + delta, endStyled + delta, stateOf(lastLine)});
    std::sort(kept.begin(), kept.end(), [](const Clean& a, const Clean& b) { return a.from < b.from; });
    clean_ = std::move(kept);
}

// --- styling --------------------------------------------------------------------------------

void QcbsSyntaxHighlighter_CIF::styleText(int start, int end) {
    QsciScintilla* view = editor();
    // Scintilla asks again while a fold walk runs inside this call; the
    // walk does with the levels set so far.
    if (view == nullptr || inStyleText_) return;
    inStyleText_ = true;
    const int length = static_cast<int>(view->SendScintilla(Sci::SCI_GETLENGTH));
    const int lineCount = static_cast<int>(view->SendScintilla(Sci::SCI_GETLINECOUNT));
    int line = static_cast<int>(view->SendScintilla(Sci::SCI_LINEFROMPOSITION, start));
    int from = static_cast<int>(view->SendScintilla(Sci::SCI_POSITIONFROMLINE, line));
    end = std::min(length, std::max(end, from + kMinimumChunk));
    if (end > from) {
        // A request that ends outside the view is worked off in bounded pieces.
        const long top = view->SendScintilla(Sci::SCI_GETFIRSTVISIBLELINE);
        const long bottom = top + view->SendScintilla(Sci::SCI_LINESONSCREEN) + 1;
        const long firstShown = view->SendScintilla(Sci::SCI_POSITIONFROMLINE,
                                                    view->SendScintilla(Sci::SCI_DOCLINEFROMVISIBLE, top));
        const long lastShown = view->SendScintilla(Sci::SCI_POSITIONFROMLINE,
                                                   view->SendScintilla(Sci::SCI_DOCLINEFROMVISIBLE, bottom));
        bounded_ = end < firstShown || end > lastShown + 1 || lastShown < 0;
        budget_ = painting_ ? kPaintBudgetNanoseconds : kBudgetNanoseconds;
        clock_.start();
        const int lastLine = static_cast<int>(view->SendScintilla(Sci::SCI_LINEFROMPOSITION, end - 1));
        const int to = lastLine + 1 < lineCount
                           ? static_cast<int>(view->SendScintilla(Sci::SCI_POSITIONFROMLINE, lastLine + 1))
                           : length;
        while (from < to) {
            const int state = line > 0 ? lineState(line - 1) : FreshState;
            int skipTo = -1;
            const int stopped = classifyLines(line, from, to, state, false, &skipTo);
            if (stopped > from) {
                view->SendScintilla(Sci::SCI_STARTSTYLING, static_cast<long>(from));
                view->SendScintilla(Sci::SCI_SETSTYLINGEX, static_cast<unsigned long>(stopped - from),
                                    styleBuffer_.data());
            }
            if (skipTo < 0) break;
            // The lines up to skipTo look as they did: styling goes on after them.
            view->SendScintilla(Sci::SCI_STARTSTYLING, static_cast<long>(skipTo));
            from = skipTo;
            line = static_cast<int>(view->SendScintilla(Sci::SCI_LINEFROMPOSITION, from));
        }
        const int endStyled = static_cast<int>(view->SendScintilla(Sci::SCI_GETENDSTYLED));
        // Stretches the styling has passed are done with.
        clean_.erase(std::remove_if(clean_.begin(), clean_.end(),
                                    [endStyled](const Clean& clean) { return clean.from < endStyled; }),
                     clean_.end());
        previewVisibleLines();
    }
    inStyleText_ = false;
}

void QcbsSyntaxHighlighter_CIF::previewVisibleLines() {
    QsciScintilla* view = editor();
    const int endStyled = static_cast<int>(view->SendScintilla(Sci::SCI_GETENDSTYLED));
    const int length = static_cast<int>(view->SendScintilla(Sci::SCI_GETLENGTH));
    if (endStyled >= length) return;
    const long top = view->SendScintilla(Sci::SCI_GETFIRSTVISIBLELINE);
    const long shown = view->SendScintilla(Sci::SCI_LINESONSCREEN);
    const int firstLine = static_cast<int>(view->SendScintilla(Sci::SCI_DOCLINEFROMVISIBLE, top));
    const int lastLine = static_cast<int>(view->SendScintilla(Sci::SCI_DOCLINEFROMVISIBLE, top + shown + 1));
    const int lineCount = static_cast<int>(view->SendScintilla(Sci::SCI_GETLINECOUNT));
    const int from =
        std::max(endStyled, static_cast<int>(view->SendScintilla(Sci::SCI_POSITIONFROMLINE, firstLine)));
    const int to = lastLine + 1 < lineCount
                       ? static_cast<int>(view->SendScintilla(Sci::SCI_POSITIONFROMLINE, lastLine + 1))
                       : length;
    if (from >= to || to - from > kPreviewLimit) return;
    const int line = static_cast<int>(view->SendScintilla(Sci::SCI_LINEFROMPOSITION, from));
    // The state the line above holds now: right when that line is styled,
    // a fair guess otherwise.
    const int state = line > 0 ? lineState(line - 1) : FreshState;
    classifyLines(line, from, to, state, true, nullptr);
    view->SendScintilla(Sci::SCI_STARTSTYLING, static_cast<long>(from));
    view->SendScintilla(Sci::SCI_SETSTYLINGEX, static_cast<unsigned long>(to - from), styleBuffer_.data());
    // The styling from the top still has to come this way.
    view->SendScintilla(Sci::SCI_STARTSTYLING, static_cast<long>(endStyled));
}

int QcbsSyntaxHighlighter_CIF::classifyLines(int firstLine, int from, int to, int state, bool preview,
                                             int* skipTo) {
    QsciScintilla* view = editor();
    const int length = to - from;
    const char* bytes = reinterpret_cast<const char*>(view->SendScintilla(
        Sci::SCI_GETRANGEPOINTER, static_cast<unsigned long>(from), static_cast<long>(length)));
    styleBuffer_.resize(static_cast<std::size_t>(length));
    const bool utf8 = view->isUtf8();
    int lastOld = 0;
    int lastNew = state;
    int line = firstLine;
    std::size_t next = 0;  // the first clean stretch that may lie ahead
    for (int i = 0; i < length; ++line) {
        if (!preview && bounded_ && i > 0 && (line - firstLine) % 256 == 0 && clock_.nsecsElapsed() > budget_)
            return from + i;  // the rest when Scintilla asks again
        if (!preview && i > 0) {
            // Where a clean stretch goes on from a line that ends as it did
            // before, the rest of the stretch needs nothing.
            const int at = from + i;
            while (next < clean_.size() && clean_[next].to <= at) ++next;
            if (next < clean_.size() && clean_[next].from <= at) {
                const int needed = at == clean_[next].from ? clean_[next].incoming : lastOld;
                if (needed == lastNew) {
                    *skipTo = clean_[next].to;
                    return at;
                }
            }
        }
        int eol = i;
        while (eol < length && bytes[eol] != '\n' && bytes[eol] != '\r') ++eol;
        int lineEnd = eol;
        if (lineEnd < length)
            lineEnd += (bytes[lineEnd] == '\r' && lineEnd + 1 < length && bytes[lineEnd + 1] == '\n') ? 2 : 1;

        // The line as UTF-16, with where each unit's bytes begin.
        const int size = eol - i;
        line_.resize(static_cast<std::size_t>(size));
        unitBytes_.clear();
        bool identity = true;
        for (int k = 0; k < size; ++k) {
            const auto c = static_cast<unsigned char>(bytes[i + k]);
            if (c >= 0x80 && utf8) {
                identity = false;
                break;
            }
            line_[static_cast<std::size_t>(k)] = c;
        }
        if (!identity) {
            line_.clear();
            for (int k = 0; k < size;) {
                const auto c = static_cast<unsigned char>(bytes[i + k]);
                int count = c < 0x80 ? 1 : c >= 0xf0 ? 4 : c >= 0xe0 ? 3 : c >= 0xc0 ? 2 : 0;
                char32_t code = count == 1 ? c : count == 2 ? c & 0x1f : count == 3 ? c & 0x0f : c & 0x07;
                for (int m = 1; m < count; ++m) {
                    const auto b = k + m < size ? static_cast<unsigned char>(bytes[i + k + m]) : 0;
                    if ((b & 0xc0) != 0x80) {
                        count = 0;
                        break;
                    }
                    code = (code << 6) | (b & 0x3f);
                }
                if (count == 0) {  // not UTF-8 after all: one replacement character per byte
                    count = 1;
                    code = 0xfffd;
                }
                unitBytes_.push_back(k);
                if (code >= 0x10000) {
                    code -= 0x10000;
                    line_.push_back(static_cast<char16_t>(0xd800 + (code >> 10)));
                    line_.push_back(static_cast<char16_t>(0xdc00 + (code & 0x3ff)));
                    unitBytes_.push_back(k);
                } else {
                    line_.push_back(static_cast<char16_t>(code));
                }
                k += count;
            }
            unitBytes_.push_back(size);
        }

        const int incoming = state == FreshState ? FreshState : classifierState(state);
        const int outgoing =
            classifier_.classify(QStringView(line_.data(), static_cast<qsizetype>(line_.size())), incoming);
        const std::vector<SyntaxStyle>& styles = classifier_.styles();
        char* out = styleBuffer_.data() + i;
        if (identity) {
            for (int k = 0; k < size; ++k) out[k] = static_cast<char>(styles[static_cast<std::size_t>(k)]);
        } else {
            const int units = static_cast<int>(line_.size());
            for (int u = 0; u < units; ++u) {
                const int b = unitBytes_[static_cast<std::size_t>(u)];
                const int e = unitBytes_[static_cast<std::size_t>(u) + 1];
                std::fill(out + b, out + e, static_cast<char>(styles[static_cast<std::size_t>(u)]));
            }
        }
        // The line end takes the style of the separator it stands for.
        std::fill(out + size, out + (lineEnd - i), static_cast<char>(styles[line_.size()]));

        if (!preview) {
            const QcbsCifFolding::Line fold =
                QcbsCifFolding::fold(QStringView(line_.data(), static_cast<qsizetype>(line_.size())),
                                     foldContext(state), inTextField(state), inTextField(outgoing));
            const int packed = outgoing | (fold.context << QcbsCifFolding::StateShift);
            lastOld = lineState(line);
            if (lastOld != packed) view->SendScintilla(Sci::SCI_SETLINESTATE, line, packed);
            int level = QsciScintilla::SC_FOLDLEVELBASE + fold.depth;
            if (fold.header) level |= QsciScintilla::SC_FOLDLEVELHEADERFLAG;
            if (fold.blank) level |= QsciScintilla::SC_FOLDLEVELWHITEFLAG;
            view->SendScintilla(Sci::SCI_SETFOLDLEVEL, line, level);
            lastNew = packed;
            state = packed;
            ++linesStyled_;
        } else {
            state = outgoing | (state == FreshState ? 0 : (state & QcbsCifFolding::StateMask));
        }
        i = lineEnd;
    }
    return to;
}
