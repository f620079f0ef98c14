#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>
#include <memory>

#include "GuiTestSupport.hpp"
#include "application/QcbsMainWindow.hpp"

namespace {

using Names = std::vector<std::string>;

// A window with the mandatory-items check switched on for one file, in its
// own settings directory.
class MandatoryItems : public ::testing::Test {
protected:
    void SetUp() override {
        window_ = std::make_unique<QcbsMainWindow>(THandle<QcbsMainWindowSharedData>(
            new QcbsMainWindowSharedData(QFileInfo(TESSARY_SOURCE_DIR "/build/bin/tessary"))));
        QcbsMainWindow::check_mandatory_items = true;
        QcbsMainWindow::mandatory_items_file = dir_.filePath("mandatory.txt");
    }
    void TearDown() override {
        QcbsMainWindow::check_mandatory_items = false;
        QcbsMainWindow::mandatory_items_file.clear();
    }

    void load(const QByteArray& contents) {
        QFile file(QcbsMainWindow::mandatory_items_file);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(contents);
        file.close();
        window_->loadMandatoryDataItemSettings();
    }
    const Names& publication() const { return window_->sharedData()->mandatoryPublicationItems(); }
    QString paneText() const { return window_->outputPane()->toPlainText(); }
    const Names& crystal() const { return window_->sharedData()->mandatoryCrystalItems(); }

    ScopedPrefsDir prefs_;
    QTemporaryDir dir_;
    std::unique_ptr<QcbsMainWindow> window_;
};

TEST_F(MandatoryItems, SectionsDecideWhichListsAnItemJoins) {
    load(
        "# mandatory items\n"
        "_before_any_section\n"
        "data_crystal\n"
        "_cell_length_a\n"
        "data_all\n"
        "_chemical_formula_sum\n"
        "data_publication\n"
        "_publ_author_name\n"
        "_publ_author_name\n"  // duplicates are kept
        "data_other\n"
        "_dropped_under_other\n");
    EXPECT_EQ(crystal(), (Names{"_cell_length_a", "_chemical_formula_sum"}));
    EXPECT_EQ(publication(), (Names{"_chemical_formula_sum", "_publ_author_name", "_publ_author_name"}));
    EXPECT_TRUE(
        paneText().endsWith("Loaded mandatory data items file: " + QcbsMainWindow::mandatory_items_file));
}

TEST_F(MandatoryItems, LinesAreTrimmedAndOnlyTheFirstWordOfAnItemCounts) {
    load(
        "\tdata_crystal  \r\n"
        "  _cell_volume   trailing remark\r\n"
        "\t_cell_angle_beta\tremark\r\n"
        "   \t \r\n"
        "  # an indented comment\r\n"
        "cell_volume_without_underscore\r\n"
        "_last_line_without_ending");
    EXPECT_EQ(crystal(), (Names{"_cell_volume", "_cell_angle_beta", "_last_line_without_ending"}));
    EXPECT_TRUE(publication().empty());
}

TEST_F(MandatoryItems, SectionHeadersAreMatchedExactly) {
    load("data_Publication\n_publ_section_title\ndata_crystal_extra\n_cell_volume\ndata_all # note\n_a\n");
    EXPECT_TRUE(publication().empty());
    EXPECT_TRUE(crystal().empty());
}

TEST_F(MandatoryItems, SwitchingTheCheckOffEmptiesBothListsEvenWithAFileSet) {
    load("data_all\n_cell_volume\n");
    ASSERT_EQ(crystal().size(), 1u);
    QcbsMainWindow::check_mandatory_items = false;
    window_->loadMandatoryDataItemSettings();
    EXPECT_TRUE(crystal().empty());
    EXPECT_TRUE(publication().empty());
    QcbsMainWindow::check_mandatory_items = true;
    QcbsMainWindow::mandatory_items_file.clear();
    window_->loadMandatoryDataItemSettings();
    EXPECT_TRUE(crystal().empty());
    EXPECT_EQ(paneText().count("Loaded mandatory data items file: "), 1);  // only the first load reported
}

TEST_F(MandatoryItems, AFileThatCannotBeOpenedIsReportedAndLeavesTheListsEmpty) {
    load("data_all\n_cell_volume\n");
    for (const QString& unreadable : {dir_.filePath("missing.txt"), dir_.path()}) {
        QcbsMainWindow::mandatory_items_file = unreadable;
        window_->loadMandatoryDataItemSettings();
        EXPECT_TRUE(crystal().empty());
        EXPECT_TRUE(publication().empty());
        EXPECT_TRUE(
            paneText().endsWith("Error loading mandatory data items, could not open file: " + unreadable));
    }
}

TEST_F(MandatoryItems, ReadingIsTracedAtLevelsTwoAndThree) {
    const char* contents = "# comment\ndata_crystal\n_cell_volume extra\nstray words\n";
    const std::string prefix = "QcbsMainWindow::loadMandatoryDataItemSettings - ";
    const std::string file = QcbsMainWindow::mandatory_items_file.toStdString();
    {
        ScopedLogCapture log(2);
        load(contents);
        EXPECT_EQ(log.text(), "Debug(2): " + prefix + file + "\n");
    }
    ScopedLogCapture log(3);
    load(contents);
    EXPECT_EQ(log.text(),
              "Debug(2): " + prefix + file + "\nDebug(3): " + prefix +
                  "Skipping comment\nDebug(3): " + prefix + "Data block data_crystal\nDebug(3): " + prefix +
                  "Data item _cell_volume\nDebug(3): " + prefix + "Unrecognised string stray words\n");
}

}  // namespace
