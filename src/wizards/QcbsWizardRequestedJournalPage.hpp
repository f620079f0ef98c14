// SPDX-License-Identifier: GPL-3.0-or-later
// The publication wizard's page of the journal a structure is submitted to, chosen from a list.
#pragma once

#include "wizards/QcbsWizardFormPage.hpp"

class QcbsJournalListBox;

// The publication wizard's page of the journal a structure is submitted to
// and the manuscript's code. Typing into the journal field narrows the
// journal list below it; choosing a journal there fills the field. A
// stored "Private Communication" or "?" shows as an empty field; an empty
// field is written as "?".
class QcbsWizardRequestedJournalPage : public QcbsWizardFormPage {
    Q_OBJECT
public:
    QcbsWizardRequestedJournalPage(QPixmap* splash, QcbsWizard* wizard);

    static QString heading() { return "Publication Information..."; }

    QcbsJournalListBox* journalList() const { return journals_; }

    void showPage() override;

private:
    QcbsJournalListBox* journals_;
};
