// SPDX-License-Identifier: GPL-3.0-or-later
// The Contact author page of the preferences: who answers for a publication.
#pragma once

#include "preferences/QcbsPreferencesPage.hpp"

class QLabel;
class QLineEdit;
class QPlainTextEdit;

// The Contact author page: name, address, phone, fax and e-mail of the
// author who answers for a publication, kept for the publication data.
class QcbsContactAuthorPreferencesPage : public QcbsPreferencesPage {
    Q_OBJECT
public:
    explicit QcbsContactAuthorPreferencesPage(QWidget* parent = nullptr);

    void showOptions(const QcbsOptions& options) override;
    void storeOptions(QcbsOptions& options) const override;
    // An e-mail address, when given, has the form name@place.
    bool validate() override;

    QLineEdit* nameEdit() const { return name_; }
    QPlainTextEdit* addressEdit() const { return address_; }
    QLineEdit* phoneEdit() const { return phone_; }
    QLineEdit* faxEdit() const { return fax_; }
    QLineEdit* emailEdit() const { return email_; }

private:
    QLineEdit* name_;
    QPlainTextEdit* address_;
    QLineEdit* phone_;
    QLineEdit* fax_;
    QLineEdit* email_;
    QLabel* emailReason_;
};
