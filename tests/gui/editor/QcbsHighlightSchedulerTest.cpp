// Highlighting big documents in slices: the end result equals highlighting
// everything at once, the event loop gets control between slices, visible
// lines come first, and slices never count as edits.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <memory>

#include "HighlightTestSupport.hpp"
#include "editor/QcbsHighlightScheduler.hpp"
#include "editor/QcbsSyntaxHighlighter_CIF.hpp"

namespace {

constexpr int kRepeats = 2000;  // 24,000 lines: far more than one slice of a millisecond

// Runs the event loop until the scheduler has nothing left to do.
bool runUntilIdle(const QcbsHighlightScheduler& scheduler, int timeoutMs = 60000) {
    QElapsedTimer clock;
    clock.start();
    while (!scheduler.isIdle() && clock.elapsed() < timeoutMs) QCoreApplication::processEvents();
    QCoreApplication::processEvents();  // lets the last pass close
    return scheduler.isIdle();
}

class SchedulerTest : public ::testing::Test {
protected:
    SchedulerTest() {
        document.setDocumentLayout(new QPlainTextDocumentLayout(&document));
        highlighter = std::make_unique<QcbsSyntaxHighlighter_CIF>(dictionary, settings, &document);
        scheduler = new QcbsHighlightScheduler(highlighter.get(), nullptr);
        scheduler->setSliceBudget(1);
    }

    // The same text highlighted at once, without a scheduler.
    std::string highlightedAtOnce(const QString& text, Blanks blanks = Blanks::Compared) const {
        QTextDocument reference;
        reference.setDocumentLayout(new QPlainTextDocumentLayout(&reference));
        QcbsSyntaxHighlighter_CIF plain(dictionary, settings, &reference);
        reference.setPlainText(text);
        return documentLetters(reference, *settings, blanks);
    }

    THandle<CifDictionary> dictionary{new SmallTestDictionary{"_cell_length_a", "_atom_site_label"}};
    THandle<QcbsFontStyleSettings> settings{new QcbsFontStyleSettings()};
    QTextDocument document;
    std::unique_ptr<QcbsSyntaxHighlighter_CIF> highlighter;
    QcbsHighlightScheduler* scheduler;  // owned by the highlighter
};

TEST_F(SchedulerTest, ABigTextIsHighlightedInSlicesToTheSameResult) {
    const QString text = sampleCif(kRepeats);
    QSignalSpy finished(scheduler, &QcbsHighlightScheduler::finished);
    document.setPlainText(text);
    // The pass of setPlainText stopped early and left the rest for later.
    EXPECT_FALSE(scheduler->isIdle());
    EXPECT_EQ(scheduler->dirtyRanges(), 1);
    EXPECT_EQ(document.lastBlock().previous().userState(), -1);
    ASSERT_TRUE(runUntilIdle(*scheduler));
    EXPECT_EQ(finished.count(), 1);
    EXPECT_TRUE(sameHighlighting(documentLetters(document, *settings), highlightedAtOnce(text)));
}

TEST_F(SchedulerTest, AnEditThatOpensATextFieldAtTheTopReachesTheEndInSlices) {
    document.setPlainText(sampleCif(kRepeats));
    ASSERT_TRUE(runUntilIdle(*scheduler));
    const std::string farBefore = blockLetters(document.findBlockByNumber(20000), *settings);

    QTextCursor cursor(document.findBlockByNumber(1));
    cursor.insertText(";\n");
    // Right after the edit the far lines still look as they did.
    EXPECT_FALSE(scheduler->isIdle());
    EXPECT_EQ(blockLetters(document.findBlockByNumber(20001), *settings), farBefore);

    ASSERT_TRUE(runUntilIdle(*scheduler));
    EXPECT_TRUE(
        sameHighlighting(documentLetters(document, *settings), highlightedAtOnce(document.toPlainText())));
}

TEST_F(SchedulerTest, AnEditThatKeepsTheStateLeavesNothingForLater) {
    document.setPlainText(sampleCif(kRepeats));
    ASSERT_TRUE(runUntilIdle(*scheduler));
    QTextCursor cursor(document.findBlockByNumber(5));
    cursor.insertText("loop_ ");
    EXPECT_TRUE(scheduler->isIdle());
    EXPECT_EQ(blockLetters(document.findBlockByNumber(5), *settings).substr(0, 6), "KKKKKS");
}

TEST_F(SchedulerTest, RehighlightingEverythingRestylesLinesWhoseStateStaysTheSame) {
    document.setPlainText(sampleCif(kRepeats));
    ASSERT_TRUE(runUntilIdle(*scheduler));
    QcbsFontStyleSettings::SyntaxStyleSettings standard =
        settings->styleSettings(QcbsFontStyleSettings::Standard);
    standard.color = QColor(10, 20, 30);
    settings->setStyleSettings(QcbsFontStyleSettings::Standard, standard);
    highlighter->updateStyles();
    highlighter->rehighlightInSlices();
    EXPECT_FALSE(scheduler->isIdle());
    ASSERT_TRUE(runUntilIdle(*scheduler));
    EXPECT_TRUE(
        sameHighlighting(documentLetters(document, *settings), highlightedAtOnce(document.toPlainText())));
    const QTextBlock lastLoopRow = document.findBlockByNumber(kRepeats * 12 - 6);  // "1999 'x y'"
    EXPECT_EQ(lastLoopRow.layout()->formats().front().format.foreground().color(), QColor(10, 20, 30));
}

TEST_F(SchedulerTest, EditsBetweenSlicesAreFollowedAndTheResultStaysExact) {
    document.setPlainText(sampleCif(kRepeats));
    for (int round = 0; round < 3; ++round) {
        for (int i = 0; i < 3; ++i) QCoreApplication::processEvents();
        QTextCursor cursor(document.findBlockByNumber(3000 * round + 7));
        cursor.insertText(round == 1 ? "'" : ";\n");
        cursor.setPosition(document.findBlockByNumber(100 + round).position());
        cursor.movePosition(QTextCursor::NextBlock, QTextCursor::KeepAnchor, 40);
        cursor.removeSelectedText();
    }
    ASSERT_TRUE(runUntilIdle(*scheduler));
    EXPECT_TRUE(sameHighlighting(documentLetters(document, *settings, Blanks::Ignored),
                                 highlightedAtOnce(document.toPlainText(), Blanks::Ignored)));
}

TEST(QcbsHighlightScheduler, SlicesNeitherChangeTheTextNorMarkItModified) {
    THandle<QcbsFontStyleSettings> settings(new QcbsFontStyleSettings());
    QPlainTextEdit editor;
    auto* highlighter = new QcbsSyntaxHighlighter_CIF(THandle<CifDictionary>(), settings, &editor);
    highlighter->scheduler()->setSliceBudget(1);
    editor.setPlainText(sampleCif(kRepeats));
    editor.document()->setModified(false);
    QSignalSpy textChanged(&editor, &QPlainTextEdit::textChanged);
    QSignalSpy contentsChange(editor.document(), &QTextDocument::contentsChange);
    ASSERT_TRUE(runUntilIdle(*highlighter->scheduler()));
    EXPECT_EQ(textChanged.count(), 0);
    EXPECT_EQ(contentsChange.count(), 0);
    EXPECT_FALSE(editor.document()->isModified());
    EXPECT_FALSE(editor.document()->isUndoAvailable());
}

TEST(QcbsHighlightScheduler, TheVisibleLinesAreHighlightedBeforeTheLinesAboveThem) {
    THandle<QcbsFontStyleSettings> settings(new QcbsFontStyleSettings());
    QPlainTextEdit editor;
    editor.resize(600, 400);
    editor.show();
    auto* highlighter = new QcbsSyntaxHighlighter_CIF(THandle<CifDictionary>(), settings, &editor);
    QcbsHighlightScheduler* scheduler = highlighter->scheduler();
    scheduler->setSliceBudget(1);
    editor.setPlainText(sampleCif(kRepeats));
    ASSERT_FALSE(scheduler->isIdle());

    const QTextBlock target = editor.document()->findBlockByNumber(18000);  // "data_block1500"
    editor.verticalScrollBar()->setValue(target.blockNumber());
    const QTextBlock shown = editor.cursorForPosition(QPoint(0, 0)).block();
    ASSERT_GT(shown.blockNumber(), 17000);
    for (int i = 0; i < 3; ++i) QCoreApplication::processEvents();

    EXPECT_NE(blockLetters(shown, *settings).find_first_not_of('.'), std::string::npos);
    EXPECT_EQ(editor.document()->findBlockByNumber(12000).userState(), -1);  // not reached yet
    ASSERT_TRUE(runUntilIdle(*scheduler));
    EXPECT_EQ(blockLetters(target, *settings), "TTTTTTTTTTTTTT");
}

}  // namespace
