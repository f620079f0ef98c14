// SPDX-License-Identifier: GPL-3.0-or-later
// The Editor page of the preferences: switches, template, size of new windows, text styles.
#include "preferences/QcbsEditorPreferencesPage.hpp"

#include <QCheckBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSpinBox>
#include <QVBoxLayout>

#include "preferences/QcbsFileField.hpp"
#include "preferences/QcbsFontStyleList.hpp"

namespace {

// The editor's switches, one row each, in the order shown.
const QcbsOptionSwitch kEditorSwitches[] = {
    {"line numbers", "Show line &numbers", "Number the lines in a margin left of the text.",
     &QcbsOptions::line_numbers},
    {"text on buttons", "Show &text on tool buttons", "Name each tool under its picture.",
     &QcbsOptions::text_buttons},
    {"reuse window", "Open files in the current &window",
     "Opening a file replaces the document of the window instead of opening another window.",
     &QcbsOptions::reuse_window},
    {"save backup file", "Keep a &backup copy when saving",
     "Saving first renames the old file, with _backup before its extension (name_backup.cif).",
     &QcbsOptions::save_backup},
    {"keep recovery files", "Keep unsaved edits for &recovery",
     "A few seconds after each edit the unsaved text is copied to a private recovery file, offered "
     "again should Tessary end without saving it.",
     &QcbsOptions::keep_recovery},
    {"folding", "Fo&ld loops, save frames and text fields",
     "A margin left of the text opens and closes loops, save frames and text fields.", &QcbsOptions::folding},
    {"data name completion", "&Offer data names while typing",
     "Typing \"_\" lists the enabled dictionaries' data names, with each definition's first line.",
     &QcbsOptions::data_name_completion},
    {"matching delimiters", "Show &matching quotes and delimiters",
     "The partner of the quote, bracket or text-field \";\" at the cursor is marked.",
     &QcbsOptions::matching_delimiters},
    {"rectangular selection", "Type into &column selections",
     "Alt+drag selects a column; typing and pasting reach every line of it.",
     &QcbsOptions::rectangular_selection},
    {"show white space", "Show white s&pace", "Blanks, tabs and line ends are shown as marks.",
     &QcbsOptions::show_white_space},
};

const QcbsOptionSwitch kStartWithTemplate = {
    "start with template", "&Start new documents as a copy of the template file",
    "File > New opens a copy of the template file instead of an empty text.",
    &QcbsOptions::start_with_template};

QSpinBox* sizeBox(const char* name, int minimum, QWidget* parent) {
    auto* box = new QSpinBox(parent);
    box->setObjectName(name);
    box->setRange(minimum, 20000);
    box->setSuffix(" pixels");
    return box;
}

}  // namespace

QcbsEditorPreferencesPage::QcbsEditorPreferencesPage(THandle<QcbsFontStyleSettings> styles, QWidget* parent)
    : QcbsPreferencesPage("Editor", parent), styles_(std::move(styles)) {
    auto* layout = new QVBoxLayout(this);

    auto* editor = new QGroupBox("Editor", this);
    auto* editorLayout = new QVBoxLayout(editor);
    for (const QcbsOptionSwitch& row : kEditorSwitches) editorLayout->addWidget(addSwitch(row, editor));
    layout->addWidget(editor);

    auto* templates = new QGroupBox("Template", this);
    auto* templateLayout = new QVBoxLayout(templates);
    startWithTemplate_ = addSwitch(kStartWithTemplate, templates);
    template_ =
        new QcbsFileField("template filename", "Template file", "CIF (*.cif);;All Files (*)", templates);
    auto* templateNote = new QLabel("Edit > Insert Template inserts this file at the cursor.", templates);
    templateNote->setEnabled(false);
    template_->lineEdit()->setPlaceholderText("The template file, a CIF");
    auto* fileRow = new QHBoxLayout;
    auto* fileLabel = new QLabel("&File:", templates);
    fileLabel->setBuddy(template_->lineEdit());
    // Level with the line of the name, also when a reason shows below it.
    fileLabel->setMinimumHeight(template_->lineEdit()->sizeHint().height());
    fileRow->addWidget(fileLabel, 0, Qt::AlignTop);
    fileRow->addWidget(template_, 1);
    templateLayout->addWidget(startWithTemplate_);
    templateLayout->addLayout(fileRow);
    templateLayout->addWidget(templateNote);
    layout->addWidget(templates);
    connect(startWithTemplate_, &QCheckBox::toggled, template_, [this] { template_->setReason(QString()); });

    auto* windows = new QGroupBox("Windows", this);
    auto* windowLayout = new QHBoxLayout(windows);
    width_ = sizeBox("window width", 400, windows);
    height_ = sizeBox("window height", 300, windows);
    windowLayout->addWidget(new QLabel("New windows open", windows));
    windowLayout->addWidget(width_);
    windowLayout->addWidget(new QLabel("wide and", windows));
    windowLayout->addWidget(height_);
    windowLayout->addWidget(new QLabel("high", windows));
    windowLayout->addStretch(1);
    windows->setToolTip("A window that closes leaves its own size here.");
    layout->addWidget(windows);

    auto* styleGroup = new QGroupBox("Text styles", this);
    auto* styleLayout = new QVBoxLayout(styleGroup);
    fontStyles_ = new QcbsFontStyleList(*styles_, styleGroup);
    styleLayout->addWidget(fontStyles_);
    layout->addWidget(styleGroup);
    layout->addStretch(1);
}

void QcbsEditorPreferencesPage::showOptions(const QcbsOptions& options) {
    QcbsPreferencesPage::showOptions(options);
    template_->setFileName(options.template_file);
    width_->setValue(options.initial_app_width);
    height_->setValue(options.initial_app_height);
}

void QcbsEditorPreferencesPage::storeOptions(QcbsOptions& options) const {
    QcbsPreferencesPage::storeOptions(options);
    options.template_file = template_->fileName();
    options.initial_app_width = width_->value();
    options.initial_app_height = height_->value();
}

bool QcbsEditorPreferencesPage::validate() {
    const bool ok = template_->check(startWithTemplate_->isChecked(),
                                     "Choose the template file, or do not start new documents from one.");
    if (!ok) template_->lineEdit()->setFocus();
    return ok;
}

void QcbsEditorPreferencesPage::restoreDefaults() {
    QcbsPreferencesPage::restoreDefaults();
    fontStyles_->restoreDefaults();
}

void QcbsEditorPreferencesPage::apply() {
    if (!fontStyles_->changed()) return;
    *styles_ = fontStyles_->styles();
    styles_->saveSettings();
    fontStyles_->setApplied();
    emit stylesChanged();
}
