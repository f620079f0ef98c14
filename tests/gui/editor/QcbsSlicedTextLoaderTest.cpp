// SPDX-License-Identifier: GPL-3.0-or-later
// Loading bytes into the editor a slice at a time: every byte kept, encoding and line ends found.
// The editor stays read-only until the last slice is in, and a new load abandons one running.
#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include "GuiTestSupport.hpp"
#include "HighlightTestSupport.hpp"
#include "editor/QcbsSlicedTextLoader.hpp"

namespace {

using Sci = QsciScintillaBase;

struct Loaded {
    QByteArray bytes;
    bool utf8;
    bool byteOrderMark;
    QByteArray lineEnd;
    qint64 lines;
};

Loaded load(const QByteArray& bytes) {
    QcbsRichTextEdit edit(THandle<CifDictionary>(),
                          THandle<QcbsFontStyleSettings>(new QcbsFontStyleSettings()));
    QcbsSlicedTextLoader loader(&edit);
    loader.loadBytes(bytes);
    EXPECT_TRUE(runUntil([&] { return !loader.isLoading(); }));
    return {edit.bytes(), edit.isUtf8Text(), loader.summary().byteOrderMark,
            loader.summary().dominantLineEnd(), loader.summary().lines()};
}

TEST(QcbsSlicedTextLoader, EveryByteComesInAsItIsWithItsEncodingAndLineEndsFound) {
    const QByteArray bom("\xef\xbb\xbf");
    const struct {
        QByteArray bytes;
        bool utf8;
        const char* lineEnd;
        qint64 lines;
    } cases[] = {
        {"data_a\n_x 1\n", true, "\n", 2},
        {"data_a\r\n_x 1\r\n\r\n", true, "\r\n", 3},
        {"data_a\r_x 1\r", true, "\r", 2},
        {"data_a\r\n_x 1\n_y 2\r\n", true, "\r\n", 3},       // mixed: every end stays as it was
        {"data_a\n_x 1", true, "\n", 2},                     // no final line end
        {"data_a  \n_x 1 \t\n", true, "\n", 2},              // trailing blanks
        {"_n 'Cr\xe9pin \xa0 \x85'\f\v\n", false, "\n", 1},  // Latin-1: NBSP, NEL, form feed
        {"_n '\xc3\xa5 \xc2\xa0 \xe3\x80\x80 \xe2\x80\xa8 \xe2\x80\xa9 \xef\xb7\x90'\x0c\n", true, "\n", 1},
        {"_n '\xed\xa0\x80'\n", false, "\n", 1},  // a surrogate is no UTF-8
        {"_n '\xc3'", false, "\n", 1},            // cut short at the end
        {"", true, "\n", 0},
        {QByteArray("a\0b\n", 4), true, "\n", 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.bytes.toStdString());
        const Loaded loaded = load(c.bytes);
        EXPECT_EQ(loaded.bytes, c.bytes);
        EXPECT_EQ(loaded.utf8, c.utf8);
        EXPECT_FALSE(loaded.byteOrderMark);
        EXPECT_EQ(loaded.lineEnd, c.lineEnd);
        EXPECT_EQ(loaded.lines, c.lines);
    }
    // A byte-order mark is kept out of the text, unless the rest is not UTF-8.
    const Loaded marked = load(bom + "#\\#CIF_2.0\ndata_a\n");
    EXPECT_EQ(marked.bytes, "#\\#CIF_2.0\ndata_a\n");
    EXPECT_TRUE(marked.byteOrderMark);
    const Loaded notReally = load(bom + "data_\xe9\n");
    EXPECT_EQ(notReally.bytes, bom + "data_\xe9\n");
    EXPECT_FALSE(notReally.utf8);
    EXPECT_FALSE(notReally.byteOrderMark);
}

TEST(QcbsSlicedTextLoader, ABigFileShowsItsStartAtOnceAndOneLateByteDecidesTheEncoding) {
    QTemporaryDir dir;
    // Megabytes of UTF-8, then one Latin-1 byte at the very end; a CRLF
    // split between two pieces is still one line end.
    QByteArray bytes("data_big\r\n");
    while (bytes.size() < 3 * 1024 * 1024) bytes += "_name '\xc3\xa5ngstr\xc3\xb6m' 1.234(5)\r\n";
    bytes += "_last '\xe9'\r\n";
    QFile file(dir.filePath("big.cif"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
    file.close();

    QcbsRichTextEdit edit(THandle<CifDictionary>(),
                          THandle<QcbsFontStyleSettings>(new QcbsFontStyleSettings()));
    edit.resize(600, 300);
    edit.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&edit));
    QSignalSpy loaded(&edit, &QcbsRichTextEdit::textLoaded);
    ASSERT_TRUE(edit.loadFile(file.fileName()));
    EXPECT_TRUE(edit.isLoading());
    // The first screen at once, the rest to come; the view stays where the user put it.
    EXPECT_EQ(edit.byteLength(), QcbsSlicedTextLoader::FirstSliceBytes);
    EXPECT_TRUE(edit.isUtf8Text());
    // The user cannot change a text still coming in.
    QTest::keyClicks(&edit, "xyz");
    edit.setContentsPos(0, 100);
    ASSERT_EQ(edit.contentsY(), 100);
    EXPECT_TRUE(runUntil([&] { return !edit.isLoading(); }));
    EXPECT_EQ(loaded.count(), 1);
    EXPECT_EQ(edit.bytes(), bytes);
    EXPECT_EQ(edit.contentsY(), 100);
    EXPECT_FALSE(edit.isUtf8Text());
    EXPECT_EQ(edit.lineEnd(), "\r\n");
    EXPECT_FALSE(edit.isModified());
    EXPECT_FALSE(edit.isUndoAvailable());
    EXPECT_FALSE(edit.isReadOnly());
    EXPECT_FALSE(edit.loadFile(dir.path()));  // a directory
    EXPECT_FALSE(edit.loadFile(dir.filePath("missing.cif")));
}

TEST(QcbsSlicedTextLoader, ANewLoadAbandonsTheOneRunning) {
    QcbsRichTextEdit edit;
    edit.setReadOnly(true);
    QcbsSlicedTextLoader loader(&edit);
    QSignalSpy finished(&loader, &QcbsSlicedTextLoader::finished);
    QByteArray big;
    while (big.size() < 4 * 1024 * 1024) big += "_x 1\n";
    loader.loadBytes(big);
    ASSERT_TRUE(loader.isLoading());
    loader.loadBytes("data_second\n");
    EXPECT_FALSE(loader.isLoading());  // a small text goes in at once
    EXPECT_EQ(finished.count(), 1);
    // The abandoned worker's text never arrives.
    QTest::qWait(500);
    EXPECT_EQ(edit.bytes(), "data_second\n");
    EXPECT_EQ(finished.count(), 1);
    EXPECT_TRUE(edit.isReadOnly());  // as it was before the first load
}

}  // namespace
