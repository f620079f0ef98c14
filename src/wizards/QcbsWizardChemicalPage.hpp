// SPDX-License-Identifier: GPL-3.0-or-later
// The crystal wizard's page of chemical names and formulae.
#pragma once

#include "wizards/QcbsWizardFormPage.hpp"

// The crystal wizard's page of chemical names and formulae. An empty
// formula weight of a block without one is worked out from the sum formula.
class QcbsWizardChemicalPage : public QcbsWizardFormPage {
    Q_OBJECT
public:
    QcbsWizardChemicalPage(QPixmap* splash, QcbsWizard* wizard);

    static QString heading() { return "Physical and Chemical Information..."; }
    // The formula weight of a sum formula to two decimals, empty when the
    // formula cannot be read.
    static QString formulaWeight(const QString& sumFormula);

protected:
    Derived derive(const QcbsWizardField& field) const override;
};
