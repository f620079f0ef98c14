#include <gtest/gtest.h>

#include <QComboBox>
#include <QTabWidget>
#include <QTest>

#include "GuiTestSupport.hpp"
#include "MainWindowTestSupport.hpp"
#include "editor/QcbsRichTextEdit.hpp"
#include "visualiser/QcbsVisSorter.hpp"

namespace {

using A = QcbsMainWindowActions;

class MainWindowTools : public ::testing::Test {
protected:
    bool enabled(A::Id id) const { return windowAction(window_, id)->isEnabled(); }
    void showVisualiser() { window_.tabs()->setCurrentWidget(window_.visualiserPage()); }
    void showEditor() { window_.tabs()->setCurrentWidget(window_.editorPage()); }

    // Gives the editor the text and the window a document read from it.
    void checked(const std::string& text) {
        window_.currentEditor()->setPlainText(QString::fromStdString(text));
        THandle<Cif> cif(new Cif);
        cif->read_text(text);
        window_.setCif(window_.currentEditor(), cif);
    }

    ScopedPrefsDir prefs_;
    QcbsMainWindow window_{buildTreeSharedData()};
};

TEST_F(MainWindowTools, TheVisualiserPageTurnsOffEditingCheckingAndSearchingAndTheEditorPageBack) {
    const A::Id editing[] = {A::EditCopy,    A::EditCut,       A::EditPaste,
                             A::EditComment, A::EditSelectAll, A::EditZoomIn};
    const A::Id searching[] = {A::Find, A::FindPrevious, A::FindNext, A::Replace, A::GoToLine};
    const A::Id cif[] = {A::ItemHelp, A::Browser, A::PublicationWizard, A::EditLoop, A::NewLoop};
    const A::Id always[] = {A::FileNew,   A::FileOpen, A::NewWindow, A::FileExit,
                            A::EditPrefs, A::About,    A::Help};

    ASSERT_EQ(window_.tabs()->currentWidget(), window_.editorPage());
    for (A::Id id : editing) EXPECT_TRUE(enabled(id)) << id;
    for (A::Id id : searching) EXPECT_TRUE(enabled(id)) << id;
    for (A::Id id : cif) EXPECT_TRUE(enabled(id)) << id;
    EXPECT_TRUE(enabled(A::Reparse));
    EXPECT_FALSE(enabled(A::OpenInVelmora));

    showVisualiser();
    for (A::Id id : editing) EXPECT_FALSE(enabled(id)) << id;
    for (A::Id id : searching) EXPECT_FALSE(enabled(id)) << id;
    for (A::Id id : cif) EXPECT_FALSE(enabled(id)) << id;
    EXPECT_FALSE(enabled(A::Reparse));
    EXPECT_FALSE(window_.blocksCombo()->isEnabled());
    EXPECT_TRUE(enabled(A::OpenInVelmora));
    for (A::Id id : always) EXPECT_TRUE(enabled(id)) << id;

    showEditor();
    for (A::Id id : editing) EXPECT_TRUE(enabled(id)) << id;
    for (A::Id id : searching) EXPECT_TRUE(enabled(id)) << id;
    EXPECT_TRUE(enabled(A::Reparse));
    EXPECT_FALSE(enabled(A::OpenInVelmora));
    for (A::Id id : always) EXPECT_TRUE(enabled(id)) << id;
}

TEST_F(MainWindowTools, PagesOtherThanEditorAndVisualiserChangeNothing) {
    QWidget other;
    window_.enableTools(&other);
    window_.enableTools(nullptr);
    EXPECT_TRUE(enabled(A::Reparse));
    EXPECT_FALSE(enabled(A::OpenInVelmora));
}

TEST_F(MainWindowTools, TheBlockChooserComesBackOnlyWhenAfterACheckItListsBlocks) {
    showVisualiser();
    showEditor();
    EXPECT_FALSE(window_.blocksCombo()->isEnabled());
    EXPECT_EQ(window_.blocksCombo()->currentText(), "Blocks:  none");

    window_.blocksCombo()->clear();
    window_.blocksCombo()->addItems({"Blocks:   2", "first", "second"});
    showVisualiser();
    EXPECT_FALSE(window_.blocksCombo()->isEnabled());
    showEditor();
    EXPECT_TRUE(window_.blocksCombo()->isEnabled());
}

TEST_F(MainWindowTools, CheckStaysOffForATextMarkedNotToBeChecked) {
    window_.setParseAllowed(window_.currentEditor(), false);
    showVisualiser();
    showEditor();
    EXPECT_FALSE(enabled(A::Reparse));
    window_.setParseAllowed(window_.currentEditor(), true);
    window_.enableTools(window_.editorPage());
    EXPECT_TRUE(enabled(A::Reparse));
}

TEST_F(MainWindowTools, TheCrystalWizardNeedsChemicalAtomSiteOrCellDataInTheCurrentBlock) {
    EXPECT_FALSE(enabled(A::CrystalWizard)) << "no document checked yet";

    checked("data_paper\n_publ_section_title 'A structure'\n_journal_name_full 'Acta'\n");
    EXPECT_FALSE(enabled(A::CrystalWizard));
    EXPECT_TRUE(enabled(A::PublicationWizard));

    for (const char* crystal : {"_cell_length_a 5.1\n", "_chemical_formula_sum 'Pb O4 S'\n",
                                "loop_\n_atom_site_label\n_atom_site_fract_x\nPb1 0.1\n"}) {
        checked(std::string("data_c\n_publ_section_title x\n") + crystal);
        EXPECT_TRUE(enabled(A::CrystalWizard)) << crystal;
    }
    // A category name is matched whole: _cellar is not a cell item.
    checked("data_c\n_cellar_door 1\n");
    EXPECT_FALSE(enabled(A::CrystalWizard));

    showVisualiser();
    EXPECT_FALSE(enabled(A::CrystalWizard));
    showEditor();
    EXPECT_FALSE(enabled(A::CrystalWizard));
}

TEST_F(MainWindowTools, TheCrystalWizardFollowsTheCursorFromBlockToBlock) {
    checked("data_paper\n_publ_section_title x\ndata_crystal\n_cell_length_a 5.1\n");
    QcbsRichTextEdit* editor = window_.currentEditor();
    editor->setCursorPosition(1, 0);
    EXPECT_FALSE(enabled(A::CrystalWizard));
    editor->setCursorPosition(3, 0);
    EXPECT_TRUE(enabled(A::CrystalWizard));
    editor->setCursorPosition(0, 0);
    EXPECT_FALSE(enabled(A::CrystalWizard));
}

TEST_F(MainWindowTools, UndoAndRedoFollowTheEditorsHistory) {
    QcbsRichTextEdit* editor = window_.currentEditor();
    EXPECT_FALSE(enabled(A::EditUndo));
    EXPECT_FALSE(enabled(A::EditRedo));
    QTest::keyClicks(editor, "data_a");
    EXPECT_TRUE(enabled(A::EditUndo));
    EXPECT_FALSE(enabled(A::EditRedo));
    editor->undo();
    EXPECT_FALSE(enabled(A::EditUndo));
    EXPECT_TRUE(enabled(A::EditRedo));

    showVisualiser();
    EXPECT_FALSE(enabled(A::EditRedo));
    showEditor();
    EXPECT_TRUE(enabled(A::EditRedo));
}

TEST_F(MainWindowTools, ANewWindowHasNoDocumentToSaveOrClose) {
    for (A::Id id : {A::FileSave, A::FileSaveAs, A::FilePrint, A::FileClose}) EXPECT_FALSE(enabled(id)) << id;
    window_.enableFileTools(true);
    for (A::Id id : {A::FileSave, A::FileSaveAs, A::FilePrint, A::FileClose}) EXPECT_TRUE(enabled(id)) << id;
}

TEST_F(MainWindowTools, CheckOfEveryWindowIsSwitchedTogether) {
    QcbsMainWindow second(window_.sharedData());
    QcbsMainWindow::enableAllInstParseTools(false);
    EXPECT_FALSE(enabled(A::Reparse));
    EXPECT_FALSE(windowAction(second, A::Reparse)->isEnabled());
    QcbsMainWindow::enableAllInstParseTools(true);
    EXPECT_TRUE(enabled(A::Reparse));
    EXPECT_TRUE(windowAction(second, A::Reparse)->isEnabled());
}

}  // namespace
