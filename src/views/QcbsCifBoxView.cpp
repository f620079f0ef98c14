// SPDX-License-Identifier: GPL-3.0-or-later
// The tree of a document's blocks, categories and data items beside the editor.
#include "views/QcbsCifBoxView.hpp"

#include <QKeyEvent>
#include <QPalette>
#include <QScrollBar>

#include "views/QcbsCifBoxCategoryItem.hpp"
#include "views/QcbsCifBoxDataItem.hpp"

namespace {

QcbsCifBoxItem* boxItem(QTreeWidgetItem* item) {
    const bool ours = item != nullptr && item->type() >= QcbsCifBoxItem::BlockRow &&
                      item->type() <= QcbsCifBoxItem::DataRow;
    return ours ? static_cast<QcbsCifBoxItem*>(item) : nullptr;
}

bool holdsText(const QString& name, const QString& text) { return name.contains(text, Qt::CaseInsensitive); }

}  // namespace

QcbsCifBoxView::QcbsCifBoxView(QWidget* parent, const char* name) : QTreeWidget(parent) {
    setObjectName(name != nullptr ? QString::fromLatin1(name) : QString("boxview"));
    QPalette colours = palette();
    colours.setColor(QPalette::Base, Qt::white);
    setPalette(colours);
    connect(this, &QTreeWidget::itemDoubleClicked, this,
            [this](QTreeWidgetItem* item, int) { slotFolderSelected(item); });
    setContextMenuPolicy(Qt::CustomContextMenu);
    connect(this, &QWidget::customContextMenuRequested, this, [this](const QPoint& position) {
        slotRightPressed(itemAt(position), viewport()->mapToGlobal(position), columnAt(position.x()));
    });
    // Rows build their children and change their icon as they open and close.
    connect(this, &QTreeWidget::itemExpanded, this, [](QTreeWidgetItem* item) {
        if (QcbsCifBoxItem* row = boxItem(item)) row->setOpen(true);
    });
    connect(this, &QTreeWidget::itemCollapsed, this, [](QTreeWidgetItem* item) {
        if (QcbsCifBoxItem* row = boxItem(item)) row->setOpen(false);
    });
    setColumnCount(1);
    setHeaderLabels({"Blocks and data items"});
    setHeaderHidden(true);
    setIndentation(20);
    setWindowTitle("Cif Box View");
    setRootIsDecorated(true);
    setSortingEnabled(false);
    showNoItems();
}

void QcbsCifBoxView::showNoItems() {
    cif_ = THandle<Cif>();
    followOpened_.clear();
    clear();
    auto* item = new QTreeWidgetItem(this, QStringList{noItemsText()});
    // Shown greyed and not selectable: it stands for no item at all.
    item->setFlags(Qt::NoItemFlags);
}

int QcbsCifBoxView::blockCount() const {
    int count = 0;
    for (int i = 0; i < topLevelItemCount(); ++i)
        if (topLevelItem(i)->type() == QcbsCifBoxItem::BlockRow) ++count;
    return count;
}

QcbsCifBoxBlockItem* QcbsCifBoxView::blockRow(int index) const {
    QTreeWidgetItem* item = topLevelItem(index);
    return item != nullptr && item->type() == QcbsCifBoxItem::BlockRow
               ? static_cast<QcbsCifBoxBlockItem*>(item)
               : nullptr;
}

void QcbsCifBoxView::setCif(THandle<Cif> cif, const QString& singleBlockName) {
    if (cif.is_null()) {
        showNoItems();
        return;
    }
    OpenBoxMap open;
    storeOpenBoxes(open);
    const int x = horizontalScrollBar()->value();
    const int y = verticalScrollBar()->value();
    // The current row, as the texts from its block row down.
    const QStringList current = pathOf(currentItem());

    setUpdatesEnabled(false);
    clear();
    cif_ = std::move(cif);
    singleBlockName_ = singleBlockName;
    const bool substitute = cif_->block_count() == 1 && !singleBlockName.isEmpty();
    QList<QTreeWidgetItem*> rows;
    for (auto block = cif_->block_begin(); block != cif_->block_end(); ++block) {
        const QString text = substitute ? singleBlockName : QString::fromStdString((*block)->name());
        rows << new QcbsCifBoxBlockItem(*block, cif_->dictionary(), text, listing_);
    }
    addTopLevelItems(rows);
    applyOpenBoxes(open);
    if (!filter_.isEmpty())
        for (int i = 0; i < topLevelItemCount(); ++i) filterBlock(blockRow(i));
    if (QTreeWidgetItem* row = rowAt(current)) setCurrentItem(row);

    // The scroll bars learn the new extent only once the rows are laid out.
    executeDelayedItemsLayout();
    horizontalScrollBar()->setValue(x);
    verticalScrollBar()->setValue(y);
    setUpdatesEnabled(true);
}

QStringList QcbsCifBoxView::pathOf(const QTreeWidgetItem* item) {
    QStringList texts;
    for (; item != nullptr; item = item->parent()) texts.prepend(item->text(0));
    return texts;
}

QTreeWidgetItem* QcbsCifBoxView::rowAt(const QStringList& texts) const {
    // Only among rows already made: finding a row never opens anything.
    QTreeWidgetItem* found = nullptr;
    for (int i = 0; i < topLevelItemCount() && found == nullptr && !texts.isEmpty(); ++i)
        if (topLevelItem(i)->text(0) == texts.first()) found = topLevelItem(i);
    for (qsizetype depth = 1; depth < texts.size() && found != nullptr; ++depth) {
        const QTreeWidgetItem* parent = found;
        found = nullptr;
        for (int i = 0; i < parent->childCount() && found == nullptr; ++i)
            if (parent->child(i)->text(0) == texts[depth]) found = parent->child(i);
    }
    return found;
}

void QcbsCifBoxView::storeOpenBoxes(OpenBoxMap& map) const {
    for (int i = 0; i < topLevelItemCount(); ++i) {
        const QcbsCifBoxBlockItem* block = blockRow(i);
        if (block == nullptr) continue;
        OpenBlock state;
        state.open = block->isExpanded();
        for (int j = 0; j < block->childCount(); ++j)
            if (block->child(j)->isExpanded()) state.categories << block->child(j)->text(0);
        map.insert(block->text(0), state);
    }
}

void QcbsCifBoxView::applyOpenBoxes(const OpenBoxMap& map) {
    if (map.isEmpty()) return;
    for (int i = 0; i < topLevelItemCount(); ++i) {
        QcbsCifBoxBlockItem* block = blockRow(i);
        if (block == nullptr) continue;
        const auto found = map.find(block->text(0));
        if (found == map.end() || !found->open) continue;
        block->setOpen(true);
        if (found->categories.isEmpty()) continue;
        for (int j = 0; j < block->childCount(); ++j) {
            QcbsCifBoxItem* category = boxItem(block->child(j));
            if (category != nullptr && found->categories.contains(category->text(0))) category->setOpen(true);
        }
    }
}

void QcbsCifBoxView::setListing(Listing listing) {
    if (listing == listing_) return;
    listing_ = listing;
    if (!cif_.is_null()) setCif(cif_, singleBlockName_);
}

void QcbsCifBoxView::goToBlock(const QString& name) {
    for (int i = 0; i < topLevelItemCount(); ++i) {
        QcbsCifBoxBlockItem* block = blockRow(i);
        if (block == nullptr || block->text(0) != name) continue;
        scrollToItem(block);
        setCurrentItem(block);
        return;
    }
}

bool QcbsCifBoxView::showDataItem(const THandle<CifDataBlock>& block, const QString& dataName) {
    if (block.is_null()) return false;
    QcbsCifBoxBlockItem* blockItem = nullptr;
    for (int i = 0; i < topLevelItemCount() && blockItem == nullptr; ++i) {
        QcbsCifBoxBlockItem* candidate = blockRow(i);
        if (candidate != nullptr && candidate->block() == block) blockItem = candidate;
    }
    if (blockItem == nullptr) return false;

    // The category row that would hold the name: its dictionary category,
    // or the heading of names no dictionary defines.
    QTreeWidgetItem* target = blockItem;
    const THandle<CifDictionary>& dictionary = blockItem->dictionary();
    const std::string category = dataName.isEmpty() || dictionary.is_null()
                                     ? std::string()
                                     : dictionary->category_of(dataName.toStdString());
    const QString plain = QString::fromStdString(CifDictionary::plain_category_name(category));
    if (!dataName.isEmpty()) blockItem->fillChildren();
    for (int i = 0; i < blockItem->childCount() && target == blockItem && !dataName.isEmpty(); ++i) {
        auto* row = static_cast<QcbsCifBoxCategoryItem*>(blockItem->child(i));
        const bool holds =
            row->isHeading()
                ? category.empty()
                : !category.empty() &&
                      QString::fromStdString(CifDictionary::plain_category_name(row->text(0).toStdString()))
                              .compare(plain, Qt::CaseInsensitive) == 0;
        if (!holds || row->isHidden()) continue;
        row->fillChildren();
        for (int j = 0; j < row->childCount(); ++j) {
            QTreeWidgetItem* item = row->child(j);
            if (!item->isHidden() && item->text(0).compare(dataName, Qt::CaseInsensitive) == 0) {
                target = item;
                break;
            }
        }
    }
    // Rows opened only to show an earlier item close again once the item
    // shown lies elsewhere, so that following the cursor does not leave a
    // trail of open categories. Rows the user opened stay as they are.
    QList<QTreeWidgetItem*> needed;
    for (QTreeWidgetItem* up = target->parent(); up != nullptr; up = up->parent()) needed.prepend(up);
    QList<QStringList> opened;
    for (const QStringList& path : std::as_const(followOpened_)) {
        QTreeWidgetItem* row = rowAt(path);
        if (row == nullptr || !row->isExpanded()) continue;
        if (needed.contains(row))
            opened << path;
        else
            static_cast<QcbsCifBoxItem*>(row)->setOpen(false);
    }
    for (QTreeWidgetItem* row : needed) {
        if (row->isExpanded()) continue;
        static_cast<QcbsCifBoxItem*>(row)->setOpen(true);
        opened << pathOf(row);
    }
    followOpened_ = opened;
    scrollToItem(target);
    setCurrentItem(target);
    return true;
}

void QcbsCifBoxView::setFilterText(const QString& text) {
    if (text == filter_) return;
    filter_ = text;
    setUpdatesEnabled(false);
    if (filter_.isEmpty()) {
        showWholeTree();
    } else {
        for (int i = 0; i < topLevelItemCount(); ++i)
            if (QcbsCifBoxBlockItem* block = blockRow(i)) filterBlock(block);
    }
    setUpdatesEnabled(true);
}

void QcbsCifBoxView::filterBlock(QcbsCifBoxBlockItem* block) {
    if (block == nullptr) return;
    block->fillChildren();
    bool any = false;
    for (int i = 0; i < block->childCount(); ++i) {
        auto* category = static_cast<QcbsCifBoxCategoryItem*>(block->child(i));
        // A category whose name holds the text shows all its names; any other
        // shows only the names that hold it, and is opened to show them.
        const bool categoryHolds = !category->isHeading() && holdsText(category->text(0), filter_);
        bool namesHold = false;
        for (const QString& name : category->dataNames()) {
            if (holdsText(name, filter_)) {
                namesHold = true;
                break;
            }
        }
        if (namesHold) category->fillChildren();
        for (int j = 0; j < category->childCount(); ++j) {
            QTreeWidgetItem* item = category->child(j);
            item->setHidden(!categoryHolds && !holdsText(item->text(0), filter_));
        }
        if (namesHold && !categoryHolds) category->setOpen(true);
        category->setHidden(!categoryHolds && !namesHold);
        any = any || categoryHolds || namesHold;
    }
    if (any) block->setOpen(true);
}

void QcbsCifBoxView::showWholeTree() {
    for (int i = 0; i < topLevelItemCount(); ++i) {
        QTreeWidgetItem* block = topLevelItem(i);
        for (int j = 0; j < block->childCount(); ++j) {
            QTreeWidgetItem* category = block->child(j);
            category->setHidden(false);
            for (int k = 0; k < category->childCount(); ++k) category->child(k)->setHidden(false);
        }
    }
}

void QcbsCifBoxView::slotFolderSelected(QTreeWidgetItem* item) {
    if (QcbsCifBoxItem* row = boxItem(item)) row->OnItemSelected();
}

void QcbsCifBoxView::slotRightPressed(QTreeWidgetItem* item, const QPoint& position, int /*column*/) {
    menuPosition_ = position;
    if (QcbsCifBoxItem* row = boxItem(item)) row->OnRightClick();
}

void QcbsCifBoxView::keyPressEvent(QKeyEvent* event) {
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && currentItem() != nullptr) {
        slotFolderSelected(currentItem());
        event->accept();
        return;
    }
    QTreeWidget::keyPressEvent(event);
}
