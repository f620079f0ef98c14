// SPDX-License-Identifier: GPL-3.0-or-later
// One journal in the journal list: its full name, with its abbreviation beside it.
#include "wizards/QcbsJournalListBoxItem.hpp"

#include "cif/Journal.hpp"
#include "wizards/QcbsJournalListBox.hpp"

namespace {

QString fromView(std::string_view view) { return QString::fromUtf8(view.data(), qsizetype(view.size())); }

}  // namespace

QcbsJournalListBoxItem::QcbsJournalListBoxItem(int journal, QcbsJournalListBox* list)
    : QListWidgetItem(list, QListWidgetItem::UserType), journal_(journal) {
    const Journal entry(journal);
    const QString name = fromView(entry.name());
    const QString abbreviation = fromView(entry.abbreviation());
    setText(abbreviation == name ? name : name + "   (" + abbreviation + ")");
    setToolTip(name + "\n" + abbreviation + "\ncode " + fromView(entry.code()));
}

QString QcbsJournalListBoxItem::journalName() const { return fromView(Journal(journal_).name()); }
