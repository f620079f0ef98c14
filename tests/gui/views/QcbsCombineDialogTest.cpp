// SPDX-License-Identifier: GPL-3.0-or-later
// The combine dialogue: rows to choose, a template that cannot serve, the merged block.
#include <gtest/gtest.h>

#include <QComboBox>
#include <QDir>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableView>

#include "GuiTestSupport.hpp"
#include "application/ApplicationTestSupport.hpp"
#include "application/DialogAnswerer.hpp"
#include "base/ORMAApplicationSettings.hpp"
#include "views/QcbsCombineDialog.hpp"
#include "views/QcbsCombineModel.hpp"

namespace {

const QString kBlock =
    "data_mine\n"
    "_diffrn_radiation_type ?\n"
    "_cell_length_a 5.1\n"
    "_exptl_crystal_colour red\n";

const QByteArray kTemplate =
    "data_lab\n"
    "_diffrn_radiation_type 'Mo K\\a'\n"
    "_cell_length_a 5.1\n"
    "_exptl_crystal_colour ?\n"
    "_diffrn_ambient_temperature 100\n"
    "data_other\n"
    "_cell_length_b 7\n";

class CombineDialog : public ::testing::Test {
protected:
    CombineDialog() {
        dialog_.setBlock(kBlock, 1);
        templateFile_ = writeBytes(files_.filePath("templates/lab.cif"), kTemplate);
    }
    QcbsCombineModel* model() { return dialog_.model(); }
    QString cell(int row, int column) { return model()->index(row, column).data().toString(); }
    QPushButton* mergeButton() { return dialog_.findChild<QPushButton*>("buttonMerge"); }

    ScopedPrefsDir prefs_;
    QTemporaryDir files_;
    QString templateFile_;
    QcbsCombineDialog dialog_;
};

TEST_F(CombineDialog, ShowsEachRowWithItsValuesGreysWhatIsTheSameAndMergesOnlyTheChosenRows) {
    dialog_.setTemplateFile(templateFile_);
    ASSERT_EQ(model()->rowCount(), 4);
    EXPECT_EQ(QStringList({cell(0, 0), cell(0, 1), cell(0, 2)}),
              QStringList({"_diffrn_radiation_type", "?", "Mo K\\a"}));
    EXPECT_EQ(cell(3, QcbsCombineModel::CurrentColumn), "(not in the block)");
    // The same value cannot be chosen; a known value is not replaced unless chosen.
    EXPECT_FALSE(model()->flags(model()->index(1, 0)) & Qt::ItemIsEnabled);
    EXPECT_FALSE(model()->setData(model()->index(1, 0), Qt::Checked, Qt::CheckStateRole));
    EXPECT_EQ(model()->chosen(), (std::vector<std::size_t>{0, 3}));
    EXPECT_TRUE(dialog_.summary().startsWith("1 to add, 2 to change, 1 the same; 2 chosen"))
        << dialog_.summary().toStdString();

    // The user unchooses the addition by its check box.
    QTableView* table = dialog_.table();
    dialog_.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&dialog_));
    const QRect box = table->visualRect(model()->index(3, 0));
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, QPoint(box.left() + 10, box.center().y()));
    ASSERT_TRUE(waitUntil([&] { return model()->chosen() == std::vector<std::size_t>{0}; }))
        << model()->chosen().size();

    QSignalSpy merged(&dialog_, &QcbsCombineDialog::blockMerged);
    mergeButton()->click();
    ASSERT_EQ(merged.count(), 1);
    EXPECT_EQ(merged[0][0].toString(), "mine");
    QString expected = kBlock.trimmed();
    expected.replace("_diffrn_radiation_type ?", "_diffrn_radiation_type 'Mo K\\a'");
    EXPECT_EQ(merged[0][1].toString().toStdString(), expected.toStdString());
    EXPECT_FALSE(dialog_.isVisible());
}

TEST_F(CombineDialog, TheChoiceBoxChoosesRowsAsAWholeBlockMergeWouldTakeThemForEveryBlockShown) {
    dialog_.setTemplateFile(templateFile_);
    auto* choice = dialog_.findChild<QComboBox*>("comboChoose");
    choice->setFocus();
    const struct {
        Qt::Key key;
        const char* choice;
        std::vector<std::size_t> chosen;
    } steps[] = {
        {Qt::Key_Up, "New items only", {3}},
        {Qt::Key_Down, "New items and unknown values", {0, 3}},
        {Qt::Key_Down, "Everything that differs", {0, 2, 3}},
        {Qt::Key_Down, "Nothing", {}},
    };
    for (const auto& step : steps) {
        QTest::keyClick(choice, step.key);
        EXPECT_EQ(choice->currentText(), step.choice);
        EXPECT_EQ(model()->chosen(), step.chosen) << step.choice;
    }
    EXPECT_FALSE(mergeButton()->isEnabled());
    QSignalSpy merged(&dialog_, &QcbsCombineDialog::blockMerged);
    dialog_.accept();
    EXPECT_EQ(merged.count(), 0) << "nothing chosen, nothing merged";

    // Another block of the template keeps the choice made.
    QTest::keyClick(choice, Qt::Key_Up);
    auto* blocks = dialog_.findChild<QComboBox*>("comboBlock");
    EXPECT_EQ(blocks->itemText(1), "data_other");
    EXPECT_TRUE(dialog_.chooseBlock("OTHER"));
    ASSERT_EQ(model()->rowCount(), 1);
    EXPECT_EQ(cell(0, 0), "_cell_length_b");
    EXPECT_EQ(model()->chosen(), (std::vector<std::size_t>{0}));
    EXPECT_TRUE(mergeButton()->isEnabled());
    EXPECT_FALSE(dialog_.chooseBlock("absent"));
}

TEST_F(CombineDialog, AFileThatCannotServeIsNamedWithTheReasonAndNothingCanBeMerged) {
    const QString notes = writeBytes(files_.filePath("notes.txt"), "Some notes, no CIF.\n");
    for (const QString& path : {files_.filePath("absent.cif"), notes}) {
        dialog_.setTemplateFile(templateFile_);
        ASSERT_TRUE(mergeButton()->isEnabled());
        dialog_.setTemplateFile(path);
        EXPECT_TRUE(dialog_.summary().contains(path)) << dialog_.summary().toStdString();
        EXPECT_EQ(model()->rowCount(), 0);
        EXPECT_FALSE(mergeButton()->isEnabled());
    }
}

TEST_F(CombineDialog, BrowsingStartsInTheFolderOfTheLastFileChosen) {
    {
        DialogAnswerer answers;
        answers.chooseFile(templateFile_);
        dialog_.browse();
    }
    EXPECT_EQ(dialog_.templateFile(), templateFile_);
    EXPECT_EQ(model()->rowCount(), 4);

    // A later dialogue, even in another session, starts there.
    QString started;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, [&] {
        if (auto* files = qobject_cast<QFileDialog*>(QApplication::activeModalWidget())) {
            started = files->directory().absolutePath();
            files->reject();
        }
    });
    look.start(5);
    QcbsCombineDialog next;
    next.browse();
    EXPECT_EQ(started, QFileInfo(templateFile_).absolutePath());
    EXPECT_TRUE(next.templateFile().isEmpty());
}

}  // namespace
