// SPDX-License-Identifier: GPL-3.0-or-later
// The table of special characters: each glyph with its CIF code; a click inserts the code.
#pragma once

#include <QDialog>
#include <QList>

class QToolButton;

// Every character the CIF codes stand for, grouped as Greek letters,
// accents, special letters and other symbols: each button shows the glyph
// (an accent on a dotted circle; a code without a character as the code
// itself), its tool tip names the code and the character. A click asks for
// the code to be inserted; the table stays open meanwhile and never takes
// the keyboard from the editor.
class QcbsSpecialCharacterTable : public QDialog {
    Q_OBJECT
public:
    explicit QcbsSpecialCharacterTable(QWidget* parent = nullptr);
    // The buttons, in the order of the table of codes.
    const QList<QToolButton*>& buttons() const { return buttons_; }

signals:
    // The CIF code of the button clicked ("\a", "\%A", ...).
    void codeChosen(const QString& code);

private:
    QList<QToolButton*> buttons_;
};
