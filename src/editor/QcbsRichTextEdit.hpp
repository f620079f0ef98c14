// SPDX-License-Identifier: GPL-3.0-or-later
// The CIF text editor: CIF questions about lines, commenting, error marks, copy and paste.
#pragma once

#include <QPlainTextEdit>
#include <QPoint>
#include <QString>
#include <QTextBlock>

#include "cif/CifDictionary.hpp"
#include "editor/QcbsFontStyleSettings.hpp"
#include "support/THandle.hpp"

class QcbsSlicedTextLoader;
class QcbsSyntaxHighlighter_CIF;
class QMenu;
class QMimeData;

// The CIF text editor: one paragraph (QTextBlock) per text line, never
// wrapped. Besides editing it answers CIF questions about the cursor's line,
// comments and uncomments lines, inserts files, marks the lines an error
// names (selections 1 and 2), converts special characters on copy and paste
// and reports what happens through signals the main window connects.
class QcbsRichTextEdit : public QPlainTextEdit {
    Q_OBJECT
public:
    // A plain editor: no highlighter, the short context menu, Qt's wrapping.
    explicit QcbsRichTextEdit(QWidget* parent = nullptr, const char* name = nullptr);
    // The CIF editor: initialise(dictionary, styles).
    QcbsRichTextEdit(THandle<CifDictionary> dictionary, THandle<QcbsFontStyleSettings> styles,
                     QWidget* parent = nullptr, const char* name = nullptr);
    ~QcbsRichTextEdit() override;

    // Font, colours, no wrapping, the highlighter (which colours the text in
    // slices of the event loop), the full context menu. Meant to run once,
    // on an empty editor; a repeat with the same styles only changes the
    // dictionary.
    void initialise(THandle<CifDictionary> dictionary, THandle<QcbsFontStyleSettings> styles);

    // Replaces the whole text (a document being opened). A big text goes in
    // a slice at a time from the event loop, so that the window keeps
    // answering; the first screen appears at once, and numberOfLinesChanged()
    // reports the count the text will reach. Until textLoaded() the
    // editor is read-only and the owner must leave the text alone; then the
    // text counts as unmodified and has no undo history. Use this, not
    // setPlainText(), for anything that may be large.
    void loadText(const QString& text);
    bool isLoading() const;
    // Data names are looked up in this dictionary from now on; the text is
    // highlighted again, in slices.
    void setDictionary(THandle<CifDictionary> dictionary);

    // Paragraph (line) access; paragraphs and indexes count from 0.
    int paragraphs() const { return blockCount(); }
    int lines() const { return blockCount(); }
    QString text(int para) const;
    int paragraphLength(int para) const;
    void getCursorPosition(int* para, int* index) const;
    void setCursorPosition(int para, int index);
    bool hasSelectedText() const { return textCursor().hasSelection(); }
    // The ordinary selection; all four are -1 without one.
    void getSelection(int* paraFrom, int* indexFrom, int* paraTo, int* indexTo) const;
    void setSelection(int paraFrom, int indexFrom, int paraTo, int indexTo);
    // Scroll position: x in pixels, y as the first line in view.
    int contentsX() const;
    int contentsY() const;
    void setContentsPos(int x, int y);
    bool isModified() const { return document()->isModified(); }
    void setModified(bool modified) { document()->setModified(modified); }

    // Whether error selection 1 or 2 marks a line.
    bool errorMatcherEnabled() const;
    // The paragraph marked by error selection 1 or 2, or -1.
    int errorSelectionParagraph(int selection) const;
    // False from the first edit after a check until reopenErrorHighlighting().
    bool errorHighlightingAllowed() const { return errorGate_ == 0; }

    // The data name a line starts with ("_cell_length_a"), for the given
    // paragraph or the cursor's when negative. With searchUpwards, a line
    // without a name sends the search up the lines above: the lines of a
    // semicolon text block are passed over, and the search stops without a
    // name at a block header (data_) or frame header (save_). On a loop's
    // value line this finds the loop's last data name; in a text field, the
    // name the field belongs to.
    QString currentDataItem(bool searchUpwards, int para = -1) const;
    bool isLoopLine() const;
    bool isCommentLine() const;
    bool isBlankLine() const;
    // Whether the cursor's line lies in a semicolon text block, counting the
    // lines from the first that start with ";" after white space.
    bool isMultiLineStringLine() const;

    // Lines never wrap; a horizontal scroll bar appears instead.
    void setWrapPolicyAndScrollBar();

    // The context menu "rightclick" (the caller owns it).
    QMenu* createPopupMenu();

    // For the line-number margin: the first paragraph in view and where a
    // paragraph lies in viewport coordinates.
    QTextBlock firstVisibleParagraph() const { return firstVisibleBlock(); }
    QRectF paragraphRect(const QTextBlock& block) const;

    const THandle<QcbsFontStyleSettings>& styles() const { return styles_; }
    QcbsSyntaxHighlighter_CIF* highlighter() const { return highlighter_; }

    // The template file that insertTemplateFile() inserts, set from the
    // preferences; shared by all editors.
    static QString template_;

public slots:
    // Marks the one-based line (its paragraph line-1, 0 for lines below 1,
    // the last paragraph for lines beyond the end) with error selection 1 or
    // 2 and moves the cursor to its end. After an edit the request is refused
    // with a beep and a status message until reopenErrorHighlighting().
    // Without `clear` earlier error marks stay (the two-argument form clears).
    void setErrorHighlighting(int line, int selection);
    void setErrorHighlighting(int line, int selection, bool clear);
    void clearErrorHighlighting();
    // The owner calls this after each new check of the text: error
    // highlighting requests are honoured again until the next edit.
    void reopenErrorHighlighting();
    // Moves the cursor to the end of the one-based line, selecting the line
    // when `highlight`; beeps for a line outside 1..lines().
    void gotoLine(int line, QString blockName);
    void gotoLine(int line, QString blockName, bool highlight);
    void insertTemplateFile();
    void insertFile();
    // Inserts the file's lines at the cursor, special characters as CIF
    // codes, and reports "Inserted N lines.".
    void insertFile(const QString& name);
    void textHasChanged();
    void commentSelection();
    void uncommentSelection();
    void cursorPositionHasChanged(QTextCursor* cursor);
    void selectionHasChanged();
    void prepareDataitemHelp();
    // Re-reads the font and the highlighter's styles, keeping the view.
    void styleUpdate();
    // Copies the selection with U+00C5 as "A" and U+00B0 as "%".
    void copy();
    // Converts the clipboard's text to CIF codes (and leaves it so), then pastes.
    void paste();
    // Highlights every paragraph again, in slices of the event loop; the
    // text, its undo history and the modified flag stay as they are.
    void refreshText();

signals:
    void cursorLineChanged(int newlinenum);
    void numberOfLinesChanged(int);
    void statusBarMessageRequest(QString);
    void requestDataitemHelp(const QString&);
    void dropEventRequest(QDropEvent*);
    void clearErrorMarker();
    void intervalChanged();
    // loadText() has put the whole text in.
    void textLoaded();
    // The scroll position changed (contentsX(), contentsY()).
    void contentsMoving(int x, int y);

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    QMimeData* createMimeDataFromSelection() const override;

private:
    void connectOwnSignals();
    template <class Op>
    void processSelection(const Op& op);
    void applyErrorSelections();
    QString copyText() const;

    THandle<QcbsFontStyleSettings> styles_;
    QcbsSyntaxHighlighter_CIF* highlighter_ = nullptr;
    QcbsSlicedTextLoader* loader_ = nullptr;  // made on the first loadText()
    int loadingLines_ = 0;                    // the line count of the text loadText() puts in
    // Entries 1 and 2: the paragraphs marked by error selections 1 and 2.
    int errorSelection_[3] = {-1, -1, -1};
    // 0 while the text is unchanged since the last check, 1 after an edit,
    // -1 once a highlighting request has been refused.
    int errorGate_ = 0;
    int lastCursorParagraph_ = 0;
    bool fullContextMenu_ = false;
    QPoint reportedContentsPos_;  // last position sent with contentsMoving
};
