// SPDX-License-Identifier: GPL-3.0-or-later
// Checking a document as a user does: text typed, Ctrl+K, the error list and pane read.
// Also with dictionaries found or not, an entry double-clicked, and the rules by which the
// findings are listed.
#include <gtest/gtest.h>

#include <QComboBox>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTemporaryDir>

#include "ApplicationTestSupport.hpp"
#include "GuiTestSupport.hpp"
#include "editor/QcbsRichTextEdit.hpp"
#include "validation/QcbsErrorListViewItem.hpp"
#include "validation/QcbsErrorResource.hpp"

namespace {

const QString kCoreDirectory = QDir::cleanPath(TESSARY_SHARED_DIR "/dictionaries");

// A CIF with known problems: a cell volume that disagrees with the cell
// beyond its uncertainty, though by less than 0.1 % (remark, line 8), a value of the wrong type (line 9), a
// value not among the permitted ones (10), a name no dictionary defines (11), a validation reply (12, not
// listed), a value out of range (16) and an unterminated quoted string whose value is not a number either
// (17, twice).
const QStringList kKnownProblems{
    "data_known",
    "_cell_length_a                    10.000",
    "_cell_length_b                    10.000",
    "_cell_length_c                    10.000",
    "_cell_angle_alpha                 90",
    "_cell_angle_beta                  90",
    "_cell_angle_gamma                 90",
    "_cell_volume                      1000.5",
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

// A window whose dictionaries are searched for in the given directory
// first (an empty one: none found); checked text has a file name.
class MainWindowCheck : public ::testing::Test {
protected:
    ~MainWindowCheck() override { qputenv("TESSARY_DICTIONARIES", previous_); }
    void start(const QString& dictionaries = QString()) {
        qputenv("TESSARY_DICTIONARIES", (dictionaries.isNull() ? empty_.path() : dictionaries).toUtf8());
        window_ = std::make_unique<QcbsMainWindow>(buildTreeSharedData());
        window_->document()->setFileName("known.cif");
    }
    // Focus on the editor of the active window, for accelerators typed there.
    void focus() {
        window_->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window_.get()));
        editor()->setFocus();
    }
    QcbsRichTextEdit* editor() const { return window_->currentEditor(); }
    QcbsErrorListView* list() const { return window_->errorList(); }
    QString pane() const { return window_->outputPane()->toPlainText(); }
    void pressCtrlK() { QTest::keyClick(editor(), Qt::Key_K, Qt::ControlModifier); }
    QStringList comboItems() const {
        QStringList items;
        for (int i = 0; i < window_->blocksCombo()->count(); ++i)
            items << window_->blocksCombo()->itemText(i);
        return items;
    }
    // The paragraph the error highlighting marks after a double-click on the first error.
    int highlightedAfterDoubleClick() {
        list()->doubleClickedItem(list()->topLevelItem(0)->child(0));
        return editor()->errorSelectionParagraph(2);
    }

    ScopedPrefsDir prefs_;
    QByteArray previous_ = qgetenv("TESSARY_DICTIONARIES");
    QTemporaryDir empty_;
    std::unique_ptr<QcbsMainWindow> window_;
};

TEST_F(MainWindowCheck, CtrlKListsEveryProblemAgainstTheCoreDictionaryAndLeadsToItsLine) {
    if (!QFileInfo::exists(kCoreDirectory + "/cif_core.dic"))
        GTEST_SKIP() << "cif_core.dic not found in " << kCoreDirectory.toStdString();
    start(kCoreDirectory);
    focus();
    EXPECT_TRUE(pane().contains("Loaded dictionary: " + kCoreDirectory + "/cif_core.dic"));
    EXPECT_FALSE(pane().contains("No dictionary found"));

    typeLines(editor(), kKnownProblems);
    const qsizetype paneBefore = pane().size();
    pressCtrlK();

    const QStringList errors = entriesUnder(list(), "Errors");
    ASSERT_EQ(errors.size(), 5) << errors.join("\n").toStdString();
    EXPECT_EQ(errors[0],
              "9: Value of _cell_measurement_temperature is not of the type the dictionary gives (numb)");
    EXPECT_TRUE(
        errors[1].startsWith("10: Value of _symmetry_cell_setting is not one of the permitted values"));
    EXPECT_TRUE(
        errors[2].startsWith("16: Value of _exptl_crystal_density_diffrn is outside the permitted range"));
    EXPECT_EQ(errors.filter(QRegularExpression("^17: Quoted string not terminated")).size(), 1);
    EXPECT_EQ(entriesUnder(list(), "Warnings"),
              QStringList{"11: Created non-standard data item _made_up_item"});
    const QStringList remarks = entriesUnder(list(), "Remarks");
    ASSERT_EQ(remarks.size(), 2) << remarks.join("\n").toStdString();
    EXPECT_EQ(remarks.filter(QRegularExpression("^8: Value of _cell_volume differs")).size(), 1);
    EXPECT_TRUE(
        remarks.contains("10: Data name _symmetry_cell_setting is obsolete; use _space_group_crystal_system"))
        << remarks.join("\n").toStdString();
    EXPECT_EQ(list()->topLevelItem(0)->text(1), "  Total of 5");
    EXPECT_EQ(pane().mid(paneBefore).trimmed(), "Checking CIF ...\nTotal errors: 5; warnings: 1; remarks: 2");
    EXPECT_EQ(comboItems(), (QStringList{"Blocks:   1", "known"}));

    // The user opens the errors and double-clicks the one on line 16.
    QTreeWidgetItem* heading = list()->topLevelItem(0);
    heading->setExpanded(true);
    QTreeWidgetItem* entry = heading->child(2);
    ASSERT_EQ(entry->text(0), "Line      16");
    list()->scrollToItem(entry);
    // On the line number, which is always in view.
    const QPoint at(list()->columnViewportPosition(0) + list()->columnWidth(0) / 2,
                    list()->visualItemRect(entry).center().y());
    // A real double-click starts with a press that QTest's double-click leaves out.
    QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, at);
    QTest::mouseDClick(list()->viewport(), Qt::LeftButton, {}, at);
    EXPECT_EQ(editor()->errorSelectionParagraph(2), 15);
    int para = 0, index = 0;
    editor()->getCursorPosition(&para, &index);
    EXPECT_EQ(para, 15);
}

TEST_F(MainWindowCheck, WithoutDictionariesTheCheckIsSyntaxOnlyAndSaysOnceHowToAddOne) {
    start();
    focus();
    typeLines(editor(), kKnownProblems);
    pressCtrlK();
    pressCtrlK();
    EXPECT_EQ(pane().count("No dictionary found: checking syntax only."), 1);
    EXPECT_TRUE(pane().contains(empty_.path())) << "where it searched";
    EXPECT_TRUE(pane().contains("TESSARY_DICTIONARIES"));
    // Only the text itself is at fault.
    EXPECT_EQ(entriesUnder(list(), "Errors"), QStringList{"17: Quoted string not terminated: 'open quote"});
    EXPECT_EQ(list()->numberWarnings(), 0);

    // A double-click marks the line; after an edit the marks wait for the next check.
    EXPECT_EQ(highlightedAfterDoubleClick(), 16);
    QTest::keyClick(editor(), Qt::Key_X);
    EXPECT_EQ(highlightedAfterDoubleClick(), -1);

    // A dictionary put in place is found by the next check, which then uses it.
    writeBytes(empty_.filePath("mine.dic"),
               "data_on_this_dictionary\n_dictionary_name mine.dic\n_dictionary_version 1\n"
               "data_made_up_item\n_name '_made_up_item'\n_category test\n_type numb\n");
    pressCtrlK();
    EXPECT_EQ(highlightedAfterDoubleClick(), 16);
    EXPECT_TRUE(pane().contains("Loaded dictionary: " + empty_.filePath("mine.dic")));
    EXPECT_GT(list()->numberWarnings(), 0) << "names it does not define are reported";
    EXPECT_FALSE(entriesUnder(list(), "Warnings").join("\n").contains("_made_up_item"));
}

TEST_F(MainWindowCheck, CtrlKListsTheStructureChecksAtTheirLevelsWithTheirHelpPages) {
    start();
    focus();
    // A volume 1 % off the cell (error), a largest shift/su of 0.15 (warning), a wR2 of 0.30 (remark).
    typeLines(editor(),
              {"data_s", "_cell_length_a 10.000", "_cell_length_b 10.000", "_cell_length_c 10.000",
               "_cell_angle_alpha 90", "_cell_angle_beta 90", "_cell_angle_gamma 90", "_cell_volume 1010",
               "_refine_ls_shift/su_max 0.15", "_refine_ls_wR_factor_ref 0.30"});
    pressCtrlK();
    const QStringList errors = entriesUnder(list(), "Errors");
    ASSERT_EQ(errors.size(), 1) << errors.join("\n").toStdString();
    EXPECT_TRUE(errors[0].startsWith("8: Value of _cell_volume does not follow from the cell (1010"));
    const QStringList warnings = entriesUnder(list(), "Warnings");
    ASSERT_EQ(warnings.size(), 1) << warnings.join("\n").toStdString();
    EXPECT_TRUE(warnings[0].startsWith("9: Value of _refine_ls_shift/su_max shows that the refinement"));
    const QStringList remarks = entriesUnder(list(), "Remarks");
    ASSERT_EQ(remarks.size(), 1) << remarks.join("\n").toStdString();
    EXPECT_TRUE(remarks[0].startsWith("10: Value of _refine_ls_wR_factor_ref is high"));

    // Each entry leads to its code's page.
    const QStringList pages{"110", "119", "120"};
    for (int heading = 0; heading < 3; ++heading) {
        const auto* entry = dynamic_cast<QcbsErrorListViewItem*>(list()->topLevelItem(heading)->child(0));
        ASSERT_NE(entry, nullptr) << heading;
        EXPECT_EQ(QcbsErrorResource::get_help_file(entry->identifier(1)),
                  "tessary/PortableHTML/tessary_portable-3-" + pages[heading] + ".html");
    }

    // Corrected, the next check finds nothing.
    editor()->setPlainText(
        "data_s\n_cell_length_a 10.000\n_cell_length_b 10.000\n_cell_length_c 10.000\n_cell_angle_alpha 90\n"
        "_cell_angle_beta 90\n_cell_angle_gamma 90\n_cell_volume 1000\n_refine_ls_shift/su_max 0.01\n"
        "_refine_ls_wR_factor_ref 0.10\n");
    pressCtrlK();
    EXPECT_EQ(list()->numberTotal(), 0) << entriesUnder(list(), "Remarks").join("\n").toStdString();
}

// --- how the findings are listed ---------------------------------------------------------

THandle<Cif> documentWith(const std::vector<CifError>& messages, const std::string& text = {}) {
    THandle<Cif> cif(new Cif());
    cif->read_text(text);
    cif->errors()->clear();
    for (const CifError& message : messages) cif->errors()->add(message);
    return cif;
}

// Findings written as "E10 W12 V14 R31 I4": an error, a warning about a
// name, one about a validation reply, a remark, other information.
THandle<Cif> documentWithFindings(const QString& findings) {
    std::vector<CifError> messages;
    for (const QString& finding : findings.split(' ', Qt::SkipEmptyParts)) {
        const int line = finding.mid(1).toInt();
        const char kind = finding.at(0).toLatin1();
        if (kind == 'E')
            messages.emplace_back(CifError::unterminated_quoted_string, CifError::error, line, "'x");
        if (kind == 'W' || kind == 'V')
            messages.emplace_back(CifError::undefined_data_name, CifError::warning, line,
                                  kind == 'W' ? "_made_up" : "_vrf_PLAT001_x");
        if (kind == 'R') messages.emplace_back(CifError::no_final_line_end, CifError::remark, line);
        if (kind == 'I') messages.emplace_back(CifError::internal_error, CifError::information, line, "x");
    }
    return documentWith(messages);
}

class MainWindowParsing : public MainWindowCheck {
protected:
    void SetUp() override { start(); }
    // The entries of the list in the same form, an omission note with a "~".
    QString listed() const {
        QStringList entries;
        for (const char* heading : {"Errors", "Warnings", "Remarks"})
            for (const QString& entry : entriesUnder(list(), heading))
                entries << heading[0] + entry.section(':', 0, 0) +
                               (entry.endsWith("(warnings omitted)") ? "~" : "");
        return entries.join(' ');
    }
};

TEST_F(MainWindowParsing, RunsOfErrorsAndWarningsAreCutAndEveryCheckEndsWithItsTotals) {
    const struct {
        const char* findings;
        const char* listed;
        const char* output;
    } cases[] = {
        // An error run stops the list at its fifth line; the totals count all.
        {"E10 E11 E12 E13 E14 E15 W30 R31", "E10 E11 E12 E13 E14",
         "Check stopped at line 14: fix previous errors first. Total errors: 6; warnings: 1; remarks: 1 "
         "(listed: 5 of 6 errors, 0 of 1 warnings, 0 of 1 remarks)\n"},
        // A repeated line leaves the run as it is; a gap starts a new one.
        {"E10 E11 E11 E12 E13 E20 E21 E22 E23", "E10 E11 E11 E12 E13 E20 E21 E22 E23",
         "Total errors: 9; warnings: 0; remarks: 0\n"},
        {"W10 W11 W12 W13 W14 W15 W20", "W10 W11 W12 W13 W14~ W20",
         "Total errors: 0; warnings: 7; remarks: 0 (listed: 5 of 7 warnings)\n"},
        // The cross-checks' findings come after the reading's and go back to earlier lines: a new run.
        {"W10 W11 W12 W13 W14 W15 W16 W3 W4", "W3 W4 W10 W11 W12 W13 W14~",
         "Total errors: 0; warnings: 9; remarks: 0 (listed: 6 of 9 warnings)\n"},
        {"E10 E11 E12 E13 E2 E3", "E2 E3 E10 E11 E12 E13", "Total errors: 6; warnings: 0; remarks: 0\n"},
        // Had the validation reply counted, line 15 would be the fifth of a run.
        {"W10 W11 W12 W13 V14 W15", "W10 W11 W12 W13 W15", "Total errors: 0; warnings: 5; remarks: 0\n"},
        {"", "", "No errors, warnings or remarks.\n"},
        {"I4", "", "(misc error/info): \nTotal errors: 0; warnings: 0; remarks: 0\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.findings);
        const qsizetype before = pane().size();
        window_->processErrors(documentWithFindings(c.findings));
        EXPECT_EQ(listed(), c.listed);
        EXPECT_EQ(pane().mid(before), c.output);
    }
    // The headings tell the same story as the pane.
    window_->processErrors(documentWithFindings("E10 E11 E12 E13 E14 E15 W30 R31"));
    EXPECT_EQ(list()->topLevelItem(0)->text(1), "  5 shown of 6");
    EXPECT_EQ(list()->topLevelItem(1)->text(1), "  0 shown of 1");
    window_->processErrors(documentWithFindings("E10 W11"));
    EXPECT_EQ(list()->topLevelItem(0)->text(1), "  Total of 1");
}

TEST_F(MainWindowParsing, RemarksAboutADataNameGoToItsFirstLineInTheSameBlockLeavingTheView) {
    const std::string text =
        "data_a\n_cell_length_a 5.0\n_cell_volume 10\ndata_b\n_cell_measurement_temperature "
        "100\n_cell_volume 2\n";
    editor()->setPlainText(QString::fromStdString(text));
    editor()->setSelection(2, 1, 2, 5);
    const int scrolled = editor()->contentsY();
    window_->processErrors(documentWith(
        {CifError(CifError::calculated_value_differs, CifError::remark, 3, "_CELL_LENGTH_A"),  // block a: 2
         CifError(CifError::count_mismatch, CifError::remark, 3,
                  "_cell_measurement_temperature"),                                // only in b: 3
         CifError(CifError::count_mismatch, CifError::remark, 6, "_cell_volume"),  // the first is in a: 6
         CifError(CifError::calculated_value_differs, CifError::remark, 2, "_absent"),
         CifError(CifError::space_group_unknown, CifError::remark, 3, "_cell_length_a")},  // another kind
        text));
    QStringList lines = listed().split(' ');
    lines.sort();
    EXPECT_EQ(lines, (QStringList{"R2", "R2", "R3", "R3", "R6"}));
    int fromPara = 0, fromIndex = 0, toPara = 0, toIndex = 0;
    editor()->getSelection(&fromPara, &fromIndex, &toPara, &toIndex);
    EXPECT_EQ(QList<int>({fromPara, fromIndex, toPara, toIndex}), QList<int>({2, 1, 2, 5}));
    EXPECT_EQ(editor()->contentsY(), scrolled);
}

TEST_F(MainWindowParsing, TheBlockChooserNamesRealBlocksAndJumpsToThemTheHeaderOnlyBeeps) {
    THandle<Cif> placeholderOnly = documentWith({});
    placeholderOnly->new_block("data_added_by_tessary", placeholderOnly->block_end());
    THandle<Cif> placeholderFirst = documentWith({}, "data_x\ndata_y\n");
    placeholderFirst->new_block("data_added_by_tessary", placeholderFirst->block_begin());
    const std::pair<THandle<Cif>, QStringList> cases[] = {
        {documentWith({}, "data_first\n_a 1\ndata_second\n_b 2\n"), {"Blocks:   2", "first", "second"}},
        {placeholderOnly, {"Blocks:  none"}},
        {placeholderFirst, {"Blocks:   2", "", "x", "y"}},
        {documentWith({}, "# no block\n"), {"Blocks:  none"}},
    };
    for (const auto& [cif, items] : cases) {
        window_->fillBlocksCombo(cif);
        EXPECT_EQ(comboItems(), items);
        EXPECT_EQ(window_->blocksCombo()->isEnabled(), items.size() > 1);
        EXPECT_EQ(window_->blocksCombo()->currentIndex(), 0);
    }

    editor()->setPlainText("data_one\n_a 1\n\ndata_two\n_b 2\n");
    window_->reparse();
    editor()->setCursorPosition(1, 1);
    QSignalSpy jumps(window_.get(), &QcbsMainWindow::requestGotoLine);
    int para = 0, index = 0;
    emit window_->blocksCombo()->activated(0);
    editor()->getCursorPosition(&para, &index);
    EXPECT_EQ(jumps.count(), 0);
    EXPECT_EQ(para, 1);

    window_->blocksCombo()->setCurrentIndex(2);
    emit window_->blocksCombo()->activated(2);
    ASSERT_EQ(jumps.count(), 1);
    EXPECT_EQ(jumps.at(0), (QVariantList{4, "two"}));
    editor()->getCursorPosition(&para, &index);
    EXPECT_EQ(para, 3);
    EXPECT_EQ(window_->blocksCombo()->currentIndex(), 0) << "a jump menu, not a state";
    window_->tabs()->setCurrentWidget(window_->visualiserPage());
    window_->blockComboSelected(1);
    EXPECT_EQ(jumps.count(), 1);
}

TEST_F(MainWindowParsing, CheckRunsOnlyForAnEditorWithAFileAndSomeText) {
    QcbsMainWindow unnamed(window_->sharedData());
    unnamed.currentEditor()->setPlainText("data_x\n_a 1\n");
    unnamed.reparse();
    EXPECT_TRUE(unnamed.currentCif().is_null() && unnamed.parse().is_null());
    window_->reparse();  // of an empty text
    EXPECT_TRUE(window_->currentCif().is_null());

    editor()->setPlainText("data_x\n_a 1\n_b\n");
    const qsizetype before = pane().size();
    window_->reparse();
    EXPECT_TRUE(window_->document()->isChecked());
    EXPECT_EQ(window_->document()->linesAtCheck(), 4);
    // An empty paragraph, then the two lines of the check.
    EXPECT_TRUE(pane().mid(before).startsWith("\n"));
    EXPECT_EQ(pane().mid(before).trimmed(), "Checking CIF ...\nTotal errors: 1; warnings: 0; remarks: 0");
    EXPECT_EQ(statusMessage(*window_), "Ready");
}

TEST_F(MainWindowParsing, TheLineLengthAndConsistencyOptionsReachTheCheck) {
    editor()->setPlainText(
        "data_c\n_cell_length_a 10.000\n_cell_length_b 10.000\n_cell_length_c 10.000\n"
        "_cell_angle_alpha 90\n_cell_angle_beta 90\n_cell_angle_gamma 90\n_cell_volume 1000.5\n"
        "_a " +
        QString(60, 'v') + "\n");
    changeOptions(*window_, [](QcbsOptions& o) {
        o.line_length_limit = 40;
        o.consistency_checks = false;
    });
    window_->reparse();
    EXPECT_EQ(listed(), "W9");
    changeOptions(*window_, [](QcbsOptions& o) {
        o.line_length_limit = 80;
        o.consistency_checks = true;
    });
    window_->reparse();
    EXPECT_EQ(listed(), "R8");
    EXPECT_TRUE(entriesUnder(list(), "Remarks").first().contains("_cell_volume"));
}

TEST_F(MainWindowParsing, TheTextIsCheckedInTheEncodingOfItsFile) {
    // Typed, the text is UTF-8 as CIF 2.0 asks; a file that is not UTF-8 is read and checked as Latin-1.
    editor()->setPlainText(QString::fromUtf8("#\\#CIF_2.0\ndata_x\n_name '\u00c5ngstr\u00f6m'\n"));
    window_->reparse();
    EXPECT_EQ(listed(), "");
    QTemporaryDir dir;
    const QString path =
        writeBytes(dir.filePath("latin1.cif"), "#\\#CIF_2.0\ndata_x\n_name '\xc5ngstr\xf6m'\n");
    loadAndWait(*window_, path);
    EXPECT_EQ(window_->document()->encoding().kind(), QcbsDocumentEncoding::Latin1);
    EXPECT_TRUE(listed().startsWith("E3")) << listed().toStdString();
}

TEST_F(MainWindowParsing, ACheckAskedForWhileATextComesInRunsOnceWhenItIsIn) {
    QString text = "data_big\nloop_\n_a\n_b\n";
    for (int i = 0; i < 300000; ++i) text += "1 2\n";  // 1.2 MB: read and checked on workers
    text += "_x\n";
    QSignalSpy loaded(editor(), &QcbsRichTextEdit::textLoaded);
    editor()->loadText(text);
    ASSERT_TRUE(editor()->isLoading()) << "the text should come in slices";
    const qsizetype before = pane().size();
    window_->reparse();
    window_->reparse();
    EXPECT_EQ(statusMessage(*window_), "Parsing CIF...");
    EXPECT_TRUE(window_->currentCif().is_null());

    ASSERT_TRUE(loaded.wait(30000));
    ASSERT_TRUE(waitUntil([this] { return !entriesUnder(list(), "Errors").isEmpty(); }, 30000));
    EXPECT_EQ(pane().mid(before).count("Checking CIF ..."), 1);
    EXPECT_EQ(entriesUnder(list(), "Errors"), QStringList{"300005: Data name _x has no value"});
    EXPECT_EQ(window_->document()->linesAtCheck(), 300006);
}

TEST_F(MainWindowParsing, AFileCheckedFromDiskIsListedOnlyWhenAsked) {
    QTemporaryDir dir;
    const QString path = writeBytes(dir.filePath("two.cif"), "data_a\n_x 'open\ndata_b\n_y 2\n");
    list()->addError("old", 1, CifError::internal_error);
    const THandle<Cif> quiet = window_->parse(path.toStdString(), false);
    ASSERT_FALSE(quiet.is_null());
    EXPECT_TRUE(window_->currentCif() == quiet);
    EXPECT_EQ(listed(), "E1") << "the list is left alone";
    EXPECT_EQ(comboItems(), (QStringList{"Blocks:   2", "a", "b"}));
    EXPECT_FALSE(window_->document()->isChecked()) << "the editor's text is not what was checked";
    window_->parse(path.toStdString(), true);
    EXPECT_EQ(listed(), "E2");
    EXPECT_EQ(window_->parse(dir.filePath("absent.cif").toStdString(), true)->block_count(), 0u);
    EXPECT_EQ(comboItems(), QStringList{"Blocks:  none"});
}

}  // namespace
