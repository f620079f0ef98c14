// SPDX-License-Identifier: GPL-3.0-or-later
// The CIF editor's own work: lines, error marks, commenting, copy and paste, files, keys.
#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QMainWindow>
#include <QMenu>
#include <QMimeData>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include "GuiTestSupport.hpp"
#include "application/DialogAnswerer.hpp"
#include "editor/QcbsFontStyleSettings.hpp"
#include "editor/QcbsRichTextEdit.hpp"

namespace {

const char* const kCif =
    "data_test\n"                  // 0
    "_cell_length_a    5.4(2)\n"   // 1
    "_publ_section_title\n"        // 2
    ";\n"                          // 3
    "  _not_a_name inside text\n"  // 4
    ";\n"                          // 5
    "# a comment\n"                // 6
    "\n"                           // 7
    "loop_\n"                      // 8
    "  _atom_site_label\n"         // 9
    "  _atom_site_fract_x\n"       // 10
    "  C1 0.1\n"                   // 11
    "data_second\n"                // 12
    "  C2 0.2";                    // 13

THandle<QcbsFontStyleSettings> newStyles() {
    return THandle<QcbsFontStyleSettings>(new QcbsFontStyleSettings());
}

// A CIF editor holding `text`, with the error gate open as after a check.
struct Editor {
    explicit Editor(const QString& text = kCif)
        : edit(THandle<CifDictionary>(), newStyles(), nullptr, "editor") {
        edit.resize(500, 300);
        edit.setPlainText(text);
        edit.reopenErrorHighlighting();
    }
    void moveTo(int para, int index = 0) { edit.setCursorPosition(para, index); }
    std::vector<int> cursor() const {
        int para = -1, index = -1;
        edit.getCursorPosition(&para, &index);
        return {para, index};
    }
    std::vector<int> selection() const {
        int s[4];
        edit.getSelection(&s[0], &s[1], &s[2], &s[3]);
        return {s[0], s[1], s[2], s[3]};
    }
    QcbsRichTextEdit edit;
};

// The lines that carry the marker, in order.
std::vector<int> markedLines(const QcbsRichTextEdit& edit, int marker) {
    std::vector<int> lines;
    for (long line = edit.SendScintilla(QsciScintillaBase::SCI_MARKERNEXT, 0L, 1L << marker); line >= 0;
         line = edit.SendScintilla(QsciScintillaBase::SCI_MARKERNEXT, line + 1, 1L << marker))
        lines.push_back(static_cast<int>(line));
    return lines;
}

// The lines error selection 1 or 2 marks, as background and as margin mark.
std::vector<int> errorMarks(const QcbsRichTextEdit& edit, int selection) {
    const std::vector<int> background = markedLines(edit, QcbsRichTextEdit::ErrorLineMarker + selection - 1);
    EXPECT_EQ(background, markedLines(edit, QcbsRichTextEdit::ErrorMarkMarker + selection - 1));
    return background;
}

QStringList menuLabels(QMenu* menu) {
    QStringList labels;
    for (QAction* action : menu->actions()) labels << (action->isSeparator() ? QString("-") : action->text());
    return labels;
}

TEST(QcbsRichTextEdit, TheCifEditorNeverWrapsUsesTheStyleFontAndHasTheFullMenu) {
    Editor full;
    EXPECT_EQ(full.edit.wrapMode(), QsciScintilla::WrapNone);
    EXPECT_EQ(full.edit.font(), full.edit.styles()->editorFont());
    std::unique_ptr<QMenu> menu(full.edit.createPopupMenu());
    EXPECT_EQ(menuLabels(menu.get()),
              (QStringList{"Undo", "Redo", "-", "Cut", "Copy", "Paste", "-", "Co&mment Selection",
                           "U&ncomment Selection", "-", "Insert File", "Insert Template", "Item help", "-",
                           "Select All"}));
    for (QAction* action : menu->actions())
        EXPECT_TRUE(action->isSeparator() || !action->icon().isNull()) << action->text().toStdString();

    QcbsRichTextEdit plain(nullptr, "plain");
    std::unique_ptr<QMenu> shortMenu(plain.createPopupMenu());
    EXPECT_EQ(menuLabels(shortMenu.get()), (QStringList{"Select All", "Copy"}));
}

TEST(QcbsRichTextEdit, GotoLineMovesToTheLineEndAndBeepsOutsideTheText) {
    Editor editor;
    QSignalSpy lineChanges(&editor.edit, &QcbsRichTextEdit::cursorLineChanged);
    editor.edit.gotoLine(2, QString());
    EXPECT_EQ(editor.cursor(), (std::vector<int>{1, editor.edit.paragraphLength(1)}));
    EXPECT_FALSE(editor.edit.hasSelectedText());
    ASSERT_EQ(lineChanges.count(), 1);
    EXPECT_EQ(lineChanges.at(0).at(0).toInt(), 1);

    editor.edit.gotoLine(14, QString(), true);  // the last line, selected
    EXPECT_EQ(editor.selection(), (std::vector<int>{13, 0, 13, 8}));
    editor.edit.gotoLine(1, QString());
    EXPECT_EQ(editor.cursor()[0], 0);
    EXPECT_FALSE(editor.edit.hasSelectedText());
    for (int outside : {0, -3, 15}) {
        editor.edit.gotoLine(outside, QString(), true);
        EXPECT_EQ(editor.cursor()[0], 0) << outside;
    }
}

TEST(QcbsRichTextEdit, ErrorLinesAreMarkedUntilTheCursorLeavesThem) {
    Editor editor;
    editor.edit.setErrorHighlighting(2, 1, true);
    editor.edit.setErrorHighlighting(7, 2, false);
    EXPECT_TRUE(editor.edit.errorMatcherEnabled());
    EXPECT_EQ(editor.edit.errorSelectionParagraph(1), 1);
    EXPECT_EQ(editor.edit.errorSelectionParagraph(2), 6);
    EXPECT_EQ(errorMarks(editor.edit, 1), std::vector<int>{1});
    EXPECT_EQ(errorMarks(editor.edit, 2), std::vector<int>{6});
    EXPECT_EQ(editor.cursor(), (std::vector<int>{6, 11}));

    // Moving onto the other marked line keeps both marks; elsewhere they go.
    editor.moveTo(1, 2);
    EXPECT_EQ(errorMarks(editor.edit, 1), std::vector<int>{1});
    EXPECT_EQ(errorMarks(editor.edit, 2), std::vector<int>{6});
    editor.moveTo(3);
    EXPECT_FALSE(editor.edit.errorMatcherEnabled());
    EXPECT_TRUE(errorMarks(editor.edit, 1).empty());
    EXPECT_TRUE(errorMarks(editor.edit, 2).empty());
    // Selecting text ends the marking as well.
    editor.edit.setErrorHighlighting(1, 1);
    editor.edit.setSelection(0, 0, 0, 4);
    EXPECT_FALSE(editor.edit.errorMatcherEnabled());

    // Lines outside the text mark the nearest line; a third selection none.
    editor.edit.setErrorHighlighting(0, 1, true);
    EXPECT_EQ(editor.edit.errorSelectionParagraph(1), 0);
    editor.edit.setErrorHighlighting(500, 1, true);
    EXPECT_EQ(editor.edit.errorSelectionParagraph(1), 13);
    editor.edit.setErrorHighlighting(3, 7, true);
    EXPECT_FALSE(editor.edit.errorMatcherEnabled());
}

TEST(QcbsRichTextEdit, AnEditRefusesErrorHighlightingUntilTheNextCheck) {
    Editor editor;
    editor.edit.setErrorHighlighting(2, 1, true);
    QSignalSpy status(&editor.edit, &QcbsRichTextEdit::statusBarMessageRequest);
    editor.moveTo(0, 4);
    QTest::keyClicks(&editor.edit, "X");
    EXPECT_FALSE(editor.edit.errorMatcherEnabled());  // typing cleared the marks
    EXPECT_FALSE(editor.edit.errorHighlightingAllowed());

    editor.edit.setErrorHighlighting(3, 1, true);
    EXPECT_FALSE(editor.edit.errorMatcherEnabled());
    EXPECT_TRUE(errorMarks(editor.edit, 1).empty());
    ASSERT_EQ(status.count(), 1);
    EXPECT_EQ(status.at(0).at(0).toString(), "(error highlighting disabled until after next check)");
    editor.edit.setErrorHighlighting(4, 2, false);
    EXPECT_EQ(status.count(), 2);

    editor.edit.reopenErrorHighlighting();
    editor.edit.setErrorHighlighting(3, 1, true);
    EXPECT_EQ(editor.edit.errorSelectionParagraph(1), 2);
    EXPECT_EQ(status.count(), 2);
}

TEST(QcbsRichTextEdit, TheDataItemOfALineAndTheKindOfTheCursorLine) {
    Editor editor;
    const std::tuple<bool, int, QString> items[] = {
        {false, 1, "_cell_length_a"},
        {true, 10, "_atom_site_fract_x"},
        // A loop's value line belongs to the loop's names.
        {false, 11, ""},
        {true, 11, "_atom_site_fract_x"},
        // Inside a text field the field's own name is found, not the text's.
        {true, 3, "_publ_section_title"},
        {true, 5, "_publ_section_title"},
        {true, 6, "_publ_section_title"},
        // A block header ends the search.
        {true, 13, ""},
        {true, 0, ""},
    };
    for (const auto& [upwards, para, name] : items)
        EXPECT_EQ(editor.edit.currentDataItem(upwards, para), name) << para << " " << upwards;
    editor.moveTo(9, 5);
    EXPECT_EQ(editor.edit.currentDataItem(false), "_atom_site_label");
    QSignalSpy help(&editor.edit, &QcbsRichTextEdit::requestDataitemHelp);
    editor.moveTo(11);
    editor.edit.prepareDataitemHelp();
    ASSERT_EQ(help.count(), 1);
    EXPECT_EQ(help.at(0).at(0).toString(), "_atom_site_fract_x");

    // Line kinds: loop, comment, blank, inside a text field (both ";" lines
    // count from the first one on).
    const std::pair<int, const char*> kinds[] = {{8, "L..."}, {6, ".C.."}, {7, "..B."}, {3, "...T"},
                                                 {4, "...T"}, {5, "...."}, {1, "...."}};
    for (const auto& [para, kind] : kinds) {
        editor.moveTo(para);
        const std::string actual{
            editor.edit.isLoopLine() ? 'L' : '.', editor.edit.isCommentLine() ? 'C' : '.',
            editor.edit.isBlankLine() ? 'B' : '.', editor.edit.isMultiLineStringLine() ? 'T' : '.'};
        EXPECT_EQ(actual, kind) << para;
    }
}

TEST(QcbsRichTextEdit, CommentingTakesTheCursorLineOrTheSelectedLinesAsOneUndoStep) {
    Editor editor("one\ntwo\nthree \nfour");
    editor.moveTo(2, 2);
    editor.edit.commentSelection();
    EXPECT_EQ(editor.edit.toPlainText(), "one\ntwo\n#three\nfour");  // one trailing blank is cut
    EXPECT_EQ(editor.selection(), (std::vector<int>{2, 0, 2, 6}));
    editor.edit.uncommentSelection();
    EXPECT_EQ(editor.edit.toPlainText(), "one\ntwo\nthree\nfour");

    // A selection that ends at a line start leaves that line alone.
    editor.edit.setSelection(0, 2, 2, 0);
    editor.edit.commentSelection();
    EXPECT_EQ(editor.edit.toPlainText(), "#one\n#two\nthree\nfour");
    EXPECT_EQ(editor.selection(), (std::vector<int>{0, 0, 1, 4}));
    editor.edit.setSelection(0, 0, 3, 2);
    editor.edit.commentSelection();
    EXPECT_EQ(editor.edit.toPlainText(), "##one\n##two\n#three\n#four");
    editor.edit.uncommentSelection();
    editor.edit.uncommentSelection();
    EXPECT_EQ(editor.edit.toPlainText(), "one\ntwo\nthree\nfour");
    editor.edit.undo();
    EXPECT_EQ(editor.edit.toPlainText(), "#one\n#two\nthree\nfour");

    // Very long lines are commented whole.
    const QString longLine(12000, u'x');
    Editor wide(longLine);
    wide.edit.commentSelection();
    EXPECT_EQ(wide.edit.toPlainText(), "#" + longLine);
}

TEST(QcbsRichTextEdit, CopyWritesAngstromAsAAndDegreeAsPercentAndPasteInsertsCifCodes) {
    Editor editor(QString::fromUtf8("a = 5 Å\nβ = 90°\nend"));
    editor.edit.setSelection(0, 4, 1, 7);
    editor.edit.copy();
    EXPECT_EQ(QApplication::clipboard()->text(), QString::fromUtf8("5 A\nβ = 90%"));
    QApplication::clipboard()->clear();
    editor.edit.selectAll();
    QTest::keyClick(&editor.edit, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), QString::fromUtf8("a = 5 A\nβ = 90%\nend"));

    // Paste converts the clipboard's text and leaves it converted.
    editor.edit.setPlainText("x\n");
    editor.moveTo(1);
    QApplication::clipboard()->setText(QString::fromUtf8("α = 90.0°"));
    editor.edit.paste();
    EXPECT_EQ(editor.edit.toPlainText(), "x\n\\a = 90.0\\%");
    EXPECT_EQ(QApplication::clipboard()->text(), "\\a = 90.0\\%");
    QApplication::clipboard()->setText(QString::fromUtf8(" Å"));
    QTest::keyClick(&editor.edit, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(editor.edit.toPlainText(), "x\n\\a = 90.0\\% \\%A");
}

TEST(QcbsRichTextEdit, InsertedFileLinesGoInAtTheCursorWithAReport) {
    QTemporaryDir dir;
    const auto write = [&dir](const QString& name, const QByteArray& bytes) {
        QFile file(dir.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return file.fileName();
    };
    Editor editor("start\nend");
    QSignalSpy status(&editor.edit, &QcbsRichTextEdit::statusBarMessageRequest);
    QSignalSpy lines(&editor.edit, &QcbsRichTextEdit::numberOfLinesChanged);

    editor.moveTo(1);
    editor.edit.insertFile(write("mixed.cif", "one\r\ntwo\rthree\nlast"));
    EXPECT_EQ(editor.edit.toPlainText(), "start\none\ntwo\nthree\nlast\nend");
    ASSERT_EQ(status.count(), 1);
    EXPECT_EQ(status.at(0).at(0).toString(), "Inserted 4 lines.");
    ASSERT_FALSE(lines.isEmpty());
    EXPECT_EQ(lines.last().at(0).toInt(), 6);

    editor.edit.insertFile(write("latin1.txt", "Caf\xe9 5\xb0\n"));  // not UTF-8: read as Latin-1, then coded
    EXPECT_EQ(editor.edit.text(5), "Caf\\'e 5\\%");
    EXPECT_EQ(status.at(1).at(0).toString(), "Inserted 1 lines.");
    editor.edit.insertFile(write("empty.cif", ""));
    EXPECT_EQ(status.at(2).at(0).toString(), "Inserted 0 lines.");
}

TEST(QcbsRichTextEdit, UnreadableFileOrMissingTemplateIsReportedAndChangesNothing) {
    Editor editor("keep");
    QTemporaryDir dir;
    DialogAnswerer answers;
    editor.edit.insertFile(dir.filePath("missing.cif"));
    editor.edit.insertFile(dir.path());  // a directory
    const QString saved = std::exchange(QcbsRichTextEdit::template_, QString());
    editor.edit.insertTemplateFile();
    QcbsRichTextEdit::template_ = saved;
    ASSERT_EQ(answers.boxes.size(), 3);
    EXPECT_EQ(answers.boxes[0].caption + ": " + answers.boxes[0].text,
              "Error: Could not open file \"" + dir.filePath("missing.cif") + "\"");
    EXPECT_EQ(answers.boxes[1].caption, "Error");
    EXPECT_EQ(answers.boxes[2].caption + ": " + answers.boxes[2].text,
              "Information: You don't have a template file set. Choose one via the Edit->Preferences menu.");
    EXPECT_EQ(editor.edit.toPlainText(), "keep");
}

TEST(QcbsRichTextEdit, OwnerShortcutsPassThroughWhileOtherKeysEdit) {
    QMainWindow window;
    auto* edit = new QcbsRichTextEdit(THandle<CifDictionary>(), newStyles(), &window, "editor");
    window.setCentralWidget(edit);
    int check = 0, selectAll = 0, find = 0;
    for (auto [keys, counter] :
         {std::pair{Qt::CTRL | Qt::Key_K, &check}, std::pair{Qt::CTRL | Qt::Key_A, &selectAll},
          std::pair{Qt::CTRL | Qt::Key_F, &find}}) {
        auto* action = window.addAction("action");
        action->setShortcut(QKeySequence(keys));
        int* count = counter;
        QObject::connect(action, &QAction::triggered, [count] { ++*count; });
    }
    window.show();
    QApplication::setActiveWindow(&window);
    edit->setFocus();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    edit->setPlainText("abc def");
    edit->setCursorPosition(0, 3);

    QTest::keyClick(edit, Qt::Key_K, Qt::ControlModifier);
    QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(edit, Qt::Key_F, Qt::ControlModifier);
    EXPECT_EQ(check, 1);
    EXPECT_EQ(selectAll, 1);
    EXPECT_EQ(find, 1);
    EXPECT_EQ(edit->toPlainText(), "abc def");  // Ctrl+K did not delete to the line end
    EXPECT_FALSE(edit->hasSelectedText());      // Ctrl+A did not select

    // With Shift as well the keys belong to the editor.
    QTest::keyClick(edit, Qt::Key_End, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(edit->selectedText(), " def");
    QTest::keyClick(edit, 'F', Qt::ShiftModifier);
    EXPECT_EQ(edit->toPlainText(), "abcF");
    EXPECT_EQ(find, 1);
}

// Qt hands a drop only to the widget that took the drag; the test calls
// the handler itself.
struct DropTarget : QcbsRichTextEdit {
    DropTarget() : QcbsRichTextEdit(THandle<CifDictionary>(), newStyles()) {}
    using QcbsRichTextEdit::dragEnterEvent;
    using QcbsRichTextEdit::dropEvent;
};

TEST(QcbsRichTextEdit, DroppedFilesGoToTheOwnerInsteadOfTheText) {
    DropTarget edit;
    edit.setPlainText("text");
    QSignalSpy drops(&edit, &QcbsRichTextEdit::dropEventRequest);
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile("/tmp/other.cif")});
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    edit.dragEnterEvent(&enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    edit.dropEvent(&drop);
    ASSERT_EQ(drops.count(), 1);
    EXPECT_EQ(drops.at(0).at(0).value<QDropEvent*>(), &drop);
    EXPECT_EQ(edit.toPlainText(), "text");
}

}  // namespace
