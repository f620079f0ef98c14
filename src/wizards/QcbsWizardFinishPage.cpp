// SPDX-License-Identifier: GPL-3.0-or-later
// A wizard's last page: Finish applies the changes, Cancel abandons them, Back reviews them.
#include "wizards/QcbsWizardFinishPage.hpp"

#include <QAbstractButton>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "wizards/QcbsWizard.hpp"

QcbsWizardFinishPage::QcbsWizardFinishPage(QPixmap* splash, QcbsWizard* wizard)
    : QcbsWizardPage(splash, wizard, "finish") {
    auto* text = new QLabel(
        "Click 'Finish' to apply changes to cif, \n'Cancel' to abandon changes, \nor 'Back' to review data.",
        this);
    text->setObjectName("instruction");
    text->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    contentLayout()->addWidget(text, 1);
}

void QcbsWizardFinishPage::showPage() {
    setNextEnabled(true);
    if (auto* finish = qobject_cast<QPushButton*>(wizard()->button(QWizard::FinishButton)))
        finish->setDefault(true);
}
