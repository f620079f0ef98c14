// SPDX-License-Identifier: GPL-3.0-or-later
// A small button beside a field that asks for the dictionary's help on the field's data name.
#include "views/QcbsDataItemHelpButton.hpp"

#include <utility>

#include "resources/QcbsXpmResource.hpp"

QcbsDataItemHelpButton::QcbsDataItemHelpButton(QString dataName, QWidget* parent)
    : QToolButton(parent), dataName_(std::move(dataName)) {
    setObjectName("help " + dataName_);
    setIcon(QcbsXpmResource::get_xpm(QcbsXpmResource::ItemHelp));
    setToolTip("What the dictionary says about " + dataName_);
    setAutoRaise(true);
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(this, &QToolButton::clicked, this, [this] { emit dataItemHelpRequested(dataName_); });
}
