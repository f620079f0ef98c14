// SPDX-License-Identifier: GPL-3.0-or-later
// The modeless "Replace Text" dialog.
#pragma once

#include "find/QcbsSearchDialog.hpp"

class QPushButton;

// "Replace Text": the find and the replace texts with their histories,
// "&Find Next", "&Replace", "Replace &All" and "Close", the direction and
// the options. Find and Replace take the find text literally; Replace All
// takes it as a regular expression over the whole text, ignoring the
// direction and "Whole words only", and changes the text as one undo step.
class QcbsReplaceDialog : public QcbsSearchDialog {
    Q_OBJECT
public:
    explicit QcbsReplaceDialog(QWidget* parent = nullptr);

    QComboBox* comboReplace() const { return comboReplace_; }
    QPushButton* buttonFindNext() const { return buttonFindNext_; }
    QPushButton* buttonReplace() const { return buttonReplace_; }
    QPushButton* buttonReplaceAll() const { return buttonReplaceAll_; }

    // Both texts into their histories.
    void storeLists();

public slots:
    // Replaces the selection when it is the find text (case-blind unless
    // "Case sensitive"); otherwise finds the next match. The next match is
    // not searched after a replacement.
    bool doReplace();
    // False (after a beep) when the find text does not occur in the text,
    // is no valid regular expression or changes nothing.
    bool doReplaceAll();

protected:
    void loadExtraSettings(ORMAApplicationSettings& settings) override;
    void saveExtraSettings(ORMAApplicationSettings& settings) override;

private:
    QComboBox* comboReplace_ = nullptr;
    QPushButton* buttonFindNext_ = nullptr;
    QPushButton* buttonReplace_ = nullptr;
    QPushButton* buttonReplaceAll_ = nullptr;
};
