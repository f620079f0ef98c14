// SPDX-License-Identifier: GPL-3.0-or-later
// The crystal wizard's pages: fields read from the block, written back, symmetry kept in step.
#include <gtest/gtest.h>

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>

#include "WizardTestSupport.hpp"
#include "application/DialogAnswerer.hpp"
#include "cif/Spacegroup.hpp"
#include "views/QcbsDataItemHelpButton.hpp"
#include "views/QcbsEditDataDialogue.hpp"
#include "wizards/QcbsWizardChemicalPage.hpp"
#include "wizards/QcbsWizardDiffractionPage.hpp"
#include "wizards/QcbsWizardExperimentalPage.hpp"
#include "wizards/QcbsWizardSpaceGroupPage.hpp"

namespace {

using wizard_test::ShownWizard;

const std::string kOperators21c =
    "loop_\n_symmetry_equiv_pos_as_xyz\n"
    "'x, y, z'\n'-x, y+1/2, -z+1/2'\n'-x, -y, -z'\n'x, -y+1/2, z+1/2'\n";

QString value(const ShownWizard& wizard, const char* name) {
    return QString::fromStdString(wizard->workingBlock()->value(name));
}

QStringList entries(const QComboBox* box) {
    QStringList texts;
    for (int i = 0; i < box->count(); ++i) texts << box->itemText(i);
    return texts;
}

TEST(CrystalWizard, FieldsShowTheBlockAndWriteBackOnlyWhatChangedOrWasMissing) {
    ShownWizard wizard(
        "data_c\n_cell_length_a 5\n"
        "_chemical_name_systematic\n;\n  sodium chloride  \n;\n"
        "_exptl_crystal_colour  'pale blue'\n"
        "_diffrn_radiation_probe X-RAY\n"
        "_diffrn_radiation_type 'Mo K\\a'\n");
    auto* chemical = wizard.pageOf<QcbsWizardChemicalPage>();
    auto* experimental = wizard.pageOf<QcbsWizardExperimentalPage>();
    auto* diffraction = wizard.pageOf<QcbsWizardDiffractionPage>();
    wizard.goTo(chemical);
    EXPECT_EQ(chemical->lineEdit("_chemical_name_systematic")->text(), "sodium chloride") << "shown stripped";
    EXPECT_EQ(wizard->focusWidget(), chemical->lineEdit("_chemical_name_systematic"));
    wizard.press(QWizard::NextButton);
    EXPECT_EQ(experimental->lineEdit("_exptl_crystal_colour")->text(), "pale blue");
    experimental->lineEdit("_diffrn_ambient_temperature")->setText("100(2)");
    wizard.press(QWizard::NextButton);
    wizard.press(QWizard::NextButton);
    EXPECT_EQ(diffraction->choice("_diffrn_radiation_probe")->currentText(), "x-ray") << "any letter case";
    wizard.press(QWizard::NextButton);

    const struct {
        const char* name;
        const char* written;
    } cases[] = {
        {"_chemical_name_systematic", nullptr},  // left alone: as it was
        {"_chemical_name_common", "?"},          // missing and left empty
        {"_exptl_crystal_colour", "pale blue"}, {"_diffrn_ambient_temperature", "100(2)"},  // typed
        {"_diffrn_ambient_pressure", "?"},      {"_diffrn_radiation_probe", "X-RAY"},       // left alone
        {"_diffrn_radiation_type", "Mo K\\a"},  {"_diffrn_source_type", "?"},
        {"_refine_ls_abs_structure_flack", ""},  // the absolute-structure page is not part of the wizard
    };
    for (const auto& c : cases)
        EXPECT_EQ(value(wizard, c.name),
                  c.written != nullptr ? QString(c.written)
                                       : QString::fromStdString(wizard.document()->block(0)->value(c.name)))
            << c.name;

    wizard.press(QWizard::BackButton);
    diffraction->choice("_diffrn_radiation_probe")->setCurrentText("neutron");
    wizard.press(QWizard::NextButton);
    EXPECT_EQ(value(wizard, "_diffrn_radiation_probe"), "neutron");
}

TEST(CrystalWizard, FieldsTakeTheLengthTheirItemsAllowAndLoopsStayWhole) {
    ShownWizard wizard(
        "data_c\n_cell_length_a 5\n"
        "loop_\n_diffrn_radiation_wavelength\n_diffrn_radiation_type\n0.71073 'Mo K\\a'\n1.54184 'Cu "
        "K\\a'\n");
    auto* chemical = wizard.pageOf<QcbsWizardChemicalPage>();
    EXPECT_EQ(chemical->lineEdit("_chemical_name_systematic")->maxLength(), 32767);
    EXPECT_EQ(chemical->lineEdit("_chemical_formula_moiety")->maxLength(), 78);
    EXPECT_EQ(wizard.pageOf<QcbsWizardExperimentalPage>()->lineEdit("_chemical_melting_point")->maxLength(),
              32767);
    EXPECT_EQ(wizard.pageOf<QcbsWizardExperimentalPage>()->lineEdit("_exptl_crystal_colour")->maxLength(),
              78);
    EXPECT_EQ(chemical->findChildren<QcbsDataItemHelpButton*>().size(), 5) << "the compound source has none";

    auto* diffraction = wizard.pageOf<QcbsWizardDiffractionPage>();
    wizard.goTo(diffraction);
    QLineEdit* wavelength = diffraction->lineEdit("_diffrn_radiation_wavelength");
    EXPECT_EQ(wavelength->text(), "0.71073");
    EXPECT_FALSE(wavelength->isEnabled()) << "a loop's column is edited in the text";
    wizard.press(QWizard::NextButton);
    const THandle<CifDataItem> item = wizard->workingBlock()->find("_diffrn_radiation_wavelength");
    EXPECT_TRUE(item->is_looped());
    EXPECT_EQ(item->size(), 2u);
}

TEST(CrystalWizard, TheFormulaWeightIsWorkedOutOnlyWhereTheBlockHasNone) {
    const struct {
        const char* items;
        const char* shown;
        bool noted;
    } cases[] = {
        {"_chemical_formula_sum 'Na Cl'\n", "58.44", true},
        {"_chemical_formula_sum 'Na Cl'\n_chemical_formula_weight ?\n", "58.44", true},
        {"_chemical_formula_sum 'Na Cl'\n_chemical_formula_weight 60.1\n", "60.1", false},
        {"_chemical_formula_sum 'Na Xx'\n", "", false},
        {"_chemical_formula_sum ?\n", "", false},
    };
    for (const auto& c : cases) {
        ShownWizard wizard(std::string("data_c\n_cell_length_a 5\n") + c.items);
        auto* chemical = wizard.pageOf<QcbsWizardChemicalPage>();
        wizard.goTo(chemical);
        EXPECT_EQ(chemical->lineEdit("_chemical_formula_weight")->text(), c.shown) << c.items;
        EXPECT_EQ(chemical->note("_chemical_formula_weight")->isVisibleTo(chemical), c.noted) << c.items;
        if (c.noted) {
            EXPECT_EQ(chemical->note("_chemical_formula_weight")->text(), "from the formula");
        }
        wizard.press(QWizard::NextButton);
        EXPECT_EQ(value(wizard, "_chemical_formula_weight"), *c.shown ? c.shown : "?") << c.items;
    }

    // A worked-out weight follows the formula typed; a given one does not.
    for (const char* given : {"", "_chemical_formula_weight 60.1\n"}) {
        ShownWizard wizard(std::string("data_c\n_cell_length_a 5\n_chemical_formula_sum 'Na Cl'\n") + given);
        auto* chemical = wizard.pageOf<QcbsWizardChemicalPage>();
        wizard.goTo(chemical);
        QLineEdit* sum = chemical->lineEdit("_chemical_formula_sum");
        sum->selectAll();
        QTest::keyClicks(sum, "K Cl");
        EXPECT_EQ(chemical->lineEdit("_chemical_formula_weight")->text(), *given ? "60.1" : "74.55") << given;
    }
}

TEST(CrystalWizard, ANumberListsItsSettingsAndKeepsAMatchingSymbol) {
    ShownWizard wizard(
        "data_c\n_cell_length_a 5\n_symmetry_cell_setting Monoclinic\n"
        "_symmetry_space_group_name_H-M 'P 21/c'\n");
    auto* symmetry = wizard.pageOf<QcbsWizardSpaceGroupPage>();
    wizard.goTo(symmetry);
    EXPECT_EQ(symmetry->crystalSystemBox()->currentText(), "monoclinic");
    EXPECT_EQ(symmetry->numberField()->text(), "14") << "the number follows the symbol";
    const QString shown = symmetry->symbolBox()->currentText();
    EXPECT_EQ(shown, "P 1 21/c 1");
    EXPECT_TRUE(symmetry->isComplete());

    // Typed digit by digit, as the user does: the symbol survives the "1".
    symmetry->numberField()->clear();
    QTest::keyClicks(symmetry->numberField(), "14");
    const QStringList listed = entries(symmetry->symbolBox());
    EXPECT_EQ(listed.first(), "?");
    EXPECT_EQ(listed.size(), 1 + Spacegroup::nsettings(14));
    EXPECT_TRUE(listed.contains("P 1 21/n 1")) << listed.join(", ").toStdString();
    EXPECT_EQ(symmetry->symbolBox()->currentText(), shown);
    EXPECT_TRUE(symmetry->isComplete());

    symmetry->numberField()->setText("62");
    EXPECT_EQ(symmetry->symbolBox()->currentText(), "?");
    EXPECT_FALSE(symmetry->isComplete()) << "a symbol of group 62 must be picked";
    symmetry->numberField()->setText("231");
    EXPECT_EQ(entries(symmetry->symbolBox()), QStringList{"?"});
    EXPECT_FALSE(symmetry->isComplete());
    symmetry->numberField()->setText("62");
    symmetry->symbolBox()->setCurrentIndex(1);
    emit symmetry->symbolBox()->textActivated(symmetry->symbolBox()->currentText());
    EXPECT_EQ(symmetry->symbolBox()->currentText(), "P n m a");
    EXPECT_TRUE(symmetry->isComplete());
    wizard.press(QWizard::NextButton);
    EXPECT_EQ(value(wizard, "_symmetry_space_group_name_H-M"), "P n m a");
    EXPECT_EQ(value(wizard, "_symmetry_int_tables_number"), "62");
    EXPECT_EQ(value(wizard, "_symmetry_cell_setting"), "Monoclinic") << "left alone, though now wrong";
}

TEST(CrystalWizard, ATypedSymbolNeedsConfirmingAndAnUnknownOneIsTakenAsTyped) {
    ShownWizard wizard("data_c\n_cell_length_a 5\n");
    auto* symmetry = wizard.pageOf<QcbsWizardSpaceGroupPage>();
    wizard.goTo(symmetry);
    QLineEdit* typed = symmetry->symbolBox()->lineEdit();
    typed->clear();
    QTest::keyClicks(typed, "Pbca");
    EXPECT_FALSE(symmetry->isComplete());
    EXPECT_FALSE(wizard->button(QWizard::NextButton)->isEnabled());
    QTest::keyClick(typed, Qt::Key_Return);
    EXPECT_TRUE(symmetry->isComplete());
    EXPECT_EQ(symmetry->numberField()->text(), "61");
    EXPECT_EQ(symmetry->symbolBox()->currentText(), "P b c a");

    typed->clear();
    QTest::keyClicks(typed, "Q 7 zz");
    EXPECT_FALSE(symmetry->isComplete());
    QTest::keyClick(typed, Qt::Key_Return);
    EXPECT_TRUE(symmetry->isComplete());
    wizard.press(QWizard::NextButton);
    EXPECT_EQ(value(wizard, "_symmetry_space_group_name_H-M"), "Q 7 zz");
}

TEST(CrystalWizard, ASymbolAgainstTheOperatorsIsWarnedAboutButAccepted) {
    ShownWizard wizard("data_c\n_cell_length_a 5\n_symmetry_space_group_name_H-M 'P n m a'\n" +
                       kOperators21c);
    auto* symmetry = wizard.pageOf<QcbsWizardSpaceGroupPage>();
    wizard.goTo(symmetry);
    EXPECT_EQ(symmetry->symmetryDerivedSymbol(), "P 1 21/c 1");
    EXPECT_EQ(symmetry->message()->text(),
              "Warning: Space group symbol: P n m a does not agree \nwith the given symmetry operators: "
              "P 1 21/c 1");
    EXPECT_TRUE(wizard->button(QWizard::NextButton)->isEnabled());
    symmetry->numberField()->setText("14");
    symmetry->symbolBox()->setCurrentIndex(1);
    emit symmetry->symbolBox()->textActivated(symmetry->symbolBox()->currentText());
    EXPECT_TRUE(symmetry->message()->text().isEmpty()) << symmetry->message()->text().toStdString();
}

// Symmetry the block lacks: filled from its operators and noted as such, or "?" for all three.
TEST(CrystalWizard, MissingSymmetryIsFilledFromTheOperatorsOrGetsQuestionMarks) {
    const struct {
        std::string operators;
        const char* symbol;
        const char* number;
        const char* system;
    } cases[] = {
        {kOperators21c, "P 1 21/c 1", "14", "monoclinic"},
        {"", "?", "?", "?"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.symbol);
        ShownWizard wizard("data_c\n_cell_length_a 5\n" + c.operators);
        auto* symmetry = wizard.pageOf<QcbsWizardSpaceGroupPage>();
        wizard.goTo(symmetry);
        EXPECT_EQ(symmetry->symbolBox()->currentText(), c.symbol);
        EXPECT_EQ(symmetry->numberField()->text(), c.number);
        EXPECT_EQ(symmetry->crystalSystemBox()->currentText(), c.system);
        const bool derived = !c.operators.empty();
        EXPECT_EQ(symmetry->note("_symmetry_space_group_name_H-M")->text(),
                  derived ? "from the operators" : "");
        EXPECT_EQ(symmetry->note("_symmetry_int_tables_number")->text(), derived ? "from the operators" : "");
        EXPECT_EQ(symmetry->note("_symmetry_cell_setting")->text(), derived ? "from the space group" : "");
        EXPECT_TRUE(symmetry->message()->text().isEmpty());
        if (!derived) {
            EXPECT_EQ(entries(symmetry->crystalSystemBox()),
                      (QStringList{"?", "triclinic", "monoclinic", "orthorhombic", "tetragonal",
                                   "rhombohedral", "trigonal", "hexagonal", "cubic"}));
        }
        wizard.press(QWizard::NextButton);
        EXPECT_EQ(value(wizard, "_symmetry_space_group_name_H-M"), c.symbol);
        EXPECT_EQ(value(wizard, "_symmetry_int_tables_number"), c.number);
        EXPECT_EQ(value(wizard, "_symmetry_cell_setting"), c.system);
    }
}

TEST(CrystalWizard, ABlockWithNewerSymmetryNamesIsReadAndWrittenUnderThem) {
    ShownWizard wizard("data_c\n_cell_length_a 5\n_space_group_name_H-M_alt 'P 21/c'\n");
    auto* symmetry = wizard.pageOf<QcbsWizardSpaceGroupPage>();
    wizard.goTo(symmetry);
    EXPECT_EQ(symmetry->symbolBox()->currentText(), "P 1 21/c 1");
    symmetry->numberField()->setText("62");
    symmetry->symbolBox()->setCurrentIndex(1);
    emit symmetry->symbolBox()->textActivated(symmetry->symbolBox()->currentText());
    wizard.press(QWizard::NextButton);
    EXPECT_EQ(value(wizard, "_space_group_name_H-M_alt"), "P n m a");
    EXPECT_TRUE(wizard->workingBlock()->find("_symmetry_space_group_name_H-M").is_null());
}

TEST(CrystalWizard, AHelpButtonShowsTheDictionaryDefinitionModally) {
    ShownWizard wizard("data_c\n_cell_length_a 5\n");
    DialogAnswerer answers;
    QStringList shown;
    answers.otherHandler = [&](QDialog* dialog) {
        if (auto* help = qobject_cast<QcbsEditDataDialogue*>(dialog)) shown << help->dataName();
        dialog->reject();
    };
    auto* chemical = wizard.pageOf<QcbsWizardChemicalPage>();
    wizard.goTo(chemical);
    for (QcbsDataItemHelpButton* button : chemical->findChildren<QcbsDataItemHelpButton*>())
        if (button->dataName() == "_chemical_formula_sum") button->click();
    EXPECT_EQ(shown, QStringList{"_chemical_formula_sum"});
}

}  // namespace
