// SPDX-License-Identifier: GPL-3.0-or-later
// The visualiser page driven as the main window drives it, and the separate window.
#include <gtest/gtest.h>

#include <QAction>
#include <QComboBox>
#include <QSignalSpy>
#include <QTest>
#include <sstream>

#include "VisualiserTestSupport.hpp"
#include "visualiser/QcbsStructurePanel.hpp"
#include "visualiser/QcbsStructureView.hpp"
#include "visualiser/QcbsVelmoraWindow.hpp"
#include "visualiser/QcbsVisSorter.hpp"

namespace {

using vis_test::block;

const std::string molecule = "C1 C 0.1 0.1 0.1\nC2 C 0.25 0.1 0.1\nO1 O 0.3 0.2 0.1\n";

// A publication block, a molecule and a cell without atoms, as one document.
std::string document(const std::string& rows = molecule) {
    return "data_global\n_publ_section_title 'A study'\n" + block("mol", rows) +
           "data_empty\n_cell_length_a 5\n_cell_length_b 5\n_cell_length_c 5\n";
}

int lineOf(const std::string& text, const std::string& start) {
    std::istringstream in(text);
    int number = 0;
    for (std::string line; std::getline(in, line);) {
        ++number;
        if (line.rfind(start, 0) == 0) return number;
    }
    return -1;
}

QPoint atomPoint(QcbsStructureView* view, const QString& label) {
    for (std::size_t n = 0; n < view->scene().atoms().size(); ++n) {
        if (view->scene().atoms()[n].label == label) return view->screenPosition(int(n)).toPoint();
    }
    return QPoint(-1, -1);
}

class VisualiserPage : public ::testing::Test {
protected:
    void SetUp() override {
        VIS_REQUIRE_OPENGL();
        page.resize(700, 500);
        page.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&page));
    }
    QcbsVisSorter page;
};

TEST_F(VisualiserPage, BuildsOnlyWhenShownThenFollowsChecksAndBlocks) {
    QSignalSpy status(&page, &QcbsVisSorter::statusBarMessageRequest);
    EXPECT_FALSE(page.message().isEmpty());  // nothing checked yet
    page.setDocument(vis_test::checked(document()));
    EXPECT_EQ(page.panel()->view(), nullptr);  // a hidden tab builds nothing
    EXPECT_EQ(status.count(), 0);

    page.setCurrent(true);
    ASSERT_GE(status.count(), 1);
    EXPECT_EQ(status.first()[0].toString(), "Extracting 3D coordinates...");
    EXPECT_EQ(page.currentBlock(), "mol");
    ASSERT_NE(page.panel()->view(), nullptr);
    EXPECT_TRUE(page.message().isEmpty());
    EXPECT_EQ(page.panel()->view()->scene().atoms().size(), 3u);
    EXPECT_FALSE(vis_test::isBackground(
        page.panel()->view()->grabFramebuffer().pixel(atomPoint(page.panel()->view(), "O1"))));

    // The block at the editor's cursor, and the block chooser.
    const std::string text = document();
    EXPECT_TRUE(page.showBlockAtLine(lineOf(text, "_cell_length_b 5")));
    EXPECT_EQ(page.currentBlock(), "empty");
    EXPECT_EQ(page.message(), "data_empty: no atom coordinates.");
    EXPECT_FALSE(page.showBlockAtLine(1));  // the publication block has no structure
    EXPECT_FALSE(page.zoomin("nosuch"));
    EXPECT_TRUE(page.zoomin("data_MOL"));
    EXPECT_EQ(page.currentBlock(), "mol");
    EXPECT_TRUE(page.message().isEmpty());

    // A new check keeps the block and the view's orientation.
    page.panel()->view()->camera().rotateBy(QPoint(30, 40));
    const QQuaternion turned = page.panel()->view()->camera().rotation();
    page.setDocument(vis_test::checked(document("C1 C 0.1 0.1 0.1\nC2 C 0.26 0.1 0.1\n")));
    EXPECT_EQ(page.currentBlock(), "mol");
    EXPECT_EQ(page.panel()->view()->scene().atoms().size(), 2u);
    EXPECT_TRUE(qFuzzyCompare(page.panel()->view()->camera().rotation(), turned));

    // Checked while another tab is shown: brought up to date when shown again, on the block chosen meanwhile.
    page.setCurrent(false);
    page.setDocument(vis_test::checked(document()));
    EXPECT_TRUE(page.zoomin("empty"));
    EXPECT_EQ(page.panel()->view()->scene().atoms().size(), 2u);
    page.setCurrent(true);
    EXPECT_EQ(page.currentBlock(), "empty");
    page.zoomin("mol");
    EXPECT_EQ(page.panel()->view()->scene().atoms().size(), 3u);

    page.setDocument(THandle<Cif>());
    EXPECT_TRUE(page.message().startsWith("No structure to show"));
    EXPECT_EQ(page.currentBlock(), "");
}

TEST_F(VisualiserPage, DoubleClickingAnAtomAsksForItsRowHereAndInTheSeparateWindow) {
    const std::string text = document();
    page.setDocument(vis_test::checked(text));
    page.setCurrent(true);
    QSignalSpy lines(&page, &QcbsVisSorter::goToLineRequest);
    QcbsStructureView* view = page.panel()->view();
    ASSERT_NE(view, nullptr);
    QTest::mouseDClick(view->window()->windowHandle(), Qt::LeftButton, {},
                       view->mapTo(view->window(), atomPoint(view, "O1")));
    ASSERT_EQ(lines.count(), 1);
    EXPECT_EQ(lines.last()[0].toInt(), lineOf(text, "O1 "));

    view->camera().rotateBy(QPoint(20, 70));
    QcbsVelmoraWindow* window = page.openSeparateWindow();
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(page.separateWindow(), window);
    EXPECT_EQ(page.openSeparateWindow(), window);  // raised, not doubled
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
    EXPECT_EQ(window->panel()->currentBlock(), "mol");
    EXPECT_EQ(window->windowTitle(), "data_mol - Velmora");
    QcbsStructureView* other = window->panel()->view();
    ASSERT_NE(other, nullptr);
    EXPECT_TRUE(qFuzzyCompare(other->camera().rotation(), view->camera().rotation()));
    QTest::mouseDClick(other->window()->windowHandle(), Qt::LeftButton, {},
                       other->mapTo(window, atomPoint(other, "C2")));
    ASSERT_EQ(lines.count(), 2);
    EXPECT_EQ(lines.last()[0].toInt(), lineOf(text, "C2 "));
    QTest::mouseClick(other->window()->windowHandle(), Qt::LeftButton, {},
                      other->mapTo(window, atomPoint(other, "C2")));
    EXPECT_TRUE(window->statusText().startsWith("C2 (C)"));

    // The window follows the checks even while the page is hidden.
    page.setCurrent(false);
    page.setDocument(vis_test::checked(document("C1 C 0.1 0.1 0.1\n")));
    EXPECT_EQ(other->scene().atoms().size(), 1u);
    window->close();
    QTRY_VERIFY(page.separateWindow() == nullptr);
}

TEST_F(VisualiserPage, ToolsFollowTheWindowsSwitchAndAViewThatFailsIsReplacedByWords) {
    page.setDocument(vis_test::checked(document()));
    page.setCurrent(true);
    ASSERT_FALSE(page.toolActions().isEmpty());
    page.setToolsEnabled(false);
    for (QAction* action : page.toolActions())
        EXPECT_FALSE(action->isEnabled()) << action->objectName().toStdString();
    page.setToolsEnabled(true);
    for (QAction* action : page.toolActions())
        EXPECT_TRUE(action->isEnabled()) << action->objectName().toStdString();

    // Switching the contents and style redraws from the same structure.
    auto* contents = page.panel()->findChild<QComboBox*>("viscontents");
    contents->setCurrentIndex(QcbsSceneOptions::UnitCell);
    EXPECT_EQ(page.panel()->view()->options().contents, QcbsSceneOptions::UnitCell);
    page.panel()->findChild<QAction*>("vislabels")->setChecked(false);
    EXPECT_TRUE(page.panel()->view()->scene().labelled().empty());

    emit page.panel()->view()->openGLFailed("the driver lost its context");
    EXPECT_TRUE(page.message().contains("the driver lost its context")) << page.message().toStdString();
    QTRY_VERIFY(page.panel()->view() == nullptr);
}

}  // namespace
