// SPDX-License-Identifier: GPL-3.0-or-later
// The tree of one document's blocks and data items in a window of its own.
#include "views/QcbsCifBoxViewDialog.hpp"

#include <QDialogButtonBox>
#include <QFileInfo>
#include <QPushButton>
#include <QVBoxLayout>

#include "views/QcbsCifBoxPane.hpp"
#include "views/QcbsCifBoxView.hpp"

QcbsCifBoxViewDialog::QcbsCifBoxViewDialog(QWidget* parent) : QDialog(parent) {
    setObjectName("treedialog");
    setWindowTitle("Cif Box View");
    setModal(false);
    pane_ = new QcbsCifBoxPane;
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(pane_, 1);
    layout->addWidget(buttons);
    resize(360, 560);
}

QcbsCifBoxView* QcbsCifBoxViewDialog::view() const { return pane_->view(); }

void QcbsCifBoxViewDialog::setCif(THandle<Cif> cif, const QString& singleBlockName, const QString& fileName) {
    setWindowTitle(fileName.isEmpty() ? QString("Cif Box View")
                                      : "Cif Box View - " + QFileInfo(fileName).fileName());
    view()->setCif(std::move(cif), singleBlockName);
}
