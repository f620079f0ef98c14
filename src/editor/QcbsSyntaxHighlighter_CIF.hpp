// SPDX-License-Identifier: GPL-3.0-or-later
// Colours the CIF text of an editor line by line through the line classifier.
#pragma once

#include <QColor>
#include <QFont>
#include <QString>
#include <QSyntaxHighlighter>
#include <QTextCharFormat>
#include <map>
#include <utility>

#include "editor/QcbsCifLineClassifier.hpp"
#include "editor/QcbsFontStyleSettings.hpp"
#include "support/THandle.hpp"

class CifDictionary;
class QPlainTextEdit;
class QTextDocument;
class QcbsHighlightScheduler;

// Colours the CIF text of an editor. Each line is classified by
// QcbsCifLineClassifier (Qt hands a block's text without its line end, which
// counts as a separator, so a block header or loop_ alone on its line is
// recognised and a lone ";" opens a text field); this class turns the styles
// into one setFormat per run of equal style, from formats built once per
// style, and hands the packed line state to the next line through
// QTextBlock::userState.
//
// Huge documents. QSyntaxHighlighter highlights synchronously: every block an
// edit touches, and then every following block for as long as the state a
// block ends in changes. On a million-line file that freezes the window for
// seconds. An editor therefore gives the highlighter a QcbsHighlightScheduler
// (the QPlainTextEdit constructor does so): the scheduler lets each pass run
// for a few milliseconds only; the blocks it refuses keep their look and
// state, and the scheduler highlights them in later slices of the event loop,
// the visible lines first. Without a scheduler the highlighter behaves like a
// plain QSyntaxHighlighter.
//
// How an editor must use it:
// - Create it with the QPlainTextEdit constructor while the document is
//   still empty (in initialise): attaching to a non-empty document makes Qt
//   highlight the whole document in one pass at the next turn of the loop.
// - Put large texts in with QcbsSlicedTextLoader, not setPlainText(), which
//   alone blocks for seconds on a million lines, and read the text (parse,
//   save) only after the loader's finished().
// - After a change of styles: updateStyles(), then rehighlightInSlices();
//   after a change of dictionary: setDictionary(), then
//   rehighlightInSlices(). Never setPlainText() the same text again to
//   re-highlight, never rehighlight() a large document, and never replace
//   the highlighter of one.
// - Slices change no text: they emit no textChanged() and leave the
//   modified flag and the undo history alone.
class QcbsSyntaxHighlighter_CIF : public QSyntaxHighlighter {
    Q_OBJECT

public:
    using SyntaxStyle = QcbsFontStyleSettings::SyntaxStyle;

    // Attaches to the editor's document and highlights it in slices.
    QcbsSyntaxHighlighter_CIF(THandle<CifDictionary> dictionary, THandle<QcbsFontStyleSettings> styles,
                              QPlainTextEdit* editor);
    // Attaches to a document and highlights every change at once (until a
    // scheduler is attached).
    QcbsSyntaxHighlighter_CIF(THandle<CifDictionary> dictionary, THandle<QcbsFontStyleSettings> styles,
                              QTextDocument* document);
    ~QcbsSyntaxHighlighter_CIF() override;

    // Rebuilds the format of every style from the style settings. The owner
    // re-highlights afterwards.
    void updateStyles();

    // Styles one line that follows a line which ended in endStateOfLastPara
    // (-1 or -2: none) and returns the state it ends in.
    int highlightParagraph(const QString& text, int endStateOfLastPara);

    // Gives buffer entries from start the style.
    void setStyle(int start, int count, SyntaxStyle style) { classifier_.setStyle(start, count, style); }
    // Formats the line run by run.
    void applyLineStyles();
    void applyStyle(unsigned start, unsigned count, SyntaxStyle style);

    // The font and colour of a style, straight from the style settings.
    std::pair<QFont, QColor> format(SyntaxStyle style) const;
    static bool isKeyword(const QString& word) { return QcbsCifLineClassifier::isKeyword(word); }

    // Data names are looked up in this dictionary from now on (null: every
    // data name is custom). Re-highlighting is up to the owner.
    void setDictionary(THandle<CifDictionary> dictionary);
    const THandle<CifDictionary>& dictionary() const { return dictionary_; }

    // Highlights every block again: in slices when a scheduler is attached,
    // otherwise at once.
    void rehighlightInSlices();

    // The scheduler that decides which blocks are highlighted now (null:
    // all). Set by the scheduler itself; not owned.
    void setScheduler(QcbsHighlightScheduler* scheduler) { scheduler_ = scheduler; }
    QcbsHighlightScheduler* scheduler() const { return scheduler_; }

protected:
    void highlightBlock(const QString& text) override;

private:
    void keepCurrentFormats();

    THandle<CifDictionary> dictionary_;
    THandle<QcbsFontStyleSettings> styles_;
    std::map<SyntaxStyle, QTextCharFormat> styleCache_;
    QcbsCifLineClassifier classifier_;  // holds the per-character style buffer
    QcbsHighlightScheduler* scheduler_ = nullptr;
};
