// The main window's document operations as a user meets them: opening,
// saving, closing, new documents, recent and dropped files, printing.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>

#include <QAction>
#include <QComboBox>
#include <QDeadlineTimer>
#include <QDir>
#include <QDropEvent>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPrintDialog>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

#include "DialogAnswerer.hpp"
#include "GuiTestSupport.hpp"
#include "MainWindowTestSupport.hpp"
#include "PdfText.hpp"
#include "application/QcbsApplication.hpp"
#include "application/QcbsDocumentSaver.hpp"
#include "editor/QcbsRichTextEdit.hpp"
#include "validation/QcbsErrorListView.hpp"
#include "widgets/RecentFilesMenu.hpp"

namespace {

using A = QcbsMainWindowActions;

template <class Condition>
bool waitUntil(Condition condition, int milliseconds = 20000) {
    const QDeadlineTimer deadline(milliseconds);
    while (!condition()) {
        if (deadline.hasExpired()) return false;
        QTest::qWait(5);
    }
    return true;
}

QByteArray readBytes(const QString& name) {
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

// The main windows other than `window` that are open.
QList<QcbsMainWindow*> otherWindows(const QcbsMainWindow& window) {
    QList<QcbsMainWindow*> others;
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (auto* other = qobject_cast<QcbsMainWindow*>(widget); other != nullptr && other != &window)
            if (other->isVisible()) others << other;
    return others;
}

// A limit on the size of files written: a full disk, for root as well.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) {
        getrlimit(RLIMIT_FSIZE, &saved_);
        previous_ = signal(SIGXFSZ, SIG_IGN);
        rlimit limit = saved_;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &saved_);
        signal(SIGXFSZ, previous_);
    }

private:
    rlimit saved_{};
    sighandler_t previous_;
};

const QByteArray kQuartz =
    "data_quartz\n_cell_length_a 4.9134\n_cell_length_b 4.9134\n_cell_length_c 5.4052\n";

class DocumentWindow : public ::testing::Test {
protected:
    DocumentWindow() {
        QcbsMainWindow::reuse_window = false;
        QcbsMainWindow::start_with_template = false;
        QcbsMainWindow::template_file.clear();
    }
    ~DocumentWindow() override {
        for (QcbsMainWindow* other : otherWindows(window_)) {
            other->currentEditor()->setModified(false);
            other->close();
        }
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QcbsMainWindow::reuse_window = false;
        QcbsMainWindow::start_with_template = false;
        QcbsMainWindow::template_file.clear();
    }

    QString write(const QString& name, const QByteArray& bytes) {
        const QString path = dir_.filePath(name);
        QDir().mkpath(QFileInfo(path).absolutePath());
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
        file.write(bytes);
        return path;
    }
    // Opens a file in the window and waits until it is read and checked.
    void open(const QString& path) {
        window_.fileOpen(path, true);
        ASSERT_TRUE(waitUntil([&] { return !editor()->isLoading(); }));
        ASSERT_EQ(window_.fileName(editor()), path);
    }
    // Types at the end of the text; "\n" is the Return key.
    void type(const QString& text) {
        editor()->moveCursor(QTextCursor::End);
        const QStringList lines = text.split(u'\n');
        for (qsizetype i = 0; i < lines.size(); ++i) {
            if (i > 0) QTest::keyClick(editor(), Qt::Key_Return);
            QTest::keyClicks(editor(), lines.at(i));
        }
    }

    QcbsRichTextEdit* editor() const { return window_.currentEditor(); }
    QString output() const { return window_.outputPane()->toPlainText(); }
    QString status() { return statusMessage(window_); }

    ScopedPrefsDir prefs_;
    QTemporaryDir dir_;
    DialogAnswerer answers_;
    QcbsMainWindow window_{buildTreeSharedData()};
};

// --- opening ---------------------------------------------------------------------------

TEST_F(DocumentWindow, OpeningAFileReadsItLineByLineThenChecksIt) {
    const QString path = write("quartz.cif", kQuartz);
    ScopedLogCapture log(1);
    QSignalSpy loaded(&window_, &QcbsMainWindow::documentLoaded);
    window_.fileOpen(path, true);

    EXPECT_EQ(loaded.count(), 1);
    EXPECT_EQ(editor()->toPlainText(), QString::fromLatin1(kQuartz).chopped(1));
    EXPECT_FALSE(editor()->isModified());
    EXPECT_EQ(window_.windowTitle(), "quartz.cif - Tessary");
    EXPECT_EQ(status(), "Ready");
    EXPECT_FALSE(window_.currentCif().is_null());
    EXPECT_TRUE(windowAction(window_, A::FileSave)->isEnabled());
    EXPECT_EQ(QcbsMainWindow::recentFiles->filename(0), path);
    EXPECT_TRUE(answers_.boxes.isEmpty());

    const QString text = output();
    const qsizetype reading = text.indexOf("Reading CIF \"" + path + "\"");
    const qsizetype read = text.indexOf("Read 4 lines.");
    qsizetype checked = text.indexOf("No errors, warnings or remarks.");
    if (checked < 0) checked = text.indexOf("Total errors");
    EXPECT_GE(reading, 0) << text.toStdString();
    EXPECT_LT(reading, read);
    EXPECT_LT(read, checked);

    const std::string lines = log.text();
    std::size_t at = 0;
    for (const char* step : {"filename: ", "file opened ok ", "creating visualiser view",
                             "copying file text to editor", "setting up UI", "parsing CIF", "successful"}) {
        const std::size_t next = lines.find(std::string("QcbsMainWindow::load - ") + step, at);
        ASSERT_NE(next, std::string::npos) << step << "\n" << lines;
        at = next;
    }
}

TEST_F(DocumentWindow, AFileThatIsNoCifIsLoadedAfterAWarning) {
    const QString path = write("notes.txt", "hello\n");
    window_.fileOpen(path, true);
    ASSERT_EQ(answers_.boxes.size(), 1);
    const DialogAnswerer::Box box = answers_.boxes.first();
    EXPECT_EQ(box.caption, "Warning");
    EXPECT_EQ(box.icon, QMessageBox::Warning);
    EXPECT_EQ(box.text, "File \"" + path + "\" does not appear to be a valid CIF.");
    EXPECT_EQ(box.buttons, QStringList{"Continue"});
    EXPECT_EQ(editor()->toPlainText(), "hello");
    const qsizetype warning =
        output().indexOf("Warning: \"" + path + "\" does not appear to be a valid CIF.");
    EXPECT_GE(warning, 0);
    EXPECT_LT(warning, output().indexOf("Read 1 line."));

    // Without questions the warning is only written.
    QcbsMainWindow quiet(window_.sharedData());
    EXPECT_TRUE(quiet.load(write("more.txt", "x\n"), false, true));
    EXPECT_EQ(answers_.boxes.size(), 1);
    EXPECT_TRUE(quiet.outputPane()->toPlainText().contains("does not appear to be a valid CIF."));
}

TEST_F(DocumentWindow, TheSameFileIsNeverOpenTwice) {
    const QString path = write("quartz.cif", kQuartz);
    open(path);
    EXPECT_FALSE(window_.load(dir_.path() + "/./quartz.cif", true, true));
    ASSERT_EQ(answers_.texts(), QStringList{"That file is already open."});
    EXPECT_EQ(answers_.boxes.first().caption, "Information");

    // Asked for in another window, it is refused before a window is made.
    window_.fileOpen(path, true);
    EXPECT_TRUE(otherWindows(window_).isEmpty());
    EXPECT_EQ(answers_.texts().last(), "The file \"" + path + "\" is already open.");
    EXPECT_EQ(window_.fileName(editor()), path);
}

TEST_F(DocumentWindow, AFileThatCannotBeReadIsReportedAndANewDocumentTakesItsPlace) {
    const QString missing = dir_.filePath("missing.cif");
    window_.fileOpen(missing, true);
    ASSERT_EQ(answers_.boxes.size(), 1);
    EXPECT_EQ(answers_.boxes.first().caption, "Error");
    EXPECT_EQ(answers_.boxes.first().icon, QMessageBox::Critical);
    EXPECT_EQ(answers_.boxes.first().text, "Could not open file \"" + missing + "\"");
    EXPECT_TRUE(QcbsMainWindow::isUntitled(window_.fileName(editor())));

    EXPECT_FALSE(window_.load(dir_.path(), true, true));
    EXPECT_EQ(answers_.texts().last(), "Could not open file \"" + dir_.path() + "\"");
}

TEST_F(DocumentWindow, ABigFileComesInSlicesAndIsCheckedOnceItIsIn) {
    QByteArray big = "data_big\nloop_\n_atom_site_label\n_atom_site_fract_x\n";
    for (int i = 0; i < 40000; ++i) big += "C" + QByteArray::number(i) + " 0.25\n";
    const QString path = write("big.cif", big);
    QSignalSpy loaded(&window_, &QcbsMainWindow::documentLoaded);
    window_.fileOpen(path, true);
    ASSERT_TRUE(editor()->isLoading());
    EXPECT_EQ(status(), "Reading...  ");
    EXPECT_TRUE(output().contains("Read 40004 lines."));
    EXPECT_FALSE(output().contains("Total errors") || output().contains("No errors"));

    // Saving a text that is only partly in would cut the file short.
    window_.fileSave();
    EXPECT_EQ(readBytes(path), big);

    ASSERT_TRUE(loaded.wait(30000));
    EXPECT_EQ(editor()->lines(), 40004);
    EXPECT_EQ(status(), "Ready");
    EXPECT_TRUE(output().contains("Total errors") || output().contains("No errors"));
    EXPECT_FALSE(editor()->isModified());

    // A load overtaken by a close is never finished.
    ASSERT_TRUE(window_.fileClose());
    ASSERT_TRUE(window_.load(path, true, true));
    ASSERT_TRUE(editor()->isLoading());
    ASSERT_TRUE(window_.fileClose());
    QTest::qWait(300);
    EXPECT_EQ(loaded.count(), 1);
    EXPECT_TRUE(editor()->document()->isEmpty());
    EXPECT_TRUE(window_.fileName(editor()).isEmpty());
}

TEST_F(DocumentWindow, FilesHandedToTheProgramOpenInTheFirstWindowThenInNewOnes) {
    window_.fileNew();  // as at start-up
    const QString one = write("one.cif", "data_one\n");
    const QString two = write("two.cif", "data_two\n");
    auto* application = qobject_cast<QcbsApplication*>(QCoreApplication::instance());
    ASSERT_NE(application, nullptr);
    application->open(one);
    application->open(two);
    EXPECT_EQ(window_.fileName(editor()), one);
    const QList<QcbsMainWindow*> others = otherWindows(window_);
    ASSERT_EQ(others.size(), 1);
    EXPECT_EQ(others.first()->fileName(others.first()->currentEditor()), two);
    EXPECT_TRUE(answers_.boxes.isEmpty());
}

// --- saving ----------------------------------------------------------------------------

TEST_F(DocumentWindow, FilesSavedWithoutEditsKeepTheirBytesAndEncoding) {
    const QByteArray latin1 = "data_a\n_publ_author_name 'Cr\xe9pin'\n";
    const QByteArray utf8 = "data_b\n_publ_author_name '\xc3\x85sa'\n";
    for (const QByteArray& bytes : {latin1, utf8}) {
        const QString path = write(bytes == latin1 ? "latin1.cif" : "utf8.cif", bytes);
        open(path);
        window_.fileSave();
        EXPECT_EQ(readBytes(path), bytes);
        ASSERT_TRUE(window_.fileClose());
    }
    EXPECT_TRUE(answers_.boxes.isEmpty());

    // Line ends become line feeds and one trailing blank per line goes.
    const QString crlf = write("crlf.cif", "data_c  \r\n_cell_volume 100\r\n");
    open(crlf);
    window_.fileSave();
    EXPECT_EQ(readBytes(crlf), "data_c \n_cell_volume 100\n");
}

TEST_F(DocumentWindow, ALatin1FileGivenACharacterLatin1LacksIsSavedAsUtf8) {
    const QString path = write("latin1.cif", "data_a\n_publ_author_name 'Cr\xe9pin'\n");
    open(path);
    EXPECT_EQ(window_.documentEncoding(editor()).kind(), QcbsDocumentEncoding::Latin1);
    type("\n_note ");
    editor()->insertPlainText(QString(QChar(0x3b1)));  // typed with a Greek keyboard
    window_.fileSave();
    EXPECT_EQ(readBytes(path), "data_a\n_publ_author_name 'Cr\xc3\xa9pin'\n_note \xce\xb1\n");
    EXPECT_TRUE(output().contains("as UTF-8"));
    EXPECT_EQ(window_.documentEncoding(editor()).kind(), QcbsDocumentEncoding::Utf8);
}

TEST_F(DocumentWindow, SavingWithBackupsKeepsTheOldFileUnderTheBackupName) {
    window_.sharedData()->setSaveBackup(true);
    const QString path = write("a.b/c.cif", kQuartz);
    const QString backup = QcbsDocumentSaver::backupName(path);
    QDir().mkpath(QFileInfo(backup).absolutePath());
    open(path);
    type("\n_cell_volume 113");
    EXPECT_TRUE(window_.statusLine()->text().endsWith("(File Modified)"));
    window_.fileSave();
    window_.sharedData()->setSaveBackup(false);
    EXPECT_TRUE(answers_.boxes.isEmpty());
    EXPECT_EQ(readBytes(backup), kQuartz);
    EXPECT_EQ(readBytes(path), kQuartz + "_cell_volume 113\n");
    EXPECT_FALSE(editor()->isModified());
    EXPECT_FALSE(window_.statusLine()->text().contains("Modified"));
}

TEST_F(DocumentWindow, ABackupThatCannotBeMadeIsReportedAndTheFileStillSaved) {
    window_.sharedData()->setSaveBackup(true);
    const QString path = write("x.d/c.cif", kQuartz);
    const QString backup = QcbsDocumentSaver::backupName(path);
    open(path);
    type("\n_cell_volume 113");
    window_.fileSave();
    window_.sharedData()->setSaveBackup(false);
    ASSERT_EQ(answers_.boxes.size(), 1);
    EXPECT_EQ(answers_.boxes.first().caption, "Error");
    EXPECT_EQ(answers_.boxes.first().icon, QMessageBox::Warning);
    EXPECT_EQ(answers_.boxes.first().text, "Could not write backup copy of this file:\n" + backup);
    EXPECT_EQ(readBytes(path), kQuartz + "_cell_volume 113\n");
}

TEST_F(DocumentWindow, AFailedSaveKeepsTheFileTheTextAndItsModifiedMark) {
    QByteArray text = kQuartz;
    const QString path = write("quartz.cif", text);
    open(path);
    type("\n_note '");
    editor()->insertPlainText(QString(20000, u'x') + "'");
    for (const bool backup : {false, true}) {
        window_.sharedData()->setSaveBackup(backup);
        {
            const FileSizeLimit limit(8192);
            window_.fileSave();
        }
        window_.sharedData()->setSaveBackup(false);
        ASSERT_EQ(answers_.boxes.size(), backup ? 2 : 1);
        EXPECT_EQ(answers_.boxes.last().caption, "Error");
        EXPECT_EQ(answers_.boxes.last().icon, QMessageBox::Critical);
        EXPECT_EQ(answers_.boxes.last().text,
                  "Could not write to this file. Check file permissions, or use 'Save As' to make a copy");
        EXPECT_EQ(readBytes(path), text) << backup;
        // Neither the backup nor the half-written temporary file is left.
        EXPECT_EQ(QDir(dir_.path()).entryList(QDir::Files | QDir::Hidden), QStringList{"quartz.cif"});
        EXPECT_TRUE(editor()->isModified());
        EXPECT_TRUE(editor()->toPlainText().endsWith(QString(20000, u'x') + "'"));
        EXPECT_EQ(window_.fileName(editor()), path);
    }
}

TEST_F(DocumentWindow, ANewDocumentIsSavedThroughSaveAs) {
    window_.fileNew();
    EXPECT_TRUE(QcbsMainWindow::isUntitled(window_.fileName(editor())));
    type("data_new");
    const QString path = dir_.filePath("first.cif");
    answers_.chooseFile(path);
    window_.fileSave();
    EXPECT_EQ(answers_.fileDialogs, QStringList{"savefiledialog"});
    EXPECT_TRUE(answers_.proposals.first().endsWith("/new.cif")) << answers_.proposals.first().toStdString();
    EXPECT_EQ(readBytes(path), "data_new\n");
    EXPECT_EQ(window_.fileName(editor()), path);
    EXPECT_EQ(window_.windowTitle(), "first.cif - Tessary");
    EXPECT_FALSE(editor()->isModified());

    // A file deleted behind the editor's back is saved through Save As too.
    QFile::remove(path);
    answers_.chooseFile(QString());
    window_.fileSave();
    EXPECT_EQ(answers_.fileDialogs.size(), 2);
    EXPECT_EQ(answers_.proposals.last(), path);
    EXPECT_FALSE(QFileInfo::exists(path));
}

TEST_F(DocumentWindow, SaveAsAsksBeforeReplacingAFile) {
    const QString path = write("quartz.cif", kQuartz);
    const QString other = write("other.cif", "data_other\n");
    open(path);
    answers_.chooseFile(other).click("No").chooseFile(QString());
    window_.fileSaveAs();
    ASSERT_EQ(answers_.boxes.size(), 1);
    EXPECT_EQ(answers_.boxes.first().caption, "Tessary");
    EXPECT_EQ(answers_.boxes.first().text, other + " already exists\nDo you want to replace it?");
    EXPECT_EQ(answers_.boxes.first().buttons, (QStringList{"Yes", "No"}));
    EXPECT_EQ(answers_.fileDialogs.size(), 2);  // "No" asks again
    EXPECT_EQ(readBytes(other), "data_other\n");
    EXPECT_EQ(window_.fileName(editor()), path);

    answers_.chooseFile(other).click("Yes");
    window_.fileSaveAs();
    EXPECT_EQ(readBytes(other), kQuartz);
    EXPECT_EQ(window_.fileName(editor()), other);
    EXPECT_EQ(QcbsMainWindow::recentFiles->filename(0), other);
}

TEST_F(DocumentWindow, SaveAsWhereNoFileCanBeWrittenChangesNothing) {
    const QString path = write("quartz.cif", kQuartz);
    open(path);
    type("\n_cell_volume 113");
    const QString plainFile = write("plain", "not a directory\n");
    const QString removed = dir_.filePath("removed");
    QDir().mkpath(removed);
    QDir(removed).removeRecursively();
    for (const QString& target : {plainFile + "/new.cif", removed + "/new.cif"}) {
        answers_.chooseFile(target);
        window_.fileSaveAs();
        EXPECT_EQ(answers_.boxes.last().text, "Could not write to this file (check permissions)");
        EXPECT_EQ(answers_.boxes.last().caption, "Error");
        EXPECT_EQ(window_.fileName(editor()), path);
        EXPECT_TRUE(editor()->isModified());
        EXPECT_EQ(readBytes(path), kQuartz);
    }
    EXPECT_EQ(answers_.boxes.size(), 2);
    EXPECT_EQ(readBytes(plainFile), "not a directory\n");
}

// --- closing ---------------------------------------------------------------------------

TEST_F(DocumentWindow, ClosingAModifiedDocumentAsksWhetherToSaveIt) {
    const QString path = write("quartz.cif", kQuartz);
    open(path);
    type("\n_cell_volume 113");

    answers_.click("Cancel");
    EXPECT_FALSE(window_.fileClose());
    ASSERT_EQ(answers_.boxes.size(), 1);
    EXPECT_EQ(answers_.boxes.first().caption, "Tessary");
    EXPECT_EQ(answers_.boxes.first().text, "Save changes to current file?");
    QStringList buttons = answers_.boxes.first().buttons;
    buttons.sort();
    EXPECT_EQ(buttons, (QStringList{"Cancel", "No", "Yes"}));
    EXPECT_EQ(window_.fileName(editor()), path);
    EXPECT_TRUE(editor()->toPlainText().endsWith("_cell_volume 113"));

    answers_.click("No");
    EXPECT_TRUE(window_.fileClose());
    EXPECT_EQ(readBytes(path), kQuartz);
    EXPECT_TRUE(editor()->document()->isEmpty());
    EXPECT_TRUE(window_.fileName(editor()).isEmpty());
    EXPECT_EQ(window_.windowTitle(), "new.cif - Tessary");
    EXPECT_EQ(window_.blocksCombo()->currentText(), "Blocks:  none");

    open(path);
    type("\n_cell_volume 113");
    answers_.click("Yes");
    EXPECT_TRUE(window_.fileClose());
    EXPECT_EQ(readBytes(path), kQuartz + "_cell_volume 113\n");

    // An unmodified document closes without a question.
    open(path);
    EXPECT_TRUE(window_.fileClose());
    EXPECT_EQ(answers_.boxes.size(), 3);
}

TEST_F(DocumentWindow, ADocumentWhoseSaveFailsOrIsCancelledStaysOpen) {
    window_.fileNew();
    type("data_unsaved");
    answers_.click("Yes").chooseFile(QString());  // Save As cancelled
    EXPECT_FALSE(window_.fileClose());
    EXPECT_EQ(editor()->toPlainText(), "data_unsaved");

    // Closing the window asks the same; Cancel keeps it.
    answers_.click("Cancel");
    EXPECT_FALSE(window_.close());
    EXPECT_TRUE(window_.isVisible());
    answers_.click("No");
    EXPECT_TRUE(window_.close());
}

TEST_F(DocumentWindow, ExitAsksAboutEveryModifiedDocumentAndSavesTheSettings) {
    window_.fileNew();
    type("data_unsaved");
    answers_.click("Cancel");
    window_.fileExit();
    EXPECT_TRUE(window_.isVisible());
    EXPECT_FALSE(QFileInfo::exists(prefs_.iniFile()));

    answers_.click("No");
    window_.fileExit();
    EXPECT_FALSE(window_.isVisible());
    EXPECT_EQ(answers_.texts(),
              (QStringList{"Save changes to current file?", "Save changes to current file?"}));
    EXPECT_TRUE(QFileInfo::exists(prefs_.iniFile()));
}

// --- new documents ---------------------------------------------------------------------

TEST_F(DocumentWindow, NewDocumentsAreUntitledAndOpenAnotherWindowWhileOneIsOpen) {
    window_.fileNew();
    const QString first = window_.fileName(editor());
    ASSERT_TRUE(first.startsWith("x:/dummy/untitled")) << first.toStdString();
    ASSERT_TRUE(first.endsWith(".cif"));
    EXPECT_TRUE(output().contains("Starting new file \"" + first + "\""));
    EXPECT_EQ(window_.blocksCombo()->currentText(), "Blocks:  none");

    window_.fileNew();
    const QList<QcbsMainWindow*> others = otherWindows(window_);
    ASSERT_EQ(others.size(), 1);
    const QString second = others.first()->fileName(others.first()->currentEditor());
    const int number = first.mid(17).chopped(4).toInt();
    EXPECT_EQ(second, "x:/dummy/untitled" + QString::number(number + 1) + ".cif");

    // In single-window mode the new document takes this window's place.
    QcbsMainWindow::reuse_window = true;
    type("data_a");
    answers_.click("No");
    window_.fileNew();
    EXPECT_EQ(otherWindows(window_).size(), 1);
    EXPECT_EQ(answers_.texts(), QStringList{"Save changes to current file?"});
    EXPECT_TRUE(editor()->document()->isEmpty());
    EXPECT_NE(window_.fileName(editor()), first);
}

TEST_F(DocumentWindow, ANewDocumentFromTheTemplateNeverOverwritesTheTemplate) {
    const QByteArray templateText = "data_template\n_journal_name_full ?\n";
    const QString templateFile = write("template.cif", templateText);
    QcbsMainWindow::start_with_template = true;
    QcbsMainWindow::template_file = templateFile;
    const QString recent = QcbsMainWindow::recentFiles->filename(0);
    window_.fileNew();
    ASSERT_TRUE(waitUntil([&] { return !editor()->isLoading(); }));
    EXPECT_EQ(editor()->toPlainText(), QString::fromLatin1(templateText).chopped(1));
    EXPECT_TRUE(QcbsMainWindow::isUntitled(window_.fileName(editor())));
    EXPECT_TRUE(output().contains("(Note, template files are not automatically parsed for errors)"));
    EXPECT_TRUE(window_.parseAllowed(editor()));
    EXPECT_TRUE(windowAction(window_, A::Reparse)->isEnabled());
    EXPECT_EQ(QcbsMainWindow::recentFiles->filename(0), recent);

    type("\n_journal_volume 12");
    answers_.chooseFile(QString());
    window_.fileSave();
    EXPECT_EQ(answers_.fileDialogs, QStringList{"savefiledialog"});
    EXPECT_EQ(readBytes(templateFile), templateText);
    // A second new document may come from the same template.
    QcbsMainWindow::reuse_window = true;
    answers_.click("No");
    window_.fileNew();
    EXPECT_EQ(editor()->toPlainText(), QString::fromLatin1(templateText).chopped(1));
}

TEST_F(DocumentWindow, AMissingTemplateGivesAnEmptyNewDocument) {
    QcbsMainWindow::start_with_template = true;
    QcbsMainWindow::template_file = dir_.filePath("gone.cif");
    window_.fileNew();
    EXPECT_EQ(answers_.texts(), QStringList{"Could not open file \"" + dir_.filePath("gone.cif") + "\""});
    EXPECT_EQ(status(), "Could not open template file");
    EXPECT_TRUE(QcbsMainWindow::isUntitled(window_.fileName(editor())));
}

// --- recent and dropped files ----------------------------------------------------------

TEST_F(DocumentWindow, RecentFilesReopenAndSurviveARestart) {
    const QString path = write("quartz.cif", kQuartz);
    open(path);
    ASSERT_EQ(QcbsMainWindow::recentFiles->filename(0), path);
    window_.fileLoadRecent(0);
    EXPECT_EQ(answers_.texts().last(), "The file \"" + path + "\" is already open.");
    EXPECT_EQ(answers_.boxes.last().caption, "Information");

    ASSERT_TRUE(window_.fileClose());
    window_.fileLoadRecent(0);
    EXPECT_EQ(window_.fileName(editor()), path);

    // Settings are saved when a window closes; a new program reads the list.
    ASSERT_TRUE(window_.close());
    RecentFilesMenu restarted;
    restarted.loadSettings();
    EXPECT_EQ(restarted.filename(0), path);

    QFile::remove(path);
    window_.fileLoadRecent(0);
    EXPECT_EQ(answers_.boxes.last().caption, "Error");
    EXPECT_EQ(answers_.texts().last(), "The file \"" + path + "\" no longer exists.");
}

TEST_F(DocumentWindow, DroppedFilesOpenEachInItsOwnWindow) {
    const QString one = write("one.cif", "data_one\n");
    const QString two = write("two.cif", "data_two\n");
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(one), QUrl::fromLocalFile(two)});
    QWidget* target = editor()->viewport();
    const QPoint at = target->rect().center();
    QDragEnterEvent enter(at, Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &enter);
    QDropEvent drop(at, Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &drop);
    ASSERT_TRUE(drop.isAccepted());
    ASSERT_TRUE(waitUntil([&] { return otherWindows(window_).size() == 1; }));
    EXPECT_EQ(window_.fileName(editor()), one);
    QcbsMainWindow* second = otherWindows(window_).first();
    EXPECT_EQ(second->fileName(second->currentEditor()), two);
    EXPECT_EQ(second->currentEditor()->toPlainText(), "data_two");
}

TEST_F(DocumentWindow, InSingleWindowModeOnlyOneFileMayBeDropped) {
    QcbsMainWindow::reuse_window = true;
    const QString one = write("one.cif", "data_one\n");
    const QString two = write("two.cif", "data_two\n");
    QMimeData both;
    both.setUrls({QUrl::fromLocalFile(one), QUrl::fromLocalFile(two)});
    QDropEvent dropBoth(QPointF(5, 5), Qt::CopyAction, &both, Qt::LeftButton, Qt::NoModifier);
    window_.processDropEvent(&dropBoth);
    ASSERT_TRUE(waitUntil([&] { return !answers_.boxes.isEmpty(); }));
    EXPECT_EQ(
        answers_.texts(),
        QStringList{"Your preferences are set for single window mode, only one file can be dropped in."});
    EXPECT_TRUE(window_.fileName(editor()).isEmpty());

    QMimeData single;
    single.setUrls({QUrl::fromLocalFile(two)});
    QDropEvent dropOne(QPointF(5, 5), Qt::CopyAction, &single, Qt::LeftButton, Qt::NoModifier);
    window_.processDropEvent(&dropOne);
    ASSERT_TRUE(waitUntil([&] { return window_.fileName(editor()) == two; }));
    EXPECT_TRUE(otherWindows(window_).isEmpty());
}

// --- printing --------------------------------------------------------------------------

TEST_F(DocumentWindow, PrintingGoesThroughThePrintDialog) {
    const QString path = write("quartz.cif", kQuartz);
    open(path);
    const QString pdf = dir_.filePath("printed.pdf");
    answers_.setOtherDialogHandler([&](QDialog* dialog) {
        auto* print = qobject_cast<QPrintDialog*>(dialog);
        ASSERT_NE(print, nullptr);
        // The dialog's own choice of printer: a PDF file.
        auto* printers = dialog->findChild<QComboBox*>("printers");
        auto* name = dialog->findChild<QLineEdit*>("filename");
        if (printers == nullptr || name == nullptr) {
            dialog->reject();
            return;
        }
        printers->setCurrentIndex(printers->count() - 1);
        name->setText(pdf);
        dialog->accept();
    });
    window_.filePrint();
    EXPECT_EQ(answers_.otherDialogs, QStringList{"printdialog"});
    if (!QFileInfo::exists(pdf)) GTEST_SKIP() << "this platform's print dialog offers no PDF file";
    EXPECT_EQ(status(), "Printed 1 page.");
    const PdfText text(readBytes(pdf));
    EXPECT_EQ(text.pageCount(), 1);
    EXPECT_TRUE(text.runs().contains(path));
    EXPECT_TRUE(text.runs().contains("data_quartz"));
}

}  // namespace
