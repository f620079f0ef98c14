// SPDX-License-Identifier: GPL-3.0-or-later
// The publication wizard: contact author, where the structure is published, reference, authors.
#include "wizards/QcbsPublWizard.hpp"

#include "wizards/QcbsWizardAuthorPage.hpp"
#include "wizards/QcbsWizardContactPage.hpp"
#include "wizards/QcbsWizardJournalPage.hpp"
#include "wizards/QcbsWizardPaperTitlePage.hpp"
#include "wizards/QcbsWizardPublicationPage.hpp"
#include "wizards/QcbsWizardRequestedJournalPage.hpp"

QcbsPublWizard::QcbsPublWizard(THandle<Cif> document, int blockIndex, THandle<CifDictionary> dictionary,
                               const CifWriteSettings& settings, QcbsContactAuthor userDetails,
                               QWidget* parent, const QString& name)
    : QcbsWizard(std::move(document), blockIndex, std::move(dictionary), settings, parent, name),
      userDetails_(std::move(userDetails)) {
    if (blockIndex == newBlock) startNewBlock(newBlockName().toStdString());
    setWindowTitle(caption());
    startPages(8);
    setupPages();
}

void QcbsPublWizard::setupPages() {
    setupIntroPage();
    setupErrorPage();
    setupContactPage();
    setupPublicationPage();
    setupRequestedJournalPage();
    setupJournalPage();
    setupAuthorPage();
    setupFinishPage();
    publication_->setFollowingPages(requested_, reference_);
}

void QcbsPublWizard::setupContactPage() {
    addWizardPage(new QcbsWizardContactPage(splashPixmap(), this, userDetails_),
                  QcbsWizardContactPage::heading(), true);
}

void QcbsPublWizard::setupPublicationPage() {
    publication_ = new QcbsWizardPublicationPage(splashPixmap(), this);
    addWizardPage(publication_, QcbsWizardPublicationPage::heading(), true);
}

void QcbsPublWizard::setupRequestedJournalPage() {
    requested_ = new QcbsWizardRequestedJournalPage(splashPixmap(), this);
    addWizardPage(requested_, QcbsWizardRequestedJournalPage::heading(), true);
}

void QcbsPublWizard::setupJournalPage() {
    reference_ = new QcbsWizardJournalPage(splashPixmap(), this);
    addWizardPage(reference_, QcbsWizardJournalPage::heading(), true);
}

void QcbsPublWizard::setupAuthorPage() {
    addWizardPage(new QcbsWizardAuthorPage(splashPixmap(), this), QcbsWizardAuthorPage::heading(), true);
}

void QcbsPublWizard::setupPaperTitlePage() {
    addWizardPage(new QcbsWizardPaperTitlePage(splashPixmap(), this), QcbsWizardPaperTitlePage::heading(),
                  true);
}
