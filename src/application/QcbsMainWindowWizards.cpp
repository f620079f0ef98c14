// SPDX-License-Identifier: GPL-3.0-or-later
// The main window's launching of the wizards on the block at the cursor, and their results.
// A wizard edits a private copy of the block; its finished text reaches blockUpdate(), which
// hands it to the window's QcbsCifDocument as one undo step.
#include <iterator>

#include "application/QcbsMainWindow.hpp"
#include "document/QcbsCifDocument.hpp"
#include "editor/QcbsRichTextEdit.hpp"
#include "wizards/QcbsDataWizard.hpp"

QcbsWizard* QcbsMainWindow::openWizard() const { return wizard_; }

int QcbsMainWindow::blockIndexAtCursor(const THandle<Cif>& cif) const {
    if (cif.is_null() || cif->block_count() == 0 || currentEditor() == nullptr) return -1;
    int paragraph = 0;
    int index = 0;
    currentEditor()->getCursorPosition(&paragraph, &index);
    const auto block = cif->block_at_line(paragraph + 1);
    return block == cif->block_end() ? 0 : int(std::distance(cif->block_begin(), block));
}

void QcbsMainWindow::crystalWizard() {
    if (wizard_) {
        wizard_->raise();
        wizard_->activateWindow();
        return;
    }
    if (currentEditor() == nullptr || !document_->isOpen()) return;
    if (currentEditor()->isLoading()) {
        statusBarMessage("The file is still being read: open the wizard once it is in.");
        return;
    }
    // The wizard's copy and its syntax page come from the text as it stands.
    THandle<Cif> cif = document_->lastCheck();
    if (cif.is_null() || document_->isLastCheckStale()) {
        cif = parse();
        if (cif.is_null()) {
            // A large document is checked on the worker: the wizard opens on its result.
            if (document_->isCheckRunning()) {
                statusBarMessage("Checking the text for the crystal wizard...");
                connect(
                    document_, &QcbsCifDocument::checked, this,
                    [this](THandle<Cif> checked) { openCrystalWizard(checked); }, Qt::SingleShotConnection);
            }
            return;
        }
    }
    openCrystalWizard(cif);
}

void QcbsMainWindow::openCrystalWizard(const THandle<Cif>& cif) {
    if (wizard_) return;
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
