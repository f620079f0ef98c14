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
