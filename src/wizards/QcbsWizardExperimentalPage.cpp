// SPDX-License-Identifier: GPL-3.0-or-later
// The crystal wizard's page of the crystal and the conditions of the experiment.
#include "wizards/QcbsWizardExperimentalPage.hpp"

namespace {

std::vector<QcbsWizardField> pageFields() {
    using F = QcbsWizardField;
    return {
        {"Recrystallization Method:", "_exptl_crystal_recrystallization_method", F::Line, true, true},
        {"Melting Point (K):", "_chemical_melting_point", F::Line, false, true},
        {"Crystal Habit:", "_exptl_crystal_description", F::Line, true, true},
        {"Crystal Colour:", "_exptl_crystal_colour", F::Line, true, true},
        {"Diffraction Temperature (K):", "_diffrn_ambient_temperature", F::Line, false, true},
        {"Diffraction Pressure (kPa):", "_diffrn_ambient_pressure", F::Line, false, true},
    };
}

}  // namespace

QcbsWizardExperimentalPage::QcbsWizardExperimentalPage(QPixmap* splash, QcbsWizard* wizard)
    : QcbsWizardFormPage(splash, wizard, "experimental", QString(), pageFields(), false) {}
