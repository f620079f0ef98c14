// SPDX-License-Identifier: GPL-3.0-or-later
// The main window's launching of the combine dialogue on the block at the cursor, and its result.
// The dialogue works on the block's text as it stands; its merged text reaches the window's
// QcbsCifDocument as one undo step, which checks the document again.
#include <QApplication>

#include "application/QcbsMainWindow.hpp"
#include "document/QcbsCifDocument.hpp"
#include "editor/QcbsRichTextEdit.hpp"
#include "views/QcbsCombineDialog.hpp"

void QcbsMainWindow::combine() {
    if (auto* open = findChild<QcbsCombineDialog*>(); open != nullptr && open->isVisible()) {
        open->raise();
        open->activateWindow();
        return;
    }
    QcbsRichTextEdit* editor = currentEditor();
    if (editor == nullptr || !document_->isOpen()) return;
    if (editor->isLoading()) {
        statusBarMessage("The file is still being read: merge a template once it is in.");
        return;
    }
    // The block at the cursor as the text stands now.
    const auto openDialog = [this](const THandle<Cif>& cif) {
        QcbsRichTextEdit* editor = currentEditor();
        int paragraph = 0;
        int index = 0;
        editor->getCursorPosition(&paragraph, &index);
        const auto block = cif.is_null() ? Cif::iterator() : cif->block_at_line(paragraph + 1);
        if (cif.is_null() || block == cif->block_end()) {
            statusBarMessage(
                "No data block at the cursor: put the cursor in the block (data_...) to merge a "
                "template into.");
            QApplication::beep();
            return;
        }
        // The block's lines as the document holds them, in its encoding.
        const auto lineStart = [editor](int line) {
            return line >= editor->lines() ? editor->byteLength()
                                           : static_cast<int>(editor->SendScintilla(
                                                 QsciScintillaBase::SCI_POSITIONFROMLINE, line));
        };
        const int from = lineStart((*block)->line() - 1);
        const std::string_view bytes = editor->byteView(from, lineStart((*block)->end_line()) - from);
        const QString blockText = editor->isUtf8Text()
                                      ? QString::fromUtf8(bytes.data(), qsizetype(bytes.size()))
                                      : QString::fromLatin1(bytes.data(), qsizetype(bytes.size()));

        auto* dialog = new QcbsCombineDialog(this);
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->setWriteSettings(sharedData_->writeSettings());
        dialog->setBlock(blockText, cif->version());
        if (!options().template_file.isEmpty()) dialog->setTemplateFile(options().template_file);
        connect(dialog, &QcbsCombineDialog::blockMerged, this,
                [this](const QString& name, const QString& text) {
                    if (!document_->replaceBlock(name, text))
                        statusBarMessage("The block data_" + name + " is no longer in the text.");
                });
        // Modal to its window: the text cannot change under the comparison.
        dialog->open();
    };
    THandle<Cif> cif = document_->lastCheck();
    if (cif.is_null() || document_->isLastCheckStale()) {
        cif = parse();
        if (cif.is_null()) {
            // A large document is checked on the worker: the dialogue opens on its result.
            if (document_->isCheckRunning()) {
                statusBarMessage("Checking the text to merge a template...");
                connect(document_, &QcbsCifDocument::checked, this, openDialog, Qt::SingleShotConnection);
            }
            return;
        }
    }
    openDialog(cif);
}
