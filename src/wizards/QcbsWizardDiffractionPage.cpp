// SPDX-License-Identifier: GPL-3.0-or-later
// The crystal wizard's page of the radiation and its source.
#include "wizards/QcbsWizardDiffractionPage.hpp"

namespace {

std::vector<QcbsWizardField> pageFields() {
    using F = QcbsWizardField;
    return {
        {"Radiation Probe:",
         "_diffrn_radiation_probe",
         F::Choice,
         false,
         true,
         {"?", "x-ray", "neutron", "electron", "gamma"}},
        {"Radiation Type:", "_diffrn_radiation_type", F::Line, true, true},
        {"Radiation Wavelength:", "_diffrn_radiation_wavelength", F::Line, true, true},
        {"Radiation Source Class:", "_diffrn_source", F::Line, true, true},
        {"Radiation Source Type:", "_diffrn_source_type", F::Line, true, true},
    };
}

}  // namespace

QcbsWizardDiffractionPage::QcbsWizardDiffractionPage(QPixmap* splash, QcbsWizard* wizard)
    : QcbsWizardFormPage(splash, wizard, "diffraction",
                         "Enter details of the diffraction experiment for this structure", pageFields(),
                         false) {}
