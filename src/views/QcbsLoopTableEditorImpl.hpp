// SPDX-License-Identifier: GPL-3.0-or-later
// The loop table editor dialog: a loop as a table with its row, column and cell commands.
#pragma once

#include <QDialog>
#include <QString>
#include <QStringList>

#include "cif/CifDataBlock.hpp"
#include "cif/CifDictionary.hpp"
#include "cif/CifWriteSettings.hpp"
#include "support/THandle.hpp"

class QAction;
class QLabel;
class QcbsLoopTable;

// The loop table editor dialog: one loop of a document as a table, with the
// row, column and cell commands as buttons and as the table's context menu
// (all waiting while a cell editor is open), undo and redo of the table's
// edits, sorting, copying and pasting cells as tab-separated text, and a
// jump to a row's line in the editor. Nothing reaches the document until OK,
// which hands the loop's new text out through loopEdited() (or loopAdded()
// for a new loop); Cancel discards the edits. The dialog remembers its size.
class QcbsLoopTableEditorImpl : public QDialog {
    Q_OBJECT
public:
    explicit QcbsLoopTableEditorImpl(QWidget* parent = nullptr);

    // The loop holding the data name in the block; false (and nothing
    // loaded) when the block has no such looped item.
    bool editLoop(const QString& dataName, THandle<CifDataBlock> block);
    // An empty loop for the dictionary, to be added to the named block.
    void newLoop(THandle<CifDictionary> dictionary, const QString& blockName);

    QcbsLoopTable* table() const { return table_; }
    const QString& blockName() const { return blockName_; }
    bool isNewLoop() const { return newLoop_; }
    // The column of the document's loop that names it there.
    const QString& originalLoopMaster() const { return originalMaster_; }
    void setWriteSettings(const CifWriteSettings& settings) { writeSettings_ = settings; }

    // The dictionary's data names that "Add Column" offers: those of the
    // loop's category (of every category for a loop without columns) that
    // the loop lacks, in the dictionary's order.
    QStringList columnChoices() const;
    // The command of the given name ("Add Row", "Delete Column", "Undo", ...).
    QAction* command(const QString& text) const;

    // Settings keys of the dialog's size.
    static QString widthKey() { return "loop table width"; }
    static QString heightKey() { return "loop table height"; }

public slots:
    void accept() override;
    void done(int result) override;
    // Asks for a data name (offering columnChoices(), any name may be typed) and adds its column.
    void chooseColumn();
    void goToRowLine();

signals:
    // OK on a loop of the document: its new text, to replace the loop that
    // holds `loopMaster` in the block (an empty text when no column is left).
    void loopEdited(const QString& block, const QString& loopMaster, const QString& loopText);
    // OK on a new loop with at least one column.
    void loopAdded(const QString& block, const QString& loopText);
    // The document line a row came from, 1-based.
    void goToLineRequest(int line);

private:
    void makeCommands();
    void setEditing(bool editing);
    void updateTitle();

    QcbsLoopTable* table_;
    QLabel* category_;
    QWidget* commands_;
    QList<QAction*> actions_;
    QString blockName_;
    QString originalMaster_;
    bool newLoop_ = false;
    CifWriteSettings writeSettings_;
};
