// SPDX-License-Identifier: GPL-3.0-or-later
// The publication wizard's choice of what becomes of the structure: submitted, private, published.
#pragma once

#include "wizards/QcbsWizardPage.hpp"

class QButtonGroup;
class QRadioButton;
class QWizardPage;

// The publication wizard's choice of what becomes of the structure:
// (1) it is being submitted to a journal, (2) it is a private
// communication, (3) it has been published. A block that names the
// journal it appeared in (_journal_name_full neither empty nor "?") starts
// at choice 3, one whose requested journal is "Private Communication" at
// choice 2, any other at choice 1. Next shows the requested-journal page
// for a submission, the reference page for a published structure, and
// neither for a private communication, which it writes into
// _publ_requested_journal.
class QcbsWizardPublicationPage : public QcbsWizardPage {
    Q_OBJECT
public:
    enum Choice { Submitted = 1, PrivateCommunication = 2, Published = 3 };

    QcbsWizardPublicationPage(QPixmap* splash, QcbsWizard* wizard);

    static QString heading() { return "Publication Information..."; }
    static QString privateCommunication() { return "Private Communication"; }

    // The pages shown for a submission and for a published structure.
    void setFollowingPages(QWizardPage* requestedJournal, QWizardPage* reference);

    Choice choice() const;
    QRadioButton* button(Choice choice) const;

    void showPage() override;
    void next() override;

private:
    QButtonGroup* group_;
    QWizardPage* requested_ = nullptr;
    QWizardPage* reference_ = nullptr;
};
