// SPDX-License-Identifier: GPL-3.0-or-later
// The publication wizard: contact author, where the structure is published, reference, authors.
#pragma once

#include "base/QcbsContactAuthor.hpp"
#include "wizards/QcbsWizard.hpp"

class QcbsWizardJournalPage;
class QcbsWizardPublicationPage;
class QcbsWizardRequestedJournalPage;

// The publication wizard: eight pages (welcome, syntax check, contact
// author, publication, requested journal, reference, authors, finish) over
// the publication data items of one block. The requested-journal and
// reference pages are shown or skipped by the choice on the publication
// page. Opened with newBlock for the block index, the wizard works on a
// new block "data_publication_text", whose text the opener adds to the
// document. The user's own contact details (from the preferences) are
// offered on the contact page while its fields are empty.
class QcbsPublWizard : public QcbsWizard {
    Q_OBJECT
public:
    static constexpr int newBlock = -1;

    QcbsPublWizard(THandle<Cif> document, int blockIndex, THandle<CifDictionary> dictionary,
                   const CifWriteSettings& settings, QcbsContactAuthor userDetails = {},
                   QWidget* parent = nullptr, const QString& name = "Publication Data Wizard");

    static QString caption() { return "Tessary Publication Data Wizard"; }
    static QString newBlockName() { return "data_publication_text"; }

protected:
    void setupPages() override;
    void setupContactPage();
    void setupPublicationPage();
    void setupRequestedJournalPage();
    void setupJournalPage();
    void setupAuthorPage();
    // The paper-title page is built but not part of the wizard.
    void setupPaperTitlePage();

private:
    QcbsContactAuthor userDetails_;
    QcbsWizardPublicationPage* publication_ = nullptr;
    QcbsWizardRequestedJournalPage* requested_ = nullptr;
    QcbsWizardJournalPage* reference_ = nullptr;
};
