// SPDX-License-Identifier: GPL-3.0-or-later
// One editor window holding one document, with its views, menus and status bar.
#pragma once

#include <QMainWindow>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <optional>

#include "application/QcbsMainWindowSharedData.hpp"
#include "base/QcbsOptions.hpp"
#include "cif/Cif.hpp"
#include "cif/CifDocumentCheck.hpp"
#include "document/QcbsFileIdentity.hpp"
#include "support/THandle.hpp"
#include "validation/QcbsOutputPane.hpp"

class QComboBox;
class QDragEnterEvent;
class QDragMoveEvent;
class QDropEvent;
class QLabel;
class QSplitter;
class QTabWidget;
class RecentFilesMenu;
class QcbsAboutBox;
class QcbsCifDocument;
class QcbsCifBoxPane;
class QcbsCifBoxView;
class QcbsCifBoxViewDialog;
class QcbsEditDataDialogue;
class QcbsErrorListView;
class QcbsHelpWindow;
class QcbsLineNumberedTextEdit;
class QcbsLoopTableEditorImpl;
class QcbsMainWindowActions;
class QcbsPreferencesDialog;
class QcbsRichTextEdit;
class QcbsVisSorter;
class QcbsWizard;

// One editor window holding one document: the editor with the tree of its
// blocks beside it, the visualiser page, the error list and the output pane,
// the menus and tool bars and the status bar. The document itself (text,
// file, encoding, last check, the edits views ask for) is the window's
// QcbsCifDocument. All windows share one QcbsMainWindowSharedData and with
// it the program's options, read from the settings by loadSettings() and
// written back by saveSettings().
class QcbsMainWindow : public QMainWindow {
    Q_OBJECT
public:
    // Whether a new window starts with a new untitled document or empty.
    enum WindowStartupSetting { StartEmpty, StartWithNewFile };

    explicit QcbsMainWindow(THandle<QcbsMainWindowSharedData> sharedData,
                            WindowStartupSetting startup = StartEmpty, QWidget* parent = nullptr);
    ~QcbsMainWindow() override;

    const THandle<QcbsMainWindowSharedData>& sharedData() const { return sharedData_; }

    // The widgets of the window.
    QcbsRichTextEdit* currentEditor() const;
    QcbsLineNumberedTextEdit* editorPane() const { return editorPane_; }
    QTabWidget* tabs() const { return tabs_; }
    QSplitter* editorPage() const { return editorPage_; }
    QcbsVisSorter* visualiserPage() const { return visSorter_; }
    QcbsCifBoxView* boxView() const { return boxView_; }
    // The tree with its filter box and listing choice, beside the editor.
    QcbsCifBoxPane* boxPane() const { return boxPane_; }
    // The tree in a window of its own, while it is open; null otherwise.
    QcbsCifBoxViewDialog* treeDialog() const;
    // The edit data dialogue open in its help form, and in its editing form.
    QcbsEditDataDialogue* helpDialogue() const;
    QcbsEditDataDialogue* setDataDialogue() const;
    // The loop table editor dialog while it is open; null otherwise.
    QcbsLoopTableEditorImpl* loopEditor() const;
    // The wizard open on this window's document, or null.
    QcbsWizard* openWizard() const;
    QcbsErrorListView* errorList() const { return errorList_; }
    QComboBox* blocksCombo() const;
    QcbsMainWindowActions* windowActions() const { return actions_; }
    // The right-hand part of the status bar: "Line N, Column M".
    QLabel* statusLine() const { return statusLine_; }

    // The window's document; it exists as long as the window.
    QcbsCifDocument* document() const { return document_; }
    // The file shown; empty when the window holds no document.
    QString fileName() const;
    // The result of the last check of the document, or null.
    THandle<Cif> currentCif() const;
    // The block the cursor stands in (the first block when the cursor is
    // above every block) of the last check, or null.
    THandle<CifDataBlock> currentBlock() const;
    // The program's options (shared by every window).
    const QcbsOptions& options() const { return sharedData_->optionValues(); }

    // --- Parsing and error processing (QcbsMainWindowParsing.cpp) ---
    // The pool of enabled dictionaries that every check uses. The dictionary
    // files are read on the first call that finds any; until then each call
    // searches again, and the output pane says once where and how to add one.
    THandle<CifDictionary> dictionary();
    // Checks the current editor's text: a new Cif on dictionary(), read with
    // the shared parser settings, the mandatory and consistency checks, the
    // error list and output pane filled, the block chooser and the tree
    // refilled. A null handle when the editor has never been given a file.
    THandle<Cif> parse();
    // The same for a file on disk (a document being loaded): the messages
    // reach the error list only when `showErrors`; the tools stay as they
    // are. A file that cannot be opened gives an empty document.
    THandle<Cif> parse(std::string filename, bool showErrors);
    // The consistency checker's findings join the document's messages (only
    // with the option "consistency checks").
    void consistency_check(THandle<Cif> cif);
    // The document's messages into the error list, with the limits on runs
    // of consecutive warnings and errors, and the totals into the output pane.
    virtual void processErrors(THandle<Cif> cif);
    // The block chooser: a header counting the blocks, then one item per
    // block; the placeholder block is neither counted nor named.
    void fillBlocksCombo(THandle<Cif> cif);
    // The block the publication wizard adds to a document without blocks.
    static QString placeholderBlockName() { return "data_added_by_tessary"; }

    // The main windows shown at present.
    static int instances();
    // The main window that was active last; null once it closed.
    static QcbsMainWindow* lastActiveWindow() { return lastActive_; }

    // Reads the text styles, then the window's settings keys in their fixed
    // order; a missing key gives its default.
    void loadSettings();
    // Saves the dictionary settings, the text styles, this window's size (as
    // the size of new windows), the recent files and the window's settings keys.
    void saveSettings();
    // Applies the program's options to this window.
    void initialiseSettings();
    // Applies initialiseSettings() to every main window of the program.
    static void initialiseAllInstSettings();
    // Gives the current editor the line-number option and the text styles.
    void initialiseEditorSettings();
    // Reads the mandatory data names of publication and crystal blocks from
    // mandatory_items_file into the shared lists (empty unless
    // check_mandatory_items is on).
    void loadMandatoryDataItemSettings();

    // The pane writeToOutputPane() writes to. Until the window has one, the
    // writes are kept, one entry per call (with "<br>" when a line break was
    // asked for), and the pane set later receives them first.
    void setOutputPane(QcbsOutputPane* pane);
    QcbsOutputPane* outputPane() const { return outputPane_; }
    const QStringList& pendingOutputPaneWrites() const { return pendingOutputPaneWrites_; }

    // The one recent-files list of the program.
    static RecentFilesMenu* recentFiles;

public slots:
    // Document operations.
    void fileNew();
    // Starts a new document; with `replace` in this window, closing the
    // current one first, otherwise in a new window when one is open.
    virtual void fileNew(bool replace);
    // Saves the settings and opens another window with a new document.
    void newWindow();
    void fileOpen();
    // Opens a file in this window or a new one; `interactive` allows questions.
    virtual void fileOpen(const QString& filename, bool interactive);
    void fileSave();
    void fileSaveAs();
    void filePrint();
    // Closes the document; false when the user cancelled.
    virtual bool fileClose();
    // The "Close File" action: closes this window while others are open; the
    // last window instead starts a new document (nothing happens when its
    // editor is empty and unmodified), so it never closes itself.
    void fileCloseRequested();
    // Closes every window, each asking about its own document.
    void fileExit();
    void fileLoadRecent(int index);
    // Opens the files dropped on the editor.
    virtual void processDropEvent(QDropEvent* event);

    // Editing the current editor's text.
    void editUndo();
    void editRedo();
    void editCopy();
    void editCut();
    void editPaste();
    void editComment();
    void editUncomment();
    void editInsert();
    void editInsertTemplate();
    void editSelectall();
    void combine();
    // The preferences dialog (one per window, shown again when open).
    void editPrefs();
    // The fonts and colours of the editor's text (one dialog per window).
    void editFonts();

    // Search.
    void editFind();
    void editFindPrevious();
    void editFindNext();
    void editReplace();
    void editGotoLine();

    // CIF tools.
    void reparse();
    // Dictionary help (the edit data dialogue in its help form) for the data
    // name at the editor's cursor, or for the tree's current row when the
    // tree has the focus.
    void dataitemHelp();
    // Dictionary help for a data name or a category ("_atom_site_[]").
    void dataitemHelp(const QString& dataName);
    // Shows or hides the tree beside the editor.
    void toggleBoxView();
    // The tree of this window's document in a window of its own.
    void showTreeDialog();
    void publicationWizard();
    void crystalWizard();
    // The loop table editor dialog on the loop of the looped item chosen in
    // the tree (when the tree has the focus) or of the editor's cursor.
    void loopEd();
    // The dialog on an empty loop, added to the block at the cursor on OK.
    void loopNew();
    // The dialog on the loop holding the data name in the named block.
    void loopEditHelper(const QString& dataName, const QString& blockName);
    // Puts a loop's new text into the document as one undo step, then checks.
    void loopUpdate(const QString& blockName, const QString& loopMaster, const QString& loopText);
    void loopAdd(const QString& blockName, const QString& loopText);
    void blockComboSelected(int index);
    void hg();
    void enableVisualiser(QWidget* page);

    // Help.
    void specialCharPopUp();
    void about();
    // The user guide (tessary.html of the documentation directory) in the
    // help window, or the list of places searched when there is none.
    void help();
    // A help page given relative to the help directories (the error list's
    // pages) or as an absolute path.
    void helpFile(const QString& page);
    // The program's home page in the user's web browser.
    void tessaryHomePage();

    // Requests routed to the window by its editor, views and wizards.
    void editorCursorMoved(int paragraph, int index);
    void editorLineChanged(int paragraph);
    void editorTextChanged();
    void statusBarMessage(QString message);
    // Puts back what the status bar shows for a page of the tab pair.
    void restoreStatusBarMessage(QWidget* page);
    // Appends rich text to the output pane, followed by "<br>" when
    // `lineBreak` is true.
    void writeToOutputPane(const QString& text, bool lineBreak);
    void editorInsertTextHelper(const QString& text);
    // Goes to a data name, to the first item of a category ("_atom_site_[]")
    // or to a block's heading, searching from the block's 1-based line.
    void editorJumpToItemHelper(const QString& dataName, int line);
    void editorJumpToBlockHelper(const QString& blockName);
    // Asks for a new value of the data item in the block (the edit data
    // dialogue in its editing form); the answer reaches dataItemUpdate().
    void setDataItem(const QString& dataName, const QString& blockName);
    // Puts the item's text into the block as one undo step, then checks.
    void dataItemUpdate(const QString& dataName, const QString& blockName, const QString& itemText);
    void blockUpdate(const QString& blockText);
    void blockAdd(const QString& blockText);

    // Tool states. Each enable...Tools switches one group of actions.
    void enableTools(QWidget* page);
    void enableEditorTools(bool on);
    void enableFileTools(bool on);
    void enableParseTools(bool on);
    // The CIF tools; the crystal wizard only when the current block holds
    // an item of the categories chemical, atom_site or cell.
    void enableCifTools(bool on);
    void enableFindTools(bool on);
    void enableVisTools(bool on);
    // enableParseTools on every main window.
    static void enableAllInstParseTools(bool on);
    // Undo and redo follow the editor's history while the editor tools are on.
    void enableUndoRedo();

    // The caption: the file's name and the program's name joined by " - ";
    // "new.cif" stands for an editor without a file. A "*" follows the name
    // while the document has unsaved changes.
    void setCaption(const QString& fileName);
    // "Line N, Column M", with " (File Modified)" for a modified text (not
    // for one still being read from its file); marks the caption alike.
    void statusLineNumber();

signals:
    void requestGotoLine(int line, QString blockName);

    // --- Document operations (QcbsMainWindowDocument.cpp) ---
public:
    // Whether opening a file replaces this window's document (the option
    // "reuse window") rather than opening another window.
    bool reuseWindow() const { return options().reuse_window; }
    // Gives the editor a new untitled name ("x:/dummy/untitled" + number +
    // ".cif", a path that cannot exist, so that Save turns into Save As).
    void fileNewUntitled();
    // Reads a file into this window's editor and, with `check`, checks it
    // once the whole text is in (documentLoaded() follows); without `check`
    // (a template) the text is only read. `interactive` allows the question
    // about a file that does not look like a CIF. The editor's text is
    // replaced without a question: callers close the document first. False
    // when the file was already open or could not be read.
    bool load(const QString& filename, bool interactive, bool check);
    // The same in a new main window; a file already open is refused.
    bool loadInNewWindow(const QString& filename, bool interactive, bool check);
    // Whether some main window holds the file (the same file on disk,
    // however it is named).
    static bool fileAlreadyOpen(const QString& filename);
    // Whether the window holds no document worth keeping: none at all, or
    // an untitled one that is empty and unmodified.
    bool isBlank() const;
    static bool isUntitled(const QString& filename);

signals:
    // A loaded file is wholly in the editor (and checked, when asked).
    void documentLoaded(const QString& filename);

private:
    // Whether the file, of which this is the start, is to be read: yes when
    // it looks like a CIF, else the user is asked ("Continue" or "Cancel").
    bool acceptAsCif(const QString& filename, const QByteArray& start);
    bool saveDocument();
    bool saveDocumentAs();
    bool writeDocument(const QString& filename);
    void finishLoad(int serial, const QString& filename, bool check);
    void clearDocument();
    void resetBlocksCombo();
    void openDroppedFiles(const QStringList& files);
    QString askSaveFileName(const QString& proposed);
    // Asks what to do about the file when another program changed, deleted
    // or moved it: at once when the window is active, else once it is (and
    // not again for the same state of the file).
    void checkDiskFile();
    // The user's choice about a file changed or gone (`state`), at a save
    // (`saving`) or not; true when the document was saved.
    bool answerDiskChange(QcbsFileIdentity::State state, bool saving);
    // Reads the file again, after a confirmation when that loses edits.
    bool reloadDocument();

    // Counts the loads begun, so that a load overtaken by another (or by a
    // close) is not finished.
    int loadSerial_ = 0;
    // The file and its state the user was last asked about, and whether
    // the question is up.
    QString toldName_;
    std::optional<QcbsFileIdentity::Stamp> toldStamp_;
    bool askingAboutDisk_ = false;

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    // Drags and drops on the editor come to the window.
    bool eventFilter(QObject* watched, QEvent* event) override;
    void contentsDragEnterEvent(QDragEnterEvent* event);
    void contentsDragMoveEvent(QDragMoveEvent* event);
    void contentsDropEvent(QDropEvent* event);

private:
    void makeRecentFilesList();
    void connectSharedData();
    void makeFileActions();
    void makeEditActions();
    void makeSearchActions();
    void makeCifActions();
    void makeHelpActions();
    void makeVisActions();
    void makeMainWidgets();
    void makeConnections();
    void makeEditorPage();
    void initBoxEdSplitterSizes();
    void makeBoxViewConnections();
    void makeTabs();
    void makeVisConnections();
    // The editor's line of an atom picked in the 3-D view.
    void showLineOfStructure(int line);
    // A separate 3-D window follows the block at the editor's cursor.
    void followCursorInStructure();
    void makeEditorConnections();
    void makeDocument();
    // Applies changed options to this window.
    void applyOptions(const QcbsOptions& previous);
    // Gives the editor the options of its own (folding, completion, ...).
    void applyEditorOptions();
    void updateCrystalWizard();
    void updateCaption();
    void writeHtmlToOutputPane(const QString& html);

    THandle<QcbsMainWindowSharedData> sharedData_;
    QcbsMainWindowActions* actions_ = nullptr;
    QTabWidget* tabs_ = nullptr;
    QSplitter* editorPage_ = nullptr;
    QcbsCifBoxView* boxView_ = nullptr;
    QcbsLineNumberedTextEdit* editorPane_ = nullptr;
    QcbsVisSorter* visSorter_ = nullptr;
    QcbsErrorListView* errorList_ = nullptr;
    QLabel* statusLine_ = nullptr;
    QPointer<QcbsOutputPane> outputPane_;
    QStringList pendingOutputPaneWrites_;
    QPointer<QcbsHelpWindow> helpWindow_;
    QPointer<QcbsAboutBox> aboutBox_;
    QPointer<QcbsPreferencesDialog> preferences_;

    QcbsCifDocument* document_ = nullptr;
    bool editorToolsOn_ = false;
    bool cifToolsOn_ = false;

    static QPointer<QcbsMainWindow> lastActive_;

    // --- Parsing and error processing (QcbsMainWindowParsing.cpp) ---
    // The check every document of this window gets: the enabled
    // dictionaries, the line-length limit, the mandatory items, the
    // consistency option.
    CifDocumentCheck documentCheck();
    // The window's lists and views follow a new check of the document.
    void finishCheck(THandle<Cif> cif, bool showErrors);
    void noteLinesAtCheck();
    void writeMissingDictionaryNote();
    // Hands the new document to the tree of blocks beside the editor (and
    // to the tree's own window when it is open).
    void loadBoxView();

    // --- The tree's routing (QcbsMainWindowTree.cpp) ---
    void connectTree(QcbsCifBoxView* tree);
    // The item whose data name stands on the 1-based line or last before it in
    // the block (for a loop's value line, the loop's last column), as the last
    // check saw the text; null before the block's first item.
    static THandle<CifDataItem> itemAtLine(const CifDataBlock& block, int line);
    // The tree selects the item the editor's cursor stands in.
    void followCursorInTree(int paragraph);
    // The text a single block's row shows instead of its name, if any.
    QString singleBlockSubstitute(const THandle<Cif>& cif) const;
    // The dictionary the dialogues consult: that of the last check, or the enabled one.
    THandle<CifDictionary> viewDictionary();

    QcbsCifBoxPane* boxPane_ = nullptr;
    QPointer<QcbsCifBoxViewDialog> treeDialog_;
    QPointer<QcbsEditDataDialogue> helpDialogue_;
    QPointer<QcbsEditDataDialogue> setDataDialogue_;

    bool missingDictionaryNoted_ = false;

    // --- Loops (QcbsMainWindowLoops.cpp) ---
    // A new loop table editor dialog (closing the one open) wired to the document.
    QcbsLoopTableEditorImpl* makeLoopEditor();
    // The editor gives up its own binding of the window's keys (Ctrl+L cuts
    // a line there, Ctrl+Plus zooms only itself), so that they reach the
    // window's actions.
    void claimWindowKeys();
    QPointer<QcbsLoopTableEditorImpl> loopEditor_;
    // --- The wizards' launching (QcbsMainWindowWizards.cpp) ---
    // The index of the block at the editor's cursor in a fresh check of the
    // text (the first block when the cursor is above every block), or -1.
    int blockIndexAtCursor(const THandle<Cif>& cif) const;
    // The crystal wizard on the block at the cursor of a checked document.
    void openCrystalWizard(const THandle<Cif>& cif);
    // The publication wizard on the block at the cursor, or on a new block
    // before the first block when the cursor is in none; without a check
    // of the text (null `cif`) on a new block of a document of its own.
    void openPublicationWizard(const THandle<Cif>& cif);
    // Calls `open` with a check of the text as it stands (the last one when
    // it is current); a check on the worker calls it when it ends. A text
    // that cannot be checked gives a null handle. False when the text is
    // still being read or a wizard is open already.
    bool withCurrentCheck(const QString& waiting, void (QcbsMainWindow::*open)(const THandle<Cif>&));
    QPointer<QcbsWizard> wizard_;
};
