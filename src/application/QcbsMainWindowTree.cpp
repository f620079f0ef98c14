// SPDX-License-Identifier: GPL-3.0-or-later
// The main window's routing of the tree's requests and of data-item help to the document.
// The tree of blocks (beside the editor or in its own window) and the edit data dialogue
// never touch the text: their requests arrive here and go to the window's QcbsCifDocument.
#include <QApplication>

#include "application/QcbsMainWindow.hpp"
#include "document/QcbsCifDocument.hpp"
#include "editor/QcbsRichTextEdit.hpp"
#include "views/QcbsCifBoxCategoryItem.hpp"
#include "views/QcbsCifBoxPane.hpp"
#include "views/QcbsCifBoxView.hpp"
#include "views/QcbsCifBoxViewDialog.hpp"
#include "views/QcbsEditDataDialogue.hpp"

namespace {

// "_atom_site" for the category row "_atom_site_[]"; other names as they are.
QString searchedName(const QString& name) {
    if (!name.endsWith("[]")) return name;
    QString category = name.chopped(2);
    while (category.endsWith('_')) category.chop(1);
    return category;
}

}  // namespace

THandle<CifDataItem> QcbsMainWindow::itemAtLine(const CifDataBlock& block, int line) {
    THandle<CifDataItem> found;
    int foundLine = 0;
    for (auto item = block.begin_write_order(); item != block.end_write_order(); ++item) {
        const int at = (*item)->line();
        if (at > 0 && at <= line && at >= foundLine) {
            found = *item;
            foundLine = at;
        }
    }
    return found;
}

QcbsCifBoxViewDialog* QcbsMainWindow::treeDialog() const { return treeDialog_; }

QcbsEditDataDialogue* QcbsMainWindow::helpDialogue() const { return helpDialogue_; }

QcbsEditDataDialogue* QcbsMainWindow::setDataDialogue() const { return setDataDialogue_; }

void QcbsMainWindow::connectTree(QcbsCifBoxView* tree) {
    connect(tree, &QcbsCifBoxView::selectedDataItem, this, &QcbsMainWindow::editorJumpToItemHelper);
    connect(tree, &QcbsCifBoxView::goToBlockRequest, this, &QcbsMainWindow::editorJumpToBlockHelper);
    connect(tree, &QcbsCifBoxView::datItemHelpRequest, this,
            qOverload<const QString&>(&QcbsMainWindow::dataitemHelp));
    connect(tree, &QcbsCifBoxView::dataItemSetRequest, this, &QcbsMainWindow::setDataItem);
    connect(tree, &QcbsCifBoxView::insertTextRequest, this, &QcbsMainWindow::editorInsertTextHelper);
    connect(tree, &QcbsCifBoxView::loopEditRequest, this, &QcbsMainWindow::loopEditHelper);
}

QString QcbsMainWindow::singleBlockSubstitute(const THandle<Cif>& cif) const {
    // The block the publication wizard adds to a document without blocks has
    // no name the user gave it; the block chooser leaves it unnamed too.
    if (cif.is_null() || cif->block_count() != 1) return QString();
    const QString name = "data_" + QString::fromStdString(cif->block(0)->name()).toLower();
    return name == placeholderBlockName() ? QString("(new block)") : QString();
}

void QcbsMainWindow::loadBoxView() {
    const THandle<Cif> cif = currentCif();
    const QString substitute = singleBlockSubstitute(cif);
    boxView_->setCif(cif, substitute);
    if (treeDialog_) treeDialog_->setCif(cif, substitute, fileName());
}

void QcbsMainWindow::showTreeDialog() {
    if (treeDialog_ == nullptr) {
        treeDialog_ = new QcbsCifBoxViewDialog(this);
        treeDialog_->setAttribute(Qt::WA_DeleteOnClose);
        connectTree(treeDialog_->view());
        const THandle<Cif> cif = currentCif();
        treeDialog_->setCif(cif, singleBlockSubstitute(cif), fileName());
    }
    treeDialog_->show();
    treeDialog_->raise();
    treeDialog_->activateWindow();
}

void QcbsMainWindow::followCursorInTree(int paragraph) {
    const bool paneShown = !boxPane_->isHidden();
    if (!paneShown && treeDialog_ == nullptr) return;
    const THandle<Cif> cif = currentCif();
    if (cif.is_null()) return;
    const auto block = cif->block_at_line(paragraph + 1);
    if (block == cif->block_end()) return;
    const THandle<CifDataItem> item = itemAtLine(**block, paragraph + 1);
    const QString name = item.is_null() ? QString() : QString::fromStdString(item->name());
    if (paneShown) boxView_->showDataItem(*block, name);
    if (treeDialog_) treeDialog_->view()->showDataItem(*block, name);
}

void QcbsMainWindow::editorJumpToItemHelper(const QString& dataName, int line) {
    if (!dataName.startsWith('_')) {
        // A block row: its heading, found by the row's text or, for a row
        // that shows a substitute, by the block's line.
        if (document_->goToBlock(dataName)) return;
        const THandle<Cif> cif = currentCif();
        if (!cif.is_null() && line > 0) {
            const auto block = cif->block_at_line(line);
            if (block != cif->block_end() && document_->goToBlock(QString::fromStdString((*block)->name())))
                return;
        }
        QApplication::beep();
        return;
    }
    if (!document_->goToItem(searchedName(dataName), line)) QApplication::beep();
}

THandle<CifDictionary> QcbsMainWindow::viewDictionary() {
    const THandle<Cif> cif = currentCif();
    return !cif.is_null() && !cif->dictionary().is_null() ? cif->dictionary() : dictionary();
}

void QcbsMainWindow::dataitemHelp() {
    QString name;
    // The tree's current row when the tree has the focus; else the editor's line.
    QcbsCifBoxView* tree = boxView_->hasFocus()                                        ? boxView_
                           : treeDialog_ != nullptr && treeDialog_->view()->hasFocus() ? treeDialog_->view()
                                                                                       : nullptr;
    const int kind = tree != nullptr && tree->currentItem() != nullptr ? tree->currentItem()->type() : 0;
    if (kind == QcbsCifBoxItem::CategoryRow || kind == QcbsCifBoxItem::DataRow)
        name = tree->currentItem()->text(0);
    else if (QcbsRichTextEdit* editor = currentEditor())
        name = editor->currentDataItem(true);
    dataitemHelp(name);
}

void QcbsMainWindow::dataitemHelp(const QString& dataName) {
    if (dataName.isEmpty() || dataName == QcbsCifBoxCategoryItem::undefinedItemsHeading()) {
        statusBarMessage("No data name to give help on: put the cursor on a line with a data name.");
        QApplication::beep();
        return;
    }
    // One help window at a time: a new request replaces the one showing.
    if (helpDialogue_) helpDialogue_->close();
    helpDialogue_ = new QcbsEditDataDialogue(dataName, viewDictionary(), this, false, QString(), QString(),
                                             sharedData_->fontStyles());
    helpDialogue_->setAttribute(Qt::WA_DeleteOnClose);
    helpDialogue_->show();
}

void QcbsMainWindow::setDataItem(const QString& dataName, const QString& blockName) {
    const THandle<Cif> cif = currentCif();
    QString value;
    if (!cif.is_null()) {
        const auto block = cif->block_with_name(blockName.toStdString());
        if (block != cif->block_end()) {
            const THandle<CifDataItem> item = (*block)->find(dataName.toStdString());
            if (!item.is_null()) value = QString::fromStdString(item->value());
        }
    }
    if (setDataDialogue_) setDataDialogue_->close();
    setDataDialogue_ = new QcbsEditDataDialogue(dataName, viewDictionary(), this, true, blockName, value,
                                                sharedData_->fontStyles());
    setDataDialogue_->setAttribute(Qt::WA_DeleteOnClose);
    connect(setDataDialogue_, &QcbsEditDataDialogue::setDataItemTextRequest, this,
            &QcbsMainWindow::dataItemUpdate);
    // Modal to its window, without holding the caller until it closes.
    setDataDialogue_->open();
}

void QcbsMainWindow::dataItemUpdate(const QString& dataName, const QString& blockName,
                                    const QString& itemText) {
    if (!document_->setItemValue(blockName, dataName, itemText))
        statusBarMessage("Could not set " + dataName + ": the block " + blockName +
                         " is no longer in the text, or the item is looped.");
}
