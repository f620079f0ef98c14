#include <gtest/gtest.h>

#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>

#include "validation/QcbsCoreCifFileValidator.hpp"

namespace {

using V = QcbsCoreCifFileValidator;

V::Verdict examine(const char* text) { return V::examine(QByteArray(text)); }

TEST(CoreCifFileValidator, TextWithADataLineIsACifWhateverItsCaseIndentOrLineEnds) {
    EXPECT_EQ(examine("data_quartz\n_cell_length_a 4.9\n"), V::LooksLikeCif);
    EXPECT_EQ(examine("# written by hand\n\n  \tDATA_Quartz\n"), V::LooksLikeCif);
    EXPECT_EQ(examine("#comment\r\ndata_x\r\n"), V::LooksLikeCif);
    EXPECT_EQ(examine("#comment\rdata_x"), V::LooksLikeCif);
    EXPECT_EQ(examine("data_"), V::LooksLikeCif);
}

TEST(CoreCifFileValidator, TheCif2MagicCodeAloneMakesACifEvenAfterAByteOrderMark) {
    EXPECT_EQ(examine("#\\#CIF_2.0\n# nothing yet\n"), V::LooksLikeCif);
    EXPECT_EQ(examine("\xef\xbb\xbf#\\#CIF_2.0\n"), V::LooksLikeCif);
    EXPECT_EQ(examine("\xef\xbb\xbf"
                      "data_x\n"),
              V::LooksLikeCif);
    // The code counts only at the very start.
    EXPECT_EQ(examine("\n#\\#CIF_2.0\n"), V::NoDataBlock);
}

TEST(CoreCifFileValidator, TextWithoutADataLineIsNotACif) {
    EXPECT_EQ(examine(""), V::NoDataBlock);
    EXPECT_EQ(examine("_cell_length_a 4.9\n"), V::NoDataBlock);
    // "data_" must begin the line's text, not sit inside it or in a comment.
    EXPECT_EQ(examine("#data_x\n_name data_x\n"), V::NoDataBlock);
    EXPECT_EQ(examine("dat\na_x\n"), V::NoDataBlock);
}

TEST(CoreCifFileValidator, BinaryFilesAreNotCifsEvenWhenTheyHoldADataLine) {
    EXPECT_EQ(V::examine(QByteArray("data_x\n\0\1\2", 9)), V::Binary);
    EXPECT_EQ(examine("%PDF-1.4\ndata_x\n"), V::Binary);
    EXPECT_EQ(examine("\x1f\x8b\x08rest\ndata_x\n"), V::Binary);
    EXPECT_EQ(examine("PK\x03\x04\ndata_x\n"), V::Binary);
    EXPECT_EQ(examine("\x89PNG\r\n\x1a\ndata_x\n"), V::Binary);
    // A NUL byte far beyond the first block is not looked for.
    QByteArray late = "data_x\n" + QByteArray(V::kProbeSize, ' ');
    late.append('\0');
    EXPECT_EQ(V::examine(late), V::LooksLikeCif);
}

TEST(CoreCifFileValidator, FilesOnDiskAreReadAndTheUnreadableSaySo) {
    QTemporaryDir dir;
    const QString cif = dir.filePath("a.cif");
    QFile file(cif);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("data_a\n_cell_volume 100\n");
    file.close();
    EXPECT_TRUE(V::isValidFile(cif));
    EXPECT_EQ(V::examineFile(dir.filePath("missing.cif")), V::Unreadable);
    EXPECT_EQ(V::examineFile(dir.path()), V::Unreadable);
    EXPECT_FALSE(V::describe(V::Binary).isEmpty());
}

TEST(CoreCifFileValidator, RealWorldCrystalFilesAreCifs) {
    const QString corpus = "/usr/share/avogadro2/crystals";
    QDirIterator files(corpus, {"*.cif"}, QDir::Files, QDirIterator::Subdirectories);
    int count = 0;
    while (files.hasNext()) {
        const QString name = files.next();
        EXPECT_TRUE(V::isValidFile(name)) << name.toStdString();
        ++count;
    }
    if (count == 0) GTEST_SKIP() << "no crystal files under " << corpus.toStdString();
}

}  // namespace
