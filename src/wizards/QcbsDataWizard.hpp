// SPDX-License-Identifier: GPL-3.0-or-later
// The crystal and chemical data wizard: chemistry, experiment, symmetry, diffraction of a block.
#pragma once

#include "wizards/QcbsWizard.hpp"

// The crystal and chemical data wizard: seven pages (welcome, syntax
// check, chemical, experimental, symmetry, diffraction, finish) over the
// chemical, experimental, symmetry and diffraction data items of one block.
class QcbsDataWizard : public QcbsWizard {
    Q_OBJECT
public:
    QcbsDataWizard(THandle<Cif> document, int blockIndex, THandle<CifDictionary> dictionary,
                   const CifWriteSettings& settings, QWidget* parent = nullptr,
                   const QString& name = "Crystal Data Wizard");

    static QString caption() { return "Tessary Chemical and Crystal Data Wizard"; }

protected:
    void setupPages() override;
    void setupChemicalPage();
    void setupExperimentalPage();
    void setupSpaceGroupPage();
    void setupDiffractionPage();
    // The absolute-configuration page is built but not part of the wizard.
    void setupAbsoluteStructurePage();
};
