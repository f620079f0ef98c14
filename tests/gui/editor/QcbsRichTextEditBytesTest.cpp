// SPDX-License-Identifier: GPL-3.0-or-later
// The editor as a holder of bytes, and what it offers beyond plain editing.
// New lines take the file's line end, a Latin-1 text widens to UTF-8 only when it must, changes are
// reported once made; data names are completed, matching delimiters shown, rectangles typed into.
#include <gtest/gtest.h>

#include <QApplication>
#include <QListWidget>
#include <QSignalSpy>
#include <QTest>
#include <QToolTip>
#include <fstream>

#include "GuiTestSupport.hpp"
#include "HighlightTestSupport.hpp"
#include "cif/CifConcreteDictionary.hpp"
#include "cif/CifErrorContainer.hpp"

namespace {

using Sci = QsciScintillaBase;

THandle<QcbsFontStyleSettings> newStyles() {
    return THandle<QcbsFontStyleSettings>(new QcbsFontStyleSettings());
}

// Types text a keyboard of any language could give, one character per key.
void typeText(QWidget* widget, const QString& text) {
    for (const QChar c : text) {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, QString(c));
        QApplication::sendEvent(widget, &press);
        QKeyEvent release(QEvent::KeyRelease, Qt::Key_unknown, Qt::NoModifier, QString(c));
        QApplication::sendEvent(widget, &release);
    }
}

// An editor holding `bytes` as loaded from a file, shown and focused.
struct Loaded {
    explicit Loaded(const QByteArray& bytes, THandle<CifDictionary> dictionary = THandle<CifDictionary>())
        : edit(dictionary, newStyles()) {
        edit.resize(600, 300);
        edit.show();
        edit.loadBytes(bytes);
        EXPECT_TRUE(runUntil([this] { return !edit.isLoading(); }));
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&edit));
        edit.setFocus();
    }
    QcbsRichTextEdit edit;
};

TEST(QcbsRichTextEditBytes, TypedLinesTakeTheFilesLineEndAndOtherLinesKeepTheirs) {
    const struct {
        QByteArray bytes;
        QByteArray typed;  // after Return and "x" at the end of the first line
    } cases[] = {
        {"a\r\nb\nc\r\n", "a\r\nx\r\nb\nc\r\n"},
        {"a\rb\rc\n", "a\rx\rb\rc\n"},
        {"a\nb\r\nc\n", "a\nx\nb\r\nc\n"},
        {"a", "a\nx"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.bytes.toStdString());
        Loaded loaded(c.bytes);
        loaded.edit.setCursorPosition(0, 1);
        QTest::keyClick(&loaded.edit, Qt::Key_Return);
        QTest::keyClick(&loaded.edit, Qt::Key_X);
        EXPECT_EQ(loaded.edit.bytes(), c.typed);
        // Inserted text with line breaks gets them too.
        loaded.edit.insertPlainText("\ny");
        EXPECT_TRUE(loaded.edit.bytes().contains("x" + loaded.edit.lineEnd().toLatin1() + "y"));
    }
}

TEST(QcbsRichTextEditBytes, ALatin1TextStaysBytesUntilACharacterLatin1CannotHoldArrives) {
    Loaded loaded("_name 'Cr\xe9pin'\n");
    ASSERT_FALSE(loaded.edit.isUtf8Text());
    EXPECT_EQ(loaded.edit.text(0), QString::fromUtf8("_name 'Cr\xc3\xa9pin'"));
    QSignalSpy widened(&loaded.edit, &QcbsRichTextEdit::encodingWidened);
    loaded.edit.setCursorPosition(0, 15);
    typeText(&loaded.edit, QString::fromUtf8(" \xc3\xa5"));  // a with ring fits Latin-1
    EXPECT_EQ(loaded.edit.bytes(), "_name 'Cr\xe9pin' \xe5\n");
    EXPECT_EQ(widened.count(), 0);
    typeText(&loaded.edit, QString::fromUtf8("\xce\xb1"));  // alpha does not
    EXPECT_EQ(widened.count(), 1);
    EXPECT_TRUE(loaded.edit.isUtf8Text());
    EXPECT_EQ(loaded.edit.bytes(), "_name 'Cr\xc3\xa9pin' \xc3\xa5\xce\xb1\n");
    EXPECT_TRUE(loaded.edit.isModified());
    int para = -1, index = -1;
    loaded.edit.getCursorPosition(&para, &index);
    EXPECT_EQ(index, 17);  // counted in characters, after the widening as before
}

TEST(QcbsRichTextEditBytes, EveryChangeIsReportedOnceItIsMade) {
    Loaded loaded("one\ntwo\n");
    QcbsRichTextEdit& edit = loaded.edit;
    QSignalSpy lines(&edit, &QcbsRichTextEdit::numberOfLinesChanged);
    QSignalSpy changes(&edit, &QcbsRichTextEdit::textChanged);
    QSignalSpy undo(&edit, &QcbsRichTextEdit::undoAvailable);
    edit.setCursorPosition(1, 3);
    QTest::keyClick(&edit, Qt::Key_Return);
    ASSERT_EQ(lines.count(), 1);
    EXPECT_EQ(lines.last().at(0).toInt(), 4);  // counted after the change, not before
    EXPECT_EQ(changes.count(), 1);
    ASSERT_EQ(undo.count(), 1);
    EXPECT_TRUE(undo.last().at(0).toBool());
    edit.undo();
    EXPECT_EQ(lines.last().at(0).toInt(), 3);
    EXPECT_FALSE(edit.isModified());
    edit.redo();
    EXPECT_EQ(lines.last().at(0).toInt(), 4);
    // A change made straight through Scintilla is followed up from the event loop.
    const int before = changes.count();
    edit.SendScintilla(Sci::SCI_APPENDTEXT, 2UL, "z\n");
    EXPECT_TRUE(waitUntil([&] { return changes.count() == before + 1; }));
    EXPECT_EQ(lines.last().at(0).toInt(), 5);
}

TEST(QcbsRichTextEditBytes, TypingAnUnderscoreWhereANameMayStartOffersTheDictionarysNames) {
    const QString path = QString(TESSARY_SOURCE_DIR) + "/tests/data/tessary_test.dic";
    std::ifstream stream(path.toStdString(), std::ios::binary);
    THandle<CifConcreteDictionary> dictionary(new CifConcreteDictionary());
    ASSERT_TRUE(dictionary->read(stream, THandle<CifErrorContainer>(new CifErrorContainer())));
    Loaded loaded("data_a\n\n# note \n;\ntext \n;\n_x 'quoted \n", dictionary);
    QcbsRichTextEdit& edit = loaded.edit;
    const auto typeUnderscoreAt = [&edit](int line, int index) {
        edit.SendScintilla(Sci::SCI_AUTOCCANCEL);
        edit.setCursorPosition(line, index);
        QTest::keyClick(&edit, Qt::Key_Underscore, Qt::ShiftModifier, '_');
        return edit.SendScintilla(Sci::SCI_AUTOCACTIVE) != 0;
    };
    EXPECT_TRUE(typeUnderscoreAt(1, 0));
    // The list narrows as the name is typed; Return takes the entry shown.
    QTest::keyClicks(&edit, "cell_length_");
    EXPECT_TRUE(edit.SendScintilla(Sci::SCI_AUTOCACTIVE));
    EXPECT_TRUE(waitUntil([] { return QToolTip::isVisible(); }));
    EXPECT_EQ(QToolTip::text(), QString::fromStdString(dictionary->definition_text("_cell_length_a"))
                                    .trimmed()
                                    .section(u'\n', 0, 0)
                                    .trimmed());
    QTest::keyClick(&edit, Qt::Key_Return);
    EXPECT_EQ(edit.text(1), "_cell_length_a");

    // Not inside a comment, a text field, a quoted string or a word.
    EXPECT_FALSE(typeUnderscoreAt(2, 7));
    EXPECT_FALSE(typeUnderscoreAt(4, 5));
    EXPECT_FALSE(typeUnderscoreAt(6, 11));
    EXPECT_FALSE(typeUnderscoreAt(0, 6));
    edit.setDataNameCompletion(false);
    EXPECT_FALSE(typeUnderscoreAt(7, 0));
}

TEST(QcbsRichTextEditBytes, TheDelimiterMatchingTheOneAtTheCursorIsShown) {
    Loaded loaded(
        "_a 'it''s x'\n"    // 0
        ";\n"               // 1
        "text [not] 'x'\n"  // 2
        ";\n"               // 3
        "_b [1 (2) 3]\n"    // 4
        "# 'no' [match]\n"  // 5
        "_c '''many\n"      // 6
        "lines'''\n");      // 7
    QcbsRichTextEdit& edit = loaded.edit;
    const auto at = [&edit](int line, int index) {
        edit.setCursorPosition(line, index);
        return edit.matchedDelimiters();
    };
    const auto pos = [&edit](int line, int index) { return edit.positionOf(line, index); };
    EXPECT_EQ(at(0, 3), std::pair(pos(0, 3), pos(0, 11)));   // a quote that opens
    EXPECT_EQ(at(0, 12), std::pair(pos(0, 3), pos(0, 11)));  // just after the closing one
    EXPECT_EQ(at(1, 0), std::pair(pos(1, 0), pos(3, 0)));    // a text field's ";"
    EXPECT_EQ(at(3, 0), std::pair(pos(3, 0), pos(1, 0)));
    EXPECT_EQ(at(4, 3), std::pair(pos(4, 3), pos(4, 11)));  // brackets of a CIF 2.0 list
    EXPECT_EQ(at(4, 6), std::pair(pos(4, 6), pos(4, 8)));
    EXPECT_EQ(at(6, 3), std::pair(pos(6, 3), pos(7, 5)));  // three quotes over lines
    EXPECT_EQ(at(2, 5), std::pair(-1, -1));                // text of a field
    EXPECT_EQ(at(5, 2), std::pair(-1, -1));                // a comment
    edit.setMatchingDelimiters(false);
    EXPECT_EQ(at(1, 0), std::pair(-1, -1));
}

TEST(QcbsRichTextEditBytes, TypingReachesEveryLineOfARectangularSelection) {
    Loaded loaded(
        "loop_\n_a\n_b\n"
        "1 2\n"
        "3 4\n"
        "5\n");
    QcbsRichTextEdit& edit = loaded.edit;
    // A column from the second value of the first row down to the last row,
    // which is shorter: virtual space lets the column run on.
    edit.SendScintilla(Sci::SCI_SETRECTANGULARSELECTIONANCHOR, edit.positionOf(3, 1));
    edit.SendScintilla(Sci::SCI_SETRECTANGULARSELECTIONCARET, edit.positionOf(5, 1));
    edit.SendScintilla(Sci::SCI_SETRECTANGULARSELECTIONCARETVIRTUALSPACE, 0L);
    QTest::keyClicks(&edit, " 0");
    EXPECT_EQ(edit.bytes(), "loop_\n_a\n_b\n1 0 2\n3 0 4\n5 0\n");

    edit.setRectangularSelection(false);
    EXPECT_EQ(edit.SendScintilla(Sci::SCI_GETADDITIONALSELECTIONTYPING), 0);
    edit.setWhiteSpaceVisible(true);
    EXPECT_EQ(edit.SendScintilla(Sci::SCI_GETVIEWWS), Sci::SCWS_VISIBLEALWAYS);
    EXPECT_TRUE(edit.SendScintilla(Sci::SCI_GETVIEWEOL));
}

}  // namespace
