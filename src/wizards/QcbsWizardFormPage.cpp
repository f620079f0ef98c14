// SPDX-License-Identifier: GPL-3.0-or-later
// A wizard page of labelled fields, each reading and writing one data item of the working block.
#include "wizards/QcbsWizardFormPage.hpp"

#include <QComboBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>

#include "views/QcbsDataItemHelpButton.hpp"
#include "wizards/QcbsWizard.hpp"

namespace {

// Selects the entry equal to the text ignoring case; a text not on the list
// is added and selected, so that the field shows what the block holds.
void selectEntry(QComboBox* box, const QString& text) {
    if (box->isEditable()) {
        box->setEditText(text);
        return;
    }
    for (int i = 0; i < box->count(); ++i)
        if (box->itemText(i).compare(text, Qt::CaseInsensitive) == 0) return box->setCurrentIndex(i);
    if (text.isEmpty()) return box->setCurrentIndex(0);
    box->addItem(text);
    box->setCurrentIndex(box->count() - 1);
}

}  // namespace

QcbsWizardFormPage::QcbsWizardFormPage(QPixmap* splash, QcbsWizard* wizard, const QString& name,
                                       const QString& group, std::vector<QcbsWizardField> fields,
                                       bool stripValues)
    : QcbsWizardPage(splash, wizard, name), fields_(std::move(fields)), strip_(stripValues) {
    QVBoxLayout* rows = contentLayout();
    if (!group.isEmpty()) {
        auto* box = new QGroupBox(group, this);
        box->setObjectName("group");
        rows = new QVBoxLayout(box);
        rows->setSpacing(8);
        contentLayout()->addWidget(box);
    }
    QList<QLabel*> labels;
    int labelWidth = 0;
    for (const QcbsWizardField& field : fields_) {
        auto* row = new QHBoxLayout;
        row->setSpacing(8);
        auto* label = new QLabel(field.label, this);
        label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        labelWidth = std::max(labelWidth, label->sizeHint().width());
        labels << label;
        QWidget* widget = nullptr;
        if (field.kind == QcbsWizardField::Line) {
            auto* edit = new QLineEdit(this);
            if (field.limited) edit->setMaxLength(wizard->maxFieldLength());
            widget = edit;
        } else if (field.kind == QcbsWizardField::Text) {
            auto* edit = new QPlainTextEdit(this);
            edit->setTabChangesFocus(true);
            edit->setFixedHeight(edit->fontMetrics().lineSpacing() * 4 + 12);
            widget = edit;
        } else {
            auto* box = new QComboBox(this);
            box->addItems(field.choices);
            box->setEditable(field.kind == QcbsWizardField::EditableChoice);
            if (box->isEditable()) {
                box->setDuplicatesEnabled(false);
                box->setInsertPolicy(QComboBox::InsertAtBottom);
            }
            widget = box;
        }
        widget->setObjectName(field.dataName);
        label->setBuddy(widget);
        auto* note = new QLabel(this);
        note->setObjectName("note " + field.dataName);
        note->setStyleSheet("color: #1f6f3f; font-style: italic;");
        note->hide();
        row->addWidget(label);
        row->addWidget(widget, 1);
        row->addWidget(note);
        if (field.help) {
            auto* help = new QcbsDataItemHelpButton(field.dataName, this);
            help->setFixedSize(help->sizeHint());
            row->addWidget(help);
        }
        rows->addLayout(row);
        widgets_ << widget;
        notes_ << note;
    }
    for (QLabel* label : labels) label->setMinimumWidth(labelWidth);
    message_ = new QLabel(this);
    message_->setObjectName("message");
    message_->setAlignment(Qt::AlignLeft | Qt::AlignBottom);
    contentLayout()->addWidget(message_, 1);
}

QWidget* QcbsWizardFormPage::field(const QString& dataName) const {
    const int index = indexOf(dataName);
    return index < 0 ? nullptr : widgets_[index];
}

QLineEdit* QcbsWizardFormPage::lineEdit(const QString& dataName) const {
    return qobject_cast<QLineEdit*>(field(dataName));
}

QComboBox* QcbsWizardFormPage::choice(const QString& dataName) const {
    return qobject_cast<QComboBox*>(field(dataName));
}

QLabel* QcbsWizardFormPage::note(const QString& dataName) const {
    const int index = indexOf(dataName);
    return index < 0 ? nullptr : notes_[index];
}

int QcbsWizardFormPage::indexOf(const QString& dataName) const {
    for (std::size_t i = 0; i < fields_.size(); ++i)
        if (fields_[i].dataName == dataName) return int(i);
    return -1;
}

std::string QcbsWizardFormPage::nameInBlock(const CifDataBlock& block, const QcbsWizardField& field) {
    if (!block.find(field.dataName.toStdString()).is_null()) return field.dataName.toStdString();
    for (const QString& other : field.alternatives)
        if (!block.find(other.toStdString()).is_null()) return other.toStdString();
    return field.dataName.toStdString();
}

QString QcbsWizardFormPage::fieldText(std::size_t index) const {
    if (auto* edit = qobject_cast<QLineEdit*>(widgets_[qsizetype(index)])) return edit->text();
    if (auto* text = qobject_cast<QPlainTextEdit*>(widgets_[qsizetype(index)])) return text->toPlainText();
    return static_cast<QComboBox*>(widgets_[qsizetype(index)])->currentText();
}

void QcbsWizardFormPage::setFieldText(std::size_t index, const QString& text) {
    if (auto* edit = qobject_cast<QLineEdit*>(widgets_[qsizetype(index)]))
        edit->setText(text);
    else if (auto* lines = qobject_cast<QPlainTextEdit*>(widgets_[qsizetype(index)]))
        lines->setPlainText(text);
    else
        selectEntry(static_cast<QComboBox*>(widgets_[qsizetype(index)]), text);
}

QcbsWizardFormPage::Derived QcbsWizardFormPage::derive(const QcbsWizardField&) const { return {}; }

void QcbsWizardFormPage::showPage() {
    if (!wizard()->workingBlock().is_null()) {
        readFields();
        deriveEmptyFields();
    }
    focusFirstField();
}

void QcbsWizardFormPage::readFields() {
    const THandle<CifDataBlock>& block = wizard()->workingBlock();
    if (block.is_null()) return;
    held_.clear();
    looped_.clear();
    for (std::size_t i = 0; i < fields_.size(); ++i) {
        const THandle<CifDataItem> item = block->find(nameInBlock(*block, fields_[i]));
        QString text = item.is_null() ? QString() : wizard()->fromBlock(item->value());
        if (strip_) text = text.trimmed();
        const bool looped = !item.is_null() && item->is_looped();
        setFieldText(i, text);
        held_ << !item.is_null();
        looped_ << looped;
        widgets_[qsizetype(i)]->setEnabled(!looped);
        widgets_[qsizetype(i)]->setToolTip(looped ? "A column of a loop: edit it in the text." : QString());
        notes_[qsizetype(i)]->hide();
    }
    noteShownTexts();
}

void QcbsWizardFormPage::noteShownTexts() {
    shown_.clear();
    for (std::size_t i = 0; i < fields_.size(); ++i) shown_ << fieldText(i);
}

bool QcbsWizardFormPage::isUnknown(const QString& text) {
    const QString value = text.trimmed();
    return value.isEmpty() || value == "?";
}

void QcbsWizardFormPage::deriveEmptyFields() {
    for (std::size_t i = 0; i < fields_.size(); ++i) {
        if (looped_.value(qsizetype(i)) || !isUnknown(fieldText(i))) continue;
        const Derived derived = derive(fields_[i]);
        if (derived.value.isEmpty()) continue;
        setFieldText(i, derived.value);
        showNote(i, derived.note);
    }
}

void QcbsWizardFormPage::showNote(std::size_t index, const QString& text) {
    notes_[qsizetype(index)]->setText(text);
    notes_[qsizetype(index)]->setVisible(!text.isEmpty());
}

void QcbsWizardFormPage::focusFirstField() {
    if (!widgets_.isEmpty()) widgets_.first()->setFocus();
    if (auto* nextButton = qobject_cast<QPushButton*>(wizard()->button(QWizard::NextButton)))
        nextButton->setDefault(true);
}

void QcbsWizardFormPage::next() {
    const THandle<CifDataBlock>& block = wizard()->workingBlock();
    if (block.is_null() || shown_.size() != qsizetype(fields_.size()) ||
        held_.size() != qsizetype(fields_.size()))
        return;
    for (std::size_t i = 0; i < fields_.size(); ++i) {
        const qsizetype at = qsizetype(i);
        // A value the user left alone stays byte for byte; a loop stays whole.
        if (looped_[at] || (held_[at] && fieldText(i) == shown_[at])) continue;
        // An empty field stands for a value not known.
        const QString text = fieldText(i).trimmed().isEmpty() ? QString("?") : fieldText(i);
        wizard()->setValue(nameInBlock(*block, fields_[i]), text);
    }
}
