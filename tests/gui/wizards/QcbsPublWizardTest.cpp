// SPDX-License-Identifier: GPL-3.0-or-later
// The publication wizard's pages: contact author, where the structure goes, journals, authors.
#include <gtest/gtest.h>

#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>

#include "WizardTestSupport.hpp"
#include "wizards/QcbsJournalListBox.hpp"
#include "wizards/QcbsPublWizard.hpp"
#include "wizards/QcbsWizardAuthorPage.hpp"
#include "wizards/QcbsWizardContactPage.hpp"
#include "wizards/QcbsWizardJournalPage.hpp"
#include "wizards/QcbsWizardPaperTitlePage.hpp"
#include "wizards/QcbsWizardPublicationPage.hpp"
#include "wizards/QcbsWizardRequestedJournalPage.hpp"

namespace {

using Publ = wizard_test::ShownWizardOf<QcbsPublWizard>;
using Choice = QcbsWizardPublicationPage::Choice;

std::string value(const Publ& wizard, const char* name) { return wizard->workingBlock()->value(name); }

// The values of a column of the working block, with whether each was quoted.
std::vector<std::pair<std::string, bool>> column(const CifDataBlock& block, const char* name) {
    std::vector<std::pair<std::string, bool>> values;
    const THandle<CifDataItem> item = block.find(name);
    for (std::size_t i = 0; !item.is_null() && i < item->size(); ++i)
        values.emplace_back(item->value(unsigned(i)), item->is_quoted(i));
    return values;
}

// The pages from the publication page to the finish page for a choice.
QStringList pagesAfterChoosing(Publ& wizard, Choice choice) {
    auto* publication = wizard.pageOf<QcbsWizardPublicationPage>();
    wizard.goTo(publication);
    publication->button(choice)->click();
    QStringList visited;
    while (wizard->nextId() != -1 && wizard.press(QWizard::NextButton))
        visited << wizard->currentPage()->objectName();
    return visited;
}

TEST(PublicationWizard, TheChoiceStartsFromTheBlockAndDecidesWhichJournalPageFollows) {
    const struct {
        const char* items;
        Choice initial;
    } starts[] = {
        {"_journal_name_full ?\n", Choice::Submitted},
        {"_cell_length_a 5\n", Choice::Submitted},
        {"_journal_name_full 'Acta Cryst. C'\n", Choice::Published},
        {"_publ_requested_journal 'Private Communication'\n", Choice::PrivateCommunication},
        {"_journal_name_full Polyhedron\n_publ_requested_journal 'Private Communication'\n",
         Choice::Published},
    };
    for (const auto& start : starts) {
        Publ wizard(std::string("data_p\n") + start.items);
        EXPECT_EQ(wizard.pageOf<QcbsWizardPublicationPage>()->choice(), start.initial) << start.items;
    }

    const struct {
        Choice choice;
        QStringList pages;
    } routes[] = {
        {Choice::Submitted, {"requested journal", "authors", "finish"}},
        {Choice::Published, {"journal", "authors", "finish"}},
        {Choice::PrivateCommunication, {"authors", "finish"}},
    };
    for (const auto& route : routes) {
        Publ wizard("data_p\n_journal_name_full ?\n");
        EXPECT_EQ(pagesAfterChoosing(wizard, route.choice), route.pages) << route.choice;
        // Back retraces the same way.
        wizard.press(QWizard::BackButton);
        wizard.press(QWizard::BackButton);
        if (route.pages.size() == 3) wizard.press(QWizard::BackButton);
        EXPECT_EQ(wizard->currentPage()->objectName(), "publication") << route.choice;
    }
}

TEST(PublicationWizard, APrivateCommunicationIsWrittenAndShowsAsAnEmptyRequestedJournal) {
    Publ wizard("data_p\n_publ_requested_journal 'Acta Cryst. C'\n_journal_name_full ?\n");
    pagesAfterChoosing(wizard, Choice::PrivateCommunication);
    EXPECT_EQ(value(wizard, "_publ_requested_journal"), "Private Communication");
    EXPECT_EQ(value(wizard, "_journal_name_full"), "?") << "the reference page was not passed";
    wizard.press(QWizard::FinishButton);
    ASSERT_EQ(wizard.updates().size(), 1);
    EXPECT_TRUE(wizard.updates()[0].contains("'Private Communication'")) << wizard.updates()[0].toStdString();

    // Stored "?" and "Private Communication" both show as an empty field;
    // left empty, the first stays as it was and the second becomes "?".
    for (const auto& [stored, written] :
         {std::pair{"?", "?"}, {"'Private Communication'", "?"}, {"'Dalton Trans.'", "Dalton Trans."}}) {
        Publ again(std::string("data_p\n_publ_requested_journal ") + stored + "\n");
        auto* page = again.pageOf<QcbsWizardRequestedJournalPage>();
        pagesAfterChoosing(again, Choice::Submitted);
        EXPECT_EQ(page->lineEdit("_publ_requested_journal")->text().isEmpty(), std::string(written) == "?")
            << stored;
        EXPECT_EQ(value(again, "_publ_requested_journal"), written) << stored;
    }
}

TEST(PublicationWizard, TypingNarrowsTheJournalListAndChoosingFillsTheField) {
    Publ wizard("data_p\n");
    auto* page = wizard.pageOf<QcbsWizardRequestedJournalPage>();
    wizard.goTo(page);
    QcbsJournalListBox* list = page->journalList();
    QLineEdit* field = page->lineEdit("_publ_requested_journal");
    const qsizetype all = list->count();
    EXPECT_GE(all, 50);
    QTest::keyClicks(field, "acta cryst.c");
    ASSERT_EQ(list->journalNames(), QStringList{"Acta Crystallographica Section C: Structural Chemistry"});
    field->clear();
    QTest::keyClicks(field, "Dalton");
    ASSERT_GE(list->count(), 1);
    EXPECT_EQ(list->journalNames().first(), "Dalton Transactions");
    EXPECT_LT(list->count(), all);
    EXPECT_FALSE(list->journalNames().contains("Journal of the Chemical Society, Dalton Transactions"))
        << "titles no longer current are not offered for a submission";
    const QRect row = list->visualItemRect(list->item(0));
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, row.center());
    EXPECT_EQ(field->text(), "Dalton Transactions");
    // The longest names are taken whole.
    field->clear();
    QTest::keyClicks(field, "Acta Cryst. B");
    ASSERT_EQ(list->count(), 1);
    emit list->itemActivated(list->item(0));
    EXPECT_EQ(field->text(),
              "Acta Crystallographica Section B: Structural Science, Crystal Engineering and Materials");
    field->setText("Dalton Transactions");
    page->lineEdit("_orma_journal_manuscript_code")->setText("DT-2026-0042");
    wizard.press(QWizard::NextButton);
    EXPECT_EQ(value(wizard, "_publ_requested_journal"), "Dalton Transactions");
    EXPECT_EQ(value(wizard, "_orma_journal_manuscript_code"), "DT-2026-0042");
}

TEST(PublicationWizard, TheReferencePageWritesTheYearAndTheJournalsCode) {
    const struct {
        const char* items;
        const char* typedName;  // null: left as shown
        const char* code;       // the code afterwards; null: no code item
    } cases[] = {
        {"_journal_name_full 'Acta Cryst. C'\n", nullptr, "ACTC"},
        {"_journal_name_full 'Journal of Imaginary Results'\n", nullptr, nullptr},
        {"_journal_name_full Polyhedron\n_orma_journal_coden POLY\n", "Journal of Imaginary Results", "?"},
        {"_journal_name_full 'Obscure J.'\n_orma_journal_coden KEEP\n", nullptr, "KEEP"},
    };
    for (const auto& c : cases) {
        Publ wizard(std::string("data_p\n") + c.items);
        auto* page = wizard.pageOf<QcbsWizardJournalPage>();
        pagesAfterChoosing(wizard, Choice::Published);
        wizard.press(QWizard::BackButton);
        wizard.press(QWizard::BackButton);
        ASSERT_EQ(wizard->currentPage(), page);
        if (c.typedName != nullptr) page->lineEdit("_journal_name_full")->setText(c.typedName);
        page->lineEdit("_journal_year")->setText("2026");
        wizard.press(QWizard::NextButton);
        EXPECT_EQ(value(wizard, "_journal_year"), "2026") << c.items;
        if (c.code != nullptr)
            EXPECT_EQ(value(wizard, "_orma_journal_coden"), c.code) << c.items;
        else
            EXPECT_TRUE(wizard->workingBlock()->find("_orma_journal_coden").is_null()) << c.items;
    }
}

TEST(PublicationWizard, TheContactPageReadsTheOlderItemAndOffersTheUsersDetailsOnlyWhenEmpty) {
    QcbsContactAuthor me;
    me.name = "Dr Ada Crystal";
    me.email = "ada@example.org";
    me.address = "Dept. of Chemistry\nSome University";
    {
        Publ wizard("data_p\n_publ_contact_author\n;\nProf. G. Older\nDept. of Old Items\nOld Town\n;\n", 0,
                    me);
        auto* page = wizard.pageOf<QcbsWizardContactPage>();
        wizard.goTo(page);
        EXPECT_EQ(page->lineEdit("_publ_contact_author_name")->text(), "Prof. G. Older");
        EXPECT_EQ(qobject_cast<QPlainTextEdit*>(page->field("_publ_contact_author_address"))->toPlainText(),
                  "Dept. of Old Items\nOld Town");
        EXPECT_FALSE(page->offerButton()->isVisibleTo(page)) << "the block has a contact";
        wizard.press(QWizard::NextButton);
        EXPECT_EQ(value(wizard, "_publ_contact_author_name"), "Prof. G. Older");
        EXPECT_EQ(value(wizard, "_publ_contact_author_address"), "Dept. of Old Items\nOld Town");
        EXPECT_EQ(value(wizard, "_publ_contact_author_email"), "?");
        EXPECT_FALSE(value(wizard, "_publ_contact_author").empty()) << "the older item stays";
    }
    {
        Publ wizard("data_p\n_publ_contact_author_name ?\n", 0, me);
        auto* page = wizard.pageOf<QcbsWizardContactPage>();
        wizard.goTo(page);
        ASSERT_TRUE(page->offerButton()->isVisibleTo(page));
        EXPECT_TRUE(page->lineEdit("_publ_contact_author_name")->text() == "?" ||
                    page->lineEdit("_publ_contact_author_name")->text().isEmpty())
            << "nothing filled in unasked";
        page->lineEdit("_publ_contact_author_phone")->setText("1");
        EXPECT_FALSE(page->offerButton()->isVisibleTo(page)) << "only while every field is empty";
        page->lineEdit("_publ_contact_author_phone")->clear();
        page->offerButton()->click();
        EXPECT_FALSE(page->offerButton()->isVisibleTo(page));
        EXPECT_EQ(page->lineEdit("_publ_contact_author_name")->text(), "Dr Ada Crystal");
        wizard.press(QWizard::NextButton);
        EXPECT_EQ(value(wizard, "_publ_contact_author_email"), "ada@example.org");
        EXPECT_EQ(value(wizard, "_publ_contact_author_address"), "Dept. of Chemistry\nSome University");
        EXPECT_EQ(value(wizard, "_publ_contact_author_fax"), "?");
    }
    {
        Publ wizard("data_p\n", 0, QcbsContactAuthor{});
        auto* page = wizard.pageOf<QcbsWizardContactPage>();
        wizard.goTo(page);
        EXPECT_FALSE(page->offerButton()->isVisibleTo(page)) << "no details to offer";
    }
}

const std::string kAuthors =
    "data_p\n_publ_contact_author_name 'Contact, C.'\n"
    "loop_\n_publ_author_name\n_publ_author_address\n_publ_author_footnote\n"
    "'Smith, John A.'  'Dept. of Chemistry, Univ. A'  f1\n"
    "\"O'Brien, M.\"   \"Lab 'B', Univ. B\"              f2\n"
    "'Li,Wei'\n;\nSchool of Crystals\nUniv. C\n;\nf3\n";

TEST(PublicationWizard, AnAuthorLoopLeftAloneSurvivesTheWizardUnchanged) {
    Publ wizard(kAuthors);
    auto* page = wizard.pageOf<QcbsWizardAuthorPage>();
    pagesAfterChoosing(wizard, Choice::PrivateCommunication);
    wizard.press(QWizard::BackButton);
    ASSERT_EQ(wizard->currentPage(), page);
    EXPECT_EQ(page->positionLabel()->text(), "Author 1 of 3");
    EXPECT_EQ(page->familyField()->text(), "Smith");
    EXPECT_EQ(page->firstField()->text(), "John A.");
    EXPECT_FALSE(page->previousButton()->isEnabled()) << "at the first author";
    page->nextButton()->click();
    page->nextButton()->click();
    EXPECT_EQ(page->familyField()->text(), "Li");
    EXPECT_EQ(page->addressField()->toPlainText(), "School of Crystals\nUniv. C");
    EXPECT_FALSE(page->nextButton()->isEnabled()) << "at the last author";
    page->previousButton()->click();
    EXPECT_EQ(page->familyField()->text(), "O'Brien");
    wizard.press(QWizard::NextButton);
    wizard.press(QWizard::FinishButton);
    const CifDataBlock& before = *wizard.document()->block(0);
    ASSERT_EQ(wizard.updates().size(), 1) << "the private communication changed the block";
    const THandle<Cif> after = wizard_test::readCif(wizard.updates()[0].toStdString());
    for (const char* name : {"_publ_author_name", "_publ_author_address", "_publ_author_footnote"})
        EXPECT_EQ(column(*after->block(0), name), column(before, name)) << name;
}

TEST(PublicationWizard, EditedAuthorsChangeOnlyTheirOwnRows) {
    Publ wizard(kAuthors);
    auto* page = wizard.pageOf<QcbsWizardAuthorPage>();
    pagesAfterChoosing(wizard, Choice::PrivateCommunication);
    wizard.press(QWizard::BackButton);
    page->nextButton()->click();
    page->firstField()->setText("Mary");  // O'Brien, M. -> O'Brien, Mary
    page->nextButton()->click();
    page->deleteButton()->click();  // Li goes, with its footnote
    EXPECT_EQ(page->positionLabel()->text(), "Author 2 of 2");
    page->addButton()->click();
    EXPECT_EQ(page->positionLabel()->text(), "Author 3 of 3");
    page->familyField()->setText("New");
    page->firstField()->setText("A. B.");
    page->addButton()->click();  // an author left empty is dropped
    wizard.press(QWizard::NextButton);
    wizard.press(QWizard::FinishButton);
    ASSERT_EQ(wizard.updates().size(), 1);

    const THandle<Cif> after = wizard_test::readCif(wizard.updates()[0].toStdString());
    const CifDataBlock& block = *after->block(0);
    const CifDataBlock& before = *wizard.document()->block(0);
    using V = std::vector<std::pair<std::string, bool>>;
    EXPECT_EQ(column(block, "_publ_author_name"),
              (V{column(before, "_publ_author_name")[0], {"O'Brien, Mary", true}, {"New, A. B.", true}}));
    EXPECT_EQ(column(block, "_publ_author_address"), (V{column(before, "_publ_author_address")[0],
                                                        column(before, "_publ_author_address")[1],
                                                        {"?", false}}));
    EXPECT_EQ(column(block, "_publ_author_footnote"), (V{{"f1", false}, {"f2", false}, {"?", false}}));
}

TEST(PublicationWizard, ABlockWithoutAuthorsStartsWithItsContactAndDeletingTheLastEmptiesIt) {
    Publ wizard("data_p\n_publ_contact_author_name 'Crystal, Ada'\n");
    auto* page = wizard.pageOf<QcbsWizardAuthorPage>();
    pagesAfterChoosing(wizard, Choice::PrivateCommunication);
    wizard.press(QWizard::BackButton);
    EXPECT_EQ(page->familyField()->text(), "Crystal");
    EXPECT_EQ(page->firstField()->text(), "Ada");
    wizard.press(QWizard::NextButton);
    EXPECT_EQ(value(wizard, "_publ_author_name"), "Crystal, Ada");

    wizard.press(QWizard::BackButton);
    page->deleteButton()->click();
    EXPECT_EQ(page->positionLabel()->text(), "Author 1 of 1");
    EXPECT_TRUE(page->familyField()->text().isEmpty());
    wizard.press(QWizard::NextButton);
    EXPECT_TRUE(wizard->workingBlock()->find("_publ_author_name").is_null());
}

TEST(PublicationWizard, EightPagesWithoutThePaperTitleAndANewBlockOnlyWhenSomethingWasWritten) {
    Publ wizard("data_p\n");
    const QList<int> ids = wizard->pageIds();
    ASSERT_EQ(ids.size(), 8);
    EXPECT_EQ(wizard->page(ids[2])->title(), "Contact Information...   (page 3 of 8)");
    EXPECT_EQ(wizard->page(ids[7])->title(), "Apply changes to CIF...   (page 8 of 8)");
    EXPECT_EQ(wizard.pageOf<QcbsWizardPaperTitlePage>(), nullptr);
    EXPECT_EQ(wizard->windowTitle(), "Tessary Publication Data Wizard");

    Publ fresh("data_first\n_cell_length_a 5\n", QcbsPublWizard::newBlock);
    EXPECT_EQ(fresh->workingBlock()->name(), "publication_text");
    fresh->button(QWizard::CancelButton)->click();
    EXPECT_TRUE(fresh.updates().isEmpty());

    Publ filled("data_first\n_cell_length_a 5\n", QcbsPublWizard::newBlock);
    filled.finish();
    ASSERT_EQ(filled.updates().size(), 1);
    EXPECT_TRUE(filled.updates()[0].startsWith("data_publication_text\n"))
        << filled.updates()[0].toStdString();
    EXPECT_FALSE(filled.updates()[0].contains("_cell_length_a")) << "a block of its own";
}

}  // namespace
