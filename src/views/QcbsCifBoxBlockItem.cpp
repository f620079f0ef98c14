// SPDX-License-Identifier: GPL-3.0-or-later
// A data block's row in the tree, with its categories as children.
#include "views/QcbsCifBoxBlockItem.hpp"

#include <QApplication>
#include <QFont>
#include <QHash>
#include <QMenu>
#include <QPointer>
#include <algorithm>

#include "views/QcbsCifBoxCategoryItem.hpp"
#include "views/QcbsCifBoxView.hpp"

QcbsCifBoxBlockItem::QcbsCifBoxBlockItem(THandle<CifDataBlock> block, THandle<CifDictionary> dictionary,
                                         const QString& text, Listing listing)
    : QcbsCifBoxItem(std::move(block), std::move(dictionary), text, BlockRow), listing_(listing) {
    setIcon(BlockClosedIcon);
    setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);
    QFont bold = QApplication::font("QTreeWidget");
    bold.setWeight(QFont::Bold);
    setData(0, Qt::FontRole, bold);
}

void QcbsCifBoxBlockItem::setOpen(bool open) {
    setIcon(open ? BlockOpenIcon : BlockClosedIcon);
    QcbsCifBoxItem::setOpen(open);
}

void QcbsCifBoxBlockItem::fillChildren() {
    if (filled_) return;
    filled_ = true;
    if (listing_ == DictionaryItems)
        fillWithDictionaryCategories();
    else
        fillWithBlockItems();
    if (childCount() == 0) setChildIndicatorPolicy(QTreeWidgetItem::DontShowIndicatorWhenChildless);
}

void QcbsCifBoxBlockItem::fillWithDictionaryCategories() {
    if (dictionary().is_null()) return;
    QList<QTreeWidgetItem*> rows;
    for (const std::string& category : dictionary()->categories()) {
        const QString name = QString::fromStdString(category);
        if (name == overviewCategory()) continue;
        rows << new QcbsCifBoxCategoryItem(block(), dictionary(), name);
    }
    addChildren(rows);
}

void QcbsCifBoxBlockItem::fillWithBlockItems() {
    if (block().is_null()) return;
    // The block's data names by the category the dictionary gives them
    // (keyed in lower case), and those it does not define.
    QHash<QString, QStringList> byCategory;
    QStringList undefined;
    for (auto item = block()->begin_write_order(); item != block()->end_write_order(); ++item) {
        const std::string& name = (*item)->name();
        const CifItemDefinition* definition =
            dictionary().is_null() ? nullptr : dictionary()->definition(name);
        if (definition != nullptr && !definition->category.empty() && !definition->is_category_overview())
            byCategory[QString::fromStdString(definition->category).toLower()]
                << QString::fromStdString(name);
        else
            undefined << QString::fromStdString(name);
    }
    QList<QTreeWidgetItem*> rows;
    if (!dictionary().is_null()) {
        for (const std::string& category : dictionary()->categories()) {
            const auto found = byCategory.find(
                QString::fromStdString(CifDictionary::plain_category_name(category)).toLower());
            if (found == byCategory.end()) continue;
            rows << new QcbsCifBoxCategoryItem(block(), dictionary(), QString::fromStdString(category),
                                               found.value());
            byCategory.erase(found);
        }
    }
    // Categories of definitions that the dictionary's list of categories lacks.
    QStringList others = byCategory.keys();
    std::sort(others.begin(), others.end());
    for (const QString& category : others)
        rows << new QcbsCifBoxCategoryItem(block(), dictionary(), "_" + category + "_[]",
                                           byCategory[category]);
    if (!undefined.isEmpty())
        rows << new QcbsCifBoxCategoryItem(block(), dictionary(),
                                           QcbsCifBoxCategoryItem::undefinedItemsHeading(), undefined, true);
    addChildren(rows);
}

QMenu* QcbsCifBoxBlockItem::makeContextMenu() {
    auto* menu = new QMenu;
    menu->setObjectName("boxmenu");
    // The menu may outlive the row: a check while it shows rebuilds the tree.
    const QPointer<QcbsCifBoxView> tree = view();
    const QString block = blockName();
    QObject::connect(menu->addAction("Go to block"), &QAction::triggered, menu, [tree, block] {
        if (tree) tree->emitGotoBlockRequest(block);
    });
    return menu;
}
