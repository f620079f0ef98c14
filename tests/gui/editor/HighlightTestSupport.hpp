// SPDX-License-Identifier: GPL-3.0-or-later
// Helpers of the highlighting tests: a small dictionary, style letters, an editor's styles.
#pragma once

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QString>
#include <algorithm>
#include <cctype>
#include <functional>
#include <initializer_list>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "cif/CifDictionary.hpp"
#include "editor/QcbsFontStyleSettings.hpp"
#include "editor/QcbsRichTextEdit.hpp"
#include "editor/QcbsSyntaxHighlighter_CIF.hpp"

// A dictionary that defines the names it is given, compared without regard
// to case, and records the questions it was asked.
class SmallTestDictionary : public CifDictionary {
public:
    SmallTestDictionary(std::initializer_list<std::string> names) {
        for (const std::string& name : names) {
            names_.insert(lower(name));
            ordered_.push_back(name);
        }
    }
    bool is_defined(const std::string& name) const override {
        asked_.push_back(name);
        return names_.count(lower(name)) != 0;
    }
    std::vector<std::string> data_names() const override { return ordered_; }
    const std::vector<std::string>& asked() const { return asked_; }

private:
    static std::string lower(std::string text) {
        std::transform(text.begin(), text.end(), text.begin(),
                       [](unsigned char c) { return std::tolower(c); });
        return text;
    }
    std::set<std::string> names_;
    std::vector<std::string> ordered_;
    mutable std::vector<std::string> asked_;
};

// One letter per style, so that a line's styles read as a string:
// S standard, C comment, X text field, T block header, K keyword, D defined
// data name, U custom data name, N special character, Y symbol letter,
// P super/subscript, M markup marker, I invalid character.
inline char styleLetter(int style) {
    static const char letters[] = "SCXTKDUNYPMI";
    return QcbsFontStyleSettings::validSyntaxStyle(style) ? letters[style] : '?';
}

template <class Styles>
std::string styleLetters(const Styles& styles) {
    std::string letters;
    for (const auto style : styles) letters.push_back(styleLetter(style));
    return letters;
}

// The style letters of a line's characters (without its line end), as the
// editor holds them: a character's style is that of its first byte.
inline std::string lineLetters(const QcbsRichTextEdit& edit, int line) {
    using Sci = QsciScintillaBase;
    const int from = static_cast<int>(edit.SendScintilla(Sci::SCI_POSITIONFROMLINE, line));
    const int to = static_cast<int>(edit.SendScintilla(Sci::SCI_GETLINEENDPOSITION, line));
    const std::string_view bytes = edit.byteView(from, to - from);
    std::string letters;
    for (int i = 0; i < to - from; ++i) {
        if (edit.isUtf8Text() &&
            (static_cast<unsigned char>(bytes[static_cast<std::size_t>(i)]) & 0xc0) == 0x80)
            continue;
        letters.push_back(styleLetter(static_cast<int>(edit.SendScintilla(Sci::SCI_GETSTYLEAT, from + i))));
    }
    return letters;
}

// The highlighter's state of a line (without the folding context).
inline int lineState(const QcbsRichTextEdit& edit, int line) {
    return QcbsSyntaxHighlighter_CIF::classifierState(
        static_cast<int>(edit.SendScintilla(QsciScintillaBase::SCI_GETLINESTATE, line)));
}

// Every line's letters and state, one line per line. The blank that ends a
// data name keeps the style of whichever line was classified before, so
// when lines were styled in another order blanks can be left out of the
// comparison, shown as '_'.
enum class Blanks { Compared, Ignored };
inline std::string documentLetters(const QcbsRichTextEdit& edit, Blanks blanks = Blanks::Compared) {
    std::string text;
    // The last line after a final line end holds nothing.
    const int lines = edit.lines() - (edit.text(edit.lines() - 1).isEmpty() ? 1 : 0);
    for (int line = 0; line < lines; ++line) {
        std::string letters = lineLetters(edit, line);
        const QString chars = edit.text(line);
        for (int i = 0; blanks == Blanks::Ignored && i < std::min<int>(chars.size(), letters.size()); ++i) {
            if (chars[i] == u' ' || chars[i] == u'\t') letters[static_cast<std::size_t>(i)] = '_';
        }
        text += letters + " " + std::to_string(lineState(edit, line)) + "\n";
    }
    return text;
}

// Styles the rest of the text now, from where the styling stands, as idle
// time would (piece by piece).
inline void styleEverything(QcbsRichTextEdit& edit) {
    using Sci = QsciScintillaBase;
    while (edit.SendScintilla(Sci::SCI_GETENDSTYLED) < edit.byteLength())
        edit.SendScintilla(Sci::SCI_COLOURISE, edit.SendScintilla(Sci::SCI_GETENDSTYLED), -1L);
}

inline bool everythingStyled(const QcbsRichTextEdit& edit) {
    return edit.SendScintilla(QsciScintillaBase::SCI_GETENDSTYLED) >= edit.byteLength();
}

// The same text styled at once, in a fresh editor.
inline std::string styledAtOnce(const QString& text, const THandle<QcbsFontStyleSettings>& settings,
                                const THandle<CifDictionary>& dictionary, Blanks blanks) {
    QcbsRichTextEdit reference(dictionary, settings);
    reference.setPlainText(text);
    styleEverything(reference);
    return documentLetters(reference, blanks);
}

// A CIF text of `repeats` times twelve lines, with quoted strings and text
// fields that run over several lines and markup carried inside a field.
inline QString sampleCif(int repeats) {
    QString text;
    for (int i = 0; i < repeats; ++i) {
        const QString n = QString::number(i);
        text += "data_block" + n + "\n_cell_length_a 1" + n + ".5(2)\n_title 'unterminated " + n +
                "\nstill quoted' _custom_name\nloop_\n_a _b # two\n" + n + " 'x y'\n;\ntext x^2 carried " +
                n + "\n^ end \\a\n;\n_atom_site_label C" + n + "\n";
    }
    return text;
}

// Compares two documentLetters() texts and names the first line that differs.
inline ::testing::AssertionResult sameHighlighting(const std::string& actual, const std::string& expected) {
    std::istringstream a(actual), e(expected);
    std::string lineA, lineE;
    for (int line = 0;; ++line) {
        const bool moreA = static_cast<bool>(std::getline(a, lineA));
        const bool moreE = static_cast<bool>(std::getline(e, lineE));
        if (!moreA && !moreE) return ::testing::AssertionSuccess();
        if (moreA != moreE || lineA != lineE) {
            return ::testing::AssertionFailure()
                   << "line " << line << ": got \"" << lineA << "\", expected \"" << lineE << "\"";
        }
    }
}

// Runs the event loop until `done` or the time runs out; returns done().
inline bool runUntil(const std::function<bool()>& done, int timeoutMs = 60000) {
    QElapsedTimer clock;
    clock.start();
    while (!done() && clock.elapsed() < timeoutMs) QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    return done();
}
