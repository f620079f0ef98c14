// SPDX-License-Identifier: GPL-3.0-or-later
// A file name in the preferences: typed or chosen, and refused with a reason when unusable.
#include "preferences/QcbsFileField.hpp"

#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "preferences/QcbsPreferencesPage.hpp"

QcbsFileField::QcbsFileField(const QString& name, const QString& caption, const QString& filter,
                             QWidget* parent)
    : QWidget(parent), caption_(caption), filter_(filter) {
    setObjectName(name + " field");
    edit_ = new QLineEdit(this);
    edit_->setObjectName(name);
    edit_->setClearButtonEnabled(true);
    choose_ = new QPushButton("C&hoose...", this);
    choose_->setObjectName(name + " choose");
    reason_ = QcbsPreferencesPage::makeReasonLabel(name, this);

    auto* row = new QHBoxLayout;
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(edit_, 1);
    row->addWidget(choose_);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(2);
    column->addLayout(row);
    column->addWidget(reason_);

    connect(choose_, &QPushButton::clicked, this, &QcbsFileField::choose);
    connect(edit_, &QLineEdit::textChanged, this, [this](const QString& text) {
        setReason(QString());
        emit fileNameChanged(text);
    });
}

QString QcbsFileField::fileName() const { return edit_->text().trimmed(); }

void QcbsFileField::setFileName(const QString& name) { edit_->setText(name); }

QString QcbsFileField::problemWith(const QString& name) {
    const QFileInfo file(name);
    if (!file.exists()) return "There is no file " + name + ".";
    if (file.isDir()) return name + " is a directory, not a file.";
    if (!file.isReadable()) return "The file " + name + " cannot be read.";
    return QString();
}

bool QcbsFileField::check(bool required, const QString& whyRequired) {
    const QString name = fileName();
    const QString problem = name.isEmpty() ? (required ? whyRequired : QString()) : problemWith(name);
    setReason(problem);
    return problem.isEmpty();
}

void QcbsFileField::setReason(const QString& reason) { QcbsPreferencesPage::setReason(reason_, reason); }

void QcbsFileField::choose() {
    const QString current = fileName();
    QFileDialog dialog(this, caption_, current.isEmpty() ? QString() : QFileInfo(current).absolutePath(),
                       filter_);
    dialog.setObjectName("choosefiledialog");
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setFileMode(QFileDialog::ExistingFile);
    if (!current.isEmpty()) dialog.selectFile(current);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return;
    setFileName(dialog.selectedFiles().first());
}
