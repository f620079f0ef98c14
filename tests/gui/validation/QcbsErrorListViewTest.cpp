// SPDX-License-Identifier: GPL-3.0-or-later
// The error list: its headings, entries in line order, double-click and right-click.
#include <gtest/gtest.h>

#include <QHeaderView>
#include <QSignalSpy>
#include <QTest>

#include "validation/QcbsErrorListView.hpp"
#include "validation/QcbsErrorListViewItem.hpp"

namespace {

using Request = std::tuple<int, int, bool>;

// A shown error list driven with the mouse as a user would: the events go
// through the window, so a right press also raises the context-menu request.
class ErrorList : public ::testing::Test {
protected:
    void SetUp() override {
        list.resize(700, 320);
        list.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&list));
    }

    QTreeWidgetItem* heading(int row) { return list.topLevelItem(row); }

    // The middle of a column of a row, in window coordinates.
    QPoint spot(QTreeWidgetItem* item, int column) {
        list.scrollToItem(item);
        const QRect row = list.visualItemRect(item);
        const int x = list.columnViewportPosition(column) + qMin(list.columnWidth(column) / 2, 40);
        return list.viewport()->mapTo(&list, QPoint(x, row.center().y()));
    }
    void doubleClick(QTreeWidgetItem* item, int column = 1) {
        QTest::mouseDClick(list.windowHandle(), Qt::LeftButton, {}, spot(item, column));
    }
    void rightClick(QTreeWidgetItem* item, int column) {
        QTest::mouseClick(list.windowHandle(), Qt::RightButton, {}, spot(item, column));
    }

    std::vector<Request> requests() const {
        std::vector<Request> out;
        for (const QList<QVariant>& args : highlights)
            out.emplace_back(args[0].toInt(), args[1].toInt(), args[2].toBool());
        return out;
    }
    QStringList column(QTreeWidgetItem* parent, int column) {
        QStringList out;
        for (int i = 0; i < parent->childCount(); ++i) out << parent->child(i)->text(column);
        return out;
    }
    void expectEmptyHeadings() {
        ASSERT_EQ(list.topLevelItemCount(), 3);
        const QStringList names{"Errors", "Warnings", "Remarks"};
        for (int row = 0; row < 3; ++row) {
            EXPECT_EQ(heading(row)->text(0), names[row]);
            EXPECT_EQ(heading(row)->text(1), " - none");
            EXPECT_FALSE(heading(row)->icon(0).isNull()) << row;
            EXPECT_EQ(heading(row)->childCount(), 0);
        }
        EXPECT_EQ(list.numberTotal(), 0);
    }

    QcbsErrorListView list;
    QSignalSpy highlights{&list, &QcbsErrorListView::requestHighlightLine};
    QSignalSpy help{&list, &QcbsErrorListView::helpRequest};
};

TEST_F(ErrorList, ThreeEmptyHeadingsInFixedOrderAfterAnEmptyRunAndAfterRemoveAllWhichKeepsThemOpenOrClosed) {
    expectEmptyHeadings();
    EXPECT_TRUE(list.header()->isHidden());
    EXPECT_EQ(list.toolTip(), "Double-click item to view");
    EXPECT_EQ(list.focusPolicy(), Qt::NoFocus);
    // The headings sort by key, not by what they say.
    heading(0)->setText(0, "Zebra");
    heading(2)->setText(0, "Aardvark");
    QCoreApplication::processEvents();
    EXPECT_EQ(heading(0)->text(0), "Zebra");
    EXPECT_EQ(heading(2)->text(0), "Aardvark");

    for (bool errorsOpen : {true, false}) {
        list.addError("e", 1, CifError::value_without_data_name);
        list.addWarning("w", 2, CifError::undefined_data_name);
        list.addRemark("r", 3, CifError::calculated_value_differs);
        heading(0)->setExpanded(errorsOpen);
        heading(1)->setExpanded(!errorsOpen);
        heading(2)->setExpanded(true);
        list.removeAll();
        expectEmptyHeadings();
        EXPECT_EQ(heading(0)->isExpanded(), errorsOpen);
        EXPECT_EQ(heading(1)->isExpanded(), !errorsOpen);
        EXPECT_TRUE(heading(2)->isExpanded());
    }
    list.addWarning("again", 8, CifError::undefined_data_name);
    EXPECT_EQ(heading(1)->text(1), "  Total of 1");
}

TEST_F(ErrorList, EntriesShowTheirLineRightJustifiedUnderTheirHeadingInLineOrder) {
    EXPECT_TRUE(
        list.addError("Unexpected end of text\nin quoted string", 12, CifError::unterminated_quoted_string));
    EXPECT_TRUE(list.addError("x", 12345678, CifError::unterminated_quoted_string));  // never cut
    EXPECT_TRUE(list.addError("x", -1, CifError::unterminated_quoted_string));
    EXPECT_TRUE(list.addError("x", 0, CifError::unterminated_quoted_string));
    EXPECT_TRUE(list.addWarning("c", 100, CifError::undefined_data_name));
    EXPECT_TRUE(list.addWarning("a", 9, CifError::undefined_data_name));
    EXPECT_TRUE(list.addWarning("b", 10, CifError::undefined_data_name));
    EXPECT_TRUE(list.addRemark("r", 4, CifError::calculated_value_differs));
    QCoreApplication::processEvents();
    EXPECT_EQ(list.numberErrors(), 4);
    EXPECT_EQ(list.numberWarnings(), 3);
    EXPECT_EQ(list.numberRemarks(), 1);
    EXPECT_EQ(list.numberTotal(), 8);
    EXPECT_EQ(heading(0)->text(1), "  Total of 4");
    EXPECT_EQ(heading(1)->text(1), "  Total of 3");
    EXPECT_EQ(heading(2)->text(1), "  Total of 1");
    EXPECT_EQ(column(heading(1), 0), (QStringList{"Line       9", "Line      10", "Line     100"}));
    EXPECT_EQ(column(heading(1), 1), (QStringList{"a", "b", "c"}));
    const QStringList errorLines = column(heading(0), 0);
    for (const char* text : {"Line      12", "Line 12345678", "Line      -1", "Line       0"})
        EXPECT_TRUE(errorLines.contains(text)) << text;
    QTreeWidgetItem* entry = heading(0)->child(errorLines.indexOf("Line      12"));
    EXPECT_EQ(entry->text(1), "Unexpected end of text ... in quoted string");
    EXPECT_EQ(dynamic_cast<QcbsErrorListViewItem*>(entry)->identifier(1),
              CifError::unterminated_quoted_string);
}

TEST(ErrorListTidying, LineEndsBecomeDotsAndTheResultIsCutAt256) {
    const std::pair<QString, QString> cases[] = {
        {"first\nsecond\n\nthird", "first ... second ...  ... third"},
        // The cut comes after the line ends are replaced.
        {QString(254, 'x') + "\nyy", QString(254, 'x') + " ."},
        {QString(256, 'y'), QString(256, 'y')},
        {QString(300, 'z'), QString(256, 'z')},
        {"", ""},
    };
    for (auto [message, tidied] : cases) {
        QcbsErrorListView::tidyMessage(message);
        EXPECT_EQ(message, tidied);
    }
}

TEST_F(ErrorList, DoubleClickHighlightsTheLineTheMessageNamesAndThenTheEntrysOwn) {
    list.addError("Duplicate data name _cell_length_a\nline: 17", 30, CifError::duplicate_data_name);
    list.addWarning("line: 5", 40, CifError::undefined_data_name);         // at the very start
    list.addWarning("see line: five", 42, CifError::undefined_data_name);  // no number
    list.addRemark("r", -1, CifError::calculated_value_differs);
    list.addRemark("r", 0, CifError::calculated_value_differs);
    for (int row = 0; row < 3; ++row) heading(row)->setExpanded(true);
    doubleClick(heading(0)->child(0));
    doubleClick(heading(1)->child(0));
    doubleClick(heading(1)->child(1));
    // As text, "Line       0" comes before "Line      -1".
    doubleClick(heading(2)->child(0), 0);
    doubleClick(heading(2)->child(1), 0);
    // Headings ask nothing.
    doubleClick(heading(0), 0);
    doubleClick(heading(1), 1);
    list.doubleClickedItem(nullptr);
    EXPECT_EQ(requests(),
              (std::vector<Request>{
                  {17, 1, true}, {30, 2, false}, {40, 2, true}, {42, 2, true}, {0, 2, true}, {-1, 2, true}}));
}

TEST_F(ErrorList, RightClickOnTheMessageAsksForTheHelpPageOfItsKind) {
    list.addError("no page", 1, CifError::warnings_omitted);
    list.addError("last kind", 2, CifError::too_many_messages);
    list.addError("has page", 3, CifError::symmetry_disagrees);
    heading(0)->setExpanded(true);
    QTreeWidgetItem* hasPage = heading(0)->child(2);
    rightClick(hasPage, 0);  // the line column gives no help
    rightClick(heading(0)->child(0), 1);
    rightClick(heading(0)->child(1), 1);
    rightClick(heading(0), 1);
    rightClick(heading(1), 0);
    const QPoint emptySpace = list.viewport()->mapTo(&list, QPoint(40, list.viewport()->height() - 5));
    QTest::mouseClick(list.windowHandle(), Qt::RightButton, {}, emptySpace);
    EXPECT_TRUE(help.isEmpty());

    rightClick(hasPage, 1);
    ASSERT_EQ(help.size(), 1);
    EXPECT_EQ(help[0][0].toString(), "tessary/PortableHTML/tessary_portable-3-104.html");
}

}  // namespace
