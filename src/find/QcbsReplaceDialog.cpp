// SPDX-License-Identifier: GPL-3.0-or-later
// The modeless "Replace Text" dialog.
#include "find/QcbsReplaceDialog.hpp"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "editor/QcbsRichTextEdit.hpp"

QcbsReplaceDialog::QcbsReplaceDialog(QWidget* parent) : QcbsSearchDialog(parent) {
    setObjectName("ReplaceDialog");
    setWindowTitle("Replace Text");
    comboReplace_ = new QComboBox(this);
    comboReplace_->setObjectName("comboReplace");
    comboReplace_->setEditable(true);
    comboReplace_->setInsertPolicy(QComboBox::NoInsert);
    comboReplace_->setMinimumContentsLength(24);
    comboReplace_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    auto* findLabel = new QLabel("&Find", this);
    findLabel->setBuddy(comboFind());
    auto* replaceLabel = new QLabel("&Replace", this);
    replaceLabel->setBuddy(comboReplace_);

    buttonFindNext_ = new QPushButton("&Find Next", this);
    buttonFindNext_->setObjectName("buttonFindNext");
    buttonFindNext_->setDefault(true);
    buttonReplace_ = new QPushButton("&Replace", this);
    buttonReplace_->setObjectName("buttonReplace");
    buttonReplaceAll_ = new QPushButton("Replace &All", this);
    buttonReplaceAll_->setObjectName("buttonReplaceAll");
    auto* close = new QPushButton("Close", this);
    close->setObjectName("buttonClose");

    auto* grid = new QGridLayout(this);
    grid->addWidget(findLabel, 0, 0);
    grid->addWidget(comboFind(), 0, 1, 1, 2);
    grid->addWidget(replaceLabel, 1, 0);
    grid->addWidget(comboReplace_, 1, 1, 1, 2);
    grid->addWidget(makeDirectionBox(), 2, 0, 1, 2);
    grid->addWidget(makeOptionsBox(), 2, 2);
    auto* buttons = new QVBoxLayout;
    for (QPushButton* button : {buttonFindNext_, buttonReplace_, buttonReplaceAll_, close})
        buttons->addWidget(button);
    buttons->addStretch(1);
    grid->addLayout(buttons, 0, 3, 3, 1);

    connect(buttonFindNext_, &QPushButton::clicked, this, &QcbsReplaceDialog::doFind);
    connect(buttonReplace_, &QPushButton::clicked, this, &QcbsReplaceDialog::doReplace);
    connect(buttonReplaceAll_, &QPushButton::clicked, this, &QcbsReplaceDialog::doReplaceAll);
    connect(close, &QPushButton::clicked, this, &QDialog::close);
    loadSettings();
}

void QcbsReplaceDialog::storeLists() {
    if (!comboFind()->currentText().isEmpty()) storeText(comboFind(), comboFind()->currentText());
    if (!comboReplace_->currentText().isEmpty()) storeText(comboReplace_, comboReplace_->currentText());
}

bool QcbsReplaceDialog::doReplace() {
    QcbsRichTextEdit* editor = targetEditor();
    if (editor == nullptr) return false;
    storeLists();
    QString selected = editor->selectedText();
    QString wanted = comboFind()->currentText();
    if (!checkCase()->isChecked()) {
        selected = selected.toLower();
        wanted = wanted.toLower();
    }
    if (wanted.isEmpty() || selected != wanted) return doFind();
    if (editor->isReadOnly() || editor->isLoading()) {
        fail();
        return false;
    }
    editor->insertPlainText(comboReplace_->currentText());
    return true;
}

bool QcbsReplaceDialog::doReplaceAll() {
    QcbsRichTextEdit* editor = targetEditor();
    if (editor == nullptr) return false;
    storeLists();
    const QString pattern = comboFind()->currentText();
    const bool caseSensitive = checkCase()->isChecked();
    const QcbsSearchOptions plain{pattern, caseSensitive, false, true};
    if (pattern.isEmpty() || editor->isReadOnly() || QcbsTextSearch::locate(*editor, plain, 0).first < 0 ||
        QcbsTextSearch::replaceAll(*editor, pattern, comboReplace_->currentText(), caseSensitive) <= 0) {
        fail();
        return false;
    }
    return true;
}

void QcbsReplaceDialog::loadExtraSettings(ORMAApplicationSettings& settings) {
    loadHistory(settings, "replace recent/", comboReplace_);
}

void QcbsReplaceDialog::saveExtraSettings(ORMAApplicationSettings& settings) {
    saveHistory(settings, "replace recent/", comboReplace_);
}
