// SPDX-License-Identifier: GPL-3.0-or-later
// The dialog for the editor's font and the colour and weight of each kind of CIF text.
#pragma once

#include <QDialog>

#include "cif/CifDictionary.hpp"
#include "editor/QcbsFontStyleSettings.hpp"
#include "support/THandle.hpp"

class QFontComboBox;
class QSpinBox;
class QcbsFontStyleList;
class QcbsRichTextEdit;

// The editor's font (family and size) and, for each kind of CIF text, its
// colour, bold, italic and underline, with a sample of CIF text drawn as
// chosen. "Defaults" shows the styles of a new program; OK makes the styles
// shown the program's (saved to the settings; stylesChanged() follows),
// Cancel leaves them as they were.
class QcbsFontStyleDialog : public QDialog {
    Q_OBJECT
public:
    QcbsFontStyleDialog(THandle<QcbsFontStyleSettings> styles, THandle<CifDictionary> dictionary,
                        QWidget* parent = nullptr);

    QcbsFontStyleList* styleList() const { return list_; }
    QFontComboBox* family() const { return family_; }
    QSpinBox* size() const { return size_; }
    QcbsRichTextEdit* sample() const { return sample_; }
    // The styles the dialog shows now.
    const QcbsFontStyleSettings& shownStyles() const;

    // The CIF text of the sample.
    static QString sampleText();

public slots:
    void restoreDefaults();
    void accept() override;

signals:
    // The program's styles changed; every editor is to draw with them.
    void stylesChanged();

private:
    void takeFont();
    void showFont();
    void updateSample();

    THandle<QcbsFontStyleSettings> styles_;
    THandle<QcbsFontStyleSettings> sampleStyles_;
    QcbsFontStyleList* list_ = nullptr;
    QFontComboBox* family_ = nullptr;
    QSpinBox* size_ = nullptr;
    QcbsRichTextEdit* sample_ = nullptr;
};
