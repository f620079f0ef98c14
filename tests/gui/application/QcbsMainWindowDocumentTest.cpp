// SPDX-License-Identifier: GPL-3.0-or-later
// The main window's document operations as a user meets them.
// Opening, saving, closing, new documents, recent and dropped files, printing.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPrintDialog>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>
#include <QUrl>

#include "ApplicationTestSupport.hpp"
#include "DialogAnswerer.hpp"
#include "GuiTestSupport.hpp"
#include "document/QcbsDocumentSaver.hpp"
#include "editor/QcbsRichTextEdit.hpp"
#include "widgets/RecentFilesMenu.hpp"

namespace {

// A limit on the size of files written: a full disk, for root as well.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) : previous_(signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &saved_);
        rlimit limit = saved_;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &saved_);
        signal(SIGXFSZ, previous_);
    }

private:
    sighandler_t previous_;
    rlimit saved_{};
};

const QByteArray kQuartz = "data_quartz\n_cell_length_a 4.9134\n_cell_length_c 5.4052\n";
const QByteArray kEdited = kQuartz + "_cell_volume 113\n";
const QString kSaveQuestion = "Tessary: Save changes to current file?";
const QRegularExpression kCheckDone("No errors|Total errors");

class DocumentWindow : public ::testing::Test {
protected:
    ~DocumentWindow() override {
        for (QcbsMainWindow* other : otherWindows()) {
            other->currentEditor()->setModified(false);
            other->close();
        }
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    // The main windows other than this one that are open.
    QList<QcbsMainWindow*> otherWindows() const {
        QList<QcbsMainWindow*> others;
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (auto* other = qobject_cast<QcbsMainWindow*>(widget);
                other && other != &window_ && other->isVisible())
                others << other;
        return others;
    }
    QString write(const QString& name, const QByteArray& bytes) {
        return writeBytes(dir_.filePath(name), bytes);
    }
    // Opens a file in the window and waits until it is read and checked.
    void open(const QString& path) { openInWindow(window_, path); }
    // Opens the file and types a line at its end (after its last line end).
    void openAndEdit(const QString& path) {
        open(path);
        QTest::keyClick(editor(), Qt::Key_End, Qt::ControlModifier);
        QTest::keyClicks(editor(), "_cell_volume 113");
        QTest::keyClick(editor(), Qt::Key_Return);
    }
    QcbsRichTextEdit* editor() const { return window_.currentEditor(); }
    QString output() const { return window_.outputPane()->toPlainText(); }
    QString fileName() const { return window_.fileName(); }
    void option(void (*change)(QcbsOptions&)) { changeOptions(window_, change); }
    // The caption and text of the last message box.
    QString lastBox() const {
        return answers_.boxes.isEmpty() ? QString()
                                        : answers_.boxes.last().caption + ": " + answers_.boxes.last().text;
    }

    ScopedPrefsDir prefs_;
    QTemporaryDir dir_;
    DialogAnswerer answers_;
    QcbsMainWindow window_{buildTreeSharedData()};
};

// --- opening ---------------------------------------------------------------------------

TEST_F(DocumentWindow, OpeningAFileReadsItThenChecksIt) {
    const QString path = write("quartz.cif", kQuartz);
    open(path);
    EXPECT_EQ(editor()->toPlainText(), QString::fromLatin1(kQuartz));
    EXPECT_FALSE(editor()->isModified());
    EXPECT_EQ(shownTitle(window_), "quartz.cif - Tessary");
    EXPECT_EQ(statusMessage(window_), "Ready");
    EXPECT_TRUE(answers_.boxes.isEmpty());
    const qsizetype reading = output().indexOf("Reading CIF \"" + path + "\"");
    EXPECT_GE(reading, 0) << output().toStdString();
    EXPECT_LT(reading, output().indexOf("Read 3 lines."));
    EXPECT_LT(output().indexOf("Read 3 lines."), output().indexOf(kCheckDone));
}

TEST_F(DocumentWindow, AFileThatIsNoCifIsLoadedAfterAWarning) {
    const QString path = write("notes.txt", "hello\n");
    answers_.click("Continue");
    window_.fileOpen(path, true);
    EXPECT_EQ(lastBox(), "Warning: File \"" + path + "\" does not appear to be a valid CIF.");
    EXPECT_EQ(answers_.boxes.last().icon, QMessageBox::Warning);
    const QStringList buttons = answers_.boxes.last().buttons;
    EXPECT_EQ(QSet<QString>(buttons.begin(), buttons.end()), (QSet<QString>{"Continue", "Cancel"}));
    EXPECT_EQ(editor()->toPlainText(), "hello\n");
    const qsizetype warning =
        output().indexOf("Warning: \"" + path + "\" does not appear to be a valid CIF.");
    EXPECT_GE(warning, 0);
    EXPECT_LT(warning, output().indexOf("Read 1 line."));
    // Without questions the warning is only written.
    QcbsMainWindow quiet(window_.sharedData());
    EXPECT_TRUE(quiet.load(write("more.txt", "x\n"), false, true));
    EXPECT_EQ(answers_.boxes.size(), 1);
}

// Cancel leaves the window as it was: its document, its text, its output.
TEST_F(DocumentWindow, AFileThatIsNoCifIsNotLoadedWhenTheWarningIsCancelled) {
    const QString path = write("quartz.cif", kQuartz);
    const QString notes = write("notes.txt", "hello\n");
    for (const bool reuse : {true, false}) {
        SCOPED_TRACE(reuse ? "this window" : "a new window");
        changeOptions(window_, [&](QcbsOptions& o) { o.reuse_window = reuse; });
        openAndEdit(path);
        const QString before = output();
        const qsizetype boxes = answers_.boxes.size();
        answers_.click("Cancel");
        window_.fileOpen(notes, true);
        ASSERT_EQ(answers_.boxes.size(), boxes + 1);
        EXPECT_EQ(lastBox(), "Warning: File \"" + notes + "\" does not appear to be a valid CIF.");
        EXPECT_EQ(fileName(), path);
        EXPECT_EQ(editor()->bytes(), kEdited);
        EXPECT_TRUE(editor()->isModified());
        EXPECT_EQ(output(), before);
        EXPECT_TRUE(waitUntil([&] { return otherWindows().isEmpty(); })) << "no window is left behind";
        editor()->setModified(false);
        ASSERT_TRUE(window_.fileClose());
    }
    changeOptions(window_, [&](QcbsOptions& o) { o.reuse_window = false; });
}

TEST_F(DocumentWindow, FilesThatCannotBeReadOrAreOpenAlreadyAreRefusedWithAMessage) {
    const QString missing = dir_.filePath("missing.cif");
    window_.fileOpen(missing, true);
    EXPECT_EQ(lastBox(), "Error: Could not open file \"" + missing + "\"");
    EXPECT_EQ(answers_.boxes.last().icon, QMessageBox::Critical);
    EXPECT_TRUE(QcbsMainWindow::isUntitled(fileName())) << "a new document takes its place";
    EXPECT_FALSE(window_.load(dir_.path(), true, true));
    EXPECT_EQ(lastBox(), "Error: Could not open file \"" + dir_.path() + "\"");

    const QString path = write("quartz.cif", kQuartz);
    open(path);
    EXPECT_FALSE(window_.load(dir_.path() + "/./quartz.cif", true, true));
    EXPECT_EQ(lastBox(), "Information: That file is already open.");
    // Asked for in another window, it is refused before a window is made.
    window_.fileOpen(path, true);
    EXPECT_TRUE(otherWindows().isEmpty());
    EXPECT_EQ(lastBox(), "Information: The file \"" + path + "\" is already open.");
}

TEST_F(DocumentWindow, ABigFileComesInSlicesAndIsCheckedOnceItIsIn) {
    QByteArray big = "data_big\nloop_\n_atom_site_label\n_atom_site_fract_x\n";
    for (int i = 0; i < 100000; ++i) big += "C" + QByteArray::number(i) + " 0.25\n";  // 1.3 MB
    const QString path = write("big.cif", big);
    QSignalSpy loaded(&window_, &QcbsMainWindow::documentLoaded);
    window_.fileOpen(path, true);
    ASSERT_TRUE(editor()->isLoading());
    EXPECT_EQ(statusMessage(window_), "Reading...  ");
    // Text coming in from the file is no change of the user's.
    QStringList modifiedMarks;
    const auto noteMarks = [&] {
        if (window_.statusLine()->text().contains("Modified") || window_.isWindowModified())
            modifiedMarks << window_.statusLine()->text() + " | " + shownTitle(window_);
    };
    QTimer sampler;
    QObject::connect(&sampler, &QTimer::timeout, noteMarks);
    sampler.start(1);
    noteMarks();
    EXPECT_FALSE(output().contains(kCheckDone));
    window_.fileSave();
    EXPECT_EQ(readBytes(path), big) << "a text only partly in is not saved";

    ASSERT_TRUE(loaded.wait(30000));
    sampler.stop();
    noteMarks();
    EXPECT_EQ(modifiedMarks, QStringList());
    // 100,004 lines and the empty one after the last line end.
    EXPECT_EQ(editor()->lines(), 100005);
    EXPECT_EQ(statusMessage(window_), "Ready");
    // The count as a reader gives it, before the check's messages (the
    // check runs on the worker thread).
    ASSERT_TRUE(waitUntil([this] { return output().contains(kCheckDone); }, 30000));
    const qsizetype count = output().indexOf("Read 100004 lines.");
    EXPECT_GE(count, 0);
    EXPECT_GT(output().indexOf(kCheckDone), count);
    EXPECT_FALSE(editor()->isModified());

    // A load overtaken by a close is never finished.
    ASSERT_TRUE(window_.fileClose());
    ASSERT_TRUE(window_.load(path, true, true));
    ASSERT_TRUE(window_.fileClose());
    QTest::qWait(300);
    EXPECT_EQ(loaded.count(), 1);
    EXPECT_TRUE((editor()->byteLength() == 0));
    EXPECT_TRUE(fileName().isEmpty());
}

// --- saving ----------------------------------------------------------------------------

TEST_F(DocumentWindow, AFileSavedKeepsItsEncodingUnlessACharacterNeedsUtf8) {
    // Other encodings and line ends go the same way: see the document-file tests.
    const QByteArray latin1 = "data_a\n_publ_author_name 'Cr\xe9pin'\n";
    const QString path = write("latin1.cif", latin1);
    open(path);
    QTest::keyClick(editor(), Qt::Key_End, Qt::ControlModifier);
    QTest::keyClick(editor(), Qt::Key_X);
    QTest::keyClick(editor(), Qt::Key_Backspace);
    window_.fileSave();
    EXPECT_EQ(readBytes(path), latin1);
    editor()->setCursorPosition(1, editor()->paragraphLength(1));
    editor()->insertPlainText(QString(QChar(0x3b1)));  // typed with a Greek keyboard
    window_.fileSave();
    EXPECT_EQ(readBytes(path), "data_a\n_publ_author_name 'Cr\xc3\xa9pin'\xce\xb1\n");
    EXPECT_TRUE(output().contains("as UTF-8"));
    EXPECT_EQ(window_.document()->encoding().kind(), QcbsDocumentEncoding::Utf8);
    EXPECT_TRUE(answers_.boxes.isEmpty());
}

TEST_F(DocumentWindow, WithBackupsTheOldFileKeepsTheBackupNameAndABackupThatFailsIsReported) {
    changeOptions(window_, [&](QcbsOptions& o) { o.save_backup = true; });
    for (const QString name : {"a.b/c.cif", "x.d/c.cif"}) {
        const QString path = write(name, kQuartz);
        const QString backup = QcbsDocumentSaver::backupName(path);
        const bool backupPossible = name.startsWith("a");
        if (backupPossible) writeBytes(backup, "older\n");
        const QFile::Permissions mode = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup;
        QFile::setPermissions(path, mode);
        openAndEdit(path);
        EXPECT_TRUE(window_.statusLine()->text().endsWith("(File Modified)"));
        window_.fileSave();
        EXPECT_EQ(readBytes(path), kEdited);
        EXPECT_FALSE(window_.statusLine()->text().contains("Modified"));
        EXPECT_EQ(QFile::permissions(path) & QFile::Permissions(0x7077), mode);  // owner, group, other
        EXPECT_EQ(readBytes(backup), backupPossible ? kQuartz : QByteArray("<missing>"));
        EXPECT_EQ(QDir(QFileInfo(path).path()).entryList(QDir::Files | QDir::Hidden), QStringList{"c.cif"})
            << "no temporary file is left";
        EXPECT_EQ(answers_.boxes.size(), backupPossible ? 0 : 1);
        ASSERT_TRUE(window_.fileClose());
    }
    changeOptions(window_, [&](QcbsOptions& o) { o.save_backup = false; });
    EXPECT_EQ(lastBox(), "Error: Could not write backup copy of this file:\n" +
                             QcbsDocumentSaver::backupName(dir_.filePath("x.d/c.cif")));
    EXPECT_EQ(answers_.boxes.last().icon, QMessageBox::Warning);
}

TEST_F(DocumentWindow, AFailedSaveKeepsTheFileTheTextAndItsModifiedMark) {
    const QString path = write("quartz.cif", kQuartz);
    open(path);
    QTest::keyClick(editor(), Qt::Key_End, Qt::ControlModifier);
    editor()->insertPlainText("_note '" + QString(20000, u'x') + "'");
    for (const bool backup : {false, true}) {
        changeOptions(window_, [&](QcbsOptions& o) { o.save_backup = backup; });
        {
            const FileSizeLimit diskFull(8192);
            window_.fileSave();
        }
        changeOptions(window_, [&](QcbsOptions& o) { o.save_backup = false; });
        ASSERT_EQ(answers_.boxes.size(), backup ? 2 : 1);
        EXPECT_EQ(
            lastBox(),
            "Error: Could not write to this file: there is no space left on the device. Free some space, "
            "or use 'Save As' to make a copy");
        EXPECT_EQ(answers_.boxes.last().icon, QMessageBox::Critical);
        EXPECT_EQ(readBytes(path), kQuartz) << backup;
        EXPECT_EQ(QDir(dir_.path()).entryList(QDir::Files | QDir::Hidden), QStringList{"quartz.cif"})
            << "no backup or temporary file is left";
        EXPECT_TRUE(editor()->isModified());
        EXPECT_TRUE(editor()->toPlainText().endsWith(QString(20000, u'x') + "'"));
    }
}

TEST_F(DocumentWindow, ANewDocumentOrOneWhoseFileIsGoneIsSavedThroughSaveAs) {
    window_.fileNew();
    QTest::keyClicks(editor(), "data_new");
    const QString path = dir_.filePath("first.cif");
    answers_.chooseFile(path);
    window_.fileSave();
    EXPECT_EQ(answers_.proposals.size(), 1);
    EXPECT_TRUE(answers_.proposals.first().endsWith("/new.cif")) << answers_.proposals.first().toStdString();
    EXPECT_EQ(readBytes(path), "data_new\n");
    EXPECT_EQ(shownTitle(window_), "first.cif - Tessary");
    EXPECT_FALSE(editor()->isModified());

    QFile::remove(path);
    answers_.click("Save as…");
    window_.fileSave();  // the dialog is cancelled
    EXPECT_EQ(lastBox(), "Tessary: The file \"" + path + "\" was deleted or moved by another program.");
    EXPECT_EQ(answers_.proposals.value(1), path);
    EXPECT_FALSE(QFileInfo::exists(path));
}

TEST_F(DocumentWindow, SaveAsChangesNothingWhereItCannotWriteAndAsksBeforeReplacingAFile) {
    const QString path = write("quartz.cif", kQuartz);
    openAndEdit(path);
    const QString plainFile = write("plain", "not a directory\n");
    const QString removed = dir_.filePath("removed");
    QDir().mkpath(removed);
    QDir(removed).removeRecursively();
    for (const QString& target : {plainFile + "/new.cif", removed + "/new.cif"}) {
        answers_.chooseFile(target);
        window_.fileSaveAs();
        EXPECT_EQ(lastBox(), "Error: Could not write to this file (check permissions)");
        EXPECT_EQ(fileName(), path);
        EXPECT_TRUE(editor()->isModified());
        EXPECT_EQ(readBytes(path), kQuartz);
    }
    EXPECT_EQ(readBytes(plainFile), "not a directory\n");

    const QString other = write("other.cif", "data_other\n");
    answers_.chooseFile(other).click("No").chooseFile(QString());  // "No" asks again
    window_.fileSaveAs();
    EXPECT_EQ(lastBox(), "Tessary: " + other + " already exists\nDo you want to replace it?");
    EXPECT_EQ(answers_.boxes.last().buttons, (QStringList{"Yes", "No"}));
    EXPECT_EQ(answers_.proposals.size(), 4);
    EXPECT_EQ(readBytes(other), "data_other\n");
    answers_.chooseFile(other).click("Yes");
    window_.fileSaveAs();
    EXPECT_EQ(readBytes(other), kEdited);
    EXPECT_EQ(fileName(), other);
    EXPECT_EQ(QcbsMainWindow::recentFiles->filename(0), other);
}

TEST_F(DocumentWindow, SaveAsGivesANameTypedWithoutExtensionUnderTheCifFilterTheExtensionCif) {
    struct Case {
        const char* typed;
        const char* filter;  // empty: the dialog's first, CIF
        const char* saved;
    };
    const Case cases[] = {
        {"report", "", "report.cif"},
        {"draft.", "", "draft.cif"},
        {"notes.txt", "", "notes.txt"},
        {"plain", "All Files (*)", "plain"},
    };
    for (const Case& c : cases) {
        window_.fileNew();
        QTest::keyClicks(editor(), "data_a");
        answers_.chooseFile(dir_.filePath(c.typed)).chooseFilter(c.filter);
        window_.fileSaveAs();
        EXPECT_EQ(fileName(), dir_.filePath(c.saved)) << c.typed;
        EXPECT_EQ(readBytes(dir_.filePath(c.saved)), "data_a\n") << c.typed;
        ASSERT_TRUE(window_.fileClose());
    }
    EXPECT_FALSE(QFileInfo::exists(dir_.filePath("report"))) << "no file without the extension";
    // The name with its extension is the one asked about when it exists.
    window_.fileNew();
    QTest::keyClicks(editor(), "data_b");
    answers_.chooseFile(dir_.filePath("report")).click("Yes");
    window_.fileSaveAs();
    EXPECT_EQ(lastBox(),
              "Tessary: " + dir_.filePath("report.cif") + " already exists\nDo you want to replace it?");
    EXPECT_EQ(readBytes(dir_.filePath("report.cif")), "data_b\n");
}

// --- closing ---------------------------------------------------------------------------

TEST_F(DocumentWindow, ClosingAModifiedDocumentAsksWhetherToSaveIt) {
    const QString path = write("quartz.cif", kQuartz);
    openAndEdit(path);
    answers_.click("Cancel");
    EXPECT_FALSE(window_.fileClose());
    EXPECT_EQ(lastBox(), kSaveQuestion);
    EXPECT_EQ(answers_.boxes.last().detail, path) << "the question names the file";
    // Each button can be pressed with Alt and its letter.
    EXPECT_EQ(QSet<QString>(answers_.boxes.last().labels.begin(), answers_.boxes.last().labels.end()),
              (QSet<QString>{"&Yes", "&No", "&Cancel"}));
    EXPECT_EQ(fileName(), path);
    EXPECT_TRUE(editor()->isModified());

    answers_.click("No");
    EXPECT_TRUE(window_.fileClose());
    EXPECT_EQ(readBytes(path), kQuartz);
    EXPECT_TRUE((editor()->byteLength() == 0));
    EXPECT_TRUE(fileName().isEmpty());
    EXPECT_EQ(shownTitle(window_), "new.cif - Tessary");
    EXPECT_EQ(window_.blocksCombo()->currentText(), "Blocks:  none");

    openAndEdit(path);
    answers_.click("Yes");
    EXPECT_TRUE(window_.fileClose());
    EXPECT_EQ(readBytes(path), kEdited);
    open(path);
    EXPECT_TRUE(window_.fileClose()) << "unmodified: no question";
    EXPECT_EQ(answers_.boxes.size(), 3);
}

TEST_F(DocumentWindow, AWindowWhoseDocumentIsNotSavedStaysOpenAndExitSavesTheSettings) {
    window_.fileNew();
    QTest::keyClicks(editor(), "data_unsaved");
    answers_.click("Yes").chooseFile(QString());  // Save As cancelled
    EXPECT_FALSE(window_.fileClose());
    answers_.click("Cancel");
    EXPECT_FALSE(window_.close());
    answers_.click("Cancel");
    window_.fileExit();
    EXPECT_TRUE(window_.isVisible());
    EXPECT_EQ(editor()->toPlainText(), "data_unsaved");
    EXPECT_FALSE(QFileInfo::exists(prefs_.iniFile()));

    answers_.click("No");
    window_.fileExit();
    EXPECT_FALSE(window_.isVisible());
    EXPECT_EQ(answers_.boxes.size(), 4);
    EXPECT_EQ(lastBox(), kSaveQuestion);
    EXPECT_TRUE(QFileInfo::exists(prefs_.iniFile()));
}

// --- new documents ---------------------------------------------------------------------

TEST_F(DocumentWindow, NewDocumentsAreUntitledAndOpenAnotherWindowUnlessInSingleWindowMode) {
    window_.fileNew();
    const QString first = fileName();
    ASSERT_TRUE(first.startsWith("x:/dummy/untitled") && first.endsWith(".cif")) << first.toStdString();
    EXPECT_TRUE(output().contains("Starting new file \"" + first + "\""));
    window_.fileNew();
    ASSERT_EQ(otherWindows().size(), 1);
    const int number = first.mid(17).chopped(4).toInt();
    EXPECT_EQ(otherWindows().first()->fileName(), "x:/dummy/untitled" + QString::number(number + 1) + ".cif");

    option([](QcbsOptions& o) { o.reuse_window = true; });
    QTest::keyClicks(editor(), "data_a");
    answers_.click("No");
    window_.fileNew();
    EXPECT_EQ(otherWindows().size(), 1);
    EXPECT_EQ(lastBox(), kSaveQuestion);
    EXPECT_TRUE((editor()->byteLength() == 0));
    EXPECT_NE(fileName(), first);
}

TEST_F(DocumentWindow, ANewDocumentFromTheTemplateNeverOverwritesTheTemplate) {
    const QString gone = dir_.filePath("gone.cif");
    changeOptions(window_, [&](QcbsOptions& o) {
        o.start_with_template = o.reuse_window = true;
        o.template_file = gone;
    });
    window_.fileNew();
    EXPECT_EQ(lastBox(), "Error: Could not open file \"" + gone + "\"");
    EXPECT_EQ(statusMessage(window_), "Could not open template file");
    EXPECT_TRUE(QcbsMainWindow::isUntitled(fileName()));

    const QByteArray templateText = "data_template\n_journal_name_full ?\n";
    const QString templateFile = write("template.cif", templateText);
    changeOptions(window_, [&](QcbsOptions& o) { o.template_file = templateFile; });
    const QString recent = QcbsMainWindow::recentFiles->filename(0);
    window_.fileNew();
    ASSERT_TRUE(waitUntil([&] { return !editor()->isLoading(); }));
    EXPECT_EQ(editor()->toPlainText(), QString::fromLatin1(templateText));
    EXPECT_TRUE(QcbsMainWindow::isUntitled(fileName()));
    EXPECT_TRUE(output().contains("(Note, template files are not automatically parsed for errors)"));
    EXPECT_TRUE(windowAction(window_, QcbsMainWindowActions::Reparse)->isEnabled());
    EXPECT_EQ(QcbsMainWindow::recentFiles->filename(0), recent);
    QTest::keyClicks(editor(), "#");
    window_.fileSave();  // Save As, cancelled
    EXPECT_EQ(answers_.proposals.size(), 1);
    EXPECT_EQ(readBytes(templateFile), templateText);
}

// --- recent and dropped files ----------------------------------------------------------

TEST_F(DocumentWindow, RecentFilesReopenAndSurviveARestart) {
    const QString path = write("quartz.cif", kQuartz);
    open(path);
    ASSERT_TRUE(window_.fileClose());
    window_.fileLoadRecent(0);
    EXPECT_EQ(fileName(), path);

    // Settings are saved when a window closes; a new program reads the list.
    ASSERT_TRUE(window_.close());
    RecentFilesMenu restarted;
    restarted.loadSettings();
    EXPECT_EQ(restarted.filename(0), path);
    QFile::remove(path);
    window_.fileLoadRecent(0);
    EXPECT_EQ(lastBox(), "Error: The file \"" + path + "\" no longer exists.");
}

TEST_F(DocumentWindow, DroppedFilesOpenInWindowsOfTheirOwnOrOneAtATimeAndDroppedTextIsNeverInserted) {
    QWidget* target = editor()->viewport();
    const auto drop = [&](const QStringList& files, const QString& text = QString()) {
        QMimeData data;
        for (const QString& file : files)
            data.setUrls(data.urls() << QUrl::fromLocalFile(write(file, "data_x\n")));
        if (!text.isNull()) data.setText(text);
        const QPoint at = target->rect().center();
        QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(target, &enter);
        QDropEvent drop(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(target, &drop);
        return enter.isAccepted() && drop.isAccepted();
    };
    EXPECT_FALSE(drop({}, "_dropped_text 1"));
    EXPECT_TRUE((editor()->byteLength() == 0));

    option([](QcbsOptions& o) { o.reuse_window = true; });
    ASSERT_TRUE(drop({"one.cif", "two.cif"}));
    ASSERT_TRUE(waitUntil([&] { return !answers_.boxes.isEmpty(); }));
    EXPECT_EQ(
        lastBox(),
        "Information: Your preferences are set for single window mode, only one file can be dropped in.");
    EXPECT_TRUE(fileName().isEmpty());
    ASSERT_TRUE(drop({"one.cif"}));
    ASSERT_TRUE(waitUntil([&] { return fileName() == dir_.filePath("one.cif"); }));
    EXPECT_TRUE(otherWindows().isEmpty());

    option([](QcbsOptions& o) { o.reuse_window = false; });
    ASSERT_TRUE(window_.fileClose());
    ASSERT_TRUE(drop({"two.cif", "three.cif"}));
    ASSERT_TRUE(waitUntil([&] { return otherWindows().size() == 1; }));
    EXPECT_EQ(fileName(), dir_.filePath("two.cif"));
    EXPECT_EQ(otherWindows().first()->fileName(), dir_.filePath("three.cif"));
}

// --- printing --------------------------------------------------------------------------

TEST_F(DocumentWindow, PrintingThroughThePrintDialogToAPdfFileGivesTheText) {
    if (!havePdfToText()) GTEST_SKIP() << "pdftotext (poppler-utils) is needed to read the printed PDF";
    const QString path = write("quartz.cif", kQuartz);
    open(path);
    const QString pdf = dir_.filePath("printed.pdf");
    QStringList dialogs;
    answers_.otherHandler = [&](QDialog* dialog) {
        dialogs << dialog->objectName();
        // The dialog's own choice of printer: a PDF file.
        auto* printers = dialog->findChild<QComboBox*>("printers");
        auto* name = dialog->findChild<QLineEdit*>("filename");
        if (qobject_cast<QPrintDialog*>(dialog) == nullptr || printers == nullptr || name == nullptr)
            return dialog->reject();
        printers->setCurrentIndex(printers->count() - 1);
        name->setText(pdf);
        dialog->accept();
    };
    window_.filePrint();
    EXPECT_EQ(dialogs, QStringList{"printdialog"});
    if (!QFileInfo::exists(pdf)) GTEST_SKIP() << "this platform's print dialog offers no PDF file";
    EXPECT_EQ(statusMessage(window_), "Printed 1 page.");
    const QString text = pdfText(pdf);
    EXPECT_EQ(text.count(u'\f'), 1);
    EXPECT_TRUE(text.contains(path));
    EXPECT_TRUE(text.simplified().contains(QString::fromLatin1(kQuartz).simplified())) << text.toStdString();
}

}  // namespace
