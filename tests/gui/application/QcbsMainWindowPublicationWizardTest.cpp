// SPDX-License-Identifier: GPL-3.0-or-later
// The publication wizard opened from a main window: its block, a new block or a new document.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTemporaryDir>

#include "ApplicationTestSupport.hpp"
#include "GuiTestSupport.hpp"
#include "editor/QcbsRichTextEdit.hpp"
#include "wizards/QcbsPublWizard.hpp"
#include "wizards/QcbsWizardContactPage.hpp"
#include "wizards/QcbsWizardPublicationPage.hpp"

namespace {

const QByteArray kTwoBlocks =
    "# keep this header\n"                       // 1
    "\n"                                         // 2
    "data_first\n"                               // 3
    "_cell_length_a   5.0   # first cell\n"      // 4
    "data_paper\n"                               // 5
    "_publ_requested_journal 'Acta Cryst. C'\n"  // 6
    "_journal_name_full ?\n";                    // 7

class MainWindowPublicationWizard : public ::testing::Test, protected WizardWindow {
protected:
    void open(const QByteArray& text) { openText(text, "paper.cif"); }
    QcbsWizard* launchAt(int line) { return WizardWindow::launch(&QcbsMainWindow::publicationWizard, line); }
    QcbsWizard* launch() { return WizardWindow::launch(&QcbsMainWindow::publicationWizard); }
    // Chooses a private communication and finishes.
    static void finishAsPrivate(QcbsWizard* wizard) {
        while (qobject_cast<QcbsWizardPublicationPage*>(wizard->currentPage()) == nullptr)
            wizard->button(QWizard::NextButton)->click();
        static_cast<QcbsWizardPublicationPage*>(wizard->currentPage())
            ->button(QcbsWizardPublicationPage::PrivateCommunication)
            ->click();
        finish(wizard);
    }
};

TEST_F(MainWindowPublicationWizard, TheBlockAtTheCursorIsReplacedAsOneUndoStep) {
    open(kTwoBlocks);
    QPointer<QcbsWizard> wizard = launchAt(6);
    ASSERT_NE(wizard, nullptr);
    EXPECT_TRUE(wizard->isModal());
    EXPECT_EQ(wizard->workingBlock()->name(), "paper");
    finishAsPrivate(wizard);
    ASSERT_TRUE(waitUntil([&] { return wizard.isNull(); }));

    const QString edited = text();
    const QString before = QString::fromUtf8(kTwoBlocks);
    const qsizetype start = before.indexOf("data_paper");
    EXPECT_EQ(edited.left(start), before.left(start)) << "the first block is untouched";
    EXPECT_TRUE(edited.contains("'Private Communication'")) << edited.toStdString();
    EXPECT_EQ(window_->currentCif()->block(1)->value("_publ_requested_journal"), "Private Communication");
    window_->editUndo();
    EXPECT_EQ(text().toUtf8(), kTwoBlocks);
}

TEST_F(MainWindowPublicationWizard, OutsideEveryBlockANewBlockGoesBeforeTheFirstAsOneUndoStep) {
    open(kTwoBlocks);
    QPointer<QcbsWizard> wizard = launchAt(1);  // the header comment
    ASSERT_NE(wizard, nullptr);
    EXPECT_EQ(wizard->workingBlock()->name(), "publication_text");
    finishAsPrivate(wizard);
    ASSERT_TRUE(waitUntil([&] { return wizard.isNull(); }));

    const QString edited = text();
    const qsizetype added = edited.indexOf("data_publication_text");
    ASSERT_GE(added, 0) << edited.toStdString();
    EXPECT_LT(added, edited.indexOf("data_first"));
    EXPECT_TRUE(edited.endsWith(QString::fromUtf8(kTwoBlocks).mid(kTwoBlocks.indexOf("data_first"))))
        << "the blocks that were there stay as they were";
    ASSERT_EQ(window_->currentCif()->block_count(), 3u);
    EXPECT_EQ(window_->currentCif()->block(0)->value("_publ_requested_journal"), "Private Communication");
    window_->editUndo();
    EXPECT_EQ(text().toUtf8(), kTwoBlocks);
}

TEST_F(MainWindowPublicationWizard, AWindowWithoutADocumentStartsOneForTheNewBlock) {
    ASSERT_FALSE(window_->document()->isOpen());
    QPointer<QcbsWizard> wizard = launch();
    ASSERT_NE(wizard, nullptr);
    EXPECT_TRUE(window_->document()->isOpen());
    EXPECT_TRUE(window_->document()->isUntitled());
    EXPECT_EQ(wizard->workingBlock()->name(), "publication_text");
    finishAsPrivate(wizard);
    ASSERT_TRUE(waitUntil([&] { return wizard.isNull(); }));
    EXPECT_TRUE(text().startsWith("data_publication_text\n")) << text().toStdString();
    EXPECT_EQ(window_->currentCif()->block_count(), 1u);
}

TEST_F(MainWindowPublicationWizard, TheContactPageOffersTheDetailsFromThePreferences) {
    changeOptions(*window_, [](QcbsOptions& options) {
        options.contact_author.name = "Dr Ada Crystal";
        options.contact_author.email = "ada@example.org";
    });
    open(kTwoBlocks);
    QPointer<QcbsWizard> wizard = launchAt(6);
    ASSERT_NE(wizard, nullptr);
    QcbsWizardContactPage* contact = nullptr;
    for (int id : wizard->pageIds())
        if (auto* page = qobject_cast<QcbsWizardContactPage*>(wizard->page(id))) contact = page;
    ASSERT_NE(contact, nullptr);
    while (wizard->currentPage() != contact) wizard->button(QWizard::NextButton)->click();
    EXPECT_TRUE(contact->offerButton()->isVisible());
    EXPECT_TRUE(contact->offerButton()->text().contains("Dr Ada Crystal"));
    wizard->button(QWizard::CancelButton)->click();
    ASSERT_TRUE(waitUntil([&] { return wizard.isNull(); }));
    EXPECT_EQ(text().toUtf8(), kTwoBlocks);
}

}  // namespace
