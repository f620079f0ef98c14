// SPDX-License-Identifier: GPL-3.0-or-later
// The dialog for the editor's font and the colour and weight of each kind of CIF text.
#include "preferences/QcbsFontStyleDialog.hpp"

#include <QDialogButtonBox>
#include <QFontComboBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

#include "editor/QcbsRichTextEdit.hpp"
#include "preferences/QcbsFontStyleList.hpp"

QcbsFontStyleDialog::QcbsFontStyleDialog(THandle<QcbsFontStyleSettings> styles,
                                         THandle<CifDictionary> dictionary, QWidget* parent)
    : QDialog(parent), styles_(styles), sampleStyles_(new QcbsFontStyleSettings(*styles)) {
    setObjectName("FontStyleDialog");
    setWindowTitle("Fonts and Colours");
    auto* layout = new QVBoxLayout(this);

    auto* fontRow = new QHBoxLayout;
    auto* familyLabel = new QLabel("&Font:", this);
    family_ = new QFontComboBox(this);
    family_->setObjectName("fontFamily");
    familyLabel->setBuddy(family_);
    auto* sizeLabel = new QLabel("&Size:", this);
    size_ = new QSpinBox(this);
    size_->setObjectName("fontSize");
    size_->setRange(4, 72);
    sizeLabel->setBuddy(size_);
    fontRow->addWidget(familyLabel);
    fontRow->addWidget(family_, 1);
    fontRow->addWidget(sizeLabel);
    fontRow->addWidget(size_);
    layout->addLayout(fontRow);

    auto* styleBox = new QGroupBox("Text styles", this);
    auto* styleLayout = new QVBoxLayout(styleBox);
    list_ = new QcbsFontStyleList(*styles, styleBox);
    styleLayout->addWidget(list_);
    layout->addWidget(styleBox);

    auto* sampleBox = new QGroupBox("Sample", this);
    auto* sampleLayout = new QVBoxLayout(sampleBox);
    sample_ = new QcbsRichTextEdit(dictionary, sampleStyles_, sampleBox, "sample");
    sample_->setObjectName("sample");
    sample_->setPlainText(sampleText());
    sample_->setReadOnly(true);
    sample_->setMinimumHeight(170);
    sampleLayout->addWidget(sample_);
    layout->addWidget(sampleBox, 1);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    QPushButton* defaults = buttons->addButton("Defaults", QDialogButtonBox::ResetRole);
    defaults->setObjectName("buttonDefaults");
    layout->addWidget(buttons);

    showFont();
    connect(buttons, &QDialogButtonBox::accepted, this, &QcbsFontStyleDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QcbsFontStyleDialog::reject);
    connect(defaults, &QPushButton::clicked, this, &QcbsFontStyleDialog::restoreDefaults);
    connect(list_, &QcbsFontStyleList::stylesEdited, this, &QcbsFontStyleDialog::updateSample);
    connect(family_, &QFontComboBox::currentFontChanged, this, &QcbsFontStyleDialog::takeFont);
    connect(size_, &QSpinBox::valueChanged, this, &QcbsFontStyleDialog::takeFont);
}

QString QcbsFontStyleDialog::sampleText() {
    return "# A sample of CIF text\n"
           "data_sample\n"
           "_cell_length_a   5.4307(2)\n"
           "_my_own_item     'a custom item'\n"
           "_chemical_name_common   \\a-quartz, C~6~H~12~ at 10^5^ Pa\n"
           "loop_\n"
           "_atom_site_label\n"
           "_atom_site_fract_x\n"
           "Si1  0.4697(1)\n"
           "_publ_section_comment\n"
           ";\n"
           "Text block with \\%A and \\'e\n"
           ";\n";
}

const QcbsFontStyleSettings& QcbsFontStyleDialog::shownStyles() const { return list_->styles(); }

void QcbsFontStyleDialog::showFont() {
    const QSignalBlocker familyBlock(family_), sizeBlock(size_);
    const QFont& font = list_->styles().baseFont();
    family_->setCurrentFont(font);
    size_->setValue(font.pointSize() > 0 ? font.pointSize() : 10);
    updateSample();
}

void QcbsFontStyleDialog::takeFont() {
    QcbsFontStyleSettings styles = list_->styles();
    QFont font(family_->currentFont().family());
    font.setPointSize(size_->value());
    styles.setBaseFont(font);
    list_->setStyles(styles);
}

void QcbsFontStyleDialog::updateSample() {
    *sampleStyles_ = list_->styles();
    sample_->styleUpdate();
}

void QcbsFontStyleDialog::restoreDefaults() {
    list_->restoreDefaults();
    showFont();
}

void QcbsFontStyleDialog::accept() {
    *styles_ = list_->styles();
    styles_->saveSettings();
    emit stylesChanged();
    QDialog::accept();
}
