// SPDX-License-Identifier: GPL-3.0-or-later
// "Open in Velmora": the 3-D view of a document's structures in a window of its own.
#include "visualiser/QcbsVelmoraWindow.hpp"

#include <QLabel>
#include <QVBoxLayout>

#include "visualiser/QcbsStructurePanel.hpp"

QcbsVelmoraWindow::QcbsVelmoraWindow(QWidget* parent) : QWidget(parent, Qt::Window) {
    setObjectName("velmora");
    setAttribute(Qt::WA_DeleteOnClose);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    panel_ = new QcbsStructurePanel(this);
    status_ = new QLabel(this);
    status_->setObjectName("velmorastatus");
    status_->setMargin(3);
    status_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(panel_, 1);
    layout->addWidget(status_);
    connect(panel_, &QcbsStructurePanel::statusBarMessageRequest, status_, &QLabel::setText);
    connect(panel_, &QcbsStructurePanel::goToLineRequest, this, &QcbsVelmoraWindow::goToLineRequest);
    connect(panel_, &QcbsStructurePanel::blockShown, this, &QcbsVelmoraWindow::updateCaption);
    resize(1000, 700);
    updateCaption();
}

void QcbsVelmoraWindow::setDatabase(THandle<CifDatabase> database) { panel_->setDatabase(database); }

bool QcbsVelmoraWindow::showBlock(const QString& blockName) { return panel_->showBlock(blockName); }

QString QcbsVelmoraWindow::statusText() const { return status_->text(); }

void QcbsVelmoraWindow::updateCaption() {
    const QString block = panel_->currentBlock();
    setWindowTitle(block.isEmpty() ? QString("Velmora") : "data_" + block + " - Velmora");
}
