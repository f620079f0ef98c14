// SPDX-License-Identifier: GPL-3.0-or-later
// The publication wizard's page of the contact author: name, email, address, telephone, fax.
#pragma once

#include "base/QcbsContactAuthor.hpp"
#include "wizards/QcbsWizardFormPage.hpp"

class QPushButton;

// The publication wizard's page of the contact author. A block that has
// none of the five contact items but the older single item
// _publ_contact_author (name on the first line, address below) shows that
// item's name and address; Next then writes the five items and leaves the
// older one as it is. While every field is empty, the page offers the
// user's own details from the preferences with one button; it never fills
// them in unasked.
class QcbsWizardContactPage : public QcbsWizardFormPage {
    Q_OBJECT
public:
    QcbsWizardContactPage(QPixmap* splash, QcbsWizard* wizard, QcbsContactAuthor userDetails);

    static QString heading() { return "Contact Information..."; }

    // The button that fills the fields with the user's own details.
    QPushButton* offerButton() const { return offer_; }

    void showPage() override;

    // The name and the address in a value of the older single item.
    static QPair<QString, QString> splitOlderItem(const QString& value);

public slots:
    // Fills the fields with the user's own details.
    void useMyDetails();

private:
    void readOlderItem();
    // Shows the offer while every field is empty and there is something to offer.
    void updateOffer();
    QString fieldTextOf(const char* dataName) const;

    QcbsContactAuthor userDetails_;
    QPushButton* offer_;
};
