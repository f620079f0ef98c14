// SPDX-License-Identifier: GPL-3.0-or-later
// A data block's row in the tree, with its categories as children.
#pragma once

#include "views/QcbsCifBoxItem.hpp"

// A data block's row at the top of the tree, drawn bold. Its children, made
// on its first opening, are the categories: every category the dictionary
// defines, or (listing only the block's items) the categories the block
// has items of, followed by a heading for the items no dictionary defines.
class QcbsCifBoxBlockItem : public QcbsCifBoxItem {
public:
    // Which rows the block's categories hold.
    enum Listing {
        DictionaryItems,  // every data name of the dictionary, absent ones greyed
        BlockItems        // only the block's own items
    };

    QcbsCifBoxBlockItem(THandle<CifDataBlock> block, THandle<CifDictionary> dictionary, const QString& text,
                        Listing listing = DictionaryItems);

    Listing listing() const { return listing_; }

    bool isHighlighted() const override { return true; }
    void setOpen(bool open) override;
    void fillChildren() override;
    QMenu* makeContextMenu() override;

    // The category the dictionary keeps its overview definitions under; never shown.
    static QString overviewCategory() { return "_category_overview_[]"; }

private:
    void fillWithDictionaryCategories();
    void fillWithBlockItems();

    Listing listing_;
    bool filled_ = false;
};
