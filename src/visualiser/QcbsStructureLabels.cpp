// SPDX-License-Identifier: GPL-3.0-or-later
// The text over the 3-D view: atom labels, axis letters, lines between picks.
#include "visualiser/QcbsStructureLabels.hpp"

#include <QPainter>

#include "visualiser/QcbsStructureView.hpp"

QcbsStructureLabels::QcbsStructureLabels(QcbsStructureView* view) : QWidget(view), view_(view) {
    setObjectName("structurelabels");
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_NoSystemBackground);
    setAttribute(Qt::WA_TranslucentBackground);
}

void QcbsStructureLabels::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    view_->paintOverlay(painter);
}
