// SPDX-License-Identifier: GPL-3.0-or-later
// The list of the problems a document's last check found, under Errors, Warnings, Remarks.
#pragma once

#include <QString>
#include <QTreeWidget>
#include <functional>

#include "cif/CifErrorContainer.hpp"
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

    // What fill() listed and what it left out. Counts are indexed by
    // CifError::ErrorType (0 remarks, 1 warnings, 2 errors); `total` counts
    // every message of a kind that fill() did not drop as no fault at all.
    struct Filled {
        int listed[3] = {0, 0, 0};
        int total[3] = {0, 0, 0};
        int stoppedAt = -1;  // the line of the error that stopped the listing, or -1
        int misc = 0;        // messages of no known kind
        bool complete() const {
            return listed[0] == total[0] && listed[1] == total[1] && listed[2] == total[2];
        }
    };
    // Empties the list and fills it with a check's messages in their order,
    // with the limits on runs of messages on consecutive lines:
    // - a run of warnings on consecutive lines lists `runLimit` of them, then
    //   one "(warnings omitted)" entry, then none until the run ends;
    // - errors are all listed, but the error that ends runLimit + 1 errors
    //   on consecutive lines stops the listing: nothing after it is listed;
    // - warnings about undefined names of validation replies ("_vrf") are
    //   dropped: they are no fault;
    // - `remarkLine`, when given, says on which line a remark is listed.
    // When the limits hid entries, each heading says how many it shows of
    // how many.
    Filled fill(const CifErrorContainer& errors, int runLimit,
                const std::function<int(const CifError&)>& remarkLine = {});

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
