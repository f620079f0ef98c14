// SPDX-License-Identifier: GPL-3.0-or-later
// Literal search of bytes in both directions and replace all over an editor's text.
#include <gtest/gtest.h>

#include "GuiTestSupport.hpp"
#include "editor/QcbsRichTextEdit.hpp"
#include "find/QcbsTextSearch.hpp"

namespace {

QcbsSearchOptions opts(const char* text, bool caseSensitive, bool wholeWords, bool forward) {
    return {QString::fromUtf8(text), caseSensitive, wholeWords, forward};
}

TEST(QcbsTextSearch, FindsBytesInBothDirectionsWithCaseAndWordRules) {
    const std::string_view text = "Cell cell_a cell CELL x";
    //                             0    5      12   17   22
    const struct {
        const char* needle;
        int from;
        bool caseSensitive, wholeWords, forward;
        int begin;  // -1: none
    } cases[] = {
        {"cell", 0, true, false, true, 5},     {"cell", 0, false, false, true, 0},
        {"cell", 1, false, false, true, 5},    {"cell", 1, false, true, true, 12},  // "cell_a" is one word
        {"CELL", 13, true, false, true, 17},  // a match begins at or after the start
        {"cell", 23, false, false, true, -1},  {"cell", 23, false, false, false, 17},
        {"cell", 20, false, false, false, 12},  // a backward match ends at or before the start
        {"cell", 21, false, false, false, 17}, {"cell", 11, true, true, false, -1},
        {"cell", 4, false, false, false, 0},   {"cell", 3, false, false, false, -1},
        {"x", 0, true, true, true, 22},  // a word at the end of the text
        {"", 0, true, false, true, -1},        {"a cell CELL x and more", 0, true, false, true, -1},
    };
    for (const auto& c : cases) {
        const auto [begin, end] = QcbsTextSearch::findBytes(
            text, c.needle, c.from, opts(c.needle, c.caseSensitive, c.wholeWords, c.forward));
        EXPECT_EQ(begin, c.begin) << c.needle << " from " << c.from;
        if (begin >= 0) {
            EXPECT_EQ(end - begin, static_cast<int>(std::string_view(c.needle).size()));
        }
    }
}

TEST(QcbsTextSearch, CaseBlindSearchOfARareCaseFindsTheFarMatch) {
    // Many lower-case "a" before the only "A" followed by "b".
    std::string text(100000, 'a');
    text += "Ab";
    const auto found = QcbsTextSearch::findBytes(text, "ab", 0, opts("ab", false, false, true));
    EXPECT_EQ(found.first, 100000);
}

struct Editor {
    explicit Editor(const QByteArray& bytes) {
        edit.loadBytes(bytes);
        EXPECT_TRUE(waitUntil([this] { return !edit.isLoading(); }));
    }
    QcbsRichTextEdit edit;
};

TEST(QcbsTextSearch, FindSelectsTheMatchAndRepeatsMoveOnInEitherDirection) {
    Editor e("_a x\n_b x\nÉtat état\n");
    QcbsRichTextEdit& edit = e.edit;
    const auto next = [&](const char* text, bool forward, bool caseSensitive = false) {
        const QcbsSearchOptions o = opts(text, caseSensitive, false, forward);
        if (!QcbsTextSearch::findInEditor(edit, o, QcbsTextSearch::searchStart(edit, forward, false)))
            return QString("none");
        int p = 0, i = 0;
        edit.getCursorPosition(&p, &i);
        return QString("%1:%2 %3").arg(p).arg(i).arg(edit.selectedText());
    };
    edit.setCursorPosition(0, 0);
    EXPECT_EQ(next("x", true), "0:4 x");
    EXPECT_EQ(next("x", true), "1:4 x");
    EXPECT_EQ(next("x", true), "none");
    EXPECT_EQ(next("x", false), "0:4 x");  // the selected match is passed over
    EXPECT_EQ(next("x", false), "none");
    EXPECT_EQ(next("x", true), "1:4 x");
    // Beyond ASCII, case-blind and case-sensitive.
    EXPECT_EQ(next("état", true), "2:4 État");
    EXPECT_EQ(next("état", true), "2:9 état");
    edit.setCursorPosition(0, 0);
    EXPECT_EQ(next("état", true, true), "2:9 état");
    EXPECT_EQ(QcbsTextSearch::searchStart(edit, false, true), edit.byteLength());
    EXPECT_EQ(QcbsTextSearch::searchStart(edit, true, true), 0);
}

TEST(QcbsTextSearch, ReplaceAllIsOneUndoStepThatGivesBackEveryByte) {
    const struct {
        QByteArray bytes;
        const char* pattern;
        const char* replacement;
        bool caseSensitive;
        QByteArray after;  // empty: nothing changes
        bool undoable = true;
    } cases[] = {
        {"abc a.c ABC\r\nx\r\n", "a.c", "Z", true, "Z Z ABC\r\nx\r\n"},
        {"abc a.c ABC\r\nx\r\n", "a.c", "Z", false, "Z Z Z\r\nx\r\n"},
        {"_a 1\n_b 2\n", "_(\\w) (\\d)", "_\\1 <\\2>", true, "_a <1>\n_b <2>\n"},
        // A Latin-1 text widened to UTF-8 loses its undo history.
        {"caf\xe9 x\n", "x", "\xce\xb1", true, "caf\xc3\xa9 \xce\xb1\n", false},
        {"caf\xe9 x\n", "x", "\xc3\xa8", true, "caf\xe9 \xe8\n"},
        {"\xc3\xa9t\xc3\xa9\n", "\xc3\xa9", "\xc3\xa8", true, "\xc3\xa8t\xc3\xa8\n"},
        {"same\n", "same", "same", true, ""},
        {"none\n", "x", "y", true, ""},
    };
    for (const auto& c : cases) {
        Editor e(c.bytes);
        const int result = QcbsTextSearch::replaceAll(e.edit, QString::fromUtf8(c.pattern),
                                                      QString::fromUtf8(c.replacement), c.caseSensitive);
        EXPECT_EQ(result, c.after.isEmpty() ? 0 : 1) << c.pattern;
        EXPECT_EQ(e.edit.bytes(), c.after.isEmpty() ? c.bytes : c.after) << c.pattern;
        if (c.after.isEmpty() || !c.undoable) continue;
        e.edit.undo();
        EXPECT_EQ(e.edit.bytes(), c.bytes) << c.pattern;
        EXPECT_FALSE(e.edit.isUndoAvailable()) << c.pattern;
    }
    Editor bad("(a\n");
    EXPECT_EQ(QcbsTextSearch::replaceAll(bad.edit, "(", "x", true), -1);
    EXPECT_EQ(bad.edit.bytes(), "(a\n");
}

}  // namespace
