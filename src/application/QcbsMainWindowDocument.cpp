// SPDX-License-Identifier: GPL-3.0-or-later
// The main window's document operations: new, open, save, save as, close, print.
// Also loading, the backup on saving, files changed by other programs, recent
// files and dropped files.
#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QDropEvent>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QMimeData>
#include <QPrintDialog>
#include <QPrinter>
#include <QProgressDialog>
#include <QPushButton>
#include <QStatusBar>
#include <QTabWidget>
#include <QTimer>
#include <QUrl>
#include <memory>

#include "application/QcbsMainWindow.hpp"
#include "application/QcbsMainWindowActions.hpp"
#include "base/ORMALogQString.hpp"
#include "base/QcbsUtilities.hpp"
#include "document/QcbsCifDocument.hpp"
#include "document/QcbsDocumentPrinter.hpp"
#include "document/QcbsDocumentSaver.hpp"
#include "editor/QcbsRichTextEdit.hpp"
#include "support/ORMALog.hpp"
#include "validation/QcbsCoreCifFileValidator.hpp"
#include "validation/QcbsErrorListView.hpp"
#include "views/QcbsCifBoxView.hpp"
#include "visualiser/QcbsVisSorter.hpp"
#include "widgets/RecentFilesMenu.hpp"

namespace {

const char* const kCifFilter = "CIF (*.cif)";
const char* const kFileFilter = "CIF (*.cif);;All Files (*)";
// How much of a file is read to judge whether it looks like a CIF.
constexpr qint64 kProbeBytes = 16 * 1024 * 1024;

void loadLog(const QString& text) { debugLine(1, "QcbsMainWindow::load - " + text); }

QString quoted(const QString& name) { return "\"" + name + "\""; }

// The same name quoted for the output pane, which shows rich text.
QString quotedHtml(const QString& name) { return quoted(name).toHtmlEscaped(); }

// A message box with buttons of exactly these texts and roles; returns the
// index of the button chosen (the escape button's when the box is closed).
// `detail` goes under the text, when given.
int ask(QWidget* parent, QMessageBox::Icon icon, const QString& caption, const QString& text,
        const QList<std::pair<QString, QMessageBox::ButtonRole>>& buttons, int defaultButton,
        int escapeButton, const QString& detail = QString()) {
    QMessageBox box(icon, caption, text, QMessageBox::NoButton, parent);
    if (!detail.isEmpty()) box.setInformativeText(detail);
    QList<QPushButton*> made;
    for (const auto& [label, role] : buttons) made << box.addButton(label, role);
    box.setDefaultButton(made.at(defaultButton));
    box.setEscapeButton(made.at(escapeButton));
    box.exec();
    const int chosen = static_cast<int>(made.indexOf(qobject_cast<QPushButton*>(box.clickedButton())));
    return chosen < 0 ? escapeButton : chosen;
}

// The wait cursor while the program works without answering.
class WaitCursor {
public:
    WaitCursor() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QApplication::restoreOverrideCursor(); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
};

bool sameFile(const QString& a, const QString& b) {
    const QFileInfo first(a);
    const QFileInfo second(b);
    const QString canonical = first.canonicalFilePath();
    if (!canonical.isEmpty()) return canonical == second.canonicalFilePath();
    return first.absoluteFilePath() == second.absoluteFilePath();
}

// Whether a file of this name could be written: its directory exists and
// the file (or, for a new file, the directory) is writable.
bool canWriteTo(const QString& filename) {
    const QFileInfo file(filename);
    const QFileInfo directory(file.absolutePath());
    if (!directory.isDir()) return false;
    if (file.exists()) return file.isFile() && file.isWritable();
    return directory.isWritable();
}

// The start of a file, enough to judge whether it looks like a CIF; false
// when it cannot be read.
bool readStart(const QString& filename, QByteArray& start) {
    QFile file(filename);
    if (QFileInfo(filename).isDir() || !file.open(QIODevice::ReadOnly)) return false;
    start = file.read(kProbeBytes);
    return file.error() == QFileDevice::NoError;
}

// Why a save failed, said so that the user knows what to do.
QString saveFailureText(const QString& filename, const QcbsDocumentSaver::Result& result) {
    using Failure = QcbsDocumentSaver::Failure;
    const QString copy = "use 'Save As' to make a copy";
    switch (result.failure) {
        case Failure::NoSpace:
            return "Could not write to this file: there is no space left on the device. Free some space, "
                   "or " +
                   copy;
        case Failure::ReadOnlyDirectory:
            return "Could not write to this file: the directory " +
                   quoted(QDir::toNativeSeparators(QFileInfo(filename).absolutePath())) +
                   " is read-only (permission denied). Check file permissions, or " + copy;
        case Failure::ReadOnlyFile:
            return "Could not write to this file: it is read-only (permission denied). Check file "
                   "permissions, "
                   "or " +
                   copy;
        case Failure::ReadOnlyFileSystem:
            return "Could not write to this file: the file system is read-only. Check file permissions, or " +
                   copy;
        case Failure::None:
        case Failure::Other:
            break;
    }
    const QString reason = result.error.isEmpty() ? QString() : ": " + result.error;
    return "Could not write to this file" + reason + ". Check file permissions, or " + copy;
}

// One running number for the untitled files of all windows.
QString nextUntitledName() {
    static int count = 0;
    return QcbsCifDocument::untitledPrefix() + QString::number(++count) + ".cif";
}

}  // namespace

// --- new -------------------------------------------------------------------------------

void QcbsMainWindow::fileNew() { fileNew(reuseWindow()); }

void QcbsMainWindow::fileNew(bool replace) {
    const bool open = document_->isOpen();
    if (!replace && open) {
        newWindow();
        return;
    }
    if (replace && open && !fileClose()) return;
    errorList_->removeAll();
    if (options().start_with_template && !options().template_file.isEmpty()) {
        if (load(options().template_file, false, false)) {
            // The copy is a new document: saving must never overwrite the template.
            document_->setFileName(nextUntitledName());
            document_->setCheckAllowed(true);
            enableParseTools(true);
            writeToOutputPane("(Note, template files are not automatically parsed for errors)", true);
            return;
        }
        fileNewUntitled();
        statusBarMessage("Could not open template file");
        return;
    }
    fileNewUntitled();
}

void QcbsMainWindow::fileNewUntitled() {
    if (currentEditor() == nullptr) return;
    const QString name = nextUntitledName();
    document_->open(name);
    resetBlocksCombo();
    writeToOutputPane("<br>Starting new file " + quotedHtml(name), true);
    enableFileTools(true);
    enableTools(tabs_->currentWidget());
}

bool QcbsMainWindow::isBlank() const {
    QcbsRichTextEdit* editor = currentEditor();
    if (editor == nullptr || !document_->isOpen()) return true;
    return document_->isUntitled() && !document_->isModified() && !document_->isLoading() &&
           editor->byteLength() == 0;
}

// --- open and load ---------------------------------------------------------------------

void QcbsMainWindow::fileOpen() {
    QString directory;
    const QString current = fileName();
    if (!current.isEmpty() && !isUntitled(current)) directory = QFileInfo(current).absolutePath();
    QFileDialog dialog(this, "Open", directory, kFileFilter);
    dialog.setObjectName("openfiledialog");
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setFileMode(QFileDialog::ExistingFiles);
    if (dialog.exec() != QDialog::Accepted) return;
    for (const QString& name : dialog.selectedFiles()) fileOpen(name, true);
}

void QcbsMainWindow::fileOpen(const QString& filename, bool interactive) {
    if (filename.isEmpty()) return;
    QcbsRichTextEdit* editor = currentEditor();
    if (editor == nullptr) return;
    if (!reuseWindow() && !isBlank()) {
        loadInNewWindow(filename, interactive, true);
        return;
    }
    // The document goes only when the new one can take its place; a file
    // already open is refused by load() with this document kept.
    bool askIfNoCif = interactive;
    if (!fileAlreadyOpen(filename)) {
        // Asked before the document goes, so that Cancel leaves the window as it was.
        QByteArray start;
        if (interactive && readStart(filename, start)) {
            if (!acceptAsCif(filename, start)) return;
            askIfNoCif = false;
        }
        if (document_->isOpen() && !fileClose()) return;
    }
    if (!load(filename, askIfNoCif, true) && !document_->isOpen()) fileNewUntitled();
}

bool QcbsMainWindow::acceptAsCif(const QString& filename, const QByteArray& start) {
    if (QcbsCoreCifFileValidator::examine(start) == QcbsCoreCifFileValidator::LooksLikeCif) return true;
    return ask(this, QMessageBox::Warning, "Warning",
               "File " + quoted(filename) + " does not appear to be a valid CIF.",
               {{"Continue", QMessageBox::AcceptRole}, {"Cancel", QMessageBox::RejectRole}}, 0, 1) == 0;
}

bool QcbsMainWindow::load(const QString& filename, bool interactive, bool check) {
    QcbsRichTextEdit* editor = currentEditor();
    if (editor == nullptr) return false;
    loadLog("filename: " + filename);
    if (fileAlreadyOpen(filename)) {
        loadLog("file already open ");
        QMessageBox::information(this, "Information", "That file is already open.");
        return false;
    }
    // The file goes into the editor a slice at a time; only its start is
    // read here, to judge whether it looks like a CIF.
    QByteArray start;
    if (!readStart(filename, start)) {
        loadLog("failed");
        QMessageBox::critical(this, "Error", "Could not open file " + quoted(filename));
        return false;
    }
    loadLog("file opened ok ");
    // Cancel leaves everything as it was, the output pane included.
    if (interactive && !acceptAsCif(filename, start)) {
        loadLog("cancelled: not a CIF");
        return false;
    }
    writeToOutputPane("Reading CIF " + quotedHtml(filename), true);

    const QcbsCoreCifFileValidator::Verdict verdict = QcbsCoreCifFileValidator::examine(start);
    if (verdict != QcbsCoreCifFileValidator::LooksLikeCif) {
        loadLog("not a CIF: the file " + QcbsCoreCifFileValidator::describe(verdict));
        writeToOutputPane("Warning: " + quotedHtml(filename) + " does not appear to be a valid CIF.", true);
    }

    // The visualiser page is made with the window; it shows the document
    // once the user turns to it.
    loadLog("creating visualiser view");

    loadLog("copying file text to editor");
    statusBarMessage("Reading...  ");
    const int serial = ++loadSerial_;
    {
        const WaitCursor wait;
        // A big text goes into the editor in slices of the event loop; the
        // check runs once the whole text is in (at once for a small text).
        connect(
            editor, &QcbsRichTextEdit::textLoaded, this,
            [this, serial, filename, check] { finishLoad(serial, filename, check); },
            Qt::SingleShotConnection);
        // The line count comes once the text is in, before the check's messages.
        const bool loading = document_->loadFile(filename, [this](int lines) {
            loadLog("setting up UI");
            writeToOutputPane("Read " + QString::number(lines) + (lines == 1 ? " line." : " lines."), true);
        });
        document_->setCheckAllowed(check);
        if (!loading) {
            disconnect(editor, &QcbsRichTextEdit::textLoaded, this, nullptr);
            loadLog("failed");
            QMessageBox::critical(this, "Error", "Could not open file " + quoted(filename));
            return false;
        }
    }
    if (check && recentFiles != nullptr) recentFiles->addFile(filename);
    enableFileTools(true);
    enableTools(tabs_->currentWidget());
    return true;
}

void QcbsMainWindow::finishLoad(int serial, const QString& filename, bool check) {
    // A later load or a close took the editor meanwhile.
    if (serial != loadSerial_) return;
    if (check) {
        const WaitCursor wait;
        loadLog("parsing CIF");
        statusBarMessage("Parsing CIF...  ");
        parse();
    }
    statusBarMessage("Ready");
    loadLog("successful");
    statusLineNumber();
    emit documentLoaded(filename);
}

bool QcbsMainWindow::loadInNewWindow(const QString& filename, bool interactive, bool check) {
    debugLine(1, "QcbsMainWindow::loadInNewWindow - filename: " + filename);
    if (fileAlreadyOpen(filename)) {
        QMessageBox::information(this, "Information", "The file " + quoted(filename) + " is already open.");
        return false;
    }
    debugLine(1, "QcbsMainWindow::loadInNewWindow - creating new window ");
    auto* window = new QcbsMainWindow(sharedData_, StartEmpty);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->show();
    const bool loaded = window->load(filename, interactive, check);
    // A window that got no document is not left behind.
    if (!loaded) window->close();
    debugLine(1, "QcbsMainWindow::loadInNewWindow - finished ");
    return loaded;
}

bool QcbsMainWindow::fileAlreadyOpen(const QString& filename) {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        const auto* window = qobject_cast<QcbsMainWindow*>(widget);
        if (window == nullptr) continue;
        const QString open = window->fileName();
        if (window->document()->isOpen() && !isUntitled(open) && sameFile(open, filename)) return true;
    }
    return false;
}

// --- save ------------------------------------------------------------------------------

void QcbsMainWindow::fileSave() { saveDocument(); }

void QcbsMainWindow::fileSaveAs() { saveDocumentAs(); }

bool QcbsMainWindow::saveDocument() {
    QcbsRichTextEdit* editor = currentEditor();
    if (editor == nullptr) return false;
    if (editor->isLoading()) {
        // Saving now would write only the part read so far.
        statusBarMessage("The file is still being read; it can be saved once it is in.");
        return false;
    }
    const QString name = fileName();
    if (!name.isEmpty() && !isUntitled(name)) {
        // Never over what another program wrote, nor silently where it took the file away.
        const QcbsFileIdentity::State state = document_->diskState();
        if (state == QcbsFileIdentity::State::Changed || state == QcbsFileIdentity::State::Missing)
            return answerDiskChange(state, true);
    }
    if (name.isEmpty() || !QFileInfo::exists(name)) return saveDocumentAs();
    return writeDocument(name);
}

bool QcbsMainWindow::saveDocumentAs() {
    QcbsRichTextEdit* editor = currentEditor();
    if (editor == nullptr) return false;
    if (editor->isLoading()) {
        statusBarMessage("The file is still being read; it can be saved once it is in.");
        return false;
    }
    const QString current = fileName();
    QString name = current.isEmpty() || isUntitled(current) ? QString("new.cif") : current;
    for (;;) {
        name = askSaveFileName(name);
        if (name.isEmpty()) return false;
        if (!QFileInfo::exists(name)) break;
        const int answer = ask(this, QMessageBox::Question, programQName(),
                               name + " already exists\nDo you want to replace it?",
                               {{"Yes", QMessageBox::YesRole}, {"No", QMessageBox::NoRole}}, 0, 1);
        if (answer == 0) break;
    }
    if (!canWriteTo(name)) {
        QMessageBox::critical(this, "Error", "Could not write to this file (check permissions)");
        return false;
    }
    // The document takes the new name only once it is there, so that a
    // failed Save As leaves Save pointing at the file that holds it.
    if (!writeDocument(name)) return false;
    if (recentFiles != nullptr) recentFiles->addFile(name);
    return true;
}

QString QcbsMainWindow::askSaveFileName(const QString& proposed) {
    QFileDialog dialog(this, "Save As", proposed, kFileFilter);
    dialog.setObjectName("savefiledialog");
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    // The replace question is the window's own.
    dialog.setOption(QFileDialog::DontConfirmOverwrite);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return QString();
    QString name = dialog.selectedFiles().first();
    // A name typed without an extension under the CIF filter is meant as a CIF.
    if (dialog.selectedNameFilter() == kCifFilter && QFileInfo(name).suffix().isEmpty() &&
        !QFileInfo(name).fileName().isEmpty())
        name += name.endsWith('.') ? "cif" : ".cif";
    return name;
}

bool QcbsMainWindow::writeDocument(const QString& filename) {
    bool widened = false;
    // A big text is written from the worker thread; the window shows how
    // far it got and takes no input meanwhile.
    std::unique_ptr<QProgressDialog> progress;
    if (document_->isLarge()) {
        progress = std::make_unique<QProgressDialog>("Saving " + QFileInfo(filename).fileName() + " ...",
                                                     "Cancel", 0, 1000, this);
        progress->setObjectName("saveprogress");
        progress->setWindowModality(Qt::WindowModal);
        progress->setMinimumDuration(0);
        connect(document_, &QcbsCifDocument::saveProgress, progress.get(),
                [bar = progress.get()](qint64 done, qint64 all) {
                    bar->setValue(all > 0 ? static_cast<int>(done * 1000 / all) : 1000);
                });
        connect(progress.get(), &QProgressDialog::canceled, document_, &QcbsCifDocument::cancelSave);
    }
    const QcbsDocumentSaver::Result result = document_->save(filename, sharedData_->saveBackup(), &widened);
    progress.reset();
    if (result.cancelled) {
        statusBarMessage("Saving cancelled; the file is as it was.");
        return false;
    }
    if (result.backupFailed)
        QMessageBox::warning(this, "Error",
                             "Could not write backup copy of this file:\n" + result.backupName);
    if (!result.saved) {
        debugLine(1, "QcbsMainWindow::fileSave - failed: " + result.error);
        QMessageBox::critical(this, "Error", saveFailureText(filename, result));
        return false;
    }
    if (widened)
        writeToOutputPane("Saved " + quotedHtml(filename) +
                              " as UTF-8: the text holds characters that Latin-1 cannot represent.",
                          true);
    statusLineNumber();
    return true;
}

// --- files changed by other programs ---------------------------------------------------

void QcbsMainWindow::checkDiskFile() {
    if (askingAboutDisk_ || !isActiveWindow() || QApplication::activeModalWidget() != nullptr) return;
    if (!document_->isOpen() || document_->isUntitled() || document_->isLoading() || document_->isSaving())
        return;
    const QcbsFileIdentity::State state = document_->diskState();
    if (state != QcbsFileIdentity::State::Changed && state != QcbsFileIdentity::State::Missing) return;
    // Once for each state of the file: a save asks again.
    const QString name = fileName();
    const QcbsFileIdentity::Stamp stamp = QcbsFileIdentity::Stamp::of(name);
    if (toldName_ == name && toldStamp_ == stamp) return;
    toldName_ = name;
    toldStamp_ = stamp;
    askingAboutDisk_ = true;
    answerDiskChange(state, false);
    askingAboutDisk_ = false;
}

bool QcbsMainWindow::answerDiskChange(QcbsFileIdentity::State state, bool saving) {
    const QString name = fileName();
    const bool modified = document_->isModified();
    if (state == QcbsFileIdentity::State::Missing) {
        const int answer =
            ask(this, QMessageBox::Warning, programQName(),
                "The file " + quoted(name) + " was deleted or moved by another program.",
                {{"Save", QMessageBox::AcceptRole},
                 {"Save as…", QMessageBox::ActionRole},
                 {"Cancel", QMessageBox::RejectRole}},
                saving ? 0 : 2, 2,
                "The text is still here: save it under its name again, save it under another name, or "
                "leave it unsaved for now.");
        if (answer == 0) return writeDocument(name);
        if (answer == 1) return saveDocumentAs();
        // The text is on no disk now: closing asks whether to save it.
        document_->setModified(true);
        return false;
    }
    const int answer = ask(
        this, QMessageBox::Warning, programQName(),
        "The file " + quoted(name) + " was changed by another program.",
        {{"Reload", QMessageBox::ActionRole},
         {"Keep mine", QMessageBox::ActionRole},
         {"Save as…", QMessageBox::ActionRole},
         {"Cancel", QMessageBox::RejectRole}},
        modified ? 3 : 0, 3,
        modified ? "Reload it and lose the edits made here, keep yours and save them over it, or save yours "
                   "under another name?"
                 : "Reload it, keep the text shown here and save it over the file, or save it under another "
                   "name?");
    switch (answer) {
        case 0:
            reloadDocument();
            return false;
        case 1:
            return writeDocument(name);
        case 2:
            return saveDocumentAs();
        default:
            if (saving) statusBarMessage("Not saved: the file was changed by another program.");
            return false;
    }
}

bool QcbsMainWindow::reloadDocument() {
    const QString name = fileName();
    if (document_->isModified()) {
        const int answer =
            ask(this, QMessageBox::Warning, programQName(),
                "Reload " + quoted(name) + " and lose the edits made here?",
                {{"Reload", QMessageBox::DestructiveRole}, {"Cancel", QMessageBox::RejectRole}}, 1, 1);
        if (answer != 0) return false;
    }
    clearDocument();
    if (load(name, false, true)) return true;
    fileNewUntitled();
    return false;
}

// --- close -----------------------------------------------------------------------------

bool QcbsMainWindow::fileClose() {
    QcbsRichTextEdit* editor = currentEditor();
    if (editor == nullptr) return true;
    if (document_->isModified()) {
        const QString name = fileName();
        const QString shown = name.isEmpty()     ? QString("new.cif")
                              : isUntitled(name) ? QFileInfo(name).fileName()
                                                 : QDir::toNativeSeparators(name);
        const int answer = ask(this, QMessageBox::Question, programQName(), "Save changes to current file?",
                               {{"&Yes", QMessageBox::YesRole},
                                {"&No", QMessageBox::NoRole},
                                {"&Cancel", QMessageBox::RejectRole}},
                               0, 2, shown);
        if (answer == 2) return false;
        // A save that fails or is cancelled keeps the document open.
        if (answer == 0 && !saveDocument()) return false;
    }
    clearDocument();
    return true;
}

void QcbsMainWindow::clearDocument() {
    ++loadSerial_;  // a load still running is not finished
    document_->close();
    visSorter_->setDocument(THandle<Cif>());
    errorList_->removeAll();
    resetBlocksCombo();
    loadBoxView();
    enableFileTools(false);
    enableParseTools(false);
    updateCaption();
    statusLineNumber();
}

void QcbsMainWindow::resetBlocksCombo() {
    QComboBox* blocks = blocksCombo();
    blocks->clear();
    blocks->addItem(QcbsMainWindowActions::noBlocksText());
    blocks->setEnabled(false);
}

// --- recent and dropped files ----------------------------------------------------------

void QcbsMainWindow::fileLoadRecent(int index) {
    if (recentFiles == nullptr) return;
    const QString name = recentFiles->filename(index);
    if (name.isEmpty()) return;
    if (!QFileInfo::exists(name)) {
        QMessageBox::critical(this, "Error", "The file " + quoted(name) + " no longer exists.");
        return;
    }
    if (fileAlreadyOpen(name)) {
        QMessageBox::information(this, "Information", "The file " + quoted(name) + " is already open.");
        return;
    }
    fileOpen(name, true);
}

void QcbsMainWindow::processDropEvent(QDropEvent* event) {
    QStringList files;
    if (event->mimeData() != nullptr)
        for (const QUrl& url : event->mimeData()->urls())
            if (url.isLocalFile()) files << url.toLocalFile();
    if (files.isEmpty()) return;
    // The files open once the drop is over: a question asked inside the drop
    // would hold up the program the files were dragged from.
    QTimer::singleShot(0, this, [this, files] { openDroppedFiles(files); });
}

void QcbsMainWindow::openDroppedFiles(const QStringList& files) {
    if (reuseWindow() && files.size() > 1) {
        QMessageBox::information(this, "Information",
                                 "Your preferences are set for single window mode, only one file can be "
                                 "dropped in.");
        return;
    }
    for (const QString& name : files) fileOpen(name, true);
}

// --- print -----------------------------------------------------------------------------

void QcbsMainWindow::filePrint() {
    QcbsRichTextEdit* editor = currentEditor();
    if (editor == nullptr) return;
    if (editor->isLoading()) {
        statusBarMessage("The file is still being read; it can be printed once it is in.");
        return;
    }
    const QString name = fileName();
    const QString title = name.isEmpty()     ? QString("new.cif")
                          : isUntitled(name) ? QFileInfo(name).fileName()
                                             : name;
    QPrinter printer(QPrinter::HighResolution);
    printer.setDocName(QFileInfo(title).fileName());
    QPrintDialog dialog(&printer, this);
    dialog.setObjectName("printdialog");
    if (dialog.exec() != QDialog::Accepted) return;
    const WaitCursor wait;
    const int pages = QcbsDocumentPrinter(title, editor->font()).print(&printer, editor->text());
    if (pages == 0)
        statusBarMessage("Could not print " + title);
    else
        statusBarMessage("Printed " + QString::number(pages) + (pages == 1 ? " page." : " pages."));
}
