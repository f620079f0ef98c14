// SPDX-License-Identifier: GPL-3.0-or-later
// The one document of a main window and the edits views and wizards ask for.
#pragma once

#include <QByteArray>
#include <QFileSystemWatcher>
#include <QObject>
#include <QString>
#include <QThreadPool>
#include <QTimer>
#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "cif/Cif.hpp"
#include "cif/CifDocumentCheck.hpp"
#include "document/QcbsDocumentEncoding.hpp"
#include "document/QcbsDocumentSaver.hpp"
#include "document/QcbsFileIdentity.hpp"
#include "support/THandle.hpp"

class CifTextLocator;
class QcbsByteSnapshot;
class QcbsRichTextEdit;
struct CifTextEdit;

// The one document of a main window: the bytes in the window's editor, the
// file they came from with their encoding and line ends, whether they
// changed, and the result of their last check. Views and wizards never
// touch the text: they ask the document for an edit, which it makes as one
// undo step, leaving every byte outside the edited span as it was, and then
// checks the document again (checked() tells the window).
//
// The document is its bytes: a file saved without an edit is written back
// byte for byte, and a check reads exactly the bytes a save would write.
// A document above WorkerThreshold bytes is checked on a worker thread,
// over a copy of its bytes: the window keeps answering, the user keeps
// typing (the result then comes back stale), and a newer check replaces one
// still running. Saving such a document writes a copy from the worker too,
// telling its progress.
class QcbsCifDocument : public QObject {
    Q_OBJECT
public:
    explicit QcbsCifDocument(QcbsRichTextEdit* editor, QObject* parent = nullptr);
    ~QcbsCifDocument() override;

    // Above this many bytes checks and saves run on the worker thread.
    static constexpr qint64 WorkerThreshold = 1024 * 1024;

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
    // The line end most lines of the file have ("\n", "\r\n" or "\r"): new
    // lines get it. Every line keeps its own.
    QString lineEnd() const;
    // Whether the last line ends with a line end. A new document (one not
    // read from a file) is written with one, as a CIF should be; a file's
    // bytes are written as they are.
    bool hasFinalLineEnd() const;

    bool isModified() const;
    void setModified(bool modified);
    // Whether the text is still coming into the editor after load().
    bool isLoading() const;
    // The text's lines as a reader counts them: a final line end starts none.
    int lineCount() const;
    // The size of the bytes a save writes.
    qint64 byteCount() const;
    // Whether checks and saves of this document go to the worker thread.
    bool isLarge() const { return byteCount() > WorkerThreshold; }

    // Starts an empty untitled or named document.
    void open(const QString& name);
    // Forgets text, file, check and history: the window holds no document.
    void close();

    // --- Reading and writing ---

    // Puts bytes into the editor (in slices for a large text; the editor's
    // textLoaded() follows), remembering their encoding. `lineCount` hears
    // the number of lines once it is known, before textLoaded() reaches
    // anyone else.
    void load(const QString& name, const QByteArray& bytes, const std::function<void(int)>& lineCount = {});
    // The same straight from the file, which is never held in memory whole;
    // false when it cannot be read.
    bool loadFile(const QString& name, const std::function<void(int)>& lineCount = {});
    // The bytes a save writes and a check reads: a byte-order mark when the
    // file had one, then the editor's bytes as they are (and, for a new
    // document whose last line has none, a line end).
    QByteArray fileBytes() const;
    // Writes fileBytes() safely over the file (see QcbsDocumentSaver); a
    // large document from the worker thread, with saveProgress() on the way
    // and the event loop running until it is done. On success the document
    // is named so and unmodified (unless the user typed meanwhile); `widened`
    // tells when a Latin-1 text had to become UTF-8 since the last save.
    QcbsDocumentSaver::Result save(const QString& name, bool backup, bool* widened = nullptr);
    // Stops a save running on the worker; the old file stays as it was.
    void cancelSave() { cancelSave_ = true; }

    // --- The file on disk ---

    // The file as it is now against what the document last read or wrote
    // (Same for an untitled document). A file only touched by another
    // program (the same bytes) is taken as it is and counts as the same.
    QcbsFileIdentity::State diskState();
    // The file as the document last read or wrote it (a large file's hash
    // follows its load from the worker).
    const QcbsFileIdentity& fileIdentity() const { return identity_; }
    // Whether a save of the document is being written.
    bool isSaving() const { return saving_; }

    // --- Checking ---

    // Where each check gets its dictionaries and settings, asked anew at
    // every check so that changes made meanwhile count.
    void setCheckSource(std::function<CifDocumentCheck()> source) { checkSource_ = std::move(source); }
    // Checks the text and announces the result with checked(): at once for
    // a small document (the result is returned too), on the worker for a
    // large one (a null handle is returned; checked() follows).
    THandle<Cif> check();
    // Checks a file on disk (a document being loaded) without announcing it.
    THandle<Cif> checkFile(const std::string& filename);
    // Whether a check is under way on the worker.
    bool isCheckRunning() const { return checkRunning_ || snapshot_ != nullptr; }
    // The result of the last check, null before any.
    const THandle<Cif>& lastCheck() const { return lastCheck_; }
    void setLastCheck(THandle<Cif> cif) { lastCheck_ = std::move(cif); }
    // Whether the text changed since the bytes the last check read.
    bool isLastCheckStale() const;
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
    // Replaces the whole text with these bytes, in the document's encoding
    // (a recovered text): one undo step back to the text before, then a check.
    bool replaceText(const QByteArray& bytes);

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
    // A save on the worker thread has written this many bytes of so many.
    void saveProgress(qint64 written, qint64 total);
    // Another program changed, deleted or moved the file (diskState() tells
    // which); the document's own saves never raise it.
    void fileChangedOnDisk();

private:
    struct CheckJob;
    using EditMaker = std::function<std::optional<CifTextEdit>(const CifTextLocator&)>;
    bool edit(const EditMaker& make);
    std::string prefix() const;
    // Gives a new document's text its final line end, when it lacks one.
    void finishText(std::string& bytes) const;
    // Bytes of text in the document's encoding, for looking up names.
    std::string encoded(const QString& text) const;
    void finishLoad();
    void startBackgroundCheck();
    void takeSnapshot();
    void submitCheck();
    void finishBackgroundCheck(const std::shared_ptr<CheckJob>& job);
    QcbsDocumentSaver::Result saveInBackground(const QString& name, bool backup, quint64* serial,
                                               QByteArray* hash);
    // Watches the file of this name (and its directory, which tells when a
    // file deleted or renamed over comes back); none for an untitled name.
    void watch(const QString& name);
    void noticeDiskChange();
    void checkDisk();

    QcbsRichTextEdit* editor_;
    bool open_ = false;
    QString fileName_;
    QcbsDocumentEncoding encoding_;
    bool widened_ = false;
    bool newDocument_ = true;             // not read from a file
    std::function<void(int)> lineCount_;  // waiting for the load to finish
    std::function<CifDocumentCheck()> checkSource_;
    THandle<Cif> lastCheck_;
    quint64 lastCheckSerial_ = 0;
    bool checked_ = false;
    int linesAtCheck_ = -1;
    bool checkAllowed_ = true;
    // The check on the worker: the copy being taken, whether a job runs,
    // which request the newest is (older results are dropped), and whether
    // another check waits for the running one.
    QcbsByteSnapshot* snapshot_ = nullptr;
    bool checkRunning_ = false;
    unsigned checkGeneration_ = 0;
    bool checkWaiting_ = false;
    std::atomic<bool> cancelSave_ = false;
    // The file as the document last read or wrote it; the stamp taken
    // before a load, made an identity with the hash of the bytes read.
    QcbsFileIdentity identity_;
    QcbsFileIdentity::Stamp loadStamp_;
    // A large file's identity gets its hash from the worker.
    void hashInBackground(const QString& name, const QcbsFileIdentity::Stamp& stamp);
    bool saving_ = false;
    QFileSystemWatcher watcher_;
    // Gathers the burst of notices one change of the file gives.
    QTimer diskTimer_;
    // Declared last: destroyed first, it waits for the worker to finish.
    QThreadPool workers_;
};
