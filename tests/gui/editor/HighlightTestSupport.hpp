// SPDX-License-Identifier: GPL-3.0-or-later
// Helpers of the highlighting tests: a small dictionary and one letter per style.
#pragma once

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QPlainTextDocumentLayout>
#include <QString>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>
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
#include "editor/QcbsSyntaxHighlighter_CIF.hpp"

// A dictionary that defines the names it is given, compared without regard
// to case, and records the questions it was asked.
class SmallTestDictionary : public CifDictionary {
public:
    SmallTestDictionary(std::initializer_list<std::string> names) {
        for (const std::string& name : names) names_.insert(lower(name));
    }
    bool is_defined(const std::string& name) const override {
        asked_.push_back(name);
        return names_.count(lower(name)) != 0;
    }
    const std::vector<std::string>& asked() const { return asked_; }

private:
    static std::string lower(std::string text) {
        std::transform(text.begin(), text.end(), text.begin(),
                       [](unsigned char c) { return std::tolower(c); });
        return text;
    }
    std::set<std::string> names_;
    mutable std::vector<std::string> asked_;
};

// One letter per style, so that a line's styles read as a string:
// S standard, C comment, X text field, T block header, K keyword, D defined
// data name, U custom data name, N special character, Y symbol letter,
// P super/subscript, M markup marker, I invalid character.
inline char styleLetter(QcbsFontStyleSettings::SyntaxStyle style) {
    static const char letters[] = "SCXTKDUNYPMI";
    return QcbsFontStyleSettings::validSyntaxStyle(style) ? letters[style] : '?';
}

template <class Styles>
std::string styleLetters(const Styles& styles) {
    std::string letters;
    for (const auto style : styles) letters.push_back(styleLetter(style));
    return letters;
}

// The style letters of a block as its layout's formats show them; '.' where
// no format applies, '?' for a format that is no style's.
inline std::string blockLetters(const QTextBlock& block, const QcbsFontStyleSettings& settings) {
    std::string letters(static_cast<std::size_t>(block.length() - 1), '.');
    if (block.layout() == nullptr) return letters;
    for (const QTextLayout::FormatRange& range : block.layout()->formats()) {
        char letter = '?';
        for (int style = 0; QcbsFontStyleSettings::validSyntaxStyle(style); ++style) {
            const auto syntaxStyle = static_cast<QcbsFontStyleSettings::SyntaxStyle>(style);
            if (settings.textFormat(syntaxStyle) == range.format) letter = styleLetter(syntaxStyle);
        }
        const int end = std::min(range.start + range.length, static_cast<int>(letters.size()));
        for (int i = range.start; i < end; ++i) letters[static_cast<std::size_t>(i)] = letter;
    }
    return letters;
}

// Every block's letters and state, one line per block. The blank that ends
// a data name keeps the style of whichever line was highlighted before, so
// when lines were highlighted in another order (edits, slices next to
// loading) blanks can be left out of the comparison, shown as '_'.
enum class Blanks { Compared, Ignored };
inline std::string documentLetters(const QTextDocument& document, const QcbsFontStyleSettings& settings,
                                   Blanks blanks = Blanks::Compared) {
    std::string text;
    for (QTextBlock block = document.firstBlock(); block.isValid(); block = block.next()) {
        std::string letters = blockLetters(block, settings);
        const QString line = block.text();
        for (int i = 0; blanks == Blanks::Ignored && i < std::min<int>(line.size(), letters.size()); ++i) {
            if (line[i] == u' ' || line[i] == u'\t') letters[static_cast<std::size_t>(i)] = '_';
        }
        text += letters + " " + std::to_string(block.userState()) + "\n";
    }
    return text;
}

// The same text highlighted at once, by a highlighter without a scheduler.
inline std::string highlightedAtOnce(const QString& text, const THandle<QcbsFontStyleSettings>& settings,
                                     const THandle<CifDictionary>& dictionary, Blanks blanks) {
    QTextDocument reference;
    reference.setDocumentLayout(new QPlainTextDocumentLayout(&reference));
    QcbsSyntaxHighlighter_CIF plain(dictionary, settings, &reference);
    reference.setPlainText(text);
    return documentLetters(reference, *settings, blanks);
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
    while (!done() && clock.elapsed() < timeoutMs) QCoreApplication::processEvents();
    QCoreApplication::processEvents();  // lets a last pass close
    return done();
}
