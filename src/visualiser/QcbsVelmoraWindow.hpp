// SPDX-License-Identifier: GPL-3.0-or-later
// "Open in Velmora": the 3-D view of a document's structures in a window of its own.
#pragma once

#include <QString>
#include <QWidget>

#include "cif/CifDatabase.hpp"
#include "support/THandle.hpp"

class QLabel;
class QcbsStructurePanel;

// A top-level window that the user keeps beside the editor: it follows
// every check of the document (the visualiser page hands it each new list
// of structures) and deletes itself when closed.
class QcbsVelmoraWindow : public QWidget {
    Q_OBJECT
public:
    explicit QcbsVelmoraWindow(QWidget* parent = nullptr);

    void setDatabase(THandle<CifDatabase> database);
    bool showBlock(const QString& blockName);
    QcbsStructurePanel* panel() const { return panel_; }
    // The window's own status line (picks, distances, angles).
    QString statusText() const;

signals:
    void goToLineRequest(int line);

private:
    void updateCaption();

    QcbsStructurePanel* panel_;
    QLabel* status_;
};
