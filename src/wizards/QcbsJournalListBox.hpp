// SPDX-License-Identifier: GPL-3.0-or-later
// The list of journals under a journal-name field, narrowed as the user types.
#pragma once

#include <QListWidget>
#include <QString>

// The list of journals under a journal-name field: updateJournalList()
// narrows it to the journals matching what is typed (punctuation and
// blanks do not count), and choosing a journal (a click, a double click or
// Return) emits selected() with its full name. Only journals that still
// take submissions are listed.
class QcbsJournalListBox : public QListWidget {
    Q_OBJECT
public:
    explicit QcbsJournalListBox(QWidget* parent = nullptr);

    // The program's code of a journal given by its full name, abbreviation
    // or code; empty for a journal not in the table.
    static QString orma_coden(const QString& journalName);

    // The full names listed, top to bottom.
    QStringList journalNames() const;

public slots:
    virtual void updateJournalList(const QString& typed);

signals:
    void selected(const QString& journalName);

private:
    void choose(QListWidgetItem* item);
};
