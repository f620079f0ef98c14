// SPDX-License-Identifier: GPL-3.0-or-later
// What the find and replace dialogs share: the find text with its history, options and direction.
#include "find/QcbsSearchDialog.hpp"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLineEdit>
#include <QRadioButton>
#include <QVBoxLayout>

#include "base/ORMAApplicationSettings.hpp"
#include "editor/QcbsRichTextEdit.hpp"

std::function<QcbsRichTextEdit*()> QcbsSearchDialog::activeEditor_;
QPointer<QcbsSearchDialog> QcbsSearchDialog::lastUsed_;

QcbsSearchDialog::QcbsSearchDialog(QWidget* parent) : QDialog(parent) {
    setModal(false);
    comboFind_ = new QComboBox(this);
    comboFind_->setObjectName("comboFind");
    comboFind_->setEditable(true);
    comboFind_->setInsertPolicy(QComboBox::NoInsert);
    comboFind_->setMinimumContentsLength(24);
    comboFind_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
}

QcbsSearchDialog::~QcbsSearchDialog() {
    if (isVisible()) saveSettings();
}

QGroupBox* QcbsSearchDialog::makeDirectionBox() {
    auto* box = new QGroupBox("&Direction", this);
    auto* layout = new QVBoxLayout(box);
    radioForward_ = new QRadioButton("Forwar&d", box);
    radioForward_->setObjectName("radioForward");
    radioForward_->setChecked(true);
    radioBackward_ = new QRadioButton("&Backward", box);
    radioBackward_->setObjectName("radioBackward");
    layout->addWidget(radioForward_);
    layout->addWidget(radioBackward_);
    layout->addStretch(1);
    return box;
}

QGroupBox* QcbsSearchDialog::makeOptionsBox() {
    auto* box = new QGroupBox("&Options", this);
    auto* layout = new QVBoxLayout(box);
    checkWords_ = new QCheckBox("&Whole words only", box);
    checkWords_->setObjectName("checkWords");
    checkCase_ = new QCheckBox("&Case sensitive", box);
    checkCase_->setObjectName("checkCase");
    checkBegin_ = new QCheckBox("Start at &Beginning", box);
    checkBegin_->setObjectName("checkBegin");
    for (QCheckBox* check : {checkWords_, checkCase_, checkBegin_}) layout->addWidget(check);
    return box;
}

void QcbsSearchDialog::setEditor(QcbsRichTextEdit* editor) { editor_ = editor; }

void QcbsSearchDialog::setActiveEditorSource(std::function<QcbsRichTextEdit*()> source) {
    activeEditor_ = std::move(source);
}

QcbsRichTextEdit* QcbsSearchDialog::targetEditor() const {
    if (activeEditor_)
        if (QcbsRichTextEdit* editor = activeEditor_()) return editor;
    return editor_;
}

QcbsSearchOptions QcbsSearchDialog::options() const {
    return {comboFind_->currentText(), checkCase_->isChecked(), checkWords_->isChecked(),
            radioForward_->isChecked()};
}

void QcbsSearchDialog::storeText(QComboBox* combo, const QString& text) {
    // Taking items out must not change the text being edited.
    const QString edited = combo->currentText();
    if (combo->count() >= max_store_) combo->removeItem(max_store_ - 1);
    if (combo->count() == 0 || combo->itemText(0) != text) combo->insertItem(0, text);
    combo->setCurrentIndex(-1);
    combo->setEditText(edited);
}

void QcbsSearchDialog::fail() {
    QApplication::beep();
    emit failed();
}

bool QcbsSearchDialog::doFind() {
    const QString text = comboFind_->currentText();
    if (text.isEmpty()) return false;
    storeText(comboFind_, text);
    return search(radioForward_->isChecked());
}

bool QcbsSearchDialog::findAgain(bool forward) {
    if (comboFind_->currentText().isEmpty()) return false;
    return search(forward);
}

bool QcbsSearchDialog::search(bool forward) {
    lastUsed_ = this;
    QcbsRichTextEdit* editor = targetEditor();
    if (editor == nullptr) {
        fail();
        return false;
    }
    QcbsSearchOptions request = options();
    request.forward = forward;
    const int from = QcbsTextSearch::searchStart(*editor, forward, checkBegin_->isChecked());
    const bool found = QcbsTextSearch::findInEditor(*editor, request, from);
    checkBegin_->setChecked(!found);
    if (!found) fail();
    return found;
}

void QcbsSearchDialog::loadHistory(ORMAApplicationSettings& settings, const QString& key, QComboBox* combo) {
    combo->clear();
    for (const QString& entry : settings.entryList(key)) {
        const QString value = settings.readEntry(key + entry);
        if (!value.isEmpty() && combo->count() < max_store_) combo->addItem(value);
    }
    combo->setEditText(QString());
}

void QcbsSearchDialog::saveHistory(ORMAApplicationSettings& settings, const QString& key,
                                   const QComboBox* combo) {
    // Every slot is written, so that entries of a longer list saved before are emptied.
    for (int i = 0; i < max_store_; ++i)
        settings.writeEntry(key + QString::number(i), i < combo->count() ? combo->itemText(i) : QString());
}

void QcbsSearchDialog::loadSettings() {
    ORMAApplicationSettings settings;
    loadHistory(settings, "find recent/", comboFind_);
    checkCase_->setChecked(settings.readBoolEntry("find/checkcase", false));
    checkWords_->setChecked(settings.readBoolEntry("find/checkwords", false));
    const bool forward = settings.readBoolEntry("find/radioForward", true);
    (forward ? radioForward_ : radioBackward_)->setChecked(true);
    loadExtraSettings(settings);
}

void QcbsSearchDialog::saveSettings() {
    ORMAApplicationSettings settings;
    saveHistory(settings, "find recent/", comboFind_);
    settings.writeEntry("find/checkcase", checkCase_->isChecked());
    settings.writeEntry("find/checkwords", checkWords_->isChecked());
    settings.writeEntry("find/radioForward", radioForward_->isChecked());
    saveExtraSettings(settings);
}

void QcbsSearchDialog::reject() {
    saveSettings();
    QDialog::reject();
}
