// SPDX-License-Identifier: GPL-3.0-or-later
// The tree of a document's blocks, categories and data items beside the editor.
#pragma once

#include <QString>
#include <QTreeWidget>

// The tree of a document's blocks, categories and data items beside the
// editor. Until it lists a document it shows one greyed line,
// "(no items to show)". It never edits a document itself: it asks the
// main window through its signals.
class QcbsCifBoxView : public QTreeWidget {
    Q_OBJECT
public:
    explicit QcbsCifBoxView(QWidget* parent = nullptr);

    // Empties the tree down to the "(no items to show)" line.
    void showNoItems();
    static QString noItemsText() { return "(no items to show)"; }

signals:
    // The user chose a data item (and a row of its loop) to go to.
    void selectedDataItem(const QString& dataName, int index);
    void goToBlockRequest(const QString& blockName);
    void datItemHelpRequest(const QString& dataName);
    void dataItemSetRequest(const QString& dataName, const QString& value);
    void insertTextRequest(const QString& text);
};
