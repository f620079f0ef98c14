// SPDX-License-Identifier: GPL-3.0-or-later
// The crystal and chemical data wizard: chemistry, experiment, symmetry, diffraction of a block.
#include "wizards/QcbsDataWizard.hpp"

#include "wizards/QcbsWizardAbsoluteStructurePage.hpp"
#include "wizards/QcbsWizardChemicalPage.hpp"
#include "wizards/QcbsWizardDiffractionPage.hpp"
#include "wizards/QcbsWizardExperimentalPage.hpp"
#include "wizards/QcbsWizardSpaceGroupPage.hpp"

QcbsDataWizard::QcbsDataWizard(THandle<Cif> document, int blockIndex, THandle<CifDictionary> dictionary,
                               const CifWriteSettings& settings, QWidget* parent, const QString& name)
    : QcbsWizard(std::move(document), blockIndex, std::move(dictionary), settings, parent, name) {
    setWindowTitle(caption());
    startPages(7);
    setupPages();
}

void QcbsDataWizard::setupPages() {
    setupIntroPage();
    setupErrorPage();
    setupChemicalPage();
    setupExperimentalPage();
    setupSpaceGroupPage();
    setupDiffractionPage();
    setupFinishPage();
}

void QcbsDataWizard::setupChemicalPage() {
    addWizardPage(new QcbsWizardChemicalPage(splashPixmap(), this), QcbsWizardChemicalPage::heading(), true);
}

void QcbsDataWizard::setupExperimentalPage() {
    addWizardPage(new QcbsWizardExperimentalPage(splashPixmap(), this), QcbsWizardExperimentalPage::heading(),
                  true);
}

void QcbsDataWizard::setupSpaceGroupPage() {
    addWizardPage(new QcbsWizardSpaceGroupPage(splashPixmap(), this), QcbsWizardSpaceGroupPage::heading(),
                  true);
}

void QcbsDataWizard::setupDiffractionPage() {
    addWizardPage(new QcbsWizardDiffractionPage(splashPixmap(), this), QcbsWizardDiffractionPage::heading(),
                  true);
}

void QcbsDataWizard::setupAbsoluteStructurePage() {
    addWizardPage(new QcbsWizardAbsoluteStructurePage(splashPixmap(), this),
                  QcbsWizardAbsoluteStructurePage::heading(), true);
}
