// SPDX-License-Identifier: GPL-3.0-or-later
// The main window's check of a document: text read into a Cif, messages into the error list.
// The text is the editor's or that of a file being loaded; the messages also go to the output
// pane, and the block chooser is refilled.
#include <QApplication>
#include <QComboBox>
#include <QHash>
#include <QSplitter>
#include <QTabWidget>
#include <fstream>
#include <utility>

#include "application/QcbsMainWindow.hpp"
#include "application/QcbsMainWindowActions.hpp"
#include "cif/CifDocumentCheck.hpp"
#include "cif/ORMACifConsistencyChecker.hpp"
#include "dictionaries/QcbsDictionaryLoader.hpp"
#include "dictionaries/QcbsDictionarySettings.hpp"
#include "document/QcbsCifDocument.hpp"
#include "editor/QcbsRichTextEdit.hpp"
#include "editor/QcbsSyntaxHighlighter_CIF.hpp"
#include "validation/QcbsErrorListView.hpp"
#include "views/QcbsCifBoxPane.hpp"
#include "views/QcbsCifBoxView.hpp"
#include "visualiser/QcbsVisSorter.hpp"

namespace {

bool isPlaceholder(const THandle<CifDataBlock>& block) {
    return "data_" + QString::fromStdString(block->name()).toLower() ==
           QcbsMainWindow::placeholderBlockName();
}

}  // namespace

THandle<CifDictionary> QcbsMainWindow::dictionary() {
    const THandle<QcbsDictionaryLoader> loader = sharedData_->dictionaryLoader();
    const THandle<CifDictionaryPool> all = loader->load(sharedData_->programDirectory());
    if (!loader->loaded()) writeMissingDictionaryNote();
    const THandle<CifDictionary> enabled = sharedData_->dictionarySettings()->loadSettings(all);
    // Dictionaries found after the editor was made reach its highlighting too.
    QcbsRichTextEdit* editor = currentEditor();
    if (editor != nullptr && editor->highlighter() != nullptr &&
        !(editor->highlighter()->dictionary() == enabled))
        editor->setDictionary(enabled);
    return enabled;
}

void QcbsMainWindow::writeMissingDictionaryNote() {
    if (missingDictionaryNoted_) return;
    missingDictionaryNoted_ = true;
    QStringList directories = QcbsDictionaryLoader::searchDirectories(sharedData_->programDirectory());
    for (QString& directory : directories) directory = directory.toHtmlEscaped();
    writeToOutputPane("No dictionary found: checking syntax only. Dictionaries (*.dic) were searched in: " +
                          directories.join(", ") + ".",
                      true);
    writeToOutputPane(
        QString("To check data names and values, copy a dictionary such as cif_core.dic into one of "
                "these directories, or name its directory in the environment variable ") +
            QcbsDictionaryLoader::environmentVariable() + ".",
        true);
}

CifDocumentCheck QcbsMainWindow::documentCheck() {
    CifCheckSettings settings;
    settings.parser = sharedData_->parserSettings();
    settings.publication_items = sharedData_->mandatoryPublicationItems();
    settings.crystal_items = sharedData_->mandatoryCrystalItems();
    settings.consistency = sharedData_->consistencyChecks();
    return CifDocumentCheck(dictionary(), std::move(settings));
}

THandle<Cif> QcbsMainWindow::parse() {
    if (currentEditor() == nullptr || !document_->isOpen()) return THandle<Cif>();
    // The document's check: its lists and views follow through checked().
    return document_->check();
}

THandle<Cif> QcbsMainWindow::parse(std::string filename, bool showErrors) {
    if (currentEditor() == nullptr) return THandle<Cif>();
    const THandle<Cif> cif = document_->checkFile(filename);
    noteLinesAtCheck();
    updateCrystalWizard();
    finishCheck(cif, showErrors);
    return cif;
}

void QcbsMainWindow::finishCheck(THandle<Cif> cif, bool showErrors) {
    // The tools that depend on the document (the crystal wizard) follow it.
    if (showErrors) enableTools(tabs_->currentWidget());
    noteLinesAtCheck();
    if (showErrors) processErrors(cif);
    fillBlocksCombo(cif);
    loadBoxView();
    visSorter_->setDocument(cif);
    // The error list now matches the text: double-clicks highlight again,
    // unless the user typed while the check ran on the worker.
    if (!document_->isLastCheckStale()) currentEditor()->reopenErrorHighlighting();
}

void QcbsMainWindow::noteLinesAtCheck() {
    QcbsRichTextEdit* editor = currentEditor();
    if (!editor->isLoading()) return;
    // A text still coming in (the file that was just read) has its full line
    // count, and a text unchanged since the check, only once it is in.
    connect(
        editor, &QcbsRichTextEdit::textLoaded, this,
        [this, editor] {
            document_->noteLinesAtCheck();
            editor->reopenErrorHighlighting();
        },
        Qt::SingleShotConnection);
}

void QcbsMainWindow::reparse() {
    QcbsRichTextEdit* editor = currentEditor();
    if (editor == nullptr || !document_->isOpen()) return;
    statusBarMessage("Parsing CIF...");
    if (editor->isLoading()) {
        // Checked once the whole text is in; a second request adds nothing.
        connect(editor, &QcbsRichTextEdit::textLoaded, this, &QcbsMainWindow::reparse,
                static_cast<Qt::ConnectionType>(Qt::SingleShotConnection | Qt::UniqueConnection));
        return;
    }
    if (editor->byteLength() == 0) return;
    writeToOutputPane("<p> </p>", true);
    writeToOutputPane("Checking CIF ...", true);
    parse();
    statusBarMessage("Ready");
}

void QcbsMainWindow::consistency_check(THandle<Cif> cif) {
    if (!sharedData_->consistencyChecks() || cif.is_null()) return;
    ORMACifConsistencyChecker checker(cif);
    checker.check_cif();
}

void QcbsMainWindow::processErrors(THandle<Cif> cif) {
    if (cif.is_null()) {
        errorList_->removeAll();
        return;
    }
    const CifErrorContainer& errors = *cif->errors();
    if (errors.empty()) {
        errorList_->removeAll();
        writeToOutputPane("No errors, warnings or remarks.", true);
        return;
    }
    // Remarks about a data name (303, 304) go to its first occurrence in the
    // text when that lies in the same block. The search runs on the
    // document, so the user's cursor, selection and scroll position stay.
    QHash<QString, int> firstOccurrence;
    const auto remarkLine = [&](const CifError& error) {
        if (error.id() != CifError::calculated_value_differs && error.id() != CifError::count_mismatch)
            return error.line();
        const QString name = QString::fromStdString(error.text());
        auto found = firstOccurrence.find(name);
        if (found == firstOccurrence.end())
            found = firstOccurrence.insert(name, document_->firstLineOf(name));
        const int line = found.value();
        if (line < 0 || cif->block_at_line(line) != cif->block_at_line(error.line())) return error.line();
        return line;
    };
    const QcbsErrorListView::Filled filled = errorList_->fill(errors, options().max_consec_error, remarkLine);
    for (int i = 0; i < filled.misc; ++i) writeToOutputPane("(misc error/info): ", true);
    if (filled.stoppedAt >= 0)
        writeToOutputPane(
            "Check stopped at line " + QString::number(filled.stoppedAt) + ": fix previous errors first. ",
            false);

    const auto count = [&](int kind) { return QString::number(filled.total[kind]); };
    QString totals = "Total errors: " + count(CifError::error) + "; warnings: " + count(CifError::warning) +
                     "; remarks: " + count(CifError::remark);
    // The list and the pane tell the same story when the limits hid entries.
    QStringList cut;
    for (const auto& [kind, name] : {std::pair{int(CifError::error), "errors"},
                                     {int(CifError::warning), "warnings"},
                                     {int(CifError::remark), "remarks"}}) {
        if (filled.listed[kind] != filled.total[kind])
            cut << QString::number(filled.listed[kind]) + " of " + count(kind) + " " + name;
    }
    if (!cut.isEmpty()) totals += " (listed: " + cut.join(", ") + ")";
    writeToOutputPane(totals, true);
}

void QcbsMainWindow::fillBlocksCombo(THandle<Cif> cif) {
    QComboBox* combo = blocksCombo();
    combo->clear();
    const std::size_t count = cif.is_null() ? 0 : cif->block_count();
    const bool placeholderFirst = count > 0 && isPlaceholder(cif->block(0));
    if (count == 0 || (count == 1 && placeholderFirst)) {
        combo->addItem(QcbsMainWindowActions::noBlocksText());
        combo->setEnabled(false);
        return;
    }
    combo->setEnabled(true);
    QStringList items;
    items.reserve(static_cast<qsizetype>(count) + 1);
    items << "Blocks:   " + QString::number(count - (placeholderFirst ? 1 : 0));
    // Item i + 1 stands for block i, so a placeholder keeps an empty item.
    for (const THandle<CifDataBlock>& block : cif->blocks())
        items << (isPlaceholder(block) ? QString() : QString::fromStdString(block->name()));
    combo->addItems(items);
    combo->setCurrentIndex(0);
}

void QcbsMainWindow::blockComboSelected(int index) {
    // A jump menu, not a state: the header shows again at once.
    blocksCombo()->setCurrentIndex(0);
    if (index == 0) {
        QApplication::beep();
        return;
    }
    // On the visualiser page the choice shows that block's structure.
    if (tabs_->currentWidget() == visSorter_) {
        visSorter_->zoomin(blocksCombo()->itemText(index));
        return;
    }
    if (tabs_->currentWidget() != editorPage_) return;
    const THandle<Cif> cif = currentCif();
    if (cif.is_null() || index < 1 || static_cast<std::size_t>(index) > cif->block_count()) return;
    const THandle<CifDataBlock> block = cif->block(static_cast<unsigned>(index - 1));
    const QString name = QString::fromStdString(block->name());
    if (block->line() >= 0) emit requestGotoLine(block->line(), name);
    if (!boxPane_->isHidden()) boxView_->goToBlock(name);
}
