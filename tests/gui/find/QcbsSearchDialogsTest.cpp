// SPDX-License-Identifier: GPL-3.0-or-later
// The find, replace and go-to-line dialogs on an editor: history, manual wrap, replace, settings.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>

#include "GuiTestSupport.hpp"
#include "base/ORMAApplicationSettings.hpp"
#include "editor/QcbsRichTextEdit.hpp"
#include "find/QcbsFindDialog.hpp"
#include "find/QcbsGotoLineDialog.hpp"
#include "find/QcbsReplaceDialog.hpp"

namespace {

struct Fixture : ::testing::Test {
    void SetUp() override { QcbsSearchDialog::setActiveEditorSource(nullptr); }
    void load(const QByteArray& bytes) {
        edit.loadBytes(bytes);
        ASSERT_TRUE(waitUntil([this] { return !edit.isLoading(); }));
        edit.setCursorPosition(0, 0);
    }
    QString selection() const {
        int p = 0, i = 0;
        edit.getCursorPosition(&p, &i);
        return QString("%1:%2 %3").arg(p).arg(i).arg(edit.selectedText());
    }
    QStringList items(const QComboBox* combo) const {
        QStringList list;
        for (int i = 0; i < combo->count(); ++i) list << combo->itemText(i);
        return list;
    }
    ScopedPrefsDir prefs;
    QcbsRichTextEdit edit;
};

using SearchDialogs = Fixture;

TEST_F(SearchDialogs, FindKeepsEightTextsNewestFirstWithoutRepeatingTheNewest) {
    load("x\n");
    QcbsFindDialog dialog;
    dialog.setEditor(&edit);
    QSignalSpy failed(&dialog, &QcbsSearchDialog::failed);
    for (const char* text : {"t1", "t2", "t3", "t3", "t4", "t5", "t6", "t7", "t8", "t9"}) {
        dialog.comboFind()->setEditText(text);
        EXPECT_FALSE(dialog.doFind());
    }
    EXPECT_EQ(items(dialog.comboFind()), QStringList({"t9", "t8", "t7", "t6", "t5", "t4", "t3", "t2"}));
    EXPECT_EQ(dialog.comboFind()->currentText(), "t9");
    EXPECT_EQ(failed.count(), 10);
    dialog.comboFind()->setEditText("");
    EXPECT_FALSE(dialog.doFind());
    EXPECT_EQ(failed.count(), 10) << "an empty text is ignored";
    EXPECT_EQ(dialog.comboFind()->count(), 8);
}

TEST_F(SearchDialogs, AFailedSearchMakesTheNextOneStartFromTheTopAndASuccessUndoesThat) {
    load("_a x\n_b x\n");
    QcbsFindDialog dialog;
    dialog.setEditor(&edit);
    dialog.comboFind()->setEditText("X");
    const struct {
        bool forward;
        bool found;
        const char* selection;
    } steps[] = {
        {true, true, "0:4 x"},  {true, true, "1:4 x"},   {true, false, "1:4 x"},  // no wrap by itself
        {true, true, "0:4 x"},  {false, false, "0:4 x"}, {false, true, "1:4 x"},  // backward wraps to the end
        {false, true, "0:4 x"},
    };
    for (const auto& step : steps) {
        (step.forward ? dialog.radioForward() : dialog.radioBackward())->setChecked(true);
        EXPECT_EQ(dialog.doFind(), step.found) << step.selection;
        EXPECT_EQ(dialog.checkBegin()->isChecked(), !step.found);
        EXPECT_EQ(selection(), step.selection);
    }
    dialog.checkCase()->setChecked(true);
    EXPECT_FALSE(dialog.doFind()) << "case sensitive";
    dialog.checkCase()->setChecked(false);
    dialog.checkWords()->setChecked(true);
    dialog.comboFind()->setEditText("_");
    EXPECT_FALSE(dialog.doFind()) << "whole words";
}

TEST_F(SearchDialogs, ReplaceComparesTheSelectionCaseBlindUnlessCaseSensitive) {
    load("Cell cell\n");
    QcbsReplaceDialog dialog;
    dialog.setEditor(&edit);
    dialog.comboFind()->setEditText("cell");
    dialog.comboReplace()->setEditText("box");
    edit.setSelection(0, 0, 0, 4);  // "Cell"
    dialog.checkCase()->setChecked(true);
    EXPECT_TRUE(dialog.doReplace()) << "finds instead";
    EXPECT_EQ(selection(), "0:9 cell");
    EXPECT_EQ(edit.text(0), "Cell cell");
    edit.setSelection(0, 0, 0, 4);
    dialog.checkCase()->setChecked(false);
    EXPECT_TRUE(dialog.doReplace());
    EXPECT_EQ(edit.text(0), "box cell");
    EXPECT_EQ(edit.selectedText(), "") << "the next match is not searched";
    EXPECT_EQ(items(dialog.comboReplace()), QStringList({"box"}));
    EXPECT_EQ(items(dialog.comboFind()), QStringList({"cell"}));
}

TEST_F(SearchDialogs, ReplaceAllTakesARegularExpressionAsOneUndoStep) {
    const QByteArray text = "abc a.c\r\nABC\r\n";
    load(text);
    QcbsReplaceDialog dialog;
    dialog.setEditor(&edit);
    QSignalSpy failed(&dialog, &QcbsSearchDialog::failed);
    dialog.comboReplace()->setEditText("Z");
    dialog.comboFind()->setEditText("a+c");  // occurs nowhere literally
    EXPECT_FALSE(dialog.doReplaceAll());
    EXPECT_EQ(failed.count(), 1);
    EXPECT_EQ(edit.bytes(), text);
    dialog.comboFind()->setEditText("a.c");
    dialog.checkWords()->setChecked(true);  // ignored
    dialog.radioBackward()->setChecked(true);
    EXPECT_TRUE(dialog.doReplaceAll());
    EXPECT_EQ(edit.bytes(), "Z Z\r\nZ\r\n");
    edit.undo();  // one undo step: see the text search's test
    dialog.checkCase()->setChecked(true);
    EXPECT_TRUE(dialog.doReplaceAll());
    EXPECT_EQ(edit.bytes(), "Z Z\r\nABC\r\n");
}

TEST_F(SearchDialogs, HistoryAndOptionsAreSavedOnCloseAndReadByTheNextDialog) {
    load("x\n");
    {
        QcbsReplaceDialog dialog;
        dialog.setEditor(&edit);
        dialog.show();
        dialog.comboFind()->setEditText("first");
        dialog.doFind();
        dialog.comboFind()->setEditText("second");
        dialog.comboReplace()->setEditText("with");
        dialog.doReplace();
        dialog.checkCase()->setChecked(true);
        dialog.checkWords()->setChecked(true);
        dialog.radioBackward()->setChecked(true);
        dialog.close();
    }
    {
        ORMAApplicationSettings settings;
        EXPECT_TRUE(settings.readBoolEntry("find/checkcase", false));
        EXPECT_TRUE(settings.readBoolEntry("find/checkwords", false));
        EXPECT_FALSE(settings.readBoolEntry("find/radioForward", true));
    }
    QcbsFindDialog find;
    EXPECT_EQ(items(find.comboFind()), QStringList({"second", "first"}));
    EXPECT_TRUE(find.checkCase()->isChecked() && find.checkWords()->isChecked());
    EXPECT_TRUE(find.radioBackward()->isChecked());
    EXPECT_FALSE(find.checkBegin()->isChecked());
    QcbsReplaceDialog replace;
    EXPECT_EQ(items(replace.comboReplace()), QStringList({"with"}));
}

TEST_F(SearchDialogs, SearchesGoToTheActiveWindowsEditorWhenThereIsOne) {
    load("x\n");
    QcbsRichTextEdit other;
    other.setPlainText("y x\n");
    QcbsFindDialog dialog;
    dialog.setEditor(&edit);
    QcbsSearchDialog::setActiveEditorSource([&] { return &other; });
    dialog.comboFind()->setEditText("x");
    EXPECT_TRUE(dialog.doFind());
    EXPECT_EQ(other.selectedText(), "x");
    EXPECT_EQ(edit.selectedText(), "");
    QcbsSearchDialog::setActiveEditorSource(nullptr);
}

TEST_F(SearchDialogs, GoToLineSelectsTheLineAndBeepsForWhatIsNoLine) {
    load("data_a\n_b 1\n_c 2\n");
    QcbsGotoLineDialog dialog;
    dialog.setEditor(&edit);
    QSignalSpy failed(&dialog, &QcbsGotoLineDialog::failed);
    const struct {
        const char* input;
        bool ok;
    } cases[] = {{"0", false}, {"abc", false}, {"-1", false}, {"5", false}, {"", false},
                 {"2", true},  {" 3 ", true},  {"4", true}};  // the empty line after the last line end
    for (const auto& c : cases) {
        edit.setCursorPosition(0, 0);
        dialog.lineEdit()->setText(c.input);
        EXPECT_EQ(dialog.doIt(), c.ok) << c.input;
    }
    EXPECT_EQ(failed.count(), 5);
    dialog.lineEdit()->setText("2");
    dialog.doIt();
    EXPECT_EQ(edit.selectedText(), "_b 1");
}

}  // namespace
