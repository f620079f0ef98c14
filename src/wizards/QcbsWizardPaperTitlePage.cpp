// SPDX-License-Identifier: GPL-3.0-or-later
// The publication wizard's page of the paper's title (built, not part of the wizard).
#include "wizards/QcbsWizardPaperTitlePage.hpp"

QcbsWizardPaperTitlePage::QcbsWizardPaperTitlePage(QPixmap* splash, QcbsWizard* wizard)
    : QcbsWizardFormPage(splash, wizard, "paper title",
                         "Enter the title of the paper in which this structure appears",
                         {{"Title :", "_publ_section_title", QcbsWizardField::Text, false, true}}, true) {}
