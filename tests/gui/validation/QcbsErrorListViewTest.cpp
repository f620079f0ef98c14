#include <gtest/gtest.h>

#include <QHeaderView>
#include <QSignalSpy>
#include <QTest>

#include "validation/QcbsErrorListView.hpp"
#include "validation/QcbsErrorResource.hpp"
#include "validation/QcbsKeyListViewItem.hpp"

namespace {

CifError::ErrorID kind(int code) { return static_cast<CifError::ErrorID>(code); }

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

    QStringList lineTexts(QTreeWidgetItem* parent) {
        QStringList out;
        for (int i = 0; i < parent->childCount(); ++i) out << parent->child(i)->text(0);
        return out;
    }

    QcbsErrorListView list;
    QSignalSpy highlights{&list, &QcbsErrorListView::requestHighlightLine};
    QSignalSpy help{&list, &QcbsErrorListView::helpRequest};
};

TEST_F(ErrorList, StartsWithThreeEmptyHeadingsInFixedOrder) {
    ASSERT_EQ(list.topLevelItemCount(), 3);
    const QStringList names{"Errors", "Warnings", "Remarks"};
    for (int row = 0; row < 3; ++row) {
        EXPECT_EQ(heading(row)->text(0), names[row]);
        EXPECT_EQ(heading(row)->text(1), " - none");
        EXPECT_FALSE(heading(row)->icon(0).isNull()) << row;
        EXPECT_EQ(heading(row)->childCount(), 0);
    }
    EXPECT_EQ(list.numberTotal(), 0);
    EXPECT_EQ(list.columnCount(), 2);
    EXPECT_TRUE(list.header()->isHidden());
    EXPECT_EQ(list.toolTip(), "Double-click item to view");
    EXPECT_EQ(list.focusPolicy(), Qt::NoFocus);
}

TEST_F(ErrorList, HeadingsKeepTheirOrderWhateverTheySay) {
    heading(0)->setText(0, "Zebra");     // errors
    heading(2)->setText(0, "Aardvark");  // remarks
    QCoreApplication::processEvents();
    EXPECT_EQ(heading(0)->text(0), "Zebra");
    EXPECT_EQ(heading(1)->text(0), "Warnings");
    EXPECT_EQ(heading(2)->text(0), "Aardvark");
}

TEST_F(ErrorList, EntryShowsItsLineRightJustifiedAndItsMessageOnOneLine) {
    EXPECT_TRUE(
        list.addError("Unexpected end of text\nin quoted string", 12, CifError::unterminated_quoted_string));
    QTreeWidgetItem* entry = heading(0)->child(0);
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry->text(0), "Line      12");
    EXPECT_EQ(entry->text(1), "Unexpected end of text ... in quoted string");
    EXPECT_EQ(dynamic_cast<QcbsErrorListViewItem*>(entry)->identifier(1),
              CifError::unterminated_quoted_string);
    EXPECT_EQ(heading(0)->text(1), "  Total of 1");
    EXPECT_EQ(heading(1)->text(1), " - none");
    EXPECT_EQ(heading(2)->text(1), " - none");

    list.addError("x", 12345678, CifError::unterminated_quoted_string);  // wider than seven digits: never cut
    list.addError("x", -1, CifError::unterminated_quoted_string);
    list.addError("x", 0, CifError::unterminated_quoted_string);
    EXPECT_EQ(heading(0)->text(1), "  Total of 4");
    EXPECT_TRUE(lineTexts(heading(0)).contains("Line 12345678"));
    EXPECT_TRUE(lineTexts(heading(0)).contains("Line      -1"));
    EXPECT_TRUE(lineTexts(heading(0)).contains("Line       0"));
}

TEST_F(ErrorList, EachKindGoesUnderItsOwnHeadingAndIsCounted) {
    EXPECT_TRUE(list.addWarning("w1", 3, CifError::undefined_data_name));
    EXPECT_TRUE(list.addRemark("r1", 4, CifError::calculated_value_differs));
    EXPECT_TRUE(list.addWarning("w2", 5, CifError::undefined_data_name));
    EXPECT_TRUE(list.addError("e1", 6, CifError::value_without_data_name));
    EXPECT_TRUE(list.addRemark("r2", 7, CifError::count_mismatch));
    EXPECT_TRUE(list.addRemark("r3", 8, CifError::count_mismatch));
    EXPECT_EQ(list.numberErrors(), 1);
    EXPECT_EQ(list.numberWarnings(), 2);
    EXPECT_EQ(list.numberRemarks(), 3);
    EXPECT_EQ(list.numberTotal(), 6);
    EXPECT_EQ(heading(0)->text(1), "  Total of 1");
    EXPECT_EQ(heading(1)->text(1), "  Total of 2");
    EXPECT_EQ(heading(2)->text(1), "  Total of 3");
    EXPECT_EQ(heading(1)->child(0)->text(1), "w1");
    EXPECT_EQ(heading(2)->child(2)->text(1), "r3");
}

TEST_F(ErrorList, EntriesSortInLineOrderNotInTextOrder) {
    list.addWarning("c", 100, CifError::undefined_data_name);
    list.addWarning("a", 9, CifError::undefined_data_name);
    list.addWarning("b", 10, CifError::undefined_data_name);
    QCoreApplication::processEvents();
    EXPECT_EQ(lineTexts(heading(1)), (QStringList{"Line       9", "Line      10", "Line     100"}));
}

TEST(ErrorListTidying, LineEndsBecomeDotsAndTheResultIsCutAt256) {
    QString message = "first\nsecond\n\nthird";
    QcbsErrorListView::tidyMessage(message);
    EXPECT_EQ(message, "first ... second ...  ... third");

    // The cut comes after the line ends are replaced.
    message = QString(254, 'x') + "\nyy";
    QcbsErrorListView::tidyMessage(message);
    EXPECT_EQ(message, QString(254, 'x') + " .");

    message = QString(256, 'y');
    QcbsErrorListView::tidyMessage(message);
    EXPECT_EQ(message.size(), 256);

    message = "";
    QcbsErrorListView::tidyMessage(message);
    EXPECT_EQ(message, "");
}

TEST_F(ErrorList, DoubleClickHighlightsTheNamedLineAndThenTheEntrysOwn) {
    list.addError("Duplicate data name _cell_length_a\nline: 17", 30, CifError::duplicate_data_name);
    heading(0)->setExpanded(true);
    doubleClick(heading(0)->child(0));
    EXPECT_EQ(requests(), (std::vector<Request>{{17, 1, true}, {30, 2, false}}));
}

TEST_F(ErrorList, MessageThatStartsWithLineNamesNoOtherLine) {
    list.addWarning("line: 5 is too long", 40, CifError::undefined_data_name);  // not a number after "line:"
    list.addWarning("line: 5", 41, CifError::undefined_data_name);              // at the very start
    list.addWarning("see line: five", 42, CifError::undefined_data_name);       // no number
    heading(1)->setExpanded(true);
    for (int i = 0; i < 3; ++i) doubleClick(heading(1)->child(i));
    EXPECT_EQ(requests(), (std::vector<Request>{{40, 2, true}, {41, 2, true}, {42, 2, true}}));
}

TEST_F(ErrorList, DoubleClickOnLineZeroOrBelowStillAsksTheEditor) {
    list.addRemark("r", -1, CifError::calculated_value_differs);
    list.addRemark("r", 0, CifError::calculated_value_differs);
    heading(2)->setExpanded(true);
    // As text, "Line       0" comes before "Line      -1".
    doubleClick(heading(2)->child(0), 0);
    doubleClick(heading(2)->child(1), 0);
    EXPECT_EQ(requests(), (std::vector<Request>{{0, 2, true}, {-1, 2, true}}));
}

TEST_F(ErrorList, DoubleClickOnAHeadingAsksNothing) {
    list.addError("line: 3", 3, CifError::value_without_data_name);
    doubleClick(heading(0), 0);
    doubleClick(heading(1), 1);
    list.doubleClickedItem(nullptr);
    EXPECT_TRUE(highlights.isEmpty());
}

TEST_F(ErrorList, RightClickOnTheMessageAsksForTheHelpPageOfItsKind) {
    list.addError("no page", 1, CifError::warnings_omitted);
    list.addError("last kind", 2, CifError::too_many_messages);
    list.addError("has page", 3, CifError::symmetry_disagrees);
    heading(0)->setExpanded(true);
    QTreeWidgetItem* noPage = heading(0)->child(0);
    QTreeWidgetItem* lastKind = heading(0)->child(1);
    QTreeWidgetItem* hasPage = heading(0)->child(2);

    rightClick(hasPage, 0);  // the line column gives no help
    rightClick(noPage, 1);
    rightClick(lastKind, 1);
    rightClick(heading(0), 1);
    rightClick(heading(1), 0);
    const QPoint emptySpace = list.viewport()->mapTo(&list, QPoint(40, list.viewport()->height() - 5));
    QTest::mouseClick(list.windowHandle(), Qt::RightButton, {}, emptySpace);
    EXPECT_TRUE(help.isEmpty());

    rightClick(hasPage, 1);
    ASSERT_EQ(help.size(), 1);
    EXPECT_EQ(help[0][0].toString(), "tessary/PortableHTML/tessary_portable-3-104.html");
}

TEST_F(ErrorList, RemoveAllEmptiesTheListButKeepsWhichHeadingsAreOpen) {
    for (bool errorsOpen : {true, false}) {
        list.addError("e", 1, CifError::value_without_data_name);
        list.addWarning("w", 2, CifError::undefined_data_name);
        list.addRemark("r", 3, CifError::calculated_value_differs);
        heading(0)->setExpanded(errorsOpen);
        heading(1)->setExpanded(!errorsOpen);
        heading(2)->setExpanded(true);

        list.removeAll();
        ASSERT_EQ(list.topLevelItemCount(), 3);
        EXPECT_EQ(list.numberTotal(), 0);
        EXPECT_EQ(heading(0)->text(0), "Errors");
        EXPECT_EQ(heading(2)->text(0), "Remarks");
        for (int row = 0; row < 3; ++row) EXPECT_EQ(heading(row)->text(1), " - none");
        EXPECT_EQ(heading(0)->isExpanded(), errorsOpen);
        EXPECT_EQ(heading(1)->isExpanded(), !errorsOpen);
        EXPECT_TRUE(heading(2)->isExpanded());
    }
    // The new headings take entries as the first ones did.
    list.addWarning("again", 8, CifError::undefined_data_name);
    EXPECT_EQ(heading(1)->text(1), "  Total of 1");
}

TEST(ErrorHelpPages, PageNumberIsPaddedIntoTheTemplateAndKindsWithoutAPageGetNone) {
    EXPECT_EQ(QcbsErrorResource::get_help_file(kind(302)),
              "tessary/PortableHTML/tessary_portable-3-069.html");
    EXPECT_EQ(QcbsErrorResource::get_help_file(kind(358)),
              "tessary/PortableHTML/tessary_portable-3-100.html");
    for (auto [a, b] : {std::pair{327, 328}, {348, 349}, {351, 352}, {354, 355}})
        EXPECT_EQ(QcbsErrorResource::get_help_file(kind(a)), QcbsErrorResource::get_help_file(kind(b))) << a;
    for (int code : {-300, 0, 299, 300, 301, 314, 323, 330, 342, 363, 366, 367, 1000}) {
        const QString file = QcbsErrorResource::get_help_file(kind(code));
        EXPECT_TRUE(file.isEmpty() && !file.isNull()) << code;
    }
}

}  // namespace
