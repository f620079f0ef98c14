// SPDX-License-Identifier: GPL-3.0-or-later
// The 3-D view with its tools: structure, style, contents, toggles, axes, picture.
// and print.
#pragma once

#include <QList>
#include <QString>
#include <QWidget>

#include "cif/CifDatabase.hpp"
#include "support/THandle.hpp"

class QAction;
class QComboBox;
class QLabel;
class QMenu;
class QStackedWidget;
class QToolButton;
class QcbsStructureView;

// Shows one structure of a document at a time. Where nothing can be drawn
// (no structure, a block without coordinates, no OpenGL) the panel says so
// in words instead. The view itself is made when first needed.
class QcbsStructurePanel : public QWidget {
    Q_OBJECT
public:
    explicit QcbsStructurePanel(QWidget* parent = nullptr);

    // The document's structures. The block shown stays when the new list
    // still has it (a new check of the same document), with the view's
    // orientation, zoom and picks; otherwise the first structure is shown.
    void setDatabase(THandle<CifDatabase> database);
    THandle<CifDatabase> database() const { return database_; }
    // Shows the n-th structure of the list; false when there is none.
    bool showEntry(int index);
    // Shows the structure of a block by name (with or without "data_"); false when it has none.
    bool showBlock(const QString& blockName);
    QString currentBlock() const;

    // The words shown instead of the view; empty while the view is shown.
    QString message() const;
    // The view, once made (null before a structure was first shown or without OpenGL).
    QcbsStructureView* view() const { return view_; }
    // The panel's tool actions (views along the axes, reset, labels, hydrogens, cell, export, print).
    QList<QAction*> toolActions() const;
    void setToolsEnabled(bool on);

    // The shown view's settings taken over from another panel (a new window starts as the page looks).
    void copyViewFrom(const QcbsStructurePanel& other);

    // Asks for a file name and writes the view as PNG / asks for a printer and prints the view.
    void exportPicture();
    void printPicture();

signals:
    void statusBarMessageRequest(QString message);
    void goToLineRequest(int line);
    void blockShown(const QString& blockName);

private:
    void makeTools();
    void showMessage(const QString& text);
    bool ensureView();
    void applyOptions();
    void fillBlocks();
    void fillDisorderMenu();
    void viewFailed(const QString& problem);

    THandle<CifDatabase> database_;
    int current_ = -1;
    QComboBox* blocks_ = nullptr;
    QComboBox* style_ = nullptr;
    QComboBox* contents_ = nullptr;
    QAction* labels_ = nullptr;
    QAction* hydrogens_ = nullptr;
    QAction* cell_ = nullptr;
    QAction* alongA_ = nullptr;
    QAction* alongB_ = nullptr;
    QAction* alongC_ = nullptr;
    QAction* reset_ = nullptr;
    QAction* export_ = nullptr;
    QAction* print_ = nullptr;
    QToolButton* disorder_ = nullptr;
    QMenu* disorderMenu_ = nullptr;
    QStackedWidget* stack_ = nullptr;
    QLabel* message_ = nullptr;
    QcbsStructureView* view_ = nullptr;
    QString failure_;  // why the view failed; no new view is tried after that
};
