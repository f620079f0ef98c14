// SPDX-License-Identifier: GPL-3.0-or-later
// The publication wizard's page of the contact author: name, email, address, telephone, fax.
#include "wizards/QcbsWizardContactPage.hpp"

#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "wizards/QcbsWizard.hpp"

namespace {

const char* const kName = "_publ_contact_author_name";
const char* const kEmail = "_publ_contact_author_email";
const char* const kAddress = "_publ_contact_author_address";
const char* const kPhone = "_publ_contact_author_phone";
const char* const kFax = "_publ_contact_author_fax";
const char* const kOlder = "_publ_contact_author";

std::vector<QcbsWizardField> contactFields() {
    using F = QcbsWizardField;
    return {
        {"Contact author :", kName, F::Line, true, true},
        {"Email address :", kEmail, F::Line, true, true},
        {"Contact address :", kAddress, F::Text, false, true},
        {"Telephone number :", kPhone, F::Line, true, true},
        {"Fax number :", kFax, F::Line, true, true},
    };
}

}  // namespace

QcbsWizardContactPage::QcbsWizardContactPage(QPixmap* splash, QcbsWizard* wizard,
                                             QcbsContactAuthor userDetails)
    : QcbsWizardFormPage(splash, wizard, "contact", QString(), contactFields(), true),
      userDetails_(std::move(userDetails)) {
    offer_ = new QPushButton(this);
    offer_->setObjectName("use my details");
    offer_->hide();
    if (!userDetails_.name.trimmed().isEmpty())
        offer_->setText("Use my details (" + userDetails_.name.trimmed() + ")");
    else
        offer_->setText("Use my details");
    offer_->setToolTip("Fill the fields with your contact details from the preferences");
    contentLayout()->insertWidget(contentLayout()->count() - 1, offer_, 0, Qt::AlignLeft);
    connect(offer_, &QPushButton::clicked, this, &QcbsWizardContactPage::useMyDetails);
    for (const QcbsWizardField& f : fields()) {
        if (auto* line = lineEdit(f.dataName))
            connect(line, &QLineEdit::textChanged, this, &QcbsWizardContactPage::updateOffer);
        else if (auto* text = qobject_cast<QPlainTextEdit*>(field(f.dataName)))
            connect(text, &QPlainTextEdit::textChanged, this, &QcbsWizardContactPage::updateOffer);
    }
}

QPair<QString, QString> QcbsWizardContactPage::splitOlderItem(const QString& value) {
    QStringList lines;
    for (const QString& line : value.split('\n'))
        if (!line.trimmed().isEmpty()) lines << line.trimmed();
    if (lines.isEmpty()) return {};
    const QString name = lines.takeFirst();
    return {name, lines.join('\n')};
}

void QcbsWizardContactPage::showPage() {
    QcbsWizardFormPage::showPage();
    readOlderItem();
    updateOffer();
}

void QcbsWizardContactPage::readOlderItem() {
    const THandle<CifDataBlock>& block = wizard()->workingBlock();
    if (block.is_null()) return;
    for (const char* name : {kName, kEmail, kAddress, kPhone, kFax})
        if (!block->find(name).is_null()) return;
    const THandle<CifDataItem> older = block->find(kOlder);
    if (older.is_null() || older->is_looped()) return;
    const QString value = wizard()->fromBlock(older->value());
    if (isUnknown(value)) return;
    const auto [name, address] = splitOlderItem(value);
    const std::size_t nameField = std::size_t(indexOf(kName));
    const std::size_t addressField = std::size_t(indexOf(kAddress));
    setFieldText(nameField, name);
    showNote(nameField, "from _publ_contact_author");
    if (!address.isEmpty()) {
        setFieldText(addressField, address);
        showNote(addressField, "from _publ_contact_author");
    }
}

QString QcbsWizardContactPage::fieldTextOf(const char* dataName) const {
    return fieldText(std::size_t(indexOf(dataName)));
}

void QcbsWizardContactPage::updateOffer() {
    bool empty = true;
    for (const char* name : {kName, kEmail, kAddress, kPhone, kFax})
        empty = empty && isUnknown(fieldTextOf(name));
    const QcbsContactAuthor& me = userDetails_;
    const bool something =
        !(me.name.trimmed().isEmpty() && me.email.trimmed().isEmpty() && me.address.trimmed().isEmpty() &&
          me.phone.trimmed().isEmpty() && me.fax.trimmed().isEmpty());
    offer_->setVisible(empty && something);
}

void QcbsWizardContactPage::useMyDetails() {
    const QcbsContactAuthor& me = userDetails_;
    const std::pair<const char*, QString> values[] = {
        {kName, me.name}, {kEmail, me.email}, {kAddress, me.address}, {kPhone, me.phone}, {kFax, me.fax}};
    for (const auto& [name, value] : values) {
        const std::size_t index = std::size_t(indexOf(name));
        if (!isUnknown(fieldText(index)) || value.trimmed().isEmpty()) continue;
        setFieldText(index, value.trimmed());
        showNote(index, "from your preferences");
    }
    offer_->hide();
}
