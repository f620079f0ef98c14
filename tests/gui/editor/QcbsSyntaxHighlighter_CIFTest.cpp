// The highlighter on a text document: formats per run, states per line,
// re-highlighting after edits, styles and dictionaries.
#include <gtest/gtest.h>

#include <QPlainTextEdit>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <memory>

#include "GuiTestSupport.hpp"
#include "HighlightTestSupport.hpp"
#include "editor/QcbsHighlightScheduler.hpp"
#include "editor/QcbsSyntaxHighlighter_CIF.hpp"

namespace {

class HighlighterTest : public ::testing::Test {
protected:
    THandle<QcbsFontStyleSettings> settings{new QcbsFontStyleSettings()};
    QTextDocument document;

    // Documents shown in an editor have a layout; without one Qt does not
    // report edits to the highlighter.
    HighlighterTest() { document.setDocumentLayout(new QPlainTextDocumentLayout(&document)); }

    std::unique_ptr<QcbsSyntaxHighlighter_CIF> attach(
        THandle<CifDictionary> dictionary = THandle<CifDictionary>()) {
        return std::make_unique<QcbsSyntaxHighlighter_CIF>(dictionary, settings, &document);
    }
    std::string line(int number) const { return blockLetters(document.findBlockByNumber(number), *settings); }
    int state(int number) const { return document.findBlockByNumber(number).userState(); }
    void replaceLine(int number, const QString& text) {
        QTextCursor cursor(document.findBlockByNumber(number));
        cursor.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
        cursor.insertText(text);
    }
};

TEST_F(HighlighterTest, EachLineIsFormattedAndHandsItsStateToTheNext) {
    auto highlighter = attach();
    document.setPlainText("data_x\n_title 'open\nstill' _y\nloop_\n;\ntext ^up\nmore\n;\n");
    EXPECT_EQ(line(0), "TTTTTT");
    EXPECT_EQ(line(1), "UUUUUUSSSSSS");
    EXPECT_EQ(state(1), QcbsCifLineClassifier::InQuotedStringState);
    EXPECT_EQ(line(2), "SSSSSSSUU");
    EXPECT_EQ(line(3), "KKKKK");
    EXPECT_EQ(state(4), QcbsCifLineClassifier::InTextFieldState);
    EXPECT_EQ(line(5), "XXXXXMPP");
    EXPECT_EQ(state(5), QcbsCifLineClassifier::InTextFieldState | QcbsCifLineClassifier::SuperscriptFlag);
    EXPECT_EQ(line(6), "PPPP");
    EXPECT_EQ(line(7), "S");
    EXPECT_EQ(state(7), 0);
    EXPECT_EQ(line(8), "");
}

TEST_F(HighlighterTest, DefinedDataNamesDifferFromCustomOnesAndTheDictionaryCanChange) {
    THandle<SmallTestDictionary> dictionary(new SmallTestDictionary{"_cell_length_a"});
    auto highlighter = attach(dictionary);
    document.setPlainText("_cell_length_a 1\n_cell_length_x 2");
    EXPECT_EQ(line(0), "DDDDDDDDDDDDDDSS");
    EXPECT_EQ(line(1), "UUUUUUUUUUUUUUSS");

    highlighter->setDictionary(THandle<CifDictionary>());
    highlighter->rehighlightInSlices();  // no scheduler: at once
    EXPECT_EQ(line(0), "UUUUUUUUUUUUUUSS");
}

TEST_F(HighlighterTest, AnEditThatChangesALinesEndStateRehighlightsTheLinesBelow) {
    auto highlighter = attach();
    document.setPlainText("_a\nx 1\ny 2\nz 3");
    replaceLine(0, ";");
    EXPECT_EQ(line(1), "XXX");
    EXPECT_EQ(line(3), "XXX");
    EXPECT_EQ(state(3), QcbsCifLineClassifier::InTextFieldState);
    replaceLine(2, ";");
    EXPECT_EQ(line(2), "S");
    EXPECT_EQ(line(3), "SSS");
}

// Every formatted non-empty line logs a run that starts at 0.
int formattedLines(const std::string& log) {
    int lines = 0;
    for (std::size_t at = log.find("start 0 "); at != std::string::npos; at = log.find("start 0 ", at + 1))
        ++lines;
    return lines;
}

TEST_F(HighlighterTest, AnEditThatKeepsALinesEndStateStopsAtThatLine) {
    auto highlighter = attach();
    document.setPlainText("a 1\nb 2\nc 3\nd 4");
    {
        ScopedLogCapture log(3);
        QTextCursor(document.findBlockByNumber(1)).insertText("_e ");
        EXPECT_EQ(formattedLines(log.text()), 1) << log.text();
    }
    EXPECT_EQ(line(1).substr(0, 2), "UU");
    ScopedLogCapture log(3);
    QTextCursor(document.findBlockByNumber(1)).insertText("'");
    EXPECT_EQ(formattedLines(log.text()), 3) << log.text();
    EXPECT_EQ(state(3), QcbsCifLineClassifier::InQuotedStringState);
}

TEST_F(HighlighterTest, EveryRunIsLoggedAtLevelThreeOnly) {
    auto highlighter = attach();
    {
        ScopedLogCapture log(3);
        document.setPlainText("loop_ x");
        EXPECT_NE(
            log.text().find("QcbsSyntaxHighlighter_CIF::applyStyle - Set format: start 0 count 5 bold 1 "
                            "color #ff00ff"),
            std::string::npos)
            << log.text();
        EXPECT_NE(log.text().find("Set format: start 5 count 2 bold 0 color #000000"), std::string::npos);
    }
    ScopedLogCapture quiet(2);
    document.setPlainText("loop_ y");
    EXPECT_EQ(quiet.text(), "");
}

TEST_F(HighlighterTest, NewStylesShowAfterUpdateAndRehighlight) {
    auto highlighter = attach();
    document.setPlainText("# note\nx");
    QcbsFontStyleSettings::SyntaxStyleSettings comment =
        settings->styleSettings(QcbsFontStyleSettings::Comment);
    comment.color = QColor(1, 2, 3);
    settings->setStyleSettings(QcbsFontStyleSettings::Comment, comment);
    highlighter->updateStyles();
    highlighter->rehighlightInSlices();
    const auto formats = document.firstBlock().layout()->formats();
    ASSERT_EQ(formats.size(), 1);
    EXPECT_EQ(formats.front().format.foreground().color(), QColor(1, 2, 3));
    EXPECT_EQ(highlighter->format(QcbsFontStyleSettings::Comment).second, QColor(1, 2, 3));
    EXPECT_TRUE(QcbsSyntaxHighlighter_CIF::isKeyword("loop_"));
    EXPECT_FALSE(QcbsSyntaxHighlighter_CIF::isKeyword("LOOP_"));
}

TEST(QcbsSyntaxHighlighter_CIF, AnEditorsHighlighterComesWithAScheduler) {
    THandle<QcbsFontStyleSettings> settings(new QcbsFontStyleSettings());
    QPlainTextEdit editor;
    auto* highlighter = new QcbsSyntaxHighlighter_CIF(THandle<CifDictionary>(), settings, &editor);
    ASSERT_NE(highlighter->scheduler(), nullptr);
    EXPECT_EQ(highlighter->document(), editor.document());
    editor.setPlainText("loop_\n_x");
    EXPECT_EQ(blockLetters(editor.document()->firstBlock(), *settings), "KKKKK");
    delete highlighter;  // takes its scheduler along; the editor goes on without colours
    editor.setPlainText("loop_");
    EXPECT_EQ(blockLetters(editor.document()->firstBlock(), *settings), ".....");
}

}  // namespace
