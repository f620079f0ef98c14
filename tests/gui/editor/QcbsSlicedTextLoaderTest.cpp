// Loading a big text into an editor a slice at a time.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTextDocument>
#include <functional>

#include "HighlightTestSupport.hpp"
#include "editor/QcbsHighlightScheduler.hpp"
#include "editor/QcbsSlicedTextLoader.hpp"
#include "editor/QcbsSyntaxHighlighter_CIF.hpp"

namespace {

bool runUntil(const std::function<bool()>& done, int timeoutMs = 60000) {
    QElapsedTimer clock;
    clock.start();
    while (!done() && clock.elapsed() < timeoutMs) QCoreApplication::processEvents();
    return done();
}

TEST(QcbsSlicedTextLoader, TheWholeTextArrivesInSlicesAndTheEditorIsRestoredAfterwards) {
    QPlainTextEdit editor;
    editor.setPlainText("old text");
    auto* loader = new QcbsSlicedTextLoader(&editor);
    loader->setSliceBudget(1);
    QSignalSpy finished(loader, &QcbsSlicedTextLoader::finished);
    const QString text = sampleCif(3000);

    loader->load(text);
    // The first lines are in at once, the rest is still to come.
    EXPECT_TRUE(loader->isLoading());
    EXPECT_GT(editor.document()->blockCount(), 100);
    EXPECT_LT(editor.document()->blockCount(), 36000);
    EXPECT_TRUE(editor.document()->firstBlock().text().startsWith("data_block0"));
    EXPECT_TRUE(editor.isReadOnly());

    ASSERT_TRUE(runUntil([&] { return !loader->isLoading(); }));
    EXPECT_EQ(finished.count(), 1);
    EXPECT_EQ(editor.toPlainText(), text);
    EXPECT_FALSE(editor.isReadOnly());
    EXPECT_FALSE(editor.document()->isModified());
    EXPECT_TRUE(editor.document()->isUndoRedoEnabled());
    EXPECT_FALSE(editor.document()->isUndoAvailable());
    // As after setPlainText, the cursor and the view are at the start.
    EXPECT_EQ(editor.textCursor().position(), 0);
    EXPECT_EQ(editor.verticalScrollBar()->value(), 0);
}

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

TEST(QcbsSlicedTextLoader, ALoadedTextEndsUpHighlightedAsIfSetAtOnce) {
    THandle<QcbsFontStyleSettings> settings(new QcbsFontStyleSettings());
    QPlainTextEdit editor;
    auto* highlighter = new QcbsSyntaxHighlighter_CIF(THandle<CifDictionary>(), settings, &editor);
    highlighter->scheduler()->setSliceBudget(1);
    QcbsSlicedTextLoader loader(&editor);
    loader.setSliceBudget(2);
    const QString text = sampleCif(1500);
    loader.load(text);
    ASSERT_TRUE(runUntil([&] { return !loader.isLoading() && highlighter->scheduler()->isIdle(); }));

    QTextDocument reference;
    reference.setDocumentLayout(new QPlainTextDocumentLayout(&reference));
    QcbsSyntaxHighlighter_CIF plain(THandle<CifDictionary>(), settings, &reference);
    reference.setPlainText(text);
    EXPECT_TRUE(sameHighlighting(documentLetters(*editor.document(), *settings, Blanks::Ignored),
                                 documentLetters(reference, *settings, Blanks::Ignored)));
}

}  // namespace
