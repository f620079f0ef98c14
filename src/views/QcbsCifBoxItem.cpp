// SPDX-License-Identifier: GPL-3.0-or-later
// The common part of the rows of the tree of blocks, categories and data items.
#include "views/QcbsCifBoxItem.hpp"

#include <QMenu>
#include <memory>

#include "resources/QcbsXpmResource.hpp"
#include "views/QcbsCifBoxView.hpp"

namespace {

QIcon icons[QcbsCifBoxItem::IconCount];

}  // namespace

QcbsCifBoxItem::QcbsCifBoxItem(THandle<CifDataBlock> block, THandle<CifDictionary> dictionary,
                               const QString& name, int kind)
    : QTreeWidgetItem(QStringList{name}, kind), block_(std::move(block)), dictionary_(std::move(dictionary)) {
    initIcons();
}

void QcbsCifBoxItem::initIcons() {
    if (!icons[0].isNull()) return;
    const int images[IconCount] = {QcbsXpmResource::Item,         QcbsXpmResource::CategoryClosed,
                                   QcbsXpmResource::CategoryOpen, QcbsXpmResource::Warning,
                                   QcbsXpmResource::BlockClosed,  QcbsXpmResource::BlockOpen,
                                   QcbsXpmResource::GreyedItem,   QcbsXpmResource::LoopedItem};
    for (int i = 0; i < IconCount; ++i) {
        for (int size : {16, 24, 32}) icons[i].addPixmap(QcbsXpmResource::get_xpm(images[i], size));
    }
}

const QIcon& QcbsCifBoxItem::iconPicture(Icon icon) {
    initIcons();
    return icons[icon];
}

void QcbsCifBoxItem::setIcon(Icon icon) {
    icon_ = icon;
    QTreeWidgetItem::setIcon(0, icons[icon]);
}

QString QcbsCifBoxItem::blockName() const {
    return block_.is_null() ? QString() : QString::fromStdString(block_->name());
}

int QcbsCifBoxItem::blockLine() const { return block_.is_null() ? -1 : block_->line(); }

QcbsCifBoxView* QcbsCifBoxItem::view() const { return qobject_cast<QcbsCifBoxView*>(treeWidget()); }

void QcbsCifBoxItem::OnRightClick() {
    QcbsCifBoxView* tree = view();
    if (tree == nullptr) return;
    const std::unique_ptr<QMenu> menu(makeContextMenu());
    if (menu == nullptr) return;
    menu->setMouseTracking(true);
    menu->exec(tree->contextMenuPosition());
}

void QcbsCifBoxItem::OnItemSelected() {
    if (QcbsCifBoxView* tree = view()) tree->emitSelectedDataItem(name(), blockLine());
}

void QcbsCifBoxItem::setOpen(bool open) {
    if (open) fillChildren();
    if (isExpanded() != open) setExpanded(open);
}
