// SPDX-License-Identifier: GPL-3.0-or-later
// The wizard frame: numbered pages, the syntax check's verdict, the block's text handed back once.
#include <gtest/gtest.h>

#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRegularExpression>
#include <QStatusBar>

#include "WizardTestSupport.hpp"
#include "wizards/QcbsWizardChemicalPage.hpp"
#include "wizards/QcbsWizardErrorPage.hpp"
#include "wizards/QcbsWizardFinishPage.hpp"
#include "wizards/QcbsWizardIntroPage.hpp"
#include "wizards/QcbsWizardSpaceGroupPage.hpp"

namespace {

using wizard_test::ShownWizard;

const std::string kCrystal =
    "# a comment before the block\n"
    "data_crystal\n"
    "_cell_length_a 5.0\n"
    "_chemical_name_common   'table salt'   # as sold\n"
    "_chemical_formula_sum 'Na Cl'\n"
    "data_other\n"
    "_cell_length_a 7.0\n";

THandle<CifErrorContainer> messages(int remarks, int warnings, int errors) {
    THandle<CifErrorContainer> container(new CifErrorContainer());
    int line = 1;
    for (auto [count, type] :
         {std::pair{remarks, CifError::remark}, {warnings, CifError::warning}, {errors, CifError::error}})
        for (int i = 0; i < count; ++i) container->add(CifError(CifError::count_mismatch, type, line++, "x"));
    return container;
}

TEST(WizardFrame, TheSyntaxPageSaysWhetherTheWizardMayGoOn) {
    const struct {
        int remarks, warnings, errors;
        const char* status;
        const char* last;  // the summary line, empty when there is none
        bool blocking;
    } cases[] = {
        {0, 0, 0, "Cif processed with no warnings or errors.", "", false},
        {0, 1, 0, "It is strongly recommended that you fix syntax warnings before using the wizard.",
         "CIF processed with 1 warning and 0 errors", false},
        {0, 2, 1, "Sorry, the wizard cannot continue whilst there are errors.",
         "CIF processed with 2 warnings and 1 error", true},
        {0, 0, 1, "Sorry, the wizard cannot continue whilst there are errors.",
         "CIF processed with 0 warnings and 1 error", true},
        {3, 0, 0, "Cif processed with no warnings or errors.", "CIF processed with 0 warnings and 0 errors",
         false},
    };
    for (const auto& c : cases) {
        const auto summary = QcbsWizardErrorPage::summarise(messages(c.remarks, c.warnings, c.errors));
        const int total = c.remarks + c.warnings + c.errors;
        EXPECT_EQ(summary.status, c.status) << total;
        EXPECT_EQ(summary.blocking, c.blocking) << total;
        if (*c.last == '\0') {
            EXPECT_TRUE(summary.lines.isEmpty());
            continue;
        }
        // Every message, in order, then the counts after a blank line.
        ASSERT_EQ(summary.lines.size(), total + 1);
        EXPECT_TRUE(summary.lines.first().startsWith(c.remarks > 0    ? "Remark: Line 1 : "
                                                     : c.warnings > 0 ? "Warning: Line 1 : "
                                                                      : "Error: Line 1 : "))
            << summary.lines.first().toStdString();
        EXPECT_EQ(summary.lines.last(), QString("\n") + c.last);
    }
}

TEST(WizardFrame, PagesAreNumberedAndTheFirstTwoLeadOnOnlyWithoutErrors) {
    ShownWizard wizard(kCrystal);
    EXPECT_EQ(wizard->windowTitle(), "Tessary Chemical and Crystal Data Wizard");
    QStringList titles;
    for (int id : wizard->pageIds()) titles << wizard->page(id)->title();
    EXPECT_EQ(titles, (QStringList{"Welcome   (page 1 of 7)", "CIF syntax checking...   (page 2 of 7)",
                                   "Physical and Chemical Information...   (page 3 of 7)",
                                   "Physical and Chemical Information...   (page 4 of 7)",
                                   "Symmetry Information...   (page 5 of 7)",
                                   "Diffraction Information...   (page 6 of 7)",
                                   "Apply changes to CIF...   (page 7 of 7)"}));
    // Opened on a document, the welcome page asks for no file and lets the user on.
    auto* intro = wizard.pageOf<QcbsWizardIntroPage>();
    EXPECT_FALSE(intro->fileRow()->isVisibleTo(intro));
    EXPECT_TRUE(wizard->button(QWizard::NextButton)->isEnabled());
    wizard.press(QWizard::NextButton);
    auto* syntax = wizard.pageOf<QcbsWizardErrorPage>();
    EXPECT_EQ(wizard->currentPage(), syntax);
    EXPECT_EQ(syntax->statusBar()->currentMessage(), "Cif processed with no warnings or errors.");
    EXPECT_TRUE(wizard->button(QWizard::NextButton)->isEnabled());

    ShownWizard broken("data_x\n_cell_length_a 'open\n_cell_length_b 2\n");
    broken.press(QWizard::NextButton);
    auto* page = broken.pageOf<QcbsWizardErrorPage>();
    EXPECT_EQ(page->statusBar()->currentMessage(),
              "Sorry, the wizard cannot continue whilst there are errors.");
    EXPECT_TRUE(page->messages()->toPlainText().contains("Error: Line 2"))
        << page->messages()->toPlainText().toStdString();
    EXPECT_FALSE(broken->button(QWizard::NextButton)->isEnabled());
    EXPECT_TRUE(broken->button(QWizard::BackButton)->isEnabled());
}

TEST(WizardFrame, TheWelcomePageWithoutADocumentWaitsForAFileName) {
    QPointer<QcbsDataWizard> wizard =
        new QcbsDataWizard(THandle<Cif>(), 0, THandle<CifDictionary>(), CifWriteSettings());
    wizard->show();
    auto* intro = qobject_cast<QcbsWizardIntroPage*>(wizard->currentPage());
    ASSERT_NE(intro, nullptr);
    EXPECT_TRUE(intro->fileRow()->isVisibleTo(intro));
    EXPECT_FALSE(wizard->button(QWizard::NextButton)->isEnabled());
    intro->fileField()->setText("some.cif");
    EXPECT_TRUE(wizard->button(QWizard::NextButton)->isEnabled());
    intro->fileField()->clear();
    EXPECT_FALSE(wizard->button(QWizard::NextButton)->isEnabled());
    // No block: Finish hands back an empty text.
    EXPECT_EQ(wizard->blockText(), "\n");
    delete wizard.data();
}

TEST(WizardFrame, FinishHandsBackTheBlockOnceFromItsHeadingAndCancelNothing) {
    ShownWizard wizard(kCrystal);
    const QString before = wizard->blockText();
    EXPECT_TRUE(before.startsWith("data_crystal\n")) << before.toStdString();
    EXPECT_FALSE(before.contains("data_other"));
    EXPECT_TRUE(before.contains("# as sold")) << "comments of values left alone stay";
    wizard.goTo(wizard.pageOf<QcbsWizardChemicalPage>());
    auto* chemical = wizard.pageOf<QcbsWizardChemicalPage>();
    chemical->lineEdit("_chemical_name_common")->setText("halite");
    wizard.finish();
    ASSERT_TRUE(waitUntil([&] { return wizard.closed(); }));
    ASSERT_EQ(wizard.updates().size(), 1);
    const QString text = wizard.updates().first();
    EXPECT_TRUE(text.startsWith("data_crystal\n")) << text.toStdString();
    EXPECT_TRUE(text.contains(QRegularExpression("_chemical_name_common\\s+halite\n"))) << text.toStdString();
    EXPECT_FALSE(text.contains("# as sold")) << "the comment went with the value it was about";
    EXPECT_EQ(wizard.document()->block(0)->value("_chemical_name_common"), "table salt")
        << "the document's own model is not touched";

    ShownWizard cancelled(kCrystal);
    cancelled.goTo(cancelled.pageOf<QcbsWizardChemicalPage>());
    cancelled.pageOf<QcbsWizardChemicalPage>()->lineEdit("_chemical_name_common")->setText("halite");
    cancelled.press(QWizard::NextButton);
    cancelled.press(QWizard::CancelButton);
    ASSERT_TRUE(waitUntil([&] { return cancelled.closed(); }));
    EXPECT_TRUE(cancelled.updates().isEmpty());
}

TEST(WizardFrame, BackRereadsAPageAndNextOnlyWritesTheOneLeft) {
    ShownWizard wizard(kCrystal);
    auto* chemical = wizard.pageOf<QcbsWizardChemicalPage>();
    wizard.goTo(chemical);
    chemical->lineEdit("_chemical_name_common")->setText("halite");
    wizard.press(QWizard::NextButton);
    EXPECT_EQ(wizard->workingBlock()->value("_chemical_name_common"), "halite");
    wizard.press(QWizard::BackButton);
    chemical->lineEdit("_chemical_name_common")->setText("rock salt");
    wizard.press(QWizard::BackButton);  // Back writes nothing
    EXPECT_EQ(wizard->workingBlock()->value("_chemical_name_common"), "halite");
    wizard.press(QWizard::NextButton);
    EXPECT_EQ(chemical->lineEdit("_chemical_name_common")->text(), "halite") << "shown again from the block";
}

TEST(WizardFrame, APageThatIsNotAppropriateIsSkippedBothWays) {
    ShownWizard wizard(kCrystal);
    auto* symmetry = wizard.pageOf<QcbsWizardSpaceGroupPage>();
    wizard->setAppropriate(symmetry, false);
    EXPECT_FALSE(wizard->appropriate(symmetry));
    QList<QWizardPage*> seen;
    while (wizard->nextId() != -1) {
        ASSERT_TRUE(wizard.press(QWizard::NextButton));
        seen << wizard->currentPage();
    }
    EXPECT_FALSE(seen.contains(symmetry));
    EXPECT_EQ(seen.size(), 5);
    while (wizard->currentId() != wizard->startId()) {
        ASSERT_TRUE(wizard.press(QWizard::BackButton));
        EXPECT_NE(wizard->currentPage(), symmetry);
    }
}

}  // namespace
