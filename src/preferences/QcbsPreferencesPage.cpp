// SPDX-License-Identifier: GPL-3.0-or-later
// One page of the preferences dialog: shows options, takes them back, refuses bad input.
#include "preferences/QcbsPreferencesPage.hpp"

#include <QCheckBox>
#include <QLabel>

QcbsPreferencesPage::QcbsPreferencesPage(const QString& title, QWidget* parent)
    : QWidget(parent), title_(title) {
    setObjectName(title);
}

void QcbsPreferencesPage::showOptions(const QcbsOptions& options) {
    for (const auto& [box, option] : switches_) box->setChecked(options.*option);
}

void QcbsPreferencesPage::storeOptions(QcbsOptions& options) const {
    for (const auto& [box, option] : switches_) options.*option = box->isChecked();
}

QCheckBox* QcbsPreferencesPage::addSwitch(const QcbsOptionSwitch& row, QWidget* parent) {
    auto* box = new QCheckBox(QString::fromUtf8(row.label), parent);
    box->setObjectName(row.key);
    if (row.tip != nullptr && *row.tip != '\0') box->setToolTip(QString::fromUtf8(row.tip));
    switches_ << std::pair{box, row.option};
    return box;
}

QLabel* QcbsPreferencesPage::makeReasonLabel(const QString& fieldName, QWidget* parent) {
    auto* label = new QLabel(parent);
    label->setObjectName(reasonName(fieldName));
    label->setWordWrap(true);
    label->setStyleSheet("color: #b00000;");
    label->hide();
    return label;
}

void QcbsPreferencesPage::setReason(QLabel* label, const QString& reason) {
    label->setText(reason);
    label->setVisible(!reason.isEmpty());
}
