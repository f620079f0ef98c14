// SPDX-License-Identifier: GPL-3.0-or-later
// The Checking page of the preferences: limits of a check, consistency and mandatory items.
#include "preferences/QcbsCheckingPreferencesPage.hpp"

#include <QCheckBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFile>
#include <QFileInfo>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>
#include <fstream>

#include "cif/CifMandatoryItems.hpp"
#include "preferences/QcbsFileField.hpp"

namespace {

const QcbsOptionSwitch kConsistency = {
    "consistency checks", "Cross-check &related values",
    "Compare values that depend on each other: the cell volume with the cell, the density with Z and the "
    "formula weight, counts with what they count.",
    &QcbsOptions::consistency_checks};

const QcbsOptionSwitch kCheckMandatory = {
    "check mandatory items", "Check that the &mandatory data items are present",
    "Each check warns about every data item of the file below that a block lacks.",
    &QcbsOptions::check_mandatory_items};

// A number field with room for values the page refuses, so that the
// reason can be given instead of the value silently changing.
QSpinBox* numberBox(const char* name, const char* suffix, QWidget* parent) {
    auto* box = new QSpinBox(parent);
    box->setObjectName(name);
    box->setRange(0, 99999);
    box->setSuffix(suffix);
    return box;
}

QWidget* withReason(QWidget* field, QLabel* reason, QWidget* parent) {
    auto* box = new QWidget(parent);
    auto* layout = new QVBoxLayout(box);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    auto* row = new QHBoxLayout;
    row->addWidget(field);
    row->addStretch(1);
    layout->addLayout(row);
    layout->addWidget(reason);
    return box;
}

}  // namespace

QcbsCheckingPreferencesPage::QcbsCheckingPreferencesPage(QWidget* parent)
    : QcbsPreferencesPage("Checking", parent) {
    auto* layout = new QVBoxLayout(this);

    auto* limits = new QGroupBox("Limits", this);
    auto* form = new QFormLayout(limits);
    lineLength_ = numberBox("line length limit", " characters", limits);
    lineLength_->setToolTip(
        QString("Longer lines get a warning. CIF allows at most %1 characters.").arg(longestLine));
    lineLengthReason_ = makeReasonLabel(lineLength_->objectName(), limits);
    form->addRow("&Line length limit:", withReason(lineLength_, lineLengthReason_, limits));
    consecutive_ = numberBox("max consec error", " messages", limits);
    consecutive_->setToolTip(
        "A run of warnings on consecutive lines is listed up to this many, then \"(warnings omitted)\"; "
        "one more error than this on consecutive lines stops the list.");
    consecutiveReason_ = makeReasonLabel(consecutive_->objectName(), limits);
    form->addRow("Messages on &consecutive lines:", withReason(consecutive_, consecutiveReason_, limits));
    layout->addWidget(limits);

    auto* checks = new QGroupBox("Checks", this);
    auto* checkLayout = new QVBoxLayout(checks);
    checkLayout->addWidget(addSwitch(kConsistency, checks));
    checkMandatory_ = addSwitch(kCheckMandatory, checks);
    checkLayout->addWidget(checkMandatory_);
    mandatory_ = new QcbsFileField("mandatory filename", "Mandatory data items file",
                                   "Text files (*.txt);;All Files (*)", checks);
    show_ = new QPushButton("Sho&w...", checks);
    show_->setObjectName("show mandatory items");
    show_->setToolTip("List the data items the file requires, section by section.");
    auto* fileRow = new QHBoxLayout;
    auto* fileLabel = new QLabel("&Items file:", checks);
    fileLabel->setBuddy(mandatory_->lineEdit());
    // Level with the line of the name, also when a reason shows below it.
    fileLabel->setMinimumHeight(mandatory_->lineEdit()->sizeHint().height());
    mandatory_->lineEdit()->setPlaceholderText("The file of mandatory data items");
    fileRow->addWidget(fileLabel, 0, Qt::AlignTop);
    fileRow->addWidget(mandatory_, 1);
    fileRow->addWidget(show_, 0, Qt::AlignTop);
    checkLayout->addLayout(fileRow);
    auto* note = new QLabel(
        "The file lists data names under data_all (required somewhere in the document and in every block "
        "with "
        "crystal data), data_publication (somewhere in the document) and data_crystal (in every block with "
        "crystal data); lines starting with # are comments.",
        checks);
    note->setWordWrap(true);
    note->setEnabled(false);
    checkLayout->addWidget(note);
    layout->addWidget(checks);
    layout->addStretch(1);

    connect(lineLength_, &QSpinBox::valueChanged, this, [this] { setReason(lineLengthReason_, QString()); });
    connect(consecutive_, &QSpinBox::valueChanged, this,
            [this] { setReason(consecutiveReason_, QString()); });
    connect(checkMandatory_, &QCheckBox::toggled, mandatory_, [this] { mandatory_->setReason(QString()); });
    connect(show_, &QPushButton::clicked, this, &QcbsCheckingPreferencesPage::showMandatoryItems);
}

void QcbsCheckingPreferencesPage::showOptions(const QcbsOptions& options) {
    QcbsPreferencesPage::showOptions(options);
    lineLength_->setValue(options.line_length_limit);
    consecutive_->setValue(options.max_consec_error);
    mandatory_->setFileName(options.mandatory_items_file);
}

void QcbsCheckingPreferencesPage::storeOptions(QcbsOptions& options) const {
    QcbsPreferencesPage::storeOptions(options);
    options.line_length_limit = lineLength_->value();
    options.max_consec_error = consecutive_->value();
    options.mandatory_items_file = mandatory_->fileName();
}

bool QcbsCheckingPreferencesPage::validate() {
    QWidget* first = nullptr;
    const auto refuse = [&first](QWidget* field, QLabel* label, const QString& reason) {
        setReason(label, reason);
        if (!reason.isEmpty() && first == nullptr) first = field;
    };
    const int length = lineLength_->value();
    refuse(lineLength_, lineLengthReason_,
           length < 1             ? "A line holds at least 1 character."
           : length > longestLine ? QString("CIF allows at most %1 characters on a line.").arg(longestLine)
                                  : QString());
    refuse(consecutive_, consecutiveReason_,
           consecutive_->value() < 1 ? "At least 1 message of a run must be listed." : QString());
    if (!mandatory_->check(checkMandatory_->isChecked(),
                           "Choose the file of mandatory data items, or do not check for them.") &&
        first == nullptr)
        first = mandatory_->lineEdit();
    if (first != nullptr) first->setFocus();
    return first == nullptr;
}

QString QcbsCheckingPreferencesPage::mandatoryItemsText(const QString& fileName) {
    if (fileName.isEmpty()) return "No file of mandatory data items is chosen.";
    const QString problem = QcbsFileField::problemWith(fileName);
    if (!problem.isEmpty()) return problem;
    std::ifstream in(QFile::encodeName(fileName).constData(), std::ios::binary);
    if (!in) return "The file " + fileName + " cannot be read.";
    // The sections as the check reads them, followed through the trace.
    static const char* const kSections[] = {"data_all", "data_publication", "data_crystal"};
    QStringList items[3];
    int section = -1;  // none yet, or one the check does not know
    int dropped = 0;
    int unrecognised = 0;
    CifMandatoryItems::read(in, [&](CifMandatoryItems::Line kind, const std::string& text) {
        if (kind == CifMandatoryItems::Line::section) {
            section = -1;
            for (int i = 0; i < 3; ++i)
                if (text == kSections[i]) section = i;
        } else if (kind == CifMandatoryItems::Line::item) {
            if (section < 0)
                ++dropped;
            else
                items[section] << QString::fromStdString(text);
        } else if (kind == CifMandatoryItems::Line::unrecognised) {
            ++unrecognised;
        }
    });
    static const char* const kMeaning[] = {
        "required somewhere in the document and in every block with crystal data",
        "required somewhere in the document", "required in every block with crystal data"};
    QString text;
    for (int i = 0; i < 3; ++i) {
        const qsizetype count = items[i].size();
        text += QString("%1, %2: %3 %4\n")
                    .arg(kSections[i], kMeaning[i])
                    .arg(count)
                    .arg(count == 1 ? "item" : "items");
        for (const QString& item : items[i]) text += "    " + item + "\n";
        text += "\n";
    }
    if (dropped > 0)
        text += QString("%1 %2 under another heading or before any, not used.\n")
                    .arg(dropped)
                    .arg(dropped == 1 ? "item stands" : "items stand");
    if (unrecognised > 0)
        text += QString("%1 %2 not understood and skipped.\n")
                    .arg(unrecognised)
                    .arg(unrecognised == 1 ? "line was" : "lines were");
    return text.trimmed();
}

void QcbsCheckingPreferencesPage::showMandatoryItems() {
    auto* dialog = new QDialog(this);
    dialog->setObjectName("mandatory items");
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    const QString name = mandatory_->fileName();
    dialog->setWindowTitle("Mandatory data items" +
                           (name.isEmpty() ? QString() : " - " + QFileInfo(name).fileName()));
    auto* text = new QPlainTextEdit(mandatoryItemsText(name), dialog);
    text->setObjectName("mandatory items text");
    text->setReadOnly(true);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, dialog);
    connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    auto* layout = new QVBoxLayout(dialog);
    layout->addWidget(text);
    layout->addWidget(buttons);
    dialog->resize(480, 420);
    dialog->open();
}
