// SPDX-License-Identifier: GPL-3.0-or-later
// The tree of one document's blocks and data items in a window of its own.
#pragma once

#include <QDialog>
#include <QString>

#include "cif/Cif.hpp"
#include "support/THandle.hpp"

class QcbsCifBoxPane;
class QcbsCifBoxView;

// The tree of one document's blocks, categories and data items (with its
// filter and listing choice) in a window of its own, for a user who keeps
// the tree beside the editor hidden. The window that opens it keeps it
// filled after every check and answers its requests as it answers the
// tree beside the editor.
class QcbsCifBoxViewDialog : public QDialog {
    Q_OBJECT
public:
    explicit QcbsCifBoxViewDialog(QWidget* parent = nullptr);

    QcbsCifBoxPane* pane() const { return pane_; }
    QcbsCifBoxView* view() const;

    // The document's latest check and the name of its file, for the caption.
    void setCif(THandle<Cif> cif, const QString& singleBlockName, const QString& fileName);

private:
    QcbsCifBoxPane* pane_;
};
