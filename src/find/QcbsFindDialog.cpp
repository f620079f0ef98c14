// SPDX-License-Identifier: GPL-3.0-or-later
// The modeless "Find Text" dialog.
#include "find/QcbsFindDialog.hpp"

#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

QcbsFindDialog::QcbsFindDialog(QWidget* parent) : QcbsSearchDialog(parent) {
    setObjectName("FindDialog");
    setWindowTitle("Find Text");
    auto* label = new QLabel("&Find:", this);
    label->setBuddy(comboFind());
    buttonFind_ = new QPushButton("&Find", this);
    buttonFind_->setObjectName("buttonFind");
    buttonFind_->setDefault(true);
    auto* close = new QPushButton("Close", this);
    close->setObjectName("buttonClose");

    auto* grid = new QGridLayout(this);
    auto* findRow = new QHBoxLayout;
    findRow->addWidget(label);
    findRow->addWidget(comboFind(), 1);
    grid->addLayout(findRow, 0, 0, 1, 2);
    grid->addWidget(makeDirectionBox(), 1, 0);
    grid->addWidget(makeOptionsBox(), 1, 1);
    auto* buttons = new QVBoxLayout;
    buttons->addWidget(buttonFind_);
    buttons->addWidget(close);
    buttons->addStretch(1);
    grid->addLayout(buttons, 0, 2, 2, 1);

    connect(buttonFind_, &QPushButton::clicked, this, &QcbsFindDialog::doFind);
    connect(close, &QPushButton::clicked, this, &QDialog::close);
    loadSettings();
}
