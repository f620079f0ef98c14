// Checking a document as a user does: dictionaries found or not, text typed
// into the editor, Ctrl+K, the error list and the output pane read, an entry
// double-clicked.
#include <gtest/gtest.h>

#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include "../dictionaries/DictionaryTestSupport.hpp"
#include "CheckTestSupport.hpp"
#include "GuiTestSupport.hpp"
#include "MainWindowTestSupport.hpp"
#include "editor/QcbsRichTextEdit.hpp"

namespace {

const QString kCoreDirectory = QDir::cleanPath(TESSARY_SHARED_DIR "/dictionaries");

// A CIF with known problems: a cell volume that disagrees with the cell
// (remark, line 8), a value of the wrong type (line 9), a value not among
// the permitted ones (10), a name no dictionary defines (11), a validation
// reply (12, not listed), a value out of range (16) and an unterminated
// quoted string whose value is not a number either (17, twice).
const QStringList kKnownProblems{
    "data_known",
    "_cell_length_a                    10.000(2)",
    "_cell_length_b                    10.000(2)",
    "_cell_length_c                    10.000(2)",
    "_cell_angle_alpha                 90",
    "_cell_angle_beta                  90",
    "_cell_angle_gamma                 90",
    "_cell_volume                      2000.0",
    "_cell_measurement_temperature     abc",
    "_symmetry_cell_setting            squarish",
    "_made_up_item                     1",
    "_vrf_PLAT001_known",
    ";",
    "PROBLEM: none",
    ";",
    "_exptl_crystal_density_diffrn     -5",
    "_diffrn_ambient_temperature       'open quote",
};

class MainWindowCheck : public ::testing::Test {
protected:
    void start(const QString& dictionaryDirectories) {
        environment_ =
            std::make_unique<ScopedEnvironment>("TESSARY_DICTIONARIES", dictionaryDirectories.toUtf8());
        window_ = std::make_unique<QcbsMainWindow>(buildTreeSharedData());
        window_->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window_.get()));
        window_->setFileName(editor(), "known.cif");
        editor()->setFocus();
    }
    QcbsRichTextEdit* editor() const { return window_->currentEditor(); }
    QString pane() const { return window_->outputPane()->toPlainText(); }
    void pressCtrlK() { QTest::keyClick(editor(), Qt::Key_K, Qt::ControlModifier); }

    ScopedPrefsDir prefs_;
    std::unique_ptr<ScopedEnvironment> environment_;
    std::unique_ptr<QcbsMainWindow> window_;
};

TEST_F(MainWindowCheck, CtrlKListsEveryProblemAgainstTheCoreDictionaryAndLeadsToItsLine) {
    if (!QFileInfo::exists(kCoreDirectory + "/cif_core.dic"))
        GTEST_SKIP() << "cif_core.dic not found in " << kCoreDirectory.toStdString();
    QcbsMainWindow::max_consec_error = 4;
    start(kCoreDirectory);
    EXPECT_TRUE(pane().contains("Loaded dictionary: " + kCoreDirectory + "/cif_core.dic"));
    EXPECT_FALSE(pane().contains("No dictionary found"));

    typeLines(editor(), kKnownProblems);
    const int paneBefore = pane().size();
    pressCtrlK();

    QcbsErrorListView* list = window_->errorList();
    const Entries errors = entriesUnder(list, "Errors");
    ASSERT_EQ(errors.size(), 5) << errors.join("\n").toStdString();
    EXPECT_EQ(errors[0],
              "9: Value of _cell_measurement_temperature is not of the type the dictionary gives (numb)");
    EXPECT_TRUE(
        errors[1].startsWith("10: Value of _symmetry_cell_setting is not one of the permitted values"));
    EXPECT_TRUE(
        errors[2].startsWith("16: Value of _exptl_crystal_density_diffrn is outside the permitted range"));
    EXPECT_TRUE(errors.filter(QRegularExpression("^17: Quoted string not terminated")).size() == 1);
    EXPECT_EQ(entriesUnder(list, "Warnings"), Entries{"11: Created non-standard data item _made_up_item"});
    const Entries remarks = entriesUnder(list, "Remarks");
    ASSERT_EQ(remarks.size(), 1);
    EXPECT_TRUE(remarks[0].startsWith("8: Value of _cell_volume differs")) << remarks[0].toStdString();
    EXPECT_EQ(list->topLevelItem(0)->text(1), "  Total of 5");

    EXPECT_EQ(pane().mid(paneBefore).trimmed(), "Checking CIF ...\nTotal errors: 5; warnings: 2; remarks: 1");
    EXPECT_EQ(window_->blocksCombo()->itemText(0), "Blocks:   1");
    EXPECT_EQ(window_->blocksCombo()->itemText(1), "known");

    // The user opens the errors and double-clicks the one on line 16.
    QTreeWidgetItem* heading = list->topLevelItem(0);
    heading->setExpanded(true);
    QTreeWidgetItem* entry = heading->child(2);
    ASSERT_EQ(entry->text(0), "Line      16");
    list->scrollToItem(entry);
    // On the line number, which is always in view.
    const QPoint at(list->columnViewportPosition(0) + list->columnWidth(0) / 2,
                    list->visualItemRect(entry).center().y());
    // A real double-click starts with a press that QTest's double-click leaves out.
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, at);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, at);
    EXPECT_EQ(editor()->errorSelectionParagraph(2), 15);
    int para = 0, index = 0;
    editor()->getCursorPosition(&para, &index);
    EXPECT_EQ(para, 15);
}

TEST_F(MainWindowCheck, WithoutDictionariesTheCheckIsSyntaxOnlyAndSaysOnceHowToAddOne) {
    QTemporaryDir empty;
    start(empty.path());
    typeLines(editor(), kKnownProblems);
    pressCtrlK();
    pressCtrlK();
    EXPECT_EQ(pane().count("No dictionary found: checking syntax only."), 1);
    EXPECT_TRUE(pane().contains(empty.path())) << "where it searched";
    EXPECT_TRUE(pane().contains("TESSARY_DICTIONARIES"));
    // Only the text itself is at fault.
    EXPECT_EQ(entriesUnder(window_->errorList(), "Errors"),
              Entries{"17: Quoted string not terminated: 'open quote"});
    EXPECT_EQ(window_->errorList()->numberWarnings(), 0);

    // A dictionary put in place is found by the next check, which then uses it.
    writeDictionary(empty.filePath("mine.dic"), "mine.dic", "1", {"_made_up_item"});
    pressCtrlK();
    EXPECT_TRUE(pane().contains("Loaded dictionary: " + empty.filePath("mine.dic")));
    EXPECT_GT(window_->errorList()->numberWarnings(), 0) << "names it does not define are reported";
    EXPECT_FALSE(entriesUnder(window_->errorList(), "Warnings").join("\n").contains("_made_up_item"));
}

}  // namespace
