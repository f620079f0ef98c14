// SPDX-License-Identifier: GPL-3.0-or-later
// Loading a big text into an editor a slice at a time.
// The CIF editor's tests load a big text end to end.
#include <gtest/gtest.h>

#include <QPlainTextEdit>
#include <QSignalSpy>

#include "HighlightTestSupport.hpp"
#include "editor/QcbsSlicedTextLoader.hpp"

namespace {

TEST(QcbsSlicedTextLoader, LineEndsAndTheLastLineComeOutAsSetPlainTextMakesThem) {
    for (const QString& text :
         {QString("a\r\nb\r\n\r\nc"), QString("x\n"), QString(""), QString("\n\n;\n")}) {
        QPlainTextEdit loaded;
        QPlainTextEdit reference;
        reference.setPlainText(text);
        QcbsSlicedTextLoader loader(&loaded);
        loader.load(text);
        ASSERT_TRUE(runUntil([&] { return !loader.isLoading(); }));
        EXPECT_EQ(loaded.toPlainText(), reference.toPlainText());
        EXPECT_EQ(loaded.document()->blockCount(), reference.document()->blockCount());
    }
}

TEST(QcbsSlicedTextLoader, ANewLoadAbandonsTheOneRunning) {
    QPlainTextEdit editor;
    editor.setReadOnly(true);
    QcbsSlicedTextLoader loader(&editor);
    loader.setSliceBudget(1);
    QSignalSpy finished(&loader, &QcbsSlicedTextLoader::finished);
    loader.load(sampleCif(3000));
    QCoreApplication::processEvents();
    loader.load("data_second\n");
    ASSERT_TRUE(runUntil([&] { return !loader.isLoading(); }));
    for (int i = 0; i < 5; ++i) QCoreApplication::processEvents();
    EXPECT_EQ(editor.toPlainText(), "data_second\n");
    EXPECT_EQ(finished.count(), 1);
    EXPECT_TRUE(editor.isReadOnly());  // as it was before the first load
}

}  // namespace
