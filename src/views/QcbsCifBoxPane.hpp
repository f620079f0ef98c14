// SPDX-License-Identifier: GPL-3.0-or-later
// The tree of blocks and data items with its filter box and its choice of listing.
#pragma once

#include <QWidget>

class QComboBox;
class QLineEdit;
class QcbsCifBoxView;

// The tree of blocks and data items as the user meets it: a filter box
// above the tree that narrows it to the names holding the typed text, and
// a choice between all the dictionary's items and only the block's own.
class QcbsCifBoxPane : public QWidget {
    Q_OBJECT
public:
    explicit QcbsCifBoxPane(QWidget* parent = nullptr);

    QcbsCifBoxView* view() const { return view_; }
    QLineEdit* filterBox() const { return filter_; }
    QComboBox* listingChoice() const { return listing_; }

    // The texts of the listing choice, in the order of QcbsCifBoxBlockItem::Listing.
    static QString dictionaryItemsText() { return "all dictionary items"; }
    static QString blockItemsText() { return "items in the block"; }

private:
    QLineEdit* filter_;
    QComboBox* listing_;
    QcbsCifBoxView* view_;
};
