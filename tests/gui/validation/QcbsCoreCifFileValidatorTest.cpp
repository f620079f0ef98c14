// SPDX-License-Identifier: GPL-3.0-or-later
// Whether a text or a file on disk looks like a CIF.
#include <gtest/gtest.h>

#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>

#include "validation/QcbsCoreCifFileValidator.hpp"

namespace {

using V = QcbsCoreCifFileValidator;

TEST(CoreCifFileValidator, ATextWithADataLineOrTheCif2CodeIsACifUnlessItIsBinary) {
    QByteArray lateNul = "data_x\n" + QByteArray(V::kProbeSize, ' ');
    lateNul.append('\0');  // beyond the bytes searched
    const std::pair<QByteArray, V::Verdict> cases[] = {
        {"data_quartz\n_cell_length_a 4.9\n", V::LooksLikeCif},
        {"# written by hand\n\n  \tDATA_Quartz\n", V::LooksLikeCif},
        {"#comment\r\ndata_x\r\n", V::LooksLikeCif},
        {"#comment\rdata_x", V::LooksLikeCif},
        {"data_", V::LooksLikeCif},
        {"#\\#CIF_2.0\n# nothing yet\n", V::LooksLikeCif},
        {"\xef\xbb\xbf#\\#CIF_2.0\n", V::LooksLikeCif},
        {"\xef\xbb\xbf"
         "data_x\n",
         V::LooksLikeCif},
        {lateNul, V::LooksLikeCif},
        // The CIF 2.0 code counts only at the very start; "data_" must begin
        // the line's text.
        {"\n#\\#CIF_2.0\n", V::NoDataBlock},
        {"", V::NoDataBlock},
        {"_cell_length_a 4.9\n", V::NoDataBlock},
        {"#data_x\n_name data_x\n", V::NoDataBlock},
        {"dat\na_x\n", V::NoDataBlock},
        {QByteArray("data_x\n\0\1\2", 9), V::Binary},
        {"%PDF-1.4\ndata_x\n", V::Binary},
        {"\x1f\x8b\x08rest\ndata_x\n", V::Binary},
        {"PK\x03\x04\ndata_x\n", V::Binary},
        {"\x89PNG\r\n\x1a\ndata_x\n", V::Binary},
    };
    for (const auto& [bytes, verdict] : cases)
        EXPECT_EQ(V::examine(bytes), verdict) << bytes.left(40).toStdString();
}

TEST(CoreCifFileValidator, FilesOnDiskAreReadAndTheUnreadableSaySo) {
    QTemporaryDir dir;
    QFile file(dir.filePath("a.cif"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("data_a\n_cell_volume 100\n");
    file.close();
    EXPECT_TRUE(V::isValidFile(file.fileName()));
    EXPECT_EQ(V::examineFile(dir.filePath("missing.cif")), V::Unreadable);
    EXPECT_EQ(V::examineFile(dir.path()), V::Unreadable);

    // Real crystal files, where installed, are all CIFs.
    QDirIterator files("/usr/share/avogadro2/crystals", {"*.cif"}, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString name = files.next();
        EXPECT_TRUE(V::isValidFile(name)) << name.toStdString();
    }
}

}  // namespace
