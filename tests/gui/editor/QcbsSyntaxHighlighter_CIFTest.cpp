// SPDX-License-Identifier: GPL-3.0-or-later
// The highlighter on a document: formats per run, states per line, edits, big documents.
// Edits are followed only as far as they change states; big documents are highlighted in
// slices (visible lines first) to the same result as all at once, without counting as edits.
#include <gtest/gtest.h>

#include <QPlainTextEdit>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTextCursor>

#include "GuiTestSupport.hpp"
#include "HighlightTestSupport.hpp"
#include "editor/QcbsHighlightScheduler.hpp"
#include "editor/QcbsSyntaxHighlighter_CIF.hpp"

namespace {

constexpr int InQuote = QcbsCifLineClassifier::InQuotedStringState;
constexpr int InField = QcbsCifLineClassifier::InTextFieldState;
constexpr int kRepeats = 2000;  // 24,000 lines: far more than one slice of a millisecond

// Counts the lines it formats.
class CountingHighlighter : public QcbsSyntaxHighlighter_CIF {
public:
    using QcbsSyntaxHighlighter_CIF::QcbsSyntaxHighlighter_CIF;
    int formatted = 0;

protected:
    void highlightBlock(const QString& text) override {
        ++formatted;
        QcbsSyntaxHighlighter_CIF::highlightBlock(text);
    }
};

// A document as an editor holds it (with a layout, without which Qt does
// not report edits to the highlighter), highlighted with a scheduler that
// has no view: lines are done strictly from the top.
class Highlighting : public ::testing::Test {
protected:
    // A big text, highlighted a millisecond at a time.
    void setBigText() {
        scheduler->setSliceBudget(1);
        document.setPlainText(sampleCif(kRepeats));
    }
    bool runUntilIdle() {
        return runUntil([this] { return scheduler->isIdle(); });
    }
    std::string line(int number) const { return blockLetters(document.findBlockByNumber(number), *settings); }
    int state(int number) const { return document.findBlockByNumber(number).userState(); }
    void insert(int line, const QString& text) {
        QTextCursor(document.findBlockByNumber(line)).insertText(text);
    }
    ::testing::AssertionResult sameAsAtOnce(Blanks blanks = Blanks::Compared) const {
        return sameHighlighting(documentLetters(document, *settings, blanks),
                                highlightedAtOnce(document.toPlainText(), settings, dictionary, blanks));
    }
    static QTextDocument* withLayout(QTextDocument& document) {
        document.setDocumentLayout(new QPlainTextDocumentLayout(&document));
        return &document;
    }

    THandle<CifDictionary> dictionary{new SmallTestDictionary{"_cell_length_a", "_atom_site_label"}};
    THandle<QcbsFontStyleSettings> settings{new QcbsFontStyleSettings()};
    QTextDocument document;
    CountingHighlighter* highlighter = new CountingHighlighter(dictionary, settings, withLayout(document));
    QcbsHighlightScheduler* scheduler = new QcbsHighlightScheduler(highlighter, nullptr);
};

TEST_F(Highlighting, EachLineIsFormattedAndHandsItsStateToTheNext) {
    document.setPlainText("_cell_length_a 1\ndata_x\n_title 'open\nstill' _y\nloop_\n;\ntext ^up\nmore\n;\n");
    const std::pair<std::string, int> expected[] = {
        {"DDDDDDDDDDDDDDSS", 0},
        {"TTTTTT", 0},
        {"UUUUUUSSSSSS", InQuote},
        {"SSSSSSSUU", 0},
        {"KKKKK", 0},
        {"S", InField},
        {"XXXXXMPP", InField | QcbsCifLineClassifier::SuperscriptFlag},
        {"PPPP", InField | QcbsCifLineClassifier::SuperscriptFlag},
        {"S", 0},
        {"", 0}};
    ASSERT_EQ(document.blockCount(), static_cast<int>(std::size(expected)));
    for (int i = 0; i < document.blockCount(); ++i) {
        EXPECT_EQ(line(i), expected[i].first) << i;
        EXPECT_EQ(state(i), expected[i].second) << i;
    }
}

TEST_F(Highlighting, AnEditRehighlightsTheLinesBelowOnlyWhileItsEndStateChanges) {
    // A slice may end early on a busy machine: each step waits for the
    // highlighting to settle before it counts.
    const auto edit = [this](int line, const QString& text) {
        highlighter->formatted = 0;
        insert(line, text);
        return runUntilIdle() ? highlighter->formatted : -1;
    };
    document.setPlainText("a 1\nb 2\nc 3\nd 4");
    ASSERT_TRUE(runUntilIdle());
    EXPECT_EQ(edit(1, "_e "), 1);
    EXPECT_EQ(line(1), "UUSSSS");
    EXPECT_EQ(edit(1, "'"), 3);
    EXPECT_EQ(state(3), InQuote);
    // A text field opened and closed again further down.
    edit(0, ";\n");
    EXPECT_EQ(line(2), std::string(7, 'X'));
    EXPECT_EQ(state(4), InField);
    edit(3, ";\n");
    EXPECT_EQ(line(3), "S");
    EXPECT_EQ(line(4), "SSS");
    EXPECT_EQ(state(4), 0);
}

TEST_F(Highlighting, ABigTextIsHighlightedInSlicesToTheSameResultWithoutCountingAsAnEdit) {
    QSignalSpy finished(scheduler, &QcbsHighlightScheduler::finished);
    setBigText();
    // The pass of setPlainText stopped early and left the rest for later.
    EXPECT_FALSE(scheduler->isIdle());
    EXPECT_EQ(scheduler->dirtyRanges(), 1);
    EXPECT_EQ(document.lastBlock().previous().userState(), -1);

    document.setModified(false);
    QSignalSpy contentsChanged(&document, &QTextDocument::contentsChanged);
    QSignalSpy contentsChange(&document, &QTextDocument::contentsChange);
    ASSERT_TRUE(runUntilIdle());
    EXPECT_EQ(finished.count(), 1);
    EXPECT_TRUE(sameAsAtOnce());
    EXPECT_EQ(contentsChanged.count(), 0);
    EXPECT_EQ(contentsChange.count(), 0);
    EXPECT_FALSE(document.isModified());
    EXPECT_FALSE(document.isUndoAvailable());
}

TEST_F(Highlighting, AnEditToABigTextIsFollowedInSlicesOnlyWhileItChangesStates) {
    setBigText();
    ASSERT_TRUE(runUntilIdle());
    // The line's end state stays: nothing is left for later.
    insert(5, "loop_ ");
    EXPECT_TRUE(scheduler->isIdle());
    EXPECT_EQ(line(5).substr(0, 6), "KKKKKS");

    // A text field opened at the top changes every state below it.
    const std::string farBefore = line(20000);
    insert(1, ";\n");
    EXPECT_FALSE(scheduler->isIdle());
    EXPECT_EQ(line(20001), farBefore);
    ASSERT_TRUE(runUntilIdle());
    EXPECT_TRUE(sameAsAtOnce());
}

TEST_F(Highlighting, RehighlightingEverythingRestylesLinesWhoseStateStaysTheSame) {
    setBigText();
    ASSERT_TRUE(runUntilIdle());
    QcbsFontStyleSettings::SyntaxStyleSettings standard =
        settings->styleSettings(QcbsFontStyleSettings::Standard);
    standard.color = QColor(10, 20, 30);
    settings->setStyleSettings(QcbsFontStyleSettings::Standard, standard);
    highlighter->updateStyles();
    highlighter->rehighlightInSlices();
    EXPECT_FALSE(scheduler->isIdle());
    ASSERT_TRUE(runUntilIdle());
    EXPECT_TRUE(sameAsAtOnce());
    const QTextBlock lastLoopRow = document.findBlockByNumber(kRepeats * 12 - 6);  // "1999 'x y'"
    EXPECT_EQ(lastLoopRow.layout()->formats().front().format.foreground().color(), QColor(10, 20, 30));
}

TEST_F(Highlighting, EditsBetweenSlicesAreFollowedAndTheResultStaysExact) {
    setBigText();
    for (int round = 0; round < 3; ++round) {
        for (int i = 0; i < 3; ++i) QCoreApplication::processEvents();
        QTextCursor cursor(document.findBlockByNumber(3000 * round + 7));
        cursor.insertText(round == 1 ? "'" : ";\n");
        cursor.setPosition(document.findBlockByNumber(100 + round).position());
        cursor.movePosition(QTextCursor::NextBlock, QTextCursor::KeepAnchor, 40);
        cursor.removeSelectedText();
    }
    ASSERT_TRUE(runUntilIdle());
    EXPECT_TRUE(sameAsAtOnce(Blanks::Ignored));
}

TEST(QcbsHighlightScheduler, TheVisibleLinesAreHighlightedBeforeTheLinesAboveThem) {
    THandle<QcbsFontStyleSettings> settings(new QcbsFontStyleSettings());
    QPlainTextEdit editor;
    editor.resize(600, 400);
    editor.show();
    auto* highlighter = new QcbsSyntaxHighlighter_CIF(THandle<CifDictionary>(), settings, &editor);
    QcbsHighlightScheduler* scheduler = highlighter->scheduler();  // made for the editor's view
    ASSERT_NE(scheduler, nullptr);
    scheduler->setSliceBudget(1);
    editor.setPlainText(sampleCif(kRepeats));
    ASSERT_FALSE(scheduler->isIdle());
    const QTextBlock target = editor.document()->findBlockByNumber(18000);  // "data_block1500"
    editor.verticalScrollBar()->setValue(target.blockNumber());
    const QTextBlock shown = editor.cursorForPosition(QPoint(0, 0)).block();
    ASSERT_GT(shown.blockNumber(), 17000);
    ASSERT_TRUE(waitUntil(
        [&] { return blockLetters(shown, *settings).find_first_not_of('.') != std::string::npos; }));

    EXPECT_EQ(editor.document()->findBlockByNumber(12000).userState(), -1);  // not reached yet
    ASSERT_TRUE(runUntil([scheduler] { return scheduler->isIdle(); }));
    EXPECT_EQ(blockLetters(target, *settings), "TTTTTTTTTTTTTT");
}

TEST_F(Highlighting, ADeletedHighlighterTakesItsSchedulerAlong) {
    document.setPlainText("loop_\n_x");
    EXPECT_EQ(line(0), "KKKKK");
    delete highlighter;
    document.setPlainText("loop_");
    EXPECT_EQ(line(0), ".....");
}

}  // namespace
