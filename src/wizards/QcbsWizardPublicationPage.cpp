// SPDX-License-Identifier: GPL-3.0-or-later
// The publication wizard's choice of what becomes of the structure: submitted, private, published.
#include "wizards/QcbsWizardPublicationPage.hpp"

#include <QButtonGroup>
#include <QGroupBox>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "wizards/QcbsWizard.hpp"

namespace {

bool unknown(const QString& value) { return value.trimmed().isEmpty() || value.trimmed() == "?"; }

}  // namespace

QcbsWizardPublicationPage::QcbsWizardPublicationPage(QPixmap* splash, QcbsWizard* wizard)
    : QcbsWizardPage(splash, wizard, "publication") {
    auto* box = new QGroupBox("This structure...", this);
    box->setObjectName("group");
    auto* rows = new QVBoxLayout(box);
    rows->setSpacing(8);
    group_ = new QButtonGroup(this);
    group_->setExclusive(true);
    const std::pair<Choice, const char*> choices[] = {
        {Submitted, "... is being submitted to a journal for publication."},
        {PrivateCommunication, "...is being submitted to the ORMA as a Private Communication."},
        {Published, "...has already been published."},
    };
    for (const auto& [id, text] : choices) {
        auto* radio = new QRadioButton(text, box);
        radio->setObjectName("choice " + QString::number(id));
        group_->addButton(radio, id);
        rows->addWidget(radio);
    }
    contentLayout()->addWidget(box);
    contentLayout()->addStretch(1);

    Choice initial = Submitted;
    if (const THandle<CifDataBlock>& block = wizard->workingBlock(); !block.is_null()) {
        if (!unknown(wizard->fromBlock(block->value("_journal_name_full"))))
            initial = Published;
        else if (wizard->fromBlock(block->value("_publ_requested_journal")).trimmed() ==
                 privateCommunication())
            initial = PrivateCommunication;
    }
    group_->button(initial)->setChecked(true);
}

void QcbsWizardPublicationPage::setFollowingPages(QWizardPage* requestedJournal, QWizardPage* reference) {
    requested_ = requestedJournal;
    reference_ = reference;
}

QcbsWizardPublicationPage::Choice QcbsWizardPublicationPage::choice() const {
    return Choice(group_->checkedId());
}

QRadioButton* QcbsWizardPublicationPage::button(Choice choice) const {
    return static_cast<QRadioButton*>(group_->button(choice));
}

void QcbsWizardPublicationPage::showPage() {
    group_->checkedButton()->setFocus();
    if (auto* nextButton = qobject_cast<QPushButton*>(wizard()->button(QWizard::NextButton)))
        nextButton->setDefault(true);
}

void QcbsWizardPublicationPage::next() {
    wizard()->setAppropriate(requested_, false);
    wizard()->setAppropriate(reference_, false);
    if (choice() == Submitted) {
        wizard()->setAppropriate(requested_, true);
    } else if (choice() == Published) {
        wizard()->setAppropriate(reference_, true);
    } else if (const THandle<CifDataBlock>& block = wizard()->workingBlock(); !block.is_null()) {
        // Written only when it changes: a value left as it was keeps its comment.
        if (wizard()->fromBlock(block->value("_publ_requested_journal")) != privateCommunication())
            wizard()->setValue("_publ_requested_journal", privateCommunication());
    }
}
