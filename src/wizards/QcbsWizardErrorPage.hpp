// SPDX-License-Identifier: GPL-3.0-or-later
// A wizard's syntax-check page: the document's messages, and no way on while it has errors.
#pragma once

#include <QString>
#include <QStringList>

#include "cif/CifErrorContainer.hpp"
#include "support/THandle.hpp"
#include "wizards/QcbsWizardPage.hpp"

class QPlainTextEdit;
class QStatusBar;

// A wizard's syntax-check page: every message of the document's last
// check, a verdict in the status bar, and Next off while there are errors
// (warnings only advise against going on).
class QcbsWizardErrorPage : public QcbsWizardPage {
    Q_OBJECT
public:
    // What the page shows for a check's messages.
    struct Summary {
        QStringList lines;  // each message, then the counts after a blank line
        QString status;
        bool blocking = false;  // errors keep the wizard from going on
    };
    static Summary summarise(const THandle<CifErrorContainer>& errors);

    QcbsWizardErrorPage(QPixmap* splash, QcbsWizard* wizard);

    QPlainTextEdit* messages() const { return messages_; }
    QStatusBar* statusBar() const { return status_; }

    void showPage() override;
    void next() override {}

private:
    QPlainTextEdit* messages_;
    QStatusBar* status_;
};
