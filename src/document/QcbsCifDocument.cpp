// SPDX-License-Identifier: GPL-3.0-or-later
// The one document of a main window and the edits views and wizards ask for.
#include "document/QcbsCifDocument.hpp"

#include <QDir>
#include <QEventLoop>
#include <QFileInfo>
#include <QMetaObject>
#include <algorithm>
#include <fstream>
#include <string_view>

#include "cif/CifTextEdits.hpp"
#include "cif/CifTextLocator.hpp"
#include "document/QcbsByteSnapshot.hpp"
#include "document/QcbsWorkerDictionary.hpp"
#include "document/QcbsWorkerPriority.hpp"
#include "editor/QcbsRichTextEdit.hpp"

namespace {

const std::string kByteOrderMark = "\xef\xbb\xbf";

// Lines as a reader counts them: line ends, one more for a last line
// without one, none for no bytes.
int countLines(const QByteArray& bytes) {
    if (bytes.isEmpty()) return 0;
    qsizetype ends = bytes.count('\n');
    for (qsizetype i = bytes.indexOf('\r'); i >= 0; i = bytes.indexOf('\r', i + 1))
        if (i + 1 >= bytes.size() || bytes[i + 1] != '\n') ++ends;
    const char last = bytes.back();
    return static_cast<int>(last == '\n' || last == '\r' ? ends : ends + 1);
}

}  // namespace

// One check on the worker thread. Made on the event loop's thread; while the
// worker runs, only the worker touches it; then it comes back whole.
struct QcbsCifDocument::CheckJob {
    std::string bytes;
    THandle<CifDictionary> dictionary;  // a QcbsWorkerDictionary
    CifCheckSettings settings;
    THandle<Cif> result;
    quint64 serial = 0;
    int lines = 0;
    unsigned generation = 0;
};

QcbsCifDocument::QcbsCifDocument(QcbsRichTextEdit* editor, QObject* parent)
    : QObject(parent), editor_(editor) {
    workers_.setMaxThreadCount(2);  // one check and one save at most
    connect(editor_, &QcbsRichTextEdit::textLoaded, this, &QcbsCifDocument::finishLoad);
    connect(editor_, &QcbsRichTextEdit::encodingWidened, this, [this] {
        encoding_ = QcbsDocumentEncoding(QcbsDocumentEncoding::Utf8);
        widened_ = true;
    });
    connect(&watcher_, &QFileSystemWatcher::fileChanged, this, &QcbsCifDocument::noticeDiskChange);
    connect(&watcher_, &QFileSystemWatcher::directoryChanged, this, &QcbsCifDocument::noticeDiskChange);
    diskTimer_.setSingleShot(true);
    diskTimer_.setInterval(100);
    connect(&diskTimer_, &QTimer::timeout, this, &QcbsCifDocument::checkDisk);
}

QcbsCifDocument::~QcbsCifDocument() {
    // A check still running holds a copy of the text, not the document;
    // its result is dropped.
    ++checkGeneration_;
    workers_.waitForDone();
}

// --- the document ----------------------------------------------------------------------

void QcbsCifDocument::setFileName(const QString& name) {
    open_ = true;
    if (name == fileName_) return;
    fileName_ = name;
    identity_ = QcbsFileIdentity();
    watch(name);
    emit fileNameChanged(name);
}

QString QcbsCifDocument::lineEnd() const { return editor_->lineEnd(); }

bool QcbsCifDocument::hasFinalLineEnd() const {
    const int length = editor_->byteLength();
    if (length == 0 || newDocument_) return true;
    const char last = editor_->byteView(length - 1, 1)[0];
    return last == '\n' || last == '\r';
}

bool QcbsCifDocument::isModified() const { return editor_->isModified(); }

void QcbsCifDocument::setModified(bool modified) { editor_->setModified(modified); }

bool QcbsCifDocument::isLoading() const { return editor_->isLoading(); }

int QcbsCifDocument::lineCount() const {
    const int lines = editor_->lines();
    const int length = editor_->byteLength();
    if (length == 0) return lines;
    const char last = editor_->byteView(length - 1, 1)[0];
    return last == '\n' || last == '\r' ? lines - 1 : lines;
}

qint64 QcbsCifDocument::byteCount() const {
    return editor_->byteLength() + (encoding_.hasByteOrderMark() ? 3 : 0);
}

void QcbsCifDocument::open(const QString& name) {
    encoding_ = QcbsDocumentEncoding();
    widened_ = false;
    newDocument_ = true;
    lastCheck_ = THandle<Cif>();
    checked_ = false;
    linesAtCheck_ = -1;
    checkAllowed_ = true;
    ++checkGeneration_;
    checkWaiting_ = false;
    delete snapshot_;
    snapshot_ = nullptr;
    setFileName(name);
    identity_ = QcbsFileIdentity();
    loadStamp_ = QcbsFileIdentity::Stamp();
    watch(name);
}

void QcbsCifDocument::close() {
    if (editor_->isLoading())
        editor_->loadBytes(QByteArray());
    else
        editor_->setPlainText(QString());  // also forgets the undo history
    editor_->setUtf8(true);
    editor_->SendScintilla(QsciScintillaBase::SCI_SETEOLMODE, QsciScintillaBase::SC_EOL_LF);
    editor_->clearErrorHighlighting();
    editor_->setModified(false);
    open(QString());
    open_ = false;
    fileName_.clear();
    lineCount_ = {};
    emit fileNameChanged(QString());
}

// --- reading and writing ---------------------------------------------------------------

void QcbsCifDocument::load(const QString& name, const QByteArray& bytes,
                           const std::function<void(int)>& lineCount) {
    open(name);
    newDocument_ = false;
    // The count is known before the text goes in.
    if (lineCount) lineCount(countLines(bytes));
    lineCount_ = {};
    loadStamp_ = QcbsFileIdentity::Stamp::of(name);
    editor_->loadBytes(bytes);
}

bool QcbsCifDocument::loadFile(const QString& name, const std::function<void(int)>& lineCount) {
    open(name);
    newDocument_ = false;
    lineCount_ = lineCount;
    // Taken before the bytes are read: a change while they are read then
    // shows as a change.
    loadStamp_ = QcbsFileIdentity::Stamp::of(name);
    if (editor_->loadFile(name)) return true;
    lineCount_ = {};
    return false;
}

void QcbsCifDocument::hashInBackground(const QString& name, const QcbsFileIdentity::Stamp& stamp) {
    // Hashing a big text would hold the event loop (half a second for
    // 300 MB): the file is hashed again on the worker. Until the hash comes
    // the identity has none, so that any other stamp counts as a change.
    identity_ = QcbsFileIdentity(stamp, QByteArray());
    workers_.start([this, name, stamp] {
        yieldToTheWindow();
        QByteArray hash = QcbsFileIdentity::hashFile(name);
        // What was hashed must still be the file that was read.
        if (!(QcbsFileIdentity::Stamp::of(name) == stamp)) return;
        // Queued to the document, the call is dropped should it be gone.
        QMetaObject::invokeMethod(
            this,
            [this, stamp, hash] {
                if (identity_.isKnown() && identity_.stamp() == stamp && identity_.hash().isEmpty())
                    identity_ = QcbsFileIdentity(stamp, hash);
            },
            Qt::QueuedConnection);
    });
}

void QcbsCifDocument::finishLoad() {
    newDocument_ = false;
    encoding_ = QcbsDocumentEncoding(
        editor_->isUtf8Text() ? QcbsDocumentEncoding::Utf8 : QcbsDocumentEncoding::Latin1,
        editor_->loadedWithByteOrderMark());
    widened_ = false;
    if (loadStamp_.exists && isLarge()) {
        hashInBackground(fileName_, loadStamp_);
    } else if (loadStamp_.exists) {
        QCryptographicHash hash = QcbsFileIdentity::hasher();
        hash.addData(QByteArrayView(prefix().data(), static_cast<qsizetype>(prefix().size())));
        const std::string_view text = editor_->byteView();
        hash.addData(QByteArrayView(text.data(), static_cast<qsizetype>(text.size())));
        identity_ = QcbsFileIdentity(loadStamp_, hash.result());
    }
    loadStamp_ = QcbsFileIdentity::Stamp();
    if (lineCount_) {
        const auto tell = std::exchange(lineCount_, {});
        // Scintilla counts a last empty line after a final line end; a reader does not.
        const int lines = editor_->byteLength() == 0 ? 0 : editor_->lines() - (hasFinalLineEnd() ? 1 : 0);
        tell(lines);
    }
}

std::string QcbsCifDocument::prefix() const {
    return encoding_.hasByteOrderMark() ? kByteOrderMark : std::string();
}

void QcbsCifDocument::finishText(std::string& bytes) const {
    if (!newDocument_ || bytes.size() <= prefix().size()) return;
    if (bytes.back() != '\n' && bytes.back() != '\r') bytes += lineEnd().toStdString();
}

QByteArray QcbsCifDocument::fileBytes() const {
    std::string bytes = prefix();
    bytes.append(editor_->byteView());
    finishText(bytes);
    return QByteArray::fromStdString(bytes);
}

QcbsDocumentSaver::Result QcbsCifDocument::save(const QString& name, bool backup, bool* widened) {
    quint64 serial = editor_->editSerial();
    QcbsDocumentSaver::Result result;
    QByteArray hash;
    // The file replaced by the save is no change made by another program.
    saving_ = true;
    if (isLarge()) {
        result = saveInBackground(name, backup, &serial, &hash);
    } else {
        const std::string_view text = editor_->byteView();
        if (prefix().empty() && !newDocument_) {
            const QByteArrayView bytes(text.data(), static_cast<qsizetype>(text.size()));
            result = QcbsDocumentSaver::save(name, bytes, backup);
            hash = QcbsFileIdentity::hash(bytes);
        } else {
            const QByteArray bytes = fileBytes();
            result = QcbsDocumentSaver::save(name, bytes, backup);
            hash = QcbsFileIdentity::hash(bytes);
        }
    }
    saving_ = false;
    if (widened != nullptr) *widened = result.saved && widened_;
    if (!result.saved) return result;
    widened_ = false;
    setFileName(name);
    identity_ = QcbsFileIdentity(QcbsFileIdentity::Stamp::of(name), hash);
    // The rename of the save took the watched file away.
    watch(name);
    // What the user typed while a big text was written is not in the file.
    if (serial == editor_->editSerial()) editor_->setModified(false);
    return result;
}

QcbsDocumentSaver::Result QcbsCifDocument::saveInBackground(const QString& name, bool backup, quint64* serial,
                                                            QByteArray* hash) {
    QcbsDocumentSaver::Result result;
    QEventLoop loop;
    cancelSave_ = false;
    const qint64 total = byteCount();
    emit saveProgress(0, total);
    QcbsByteSnapshot snapshot(editor_, prefix());
    connect(&snapshot, &QcbsByteSnapshot::done, this, [&] {
        *serial = snapshot.editSerial();
        auto bytes = std::make_shared<std::string>(std::move(snapshot.bytes()));
        finishText(*bytes);
        workers_.start([this, bytes, name, backup, &result, &loop, hash] {
            yieldToTheWindow();
            const auto progress = [this](qint64 written, qint64 all) {
                QMetaObject::invokeMethod(
                    this, [this, written, all] { emit saveProgress(written, all); }, Qt::QueuedConnection);
                return !cancelSave_.load();
            };
            const QByteArrayView view(bytes->data(), static_cast<qsizetype>(bytes->size()));
            const QcbsDocumentSaver::Result saved = QcbsDocumentSaver::save(name, view, backup, progress);
            QByteArray written = saved.saved ? QcbsFileIdentity::hash(view) : QByteArray();
            // The waiting loop is this thread's to wake; the result goes to it.
            QMetaObject::invokeMethod(
                this,
                [&result, &loop, saved, hash, written] {
                    result = saved;
                    *hash = written;
                    loop.quit();
                },
                Qt::QueuedConnection);
        });
    });
    snapshot.start();
    loop.exec();
    emit saveProgress(total, total);
    return result;
}

// --- the file on disk -----------------------------------------------------------------

void QcbsCifDocument::watch(const QString& name) {
    if (!watcher_.files().isEmpty()) watcher_.removePaths(watcher_.files());
    if (!watcher_.directories().isEmpty()) watcher_.removePaths(watcher_.directories());
    if (name.isEmpty() || isUntitled(name)) return;
    const QFileInfo file(name);
    if (file.isFile()) watcher_.addPath(name);
    if (file.absoluteDir().exists()) watcher_.addPath(file.absolutePath());
}

void QcbsCifDocument::noticeDiskChange() {
    if (!open_ || isUntitled()) return;
    // A file renamed over or deleted is no longer watched; one that is
    // there (again) is.
    if (!watcher_.files().contains(fileName_) && QFileInfo(fileName_).isFile()) watcher_.addPath(fileName_);
    if (!saving_) diskTimer_.start();
}

void QcbsCifDocument::checkDisk() {
    if (saving_ || isLoading()) return;
    const QcbsFileIdentity::State state = diskState();
    if (state == QcbsFileIdentity::State::Changed || state == QcbsFileIdentity::State::Missing)
        emit fileChangedOnDisk();
}

QcbsFileIdentity::State QcbsCifDocument::diskState() {
    if (!open_ || isUntitled() || !identity_.isKnown()) return QcbsFileIdentity::State::Same;
    const QcbsFileIdentity::State state = identity_.compare(fileName_);
    if (state != QcbsFileIdentity::State::Touched) return state;
    identity_ = QcbsFileIdentity(QcbsFileIdentity::Stamp::of(fileName_), identity_.hash());
    return QcbsFileIdentity::State::Same;
}

// --- checking --------------------------------------------------------------------------

THandle<Cif> QcbsCifDocument::check() {
    if (isLarge()) {
        startBackgroundCheck();
        return THandle<Cif>();
    }
    // A newer check: whatever runs on the worker is out of date.
    ++checkGeneration_;
    checkWaiting_ = false;
    delete snapshot_;
    snapshot_ = nullptr;
    std::string bytes = prefix();
    bytes.append(editor_->byteView());
    finishText(bytes);
    const CifDocumentCheck source = checkSource_ ? checkSource_() : CifDocumentCheck();
    lastCheck_ = source.run(std::move(bytes));
    lastCheckSerial_ = editor_->editSerial();
    checked_ = true;
    noteLinesAtCheck();
    emit checked(lastCheck_);
    return lastCheck_;
}

void QcbsCifDocument::startBackgroundCheck() {
    ++checkGeneration_;
    if (checkRunning_) {
        // The one running is dropped when it comes back; this one follows.
        checkWaiting_ = true;
        return;
    }
    takeSnapshot();
}

void QcbsCifDocument::takeSnapshot() {
    delete snapshot_;
    snapshot_ = new QcbsByteSnapshot(editor_, prefix(), this);
    connect(snapshot_, &QcbsByteSnapshot::done, this, &QcbsCifDocument::submitCheck, Qt::QueuedConnection);
    snapshot_->start();
}

void QcbsCifDocument::submitCheck() {
    if (snapshot_ == nullptr || !snapshot_->isDone()) return;
    auto job = std::make_shared<CheckJob>();
    job->bytes = std::move(snapshot_->bytes());
    finishText(job->bytes);
    job->serial = snapshot_->editSerial();
    job->lines = editor_->lines();
    job->generation = checkGeneration_;
    snapshot_->deleteLater();
    snapshot_ = nullptr;
    const CifDocumentCheck source = checkSource_ ? checkSource_() : CifDocumentCheck();
    job->dictionary = QcbsWorkerDictionary::forWorker(source.dictionary());
    job->settings = source.settings();
    checkRunning_ = true;
    workers_.start([this, job]() mutable {
        yieldToTheWindow();
        // Only this thread touches the job until it goes back.
        std::shared_ptr<CheckJob> mine = std::move(job);
        {
            const CifDocumentCheck check(mine->dictionary, mine->settings);
            mine->result = check.run(std::move(mine->bytes));
        }
        // Handed over whole: nothing of it stays with this thread.
        QMetaObject::invokeMethod(
            this, [this, back = std::move(mine)] { finishBackgroundCheck(back); }, Qt::QueuedConnection);
    });
}

void QcbsCifDocument::finishBackgroundCheck(const std::shared_ptr<CheckJob>& job) {
    checkRunning_ = false;
    if (job->generation != checkGeneration_) {
        // A newer check was asked for meanwhile.
        if (checkWaiting_) {
            checkWaiting_ = false;
            takeSnapshot();
        }
        return;
    }
    lastCheck_ = job->result;
    lastCheckSerial_ = job->serial;
    checked_ = true;
    linesAtCheck_ = job->lines;
    emit checked(lastCheck_);
}

bool QcbsCifDocument::isLastCheckStale() const { return lastCheckSerial_ != editor_->editSerial(); }

THandle<Cif> QcbsCifDocument::checkFile(const std::string& filename) {
    // A file that cannot be opened reads as an empty stream.
    std::ifstream file(filename, std::ios::binary);
    const CifDocumentCheck source = checkSource_ ? checkSource_() : CifDocumentCheck();
    lastCheck_ = source.run(file);
    noteLinesAtCheck();
    return lastCheck_;
}

void QcbsCifDocument::noteLinesAtCheck() { linesAtCheck_ = editor_->lines(); }

// --- edits -----------------------------------------------------------------------------

std::string QcbsCifDocument::encoded(const QString& text) const {
    return editor_->isUtf8Text() ? text.toStdString() : text.toLatin1().toStdString();
}

bool QcbsCifDocument::edit(const EditMaker& make) {
    if (!open_ || isLoading()) return false;
    // Offsets into the editor's bytes are its positions.
    const std::optional<CifTextEdit> change = make(CifTextLocator(editor_->byteView()));
    if (!change) return false;
    editor_->replaceBytes(static_cast<int>(change->begin), static_cast<int>(change->end), change->text);
    editor_->placeCursor(static_cast<int>(change->begin));
    check();
    return true;
}

bool QcbsCifDocument::setItemValue(const QString& block, const QString& dataName, const QString& itemText) {
    // The new text first: a text Latin-1 cannot hold makes the document UTF-8.
    const std::string text = editor_->encodeText(itemText).toStdString();
    return edit([&](const CifTextLocator& locator) {
        return cif_item_edit(locator, encoded(block), encoded(dataName), text);
    });
}

bool QcbsCifDocument::replaceBlock(const QString& block, const QString& blockText) {
    const std::string text = editor_->encodeText(blockText).toStdString();
    return edit([&](const CifTextLocator& locator) { return cif_block_edit(locator, encoded(block), text); });
}

bool QcbsCifDocument::addBlock(const QString& blockText, const QString& beforeBlock) {
    const std::string text = editor_->encodeText(blockText).toStdString();
    return edit([&](const CifTextLocator& locator) {
        return std::optional<CifTextEdit>(cif_new_block_edit(locator, text, encoded(beforeBlock)));
    });
}

bool QcbsCifDocument::replaceLoop(const QString& block, const QString& loopMaster, const QString& loopText) {
    const std::string text = editor_->encodeText(loopText).toStdString();
    return edit([&](const CifTextLocator& locator) {
        return cif_loop_edit(locator, encoded(block), encoded(loopMaster), text);
    });
}

bool QcbsCifDocument::addLoop(const QString& block, const QString& loopText) {
    const std::string text = editor_->encodeText(loopText).toStdString();
    return edit(
        [&](const CifTextLocator& locator) { return cif_new_loop_edit(locator, encoded(block), text); });
}

void QcbsCifDocument::insertText(const QString& text) {
    if (open_ && !isLoading()) editor_->insertPlainText(text);
}

bool QcbsCifDocument::replaceText(const QByteArray& bytes) {
    if (!open_ || isLoading()) return false;
    editor_->replaceBytes(0, editor_->byteLength(),
                          std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())));
    editor_->placeCursor(0);
    check();
    return true;
}

// --- going places ----------------------------------------------------------------------

bool QcbsCifDocument::goToItem(const QString& dataName, int fromLine) {
    if (!open_ || isLoading()) return false;
    const int lines = editor_->lines();
    const std::size_t from =
        fromLine <= 1 ? 0
                      : static_cast<std::size_t>(editor_->SendScintilla(
                            QsciScintillaBase::SCI_POSITIONFROMLINE, std::min(fromLine - 1, lines - 1)));
    const CifTextLocator locator(editor_->byteView());
    const std::optional<CifTextSpan> found = locator.name(locator.block_at(from), encoded(dataName), from);
    if (!found) return false;
    editor_->placeCursor(static_cast<int>(found->begin));
    return true;
}

bool QcbsCifDocument::goToBlock(const QString& name) {
    if (!open_ || isLoading()) return false;
    const std::optional<CifTextSpan> found = CifTextLocator(editor_->byteView()).block(encoded(name));
    if (!found) return false;
    editor_->placeCursor(static_cast<int>(found->begin));
    return true;
}

int QcbsCifDocument::firstLineOf(const QString& text) const {
    if (text.isEmpty()) return -1;
    const std::string needle = encoded(text);
    const std::string_view haystack = editor_->byteView();
    // Data names are ASCII: compared without regard to ASCII case.
    const auto found =
        std::search(haystack.begin(), haystack.end(), needle.begin(), needle.end(), [](char a, char b) {
            return (a >= 'A' && a <= 'Z' ? a + 32 : a) == (b >= 'A' && b <= 'Z' ? b + 32 : b);
        });
    if (found == haystack.end()) return -1;
    const auto position = static_cast<unsigned long>(found - haystack.begin());
    return static_cast<int>(editor_->SendScintilla(QsciScintillaBase::SCI_LINEFROMPOSITION, position)) + 1;
}
