// SPDX-License-Identifier: GPL-3.0-or-later
// A page of measures of absolute configuration, which the crystal wizard does not show.
#pragma once

#include "wizards/QcbsWizardFormPage.hpp"

// A page of measures of absolute configuration, which the crystal wizard does not show.
class QcbsWizardAbsoluteStructurePage : public QcbsWizardFormPage {
    Q_OBJECT
public:
    QcbsWizardAbsoluteStructurePage(QPixmap* splash, QcbsWizard* wizard);

    static QString heading() { return "Absolute Configuration Information..."; }
};
