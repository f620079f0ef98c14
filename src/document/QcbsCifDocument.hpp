// SPDX-License-Identifier: GPL-3.0-or-later
// The one document of a main window and the edits views and wizards ask for.
#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>
#include <functional>
#include <optional>
#include <string>

#include "cif/Cif.hpp"
#include "cif/CifDocumentCheck.hpp"
#include "document/QcbsDocumentEncoding.hpp"
#include "document/QcbsDocumentSaver.hpp"
#include "support/THandle.hpp"

class CifTextLocator;
class QcbsRichTextEdit;
struct CifTextEdit;

// The one document of a main window: the text in the window's editor, the
// file it came from with its encoding and line ends, whether it changed, and
// the result of its last check. Views and wizards never touch the text:
// they ask the document for an edit, which it makes as one undo step,
// leaving every byte outside the edited span as it was, and then checks the
// document again (checked() tells the window).
class QcbsCifDocument : public QObject {
    Q_OBJECT
public:
    explicit QcbsCifDocument(QcbsRichTextEdit* editor, QObject* parent = nullptr);

    // --- The document ---

    // Whether the window holds a document: a file, or an untitled one.
    bool isOpen() const { return open_; }
    // The file shown; an untitled document has a name beginning with
    // untitledPrefix(), a path that cannot exist, so that Save asks for one.
    const QString& fileName() const { return fileName_; }
    void setFileName(const QString& name);
    bool isUntitled() const { return isUntitled(fileName_); }
    static bool isUntitled(const QString& name) { return name.startsWith(untitledPrefix()); }
    static QString untitledPrefix() { return "x:/dummy/untitled"; }

    // The encoding the file was read in and is written back in.
    const QcbsDocumentEncoding& encoding() const { return encoding_; }
    void setEncoding(const QcbsDocumentEncoding& encoding) { encoding_ = encoding; }
    // The line end the file uses ("\n", "\r\n" or "\r"), and whether its last
    // line ends with one; a save writes the lines so again.
    const QString& lineEnd() const { return lineEnd_; }
    bool hasFinalLineEnd() const { return finalLineEnd_; }

    bool isModified() const;
    void setModified(bool modified);
    // Whether the text is still coming into the editor after load().
    bool isLoading() const;
    int lineCount() const;

    // Starts an empty untitled or named document.
    void open(const QString& name);
    // Forgets text, file, check and history: the window holds no document.
    void close();

    // --- Reading and writing ---

    // Puts a file's bytes into the editor (in slices for a large text; the
    // editor's textLoaded() follows), remembering their encoding and line
    // ends. `lineCount` hears the number of lines before the text goes in.
    void load(const QString& name, const QByteArray& bytes, const std::function<void(int)>& lineCount = {});
    // The bytes a save writes and a check reads: the text in the document's
    // encoding (UTF-8 when it holds a character Latin-1 cannot), with the
    // file's line ends.
    QByteArray fileBytes() const;
    // Writes fileBytes() safely over the file (see QcbsDocumentSaver). On
    // success the document is unmodified, named so, and takes the encoding
    // written (`widened` tells when a Latin-1 text had to become UTF-8).
    QcbsDocumentSaver::Result save(const QString& name, bool backup, bool* widened = nullptr);

    // --- Checking ---

    // Where each check gets its dictionaries and settings, asked anew at
    // every check so that changes made meanwhile count.
    void setCheckSource(std::function<CifDocumentCheck()> source) { checkSource_ = std::move(source); }
    // Checks the text now and announces the result with checked().
    THandle<Cif> check();
    // Checks a file on disk (a document being loaded) without announcing it.
    THandle<Cif> checkFile(const std::string& filename);
    // The result of the last check, null before any.
    const THandle<Cif>& lastCheck() const { return lastCheck_; }
    void setLastCheck(THandle<Cif> cif) { lastCheck_ = std::move(cif); }
    // Whether the text was checked since it was opened, and its line count
    // then (-1 before any check).
    bool isChecked() const { return checked_; }
    int linesAtCheck() const { return linesAtCheck_; }
    void noteLinesAtCheck();
    // Whether checking is allowed (not for a template being inserted).
    bool checkAllowed() const { return checkAllowed_; }
    void setCheckAllowed(bool allowed) { checkAllowed_ = allowed; }

    // --- Edits asked for by views and wizards: one undo step each, then a check ---

    // Replaces the unlooped item's name-and-value text where it stands, or
    // adds the item text at the end of the block when the block lacks it.
    bool setItemValue(const QString& block, const QString& dataName, const QString& itemText);
    bool replaceBlock(const QString& block, const QString& blockText);
    // A new block before `beforeBlock`, or at the end when there is no such block.
    bool addBlock(const QString& blockText, const QString& beforeBlock);
    // Replaces the loop holding the column `loopMaster`.
    bool replaceLoop(const QString& block, const QString& loopMaster, const QString& loopText);
    bool addLoop(const QString& block, const QString& loopText);
    // Inserts text at the cursor, as typing would (no check).
    void insertText(const QString& text);

    // --- Going places: the line lands in the middle of the view ---

    // The data name (or the first item of a category name) in the block
    // holding the 1-based line `fromLine`, at or after that line; the whole
    // text from there when the block does not hold it.
    bool goToItem(const QString& dataName, int fromLine);
    // The heading of the named block.
    bool goToBlock(const QString& name);
    // The 1-based line where the text first holds `text` (ignoring case), or -1.
    int firstLineOf(const QString& text) const;

signals:
    // A check of the text finished; `cif` is now lastCheck().
    void checked(THandle<Cif> cif);
    void fileNameChanged(const QString& name);

private:
    using EditMaker = std::function<std::optional<CifTextEdit>(const CifTextLocator&)>;
    bool edit(const EditMaker& make);
    // The editor's text as UTF-8 with LF line ends, and a text position for
    // a byte offset of it.
    QByteArray editorUtf8() const;
    int position(const QByteArray& utf8, std::size_t offset) const;
    void placeCursor(int position);

    QcbsRichTextEdit* editor_;
    bool open_ = false;
    QString fileName_;
    QcbsDocumentEncoding encoding_;
    QString lineEnd_ = "\n";
    bool finalLineEnd_ = true;
    std::function<CifDocumentCheck()> checkSource_;
    THandle<Cif> lastCheck_;
    bool checked_ = false;
    int linesAtCheck_ = -1;
    bool checkAllowed_ = true;
};
