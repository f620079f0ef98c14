// SPDX-License-Identifier: GPL-3.0-or-later
// One page of a wizard: the side picture on the left, the page's content on the right.
#include "wizards/QcbsWizardPage.hpp"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include "wizards/QcbsWizard.hpp"

QcbsWizardPage::QcbsWizardPage(QPixmap* splash, QcbsWizard* wizard, const QString& name)
    : QWizardPage(wizard), wizard_(wizard), splash_(splash) {
    setObjectName(name);
    auto* row = new QHBoxLayout(this);
    row->setSpacing(8);
    auto* picture = new QLabel(this);
    picture->setObjectName("splash");
    if (splash_ != nullptr) picture->setPixmap(*splash_);
    picture->setAlignment(Qt::AlignTop);
    row->addWidget(picture, 0, Qt::AlignTop);
    content_ = new QVBoxLayout;
    content_->setSpacing(8);
    row->addLayout(content_, 1);
}

void QcbsWizardPage::showPage() {}

void QcbsWizardPage::setNextEnabled(bool enabled) {
    if (enabled == nextEnabled_) return;
    nextEnabled_ = enabled;
    emit completeChanged();
}
