// SPDX-License-Identifier: GPL-3.0-or-later
// The common part of the rows of the tree of blocks, categories and data items.
#pragma once

#include <QIcon>
#include <QString>
#include <QTreeWidgetItem>

#include "cif/CifDataBlock.hpp"
#include "cif/CifDictionary.hpp"
#include "support/THandle.hpp"

class QMenu;
class QcbsCifBoxView;

// The common part of the three kinds of row of the tree beside the editor:
// the block the row belongs to, the dictionary it consults and its name in
// column 0. A row decides its looks once, when it is made; it reflects the
// check it was built from until the tree is filled again.
class QcbsCifBoxItem : public QTreeWidgetItem {
public:
    // The row icons, each one picture shared by every row.
    enum Icon {
        ItemIcon = 0,         // a data item present, without a value or with a valid one
        BoxClosedIcon = 1,    // a closed category
        BoxOpenIcon = 2,      // an open category
        AlertIcon = 3,        // a data item whose value the dictionary refuses
        BlockClosedIcon = 4,  // a closed block
        BlockOpenIcon = 5,    // an open block
        GreyedIcon = 6,       // a data item the block lacks
        LoopIcon = 7,         // a looped data item
        IconCount = 8
    };

    // The row kinds, as QTreeWidgetItem::type().
    enum Kind { BlockRow = QTreeWidgetItem::UserType + 1, CategoryRow, DataRow };

    QcbsCifBoxItem(THandle<CifDataBlock> block, THandle<CifDictionary> dictionary, const QString& name,
                   int kind);

    const THandle<CifDataBlock>& block() const { return block_; }
    const THandle<CifDictionary>& dictionary() const { return dictionary_; }
    QString name() const { return text(0); }
    // The block's own name ("data_" left off), whatever the row shows.
    QString blockName() const;
    // The 1-based line of the block's heading in the checked text (-1 when unknown).
    int blockLine() const;
    Icon icon() const { return icon_; }

    // The tree the row stands in, or null.
    QcbsCifBoxView* view() const;

    // A right click: the row's context menu at the place the tree was asked for it.
    virtual void OnRightClick();
    // A double click or Return: the tree is asked to go to the row's place in the text.
    virtual void OnItemSelected();
    virtual bool isGreyedOut() const { return false; }
    virtual bool isHighlighted() const { return false; }
    // Opens or closes the row; a row that can hold children builds them on
    // its first opening.
    virtual void setOpen(bool open);
    // Builds the row's children if it has none yet (nothing for a data item).
    virtual void fillChildren() {}
    // The row's context menu (the caller owns it); null for a row without one.
    virtual QMenu* makeContextMenu() { return nullptr; }

    // The picture of a row icon.
    static const QIcon& iconPicture(Icon icon);

protected:
    void setIcon(Icon icon);

private:
    static void initIcons();

    THandle<CifDataBlock> block_;
    THandle<CifDictionary> dictionary_;
    Icon icon_ = ItemIcon;
};
