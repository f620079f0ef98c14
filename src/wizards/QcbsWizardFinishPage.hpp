// SPDX-License-Identifier: GPL-3.0-or-later
// A wizard's last page: Finish applies the changes, Cancel abandons them, Back reviews them.
#pragma once

#include "wizards/QcbsWizardPage.hpp"

// A wizard's last page: Finish applies the changes, Cancel abandons them,
// Back reviews them. Finish comes on, as the default button, once shown.
class QcbsWizardFinishPage : public QcbsWizardPage {
    Q_OBJECT
public:
    QcbsWizardFinishPage(QPixmap* splash, QcbsWizard* wizard);

    void showPage() override;
    void next() override {}
};
