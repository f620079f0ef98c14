// SPDX-License-Identifier: GPL-3.0-or-later
// The visualiser page: the 3-D structure of the current block, and the separate window.
#pragma once

#include <QList>
#include <QPointer>
#include <QString>
#include <QWidget>

#include "cif/Cif.hpp"
#include "cif/CifDatabase.hpp"
#include "support/THandle.hpp"

class QAction;
class QcbsStructurePanel;
class QcbsVelmoraWindow;

// What the main window does with the page:
// - after every check, setDocument(cif) with the new parse result (a null
//   handle when the document is closed). The page keeps the block it shows
//   and the view's orientation when the block is still there;
// - when the tab pair changes, setCurrent(true) for the page shown and
//   setCurrent(false) otherwise (enableVisualiser). Structures are built
//   only while the page is current or a separate window is open; the page
//   asks for "Extracting 3D coordinates..." in the status bar meanwhile;
// - the block chooser on this page: zoomin(blockName); the block at the
//   editor's cursor: showBlockAtLine(line);
// - "Open in Velmora" (hg()): openSeparateWindow();
// - enableVisTools(on): setToolsEnabled(on);
// - connect statusBarMessageRequest to its status bar, and goToLineRequest
//   (a double click on an atom, here or in the separate window: the line of
//   the atom's row) to the editor's going to a line.
class QcbsVisSorter : public QWidget {
    Q_OBJECT
public:
    explicit QcbsVisSorter(QWidget* parent = nullptr);
    ~QcbsVisSorter() override;

    void setDocument(THandle<Cif> cif);
    void setCurrent(bool current);
    bool isCurrent() const { return current_; }
    // Shows the structure of the named block (with or without "data_"); false when it has none.
    bool zoomin(const QString& blockName);
    // Shows the structure of the block holding the 1-based line; false when that block has none.
    bool showBlockAtLine(int line);
    // Opens (or raises) the separate window showing the page's block as the page shows it.
    QcbsVelmoraWindow* openSeparateWindow();
    QcbsVelmoraWindow* separateWindow() const;
    void setToolsEnabled(bool on);
    QList<QAction*> toolActions() const;

    // The words the page shows instead of a structure (empty while one is drawn).
    QString message() const;
    QString currentBlock() const;
    QcbsStructurePanel* panel() const { return panel_; }
    THandle<CifDatabase> database() const { return database_; }

signals:
    void statusBarMessageRequest(QString message);
    void goToLineRequest(int line);

private:
    void bringUpToDate();

    QcbsStructurePanel* panel_;
    THandle<CifDatabase> database_;
    bool current_ = false;
    bool stale_ = false;  // a document came while the page was hidden
    QString wantedBlock_;
    QPointer<QcbsVelmoraWindow> window_;
};
