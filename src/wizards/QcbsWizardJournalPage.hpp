// SPDX-License-Identifier: GPL-3.0-or-later
// The publication wizard's page of the reference to the paper: journal, pages, volume, year.
#pragma once

#include "wizards/QcbsWizardFormPage.hpp"

// The publication wizard's page of the reference to the paper in which the
// structure appeared: journal name, first and last page, volume and year
// (_journal_year). The journal name offers the names of the journal table
// as it is typed. Next also writes the program's code of the journal
// (_orma_journal_coden) when the name is one of the table's; a name
// changed to one the table lacks sets a code it held to "?".
class QcbsWizardJournalPage : public QcbsWizardFormPage {
    Q_OBJECT
public:
    QcbsWizardJournalPage(QPixmap* splash, QcbsWizard* wizard);

    static QString heading() { return "Publication Information..."; }
    static const char* codeDataName() { return "_orma_journal_coden"; }

    void showPage() override;
    void next() override;

private:
    QString shownName_;
};
