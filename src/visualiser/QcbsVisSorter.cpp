// SPDX-License-Identifier: GPL-3.0-or-later
// The visualiser page of a main window, where a block's structure is drawn in 3-D.
#include "visualiser/QcbsVisSorter.hpp"

#include <QLabel>
#include <QVBoxLayout>

#include "resources/QcbsXpmResource.hpp"

QcbsVisSorter::QcbsVisSorter(QWidget* parent) : QWidget(parent) {
    setObjectName("vissorter");
    auto* picture = new QLabel(this);
    picture->setPixmap(QcbsXpmResource::get_xpm(QcbsXpmResource::VisualiserPage, 64));
    picture->setAlignment(Qt::AlignHCenter | Qt::AlignBottom);
    message_ = new QLabel(notAvailableText(), this);
    message_->setObjectName("vismessage");
    message_->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    message_->setWordWrap(true);

    auto* layout = new QVBoxLayout(this);
    layout->addStretch(1);
    layout->addWidget(picture);
    layout->addWidget(message_);
    layout->addStretch(1);
}

QString QcbsVisSorter::message() const { return message_->text(); }
