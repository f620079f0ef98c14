// SPDX-License-Identifier: GPL-3.0-or-later
// Search in the main window: the dialogs open on the window's editor, F3 and Shift+F3 repeat.
#include <gtest/gtest.h>

#include <QComboBox>
#include <QLineEdit>

#include "ApplicationTestSupport.hpp"
#include "GuiTestSupport.hpp"
#include "editor/QcbsRichTextEdit.hpp"
#include "find/QcbsFindDialog.hpp"
#include "find/QcbsGotoLineDialog.hpp"
#include "find/QcbsReplaceDialog.hpp"

namespace {

using A = QcbsMainWindowActions;

class MainWindowFind : public ::testing::Test {
protected:
    void SetUp() override {
        window_.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&window_));
        editor()->setPlainText("data_a\n_cell_length_a 5.1\n_cell_length_b 6.2\n");
        windowAction(window_, A::Find)->setEnabled(true);
        windowAction(window_, A::FindNext)->setEnabled(true);
        windowAction(window_, A::FindPrevious)->setEnabled(true);
        windowAction(window_, A::Replace)->setEnabled(true);
        windowAction(window_, A::GoToLine)->setEnabled(true);
    }
    void trigger(A::Id id) { windowAction(window_, id)->trigger(); }
    QcbsRichTextEdit* editor() const { return window_.currentEditor(); }
    QString cursor() const {
        int p = 0, i = 0;
        editor()->getCursorPosition(&p, &i);
        return QString("%1:%2").arg(p).arg(i);
    }
    template <class Dialog>
    Dialog* dialog() const {
        return window_.findChild<Dialog*>(QString(), Qt::FindDirectChildrenOnly);
    }

    ScopedPrefsDir prefs_;
    QcbsMainWindow window_{buildTreeSharedData()};
};

TEST_F(MainWindowFind, FindOpensOnTheSelectionAndFindNextAndPreviousRepeatIt) {
    trigger(A::FindNext);  // nothing searched yet: the dialog opens
    ASSERT_TRUE(waitUntil([&] { return dialog<QcbsFindDialog>() && dialog<QcbsFindDialog>()->isVisible(); }));
    dialog<QcbsFindDialog>()->close();

    editor()->setSelection(1, 0, 1, 12);  // "_cell_length"
    trigger(A::Find);
    QcbsFindDialog* find = dialog<QcbsFindDialog>();
    ASSERT_TRUE(waitUntil([&] { return find->isVisible(); }));
    EXPECT_EQ(find->windowTitle(), "Find Text");
    EXPECT_EQ(find->comboFind()->currentText(), "_cell_length");
    EXPECT_TRUE(find->doFind());
    EXPECT_EQ(cursor(), "2:12");
    trigger(A::FindPrevious);
    EXPECT_EQ(cursor(), "1:12");
    trigger(A::FindNext);
    EXPECT_EQ(cursor(), "2:12");
    trigger(A::Find);
    EXPECT_EQ(dialog<QcbsFindDialog>(), find) << "one find dialog per window";
}

TEST_F(MainWindowFind, ReplaceAndGoToLineWorkOnTheWindowsEditor) {
    trigger(A::Replace);
    QcbsReplaceDialog* replace = dialog<QcbsReplaceDialog>();
    ASSERT_NE(replace, nullptr);
    ASSERT_TRUE(waitUntil([&] { return replace->isVisible(); }));
    EXPECT_EQ(replace->windowTitle(), "Replace Text");
    replace->comboFind()->setEditText("length");
    replace->comboReplace()->setEditText("len");
    const QByteArray before = editor()->bytes();
    EXPECT_TRUE(replace->doReplaceAll());
    EXPECT_EQ(editor()->bytes(), "data_a\n_cell_len_a 5.1\n_cell_len_b 6.2\n");
    EXPECT_TRUE(window_.document()->isModified());
    trigger(A::EditUndo);
    EXPECT_EQ(editor()->bytes(), before);

    trigger(A::GoToLine);
    QcbsGotoLineDialog* go = dialog<QcbsGotoLineDialog>();
    ASSERT_NE(go, nullptr);
    ASSERT_TRUE(waitUntil([&] { return go->isVisible(); }));
    EXPECT_EQ(go->windowTitle(), "Go to Line");
    go->lineEdit()->setText("3");
    EXPECT_TRUE(go->doIt());
    EXPECT_EQ(editor()->selectedText(), "_cell_length_b 6.2");
}

}  // namespace
