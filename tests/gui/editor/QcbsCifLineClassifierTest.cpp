// SPDX-License-Identifier: GPL-3.0-or-later
// How single CIF lines are classified: a style letter per character, the state handed on.
// The style letters are those of HighlightTestSupport.hpp.
#include <gtest/gtest.h>

#include <QString>

#include "HighlightTestSupport.hpp"
#include "editor/QcbsCifLineClassifier.hpp"

namespace {

using LineEnd = QcbsCifLineClassifier::LineEnd;
constexpr int Fresh = -1;
constexpr int InQuote = QcbsCifLineClassifier::InQuotedStringState;
constexpr int InField = QcbsCifLineClassifier::InTextFieldState;
constexpr int Sup = QcbsCifLineClassifier::SuperscriptFlag;
constexpr int Sub = QcbsCifLineClassifier::SubscriptFlag;

struct Line {
    const char* text;  // UTF-8
    std::string styles;
    int state = 0;  // handed to the next line
    int incoming = Fresh;
    LineEnd lineEnd = LineEnd::Separator;
};

// Classifies the line; gives its own characters' styles and its end state.
std::pair<std::string, int> classify(QcbsCifLineClassifier& classifier, const char* text, int incoming) {
    const int state = classifier.classify(QString::fromUtf8(text), incoming);
    std::string letters = styleLetters(classifier.styles());
    letters.resize(static_cast<std::size_t>(classifier.lineLength()));
    return {letters, state};
}

void expectLine(QcbsCifLineClassifier& classifier, const Line& line) {
    SCOPED_TRACE(line.text);
    const auto [styles, state] = classify(classifier, line.text, line.incoming);
    EXPECT_EQ(styles, line.styles);
    EXPECT_EQ(state, line.state);
}

TEST(QcbsCifLineClassifier, EachLineGetsAStylePerCharacterAndAnEndState) {
    const SmallTestDictionary dictionary{"_cell_length_a"};
    const Line lines[] = {
        // Block headers and the keyword loop_ are exact lower-case words;
        // save_, global_ and stop_ have no style of their own.
        {"data_x", "TTTTTT"},
        {"data_mine  # first", "TTTTTTTTTSSCCCCCCC"},
        {"data_", "TTTTT"},
        {"data x", "SSSSSS"},
        {"Data_x DATA_x", std::string(13, 'S')},
        {"x data_b", "SSTTTTTT"},
        {"save_a global_ stop_", std::string(20, 'S')},
        {"  loop_ _a", "SSKKKKKSUU"},
        {"LOOP_ Loop_ loop_x xloop_", std::string(25, 'S')},
        // Without a line-end separator a token at the end stays unexamined,
        // and a lone semicolon opens a field only for its own line.
        {"loop_", "SSSSS", 0, Fresh, LineEnd::Nothing},
        {"loop_ data_x", "KKKKKSSSSSSS", 0, Fresh, LineEnd::Nothing},
        {"_unknown", "DDDDDDDD", 0, Fresh, LineEnd::Nothing},
        {";", "S", 0, Fresh, LineEnd::Nothing},
        {";text", "SXXXX", InField, Fresh, LineEnd::Nothing},
        // Data names: defined ones (one trailing "." or "," left out of the
        // look-up) and custom ones.
        {"_cell_length_a 5.0", "DDDDDDDDDDDDDDSSSS"},
        {"_cell_length_b 5.0", "UUUUUUUUUUUUUUSSSS"},
        {"_cell_length_a. 1", "DDDDDDDDDDDDDDDSS"},
        {"_cell_length_a.. 1", "UUUUUUUUUUUUUUUUSS"},
        // Only an underscore at the line start or after a blank starts a
        // name; any separator ends it; in a quoted string it is plain text.
        {"a_b _c", "SSSSUU"},
        {"_abc=1", "UUUUSS"},
        {"_a#b c", "UUUUSS"},
        {"'_a b' c", "SSSSSSSS"},
        // Comments start at a hash after a blank or at the line start;
        // inside them only rejected characters and markup show.
        {"# note", "CCCCCC"},
        {"  #x", "SSCC"},
        {"a #b c", "SSCCCC"},
        {"a#b c", "SSSSS"},
        {"# \\a 'x _y data_z", std::string(17, 'C')},
        {"#\x7f", "CI"},
        {"# x^2^", "CCCMPM"},
        {"# 'open", "CCCCCCC"},
        // Quotes open strings only where they stand apart; either quote
        // closes a string the other opened.
        {"'it' x", "SSSSSS"},
        {"f(x)'(y) a'b", std::string(12, 'S')},
        {"x' _a b", "SSSUUSS"},
        {"x 'y z", "SSSSSS", InQuote},
        {"\"a' b", "SSSSS"},
        // Semicolons at the line start (after blanks) open and close text
        // fields; anywhere else they separate.
        {";", "S", InField},
        {" ;first line", "SSXXXXXXXXXX", InField, 0},
        {"data_x loop_ # _a 'b", std::string(20, 'X'), InField, InField},
        {"  ; still text", "XXSSSSSSSSSSSS", 0, InField},
        {"; _a", "SSUU", 0, InField},
        {"a;b _c", "SSSSUU", 0, 0},
        // Backslash codes, in quoted strings and text fields too, not in
        // comments; one closing a data name is marked with its separator.
        {"\\a b", "NYSS"},
        {"x\\1", "SNN"},
        {"\\%A \\'e \\;s \\(x", "NNNSNNNSNNNSNNN"},
        {"\\\\a", "SSS"},
        {"\\#e", "NNS"},
        {"'\\b'", "SNYS"},
        {"text \\b", "XXXXXNY", InField, InField},
        {"#\\b", "CCC"},
        {"_a\\ b", "UUNNS"},
        // Characters the CIF library rejects are invalid everywhere; ending
        // a data name re-styles all of it, rejected characters included.
        {"caf\u00e9 ok", "SSSISSS"},
        {"a\u03b1b", "SIS"},
        {"a\x7f\tb", "SISS"},
        {"text\x01", "XXXXI", InField, InField},
        {"_n\u00e9 x", "UUUSS"},
        // ^ and ~ mark super- and subscripts, whatever quotes and comments
        // say; outside a text field an open markup ends with the line.
        {"x^2^ y", "SMPMSS"},
        {"^a~b~c", "MPMPMS"},
        {"a\\^b^", "SNNNM"},
        {"'a^b' #c^d", "SSMPPPPPMC"},
        {"a^b", "SMP"},
        {"'a^b", "SSMP", InQuote},
        // Unknown incoming states start afresh; flags come in with any state.
        {"'abc", "SSSS", InQuote, -2},
        {"_a b", "UUSS", 0, 0x7f0000},
        {"ab", "PP", 0, Sub},
    };
    for (const Line& line : lines) {
        QcbsCifLineClassifier classifier(&dictionary, line.lineEnd);
        expectLine(classifier, line);
    }
    // With no dictionary every data name is custom.
    QcbsCifLineClassifier withoutDictionary;
    expectLine(withoutDictionary, {"_cell_length_a 5.0", "UUUUUUUUUUUUUUSSSS"});
    // The look-up leaves out one trailing "." or ",", no more.
    const SmallTestDictionary counting{"_x"};
    QcbsCifLineClassifier asking(&counting);
    for (const char* text : {"_cell_length_a. 1", "_cell_length_a, 1", "_cell_length_a.. 1"})
        classify(asking, text, Fresh);
    EXPECT_EQ(counting.asked(),
              (std::vector<std::string>{"_cell_length_a", "_cell_length_a", "_cell_length_a."}));
}

TEST(QcbsCifLineClassifier, StatesAndLeftOverStylesCarryFromLineToLine) {
    const SmallTestDictionary dictionary{"_publ_section_title"};
    struct Lines {
        int incoming;
        std::vector<Line> lines;
    };
    const Lines sequences[] = {
        // An unterminated quoted string continues on the next line.
        {Fresh,
         {{"_title 'abc", "UUUUUUSSSSS", InQuote},
          {"#no comment _x", std::string(14, 'S'), InQuote},
          {"de' _x y", "SSSSUUSS", 0}}},
        // A text field holds everything up to the line starting with ";".
        {Fresh,
         {{"_publ_section_title", std::string(19, 'D'), 0},
          {";", "S", InField},
          {"data_x loop_ # _a 'b", std::string(20, 'X'), InField},
          {"  ; still text", "XXSSSSSSSSSSSS", 0}}},
        // Open markup is carried inside a text field and closed with it.
        {InField, {{"a^b", "XMP", InField | Sup}, {"cd~e", "PPMP", InField | Sub}, {";x", "SS", 0}}},
        // The separator after a data name keeps the style the line before
        // left at its place.
        {Fresh,
         {{"#####", "CCCCC", 0}, {"_a b", "UUCS", 0}, {"\x01\x01\x01", "III", 0}, {"_a\tb", "UUIS", 0}}},
    };
    for (const Lines& sequence : sequences) {
        QcbsCifLineClassifier classifier(&dictionary);
        int state = sequence.incoming;
        for (Line line : sequence.lines) {
            line.incoming = state;
            expectLine(classifier, line);
            state = line.state;
        }
    }
}

// The runs of equal style a classifier reports, as "start+count letter".
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
