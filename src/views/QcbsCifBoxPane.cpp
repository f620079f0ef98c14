// SPDX-License-Identifier: GPL-3.0-or-later
// The tree of blocks and data items with its filter box and its choice of listing.
#include "views/QcbsCifBoxPane.hpp"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

#include "views/QcbsCifBoxView.hpp"

QcbsCifBoxPane::QcbsCifBoxPane(QWidget* parent) : QWidget(parent) {
    setObjectName("boxpane");
    filter_ = new QLineEdit;
    filter_->setObjectName("treefilter");
    filter_->setPlaceholderText("Filter data names");
    filter_->setClearButtonEnabled(true);
    filter_->setToolTip("Show only the categories and data names that contain this text");

    listing_ = new QComboBox;
    listing_->setObjectName("treelisting");
    listing_->addItems({dictionaryItemsText(), blockItemsText()});
    listing_->setToolTip(
        "Every data name of the dictionary (absent ones grey), or only the block's own items, "
        "with those no dictionary defines under a heading of their own");
    auto* show = new QLabel("Show:");
    show->setBuddy(listing_);

    view_ = new QcbsCifBoxView;

    auto* choice = new QHBoxLayout;
    choice->setContentsMargins(0, 0, 0, 0);
    choice->addWidget(show);
    choice->addWidget(listing_, 1);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    layout->addWidget(filter_);
    layout->addLayout(choice);
    layout->addWidget(view_, 1);

    connect(filter_, &QLineEdit::textChanged, view_, &QcbsCifBoxView::setFilterText);
    connect(listing_, &QComboBox::currentIndexChanged, view_, [this](int index) {
        view_->setListing(index == 1 ? QcbsCifBoxBlockItem::BlockItems
                                     : QcbsCifBoxBlockItem::DictionaryItems);
    });
}
