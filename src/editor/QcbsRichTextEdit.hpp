// SPDX-License-Identifier: GPL-3.0-or-later
// The CIF text editor: a file's bytes in Scintilla, CIF line queries, commenting, error marks.
#pragma once

#include <Qsci/qsciscintilla.h>

#include <QByteArray>
#include <QDropEvent>
#include <QPoint>
#include <QString>
#include <string_view>

#include "cif/CifDictionary.hpp"
#include "editor/QcbsFontStyleSettings.hpp"
#include "support/THandle.hpp"

class QcbsSlicedTextLoader;
class QcbsSyntaxHighlighter_CIF;
class QMenu;
class QMimeData;
class QTimer;

// The CIF text editor. It holds a file's bytes as they are: a UTF-8 file in
// Scintilla's UTF-8 mode, any other as 8-bit bytes shown as Latin-1; every
// line end stays as it was (LF, CRLF, CR, mixed), and a new line typed takes
// the end most lines of the file have. A paragraph is a line (counted from
// 0), an index a character within it.
//
// Besides editing it answers CIF questions about the cursor's line, comments
// and uncomments lines, inserts files, marks the lines an error names
// (selections 1 and 2: the line's background and a mark in the margin),
// converts special characters on copy and paste, folds loops, save frames
// and text fields, completes data names from the dictionary, shows which
// quote, bracket or text-field delimiter matches the one at the cursor, and
// reports what happens through signals the main window connects.
//
// Scintilla tells of a change only before it happens (the other
// notifications cost a count from the start of the text on every keystroke);
// the editor follows up once the change is made: at once after a key, a
// command or any of its own operations, and otherwise on the next turn of
// the event loop. Then textHasChanged() runs and textChanged() is emitted.
class QcbsRichTextEdit : public QsciScintilla {
    Q_OBJECT
public:
    // A plain editor: no highlighter, no margins, the short context menu,
    // lines wrapped at the window's width.
    explicit QcbsRichTextEdit(QWidget* parent = nullptr, const char* name = nullptr);
    // The CIF editor: initialise(dictionary, styles).
    QcbsRichTextEdit(THandle<CifDictionary> dictionary, THandle<QcbsFontStyleSettings> styles,
                     QWidget* parent = nullptr, const char* name = nullptr);
    ~QcbsRichTextEdit() override;

    // Font, colours, no wrapping, the highlighter, the margins for error
    // marks and folding, the full context menu. Meant to run once, on an
    // empty editor; a repeat with the same styles only changes the dictionary.
    void initialise(THandle<CifDictionary> dictionary, THandle<QcbsFontStyleSettings> styles);

    // --- The bytes ---

    // Replaces the whole text by bytes (a document being opened) a slice at
    // a time from the event loop, so that the window keeps answering; the
    // first screen appears at once. Until textLoaded() the user cannot edit
    // and the owner must leave the text alone; then the text counts as
    // unmodified and has no undo history. A UTF-8 byte-order mark is left
    // out of the text (loadedWithByteOrderMark() tells).
    void loadBytes(const QByteArray& bytes);
    // The same straight from a file, which is never held in memory whole;
    // false when it cannot be read.
    bool loadFile(const QString& fileName);
    // The text as UTF-8 bytes, loaded in slices.
    void loadText(const QString& text) { loadBytes(text.toUtf8()); }
    bool isLoading() const;
    // What the last load found: a byte-order mark, how many lines end in
    // LF, CRLF and CR, whether the last line has an end.
    bool loadedWithByteOrderMark() const;
    QString dominantLineEnd() const;

    // The text's bytes, without copying: valid until the next change.
    std::string_view byteView() const;
    QByteArray bytes() const;
    int byteLength() const;
    // The bytes of a stretch, without copying (valid until the next change).
    std::string_view byteView(int from, int length) const;
    // Whether the bytes are UTF-8 (otherwise 8-bit, shown as Latin-1).
    bool isUtf8Text() const { return isUtf8(); }
    // Text in the bytes' encoding; a text that Latin-1 cannot hold turns an
    // 8-bit document into UTF-8 first (see widenToUtf8()).
    QByteArray encodeText(const QString& text);
    // Turns an 8-bit (Latin-1) text into UTF-8: every byte above 127
    // becomes two. The undo history is lost. False when already UTF-8.
    bool widenToUtf8();
    // Replaces the bytes [from, to) as one undo step.
    void replaceBytes(int from, int to, std::string_view bytes);
    // The line end new lines get ("\n", "\r\n" or "\r").
    QString lineEnd() const;

    // --- Paragraphs (lines) and indexes (characters), from 0 ---

    int paragraphs() const { return lines(); }
    QString text(int para) const;
    QString text() const { return QsciScintilla::text(); }
    int paragraphLength(int para) const;
    void getCursorPosition(int* para, int* index) const;
    void setCursorPosition(int para, int index) override;
    // The ordinary selection; all four are -1 without one.
    void getSelection(int* paraFrom, int* indexFrom, int* paraTo, int* indexTo) const;
    void setSelection(int paraFrom, int indexFrom, int paraTo, int indexTo) override;
    int positionOf(int para, int index) const;
    void paragraphIndexOf(int position, int* para, int* index) const;
    int cursorBytePosition() const { return static_cast<int>(SendScintilla(SCI_GETCURRENTPOS)); }
    // Moves the cursor to a byte position and puts its line in the middle of the view.
    void placeCursor(int position);
    // Scroll position: x in pixels, y as the first line in view.
    int contentsX() const;
    int contentsY() const;
    void setContentsPos(int x, int y);
    int firstVisibleParagraph() const { return contentsY(); }
    bool isModified() const;
    void setModified(bool modified) override;

    // Plain-text conveniences: the whole text replaced (no undo history,
    // unmodified), the whole text, text put in at the cursor as typing would.
    void setPlainText(const QString& text);
    QString toPlainText() const { return text(); }
    void insertPlainText(const QString& text);

    // Whether error selection 1 or 2 marks a line.
    bool errorMatcherEnabled() const;
    // The paragraph marked by error selection 1 or 2, or -1.
    int errorSelectionParagraph(int selection) const;
    // False from the first edit after a check until reopenErrorHighlighting().
    bool errorHighlightingAllowed() const { return errorGate_ == 0; }
    // Counts the changes of the text (each insertion or deletion).
    quint64 editSerial() const { return editSerial_; }

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

    // --- What the editor offers beyond plain editing ---

    // Folding of loops, save frames and text fields, with its margin.
    void setFoldingEnabled(bool on);
    bool foldingEnabled() const { return folding_; }
    // Typing "_" where a data name may start lists the dictionary's names.
    void setDataNameCompletion(bool on) { completion_ = on; }
    bool dataNameCompletion() const { return completion_; }
    // The partner of a quote, bracket or text-field ";" at the cursor is shown.
    void setMatchingDelimiters(bool on);
    bool matchingDelimiters() const { return matching_; }
    // Rectangular selections: typing and pasting reach every line of one.
    void setRectangularSelection(bool on);
    bool rectangularSelection() const { return rectangular_; }
    // Blanks, tabs and line ends shown.
    void setWhiteSpaceVisible(bool on);
    bool whiteSpaceVisible() const { return whiteSpace_; }
    // The positions of the two delimiters shown as a matching pair, or -1.
    std::pair<int, int> matchedDelimiters() const { return matched_; }

    // The margins: line numbers (0), error marks (1), fold marks (2).
    static constexpr int LineNumberMargin = 0;
    static constexpr int ErrorMargin = 1;
    static constexpr int FoldMargin = 2;
    // Markers: the background of error lines 1 and 2, their margin marks.
    static constexpr int ErrorLineMarker = 1;  // + selection - 1
    static constexpr int ErrorMarkMarker = 3;  // + selection - 1

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
    // What follows every change of the text: error marks cleared, the
    // highlighting gate closed, numberOfLinesChanged() and textChanged().
    void textHasChanged();
    void commentSelection();
    void uncommentSelection();
    void cursorPositionHasChanged(int para, int index);
    void selectionHasChanged();
    void prepareDataitemHelp();
    // Re-reads the font and the highlighter's styles, keeping the view.
    void styleUpdate();
    // Copies the selection with U+00C5 as "A", U+00B0 as "%" and every line end as "\n".
    void copy() override;
    void cut() override;
    // Converts the clipboard's text to CIF codes (and leaves it so), then pastes.
    void paste() override;
    void undo() override;
    void redo() override;
    // Colours every line again, the lines in view first; the text, its undo
    // history and the modified flag stay as they are.
    void refreshText();
    // Data names are looked up in this dictionary from now on.
    void setDictionary(THandle<CifDictionary> dictionary);

signals:
    void cursorLineChanged(int newlinenum);
    void numberOfLinesChanged(int);
    void statusBarMessageRequest(QString);
    void requestDataitemHelp(const QString&);
    void dropEventRequest(QDropEvent*);
    void clearErrorMarker();
    void intervalChanged();
    // loadBytes() or loadFile() has put the whole text in.
    void textLoaded();
    // The undo or redo history became available or empty.
    void undoAvailable(bool);
    void redoAvailable(bool);
    // An 8-bit text became UTF-8 to hold a character Latin-1 cannot.
    void encodingWidened();
    // The user zoomed (Ctrl+wheel, zoom keys) by this many steps; the owner
    // makes it the shared base font.
    void zoomRequested(int steps);
    // Before each change of the text: the byte position and the number of
    // bytes inserted (positive) or deleted (negative).
    void textAboutToChange(int position, int delta);

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    QMimeData* toMimeData(const QByteArray& text, bool rectangular) const override;
    QByteArray fromMimeData(const QMimeData* source, bool& rectangular) const override;

private slots:
    void modified(int position, int type, const char* text, int length, int added, int line, int foldNow,
                  int foldPrevious, int token, int annotationLines);
    void updateUi(int updated);
    void finishLoad();
    void charAdded(int character);
    void completionSelectionChanged(const char* selection, int id, int position);

private:
    void setUpEngine();
    template <class Op>
    void processSelection(const Op& op);
    // Runs textHasChanged() when a change is still to be followed up.
    void flushChange();
    // Emits cursorPositionChanged()/cursorLineChanged() when the cursor moved.
    void followCursor();
    void updateHistorySignals();
    QString copyText() const;
    // Counts the characters of the bytes [from, to).
    int characterCount(int from, int to) const;
    QString lineText(int para) const;
    void markErrorLine(int selection);
    void showMatchingDelimiters();
    std::pair<int, int> findMatchingDelimiter(int position) const;
    void showCompletion();
    const QByteArray& completionList();
    bool ensureEncodable(const QString& text);
    // Moves Scintilla's buffer gap a step towards the cursor's line.
    void moveGapTowardsCursor();

    THandle<QcbsFontStyleSettings> styles_;
    QcbsSyntaxHighlighter_CIF* highlighter_ = nullptr;
    QcbsSlicedTextLoader* loader_ = nullptr;  // made on the first load
    // Entries 1 and 2: the paragraphs marked by error selections 1 and 2.
    int errorSelection_[3] = {-1, -1, -1};
    // 0 while the text is unchanged since the last check, 1 after an edit,
    // -1 once a highlighting request has been refused.
    int errorGate_ = 0;
    int lastCursorParagraph_ = 0;
    int lastCursorPosition_ = -1;
    bool fullContextMenu_ = false;
    quint64 editSerial_ = 0;
    bool changePending_ = false;
    bool followUpQueued_ = false;
    bool forcedModified_ = false;
    bool undoWasAvailable_ = false;
    bool redoWasAvailable_ = false;
    bool folding_ = false;
    bool completion_ = true;
    bool matching_ = true;
    bool rectangular_ = true;
    bool whiteSpace_ = false;
    std::pair<int, int> matched_{-1, -1};
    // Scintilla keeps text and styles in buffers with a gap where the last
    // change was; the first keystroke far from it moves the bytes between,
    // twice (a tenth of a second at the top of a 300 MB file just read,
    // whose gap is at its end). The gap is walked towards the cursor's line
    // from the event loop, a few megabytes a turn, by a blank put in and
    // taken out again (no undo step, no change to anyone).
    QTimer* gapWalk_ = nullptr;
    bool movingGap_ = false;
    // The dictionary's data names for completion, made on first use.
    QByteArray completionList_;
    const CifDictionary* completionSource_ = nullptr;
};
