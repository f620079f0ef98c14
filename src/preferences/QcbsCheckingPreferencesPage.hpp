// SPDX-License-Identifier: GPL-3.0-or-later
// The Checking page of the preferences: limits of a check, consistency and mandatory items.
#pragma once

#include "preferences/QcbsPreferencesPage.hpp"

class QLabel;
class QPushButton;
class QSpinBox;
class QcbsFileField;

// The Checking page: the line-length limit, the limit on messages on
// consecutive lines, the consistency checks and the mandatory data items
// with the file that lists them (whose sections a button shows).
class QcbsCheckingPreferencesPage : public QcbsPreferencesPage {
    Q_OBJECT
public:
    explicit QcbsCheckingPreferencesPage(QWidget* parent = nullptr);

    void showOptions(const QcbsOptions& options) override;
    void storeOptions(QcbsOptions& options) const override;
    bool validate() override;

    QSpinBox* lineLengthBox() const { return lineLength_; }
    QSpinBox* consecutiveBox() const { return consecutive_; }
    QcbsFileField* mandatoryField() const { return mandatory_; }

    // What a mandatory-items file holds, section by section, as the check
    // reads it; or why it cannot be read.
    static QString mandatoryItemsText(const QString& fileName);
    // The longest line CIF allows.
    static constexpr int longestLine = 2048;

public slots:
    // Shows mandatoryItemsText() of the file named now.
    void showMandatoryItems();

private:
    QSpinBox* lineLength_ = nullptr;
    QLabel* lineLengthReason_ = nullptr;
    QSpinBox* consecutive_ = nullptr;
    QLabel* consecutiveReason_ = nullptr;
    QCheckBox* checkMandatory_ = nullptr;
    QcbsFileField* mandatory_ = nullptr;
    QPushButton* show_ = nullptr;
};
