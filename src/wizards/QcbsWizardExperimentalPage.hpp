// SPDX-License-Identifier: GPL-3.0-or-later
// The crystal wizard's page of the crystal and the conditions of the experiment.
#pragma once

#include "wizards/QcbsWizardFormPage.hpp"

// The crystal wizard's page of the crystal and the conditions of the experiment.
class QcbsWizardExperimentalPage : public QcbsWizardFormPage {
    Q_OBJECT
public:
    QcbsWizardExperimentalPage(QPixmap* splash, QcbsWizard* wizard);

    static QString heading() { return "Physical and Chemical Information..."; }
};
