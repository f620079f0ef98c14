#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QMenu>
#include <QTest>
#include <QTimer>

#include "application/QcbsUtilities.hpp"
#include "validation/QcbsOutputPane.hpp"

namespace {

const QString kBannerText = "========== " + programQName() + " ready ==========";

QStringList actionTexts(const QMenu& menu) {
    QStringList out;
    for (QAction* action : menu.actions()) out << action->text();
    return out;
}

QAction* action(const QMenu& menu, const QString& text) {
    for (QAction* action : menu.actions())
        if (action->text() == text) return action;
    return nullptr;
}

TEST(OutputPane, ClearingLeavesOnlyTheBanner) {
    QcbsOutputPane pane;
    pane.append("Checking CIF ...");
    pane.append("Total errors: 1; warnings: 0; remarks: 0");
    pane.clear();
    EXPECT_EQ(pane.toPlainText().trimmed(), kBannerText);
    EXPECT_TRUE(pane.toHtml().contains("arial black")) << pane.toHtml().toStdString();
    EXPECT_TRUE(pane.acceptRichText());

    pane.append("Checking CIF ...");
    EXPECT_EQ(pane.toPlainText().count("ready"), 1);
    pane.clear();
    EXPECT_EQ(pane.toPlainText().trimmed(), kBannerText);
}

TEST(OutputPane, IgnoresEveryKeyAndNeverTakesTheFocus) {
    QcbsOutputPane pane;
    EXPECT_EQ(pane.focusPolicy(), Qt::NoFocus);
    EXPECT_FALSE(pane.acceptDrops());
    pane.append("first line");
    QApplication::clipboard()->setText("before");
    QTest::keyClicks(&pane, "typed");
    QTest::keyClick(&pane, Qt::Key_Backspace);
    QTest::keyClick(&pane, Qt::Key_Delete);
    QTest::keyClick(&pane, Qt::Key_Return);
    QTest::keyClick(&pane, Qt::Key_A, Qt::ControlModifier);
    EXPECT_FALSE(pane.textCursor().hasSelection());
    pane.selectAll();
    QTest::keyClick(&pane, Qt::Key_C, Qt::ControlModifier);
    QTest::keyClick(&pane, Qt::Key_Insert, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), "before");
    EXPECT_EQ(pane.toPlainText(), "first line");
}

TEST(OutputPane, CopyAllPutsTheWholeLogOnTheClipboard) {
    QcbsOutputPane pane;
    pane.clear();
    pane.append("Checking CIF ...");
    QApplication::clipboard()->setText("before");
    pane.copyAll();
    const QString copied = QApplication::clipboard()->text();
    EXPECT_TRUE(copied.startsWith(kBannerText)) << copied.toStdString();
    EXPECT_TRUE(copied.endsWith("Checking CIF ...")) << copied.toStdString();
}

TEST(OutputPane, ContextMenuOffersSelectAllCopyAndClear) {
    QcbsOutputPane pane;
    pane.append("one");
    pane.append("two");
    std::unique_ptr<QMenu> menu(pane.createPopupMenu());
    ASSERT_EQ(actionTexts(*menu), (QStringList{"Select All", "Copy", "Clear"}));
    for (QAction* entry : menu->actions())
        EXPECT_TRUE(entry->shortcut().isEmpty()) << entry->text().toStdString();
    EXPECT_TRUE(action(*menu, "Select All")->icon().isNull());
    EXPECT_FALSE(action(*menu, "Copy")->icon().isNull());

    action(*menu, "Select All")->trigger();
    EXPECT_EQ(pane.textCursor().selectedText(), QString("one") + QChar::ParagraphSeparator + "two");
    QApplication::clipboard()->setText("before");
    action(*menu, "Copy")->trigger();
    EXPECT_EQ(QApplication::clipboard()->text(), "one\ntwo");
    action(*menu, "Clear")->trigger();
    EXPECT_EQ(pane.toPlainText().trimmed(), kBannerText);
}

TEST(OutputPane, RightClickShowsThePanesOwnMenu) {
    QcbsOutputPane pane;
    pane.resize(400, 200);
    pane.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&pane));
    QStringList shown;
    QTimer::singleShot(0, [&shown] {
        if (auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget())) {
            shown = actionTexts(*menu);
            menu->close();
        }
    });
    const QPoint inside = pane.viewport()->mapTo(&pane, pane.viewport()->rect().center());
    QTest::mouseClick(pane.windowHandle(), Qt::RightButton, {}, inside);
    EXPECT_EQ(shown, (QStringList{"Select All", "Copy", "Clear"}));
}

}  // namespace
