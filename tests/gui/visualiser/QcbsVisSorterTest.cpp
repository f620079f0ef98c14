// SPDX-License-Identifier: GPL-3.0-or-later
// The visualiser page where nothing can be drawn in 3-D: it says so in words.
#include <gtest/gtest.h>

#include <QSignalSpy>

#include "VisualiserTestSupport.hpp"
#include "visualiser/QcbsStructurePanel.hpp"
#include "visualiser/QcbsVelmoraWindow.hpp"
#include "visualiser/QcbsVisSorter.hpp"

namespace {

using vis_test::block;

// The offscreen platform of the tests cannot show OpenGL windows: the page
// must say so instead of failing, and never make an OpenGL widget.
TEST(VisualiserPageWithoutOpenGL, SaysInWordsWhyNothingIsDrawn) {
    ASSERT_FALSE(openGLProblem().isEmpty());
    QcbsVisSorter page;
    EXPECT_TRUE(page.message().startsWith("No structure to show")) << page.message().toStdString();
    page.setDocument(vis_test::checked("data_global\n_publ_section_title 'A study'\n" +
                                       block("mol", "C1 C 0.1 0.1 0.1\nC2 C 0.25 0.1 0.1\n") +
                                       "data_empty\n_cell_length_a 5\n_cell_length_b 5\n_cell_length_c 5\n"));
    QSignalSpy status(&page, &QcbsVisSorter::statusBarMessageRequest);
    page.setCurrent(true);
    EXPECT_EQ(page.currentBlock(), "mol");
    EXPECT_TRUE(page.message().contains("cannot be drawn here")) << page.message().toStdString();
    EXPECT_TRUE(page.message().contains(openGLProblem())) << page.message().toStdString();
    EXPECT_EQ(page.panel()->view(), nullptr);
    // Blocks without a structure still say what they lack.
    EXPECT_TRUE(page.zoomin("empty"));
    EXPECT_EQ(page.message(), "data_empty: no atom coordinates.");
    // Opening the separate window does not fail either: it says the same.
    QcbsVelmoraWindow* window = page.openSeparateWindow();
    ASSERT_NE(window, nullptr);
    EXPECT_FALSE(window->panel()->message().isEmpty());
    window->close();
}

}  // namespace
