// SPDX-License-Identifier: GPL-3.0-or-later
// The tree of a document's blocks, categories and data items beside the editor.
#pragma once

#include <QMap>
#include <QPoint>
#include <QString>
#include <QStringList>
#include <QTreeWidget>

#include "cif/Cif.hpp"
#include "support/THandle.hpp"
#include "views/QcbsCifBoxBlockItem.hpp"

class QcbsCifBoxCategoryItem;
class QcbsCifBoxDataItem;

// The tree of a checked document: its data blocks at the top, under each
// block the categories of the dictionary and under each category its data
// names, whether the block has them or not (absent ones grey, looped ones
// and those the dictionary refuses marked). Rows below a block are made when
// the block or category is first opened. Until it lists a document it shows
// one greyed line, "(no items to show)". It never edits a document itself:
// every action leaves through its signals.
class QcbsCifBoxView : public QTreeWidget {
    Q_OBJECT
public:
    using Listing = QcbsCifBoxBlockItem::Listing;

    // Which blocks and categories are open, by the block row's text.
    struct OpenBlock {
        bool open = false;
        QStringList categories;  // the texts of its open category rows
    };
    using OpenBoxMap = QMap<QString, OpenBlock>;

    explicit QcbsCifBoxView(QWidget* parent = nullptr, const char* name = nullptr);

    // Fills the tree from a check of the document, keeping the open blocks
    // and categories (matched by their text) and the scroll position. With
    // one block and a non-empty `singleBlockName`, the block's row shows that
    // instead of the block's name. A null handle leaves only "(no items to show)".
    void setCif(THandle<Cif> cif, const QString& singleBlockName = QString());
    const THandle<Cif>& cif() const { return cif_; }

    // Empties the tree down to the "(no items to show)" line.
    void showNoItems();
    static QString noItemsText() { return "(no items to show)"; }

    // Selects the first block row of that text and scrolls it into view.
    void goToBlock(const QString& name);
    // Selects the row of the data name in the block (opening what holds it)
    // and scrolls it into view; without such a row, the block's row. Rows it
    // opened for an earlier name close again when the new one lies elsewhere.
    // Nothing happens when no row stands for the block. Tells whether a row
    // was selected.
    bool showDataItem(const THandle<CifDataBlock>& block, const QString& dataName);

    void storeOpenBoxes(OpenBoxMap& map) const;
    void applyOpenBoxes(const OpenBoxMap& map);

    // All dictionary items (absent ones greyed) or only the block's items.
    Listing listing() const { return listing_; }
    void setListing(Listing listing);

    // Narrows the tree to the data names and categories that contain the
    // text (case ignored), opening what holds them; empty shows everything.
    const QString& filterText() const { return filter_; }
    void setFilterText(const QString& text);

    // The block rows, in the document's order (none while "(no items to show)" shows).
    int blockCount() const;
    QcbsCifBoxBlockItem* blockRow(int index) const;

    // Where the last context menu was asked for, in screen coordinates.
    QPoint contextMenuPosition() const { return menuPosition_; }

    // For the rows: each emits the signal of the same meaning.
    void emitSelectedDataItem(const QString& name, int line) { emit selectedDataItem(name, line); }
    void emitGotoBlockRequest(const QString& block) { emit goToBlockRequest(block); }
    void emitDataItemHelpRequest(const QString& name) { emit datItemHelpRequest(name); }
    void emitInsertTextRequest(const QString& text) { emit insertTextRequest(text); }
    void emitDataItemSetRequest(const QString& item, const QString& block) {
        emit dataItemSetRequest(item, block);
    }
    void emitLoopEditRequest(const QString& item, const QString& block) { emit loopEditRequest(item, block); }

public slots:
    // A double click or Return on a row.
    void slotFolderSelected(QTreeWidgetItem* item);
    // A context menu asked for on a row, at a place on the screen.
    void slotRightPressed(QTreeWidgetItem* item, const QPoint& position, int column);

signals:
    // Go to the named block, category or data item, searching from the block's line.
    void selectedDataItem(const QString& name, int line);
    void goToBlockRequest(const QString& block);
    // Dictionary help for a data name or category. (The name is spelt so on purpose.)
    void datItemHelpRequest(const QString& name);
    void insertTextRequest(const QString& text);
    // A new value is wanted for the data item in the block.
    void dataItemSetRequest(const QString& item, const QString& block);
    // The loop holding the data item in the block is to be edited as a table.
    void loopEditRequest(const QString& item, const QString& block);

protected:
    // Return or Enter on a row selects it as a double click does.
    void keyPressEvent(QKeyEvent* event) override;

private:
    void filterBlock(QcbsCifBoxBlockItem* block);
    // A row as the texts from its block row down, and the row of such texts
    // among the rows made (null when there is none).
    static QStringList pathOf(const QTreeWidgetItem* item);
    QTreeWidgetItem* rowAt(const QStringList& texts) const;
    void showWholeTree();

    THandle<Cif> cif_;
    QString singleBlockName_;
    Listing listing_ = QcbsCifBoxBlockItem::DictionaryItems;
    QString filter_;
    QPoint menuPosition_;
    // The rows showDataItem() opened (and the user left open), by their texts.
    QList<QStringList> followOpened_;
};
