// SPDX-License-Identifier: GPL-3.0-or-later
// The list of the problems a document's last check found, under Errors, Warnings, Remarks.
#pragma once

#include <QString>
#include <QTreeWidget>

#include "validation/QcbsErrorListViewItem.hpp"

class QcbsKeyListViewItem;

// The list of problems found by the last check of a document, under the three
// headings "Errors", "Warnings" and "Remarks". Double-clicking an entry asks
// the editor to highlight its line (and a line its message names);
// right-clicking an entry's message asks for the help page of its kind.
// The list never takes the keyboard focus.
class QcbsErrorListView : public QTreeWidget {
    Q_OBJECT
public:
    // Longest message an entry shows; longer ones are cut short.
    static constexpr int kMaxMessageLength = 256;

    explicit QcbsErrorListView(QWidget* parent = nullptr, const char* name = nullptr);

    // Add one entry under their heading; each returns true.
    bool addError(QString message, int line, CifError::ErrorID id);
    bool addWarning(QString message, int line, CifError::ErrorID id);
    bool addRemark(QString message, int line, CifError::ErrorID id);

    // Entries under each heading, and all of them.
    int numberErrors() const;
    int numberWarnings() const;
    int numberRemarks() const;
    int numberTotal() const;

    // Empties the list down to its three headings, each open or closed as
    // it was.
    void removeAll();

    // Puts a message on one line (" ... " for each line end) of at most
    // kMaxMessageLength characters.
    static void tidyMessage(QString& message);

    // Creates the three headings, each saying " - none".
    void setup();

public slots:
    void doubleClickedItem(QTreeWidgetItem* item);
    void showHelp(QTreeWidgetItem* item, const QPoint& position, int column);

signals:
    // Highlight `line` (1-based) with highlight 1 (a line the message names)
    // or 2 (the entry's own line), removing earlier highlights first when
    // `clearFirst` is true.
    void requestHighlightLine(int line, int highlight, bool clearFirst);
    // Show the help page `file` (relative to the help directory).
    void helpRequest(const QString& file);

private:
    bool addEntry(QcbsKeyListViewItem* heading, QString message, int line, CifError::ErrorID id);
    void contextMenuAt(const QPoint& position);

    QcbsKeyListViewItem* errors_ = nullptr;
    QcbsKeyListViewItem* warnings_ = nullptr;
    QcbsKeyListViewItem* remarks_ = nullptr;
};
