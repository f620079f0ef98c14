// SPDX-License-Identifier: GPL-3.0-or-later
// A category's row in the tree, with its data names as children.
#pragma once

#include <QStringList>
#include <optional>

#include "views/QcbsCifBoxItem.hpp"

// A category's row under a block row. Its children, made on its first
// opening, are the category's data names in an order that ignores case:
// those the dictionary gives for the category, or a list given at
// construction (the block's own items of the category, or the items no
// dictionary defines under their heading).
class QcbsCifBoxCategoryItem : public QcbsCifBoxItem {
public:
    // The category's data names come from the dictionary.
    QcbsCifBoxCategoryItem(THandle<CifDataBlock> block, THandle<CifDictionary> dictionary,
                           const QString& name);
    // The category's data names are these. A heading (`heading`) is no
    // category of the dictionary: it has no context menu and no place to go to.
    QcbsCifBoxCategoryItem(THandle<CifDataBlock> block, THandle<CifDictionary> dictionary,
                           const QString& name, QStringList dataNames, bool heading = false);

    bool isHeading() const { return heading_; }
    // The data names the row's children are (or will be) made of, in their order.
    QStringList dataNames() const;

    void setOpen(bool open) override;
    void fillChildren() override;
    void OnItemSelected() override;
    QMenu* makeContextMenu() override;

    // The order of data names in the tree: by their letters, case ignored.
    static bool caseInsensitiveLess(const QString& a, const QString& b);
    // The heading of the items no dictionary defines.
    static QString undefinedItemsHeading() { return "(not in the dictionary)"; }

private:
    std::optional<QStringList> dataNames_;
    bool heading_ = false;
    bool filled_ = false;
};
