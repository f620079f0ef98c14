// SPDX-License-Identifier: GPL-3.0-or-later
// The main window's launching of the wizards on the block at the cursor, and their results.
// A wizard edits a private copy of the block; its finished text reaches blockUpdate() (or
// blockAdd() for a new block), which hands it to the window's QcbsCifDocument as one undo step.
#include <iterator>

#include "application/QcbsMainWindow.hpp"
#include "document/QcbsCifDocument.hpp"
#include "editor/QcbsRichTextEdit.hpp"
#include "wizards/QcbsDataWizard.hpp"
#include "wizards/QcbsPublWizard.hpp"

QcbsWizard* QcbsMainWindow::openWizard() const { return wizard_; }

int QcbsMainWindow::blockIndexAtCursor(const THandle<Cif>& cif) const {
    if (cif.is_null() || cif->block_count() == 0 || currentEditor() == nullptr) return -1;
    int paragraph = 0;
    int index = 0;
    currentEditor()->getCursorPosition(&paragraph, &index);
    const auto block = cif->block_at_line(paragraph + 1);
    return block == cif->block_end() ? 0 : int(std::distance(cif->block_begin(), block));
}

bool QcbsMainWindow::withCurrentCheck(const QString& waiting,
                                      void (QcbsMainWindow::*open)(const THandle<Cif>&)) {
    if (wizard_) {
        wizard_->raise();
        wizard_->activateWindow();
        return false;
    }
    if (currentEditor() == nullptr) return false;
    if (currentEditor()->isLoading()) {
        statusBarMessage("The file is still being read: open the wizard once it is in.");
        return false;
    }
    // The wizard's copy and its syntax page come from the text as it stands.
    THandle<Cif> cif = document_->lastCheck();
    if (cif.is_null() || document_->isLastCheckStale()) {
        cif = parse();
        // A large document is checked on the worker: the wizard opens on its result.
        if (cif.is_null() && document_->isCheckRunning()) {
            statusBarMessage(waiting);
            connect(
                document_, &QcbsCifDocument::checked, this,
                [this, open](THandle<Cif> checked) { (this->*open)(checked); }, Qt::SingleShotConnection);
            return true;
        }
    }
    (this->*open)(cif);
    return true;
}

void QcbsMainWindow::crystalWizard() {
    if (!document_->isOpen()) return;
    withCurrentCheck("Checking the text for the crystal wizard...", &QcbsMainWindow::openCrystalWizard);
}

void QcbsMainWindow::openCrystalWizard(const THandle<Cif>& cif) {
    if (wizard_ || cif.is_null()) return;
    const int index = blockIndexAtCursor(cif);
    const THandle<CifDataBlock> block = index < 0 ? THandle<CifDataBlock>() : cif->block(unsigned(index));
    if (block.is_null() ||
        !(block->has_item_with_category("chemical") || block->has_item_with_category("atom_site") ||
          block->has_item_with_category("cell"))) {
        statusBarMessage("The crystal wizard works on a block with chemical, atom_site or cell data items.");
        return;
    }
    wizard_ = new QcbsDataWizard(cif, index, dictionary(), sharedData_->writeSettings(), this);
    connect(wizard_, &QcbsWizard::blockUpdated, this, &QcbsMainWindow::blockUpdate);
    // Modal to its window, without holding the caller until it closes.
    wizard_->open();
}

void QcbsMainWindow::publicationWizard() {
    // A window without a document starts one for the wizard's block.
    if (currentEditor() != nullptr && !currentEditor()->isLoading() && !wizard_ && !document_->isOpen())
        fileNewUntitled();
    withCurrentCheck("Checking the text for the publication wizard...",
                     &QcbsMainWindow::openPublicationWizard);
}

void QcbsMainWindow::openPublicationWizard(const THandle<Cif>& cif) {
    if (wizard_) return;
    int index = QcbsPublWizard::newBlock;
    if (!cif.is_null() && currentEditor() != nullptr) {
        int paragraph = 0;
        int column = 0;
        currentEditor()->getCursorPosition(&paragraph, &column);
        const auto block = cif->block_at_line(paragraph + 1);
        if (block != cif->block_end()) index = int(std::distance(cif->block_begin(), block));
    }
    // The syntax page of a wizard on a text that could not be checked has nothing to report.
    const THandle<Cif> document = cif.is_null() ? THandle<Cif>(new Cif(dictionary())) : cif;
    wizard_ = new QcbsPublWizard(document, index, dictionary(), sharedData_->writeSettings(),
                                 options().contact_author, this);
    if (index == QcbsPublWizard::newBlock)
        connect(wizard_, &QcbsWizard::blockUpdated, this, &QcbsMainWindow::blockAdd);
    else
        connect(wizard_, &QcbsWizard::blockUpdated, this, &QcbsMainWindow::blockUpdate);
    wizard_->open();
}
