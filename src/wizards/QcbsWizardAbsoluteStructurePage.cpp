// SPDX-License-Identifier: GPL-3.0-or-later
// A page of measures of absolute configuration, which the crystal wizard does not show.
#include "wizards/QcbsWizardAbsoluteStructurePage.hpp"

namespace {

std::vector<QcbsWizardField> pageFields() {
    using F = QcbsWizardField;
    return {
        {"Flack parameter:", "_refine_ls_abs_structure_flack", F::Line, false, false},
        {"Rogers eta parameter:", "_refine_ls_abs_structure_rogers", F::Line, false, false},
    };
}

}  // namespace

QcbsWizardAbsoluteStructurePage::QcbsWizardAbsoluteStructurePage(QPixmap* splash, QcbsWizard* wizard)
    : QcbsWizardFormPage(splash, wizard, "absolute structure", "Enter a measure of absolute configuration",
                         pageFields(), false) {}
