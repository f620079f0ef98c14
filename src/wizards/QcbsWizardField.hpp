// SPDX-License-Identifier: GPL-3.0-or-later
// One field of a wizard page: its label, the data name it edits and the widget that edits it.
#pragma once

#include <QString>
#include <QStringList>

// One field of a wizard page: a row with its label, the widget that edits
// the data name's value and, when asked, a help button for the data name.
struct QcbsWizardField {
    enum Kind {
        Line,            // a line edit
        Choice,          // a list to choose from (choices)
        EditableChoice,  // a list to choose from or type into
        Text             // several lines (an address, a title)
    };
    QString label;
    QString dataName;
    Kind kind = Line;
    bool limited = false;  // takes the wizard's maximum field length
    bool help = true;
    QStringList choices = {};
    // Other names a block may give the item (a newer dictionary's); the
    // field reads and writes the first name the block holds.
    QStringList alternatives = {};
};
