// SPDX-License-Identifier: GPL-3.0-or-later
// The visualiser page: the 3-D structure of the current block, and the separate window.
#include "visualiser/QcbsVisSorter.hpp"

#include <QVBoxLayout>

#include "visualiser/QcbsStructurePanel.hpp"
#include "visualiser/QcbsVelmoraWindow.hpp"

QcbsVisSorter::QcbsVisSorter(QWidget* parent) : QWidget(parent) {
    setObjectName("vissorter");
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    panel_ = new QcbsStructurePanel(this);
    layout->addWidget(panel_);
    connect(panel_, &QcbsStructurePanel::statusBarMessageRequest, this,
            &QcbsVisSorter::statusBarMessageRequest);
    connect(panel_, &QcbsStructurePanel::goToLineRequest, this, &QcbsVisSorter::goToLineRequest);
}

QcbsVisSorter::~QcbsVisSorter() {
    // The separate window belongs to the document shown here.
    if (window_ != nullptr) window_->close();
}

void QcbsVisSorter::setDocument(THandle<Cif> cif) {
    database_ = cif.is_null() ? THandle<CifDatabase>() : THandle<CifDatabase>(new CifDatabase(cif));
    stale_ = true;
    if (window_ != nullptr) window_->setDatabase(database_);
    if (current_) bringUpToDate();
}

void QcbsVisSorter::setCurrent(bool current) {
    current_ = current;
    if (current_) bringUpToDate();
}

void QcbsVisSorter::bringUpToDate() {
    if (!stale_) {
        if (!wantedBlock_.isEmpty()) panel_->showBlock(wantedBlock_);
        wantedBlock_.clear();
        return;
    }
    stale_ = false;
    emit statusBarMessageRequest("Extracting 3D coordinates...");
    panel_->setDatabase(database_);
    if (!wantedBlock_.isEmpty()) panel_->showBlock(wantedBlock_);
    wantedBlock_.clear();
    emit statusBarMessageRequest(panel_->message().isEmpty() ? "data_" + panel_->currentBlock() : QString());
}

bool QcbsVisSorter::zoomin(const QString& blockName) {
    if (database_.is_null() || database_->index_of(blockName.toStdString()) < 0) return false;
    if (!current_) {
        wantedBlock_ = blockName;
        return true;
    }
    if (stale_) bringUpToDate();
    return panel_->showBlock(blockName);
}

bool QcbsVisSorter::showBlockAtLine(int line) {
    if (database_.is_null()) return false;
    const int index = database_->index_at_line(line);
    if (index < 0) return false;
    return zoomin(QString::fromStdString(database_->block_name(index)));
}

QcbsVelmoraWindow* QcbsVisSorter::openSeparateWindow() {
    if (window_ == nullptr) {
        window_ = new QcbsVelmoraWindow(nullptr);
        connect(window_, &QcbsVelmoraWindow::goToLineRequest, this, &QcbsVisSorter::goToLineRequest);
        window_->panel()->copyViewFrom(*panel_);
        window_->setDatabase(database_);
        if (!panel_->currentBlock().isEmpty()) window_->showBlock(panel_->currentBlock());
        window_->panel()->copyViewFrom(*panel_);
    }
    window_->show();
    window_->raise();
    window_->activateWindow();
    return window_;
}

QcbsVelmoraWindow* QcbsVisSorter::separateWindow() const { return window_; }

void QcbsVisSorter::setToolsEnabled(bool on) { panel_->setToolsEnabled(on); }

QList<QAction*> QcbsVisSorter::toolActions() const { return panel_->toolActions(); }

QString QcbsVisSorter::message() const { return panel_->message(); }

QString QcbsVisSorter::currentBlock() const { return panel_->currentBlock(); }
