// SPDX-License-Identifier: GPL-3.0-or-later
// The highlighter as the editor's lexer: styles per character, states per line, edits, big texts.
// An edit is followed only as far as it changes states; a big text is styled lazily, the lines in
// view first, to the same result as all at once, without counting as an edit.
#include <gtest/gtest.h>

#include <QScrollBar>
#include <QSignalSpy>

#include "GuiTestSupport.hpp"
#include "HighlightTestSupport.hpp"
#include "editor/QcbsCifFolding.hpp"

namespace {

using Sci = QsciScintillaBase;
constexpr int InQuote = QcbsCifLineClassifier::InQuotedStringState;
constexpr int InField = QcbsCifLineClassifier::InTextFieldState;

class Highlighting : public ::testing::Test {
protected:
    void insert(int line, const QString& text) {
        edit.setCursorPosition(line, 0);
        edit.insertPlainText(text);
    }
    ::testing::AssertionResult sameAsAtOnce(Blanks blanks = Blanks::Compared) {
        styleEverything(edit);
        return sameHighlighting(documentLetters(edit, blanks),
                                styledAtOnce(edit.toPlainText(), settings, dictionary, blanks));
    }
    int foldLevel(int line) const {
        return static_cast<int>(edit.SendScintilla(Sci::SCI_GETFOLDLEVEL, line));
    }

    THandle<CifDictionary> dictionary{new SmallTestDictionary{"_cell_length_a", "_atom_site_label"}};
    THandle<QcbsFontStyleSettings> settings{new QcbsFontStyleSettings()};
    QcbsRichTextEdit edit{dictionary, settings};
};

TEST_F(Highlighting, EachCharacterGetsItsStyleAndEachLineHandsItsStateToTheNext) {
    // Line ends of every kind, and characters of several bytes.
    edit.setPlainText(
        QString::fromUtf8("_cell_length_a 1\r\ndata_x\r_title 'open\nstill' _y\nloop_\n;\ntext ^up\nmore\n;\n"
                          "_name '\xc3\x85sa \xce\xb1' # \xc3\xa9t\xc3\xa9\n\\a\xe2\x80\xa8x"));
    styleEverything(edit);
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
    };
    ASSERT_EQ(edit.lines(), 11);
    for (int i = 0; i < 9; ++i) {
        EXPECT_EQ(lineLetters(edit, i), expected[i].first) << i;
        EXPECT_EQ(lineState(edit, i), expected[i].second) << i;
    }
    // Characters of several bytes get their character's style, each as the
    // classifier gives it (U+2028 inside a line is no line end).
    QcbsCifLineClassifier classifier(dictionary.get());
    int state = lineState(edit, 8);
    for (int i = 9; i < 11; ++i) {
        state = classifier.classify(edit.text(i), state);
        std::string letters = styleLetters(classifier.styles());
        letters.resize(static_cast<std::size_t>(classifier.lineLength()));
        EXPECT_EQ(lineLetters(edit, i), letters) << i;
        EXPECT_EQ(lineState(edit, i), state) << i;
    }
    EXPECT_EQ(lineLetters(edit, 10).substr(0, 2), "NY");
    // A line end takes the style of what it ends: here the text field's.
    EXPECT_EQ(edit.SendScintilla(Sci::SCI_GETSTYLEAT, edit.positionOf(5, 1)), QcbsFontStyleSettings::String);
}

TEST_F(Highlighting, LoopsSaveFramesAndTextFieldsBecomeFolds) {
    edit.setPlainText(
        "data_a\n"      // 0
        "loop_\n"       // 1 loop
        "_x\n"          // 2
        "_y\n"          // 3
        "1 2\n"         // 4
        ";\n"           // 5 text field, a value of the loop
        "text\n"        // 6
        ";\n"           // 7
        "_z 3\n"        // 8 ends the loop
        "save_frame\n"  // 9 frame
        "LOOP_ _q\n"    // 10 loop in the frame (keywords in any case)
        "5\n"           // 11
        "save_\n"       // 12 closes the frame
        "_w 4\n");      // 13
    styleEverything(edit);
    const auto depth = [this](int line) {
        return (foldLevel(line) & Sci::SC_FOLDLEVELNUMBERMASK) - Sci::SC_FOLDLEVELBASE;
    };
    const auto header = [this](int line) { return (foldLevel(line) & Sci::SC_FOLDLEVELHEADERFLAG) != 0; };
    const int depths[] = {0, 0, 1, 1, 1, 1, 2, 2, 0, 0, 1, 2, 1, 0};
    const bool headers[] = {false, true,  false, false, false, true,  false,
                            false, false, true,  true,  false, false, false};
    for (int line = 0; line < 14; ++line) {
        EXPECT_EQ(depth(line), depths[line]) << line;
        EXPECT_EQ(header(line), headers[line]) << line;
    }

    // Folding the loop hides its lines and the text field in it.
    edit.SendScintilla(Sci::SCI_FOLDLINE, 1, Sci::SC_FOLDACTION_CONTRACT);
    for (int line = 2; line <= 7; ++line)
        EXPECT_FALSE(edit.SendScintilla(Sci::SCI_GETLINEVISIBLE, line)) << line;
    EXPECT_TRUE(edit.SendScintilla(Sci::SCI_GETLINEVISIBLE, 8));
    // An edit that removes the fold point shows its lines again.
    edit.setCursorPosition(1, 0);
    edit.SendScintilla(Sci::SCI_SETSEL, edit.positionOf(1, 0), edit.positionOf(1, 5));
    edit.insertPlainText("#");
    styleEverything(edit);
    for (int line = 2; line <= 7; ++line)
        EXPECT_TRUE(edit.SendScintilla(Sci::SCI_GETLINEVISIBLE, line)) << line;
}

TEST_F(Highlighting, AnEditIsFollowedOnlyWhileItChangesTheStatesBelow) {
    edit.setPlainText(sampleCif(20000));  // 240,000 lines
    styleEverything(edit);
    const long long before = edit.highlighter()->linesStyled();

    // The line ends in the state it had: the rest is known to look as it did.
    insert(5, "loop_ ");
    styleEverything(edit);
    EXPECT_LT(edit.highlighter()->linesStyled() - before, 10000);
    EXPECT_EQ(lineLetters(edit, 5).substr(0, 6), "KKKKKS");

    // A text field opened near the top changes every state below it.
    const long long middle = edit.highlighter()->linesStyled();
    insert(1, ";\n");
    styleEverything(edit);
    EXPECT_GT(edit.highlighter()->linesStyled() - middle, 200000);
    EXPECT_TRUE(sameAsAtOnce());
}

TEST_F(Highlighting, EditsAnywhereLeaveTheSameStylesAsStylingAfreshWould) {
    edit.setPlainText(sampleCif(300));
    styleEverything(edit);
    // Edits that open and close fields and quotes, join and split lines,
    // above and below each other, styled in between only in part.
    const struct {
        int line;
        int index;
        int removed;  // characters
        const char* inserted;
    } edits[] = {
        {700, 0, 0, ";\n"}, {30, 3, 0, "'"},       {2000, 0, 12, ""}, {40, 0, 0, "loop_\n_q\n"},
        {700, 0, 2, ""},    {1500, 5, 0, "\n\n;"}, {10, 2, 40, "x"},  {3000, 0, 0, "save_a\n"},
    };
    for (const auto& change : edits) {
        const int from = edit.positionOf(change.line, change.index);
        edit.SendScintilla(Sci::SCI_SETSEL, from, std::min(edit.byteLength(), from + change.removed));
        edit.insertPlainText(change.inserted);
        // Only the part in view, as after a keystroke.
        edit.SendScintilla(Sci::SCI_COLOURISE, edit.SendScintilla(Sci::SCI_GETENDSTYLED),
                           static_cast<long>(edit.positionOf(change.line + 30, 0)));
    }
    EXPECT_TRUE(sameAsAtOnce(Blanks::Ignored));
}

TEST_F(Highlighting, ABigTextIsStyledInIdleTimeToTheSameResultWithoutCountingAsAnEdit) {
    edit.resize(600, 400);
    edit.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&edit));
    const QString text = sampleCif(5000);
    QSignalSpy changes(&edit, &QcbsRichTextEdit::textChanged);
    edit.loadText(text);
    ASSERT_TRUE(runUntil([this] { return !edit.isLoading() && everythingStyled(edit); }));
    EXPECT_TRUE(sameHighlighting(documentLetters(edit, Blanks::Ignored),
                                 styledAtOnce(text, settings, dictionary, Blanks::Ignored)));
    EXPECT_EQ(changes.count(), 0);
    EXPECT_FALSE(edit.isModified());
    EXPECT_FALSE(edit.isUndoAvailable());
}

TEST_F(Highlighting, TheLinesInViewAreColouredBeforeTheStylingFromTheTopReachesThem) {
    edit.resize(600, 400);
    edit.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&edit));
    edit.SendScintilla(Sci::SCI_SETIDLESTYLING, Sci::SC_IDLESTYLING_NONE);
    edit.setPlainText(sampleCif(2000));
    edit.setContentsPos(0, 18000);  // "data_block1500"
    ASSERT_EQ(edit.contentsY(), 18000);
    // What Scintilla does on a paint far down: a bounded slice from the top.
    edit.SendScintilla(Sci::SCI_STARTSTYLING, 0L);
    edit.highlighter()->styleText(0, 1000);
    EXPECT_LT(edit.SendScintilla(Sci::SCI_GETENDSTYLED), edit.positionOf(17000, 0));
    EXPECT_EQ(lineLetters(edit, 18000), "TTTTTTTTTTTTTT");
    EXPECT_EQ(lineLetters(edit, 18001).substr(0, 14), "DDDDDDDDDDDDDD");
    // Put right when the styling from the top comes by.
    styleEverything(edit);
    EXPECT_TRUE(sameAsAtOnce(Blanks::Ignored));
}

TEST_F(Highlighting, APaintFarBelowTheStyledPartColoursTheViewAndLeavesTheRestToIdleTime) {
    edit.resize(600, 400);
    edit.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&edit));
    edit.setPlainText(sampleCif(20000));  // 240,000 lines, nothing styled yet
    edit.setContentsPos(0, 239004);  // "data_block19917"
    const long long before = edit.highlighter()->linesStyled();
    edit.viewport()->repaint();
    // The paint the user waits for styles a minimal slice from the top (a
    // slice of idle time's size is thousands of lines) ...
    EXPECT_LT(edit.highlighter()->linesStyled() - before, 1000);
    // ... and colours the lines in view without making Scintilla grow its
    // table of line states down to them.
    EXPECT_LT(edit.SendScintilla(Sci::SCI_GETMAXLINESTATE), 10000);
    EXPECT_EQ(lineLetters(edit, 239004), "TTTTTTTTTTTTTTT");
    EXPECT_EQ(lineLetters(edit, 239005).substr(0, 14), "DDDDDDDDDDDDDD");
    // Idle time brings the rest.
    ASSERT_TRUE(runUntil([this] { return everythingStyled(edit); }));
    EXPECT_EQ(lineLetters(edit, 239004), "TTTTTTTTTTTTTTT");
    EXPECT_EQ(lineState(edit, 239011), InField);
}

TEST_F(Highlighting, NewStylesAndDictionariesRecolourWithoutTouchingTextOrHistory) {
    edit.setPlainText("data_x\n_cell_length_a 5.1 \n_custom_thing 3 \n# note\n");
    styleEverything(edit);
    EXPECT_EQ(lineLetters(edit, 1).substr(0, 14), "DDDDDDDDDDDDDD");
    EXPECT_EQ(lineLetters(edit, 2).substr(0, 13), "UUUUUUUUUUUUU");
    edit.setCursorPosition(0, 6);
    edit.insertPlainText("y");
    edit.reopenErrorHighlighting();

    edit.setDictionary(THandle<CifDictionary>(new SmallTestDictionary({"_custom_thing"})));
    styleEverything(edit);
    EXPECT_EQ(lineLetters(edit, 1).substr(0, 14), "UUUUUUUUUUUUUU");
    EXPECT_EQ(lineLetters(edit, 2).substr(0, 13), "DDDDDDDDDDDDD");
    QcbsFontStyleSettings::SyntaxStyleSettings comment =
        settings->styleSettings(QcbsFontStyleSettings::Comment);
    comment.color = QColor(200, 0, 0);
    settings->setStyleSettings(QcbsFontStyleSettings::Comment, comment);
    edit.styleUpdate();
    EXPECT_EQ(edit.SendScintilla(Sci::SCI_STYLEGETFORE, QcbsFontStyleSettings::Comment), 200);  // as BGR
    EXPECT_EQ(edit.text(0), "data_xy");
    EXPECT_TRUE(edit.isModified());
    EXPECT_TRUE(edit.isUndoAvailable());
    EXPECT_TRUE(edit.errorHighlightingAllowed());  // re-colouring is no edit

    QcbsRichTextEdit plain;
    EXPECT_EQ(plain.highlighter(), nullptr);
}

// --- folding, line by line, without an editor ---

TEST(QcbsCifFolding, EachLineGetsItsDepthAndTheContextItLeaves) {
    struct Step {
        const char* line;
        int depth;
        bool header;
        bool inField = false;  // a text field is open before the line
        bool endsInField = false;
    };
    // One document, line after line: each line starts from the context the one above left.
    const Step steps[] = {
        {"data_a", 0, false},
        {"  loop_", 0, true},
        {"  _a", 1, false},
        {"# note", 1, false},
        {"", 1, false},
        {"1", 1, false},
        {"_b 2", 0, false},  // a name after values ends the loop
        {"loop_ _c", 0, true},
        {"_d", 1, false},  // still a name of the loop
        {";", 1, true, false, true},
        {"text", 2, false, true, true},
        {";", 2, false, true, false},
        {"Save_frame", 0, true},  // the loop ends, a frame begins
        {"_e 1", 1, false},
        {"loop_", 1, true},
        {"_f", 2, false},
        {"save_", 1, false},  // closes the frame (and its loop)
        {"_g 1", 0, false},
        {"loop_", 0, true},
        {"_h", 1, false},
        {"global_", 0, false},
    };
    int context = QcbsCifFolding::NoContext;
    for (const Step& step : steps) {
        SCOPED_TRACE(step.line);
        const QcbsCifFolding::Line line =
            QcbsCifFolding::fold(QString::fromLatin1(step.line), context, step.inField, step.endsInField);
        EXPECT_EQ(line.depth, step.depth);
        EXPECT_EQ(line.header, step.header);
        EXPECT_EQ(line.blank, std::string_view(step.line).empty());
        context = line.context;
    }
    EXPECT_EQ(context, QcbsCifFolding::NoContext);
}

}  // namespace
