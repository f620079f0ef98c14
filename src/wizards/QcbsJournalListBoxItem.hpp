// SPDX-License-Identifier: GPL-3.0-or-later
// One journal in the journal list: its full name, with its abbreviation beside it.
#pragma once

#include <QListWidgetItem>
#include <QString>

class QcbsJournalListBox;

// One journal in the journal list: its full name, and its abbreviation
// when that differs; the tool tip adds the program's code.
class QcbsJournalListBoxItem : public QListWidgetItem {
public:
    QcbsJournalListBoxItem(int journal, QcbsJournalListBox* list);

    int journal() const { return journal_; }
    QString journalName() const;

private:
    int journal_;
};
