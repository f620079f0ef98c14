// SPDX-License-Identifier: GPL-3.0-or-later
// Recovery files: their directory and rights, their owners, and damaged ones never offered.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "GuiTestSupport.hpp"
#include "document/QcbsRecoveryRecord.hpp"
#include "document/QcbsRecoveryStore.hpp"

namespace {

// An id as a process that has ended would have written it (its start time
// does not match the process of that id now).
QString deadId(int n) {
    QStringList parts = QcbsRecoveryStore::newId().split('-');
    parts[2] = "1";
    parts[3] = QString::number(1000 + n);
    return parts.join('-');
}

QcbsRecoveryRecord recordFor(const QString& id, const QString& fileName) {
    QcbsRecoveryRecord record;
    record.id = id;
    record.fileName = fileName;
    record.written = QDateTime::currentDateTimeUtc();
    return record;
}

QString write(QcbsRecoveryRecord record, const QByteArray& text) {
    record.size = text.size();
    record.hash = QcbsFileIdentity::hash(text);
    return QcbsRecoveryStore::write(record.id, record.header(),
                                    std::string_view(text.constData(), static_cast<size_t>(text.size())));
}

int modeOf(const QString& path) {
    struct stat status {};
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 ? int(status.st_mode & 0777) : -1;
}

class RecoveryStore : public ::testing::Test {
protected:
    QTemporaryDir state_;
    ScopedEnvironment env_{"XDG_STATE_HOME", state_.path().toUtf8()};
};

}  // namespace

TEST(RecoveryDirectory, FollowsXdgStateHomeOnlyWhenItIsAnAbsolutePath) {
    const QString home = QDir::homePath() + "/.local/state/tessary/recovery";
    const struct {
        QByteArray value;
        QString expected;
    } cases[] = {
        {"/var/tmp/st", "/var/tmp/st/tessary/recovery"},
        {"/var/tmp/st/", "/var/tmp/st/tessary/recovery"},
        {"relative/state", home},
        {"", home},
        {QByteArray(), home},
    };
    for (const auto& c : cases) {
        const ScopedEnvironment env("XDG_STATE_HOME", c.value);
        EXPECT_EQ(QcbsRecoveryStore::directory(), c.expected) << c.value.constData();
    }
}

TEST_F(RecoveryStore, TheDirectoryAndEveryRecordArePrivateWhateverTheUmask) {
    // Made earlier with rights open to others.
    ASSERT_TRUE(QDir().mkpath(state_.filePath("tessary/recovery")));
    ::chmod(QFile::encodeName(state_.filePath("tessary/recovery")).constData(), 0755);
    const mode_t old = ::umask(0);
    const QString error = write(recordFor(deadId(1), "/data/a.cif"), "data_a\n");
    ::umask(old);
    ASSERT_TRUE(error.isEmpty()) << error.toStdString();
    EXPECT_EQ(modeOf(QcbsRecoveryStore::directory()), 0700);
    EXPECT_EQ(modeOf(QcbsRecoveryStore::pathOf(deadId(1))), 0600);
    EXPECT_FALSE(QFile::exists(QcbsRecoveryStore::pathOf(deadId(1)) + QcbsRecoveryStore::PartSuffix));
}

TEST_F(RecoveryStore, ARecordGivesBackItsTextAndWhatItSaysOfTheFile) {
    QByteArray everyByte;
    for (int i = 0; i < 256; ++i) everyByte += char(i);
    QcbsFileIdentity::Stamp stamp;
    stamp.exists = true;
    stamp.size = 4242;
    stamp.modified = 1764000000123456789;
    stamp.node = 18446744073709551615ull;
    stamp.device = 2049;
    const struct {
        QString fileName;
        bool utf8;
        bool bom;
        QcbsFileIdentity disk;
        QByteArray text;
    } cases[] = {
        {"/data/a b/c.cif", true, false, QcbsFileIdentity(stamp, QByteArray(32, '\x5a')),
         "data_a\r\n_x 1\r\n"},
        {"/data/line\nend %41 \xc3\xbc.cif", false, false, QcbsFileIdentity(), everyByte},
        {"x:/dummy/untitled7.cif", true, true, QcbsFileIdentity(), ""},
        {"/data/gone.cif", true, false, QcbsFileIdentity::missing(), "\n\nTESSARY RECOVERY 1\n\n"},
    };
    int n = 0;
    for (const auto& c : cases) {
        QcbsRecoveryRecord record = recordFor(deadId(++n), c.fileName);
        record.utf8 = c.utf8;
        record.byteOrderMark = c.bom;
        record.disk = c.disk;
        ASSERT_TRUE(write(record, c.text).isEmpty());
        QByteArray text;
        const std::optional<QcbsRecoveryRecord> back = QcbsRecoveryStore::load(record.id, &text);
        ASSERT_TRUE(back.has_value()) << c.fileName.toStdString();
        EXPECT_EQ(text, c.text);
        EXPECT_EQ(back->fileName, c.fileName);
        EXPECT_EQ(back->utf8, c.utf8);
        EXPECT_EQ(back->byteOrderMark, c.bom);
        EXPECT_EQ(back->isUntitled(), c.fileName.startsWith("x:/dummy/"));
        EXPECT_EQ(back->written.toMSecsSinceEpoch(), record.written.toMSecsSinceEpoch());
        EXPECT_EQ(back->disk.isKnown(), c.disk.isKnown());
        EXPECT_EQ(back->disk.stamp(), c.disk.stamp());
        EXPECT_EQ(back->disk.hash(), c.disk.hash());
    }
    EXPECT_EQ(QcbsRecoveryStore::orphans().size(), 4);
}

TEST_F(RecoveryStore, DamagedOrPartialRecordsAreNeverOffered) {
    const QByteArray text = "data_kept\n_cell_length_a 10.5\n";
    const QString good = deadId(0);
    ASSERT_TRUE(write(recordFor(good, "/data/a.cif"), text).isEmpty());
    QFile file(QcbsRecoveryStore::pathOf(good));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray whole = file.readAll();
    const qsizetype textAt = whole.size() - text.size();
    const auto flipped = [&](qsizetype at) {
        QByteArray bytes = whole;
        bytes[at] = char(bytes[at] ^ 0x20);
        return bytes;
    };
    const auto replaced = [&](const QByteArray& from, const QByteArray& to) {
        return QByteArray(whole).replace(from, to);
    };
    const QByteArray damaged[] = {
        QByteArray(),
        whole.left(textAt - 1),        // cut in the header
        whole.left(whole.size() - 5),  // cut in the text
        whole + "x",                   // more than its size
        flipped(textAt + 7),           // a byte of the text changed
        flipped(0),                    // not a record
        replaced("size " + QByteArray::number(text.size()),
                 "size " + QByteArray::number(text.size() - 1)),  // the size disagrees
        replaced("\nhash ", "\nhush "),                           // no hash
        replaced("encoding utf-8", "encoding ebcdic"),
        replaced("\nbom 0\n", "\nbom 0\nbom 1\n"),  // a key twice
        replaced("\n\ndata_", "\ndata_"),           // no end of the header
        QByteArray(100000, 'a'),
    };
    int n = 0;
    for (const QByteArray& bytes : damaged) {
        QFile out(QcbsRecoveryStore::pathOf(deadId(++n)));
        ASSERT_TRUE(out.open(QIODevice::WriteOnly));
        out.write(bytes);
    }
    // What a process killed while writing leaves, and what a running one is writing.
    const QString part = QcbsRecoveryStore::pathOf(deadId(99)) + QcbsRecoveryStore::PartSuffix;
    const QString livePart =
        QcbsRecoveryStore::pathOf(QcbsRecoveryStore::newId()) + QcbsRecoveryStore::PartSuffix;
    for (const QString& name : {part, livePart}) {
        QFile out(name);
        ASSERT_TRUE(out.open(QIODevice::WriteOnly));
        out.write(whole);
    }

    // Asked for all, or for those a window wants (as a window starting or opening a file asks).
    for (const bool choosing : {false, true}) {
        const QList<QcbsRecoveryRecord> offered =
            choosing ? QcbsRecoveryStore::orphans([](const QcbsRecoveryRecord&) { return true; })
                     : QcbsRecoveryStore::orphans();
        ASSERT_EQ(offered.size(), 1) << choosing;
        EXPECT_EQ(offered[0].id, good);
    }
    EXPECT_FALSE(QFile::exists(part));
    EXPECT_TRUE(QFile::exists(livePart));
    // A damaged record is left on the disk for the user to look at.
    EXPECT_TRUE(QFile::exists(QcbsRecoveryStore::pathOf(deadId(3))));
    for (int i = 1; i <= n; ++i) EXPECT_FALSE(QcbsRecoveryStore::load(deadId(i), nullptr).has_value()) << i;
}

TEST_F(RecoveryStore, OnlyRecordsOfProcessesThatEndedAreOffered) {
    const QString mine = QcbsRecoveryStore::newId();
    QStringList other = mine.split('-');
    other[0] = "0000otherboot";  // the same process id in another boot
    const QString ids[] = {mine, deadId(1), other.join('-'), "not-an-id"};
    for (const QString& id : ids)
        ASSERT_TRUE(write(recordFor(id, "/data/" + id + ".cif"), "data_x\n").isEmpty());
    EXPECT_TRUE(QcbsRecoveryStore::ownerAlive(mine));
    EXPECT_NE(QcbsRecoveryStore::newId(), mine);
    QStringList offered;
    for (const QcbsRecoveryRecord& record : QcbsRecoveryStore::orphans()) offered << record.id;
    offered.sort();
    QStringList expected{deadId(1), other.join('-'), "not-an-id"};
    expected.sort();
    EXPECT_EQ(offered, expected);
    QcbsRecoveryStore::remove(deadId(1));
    EXPECT_FALSE(QFile::exists(QcbsRecoveryStore::pathOf(deadId(1))));
}
