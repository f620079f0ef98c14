// SPDX-License-Identifier: GPL-3.0-or-later
// Files changed, deleted or moved by other programs while a window has them open.
#include <gtest/gtest.h>

#include <QFile>
#include <QSet>
#include <QSignalSpy>
#include <QTemporaryDir>

#include "ApplicationTestSupport.hpp"
#include "DialogAnswerer.hpp"
#include "GuiTestSupport.hpp"
#include "document/QcbsCifDocument.hpp"
#include "editor/QcbsRichTextEdit.hpp"

namespace {

const QByteArray kQuartz = "data_quartz\n_cell_length_a 4.9134\n_cell_length_c 5.4052\n";
const QByteArray kTheirs = kQuartz + "_cell_angle_gamma 120\n";  // appended by another program
const QByteArray kMine = kQuartz + "_cell_volume 113\n";         // typed in the window
const QString kChanged = "Tessary: The file \"%1\" was changed by another program.";
const QString kGone = "Tessary: The file \"%1\" was deleted or moved by another program.";
const QSet<QString> kChangedButtons{"Reload", "Keep mine", "Save as…", "Cancel"};

// Changes the file as another program would, behind the window's back.
void append(const QString& name, const QByteArray& bytes) {
    QFile file(name);
    ASSERT_TRUE(file.open(QIODevice::Append));
    ASSERT_EQ(file.write(bytes), bytes.size());
}

class DiskChange : public ::testing::Test {
protected:
    ~DiskChange() override { window_.currentEditor()->setModified(false); }

    void open(const QString& path) { openInWindow(window_, path); }
    // Types a line at the end of the text.
    void type(const QString& line) {
        QTest::keyClick(editor(), Qt::Key_End, Qt::ControlModifier);
        QTest::keyClicks(editor(), line);
        QTest::keyClick(editor(), Qt::Key_Return);
    }
    void activate() {
        window_.show();
        window_.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window_));
    }
    QcbsRichTextEdit* editor() const { return window_.currentEditor(); }
    // The buttons of a question, in whatever order the platform shows them.
    QSet<QString> buttons(int index) const {
        const QStringList& shown = answers_.boxes.at(index).buttons;
        return QSet<QString>(shown.begin(), shown.end());
    }
    QString boxText(int index) const {
        const DialogAnswerer::Box& box = answers_.boxes.at(index);
        return box.caption + ": " + box.text;
    }

    ScopedPrefsDir prefs_;
    QTemporaryDir dir_;
    QString path_ = writeBytes(dir_.filePath("quartz.cif"), kQuartz);
    DialogAnswerer answers_;
    QcbsMainWindow window_{buildTreeSharedData()};
};

// Open, another program appends, type, save: the user is asked, and each
// answer does what it says, byte for byte.
TEST_F(DiskChange, SavingOverAFileAnotherProgramChangedAsksFirstAndEachAnswerDoesWhatItSays) {
    struct Case {
        QStringList answers;  // to the question, then to the confirmation a reload asks for
        QByteArray file;      // the file afterwards
        QByteArray text;      // the window's text afterwards
        bool modified;        // the window's text afterwards
        QString nameAfter;    // the document's file afterwards (empty: the same)
        int boxes;            // questions asked, a confirmation included
    };
    const QString copy = dir_.filePath("copy.cif");
    const QList<Case> cases{
        {{"Cancel"}, kTheirs, kMine, true, "", 1},
        {{"Keep mine"}, kMine, kMine, false, "", 1},
        {{"Save as…"}, kTheirs, kMine, false, copy, 1},
        {{"Reload", "Reload"}, kTheirs, kTheirs, false, "", 2},
        {{"Reload", "Cancel"}, kTheirs, kMine, true, "", 2},  // a reload not confirmed keeps the edits
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.answers.join(", ").toStdString());
        answers_.boxes.clear();
        writeBytes(path_, kQuartz);
        QFile::remove(copy);
        open(path_);
        append(path_, kTheirs.mid(kQuartz.size()));
        type("_cell_volume 113");
        for (const QString& answer : c.answers) answers_.click(answer);
        if (c.answers.first() == "Save as…") answers_.chooseFile(copy);
        window_.fileSave();
        ASSERT_GE(answers_.boxes.size(), 1) << "saved over the other program's change without a question";
        EXPECT_EQ(boxText(0), kChanged.arg(path_));
        EXPECT_EQ(buttons(0), kChangedButtons);
        EXPECT_TRUE(waitUntil([&] { return !editor()->isLoading(); }));
        ASSERT_EQ(answers_.boxes.size(), c.boxes);
        if (c.boxes == 2) {
            EXPECT_EQ(boxText(1), "Tessary: Reload \"" + path_ + "\" and lose the edits made here?");
        }
        EXPECT_EQ(readBytes(path_), c.file);
        EXPECT_EQ(editor()->bytes(), c.text);
        EXPECT_EQ(editor()->isModified(), c.modified);
        EXPECT_EQ(window_.fileName(), c.nameAfter.isEmpty() ? path_ : c.nameAfter);
        if (!c.nameAfter.isEmpty()) {
            EXPECT_EQ(readBytes(c.nameAfter), kMine);
        }
        // Once settled, the next save goes without a question.
        if (!c.modified) {
            type("_cell_measurement_temperature 293");
            window_.fileSave();
            EXPECT_EQ(answers_.boxes.size(), c.boxes);
            EXPECT_EQ(readBytes(window_.fileName()), editor()->bytes());
        }
        editor()->setModified(false);
        ASSERT_TRUE(window_.fileClose());
    }
}

// The document's own saves replace the file by renaming a new one over it:
// no question, however often, with or without backups, small or large. An
// outside change after them is the first and only thing asked about (the
// watcher's notices come in order).
TEST_F(DiskChange, TheDocumentsOwnSavesNeverAskButTheNextOutsideChangeDoes) {
    const QByteArray large = kQuartz + "_note\n;\n" + QByteArray(2 * 1024 * 1024, 'x') + "\n;\n";
    for (const bool big : {false, true}) {
        for (const bool backup : {false, true}) {
            SCOPED_TRACE(std::to_string(big) + " " + std::to_string(backup));
            answers_.boxes.clear();
            changeOptions(window_, [&](QcbsOptions& o) { o.save_backup = backup; });
            writeBytes(path_, big ? large : kQuartz);
            open(path_);
            activate();
            for (int i = 0; i < 3; ++i) {
                type("_cell_volume " + QString::number(110 + i));
                window_.fileSave();
                EXPECT_FALSE(editor()->isModified());
            }
            EXPECT_EQ(readBytes(path_), editor()->bytes());
            activate();  // the progress of a large save took it
            append(path_, "# theirs\n");
            answers_.click("Cancel");
            ASSERT_TRUE(waitUntil([&] { return !answers_.boxes.isEmpty(); }));
            EXPECT_EQ(boxText(0), kChanged.arg(path_));
            // The same state of the file is not asked about twice, however
            // often the window is activated; a save asks again.
            type("_cell_volume 120");
            answers_.click("Keep mine");
            window_.fileSave();
            EXPECT_EQ(answers_.boxes.size(), 2) << "a save asks again";
            EXPECT_EQ(readBytes(path_), editor()->bytes());
            ASSERT_TRUE(window_.fileClose());
        }
    }
    changeOptions(window_, [&](QcbsOptions& o) { o.save_backup = false; });
}

TEST_F(DiskChange, AnUnmodifiedDocumentWhoseFileChangedIsReloadedAfterAsking) {
    open(path_);
    activate();
    answers_.click("Reload");
    append(path_, kTheirs.mid(kQuartz.size()));
    ASSERT_TRUE(waitUntil([&] { return editor()->bytes() == kTheirs; }));
    EXPECT_EQ(answers_.boxes.size(), 1) << "nothing was lost: no confirmation";
    EXPECT_EQ(boxText(0), kChanged.arg(path_));
    EXPECT_FALSE(editor()->isModified());
    EXPECT_EQ(readBytes(path_), kTheirs);
}

TEST_F(DiskChange, AFileDeletedOrMovedSaysSoAndCanBeWrittenAgain) {
    for (const bool moved : {false, true}) {
        SCOPED_TRACE(moved ? "moved" : "deleted");
        answers_.boxes.clear();
        writeBytes(path_, kQuartz);
        open(path_);
        type("_cell_volume 113");
        const QString elsewhere = dir_.filePath("elsewhere.cif");
        QFile::remove(elsewhere);
        ASSERT_TRUE(moved ? QFile::rename(path_, elsewhere) : QFile::remove(path_));
        answers_.click("Cancel");
        window_.fileSave();
        ASSERT_EQ(answers_.boxes.size(), 1);
        EXPECT_EQ(boxText(0), kGone.arg(path_));
        EXPECT_EQ(buttons(0), (QSet<QString>{"Save", "Save as…", "Cancel"}));
        EXPECT_FALSE(QFileInfo::exists(path_));
        EXPECT_TRUE(editor()->isModified());
        answers_.click("Save");
        window_.fileSave();
        EXPECT_EQ(readBytes(path_), kMine);
        EXPECT_FALSE(editor()->isModified());
        EXPECT_EQ(readBytes(elsewhere), moved ? kQuartz : QByteArray("<missing>"));
        ASSERT_TRUE(window_.fileClose());
    }
    // While the window is open and active it is told at once.
    open(path_);
    activate();
    answers_.boxes.clear();
    ASSERT_TRUE(QFile::remove(path_));
    ASSERT_TRUE(waitUntil([&] { return !answers_.boxes.isEmpty(); }));
    EXPECT_EQ(boxText(0), kGone.arg(path_));
    EXPECT_TRUE(editor()->isModified()) << "the text is on no disk: closing asks to save it";
}

// Another program that rewrites the same bytes (a new time, or a new file
// renamed over it) changed nothing worth a question.
TEST_F(DiskChange, AFileRewrittenWithTheSameBytesIsNoChange) {
    // A large file's hash is made on the worker after its load.
    QByteArray large = kQuartz;
    while (large.size() <= QcbsCifDocument::WorkerThreshold)
        large += "# a comment line to make the file large\n";
    for (const QByteArray& bytes : {kQuartz, large}) {
        SCOPED_TRACE(bytes.size());
        writeBytes(path_, bytes);
        open(path_);
        ASSERT_TRUE(waitUntil([&] { return !window_.document()->fileIdentity().hash().isEmpty(); }));
        const QString other = dir_.filePath("other.cif");
        writeBytes(other, bytes);
        QFile file(other);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(
            file.setFileTime(QDateTime::currentDateTime().addSecs(60), QFileDevice::FileModificationTime));
        file.close();
        ASSERT_TRUE(QFile::remove(path_));
        ASSERT_TRUE(QFile::rename(other, path_));
        type("_cell_volume 113");
        window_.fileSave();
        EXPECT_TRUE(answers_.boxes.isEmpty());
        EXPECT_EQ(readBytes(path_), editor()->bytes());
        EXPECT_TRUE(readBytes(path_).startsWith(bytes));
        editor()->setModified(false);
        ASSERT_TRUE(window_.fileClose());
    }
}

}  // namespace
