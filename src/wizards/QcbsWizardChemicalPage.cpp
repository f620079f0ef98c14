// SPDX-License-Identifier: GPL-3.0-or-later
// The crystal wizard's page of chemical names and formulae.
#include "wizards/QcbsWizardChemicalPage.hpp"

#include <QLabel>
#include <QLineEdit>

#include "cif/CifChemicalFormula.hpp"
#include "wizards/QcbsWizard.hpp"

namespace {

std::vector<QcbsWizardField> chemicalFields() {
    using F = QcbsWizardField;
    return {
        {"Systematic name:", "_chemical_name_systematic", F::Line, false, true},
        {"Common name:", "_chemical_name_common", F::Line, false, true},
        {"Moiety Formula:", "_chemical_formula_moiety", F::Line, true, true},
        {"Sum Formula:", "_chemical_formula_sum", F::Line, true, true},
        {"Formula Weight:", "_chemical_formula_weight", F::Line, true, true},
        {"Compound source:", "_chemical_compound_source", F::Line, true, false},
    };
}

}  // namespace

QcbsWizardChemicalPage::QcbsWizardChemicalPage(QPixmap* splash, QcbsWizard* wizard)
    : QcbsWizardFormPage(splash, wizard, "chemical", QString(), chemicalFields(), true) {
    // A weight worked out from the formula follows the formula as it is typed.
    connect(lineEdit("_chemical_formula_sum"), &QLineEdit::textEdited, this, [this](const QString& sum) {
        QLabel* weightNote = note("_chemical_formula_weight");
        if (!weightNote->isVisibleTo(this)) return;
        const QString weight = formulaWeight(sum);
        lineEdit("_chemical_formula_weight")->setText(weight);
        weightNote->setVisible(!weight.isEmpty());
    });
}

QString QcbsWizardChemicalPage::formulaWeight(const QString& sumFormula) {
    const CifChemicalFormula formula(sumFormula.trimmed().toStdString());
    if (sumFormula.trimmed().isEmpty() || !formula.valid() || formula.weight() <= 0) return QString();
    return QString::number(formula.weight(), 'f', 2);
}

QcbsWizardFormPage::Derived QcbsWizardChemicalPage::derive(const QcbsWizardField& field) const {
    if (field.dataName != "_chemical_formula_weight") return {};
    const QLineEdit* sum = lineEdit("_chemical_formula_sum");
    const QString weight = sum == nullptr ? QString() : formulaWeight(sum->text());
    return {weight, weight.isEmpty() ? QString() : QString("from the formula")};
}
