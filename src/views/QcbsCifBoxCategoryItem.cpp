// SPDX-License-Identifier: GPL-3.0-or-later
// A category's row in the tree, with its data names as children.
#include "views/QcbsCifBoxCategoryItem.hpp"

#include <QMenu>
#include <QPointer>
#include <algorithm>

#include "resources/QcbsXpmResource.hpp"
#include "views/QcbsCifBoxDataItem.hpp"
#include "views/QcbsCifBoxView.hpp"

QcbsCifBoxCategoryItem::QcbsCifBoxCategoryItem(THandle<CifDataBlock> block, THandle<CifDictionary> dictionary,
                                               const QString& name)
    : QcbsCifBoxItem(std::move(block), std::move(dictionary), name, CategoryRow) {
    setIcon(BoxClosedIcon);
    setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);
}

QcbsCifBoxCategoryItem::QcbsCifBoxCategoryItem(THandle<CifDataBlock> block, THandle<CifDictionary> dictionary,
                                               const QString& name, QStringList dataNames, bool heading)
    : QcbsCifBoxCategoryItem(std::move(block), std::move(dictionary), name) {
    dataNames_ = std::move(dataNames);
    heading_ = heading;
}

bool QcbsCifBoxCategoryItem::caseInsensitiveLess(const QString& a, const QString& b) {
    return QString::compare(a, b, Qt::CaseInsensitive) < 0;
}

QStringList QcbsCifBoxCategoryItem::dataNames() const {
    QStringList names;
    if (dataNames_) {
        names = *dataNames_;
    } else if (!dictionary().is_null()) {
        for (const std::string& name : dictionary()->category_items(text(0).toStdString()))
            names << QString::fromStdString(name);
    }
    // A set ordered without regard to case: names that differ only in case are one.
    std::sort(names.begin(), names.end(), caseInsensitiveLess);
    names.erase(std::unique(names.begin(), names.end(),
                            [](const QString& a, const QString& b) {
                                return QString::compare(a, b, Qt::CaseInsensitive) == 0;
                            }),
                names.end());
    return names;
}

void QcbsCifBoxCategoryItem::setOpen(bool open) {
    setIcon(open ? BoxOpenIcon : BoxClosedIcon);
    QcbsCifBoxItem::setOpen(open);
}

void QcbsCifBoxCategoryItem::fillChildren() {
    if (filled_) return;
    filled_ = true;
    QList<QTreeWidgetItem*> rows;
    for (const QString& name : dataNames()) rows << new QcbsCifBoxDataItem(block(), dictionary(), name);
    addChildren(rows);
    if (rows.isEmpty()) setChildIndicatorPolicy(QTreeWidgetItem::DontShowIndicatorWhenChildless);
}

void QcbsCifBoxCategoryItem::OnItemSelected() {
    if (!heading_) QcbsCifBoxItem::OnItemSelected();
}

QMenu* QcbsCifBoxCategoryItem::makeContextMenu() {
    if (heading_) return nullptr;
    auto* menu = new QMenu;
    menu->setObjectName("boxmenu");
    const QPointer<QcbsCifBoxView> tree = view();
    const QString category = name();
    QAction* help = menu->addAction(QIcon(QcbsXpmResource::get_xpm(QcbsXpmResource::Help)), "Item help");
    QObject::connect(help, &QAction::triggered, menu, [tree, category] {
        if (tree) tree->emitDataItemHelpRequest(category);
    });
    return menu;
}
