// SPDX-License-Identifier: GPL-3.0-or-later
// The crystal wizard's symmetry page: crystal system, space-group number and symbol kept in step.
#include "wizards/QcbsWizardSpaceGroupPage.hpp"

#include <QComboBox>
#include <QIntValidator>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QRegularExpression>
#include <utility>

#include "cif/Spacegroup.hpp"
#include "wizards/QcbsWizard.hpp"

namespace {

const QString kSystem = "_symmetry_cell_setting";
const QString kNumber = "_symmetry_int_tables_number";
const QString kSymbol = "_symmetry_space_group_name_H-M";

std::vector<QcbsWizardField> symmetryFields() {
    using F = QcbsWizardField;
    QStringList systems;
    for (int i = 0; i <= Spacegroup::cubic; ++i) systems << Spacegroup::crystal_system_name(i);
    return {
        {"Crystal system:", kSystem, F::Choice, false, true, systems, {"_space_group_crystal_system"}},
        {"International Tables space group number:",
         kNumber,
         F::Line,
         false,
         true,
         {},
         {"_space_group_IT_number"}},
        {"Hermann-Mauguin space group symbol:",
         kSymbol,
         F::EditableChoice,
         false,
         true,
         {},
         {"_space_group_name_H-M_alt"}},
    };
}

bool known(const QString& symbol) { return !symbol.isEmpty() && symbol != "Unknown" && symbol != "?"; }

QString spaced(const QString& symbol) {
    return QString::fromStdString(Spacegroup::name_space_separated(symbol.toStdString()));
}

}  // namespace

QcbsWizardSpaceGroupPage::QcbsWizardSpaceGroupPage(QPixmap* splash, QcbsWizard* wizard)
    : QcbsWizardFormPage(splash, wizard, "space group",
                         "Enter details of the crystallographic symmetry of this structure", symmetryFields(),
                         true) {
    numberField()->setValidator(new QIntValidator(1, 230, numberField()));
    numberField()->setMaxLength(3);
    connect(numberField(), &QLineEdit::textChanged, this, &QcbsWizardSpaceGroupPage::updateSpacegroupNumber);
    connect(symbolBox(), &QComboBox::textActivated, this, &QcbsWizardSpaceGroupPage::updateSpacegroupName);
    connect(symbolBox(), &QComboBox::editTextChanged, this, &QcbsWizardSpaceGroupPage::inSpacegroupNameEdit);
    // Leaving the box confirms what was typed, as Return does.
    connect(symbolBox()->lineEdit(), &QLineEdit::editingFinished, this, [this] {
        if (!isComplete()) confirmTypedSymbol();
    });
    symbolBox()->lineEdit()->installEventFilter(this);
}

bool QcbsWizardSpaceGroupPage::eventFilter(QObject* watched, QEvent* event) {
    // Return confirms a typed symbol; it does not also press Next.
    if (watched == symbolBox()->lineEdit() && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            confirmTypedSymbol();
            return true;
        }
    }
    return QcbsWizardFormPage::eventFilter(watched, event);
}

void QcbsWizardSpaceGroupPage::confirmTypedSymbol() {
    const QString typed = symbolBox()->currentText().trimmed();
    if (!typed.isEmpty() && symbolBox()->findText(typed) < 0) {
        const bool wasFilling = std::exchange(filling_, true);
        symbolBox()->addItem(typed);
        symbolBox()->setEditText(typed);
        filling_ = wasFilling;
    }
    updateSpacegroupName(typed.isEmpty() ? QString("?") : typed);
}

QComboBox* QcbsWizardSpaceGroupPage::crystalSystemBox() const { return choice(kSystem); }
QLineEdit* QcbsWizardSpaceGroupPage::numberField() const { return lineEdit(kNumber); }
QComboBox* QcbsWizardSpaceGroupPage::symbolBox() const { return choice(kSymbol); }

QString QcbsWizardSpaceGroupPage::symbolOfOperators(const std::vector<std::string>& operators) {
    if (operators.empty()) return "Unknown";
    return QString::fromStdString(Spacegroup(operators).symbol());
}

void QcbsWizardSpaceGroupPage::readOperators() {
    derivedSymbol_ = "Unknown";
    const THandle<CifDataBlock>& block = wizard()->workingBlock();
    THandle<CifDataItem> item = block->find("_symmetry_equiv_pos_as_xyz");
    if (item.is_null()) item = block->find("_space_group_symop_operation_xyz");
    if (item.is_null() || !item->has_value()) return;
    std::vector<std::string> operators;
    for (unsigned int i = 0; i < item->size(); ++i) operators.push_back(item->value(i));
    derivedSymbol_ = symbolOfOperators(operators);
}

void QcbsWizardSpaceGroupPage::showPage() {
    if (wizard()->workingBlock().is_null()) return focusFirstField();
    filling_ = true;
    keptSymbol_.clear();
    readFields();
    // The number's list of settings replaces the box's entries: the symbol read goes back after it.
    QString symbol = symbolBox()->currentText().trimmed();
    if (numberField()->text().trimmed().isEmpty()) numberField()->setText("?");
    if (symbol.isEmpty()) symbol = "?";
    symbolBox()->setEditText(symbol);
    if (symbol != "?") {
        symbol.remove(QRegularExpression("[\\(\\)\\~\\^\\s]"));
        const QString suite = QString::fromStdString(Spacegroup::derive_orma_symbol(symbol.toStdString()));
        if (known(suite)) updateSpacegroupName(suite);
    }
    noteShownTexts();
    readOperators();
    // What the block lacks and its operators or group tell, filled in and said so.
    if (isUnknown(symbolBox()->currentText()) && known(derivedSymbol_)) {
        const bool numberKnown = !isUnknown(numberField()->text());
        updateSpacegroupName(derivedSymbol_);
        showNote(std::size_t(indexOf(kSymbol)), "from the operators");
        if (!numberKnown && !isUnknown(numberField()->text()))
            showNote(std::size_t(indexOf(kNumber)), "from the operators");
    }
    if (fillCrystalSystem(numberField()->text().toInt()))
        showNote(std::size_t(indexOf(kSystem)), "from the space group");
    filling_ = false;
    setNextEnabled(true);
    checkAgainstSymmops(symbolBox()->currentText());
    focusFirstField();
}

bool QcbsWizardSpaceGroupPage::fillCrystalSystem(int number) {
    if (number < 1 || number > 230 || !isUnknown(crystalSystemBox()->currentText())) return false;
    updateCellSetting(number);
    return true;
}

void QcbsWizardSpaceGroupPage::updateSpacegroupNumber(const QString& text) {
    setNextEnabled(false);
    message()->clear();
    // The symbol shown before, also across a number typed digit by digit.
    if (symbolBox()->count() > 0 && !isUnknown(symbolBox()->currentText()))
        keptSymbol_ = symbolBox()->currentText();
    const QString remembered = keptSymbol_;
    const bool wasFilling = std::exchange(filling_, true);
    symbolBox()->clear();
    symbolBox()->insertItem(0, "?");
    symbolBox()->setCurrentIndex(0);
    bool ok = false;
    const int number = text.toInt(&ok);
    if (ok && number >= 1 && number <= 230) {
        for (int setting = 1; setting <= Spacegroup::nsettings(number); ++setting) {
            const QString entry = spaced(QString::fromStdString(Spacegroup::orma_symbol(number, setting)));
            symbolBox()->addItem(entry);
            if (entry == remembered) {
                symbolBox()->setCurrentIndex(setting);
                setNextEnabled(true);
            }
        }
    }
    filling_ = wasFilling;
}

void QcbsWizardSpaceGroupPage::updateSpacegroupName(const QString& name) {
    if (name == "?") {
        setNextEnabled(true);
        checkAgainstSymmops(name);
        return;
    }
    const std::string suite = Spacegroup::derive_orma_symbol(name.toStdString());
    if (suite == "Unknown") {
        // Not a symbol the tables know: taken as typed.
        setNextEnabled(true);
        checkAgainstSymmops(name);
        return;
    }
    for (int number = 1; number <= 230; ++number) {
        for (int setting = 1; setting <= Spacegroup::nsettings(number); ++setting) {
            if (Spacegroup::orma_symbol(number, setting) != suite) continue;
            const bool wasFilling = std::exchange(filling_, true);
            numberField()->setText(QString::number(number));
            symbolBox()->setEditText(spaced(QString::fromStdString(suite)));
            filling_ = wasFilling;
            setNextEnabled(true);
            checkAgainstSymmops(symbolBox()->currentText());
            return;
        }
    }
}

void QcbsWizardSpaceGroupPage::inSpacegroupNameEdit(const QString&) {
    if (!filling_) setNextEnabled(false);
}

void QcbsWizardSpaceGroupPage::updateCellSetting(int number) {
    if (number != 0) crystalSystemBox()->setCurrentIndex(Spacegroup::crystal_system(number));
}

void QcbsWizardSpaceGroupPage::checkAgainstSymmops(const QString& name) {
    if (known(name) && known(derivedSymbol_) &&
        Spacegroup::derive_orma_symbol(name.toStdString()) != derivedSymbol_.toStdString())
        message()->setText("Warning: Space group symbol: " + spaced(name) +
                           " does not agree \nwith the given symmetry operators: " + spaced(derivedSymbol_));
    else
        message()->clear();
}
