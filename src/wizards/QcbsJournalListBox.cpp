// SPDX-License-Identifier: GPL-3.0-or-later
// The list of journals under a journal-name field, narrowed as the user types.
#include "wizards/QcbsJournalListBox.hpp"

#include "cif/Journal.hpp"
#include "wizards/QcbsJournalListBoxItem.hpp"

QcbsJournalListBox::QcbsJournalListBox(QWidget* parent) : QListWidget(parent) {
    setObjectName("journals");
    setSelectionMode(QAbstractItemView::SingleSelection);
    setUniformItemSizes(true);
    // Long names end in an ellipsis; the tool tip gives the whole name.
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setTextElideMode(Qt::ElideRight);
    connect(this, &QListWidget::itemClicked, this, &QcbsJournalListBox::choose);
    connect(this, &QListWidget::itemActivated, this, &QcbsJournalListBox::choose);
    updateJournalList(QString());
}

QString QcbsJournalListBox::orma_coden(const QString& journalName) {
    const int number = Journal::find(journalName.toStdString());
    return number < 0 ? QString() : QString::fromStdString(std::string(Journal(number).code()));
}

QStringList QcbsJournalListBox::journalNames() const {
    QStringList names;
    for (int row = 0; row < count(); ++row)
        names << static_cast<const QcbsJournalListBoxItem*>(item(row))->journalName();
    return names;
}

void QcbsJournalListBox::updateJournalList(const QString& typed) {
    clear();
    for (int number : Journal::matching(typed.toStdString(), true)) new QcbsJournalListBoxItem(number, this);
}

void QcbsJournalListBox::choose(QListWidgetItem* item) {
    if (item != nullptr) emit selected(static_cast<QcbsJournalListBoxItem*>(item)->journalName());
}
