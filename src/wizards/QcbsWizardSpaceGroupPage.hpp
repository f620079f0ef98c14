// SPDX-License-Identifier: GPL-3.0-or-later
// The crystal wizard's symmetry page: crystal system, space-group number and symbol kept in step.
#pragma once

#include <QString>

#include "wizards/QcbsWizardFormPage.hpp"

class QComboBox;
class QLineEdit;

// The crystal wizard's symmetry page: the crystal system, the
// International Tables number and the Hermann-Mauguin symbol. A number
// lists the settings of its group in the symbol box; a symbol picked or
// confirmed there fills in its number. Typing a symbol turns Next off
// until it is confirmed (Return or leaving the box). A symbol that
// disagrees with the block's symmetry operators gets a warning, which never
// blocks. Missing values are filled in from the operators and the group.
class QcbsWizardSpaceGroupPage : public QcbsWizardFormPage {
    Q_OBJECT
public:
    QcbsWizardSpaceGroupPage(QPixmap* splash, QcbsWizard* wizard);

    static QString heading() { return "Symmetry Information..."; }

    QComboBox* crystalSystemBox() const;
    QLineEdit* numberField() const;
    QComboBox* symbolBox() const;
    // The symbol the block's symmetry operators make, or "Unknown".
    const QString& symmetryDerivedSymbol() const { return derivedSymbol_; }

    void showPage() override;

    // The symbol of a group built from symmetry operators given as
    // coordinate triplets, or "Unknown".
    static QString symbolOfOperators(const std::vector<std::string>& operators);

public slots:
    void updateSpacegroupNumber(const QString& text);
    void updateSpacegroupName(const QString& name);
    void inSpacegroupNameEdit(const QString& text);
    void updateCellSetting(int number);
    // Warns when the symbol disagrees with the operators; clears the warning otherwise.
    void checkAgainstSymmops(const QString& name);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // Takes the symbol typed into the box (added to its list) as chosen.
    void confirmTypedSymbol();
    void readOperators();
    // Fills the crystal system from the group when it has none; tells whether it did.
    bool fillCrystalSystem(int number);

    QString derivedSymbol_ = "Unknown";
    // Programmatic changes of the symbol box are not the user typing.
    bool filling_ = false;
    QString keptSymbol_;
};
