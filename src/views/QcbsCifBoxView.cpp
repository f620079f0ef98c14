// SPDX-License-Identifier: GPL-3.0-or-later
// The tree of a document's blocks, categories and data items beside the editor.
#include "views/QcbsCifBoxView.hpp"

QcbsCifBoxView::QcbsCifBoxView(QWidget* parent) : QTreeWidget(parent) {
    setObjectName("boxview");
    setColumnCount(1);
    setHeaderHidden(true);
    setRootIsDecorated(true);
    showNoItems();
}

void QcbsCifBoxView::showNoItems() {
    clear();
    auto* item = new QTreeWidgetItem(this, QStringList{noItemsText()});
    // Shown greyed and not selectable: it stands for no item at all.
    item->setFlags(Qt::NoItemFlags);
}
