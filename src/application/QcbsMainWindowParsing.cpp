// SPDX-License-Identifier: GPL-3.0-or-later
// The main window's check of a document: text read into a Cif, messages into the error list.
// The text is the editor's or that of a file being loaded; the messages also go to the output
// pane, and the block chooser is refilled.
#include <QApplication>
#include <QComboBox>
#include <QHash>
#include <QSignalBlocker>
#include <QSplitter>
#include <QTabWidget>
#include <QTextCursor>
#include <QTextDocument>
#include <fstream>
#include <optional>

#include "application/QcbsMainWindow.hpp"
#include "application/QcbsMainWindowActions.hpp"
#include "cif/ORMACifConsistencyChecker.hpp"
#include "dictionaries/QcbsDictionaryLoader.hpp"
#include "dictionaries/QcbsDictionarySettings.hpp"
#include "editor/QcbsRichTextEdit.hpp"
#include "editor/QcbsSyntaxHighlighter_CIF.hpp"
#include "validation/QcbsErrorListView.hpp"

namespace {

// The bytes handed to the reader: the editor's text in the encoding its file
// was read in (UTF-8 for a text Latin-1 cannot hold). One pass over a text
// of plain characters, as most of a big file is.
std::string documentBytes(const QString& raw, QcbsDocumentEncoding encoding) {
    const bool utf8 = encoding.kind() == QcbsDocumentEncoding::Utf8;
    const char16_t limit = utf8 ? 0x7f : 0xff;
    std::string bytes(static_cast<std::size_t>(raw.size()), '\0');
    const QChar* in = raw.constData();
    for (qsizetype i = 0; i < raw.size(); ++i) {
        char16_t c = in[i].unicode();
        if (c > limit) {
            // Raw text ends its lines with Unicode separators.
            if (c != QChar::ParagraphSeparator && c != QChar::LineSeparator) {
                QString text = raw;
                text.replace(QChar::ParagraphSeparator, u'\n').replace(QChar::LineSeparator, u'\n');
                const bool asUtf8 = utf8 || !encoding.canEncode(text);
                return (asUtf8 ? text.toUtf8() : text.toLatin1()).toStdString();
            }
            c = u'\n';
        }
        bytes[static_cast<std::size_t>(i)] = static_cast<char>(c);
    }
    return bytes;
}

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

THandle<Cif> QcbsMainWindow::newDocument(QcbsRichTextEdit* editor) {
    THandle<Cif> cif(new Cif(dictionary()));
    documents_[editor] = cif;
    return cif;
}

THandle<Cif> QcbsMainWindow::parse() {
    QcbsRichTextEdit* editor = currentEditor();
    if (editor == nullptr || !fileNames_.contains(editor)) return THandle<Cif>();

    // Raw text keeps every character as typed (a no-break space stays one).
    std::string text = documentBytes(editor->document()->toRawText(), documentEncoding(editor));
    THandle<Cif> cif = newDocument(editor);
    cif->read_text(std::move(text), sharedData_->parserSettings());
    cif->check_mandatory(sharedData_->mandatoryPublicationItems(), sharedData_->mandatoryCrystalItems());
    parsed_.insert(editor);
    noteLinesAtCheck(editor);
    // The tools that depend on the document (the crystal wizard) follow it.
    enableTools(tabs_->currentWidget());
    finishCheck(editor, cif, true);
    return cif;
}

THandle<Cif> QcbsMainWindow::parse(std::string filename, bool showErrors) {
    QcbsRichTextEdit* editor = currentEditor();
    if (editor == nullptr) return THandle<Cif>();

    THandle<Cif> cif = newDocument(editor);
    // A file that cannot be opened reads as an empty stream.
    std::ifstream file(filename, std::ios::binary);
    cif->read(file, sharedData_->parserSettings());
    cif->check_mandatory(sharedData_->mandatoryPublicationItems(), sharedData_->mandatoryCrystalItems());
    noteLinesAtCheck(editor);
    updateCrystalWizard();
    finishCheck(editor, cif, showErrors);
    return cif;
}

void QcbsMainWindow::finishCheck(QcbsRichTextEdit* editor, THandle<Cif> cif, bool showErrors) {
    consistency_check(cif);
    if (showErrors) processErrors(cif);
    fillBlocksCombo(cif);
    loadBoxView();
    // The error list now matches the text: double-clicks highlight again.
    editor->reopenErrorHighlighting();
}

void QcbsMainWindow::noteLinesAtCheck(QcbsRichTextEdit* editor) {
    parsedLines_[editor] = editor->lines();
    if (!editor->isLoading()) return;
    // A text still coming in (the file that was just read) has its full line
    // count, and a text unchanged since the check, only once it is in.
    connect(
        editor, &QcbsRichTextEdit::textLoaded, this,
        [this, editor] {
            parsedLines_[editor] = editor->lines();
            editor->reopenErrorHighlighting();
        },
        Qt::SingleShotConnection);
}

void QcbsMainWindow::reparse() {
    QcbsRichTextEdit* editor = currentEditor();
    if (editor == nullptr || !fileNames_.contains(editor)) return;
    statusBarMessage("Parsing CIF...");
    if (editor->isLoading()) {
        // Checked once the whole text is in; a second request adds nothing.
        connect(editor, &QcbsRichTextEdit::textLoaded, this, &QcbsMainWindow::reparse,
                static_cast<Qt::ConnectionType>(Qt::SingleShotConnection | Qt::UniqueConnection));
        return;
    }
    if (editor->document()->isEmpty()) return;
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
    errorList_->removeAll();
    if (cif.is_null()) return;
    const CifErrorContainer& errors = *cif->errors();
    if (errors.empty()) {
        writeToOutputPane("No errors, warnings or remarks.", true);
        return;
    }

    QcbsRichTextEdit* editor = currentEditor();
    QTextDocument* text = editor->document();
    // The tree hears of its new rows once, after the last: told of each
    // one, it re-measures its columns every time, which costs a long list
    // seconds. It sorts and paints once as well.
    QList<bool> open;
    for (int i = 0; i < errorList_->topLevelItemCount(); ++i)
        open << errorList_->topLevelItem(i)->isExpanded();
    errorList_->setUpdatesEnabled(false);
    errorList_->setSortingEnabled(false);
    std::optional<QSignalBlocker> quiet(std::in_place, errorList_->model());

    // Remarks about a data name (303, 304) go to its first occurrence in the
    // text. The search runs on the document, not the editor, so the user's
    // cursor, selection and scroll position never move.
    QHash<QString, int> firstOccurrence;
    const auto relocated = [&](const CifError& error) {
        const QString name = QString::fromStdString(error.text());
        auto found = firstOccurrence.find(name);
        if (found == firstOccurrence.end()) {
            const QTextCursor at = name.isEmpty() ? QTextCursor() : text->find(name, 0);
            found = firstOccurrence.insert(name, at.isNull() ? -1 : at.blockNumber() + 1);
        }
        const int line = found.value();
        if (line < 0 || cif->block_at_line(line) != cif->block_at_line(error.line())) return error.line();
        return line;
    };

    const int limit = max_consec_error;
    int warningRun = 0;
    int errorRun = 0;
    int previousWarning = -99;
    int previousError = -99;
    bool stopped = false;
    for (auto it = errors.begin(); it != errors.end() && !stopped; ++it) {
        const CifError& error = *it;
        const int line = error.line();
        const QString message = QString::fromStdString(error.message());
        switch (error.type()) {
            case CifError::remark: {
                const bool search = error.id() == CifError::calculated_value_differs ||
                                    error.id() == CifError::count_mismatch;
                errorList_->addRemark(message, search ? relocated(error) : line, error.id());
                break;
            }
            case CifError::warning: {
                // Validation reply items (_vrf_...) answer a validation
                // report; no dictionary defines them, and that is no fault.
                if (error.id() == CifError::undefined_data_name &&
                    error.text().find("_vrf") != std::string::npos)
                    break;
                if (line == previousWarning + 1)
                    ++warningRun;
                else if (line > previousWarning + 1)
                    warningRun = 1;
                if (warningRun <= limit) errorList_->addWarning(message, line, error.id());
                previousWarning = line;
                if (warningRun == limit + 1) {
                    errorList_->addWarning("(warnings omitted)", line, CifError::warnings_omitted);
                    ++warningRun;
                }
                break;
            }
            case CifError::error: {
                errorList_->addError(message, line, error.id());
                if (line == previousError + 1)
                    ++errorRun;
                else if (line > previousError + 1)
                    errorRun = 0;
                previousError = line;
                if (errorRun >= limit) {
                    writeToOutputPane(
                        "Check stopped at line " + QString::number(line) + ": fix previous errors first.",
                        false);
                    stopped = true;
                }
                break;
            }
            default:
                writeToOutputPane("(misc error/info): ", true);
                break;
        }
    }
    quiet.reset();
    errorList_->reset();
    for (int i = 0; i < open.size(); ++i) errorList_->topLevelItem(i)->setExpanded(open[i]);
    errorList_->setSortingEnabled(true);
    errorList_->sortByColumn(0, Qt::AscendingOrder);
    errorList_->setUpdatesEnabled(true);

    writeToOutputPane("Total errors: " + QString::number(errors.errors_of_type(CifError::error)) +
                          "; warnings: " + QString::number(errors.errors_of_type(CifError::warning)) +
                          "; remarks: " + QString::number(errors.errors_of_type(CifError::remark)),
                      true);
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
    // On the visualiser page the choice will zoom to that block's structure
    // once the 3-D view exists; nothing else happens there.
    if (tabs_->currentWidget() != editorPage_) return;
    const THandle<Cif> cif = currentCif();
    if (cif.is_null() || index < 1 || static_cast<std::size_t>(index) > cif->block_count()) return;
    const THandle<CifDataBlock> block = cif->block(static_cast<unsigned>(index - 1));
    const QString name = QString::fromStdString(block->name());
    if (block->line() >= 0) emit requestGotoLine(block->line(), name);
}
