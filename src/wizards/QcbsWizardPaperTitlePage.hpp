// SPDX-License-Identifier: GPL-3.0-or-later
// The publication wizard's page of the paper's title (built, not part of the wizard).
#pragma once

#include "wizards/QcbsWizardFormPage.hpp"

// The page of the title of the paper the structure appears in
// (_publ_section_title). The publication wizard builds it but does not
// show it: the title belongs to the paper's text, not to its data.
class QcbsWizardPaperTitlePage : public QcbsWizardFormPage {
    Q_OBJECT
public:
    QcbsWizardPaperTitlePage(QPixmap* splash, QcbsWizard* wizard);

    static QString heading() { return "Publication Information..."; }
};
