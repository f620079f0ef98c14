// SPDX-License-Identifier: GPL-3.0-or-later
// The crystal wizard's page of the radiation and its source.
#pragma once

#include "wizards/QcbsWizardFormPage.hpp"

// The crystal wizard's page of the radiation and its source.
class QcbsWizardDiffractionPage : public QcbsWizardFormPage {
    Q_OBJECT
public:
    QcbsWizardDiffractionPage(QPixmap* splash, QcbsWizard* wizard);

    static QString heading() { return "Diffraction Information..."; }
};
