// SPDX-License-Identifier: GPL-3.0-or-later
// The publication wizard's page of the journal a structure is submitted to, chosen from a list.
#include "wizards/QcbsWizardRequestedJournalPage.hpp"

#include <QGroupBox>
#include <QLineEdit>
#include <QVBoxLayout>

#include "wizards/QcbsJournalListBox.hpp"
#include "wizards/QcbsWizardPublicationPage.hpp"

namespace {

const char* const kJournal = "_publ_requested_journal";

std::vector<QcbsWizardField> pageFields() {
    using F = QcbsWizardField;
    return {
        // Journal names run past the usual field length.
        {"Requested journal name :", kJournal, F::Line, false, true},
        // The program's own item: no dictionary defines it.
        {"Journal manuscript code (if known) :", "_orma_journal_manuscript_code", F::Line, true, false},
    };
}

}  // namespace

QcbsWizardRequestedJournalPage::QcbsWizardRequestedJournalPage(QPixmap* splash, QcbsWizard* wizard)
    : QcbsWizardFormPage(splash, wizard, "requested journal",
                         "Enter the name of the journal to which this structure will be submitted",
                         pageFields(), true) {
    journals_ = new QcbsJournalListBox(this);
    // Under the journal's row, above the manuscript code's.
    if (auto* rows = qobject_cast<QVBoxLayout*>(findChild<QGroupBox*>("group")->layout()))
        rows->insertWidget(1, journals_, 1);
    QLineEdit* journal = lineEdit(kJournal);
    connect(journal, &QLineEdit::textChanged, journals_, &QcbsJournalListBox::updateJournalList);
    connect(journals_, &QcbsJournalListBox::selected, journal, [journal](const QString& name) {
        journal->setText(name);
        journal->home(false);  // the name's beginning in view
    });
}

void QcbsWizardRequestedJournalPage::showPage() {
    QcbsWizardFormPage::showPage();
    QLineEdit* journal = lineEdit(kJournal);
    const QString stored = journal->text().trimmed();
    if (stored == "?") {
        // An empty field stands for "?": left empty, nothing changes.
        journal->clear();
        noteShownTexts();
    } else if (stored == QcbsWizardPublicationPage::privateCommunication()) {
        // The user chose a submission: the journal is still to be named.
        journal->clear();
    }
}
