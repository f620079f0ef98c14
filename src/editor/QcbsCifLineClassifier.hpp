// SPDX-License-Identifier: GPL-3.0-or-later
// How the CIF highlighter reads one line: a style per character and a state for the next.
#pragma once

#include <QStringView>
#include <string>
#include <string_view>
#include <vector>

#include "editor/QcbsFontStyleSettings.hpp"

class CifDictionary;

// How the CIF highlighter reads one line of text, free of any widget: from the
// line and the packed state the previous line ended in, it gives one
// SyntaxStyle per character and the packed state to hand to the next line.
//
// A table-driven state machine (ten states, six character classes) gives the
// base styles: comments, text fields, block headers, the keyword loop_, and
// data names, which the dictionary tells apart into defined and custom ones.
// Three overlays follow: backslash escape codes, characters the CIF library
// rejects, and ^/~ super/subscript markup.
//
// The packed state holds the machine's state in bits 0-7, of which only "in a
// quoted string" (3) and "in a text field" (6) are carried to the next line,
// and the open-subscript (0x100) and open-superscript (0x200) flags, which are
// carried only inside a text field. -1 (what Qt gives for a line that has no
// state yet) and -2 both mean a fresh start.
//
// The style buffer is reused from line to line and only resized, so the one
// character that no step styles, the separator that ends a data name, keeps
// the style the previously classified line left at its position. Highlighting
// therefore depends on the order lines are classified in; this is intended.
class QcbsCifLineClassifier {
public:
    using SyntaxStyle = QcbsFontStyleSettings::SyntaxStyle;

    static constexpr int SubscriptFlag = 0x100;
    static constexpr int SuperscriptFlag = 0x200;
    static constexpr int InQuotedStringState = 3;
    static constexpr int InTextFieldState = 6;

    // What the end of a line is to the state machine. A text widget that hands
    // each line over with a trailing blank makes it a Separator: a block header,
    // loop_ or data name alone on its line is then recognised, and a line
    // holding only ";" opens a text field. With Nothing, a token that reaches
    // the end of its line stays unexamined and a lone ";" opens nothing that
    // lasts beyond its line.
    enum class LineEnd { Separator, Nothing };

    // The dictionary is not owned; null makes every data name custom.
    explicit QcbsCifLineClassifier(const CifDictionary* dictionary = nullptr,
                                   LineEnd lineEnd = LineEnd::Separator)
        : dictionary_(dictionary), lineEnd_(lineEnd) {}

    void setDictionary(const CifDictionary* dictionary) { dictionary_ = dictionary; }
    const CifDictionary* dictionary() const { return dictionary_; }

    // Classifies one line (without its line end) that follows a line which
    // ended in `incomingState`; styles() then holds one style per character,
    // followed by that of the blank standing for the line end, if any.
    // Returns the packed state for the next line.
    int classify(QStringView line, int incomingState);

    const std::vector<SyntaxStyle>& styles() const { return styles_; }
    // The length of the line last classified.
    int lineLength() const { return lineLength_; }

    // Gives `count` characters from `start` the style (within the buffer).
    void setStyle(int start, int count, SyntaxStyle style);

    // Calls apply(start, count, style) once for every maximal run of equal
    // styles of the line's own characters, in order.
    template <class Apply>
    void forEachRun(Apply&& apply) const {
        const int size = lineLength_;
        if (uniform_ && size > 0) {
            apply(0, size, styles_[0]);
            return;
        }
        int start = 0;
        while (start < size) {
            const SyntaxStyle style = styles_[start];
            int end = start + 1;
            while (end < size && styles_[end] == style) ++end;
            apply(start, end - start, style);
            start = end;
        }
    }

    // Runs of plain characters (letters, digits, blanks) are classified in
    // tight loops; turning that off leaves only the character-by-character
    // path, which tests compare the fast one against.
    void setFastRuns(bool on) { fastRuns_ = on; }

    // Only the exact, case-sensitive word "loop_" is a keyword.
    static bool isKeyword(QStringView word) { return word == u"loop_"; }

private:
    int normalRun(const char16_t* text, int from, int size, bool& blankSoFar);
    int plainRun(const char16_t* text, int from, int size, bool& blankSoFar, SyntaxStyle style);
    void endWord(int position);
    void endWord(std::u16string_view word, int position);
    void endDataName(int position);
    void applyEscapeCodes(const char16_t* text, int position, char16_t c, bool letter);
    void applyMarkup(const char16_t* text, int size, int paragraphLength);

    const CifDictionary* dictionary_;
    LineEnd lineEnd_;
    bool fastRuns_ = true;
    bool uniform_ = false;  // the last line is one run of one style
    int lineLength_ = 0;
    std::vector<SyntaxStyle> styles_;
    std::u16string word_;  // the bare word or data name being read
    std::string name_;     // a data name as asked of the dictionary
    bool subscript_ = false;
    bool superscript_ = false;
};
