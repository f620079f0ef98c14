// SPDX-License-Identifier: GPL-3.0-or-later
// A data name's row in the tree: present, absent (grey), looped or refused by the dictionary.
#include "views/QcbsCifBoxDataItem.hpp"

#include <QApplication>
#include <QClipboard>
#include <QColor>
#include <QMenu>
#include <QPointer>

#include "resources/QcbsXpmResource.hpp"
#include "views/QcbsCifBoxView.hpp"

QcbsCifBoxDataItem::QcbsCifBoxDataItem(THandle<CifDataBlock> block, THandle<CifDictionary> dictionary,
                                       const QString& name)
    : QcbsCifBoxItem(std::move(block), std::move(dictionary), name, DataRow) {
    setChildIndicatorPolicy(QTreeWidgetItem::DontShowIndicator);
    const THandle<CifDataItem> item =
        this->block().is_null() ? THandle<CifDataItem>() : this->block()->find(name.toStdString());
    if (item.is_null()) {
        greyed_ = true;
        setIcon(GreyedIcon);
        setData(0, Qt::ForegroundRole, QColor("gray"));
        setToolTip(0, "Not in this block");
        return;
    }
    Icon icon = ItemIcon;
    if (item->has_value()) {
        if (item->is_looped()) {
            looped_ = true;
            icon = LoopIcon;
            setToolTip(0, "Looped");
        }
        if (item->validate_values() != 0) {
            icon = AlertIcon;
            setToolTip(0, "The dictionary does not accept a value of this item");
        }
    }
    setIcon(icon);
}

QMenu* QcbsCifBoxDataItem::makeContextMenu() {
    auto* menu = new QMenu;
    menu->setObjectName("boxmenu");
    // The menu may outlive the row: a check while it shows rebuilds the tree.
    const QPointer<QcbsCifBoxView> tree = view();
    const QString name = this->name();
    const QString block = blockName();
    const int line = blockLine();
    const auto add = [menu](int image, const QString& text, auto action) {
        QAction* entry =
            image < 0 ? menu->addAction(text) : menu->addAction(QIcon(QcbsXpmResource::get_xpm(image)), text);
        QObject::connect(entry, &QAction::triggered, menu, action);
    };
    if (!greyed_)
        add(-1, "Go to item", [tree, name, line] {
            if (tree) tree->emitSelectedDataItem(name, line);
        });
    add(QcbsXpmResource::Help, "Item help", [tree, name] {
        if (tree) tree->emitDataItemHelpRequest(name);
    });
    add(QcbsXpmResource::Copy, "Copy item name", [name] { QApplication::clipboard()->setText(name); });
    if (greyed_)
        add(QcbsXpmResource::Paste, "Paste into editor", [tree, name] {
            if (tree) tree->emitInsertTextRequest(name);
        });
    if (!looped_)
        add(-1, "Set data item value", [tree, name, block] {
            if (tree) tree->emitDataItemSetRequest(name, block);
        });
    else
        add(-1, "Edit loop", [tree, name, block] {
            if (tree) tree->emitLoopEditRequest(name, block);
        });
    return menu;
}
