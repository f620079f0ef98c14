// SPDX-License-Identifier: GPL-3.0-or-later
// A wizard's welcome page: what the wizard does, and a file to work on when it has no document.
#pragma once

#include "cif/CifDictionary.hpp"
#include "support/THandle.hpp"
#include "wizards/QcbsWizardPage.hpp"

class QLineEdit;
class QWidget;

// A wizard's welcome page: what the wizard does and, for a wizard opened
// without a document, a file to work on (the file row; hidden otherwise).
class QcbsWizardIntroPage : public QcbsWizardPage {
    Q_OBJECT
public:
    QcbsWizardIntroPage(QPixmap* splash, QcbsWizard* wizard, THandle<CifDictionary> dictionary);

    QLineEdit* fileField() const { return file_; }
    QWidget* fileRow() const { return fileRow_; }

    void showPage() override;
    void next() override {}

public slots:
    void filebrowse();
    // Next is on while a file is named.
    void filechanged(const QString& text);

private:
    THandle<CifDictionary> dictionary_;
    QWidget* fileRow_;
    QLineEdit* file_;
};
