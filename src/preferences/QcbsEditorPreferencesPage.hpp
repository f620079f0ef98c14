// SPDX-License-Identifier: GPL-3.0-or-later
// The Editor page of the preferences: switches, template, size of new windows, text styles.
#pragma once

#include "editor/QcbsFontStyleSettings.hpp"
#include "preferences/QcbsPreferencesPage.hpp"
#include "support/THandle.hpp"

class QSpinBox;
class QcbsFileField;
class QcbsFontStyleList;

// The Editor page: the editor's switches (line numbers, text on tool
// buttons, one document per window, backups), the template new documents
// start from, the size of new windows and the text styles.
class QcbsEditorPreferencesPage : public QcbsPreferencesPage {
    Q_OBJECT
public:
    // `styles` are the program's text styles, changed only by apply().
    explicit QcbsEditorPreferencesPage(THandle<QcbsFontStyleSettings> styles, QWidget* parent = nullptr);

    void showOptions(const QcbsOptions& options) override;
    void storeOptions(QcbsOptions& options) const override;
    bool validate() override;
    void restoreDefaults() override;
    // Gives the program the styles of the list and saves them.
    void apply() override;

    QcbsFileField* templateField() const { return template_; }
    QcbsFontStyleList* fontStyleList() const { return fontStyles_; }

signals:
    // The text styles changed: every editor must draw its text again.
    void stylesChanged();

private:
    THandle<QcbsFontStyleSettings> styles_;
    QCheckBox* startWithTemplate_ = nullptr;
    QcbsFileField* template_ = nullptr;
    QSpinBox* width_ = nullptr;
    QSpinBox* height_ = nullptr;
    QcbsFontStyleList* fontStyles_ = nullptr;
};
