#include <gtest/gtest.h>

#include <QComboBox>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>

#include "../dictionaries/DictionaryTestSupport.hpp"
#include "CheckTestSupport.hpp"
#include "GuiTestSupport.hpp"
#include "MainWindowTestSupport.hpp"
#include "editor/QcbsRichTextEdit.hpp"
#include "validation/QcbsErrorListView.hpp"
#include "visualiser/QcbsVisSorter.hpp"

namespace {

THandle<Cif> documentWith(const std::vector<CifError>& messages, const std::string& text = {}) {
    THandle<Cif> cif(new Cif());
    cif->read_text(text);
    cif->errors()->clear();
    for (const CifError& message : messages) cif->errors()->add(message);
    return cif;
}

CifError errorAt(int line) {
    return CifError(CifError::unterminated_quoted_string, CifError::error, line, "'x");
}
CifError warningAt(int line, const std::string& name = "_made_up") {
    return CifError(CifError::undefined_data_name, CifError::warning, line, name);
}

// A window on a fresh settings directory and no dictionary.
class MainWindowParsing : public ::testing::Test {
protected:
    MainWindowParsing() { QcbsMainWindow::max_consec_error = 4; }

    QcbsRichTextEdit* editor() const { return window_.currentEditor(); }
    QcbsErrorListView* list() const { return window_.errorList(); }
    QString pane() const { return window_.outputPane()->toPlainText(); }
    QStringList comboItems() const {
        QStringList items;
        for (int i = 0; i < window_.blocksCombo()->count(); ++i) items << window_.blocksCombo()->itemText(i);
        return items;
    }
    // The output written from now on.
    QString paneSince(const QString& before) const { return pane().mid(before.size()); }

    ScopedPrefsDir prefs_;
    ScopedEnvironment noDictionaries_{"TESSARY_DICTIONARIES", QByteArray()};
    QcbsMainWindow window_{buildTreeSharedData()};
};

TEST_F(MainWindowParsing, AnErrorRunStopsTheListAtTheFifthConsecutiveLineButTheTotalsCountAll) {
    std::vector<CifError> messages;
    for (int line = 10; line <= 15; ++line) messages.push_back(errorAt(line));
    messages.push_back(warningAt(30));
    messages.push_back(CifError(CifError::no_final_line_end, CifError::remark, 31));
    const QString before = pane();
    window_.processErrors(documentWith(messages));

    EXPECT_EQ(entriesUnder(list(), "Errors").size(), 5);
    EXPECT_EQ(entriesUnder(list(), "Errors").last().left(4), "14: ");
    EXPECT_EQ(list()->numberWarnings() + list()->numberRemarks(), 0) << "nothing after the stop";
    EXPECT_EQ(
        paneSince(before),
        "Check stopped at line 14: fix previous errors first.Total errors: 6; warnings: 1; remarks: 1\n");
}

TEST_F(MainWindowParsing, ErrorsOnOneLineOrFurtherApartDoNotStopTheCheck) {
    // 10, 11, 11, 12, 13: the repeated line leaves the run at 3.
    // 20..23 after a gap: a new run that starts from nothing.
    std::vector<CifError> messages{errorAt(10), errorAt(11), errorAt(11), errorAt(12), errorAt(13)};
    for (int line = 20; line <= 23; ++line) messages.push_back(errorAt(line));
    window_.processErrors(documentWith(messages));
    EXPECT_EQ(list()->numberErrors(), 9);
    EXPECT_FALSE(pane().contains("Check stopped"));
    EXPECT_TRUE(pane().endsWith("Total errors: 9; warnings: 0; remarks: 0\n"));
}

TEST_F(MainWindowParsing, AWarningRunIsCutAfterTheLimitWithOneOmissionNote) {
    std::vector<CifError> messages;
    for (int line = 10; line <= 15; ++line) messages.push_back(warningAt(line));
    messages.push_back(warningAt(20));
    window_.processErrors(documentWith(messages));
    EXPECT_EQ(
        entriesUnder(list(), "Warnings"),
        (Entries{"10: Created non-standard data item _made_up", "11: Created non-standard data item _made_up",
                 "12: Created non-standard data item _made_up", "13: Created non-standard data item _made_up",
                 "14: (warnings omitted)", "20: Created non-standard data item _made_up"}));
    EXPECT_TRUE(pane().endsWith("Total errors: 0; warnings: 7; remarks: 0\n"));
}

TEST_F(MainWindowParsing, ValidationReplyNamesAreDroppedWithoutTouchingTheWarningRun) {
    // Had the _vrf warning on line 14 counted, line 15 would be the fifth of a run.
    std::vector<CifError> messages{
        warningAt(10), warningAt(11), warningAt(12), warningAt(13), warningAt(14, "_vrf_PLAT001_x"),
        warningAt(15)};
    window_.processErrors(documentWith(messages));
    const Entries warnings = entriesUnder(list(), "Warnings");
    ASSERT_EQ(warnings.size(), 5);
    EXPECT_EQ(warnings.last(), "15: Created non-standard data item _made_up");
    EXPECT_TRUE(pane().endsWith("warnings: 6; remarks: 0\n")) << "the total counts it";
}

TEST_F(MainWindowParsing, AnEmptyCheckSaysSoAndGivesNoTotals) {
    window_.processErrors(documentWith({errorAt(3)}));
    const QString before = pane();
    window_.processErrors(documentWith({}));
    EXPECT_EQ(paneSince(before), "No errors, warnings or remarks.\n");
    EXPECT_EQ(list()->numberTotal(), 0);
}

TEST_F(MainWindowParsing, OtherKindsOfMessageAreOnlyNotedInTheOutputPane) {
    const QString before = pane();
    window_.processErrors(documentWith({CifError(CifError::internal_error, CifError::information, 4, "x")}));
    EXPECT_EQ(list()->numberTotal(), 0);
    EXPECT_EQ(paneSince(before), "(misc error/info): \nTotal errors: 0; warnings: 0; remarks: 0\n");
}

TEST_F(MainWindowParsing, RemarksAboutADataNameGoToItsFirstLineInTheSameBlock) {
    const std::string text =
        "data_a\n_cell_length_a 5.0\n_cell_volume 10\ndata_b\n_cell_measurement_temperature "
        "100\n_cell_volume 2\n";
    editor()->setPlainText(QString::fromStdString(text));
    editor()->setSelection(2, 1, 2, 5);
    const int scrolled = editor()->contentsY();
    const std::vector<CifError> messages{
        CifError(CifError::calculated_value_differs, CifError::remark, 3, "_CELL_LENGTH_A"),
        CifError(CifError::count_mismatch, CifError::remark, 3, "_cell_measurement_temperature"),
        CifError(CifError::count_mismatch, CifError::remark, 6, "_cell_volume"),
        CifError(CifError::calculated_value_differs, CifError::remark, 2, "_absent"),
        CifError(CifError::space_group_unknown, CifError::remark, 3, "_cell_length_a")};
    window_.processErrors(documentWith(messages, text));

    QStringList lines;
    for (const QString& entry : entriesUnder(list(), "Remarks")) lines << entry.section(':', 0, 0);
    lines.sort();
    // 2: found in block a; 3: found only in block b; 6: the first _cell_volume
    // is in block a; 2: not found; 3: a remark of another kind stays put.
    EXPECT_EQ(lines, (QStringList{"2", "2", "3", "3", "6"}));
    int fromPara = 0, fromIndex = 0, toPara = 0, toIndex = 0;
    editor()->getSelection(&fromPara, &fromIndex, &toPara, &toIndex);
    EXPECT_EQ(QList<int>({fromPara, fromIndex, toPara, toIndex}), QList<int>({2, 1, 2, 5}));
    EXPECT_EQ(editor()->contentsY(), scrolled);
}

TEST_F(MainWindowParsing, TheBlockChooserCountsAndNamesRealBlocksOnly) {
    window_.fillBlocksCombo(documentWith({}, "data_first\n_a 1\ndata_second\n_b 2\n"));
    EXPECT_EQ(comboItems(), (QStringList{"Blocks:   2", "first", "second"}));
    EXPECT_TRUE(window_.blocksCombo()->isEnabled());
    EXPECT_EQ(window_.blocksCombo()->currentIndex(), 0);

    THandle<Cif> placeholderOnly = documentWith({});
    placeholderOnly->new_block("data_added_by_tessary", placeholderOnly->block_end());
    window_.fillBlocksCombo(placeholderOnly);
    EXPECT_EQ(comboItems(), QStringList{"Blocks:  none"});
    EXPECT_FALSE(window_.blocksCombo()->isEnabled());

    THandle<Cif> placeholderFirst = documentWith({}, "data_x\ndata_y\n");
    placeholderFirst->new_block("data_added_by_tessary", placeholderFirst->block_begin());
    window_.fillBlocksCombo(placeholderFirst);
    EXPECT_EQ(comboItems(), (QStringList{"Blocks:   2", "", "x", "y"}));

    window_.fillBlocksCombo(documentWith({}, "# no block\n"));
    EXPECT_EQ(comboItems(), QStringList{"Blocks:  none"});
    EXPECT_FALSE(window_.blocksCombo()->isEnabled());
}

TEST_F(MainWindowParsing, ChoosingABlockMovesTheEditorToItsHeadingAndTheHeaderOnlyBeeps) {
    editor()->setPlainText("data_one\n_a 1\n\ndata_two\n_b 2\n");
    window_.setFileName(editor(), "blocks.cif");
    window_.reparse();
    editor()->setCursorPosition(1, 1);
    QSignalSpy jumps(&window_, &QcbsMainWindow::requestGotoLine);

    emit window_.blocksCombo()->activated(0);
    EXPECT_EQ(jumps.count(), 0);
    int para = 0, index = 0;
    editor()->getCursorPosition(&para, &index);
    EXPECT_EQ(para, 1);

    window_.blocksCombo()->setCurrentIndex(2);
    emit window_.blocksCombo()->activated(2);
    ASSERT_EQ(jumps.count(), 1);
    EXPECT_EQ(jumps.at(0).at(0).toInt(), 4);
    EXPECT_EQ(jumps.at(0).at(1).toString(), "two");
    editor()->getCursorPosition(&para, &index);
    EXPECT_EQ(para, 3);
    EXPECT_EQ(window_.blocksCombo()->currentIndex(), 0) << "a jump menu, not a state";

    window_.tabs()->setCurrentWidget(window_.visualiserPage());
    window_.blockComboSelected(1);
    EXPECT_EQ(jumps.count(), 1);
}

TEST_F(MainWindowParsing, CheckRunsOnlyForAnEditorWithAFileAndSomeText) {
    editor()->setPlainText("data_x\n_a 1\n");
    window_.reparse();
    EXPECT_TRUE(window_.currentCif().is_null());
    EXPECT_TRUE(window_.parse().is_null());

    window_.setFileName(editor(), "x.cif");
    editor()->clear();
    window_.reparse();
    EXPECT_EQ(statusMessage(window_), "Parsing CIF...");
    EXPECT_TRUE(window_.currentCif().is_null());

    editor()->setPlainText("data_x\n_a 1\n_b\n");
    const QString before = pane();
    window_.reparse();
    EXPECT_EQ(statusMessage(window_), "Ready");
    ASSERT_FALSE(window_.currentCif().is_null());
    EXPECT_TRUE(window_.isParsed(editor()));
    EXPECT_EQ(window_.parsedLineCount(editor()), 4);
    // An empty paragraph, then the two lines of the check.
    EXPECT_EQ(paneSince(before).trimmed(), "Checking CIF ...\nTotal errors: 1; warnings: 0; remarks: 0");
    EXPECT_TRUE(paneSince(before).startsWith("\n"));
    EXPECT_EQ(entriesUnder(list(), "Errors"), Entries{"3: Data name _b has no value"});
    EXPECT_EQ(comboItems(), (QStringList{"Blocks:   1", "x"}));
}

TEST_F(MainWindowParsing, TheTextIsReadWithTheSharedLineLength) {
    window_.setFileName(editor(), "long.cif");
    editor()->setPlainText("data_x\n_a " + QString(60, 'v') + "\n");
    window_.sharedData()->setParserLineLength(40);
    window_.reparse();
    EXPECT_EQ(list()->numberWarnings(), 1);
    window_.sharedData()->setParserLineLength(80);
    window_.reparse();
    EXPECT_EQ(list()->numberWarnings(), 0);
}

TEST_F(MainWindowParsing, ConsistencyFindingsJoinTheListOnlyWithTheOption) {
    window_.setFileName(editor(), "cell.cif");
    editor()->setPlainText(
        "data_c\n_cell_length_a 10.0\n_cell_length_b 10.0\n_cell_length_c 10.0\n_cell_angle_alpha 90\n"
        "_cell_angle_beta 90\n_cell_angle_gamma 90\n_cell_volume 2000.0\n");
    window_.sharedData()->setConsistencyChecks(false);
    window_.reparse();
    EXPECT_EQ(list()->numberRemarks(), 0);
    window_.sharedData()->setConsistencyChecks(true);
    window_.reparse();
    const Entries remarks = entriesUnder(list(), "Remarks");
    ASSERT_EQ(remarks.size(), 1);
    EXPECT_TRUE(remarks.first().startsWith("8: ")) << remarks.first().toStdString();
    EXPECT_TRUE(remarks.first().contains("_cell_volume"));
}

TEST_F(MainWindowParsing, TheTextIsReadInTheEncodingOfItsFile) {
    // Typed into a new document: UTF-8, which CIF 2.0 asks for.
    window_.setFileName(editor(), "typed.cif");
    editor()->setPlainText(QString::fromUtf8("#\\#CIF_2.0\ndata_x\n_name '\u00c5ngstr\u00f6m'\n"));
    window_.reparse();
    EXPECT_EQ(list()->numberTotal(), 0) << entriesUnder(list(), "Errors").join("\n").toStdString();

    // A file whose bytes are not UTF-8 is read as Latin-1 and checked in it.
    QTemporaryDir dir;
    const QString path = dir.filePath("latin1.cif");
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("#\\#CIF_2.0\ndata_x\n_name '\xc5ngstr\xf6m'\n");
    }
    QSignalSpy loaded(&window_, &QcbsMainWindow::documentLoaded);
    ASSERT_TRUE(window_.load(path, false, true));
    ASSERT_TRUE(loaded.count() == 1 || loaded.wait(10000));
    EXPECT_EQ(window_.documentEncoding(editor()).kind(), QcbsDocumentEncoding::Latin1);
    const Entries errors = entriesUnder(list(), "Errors");
    ASSERT_FALSE(errors.isEmpty());
    EXPECT_TRUE(errors.first().startsWith("3: ")) << errors.join("\n").toStdString();
}

TEST_F(MainWindowParsing, AFileBeingLoadedIsCheckedFromDiskAndListsOnlyWhenAsked) {
    QTemporaryDir dir;
    const QString path = dir.filePath("two.cif");
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("data_a\n_x 'open\ndata_b\n_y 2\n");
    }
    list()->addError("old", 1, CifError::internal_error);
    const THandle<Cif> quiet = window_.parse(path.toStdString(), false);
    ASSERT_FALSE(quiet.is_null());
    EXPECT_TRUE(window_.currentCif() == quiet);
    EXPECT_EQ(quiet->block_count(), 2u);
    EXPECT_EQ(list()->numberErrors(), 1) << "the list is left alone";
    EXPECT_EQ(comboItems(), (QStringList{"Blocks:   2", "a", "b"}));
    EXPECT_FALSE(window_.isParsed(editor()));

    window_.parse(path.toStdString(), true);
    EXPECT_EQ(entriesUnder(list(), "Errors").size(), 1);
    EXPECT_NE(entriesUnder(list(), "Errors").first(), "1: old");

    const THandle<Cif> missing = window_.parse(dir.filePath("absent.cif").toStdString(), true);
    ASSERT_FALSE(missing.is_null());
    EXPECT_EQ(missing->block_count(), 0u);
    EXPECT_EQ(comboItems(), QStringList{"Blocks:  none"});
}

TEST_F(MainWindowParsing, ACheckAskedForWhileATextComesInRunsOnceWhenItIsIn) {
    QString text = "data_big\nloop_\n_a\n_b\n";
    for (int i = 0; i < 200000; ++i) text += "1 2\n";
    text += "_x\n";
    window_.setFileName(editor(), "big.cif");
    QSignalSpy loaded(editor(), &QcbsRichTextEdit::textLoaded);
    editor()->loadText(text);
    ASSERT_TRUE(editor()->isLoading()) << "the text should come in slices";
    const QString before = pane();
    window_.reparse();
    window_.reparse();
    EXPECT_EQ(statusMessage(window_), "Parsing CIF...");
    EXPECT_TRUE(window_.currentCif().is_null());

    ASSERT_TRUE(loaded.wait(30000));
    EXPECT_EQ(paneSince(before).count("Checking CIF ..."), 1);
    ASSERT_FALSE(window_.currentCif().is_null());
    EXPECT_EQ(entriesUnder(list(), "Errors"), Entries{"200005: Data name _x has no value"});
    EXPECT_EQ(window_.parsedLineCount(editor()), 200006);
}

TEST_F(MainWindowParsing, AFileCheckedWhileItsTextComesInCanHighlightLinesOnceItIsIn) {
    QTemporaryDir dir;
    const QString path = dir.filePath("big.cif");
    QString text = "data_big\n_x 'open\nloop_\n_a\n";
    for (int i = 0; i < 200000; ++i) text += "1\n";
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text.toLatin1());
    }
    window_.setFileName(editor(), path);
    QSignalSpy loaded(editor(), &QcbsRichTextEdit::textLoaded);
    editor()->loadText(text);
    window_.parse(path.toStdString(), true);
    ASSERT_TRUE(loaded.wait(30000));
    EXPECT_TRUE(editor()->errorHighlightingAllowed());
    EXPECT_EQ(window_.parsedLineCount(editor()), editor()->lines());
    list()->doubleClickedItem(list()->topLevelItem(0)->child(0));
    EXPECT_EQ(editor()->errorSelectionParagraph(2), 1);
}

TEST_F(MainWindowParsing, CtrlKChecksTheTypedTextAndADoubleClickHighlightsTheLine) {
    window_.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window_));
    window_.setFileName(editor(), "typed.cif");
    editor()->setFocus();
    typeLines(editor(), {"data_t", "_a 1", "_b 'open", "_c 3"});
    QTest::keyClick(editor(), Qt::Key_K, Qt::ControlModifier);
    EXPECT_EQ(statusMessage(window_), "Ready");
    ASSERT_EQ(list()->numberErrors(), 1);

    QTreeWidgetItem* entry = list()->topLevelItem(0)->child(0);
    EXPECT_EQ(entry->text(0), "Line       3");
    list()->doubleClickedItem(entry);
    EXPECT_EQ(editor()->errorSelectionParagraph(2), 2);

    // After an edit the marks wait for the next check.
    QTest::keyClick(editor(), Qt::Key_X);
    list()->doubleClickedItem(list()->topLevelItem(0)->child(0));
    EXPECT_EQ(editor()->errorSelectionParagraph(2), -1);
    QTest::keyClick(editor(), Qt::Key_K, Qt::ControlModifier);
    list()->doubleClickedItem(list()->topLevelItem(0)->child(0));
    EXPECT_EQ(editor()->errorSelectionParagraph(2), 2);
}

}  // namespace
