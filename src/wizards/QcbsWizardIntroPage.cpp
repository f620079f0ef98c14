// SPDX-License-Identifier: GPL-3.0-or-later
// A wizard's welcome page: what the wizard does, and a file to work on when it has no document.
#include "wizards/QcbsWizardIntroPage.hpp"

#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "wizards/QcbsWizard.hpp"

QcbsWizardIntroPage::QcbsWizardIntroPage(QPixmap* splash, QcbsWizard* wizard,
                                         THandle<CifDictionary> dictionary)
    : QcbsWizardPage(splash, wizard, "intro"), dictionary_(std::move(dictionary)) {
    auto* welcome = new QLabel(QString("Welcome to the Tessary data wizard!\n\n") +
                                   "The wizard will guide you through the steps required to\n" +
                                   "ensure that this CIF block includes the correct information.\n\n" +
                                   "Click 'Next' to continue.",
                               this);
    welcome->setObjectName("welcome");
    welcome->setTextFormat(Qt::PlainText);
    contentLayout()->addWidget(welcome);

    fileRow_ = new QWidget(this);
    fileRow_->setObjectName("file row");
    auto* row = new QHBoxLayout(fileRow_);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(8);
    auto* label = new QLabel("Filename :", fileRow_);
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    label->setFixedSize(label->sizeHint());
    file_ = new QLineEdit(fileRow_);
    file_->setObjectName("file");
    file_->setMinimumWidth(3 * label->width());
    auto* browse = new QPushButton("Browse...", fileRow_);
    browse->setObjectName("browse");
    row->addWidget(label);
    row->addWidget(file_, 1);
    row->addWidget(browse);
    contentLayout()->addWidget(fileRow_);
    contentLayout()->addStretch(1);
    fileRow_->setVisible(wizard->document().is_null());

    connect(browse, &QPushButton::clicked, this, &QcbsWizardIntroPage::filebrowse);
    connect(file_, &QLineEdit::textChanged, this, &QcbsWizardIntroPage::filechanged);
}

void QcbsWizardIntroPage::showPage() {
    if (!file_->text().isEmpty() && QFileInfo::exists(file_->text())) setNextEnabled(true);
}

void QcbsWizardIntroPage::filebrowse() {
    const QString name =
        QFileDialog::getOpenFileName(this, QString(), QString(), "CIF files only (*.cif);;All files (*.*)");
    if (!name.isEmpty()) file_->setText(name);
}

void QcbsWizardIntroPage::filechanged(const QString& text) { setNextEnabled(!text.isEmpty()); }
