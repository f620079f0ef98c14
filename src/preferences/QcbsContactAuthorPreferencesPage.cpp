// SPDX-License-Identifier: GPL-3.0-or-later
// The Contact author page of the preferences: who answers for a publication.
#include "preferences/QcbsContactAuthorPreferencesPage.hpp"

#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRegularExpression>
#include <QVBoxLayout>

namespace {

QLineEdit* lineEdit(const char* name, QWidget* parent) {
    auto* edit = new QLineEdit(parent);
    edit->setObjectName(name);
    return edit;
}

// A field the user left empty stays a null text, as one never set.
QString given(const QString& text) { return text.isEmpty() ? QString() : text; }

}  // namespace

QcbsContactAuthorPreferencesPage::QcbsContactAuthorPreferencesPage(QWidget* parent)
    : QcbsPreferencesPage("Contact author", parent) {
    auto* layout = new QVBoxLayout(this);
    auto* intro = new QLabel(
        "The author who answers for a publication: the details kept for the contact author of the "
        "publications you prepare.",
        this);
    intro->setWordWrap(true);
    layout->addWidget(intro);

    auto* form = new QFormLayout;
    name_ = lineEdit("contact name", this);
    address_ = new QPlainTextEdit(this);
    address_->setObjectName("contact address");
    address_->setTabChangesFocus(true);
    address_->setFixedHeight(address_->fontMetrics().lineSpacing() * 5);
    phone_ = lineEdit("contact phone", this);
    fax_ = lineEdit("contact fax", this);
    email_ = lineEdit("contact email", this);
    emailReason_ = makeReasonLabel(email_->objectName(), this);
    auto* emailBox = new QWidget(this);
    auto* emailLayout = new QVBoxLayout(emailBox);
    emailLayout->setContentsMargins(0, 0, 0, 0);
    emailLayout->setSpacing(2);
    emailLayout->addWidget(email_);
    emailLayout->addWidget(emailReason_);
    form->addRow("&Name:", name_);
    form->addRow("&Address:", address_);
    form->addRow("&Phone:", phone_);
    form->addRow("&Fax:", fax_);
    form->addRow("&E-mail:", emailBox);
    layout->addLayout(form);
    layout->addStretch(1);
    connect(email_, &QLineEdit::textChanged, this, [this] { setReason(emailReason_, QString()); });
}

void QcbsContactAuthorPreferencesPage::showOptions(const QcbsOptions& options) {
    const QcbsContactAuthor& author = options.contact_author;
    name_->setText(author.name);
    address_->setPlainText(author.address);
    phone_->setText(author.phone);
    fax_->setText(author.fax);
    email_->setText(author.email);
}

void QcbsContactAuthorPreferencesPage::storeOptions(QcbsOptions& options) const {
    QcbsContactAuthor& author = options.contact_author;
    author.name = given(name_->text());
    author.address = given(address_->toPlainText());
    author.phone = given(phone_->text());
    author.fax = given(fax_->text());
    author.email = given(email_->text().trimmed());
}

bool QcbsContactAuthorPreferencesPage::validate() {
    static const QRegularExpression address("^[^@\\s]+@[^@\\s]+\\.[^@\\s]+$");
    const QString email = email_->text().trimmed();
    const bool ok = email.isEmpty() || address.match(email).hasMatch();
    setReason(emailReason_, ok ? QString() : "An e-mail address has the form name@example.org.");
    if (!ok) email_->setFocus();
    return ok;
}
