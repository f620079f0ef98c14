// SPDX-License-Identifier: GPL-3.0-or-later
// One page of the preferences dialog: shows options, takes them back, refuses bad input.
#pragma once

#include <QList>
#include <QString>
#include <QWidget>
#include <utility>

#include "base/QcbsOptions.hpp"

class QCheckBox;
class QLabel;

// A yes/no option shown as a check box: the settings key (which is also the
// box's object name), the box's text with its mnemonic, a tip, the option.
// A page lists its switches in a table, so a new one is one row.
struct QcbsOptionSwitch {
    const char* key;
    const char* label;
    const char* tip;
    bool QcbsOptions::*option;
};

// One page of the preferences dialog. It shows the options it is about,
// writes them back into a set of options, refuses values that cannot work
// (telling why beside the field) and can go back to the program's defaults.
// What a page keeps outside the options (dictionary switches, text styles)
// it makes hold in apply().
class QcbsPreferencesPage : public QWidget {
    Q_OBJECT
public:
    explicit QcbsPreferencesPage(const QString& title, QWidget* parent = nullptr);

    // The page's entry in the dialog's list.
    const QString& title() const { return title_; }

    // Fills the page's fields from the options (the switches here).
    virtual void showOptions(const QcbsOptions& options);
    // Writes the page's fields into the options; the others stay as they are.
    virtual void storeOptions(QcbsOptions& options) const;
    // Whether every field holds a value that can work; each one that does
    // not says why beside it, and the first of them takes the focus.
    virtual bool validate() { return true; }
    // The program's defaults for this page's fields.
    virtual void restoreDefaults() { showOptions(QcbsOptions()); }
    // Makes what the page keeps outside the options hold, and saves it.
    virtual void apply() {}

    // The label that tells why a field's value is refused, named after the
    // field, red, hidden while there is nothing to say.
    static QString reasonName(const QString& fieldName) { return fieldName + " reason"; }
    static QLabel* makeReasonLabel(const QString& fieldName, QWidget* parent);
    // Shows the reason, or hides the label for an empty one.
    static void setReason(QLabel* label, const QString& reason);

protected:
    // A check box for the switch, made a child of `parent`.
    QCheckBox* addSwitch(const QcbsOptionSwitch& row, QWidget* parent);

private:
    QString title_;
    QList<std::pair<QCheckBox*, bool QcbsOptions::*>> switches_;
};
