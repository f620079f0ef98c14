// SPDX-License-Identifier: GPL-3.0-or-later
// Colours an editor's CIF text line by line through the line classifier: a Scintilla lexer.
#pragma once

#include <Qsci/qscilexercustom.h>

#include <QColor>
#include <QElapsedTimer>
#include <QFont>
#include <QString>
#include <string>
#include <utility>
#include <vector>

#include "editor/QcbsCifLineClassifier.hpp"
#include "editor/QcbsFontStyleSettings.hpp"
#include "support/THandle.hpp"

class CifDictionary;

// Colours the CIF text of an editor: a Scintilla lexer whose twelve styles are
// the syntax styles of QcbsFontStyleSettings. Scintilla asks for the lines it
// is about to show (and, in idle time, for the rest); each line is classified
// by QcbsCifLineClassifier (its line end counts as a separator, so a block
// header or loop_ alone on its line is recognised and a lone ";" opens a text
// field), its bytes get the styles of their characters, and the state it ends
// in (text field, quoted string, markup, and the loop or save frame it lies
// in) is kept as the line's state for the line below. Loops, save frames and
// text fields become fold points.
//
// Work follows what changed. After an edit Scintilla asks again from the
// edited line; once a line below the edit ends in the state it ended in
// before, the lines after it are known to look as they did, and styling
// jumps past them to where it had got before the edit. When the view shows
// lines far beyond the styled part (a jump to the end of a big file),
// Scintilla styles a bounded slice and leaves the rest for idle time; the
// lines in view are then coloured at once from the state the line above them
// holds, and put right when the styling from the top reaches them.
class QcbsSyntaxHighlighter_CIF : public QsciLexerCustom {
    Q_OBJECT

public:
    using SyntaxStyle = QcbsFontStyleSettings::SyntaxStyle;

    // The packed state a line starts from when there is no line above.
    static constexpr int FreshState = -1;

    QcbsSyntaxHighlighter_CIF(THandle<CifDictionary> dictionary, THandle<QcbsFontStyleSettings> styles,
                              QObject* parent = nullptr);
    ~QcbsSyntaxHighlighter_CIF() override;

    // QsciLexer: the styles' names, fonts and colours.
    const char* language() const override { return "CIF"; }
    QString description(int style) const override;
    QColor defaultColor(int style) const override;
    QFont defaultFont(int style) const override;
    QColor defaultPaper(int style) const override;
    // Styles whole lines from the line holding `start` to the line holding `end` - 1.
    void styleText(int start, int end) override;

    // Takes the fonts and colours of the style settings; the editor shows them at once.
    void updateStyles();
    // The font and colour of a style, straight from the style settings.
    std::pair<QFont, QColor> format(SyntaxStyle style) const;
    static bool isKeyword(const QString& word) { return QcbsCifLineClassifier::isKeyword(word); }

    // Data names are looked up in this dictionary from now on (null: every
    // data name is custom); the text is coloured again, the lines in view first.
    void setDictionary(THandle<CifDictionary> dictionary);
    const THandle<CifDictionary>& dictionary() const { return dictionary_; }

    // Colours every line again, the lines in view first, the rest in idle time.
    void rehighlightInSlices();

    // Classifies one line of text that follows a line which ended in
    // `endStateOfLastPara` (FreshState: none) and returns the state it ends
    // in; classifier().styles() then holds its styles.
    int highlightParagraph(const QString& text, int endStateOfLastPara);
    const QcbsCifLineClassifier& classifier() const { return classifier_; }

    // For the editor, before each change of the text: `position` and the
    // number of bytes inserted (positive) or deleted (negative).
    void textAboutToChange(int position, int delta);

    // While the editor paints, styling that the lines in view do not wait
    // for gets a much smaller slice of time: the paint after a keystroke
    // would otherwise carry a slice of the styling of the rest of the text.
    void setPainting(bool painting) { painting_ = painting; }

    // The state `line` ended in when it was last styled, 0 for a line never
    // styled. Asked for a line beyond the last one with a state, Scintilla
    // grows its table of states up to that line first (a fifth of a second
    // when the view jumps to the end of a text of millions of lines); this
    // answers such a line without asking.
    int lineState(int line) const;

    // The classifier's state within a line state.
    static int classifierState(int lineState) { return lineState & 0x3ff; }
    // Lines classified for real (not for a preview of the lines in view), for tests.
    long long linesStyled() const { return linesStyled_; }

private:
    // A stretch of lines below an edit whose styles were right before it,
    // given the state the line above them ended in: [from, to) in bytes,
    // `from` at the first such line's start.
    struct Clean {
        int from;
        int to;
        int incoming;  // the state the line before `from` ended in
    };

    // Classifies the lines of [from, to) (whole lines) starting from the
    // packed state `state`; fills styleBuffer_ and, unless `preview`, sets
    // the lines' states and fold levels. Returns where it stopped: `to`, or
    // the start of a line from which a clean stretch needs no styling (then
    // *skipTo is where that stretch ends).
    int classifyLines(int firstLine, int from, int to, int state, bool preview, int* skipTo);
    void previewVisibleLines();
    void forgetCleanLines() { clean_.clear(); }

    THandle<CifDictionary> dictionary_;
    THandle<QcbsFontStyleSettings> styles_;
    QcbsCifLineClassifier classifier_;
    std::u16string line_;            // the line being classified, as UTF-16
    std::vector<int> unitBytes_;     // the byte offset of each UTF-16 unit of line_
    std::vector<char> styleBuffer_;  // the styles of the bytes being styled
    std::vector<Clean> clean_;
    bool inStyleText_ = false;
    bool bounded_ = false;  // the styling under way may stop after a while
    bool painting_ = false;
    qint64 budget_ = 0;  // how long bounded styling may run, in nanoseconds
    QElapsedTimer clock_;
    long long linesStyled_ = 0;
};
