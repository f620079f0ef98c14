// SPDX-License-Identifier: GPL-3.0-or-later
// Unsaved edits in recovery files, offered after a crash: in a window and in a killed process.
// process.
#include <gtest/gtest.h>

#include <QMap>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTemporaryDir>

#include "ApplicationTestSupport.hpp"
#include "DialogAnswerer.hpp"
#include "document/QcbsRecoveryCompareDialog.hpp"
#include "document/QcbsRecoveryStore.hpp"
#include "document/QcbsRecoveryWriter.hpp"
#include "editor/QcbsRichTextEdit.hpp"

namespace {

// Ids as processes that have ended would have written them; unique in the
// test program, since each record is offered once per process.
QString deadId() {
    static int count = 0;
    QStringList parts = QcbsRecoveryStore::newId().split('-');
    parts[2] = "1";
    parts[3] = QString::number(5000 + ++count);
    return parts.join('-');
}

// The good records in the recovery directory, whoever owns them: id -> text.
QMap<QString, QByteArray> recordsOnDisk(const QString& directory) {
    QMap<QString, QByteArray> records;
    for (const QFileInfo& entry : QDir(directory).entryInfoList({"*.recovery"}, QDir::Files)) {
        QFile file(entry.filePath());
        QByteArray text;
        if (file.open(QIODevice::ReadOnly) && QcbsRecoveryRecord::read(file, &text))
            records.insert(entry.completeBaseName(), text);
    }
    return records;
}

class WindowRecovery : public ::testing::Test {
protected:
    WindowRecovery() { window_->recoveryWriter()->setDelay(20); }

    QString writeFile(const QString& name, const QByteArray& bytes) {
        return writeBytes(files_.filePath(name), bytes);
    }
    // A record left by a process that has ended.
    QString leaveRecord(const QString& fileName, const QByteArray& text, const QcbsFileIdentity& disk = {}) {
        QcbsRecoveryRecord record;
        record.id = deadId();
        record.fileName = fileName;
        record.written = QDateTime::currentDateTimeUtc();
        record.disk = disk;
        record.size = text.size();
        record.hash = QcbsFileIdentity::hash(text);
        EXPECT_TRUE(QcbsRecoveryStore::write(record.id, record.header(),
                                             std::string_view(text.constData(), size_t(text.size())))
                        .isEmpty());
        return record.id;
    }
    QMap<QString, QByteArray> records() const { return recordsOnDisk(QcbsRecoveryStore::directory()); }
    QByteArray text() const { return window_->document()->fileBytes(); }
    QString ownRecord() const { return window_->recoveryWriter()->recordId(); }

    ScopedPrefsDir prefs_;
    QTemporaryDir state_;
    ScopedEnvironment env_{"XDG_STATE_HOME", state_.path().toUtf8()};
    QTemporaryDir files_;
    DialogAnswerer answers_;
    std::unique_ptr<QcbsMainWindow> window_ = std::make_unique<QcbsMainWindow>(buildTreeSharedData());
};

}  // namespace

TEST_F(WindowRecovery, UnsavedTextIsKeptUntilItIsSavedClosedWithoutSavingOrUndone) {
    const QByteArray original = "data_a\n_cell_length_a 10\n";
    const QString path = writeFile("a.cif", original);
    loadAndWait(*window_, path);
    QcbsRichTextEdit* editor = window_->currentEditor();
    const auto kept = [&] { return records() == QMap<QString, QByteArray>{{ownRecord(), text()}}; };

    QTest::keyClicks(editor, "_x 1");
    ASSERT_TRUE(waitUntil(kept)) << records().value(ownRecord()).constData();
    const std::optional<QcbsRecoveryRecord> record = QcbsRecoveryStore::load(ownRecord(), nullptr);
    ASSERT_TRUE(record.has_value());
    EXPECT_EQ(record->fileName, path);
    EXPECT_EQ(record->disk.stamp(), window_->document()->fileIdentity().stamp());
    EXPECT_EQ(record->disk.hash(), QcbsFileIdentity::hash(original));
    QTest::keyClick(editor, Qt::Key_Return);
    ASSERT_TRUE(waitUntil(kept)) << "a later edit replaces the record";

    const struct {
        const char* how;
        std::function<void()> act;
        QByteArray file;
    } ends[] = {
        {"saved", [&] { window_->fileSave(); }, "_x 1\n_y 2data_a\n_cell_length_a 10\n"},
        {"undone",
         [&] {
             while (window_->document()->isModified()) editor->undo();
         },
         "_x 1\n_y 2data_a\n_cell_length_a 10\n"},
        {"closed without saving",
         [&] {
             answers_.click("No");
             EXPECT_TRUE(window_->fileClose());
         },
         "_x 1\n_y 2data_a\n_cell_length_a 10\n"},
    };
    for (const auto& end : ends) {
        if (!window_->document()->isOpen()) loadAndWait(*window_, path);
        QTest::keyClicks(window_->currentEditor(), "_y 2");
        ASSERT_TRUE(waitUntil([&] { return records().size() == 1 && kept(); })) << end.how;
        end.act();
        EXPECT_TRUE(waitUntil([&] { return records().isEmpty(); })) << end.how;
        EXPECT_EQ(readBytes(path), end.file) << end.how;
    }
}

TEST_F(WindowRecovery, AWindowThatEndsWithoutItsQuestionLeavesTheRecordOfANewDocument) {
    window_->fileNewUntitled();
    QTest::keyClicks(window_->currentEditor(), "data_new");
    ASSERT_TRUE(waitUntil([&] { return records().value(ownRecord()) == "data_new"; }));
    const QString id = ownRecord();
    EXPECT_TRUE(QcbsRecoveryStore::load(id, nullptr)->isUntitled());
    window_.reset();
    EXPECT_EQ(records().value(id), "data_new");
}

TEST_F(WindowRecovery, ARecordThatCannotBeWrittenIsSaidOnceAndTheSwitchTurnsRecordsOff) {
    window_->fileNewUntitled();
    QcbsRecoveryWriter* writer = window_->recoveryWriter();
    {
        // The state directory cannot be made: a file stands in its way.
        const ScopedEnvironment blocked("XDG_STATE_HOME", writeFile("blocker", "x").toUtf8());
        QSignalSpy failed(writer, &QcbsRecoveryWriter::failed);
        QTest::keyClicks(window_->currentEditor(), "data_a");
        ASSERT_TRUE(waitUntil([&] { return failed.count() >= 1; }));
        QTest::keyClicks(window_->currentEditor(), "b");
        ASSERT_TRUE(waitUntil([&] { return failed.count() >= 2; }));
        EXPECT_EQ(window_->outputPane()->toPlainText().count("Could not keep a recovery copy"), 1);
    }
    QTest::keyClicks(window_->currentEditor(), "c");
    ASSERT_TRUE(waitUntil([&] { return records().value(ownRecord()) == "data_abc"; }));
    changeOptions(*window_, [](QcbsOptions& o) { o.keep_recovery = false; });
    EXPECT_TRUE(waitUntil([&] { return records().isEmpty(); }));
    QTest::keyClicks(window_->currentEditor(), "d");
    QSignalSpy written(writer, &QcbsRecoveryWriter::written);
    EXPECT_FALSE(written.wait(300));
    // Switched on again, the text is written at once; later edits wait for the quiet time again.
    writer->setDelay(60000);
    changeOptions(*window_, [](QcbsOptions& o) { o.keep_recovery = true; });
    EXPECT_TRUE(
        waitUntil([&] { return written.count() == 1 && records().value(ownRecord()) == "data_abcd"; }));
    QTest::keyClicks(window_->currentEditor(), "e");
    EXPECT_FALSE(written.wait(500));
    EXPECT_EQ(records().value(ownRecord()), "data_abcd");
}

TEST_F(WindowRecovery, ALargeTextIsKeptWholeAndASaveDuringItsWriteLeavesNoRecord) {
    QByteArray big = "data_big\nloop_\n_a\n_b\n";
    while (big.size() < 24 * 1024 * 1024) big += "1.2345 6.7890 some more text on a line\n";
    const QString path = writeFile("big.cif", big);
    loadAndWait(*window_, path);
    ASSERT_TRUE(window_->document()->isLarge());
    QTest::keyClicks(window_->currentEditor(), "#");
    ASSERT_TRUE(waitUntil([&] { return records().value(ownRecord()) == "#" + big; }, 60000));

    QTest::keyClicks(window_->currentEditor(), "!");
    window_->recoveryWriter()->writeSoon();
    window_->fileSave();
    ASSERT_FALSE(window_->document()->isModified());
    ASSERT_TRUE(waitUntil([&] { return QDir(QcbsRecoveryStore::directory()).isEmpty(QDir::Files); }, 60000));
    // Nothing written late by a write that was under way.
    QTest::qWait(1500);
    EXPECT_TRUE(QDir(QcbsRecoveryStore::directory()).isEmpty(QDir::Files));
    EXPECT_EQ(readBytes(path), "#!" + big);
}

TEST_F(WindowRecovery, TheAnswersToTheOfferAtStart) {
    const QByteArray onDisk = "data_b\n_cell_length_a 10\n";
    const QByteArray edited = "data_b\n_cell_length_a 12.5\n_new_item 3\n";
    struct Case {
        const char* what;
        QStringList answers;
        bool untitled = false;
        bool missing = false;
        bool changedSince = false;
        bool recovered = true;
        bool recordStays = false;
    };
    const Case cases[] = {
        {"recover", {"Recover"}},
        {"discard", {"Discard"}, false, false, false, false},
        {"later", {"Later"}, false, false, false, false, true},
        {"compare, then recover", {"Compare", "recover"}},
        {"compare, then discard", {"Compare", "discard"}, false, false, false, false},
        {"a new document", {"Recover"}, true},
        {"a file deleted since", {"Recover"}, false, true},
        {"a file changed since", {"Recover"}, false, false, true},
    };
    int n = 0;
    DialogAnswerer& answers = answers_;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        window_ = std::make_unique<QcbsMainWindow>(buildTreeSharedData());
        answers.boxes.clear();
        window_->recoveryWriter()->setDelay(20);
        const QString path =
            c.untitled ? QString("x:/dummy/untitled99.cif") : files_.filePath(QString("b%1.cif").arg(++n));
        if (!c.untitled) writeBytes(path, onDisk);
        const QcbsFileIdentity disk = c.untitled ? QcbsFileIdentity() : QcbsFileIdentity::current(path);
        if (c.missing) QFile::remove(path);
        if (c.changedSince) writeBytes(path, "data_b\n_cell_length_a 11.75\n");
        const QString id = leaveRecord(path, edited, disk);

        // The question's answer; the comparison's button is clicked by the handler.
        answers.click(c.answers.first());
        QString compared[2];
        answers.otherHandler = [&](QDialog* dialog) {
            auto* compare = qobject_cast<QcbsRecoveryCompareDialog*>(dialog);
            ASSERT_NE(compare, nullptr);
            compared[0] = compare->recoveredView()->toPlainText();
            compared[1] = compare->fileView()->toPlainText();
            EXPECT_EQ(compare->firstDifference(), 1);
            EXPECT_TRUE(compare->recoveredView()->isReadOnly() && compare->fileView()->isReadOnly());
            compare->findChild<QPushButton*>(c.answers.value(1))->click();
        };
        window_->offerRecoveryAtStart();
        ASSERT_EQ(answers.boxes.size(), 1);
        QStringList buttons = answers.boxes[0].buttons;
        buttons.sort();
        EXPECT_EQ(buttons, (QStringList{"Compare", "Discard", "Later", "Recover"}));
        EXPECT_EQ(answers.boxes[0].detail.contains("no longer exists"), c.missing);
        EXPECT_EQ(answers.boxes[0].detail.contains("changed since"), c.changedSince);
        if (c.answers.contains("Compare")) {
            EXPECT_EQ(compared[0], QString::fromUtf8(edited));
            EXPECT_EQ(compared[1], QString::fromUtf8(onDisk));
        }
        if (c.recovered) {
            ASSERT_TRUE(waitUntil([&] { return text() == edited && !window_->document()->isLoading(); }));
            EXPECT_TRUE(window_->document()->isModified());
            EXPECT_EQ(window_->document()->isUntitled(), c.untitled);
            EXPECT_EQ(window_->fileName() == path, !c.untitled);
            // The recovered text becomes this window's own record.
            EXPECT_TRUE(waitUntil([&] {
                return records() == QMap<QString, QByteArray>{{ownRecord(), edited}};
            }));
            if (!c.untitled && !c.missing) {
                window_->currentEditor()->undo();
                EXPECT_EQ(window_->currentEditor()->byteView(), readBytes(path).toStdString())
                    << "undo gives the file";
            }
        } else {
            EXPECT_TRUE(window_->isBlank());
            EXPECT_EQ(records().contains(id), c.recordStays);
        }
        // Each record is offered once in a process.
        window_->offerRecoveryAtStart();
        EXPECT_EQ(answers.boxes.size(), 1);
        window_->document()->setModified(false);
        window_.reset();
        QDir(QcbsRecoveryStore::directory()).removeRecursively();
    }
}

TEST_F(WindowRecovery, ATextWhoseFileNowHasAnotherEncodingComesBackInItsOwn) {
    // Kept as UTF-8; the file is Latin-1 now.
    const QString path = writeFile("e.cif", "data_e\n_name 'caf\xe9'\n");
    const QByteArray edited = "data_e\n_name 'caf\xc3\xa9 au lait'\n";
    leaveRecord(path, edited);
    answers_.click("Recover");
    window_->offerRecoveryAtStart();
    ASSERT_TRUE(waitUntil([&] { return text() == edited && !window_->document()->isLoading(); }));
    EXPECT_EQ(window_->document()->encoding().kind(), QcbsDocumentEncoding::Utf8);
    EXPECT_TRUE(window_->document()->isModified());
    EXPECT_EQ(window_->fileName(), path);
}

TEST_F(WindowRecovery, AFileOpenedAgainOffersItsEditsOnceItIsIn) {
    const QString path = writeFile("c.cif", "data_c\n");
    const QString other = writeFile("d.cif", "data_d\n");
    leaveRecord(other, "data_d\n_other 1\n");
    const QString id = leaveRecord(path, "data_c\n_kept 1\n", QcbsFileIdentity::current(path));
    answers_.click("Recover");
    loadAndWait(*window_, path);
    ASSERT_EQ(answers_.boxes.size(), 1) << "only the records of this file";
    EXPECT_EQ(answers_.boxes[0].text, "Unsaved edits of \"" + path + "\" were found.");
    EXPECT_EQ(text(), "data_c\n_kept 1\n");
    EXPECT_TRUE(window_->document()->isModified());
    window_->fileSave();
    EXPECT_TRUE(waitUntil([&] { return !records().contains(id) && !records().contains(ownRecord()); }));
    EXPECT_EQ(readBytes(path), "data_c\n_kept 1\n");
}

// --- a real process, killed -----------------------------------------------------------

namespace {

// Tessary's start-up in a process of its own (see RecoverySession.cpp), with
// its own settings and state.
class Session {
public:
    Session(const QString& root, const QStringList& arguments) {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("QT_QPA_PLATFORM", "offscreen");
        env.insert("TESSARYPREFS", root + "/prefs");
        env.insert("XDG_STATE_HOME", root + "/state");
        env.insert("TESSARY_LOG_LEVEL", "0");
        env.insert("TESSARY_SINGLE_INSTANCE", "0");
        process_.setProcessEnvironment(env);
        process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process_.start(RECOVERY_SESSION_BINARY, arguments);
    }
    ~Session() {
        if (process_.state() != QProcess::NotRunning) kill();
    }
    bool waitFor(const QByteArray& line, int ms = 30000) {
        return waitUntil(
                   [&] {
                       out_ += process_.readAllStandardOutput();
                       return out_.split('\n').contains(line) || process_.state() == QProcess::NotRunning;
                   },
                   ms) &&
               out_.split('\n').contains(line);
    }
    void send(const QByteArray& command) { process_.write(command + "\n"); }
    QByteArray text() {
        send("text");
        waitUntil([&] {
            out_ += process_.readAllStandardOutput();
            return out_.contains("\ntext ") && out_.indexOf('\n', out_.lastIndexOf("\ntext ") + 1) > 0;
        });
        const qsizetype at = out_.lastIndexOf("\ntext ") + 6;
        return QByteArray::fromBase64(out_.mid(at, out_.indexOf('\n', at) - at));
    }
    // The questions asked, as "asked TEXT" lines.
    QByteArrayList questions() {
        out_ += process_.readAllStandardOutput();
        QByteArrayList asked;
        for (const QByteArray& line : out_.split('\n'))
            if (line.startsWith("asked ") || line == "compare") asked << line;
        return asked;
    }
    void kill() {
        process_.kill();  // SIGKILL
        process_.waitForFinished(10000);
    }

private:
    QProcess process_;
    QByteArray out_;
};

class RecoveryAfterKill : public ::testing::Test {
protected:
    RecoveryAfterKill() { QDir().mkpath(root_.path() + "/files"); }
    QString recoveryDir() const { return root_.path() + "/state/tessary/recovery"; }
    // A session on the file that types the lines, waits until their record
    // is on the disk, and is killed; gives the text it had.
    QByteArray editAndKill(const QString& file, const QStringList& lines) {
        Session session(root_.path(), {file});
        EXPECT_TRUE(session.waitFor("ready"));
        for (const QString& line : lines) {
            session.send("type " + line.toUtf8());
            session.send("enter");
        }
        QByteArray edited;
        EXPECT_TRUE(waitUntil([&] {
            edited = session.text();
            const QMap<QString, QByteArray> records = recordsOnDisk(recoveryDir());
            return records.size() == 1 && records.first() == edited && edited != readBytes(file);
        }));
        session.kill();
        return edited;
    }

    // No dots in the path: the directory holds nothing a name could mistake.
    QTemporaryDir root_{QDir::tempPath() + "/recoverykill-XXXXXX"};
    QString file_ = writeBytes(root_.path() + "/files/cell.cif", "data_cell\n_cell_length_a 10.1\n");
};

}  // namespace

TEST_F(RecoveryAfterKill, TheTextTypedBeforeTheKillIsRecoveredAtTheNextStartAndASaveRemovesItsRecord) {
    ASSERT_FALSE(root_.path().contains('.'));
    const QByteArray edited = editAndKill(file_, {"_cell_length_b 12.5", "_cell_length_c 7.25 # é"});
    ASSERT_TRUE(edited.contains("_cell_length_b 12.5\n_cell_length_c 7.25 # \xc3\xa9\n"));
    EXPECT_EQ(readBytes(file_), "data_cell\n_cell_length_a 10.1\n") << "the file itself is untouched";

    Session restarted(root_.path(), {"--answer", "Recover"});
    ASSERT_TRUE(restarted.waitFor("ready"));
    EXPECT_EQ(restarted.questions(),
              QByteArrayList{"asked Unsaved edits of \"" + file_.toUtf8() + "\" were found."});
    EXPECT_TRUE(waitUntil([&] { return restarted.text() == edited; }));
    restarted.send("modified");
    EXPECT_TRUE(restarted.waitFor("modified 1"));
    restarted.send("save");
    ASSERT_TRUE(restarted.waitFor("saved"));
    EXPECT_EQ(readBytes(file_), edited);
    EXPECT_TRUE(waitUntil([&] { return QDir(recoveryDir()).isEmpty(QDir::Files); }));
}

TEST_F(RecoveryAfterKill, DiscardWhenTheFileIsOpenedAgainRemovesTheRecord) {
    editAndKill(file_, {"_cell_length_b 12.5"});
    Session restarted(root_.path(), {"--answer", "Discard", file_});
    ASSERT_TRUE(restarted.waitFor("ready"));
    EXPECT_EQ(restarted.questions().size(), 1);
    EXPECT_TRUE(waitUntil([&] { return restarted.text() == "data_cell\n_cell_length_a 10.1\n"; }));
    EXPECT_TRUE(QDir(recoveryDir()).isEmpty(QDir::Files));
    restarted.kill();

    Session again(root_.path(), {});
    ASSERT_TRUE(again.waitFor("ready"));
    EXPECT_TRUE(again.questions().isEmpty());
}
