// SPDX-License-Identifier: GPL-3.0-or-later
// The loop table: headings, validated cells, rows, columns and cells kept in step, loop text.
#include <gtest/gtest.h>

#include <QApplication>
#include <QColor>
#include <QHeaderView>
#include <QIcon>
#include <QLineEdit>
#include <QPalette>
#include <QSignalSpy>
#include <QUndoStack>
#include <sstream>

#include "GuiTestSupport.hpp"
#include "application/DialogAnswerer.hpp"
#include "views/QcbsLoopTable.hpp"
#include "views/QcbsLoopTableModel.hpp"
#include "views/ViewsTestSupport.hpp"

namespace {

using views_test::checked;

const std::string kAtoms =
    "data_test\n"
    "_cell_length_a 5.0\n"
    "loop_\n"
    "_atom_site_label\n"
    "_atom_site_fract_x\n"
    "_atom_site_occupancy\n"
    "C1 0.1 1.0\n"
    "C2 0.2 .\n"
    "C3 0.3 ?\n"
    "_exptl_crystal_colour red\n";

class LoopTable : public ::testing::Test {
protected:
    void load(const std::string& text, const QString& name = "_atom_site_label") {
        cif_ = checked(text);
        ASSERT_TRUE(table_.processLoop(name, cif_->block(0)));
    }
    // The column of every cell, as the working block holds it.
    QStringList column(int col) const {
        QStringList values;
        const auto& item = table_.loopModel()->columns()[col];
        for (std::size_t n = 0; n < item->size(); ++n) values << QString::fromStdString(item->value(n));
        return values;
    }
    // The values in reading order, rows joined by "|".
    QString cells() const {
        QStringList rows;
        for (int r = 0; r < table_.model()->rowCount(); ++r) {
            QStringList row;
            for (int c = 0; c < table_.model()->columnCount(); ++c) row << table_.cellText(r, c);
            rows << row.join(' ');
        }
        return rows.join('|');
    }
    bool columnsEven() const {
        const auto& columns = table_.loopModel()->columns();
        for (const auto& item : columns)
            if (item->size() != columns.front()->size()) return false;
        return true;
    }
    QVariant role(int row, int col, int role) const { return table_.model()->index(row, col).data(role); }
    void select(int row, int col) { table_.setCurrentIndex(table_.model()->index(row, col)); }

    THandle<Cif> cif_;
    QcbsLoopTable table_;
};

TEST_F(LoopTable, HeadingsDropTheLongestCommonBeginningOfTheNamesExactlyAsWritten) {
    const struct {
        const char* loop;
        const char* category;
        QStringList labels;
    } cases[] = {
        {"loop_ _atom_site_fract_x _atom_site_fract_y 0.1 0.2", "_atom_site_fract_", {"x", "y"}},
        {"loop_ _atom_site_label _atom_site_fract_x C1 0.1", "_atom_site_", {"label", "fract_x"}},
        {"loop_ _atom_site_label C1", "", {"_atom_site_label"}},
        // Compared case by case: the common part ends where the case differs.
        {"loop_ _Atom_site_x _atom_site_y 1 2", "_", {"Atom_site_x", "atom_site_y"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.loop);
        QSignalSpy announced(&table_, &QcbsLoopTable::loopCategoryChanged);
        const std::string text = std::string("data_t\n") + c.loop + "\n";
        const std::string first = QString(c.loop).split(' ')[1].toStdString();
        load(text, QString::fromStdString(first));
        EXPECT_EQ(table_.loopCategory(), c.category);
        ASSERT_EQ(announced.count(), 1);
        EXPECT_EQ(announced.front().front().toString(), c.category);
        QStringList shown;
        for (int col = 0; col < table_.model()->columnCount(); ++col) {
            shown << table_.model()->headerData(col, Qt::Horizontal).toString();
            EXPECT_EQ(table_.loopItem(col), table_.loopModel()->columnNames()[col]);
        }
        EXPECT_EQ(shown, c.labels);
        EXPECT_EQ(table_.loopMaster(), QString::fromStdString(first));
        EXPECT_EQ(table_.model()->headerData(0, Qt::Vertical).toInt(), 1);
    }
}

TEST_F(LoopTable, ANameOutsideALoopOrANullBlockLeavesTheTableAsItWas) {
    load(kAtoms);
    const QString before = cells();
    EXPECT_FALSE(table_.processLoop("_cell_length_a", cif_->block(0)));
    EXPECT_FALSE(table_.processLoop("_no_such_name", cif_->block(0)));
    EXPECT_FALSE(table_.processLoop("_atom_site_label", THandle<CifDataBlock>()));
    EXPECT_EQ(cells(), before);
    EXPECT_EQ(table_.loopMaster(), "_atom_site_label");
}

TEST_F(LoopTable, ShowsTheLoopAndEditsOnlyItsOwnCopyOfTheBlock) {
    load(kAtoms, "_atom_site_occupancy");
    EXPECT_EQ(cells(), "C1 0.1 1.0|C2 0.2 .|C3 0.3 ?");
    table_.updateCell(0, 0, "N1");
    table_.addRow();
    EXPECT_EQ(column(0), QStringList({"N1", "C2", "C3", "?"}));
    // The document's block is untouched.
    EXPECT_EQ(cif_->block(0)->find("_atom_site_label")->value(0), "C1");
    EXPECT_EQ(cif_->block(0)->find("_atom_site_label")->size(), 3u);
    // The working block holds only the loop.
    EXPECT_TRUE(table_.workingBlock()->find("_cell_length_a").is_null());
}

TEST_F(LoopTable, ATypedInvalidValueIsKeptAndMarkedUntilItIsCorrected) {
    load(kAtoms);
    EXPECT_TRUE(table_.isCellValid(0, 2));
    EXPECT_TRUE(role(0, 2, Qt::DecorationRole).isNull());
    table_.updateCell(0, 2, "1.5");  // occupancy above 1
    EXPECT_EQ(table_.cellText(0, 2), "1.5");
    EXPECT_FALSE(table_.isCellValid(0, 2));
    EXPECT_FALSE(role(0, 2, Qt::DecorationRole).value<QIcon>().isNull());
    table_.updateCell(0, 2, "0.5");
    EXPECT_TRUE(table_.isCellValid(0, 2));
    EXPECT_TRUE(role(0, 2, Qt::DecorationRole).isNull());
    // Typing through the cell editor goes the same way.
    QSignalSpy begins(&table_, &QcbsLoopTable::editingBegins);
    QSignalSpy ends(&table_, &QcbsLoopTable::editingEnds);
    table_.show();
    select(1, 2);
    table_.edit(table_.currentIndex());
    ASSERT_EQ(begins.count(), 1);
    auto* editor = table_.viewport()->findChild<QLineEdit*>();
    ASSERT_NE(editor, nullptr);
    editor->setText("2");
    QTest::keyClick(editor, Qt::Key_Return);
    EXPECT_TRUE(waitUntil([&] { return ends.count() == 1; }, 5000));
    EXPECT_EQ(table_.cellText(1, 2), "2");
    EXPECT_FALSE(table_.isCellValid(1, 2));
}

TEST_F(LoopTable, UnknownNotApplicableAndBlankCellsAreTinted) {
    load(kAtoms);
    table_.updateCell(0, 0, "  ");
    EXPECT_EQ(role(1, 2, Qt::BackgroundRole).value<QColor>(), QColor("lightyellow"));
    EXPECT_EQ(role(2, 2, Qt::BackgroundRole).value<QColor>(), QColor("lightblue"));
    EXPECT_EQ(role(0, 0, Qt::BackgroundRole).value<QColor>(),
              QApplication::palette().color(QPalette::Window));
    EXPECT_TRUE(role(0, 1, Qt::BackgroundRole).isNull());
}

TEST_F(LoopTable, RowAndColumnCommandsKeepTheBlockInStepAndUndoExactly) {
    load(kAtoms);
    const QString original = table_.loopText();
    QUndoStack& undo = *table_.undoStack();
    table_.addRow();
    EXPECT_EQ(cells(), "C1 0.1 1.0|C2 0.2 .|C3 0.3 ?|? ? ?");
    select(1, 0);
    table_.deleteRow();
    EXPECT_EQ(cells(), "C1 0.1 1.0|C3 0.3 ?|? ? ?");
    table_.swapRows(0, 1);
    EXPECT_EQ(cells(), "C3 0.3 ?|C1 0.1 1.0|? ? ?");
    table_.swapColumns(0, 2);
    EXPECT_EQ(table_.loopMaster(), "_atom_site_occupancy");
    std::vector<std::string> names;
    table_.workingBlock()->loop_columns("_atom_site_label", names);
    EXPECT_EQ(names.front(), "_atom_site_occupancy");
    EXPECT_TRUE(table_.addCol("_atom_site_type_symbol"));
    EXPECT_FALSE(table_.addCol("_atom_site_type_symbol"));
    EXPECT_EQ(column(3), QStringList({"?", "?", "?"}));
    EXPECT_TRUE(columnsEven());
    // Selected rows, scattered, go at once.
    table_.selectRow(0);
    table_.selectionModel()->select(table_.model()->index(2, 0),
                                    QItemSelectionModel::Select | QItemSelectionModel::Rows);
    table_.deleteRow();
    EXPECT_EQ(cells(), "1.0 0.1 C1 ?");
    while (undo.canUndo()) undo.undo();
    EXPECT_EQ(table_.loopText(), original);
    while (undo.canRedo()) undo.redo();
    EXPECT_EQ(cells(), "1.0 0.1 C1 ?");
}

TEST_F(LoopTable, DeletingEveryColumnLeavesNoRowsAndUndoBringsThemBack) {
    load(kAtoms);
    table_.selectAll();
    table_.deleteCol();
    EXPECT_EQ(table_.model()->columnCount(), 0);
    EXPECT_EQ(table_.model()->rowCount(), 0);
    EXPECT_EQ(table_.loopMaster(), "");
    EXPECT_EQ(table_.loopText(), "");
    table_.addRow();  // no loop master: nothing
    EXPECT_EQ(table_.model()->rowCount(), 0);
    table_.undoStack()->undo();
    EXPECT_EQ(cells(), "C1 0.1 1.0|C2 0.2 .|C3 0.3 ?");
    EXPECT_EQ(table_.loopCategory(), "_atom_site_");
}

TEST_F(LoopTable, CellCommandsMoveTheFollowingValuesInReadingOrderAndKeepColumnsEven) {
    const std::string loop =
        "data_t\nloop_\n_atom_site_label\n_atom_site_fract_x\n_atom_site_occupancy\n"
        "C1 0.1 1\nC2 0.2 1\n";
    const struct {
        const char* what;
        int row;
        int col;
        std::function<void(QcbsLoopTable&)> command;
        const char* after;
    } cases[] = {
        {"insert", 0, 1, [](QcbsLoopTable& t) { t.insertCell(); }, "C1 ? 0.1|1 C2 0.2|1 ? ?"},
        {"insert three", 1, 2,
         [](QcbsLoopTable& t) { t.addCell(QcbsLoopTable::AddMode::InsertUnknown, 1, 2, 3); },
         "C1 0.1 1|C2 0.2 ?|? ? 1"},
        {"delete", 0, 1, [](QcbsLoopTable& t) { t.deleteCell(); }, "C1 1 C2|0.2 1 ?"},
        {"merge", 0, 0, [](QcbsLoopTable& t) { t.mergeCell(); }, "C1 0.1 1 C2|0.2 1 ?"},
        {"merge at the end", 1, 2, [](QcbsLoopTable& t) { t.mergeCell(); }, "C1 0.1 1|C2 0.2 1"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        load(loop);
        const QString before = table_.loopText();
        select(c.row, c.col);
        c.command(table_);
        EXPECT_EQ(cells(), c.after);
        EXPECT_TRUE(columnsEven());
        while (table_.undoStack()->canUndo()) table_.undoStack()->undo();
        EXPECT_EQ(table_.loopText(), before);
        EXPECT_TRUE(columnsEven());
    }
}

TEST_F(LoopTable, SplittingAValueThatSwallowedItsNeighboursRepairsTheRows) {
    // A label written with a blank inside quotes took two places of one.
    load("data_t\nloop_\n_atom_site_label\n_atom_site_fract_x\n'C1 0.1' 0.2\n0.3 ?\n");
    EXPECT_EQ(cells(), "C1 0.1 0.2|0.3 ?");
    select(0, 0);
    table_.splitCell();
    EXPECT_EQ(cells(), "C1 0.1|0.2 0.3|? ?");
    EXPECT_TRUE(columnsEven());
    // Selected cells go together; the row count stays.
    table_.clearSelection();
    table_.selectionModel()->select(table_.model()->index(1, 0), QItemSelectionModel::Select);
    table_.selectionModel()->select(table_.model()->index(2, 1), QItemSelectionModel::Select);
    table_.deleteCell();
    EXPECT_EQ(cells(), "C1 0.1|0.3 ?|? ?");
    table_.undoStack()->undo();
    table_.undoStack()->undo();
    EXPECT_EQ(cells(), "C1 0.1 0.2|0.3 ?");
}

TEST_F(LoopTable, SortingOrdersNumbersByValueIgnoringUncertaintiesAndTextAfterThem) {
    load(
        "data_t\nloop_\n_atom_site_label\n_atom_site_fract_x\n"
        "A 10(2)\nB 9.5\nC abc\nD -1\nE 9.50(1)\nF ?\n");
    table_.sortRows(1, Qt::AscendingOrder);
    EXPECT_EQ(column(0), QStringList({"D", "B", "E", "A", "?", "C"}).replaceInStrings("?", "F"));
    table_.sortRows(1, Qt::DescendingOrder);
    EXPECT_EQ(column(0).first(), "C");
    EXPECT_EQ(column(1).last(), "-1");
    table_.undoStack()->undo();
    table_.undoStack()->undo();
    EXPECT_EQ(column(0), QStringList({"A", "B", "C", "D", "E", "F"}));
}

TEST_F(LoopTable, PastedRowsFromASpreadsheetFillCellsAndAddRowsAndCopyGivesThemBack) {
    load(kAtoms);
    select(2, 1);
    table_.pasteCells("0.7\t0.9\textra\r\n0.8\t1.0\r\n");
    EXPECT_EQ(cells(), "C1 0.1 1.0|C2 0.2 .|C3 0.7 0.9|? 0.8 1.0");
    table_.clearSelection();
    table_.selectionModel()->select(QItemSelection(table_.model()->index(2, 1), table_.model()->index(3, 2)),
                                    QItemSelectionModel::Select);
    EXPECT_EQ(table_.copyCells(), "0.7\t0.9\n0.8\t1.0\n");
    table_.undoStack()->undo();
    EXPECT_EQ(cells(), "C1 0.1 1.0|C2 0.2 .|C3 0.3 ?");
}

TEST_F(LoopTable, LoopTextIsTheLoopAloneQuotedByThePrinterAndReadsBackAsTheTable) {
    load(kAtoms);
    table_.updateCell(0, 0, "C 1");
    table_.updateCell(1, 0, "it's");
    const QString text = table_.loopText();
    EXPECT_TRUE(text.startsWith("loop_")) << text.toStdString();
    EXPECT_FALSE(text.contains("data_"));
    EXPECT_FALSE(text.contains("_cell_length_a"));
    const THandle<Cif> back = checked("data_x\n" + text.toStdString());
    ASSERT_EQ(back->block_count(), 1u);
    const THandle<CifDataItem> labels = back->block(0)->find("_atom_site_label");
    ASSERT_FALSE(labels.is_null());
    EXPECT_EQ(labels->value(0), "C 1");
    EXPECT_EQ(labels->value(1), "it's");
    EXPECT_EQ(back->block(0)->find("_atom_site_occupancy")->value(2), "?");
    EXPECT_TRUE(back->errors()->empty());
}

TEST_F(LoopTable, ThePlainDumpListsLabelsThenEachRowAfterTheSeparator) {
    load("data_t\nloop_\n_atom_site_fract_x\n_atom_site_fract_y\n0.1 0.2\n0.3 'a b'\n", "_atom_site_fract_y");
    std::ostringstream dump;
    table_.writeLoop(dump, "--");
    EXPECT_EQ(dump.str(), "loop_\nx\ny\n--\n0.1\n0.2\n--\n0.3\na b\n");
}

TEST_F(LoopTable, ARowKnowsTheLineItWasReadFromUntilItIsRetyped) {
    load(kAtoms);
    EXPECT_EQ(table_.rowLine(0), 7);
    EXPECT_EQ(table_.rowLine(2), 9);
    table_.sortRows(0, Qt::DescendingOrder);
    EXPECT_EQ(table_.rowLine(0), 9);
    table_.addRow();
    EXPECT_EQ(table_.rowLine(3), -1);
}

TEST_F(LoopTable, HelpForAColumnWithoutANameSaysThereIsNone) {
    load(kAtoms);
    DialogAnswerer answerer;
    table_.showDataItemHelp(0, 7, QPoint());
    ASSERT_EQ(answerer.boxes.size(), 1);
    EXPECT_EQ(answerer.boxes.front().caption, "Data item help");
    EXPECT_EQ(answerer.boxes.front().text, "No help available for this column");
}

TEST_F(LoopTable, ANewLoopStartsEmptyAndGrowsFromItsFirstColumn) {
    table_.newLoop(views_test::testDictionary());
    EXPECT_EQ(table_.model()->rowCount(), 0);
    EXPECT_EQ(table_.model()->columnCount(), 0);
    table_.addRow();
    EXPECT_EQ(table_.model()->rowCount(), 0);
    ASSERT_TRUE(table_.addCol("_atom_site_label"));
    EXPECT_EQ(table_.loopCategory(), "");
    ASSERT_TRUE(table_.addCol("_atom_site_occupancy"));
    EXPECT_EQ(table_.loopCategory(), "_atom_site_");
    table_.addRow();
    table_.updateCell(0, 0, "O1");
    table_.updateCell(0, 1, "2");
    EXPECT_FALSE(table_.isCellValid(0, 1));
    EXPECT_EQ(table_.loopText(), "loop_\n_atom_site_label\n_atom_site_occupancy\nO1 2\n");
}

}  // namespace
