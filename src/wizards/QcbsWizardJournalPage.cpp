// SPDX-License-Identifier: GPL-3.0-or-later
// The publication wizard's page of the reference to the paper: journal, pages, volume, year.
#include "wizards/QcbsWizardJournalPage.hpp"

#include <QCompleter>
#include <QLineEdit>

#include "cif/Journal.hpp"
#include "wizards/QcbsJournalListBox.hpp"
#include "wizards/QcbsWizard.hpp"

namespace {

const char* const kName = "_journal_name_full";

std::vector<QcbsWizardField> pageFields() {
    using F = QcbsWizardField;
    return {
        // Journal names run past the usual field length.
        {"Journal name :", kName, F::Line, false, true},
        {"First Page :", "_journal_page_first", F::Line, true, true},
        {"Last Page :", "_journal_page_last", F::Line, true, true},
        {"Volume :", "_journal_volume", F::Line, true, true},
        {"Year :", "_journal_year", F::Line, true, true},
    };
}

QStringList journalNames() {
    QStringList names;
    for (int i = 0; i < Journal::count(); ++i) {
        const std::string_view name = Journal(i).name();
        names << QString::fromUtf8(name.data(), qsizetype(name.size()));
    }
    return names;
}

}  // namespace

QcbsWizardJournalPage::QcbsWizardJournalPage(QPixmap* splash, QcbsWizard* wizard)
    : QcbsWizardFormPage(splash, wizard, "journal",
                         "Enter the reference to the paper in which this structure appears", pageFields(),
                         true) {
    auto* completer = new QCompleter(journalNames(), this);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    completer->setFilterMode(Qt::MatchContains);
    lineEdit(kName)->setCompleter(completer);
}

void QcbsWizardJournalPage::showPage() {
    QcbsWizardFormPage::showPage();
    shownName_ = lineEdit(kName)->text();
}

void QcbsWizardJournalPage::next() {
    QcbsWizardFormPage::next();
    const THandle<CifDataBlock>& block = wizard()->workingBlock();
    if (block.is_null()) return;
    const QString name = lineEdit(kName)->text();
    const QString code = QcbsJournalListBox::orma_coden(name);
    const QString held = wizard()->fromBlock(block->value(codeDataName()));
    if (!code.isEmpty()) {
        if (held != code) wizard()->setValue(codeDataName(), code);
    } else if (name != shownName_ && !block->find(codeDataName()).is_null() && held != "?") {
        // The code of the journal named before no longer applies.
        wizard()->setValue(codeDataName(), "?");
    }
}
