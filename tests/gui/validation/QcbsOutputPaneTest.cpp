// SPDX-License-Identifier: GPL-3.0-or-later
// The output pane: clearing, copying, keys ignored and its context menu.
#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QMenu>
#include <QTest>
#include <QTimer>

#include "base/QcbsUtilities.hpp"
#include "validation/QcbsOutputPane.hpp"

namespace {

const QString kBannerText = "========== " + programQName() + " ready ==========";

QAction* action(const QMenu& menu, const QString& text) {
    for (QAction* action : menu.actions())
        if (action->text() == text) return action;
    return nullptr;
}

TEST(OutputPane, ClearingLeavesOnlyTheBannerAndCopyAllTakesEverything) {
    QcbsOutputPane pane;
    pane.append("Checking CIF ...");
    pane.clear();
    EXPECT_EQ(pane.toPlainText().trimmed(), kBannerText);
    EXPECT_TRUE(pane.toHtml().contains("arial black")) << pane.toHtml().toStdString();
    pane.append("Total errors: 1; warnings: 0; remarks: 0");
    QApplication::clipboard()->setText("before");
    pane.copyAll();
    const QString copied = QApplication::clipboard()->text();
    EXPECT_TRUE(copied.startsWith(kBannerText)) << copied.toStdString();
    EXPECT_TRUE(copied.endsWith("Total errors: 1; warnings: 0; remarks: 0")) << copied.toStdString();
    pane.clear();
    EXPECT_EQ(pane.toPlainText().trimmed(), kBannerText);
}

TEST(OutputPane, IgnoresEveryKeyAndNeverTakesTheFocus) {
    QcbsOutputPane pane;
    EXPECT_EQ(pane.focusPolicy(), Qt::NoFocus);
    pane.append("first line");
    QApplication::clipboard()->setText("before");
    QTest::keyClicks(&pane, "typed");
    for (int key : {Qt::Key_Backspace, Qt::Key_Delete, Qt::Key_Return}) QTest::keyClick(&pane, Qt::Key(key));
    QTest::keyClick(&pane, Qt::Key_A, Qt::ControlModifier);
    EXPECT_FALSE(pane.textCursor().hasSelection());
    pane.selectAll();
    QTest::keyClick(&pane, Qt::Key_C, Qt::ControlModifier);
    QTest::keyClick(&pane, Qt::Key_Insert, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), "before");
    EXPECT_EQ(pane.toPlainText(), "first line");
}

TEST(OutputPane, RightClickOffersSelectAllCopyAndClear) {
    QcbsOutputPane pane;
    pane.resize(400, 200);
    pane.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&pane));
    pane.append("one");
    pane.append("two");
    QStringList shown;
    QTimer::singleShot(0, [&shown] {
        if (auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget())) {
            for (QAction* entry : menu->actions()) shown << entry->text();
            menu->close();
        }
    });
    const QPoint inside = pane.viewport()->mapTo(&pane, pane.viewport()->rect().center());
    QTest::mouseClick(pane.windowHandle(), Qt::RightButton, {}, inside);
    EXPECT_EQ(shown, (QStringList{"Select All", "Copy", "Clear"}));

    std::unique_ptr<QMenu> menu(pane.createPopupMenu());
    EXPECT_TRUE(action(*menu, "Select All")->icon().isNull());
    EXPECT_FALSE(action(*menu, "Copy")->icon().isNull());
    action(*menu, "Select All")->trigger();
    QApplication::clipboard()->setText("before");
    action(*menu, "Copy")->trigger();
    EXPECT_EQ(QApplication::clipboard()->text(), "one\ntwo");
    action(*menu, "Clear")->trigger();
    EXPECT_EQ(pane.toPlainText().trimmed(), kBannerText);
}

}  // namespace
