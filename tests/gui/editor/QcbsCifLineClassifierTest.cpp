// How single CIF lines are classified: one style letter per character (see
// HighlightTestSupport.hpp) and the state handed to the next line.
#include <gtest/gtest.h>

#include <QString>

#include "HighlightTestSupport.hpp"
#include "editor/QcbsCifLineClassifier.hpp"

namespace {

constexpr int Fresh = -1;
constexpr int InQuote = QcbsCifLineClassifier::InQuotedStringState;
constexpr int InField = QcbsCifLineClassifier::InTextFieldState;
constexpr int Sup = QcbsCifLineClassifier::SuperscriptFlag;
constexpr int Sub = QcbsCifLineClassifier::SubscriptFlag;

struct Line {
    std::string styles;
    int state;
};

// Classifies one line and returns the styles of its own characters.
Line classify(QcbsCifLineClassifier& classifier, const QString& text, int incoming = Fresh) {
    const int state = classifier.classify(text, incoming);
    const auto& styles = classifier.styles();
    std::string letters = styleLetters(styles);
    letters.resize(static_cast<std::size_t>(classifier.lineLength()));
    return {letters, state};
}

std::string styles(const QString& text, int incoming = Fresh, const CifDictionary* dictionary = nullptr) {
    QcbsCifLineClassifier classifier(dictionary);
    return classify(classifier, text, incoming).styles;
}

int endState(const QString& text, int incoming = Fresh) {
    QcbsCifLineClassifier classifier;
    return classifier.classify(text, incoming);
}

TEST(QcbsCifLineClassifier, BlockHeadersAndTheLoopKeywordAreExactLowerCaseWords) {
    EXPECT_EQ(styles("data_x"), "TTTTTT");
    EXPECT_EQ(styles("data_mine  # first"), "TTTTTTTTTSSCCCCCCC");
    EXPECT_EQ(styles("data_"), "TTTTT");
    EXPECT_EQ(styles("data x"), "SSSSSS");
    EXPECT_EQ(styles("Data_x DATA_x"), "SSSSSSSSSSSSS");
    EXPECT_EQ(styles("x data_b"), "SSTTTTTT");
    // save_, global_ and stop_ have no style of their own.
    EXPECT_EQ(styles("save_a global_ stop_"), std::string(20, 'S'));
    // Only the exact word loop_ is a keyword.
    EXPECT_EQ(styles("  loop_ _a"), "SSKKKKKSUU");
    EXPECT_EQ(styles("LOOP_ Loop_ loop_x xloop_"), std::string(25, 'S'));
}

TEST(QcbsCifLineClassifier, WithoutALineEndSeparatorATokenAtTheEndStaysUnexamined) {
    QcbsCifLineClassifier classifier(nullptr, QcbsCifLineClassifier::LineEnd::Nothing);
    EXPECT_EQ(classify(classifier, "loop_").styles, "SSSSS");
    EXPECT_EQ(classify(classifier, "data_x").styles, "SSSSSS");
    EXPECT_EQ(classify(classifier, "loop_ data_x").styles, "KKKKKSSSSSSS");
    EXPECT_EQ(classify(classifier, "_unknown").styles, "DDDDDDDD");
    // A lone semicolon opens a field only for its own line.
    EXPECT_EQ(classify(classifier, ";").state, 0);
    EXPECT_EQ(classify(classifier, ";text").state, InField);
}

TEST(QcbsCifLineClassifier, DataNamesAreCustomUnlessTheDictionaryDefinesThem) {
    SmallTestDictionary dictionary{"_cell_length_a"};
    EXPECT_EQ(styles("_cell_length_a 5.0", Fresh, &dictionary), "DDDDDDDDDDDDDDSSSS");
    EXPECT_EQ(styles("_CELL_LENGTH_A", Fresh, &dictionary), "DDDDDDDDDDDDDD");
    EXPECT_EQ(styles("_cell_length_b 5.0", Fresh, &dictionary), "UUUUUUUUUUUUUUSSSS");
    // With no dictionary every data name is custom.
    EXPECT_EQ(styles("_cell_length_a 5.0"), "UUUUUUUUUUUUUUSSSS");
}

TEST(QcbsCifLineClassifier, OneTrailingFullStopOrCommaIsLeftOutOfTheLookUp) {
    SmallTestDictionary dictionary{"_cell_length_a"};
    EXPECT_EQ(styles("_cell_length_a. 1", Fresh, &dictionary), "DDDDDDDDDDDDDDDSS");
    EXPECT_EQ(styles("_cell_length_a, 1", Fresh, &dictionary), "DDDDDDDDDDDDDDDSS");
    EXPECT_EQ(styles("_cell_length_a.. 1", Fresh, &dictionary), "UUUUUUUUUUUUUUUUSS");
    const std::vector<std::string> asked{"_cell_length_a", "_cell_length_a", "_cell_length_a."};
    EXPECT_EQ(dictionary.asked(), asked);
}

TEST(QcbsCifLineClassifier, WhereDataNamesStartAndEnd) {
    // Only an underscore at the start of the line or after a blank starts one.
    EXPECT_EQ(styles("a_b _c"), "SSSSUU");
    // The equals sign ends a data name; so does any other separator.
    EXPECT_EQ(styles("_abc=1"), "UUUUSS");
    EXPECT_EQ(styles("_a#b c"), "UUUUSS");
    // Inside a quoted string an underscore is ordinary text.
    EXPECT_EQ(styles("'_a b' c"), "SSSSSSSS");
}

TEST(QcbsCifLineClassifier, TheSeparatorAfterADataNameKeepsTheStyleLeftByThePreviousLine) {
    QcbsCifLineClassifier classifier;
    classify(classifier, "#####");
    EXPECT_EQ(classify(classifier, "_a b").styles, "UUCS");
    classify(classifier, "\x01\x01\x01");
    EXPECT_EQ(classify(classifier, "_a\tb").styles, "UUIS");
}

TEST(QcbsCifLineClassifier, CommentsStartAtAHashAfterABlankOrAtTheLineStart) {
    EXPECT_EQ(styles("# note"), "CCCCCC");
    EXPECT_EQ(styles("  #x"), "SSCC");
    EXPECT_EQ(styles("a #b c"), "SSCCCC");
    EXPECT_EQ(styles("a#b c"), "SSSSS");
    // Nothing is special inside a comment except rejected characters and markup.
    EXPECT_EQ(styles("# \\a 'x _y data_z"), std::string(17, 'C'));
    EXPECT_EQ(styles("#\x7f"), "CI");
    EXPECT_EQ(styles("# x^2^"), "CCCMPM");
    EXPECT_EQ(endState("# 'open"), 0);
}

TEST(QcbsCifLineClassifier, QuotesOpenStringsOnlyWhereTheyStandApart) {
    // Quoted strings are shown as standard text.
    EXPECT_EQ(styles("'it' x"), "SSSSSS");
    EXPECT_EQ(endState("'it'"), 0);
    // A quote inside a word belongs to the word.
    EXPECT_EQ(endState("it's"), 0);
    EXPECT_EQ(endState("f(x)'(y) a'b"), 0);
    // A quote right after a word never opens a string.
    EXPECT_EQ(styles("x' _a b"), "SSSUUSS");
    EXPECT_EQ(endState("x' y"), 0);
    EXPECT_EQ(endState("x 'y z"), InQuote);
    // Either quote closes a string opened by the other.
    EXPECT_EQ(endState("\"a' b"), 0);
}

TEST(QcbsCifLineClassifier, AnUnterminatedQuotedStringContinuesOnTheNextLine) {
    QcbsCifLineClassifier classifier;
    const Line first = classify(classifier, "_title 'abc");
    EXPECT_EQ(first.state, InQuote);
    const Line second = classify(classifier, "#no comment _x", first.state);
    EXPECT_EQ(second.styles, std::string(14, 'S'));
    EXPECT_EQ(second.state, InQuote);
    const Line third = classify(classifier, "de' _x y", second.state);
    EXPECT_EQ(third.styles, "SSSSUUSS");
    EXPECT_EQ(third.state, 0);
}

TEST(QcbsCifLineClassifier, SemicolonsAtTheLineStartOpenAndCloseTextFields) {
    QcbsCifLineClassifier classifier;
    SmallTestDictionary dictionary{"_publ_section_title"};
    classifier.setDictionary(&dictionary);
    const Line name = classify(classifier, "_publ_section_title");
    EXPECT_EQ(name.styles, std::string(19, 'D'));
    const Line open = classify(classifier, ";", name.state);
    EXPECT_EQ(open.styles, "S");
    ASSERT_EQ(open.state, InField);
    const Line inside = classify(classifier, "data_x loop_ # _a 'b", open.state);
    EXPECT_EQ(inside.styles, std::string(20, 'X'));
    EXPECT_EQ(inside.state, InField);
    const Line indented = classify(classifier, "  ; still text", inside.state);
    EXPECT_EQ(indented.styles, "XXSSSSSSSSSSSS");
    EXPECT_EQ(indented.state, 0);
    const Line opened = classify(classifier, " ;first line", 0);
    EXPECT_EQ(opened.styles, "SSXXXXXXXXXX");
    EXPECT_EQ(opened.state, InField);
    const Line closed = classify(classifier, "; _a", opened.state);
    EXPECT_EQ(closed.styles, "SSUU");
    EXPECT_EQ(closed.state, 0);
    // Anywhere else a semicolon separates.
    EXPECT_EQ(classify(classifier, "a;b _c", 0).styles, "SSSSUU");
    EXPECT_EQ(classify(classifier, "a;b", 0).state, 0);
}

TEST(QcbsCifLineClassifier, BackslashCodesMarkSpecialCharacters) {
    EXPECT_EQ(styles("\\a b"), "NYSS");
    EXPECT_EQ(styles("x\\1"), "SNN");
    EXPECT_EQ(styles("\\%A \\'e \\;s \\(x"), "NNNSNNNSNNNSNNN");
    EXPECT_EQ(styles("\\\\a"), "SSS");
    EXPECT_EQ(styles("\\#e"), "NNS");
    // Codes are marked in quoted strings and text fields, not in comments.
    EXPECT_EQ(styles("'\\b'"), "SNYS");
    EXPECT_EQ(styles("text \\b", InField), "XXXXXNY");
    EXPECT_EQ(styles("#\\b"), "CCC");
    // A backslash closing a data name is marked with its separator.
    EXPECT_EQ(styles("_a\\ b"), "UUNNS");
}

TEST(QcbsCifLineClassifier, CharactersTheCifLibraryRejectsAreInvalidEverywhere) {
    EXPECT_EQ(styles(QString::fromUtf8("caf\u00e9 ok")), "SSSISSS");
    EXPECT_EQ(styles(QString::fromUtf8("a\u03b1b")), "SIS");
    EXPECT_EQ(styles("a\x7f\tb"), "SISS");
    EXPECT_EQ(styles("text\x01", InField), "XXXXI");
    // Ending a data name re-styles all of it, rejected characters included.
    EXPECT_EQ(styles(QString::fromUtf8("_n\u00e9 x")), "UUUSS");
}

TEST(QcbsCifLineClassifier, CircumflexAndTildeMarkSuperAndSubscripts) {
    EXPECT_EQ(styles("x^2^ y"), "SMPMSS");
    EXPECT_EQ(styles("x~2~ y"), "SMPMSS");
    EXPECT_EQ(styles("^a~b~c"), "MPMPMS");
    EXPECT_EQ(styles("a\\^b^"), "SNNNM");
    // Markup ignores quotes and comments on the line.
    EXPECT_EQ(styles("'a^b' #c^d"), "SSMPPPPPMC");
}

TEST(QcbsCifLineClassifier, AnOpenMarkupIsCarriedOnlyInsideATextField) {
    QcbsCifLineClassifier classifier;
    const Line opened = classify(classifier, "a^b", InField);
    EXPECT_EQ(opened.styles, "XMP");
    ASSERT_EQ(opened.state, InField | Sup);
    const Line carried = classify(classifier, "cd~e", opened.state);
    EXPECT_EQ(carried.styles, "PPMP");
    ASSERT_EQ(carried.state, InField | Sub);
    // The semicolon that closes the field also closes the markup.
    const Line closed = classify(classifier, ";x", carried.state);
    EXPECT_EQ(closed.styles, "SS");
    EXPECT_EQ(closed.state, 0);
    // Outside a text field an open markup ends with the line.
    EXPECT_EQ(endState("a^b"), 0);
    EXPECT_EQ(endState("'a^b"), InQuote);
}

TEST(QcbsCifLineClassifier, UnknownIncomingStatesStartAfresh) {
    EXPECT_EQ(endState("'abc", -2), InQuote);
    EXPECT_EQ(styles("x y", -2), "SSS");
    EXPECT_EQ(styles("_a b", 0x7f0000), "UUSS");
    // Flags come in with whatever state they accompany.
    EXPECT_EQ(styles("ab", Sub), "PP");
}

// The runs of equal style a classifier reports, as "count letter" pairs.
std::string runs(const QcbsCifLineClassifier& classifier) {
    std::string text;
    classifier.forEachRun([&text](int start, int count, QcbsFontStyleSettings::SyntaxStyle style) {
        text += std::to_string(start) + "+" + std::to_string(count) + styleLetter(style) + " ";
    });
    return text;
}

TEST(QcbsCifLineClassifier, TheFastPathForPlainRunsAgreesWithTheCharacterByCharacterPath) {
    // Random lines from pieces that meet every rule, fed to two classifiers
    // in the same order, so even the styles left over from earlier lines
    // must agree.
    const std::vector<QString> pieces{
        "a", "Zq", "0.5(3)", " ", "\t", "=",   "data_", "loop_", "#", "_",    "'",    "\"", ";", "\\", "^",
        "~", "\r", "e'x",    "(", ")",  "xy.", "LOOP_", ",",     "%", "\x01", "\x7f", "d",  "l", "--", "_n"};
    QcbsCifLineClassifier fast;
    QcbsCifLineClassifier slow;
    slow.setFastRuns(false);
    const QString nonLatin1 = QString::fromUtf8("\u03b1\u00e9");
    unsigned seed = 7;
    auto next = [&seed](unsigned bound) {
        seed = seed * 1103515245u + 12345u;
        return (seed >> 16) % bound;
    };
    const int incoming[] = {-1, 0, InQuote, InField, InField | Sup, InField | Sub, 8};
    for (int lineNumber = 0; lineNumber < 20000; ++lineNumber) {
        QString line;
        const unsigned count = next(12);
        for (unsigned k = 0; k < count; ++k) line += next(50) == 0 ? nonLatin1 : pieces[next(pieces.size())];
        const int state = incoming[next(7)];
        ASSERT_EQ(fast.classify(line, state), slow.classify(line, state)) << line.toStdString();
        ASSERT_EQ(styleLetters(fast.styles()), styleLetters(slow.styles())) << line.toStdString();
        ASSERT_EQ(runs(fast), runs(slow)) << line.toStdString();
    }
}

}  // namespace
