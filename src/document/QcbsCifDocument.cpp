// SPDX-License-Identifier: GPL-3.0-or-later
// The one document of a main window and the edits views and wizards ask for.
#include "document/QcbsCifDocument.hpp"

#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <algorithm>
#include <fstream>
#include <string_view>

#include "cif/CifTextEdits.hpp"
#include "cif/CifTextLocator.hpp"
#include "document/QcbsDocumentLines.hpp"
#include "editor/QcbsRichTextEdit.hpp"

namespace {

std::string_view view(const QByteArray& bytes) {
    return std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size()));
}

std::string utf8(const QString& text) { return text.toStdString(); }

}  // namespace

QcbsCifDocument::QcbsCifDocument(QcbsRichTextEdit* editor, QObject* parent)
    : QObject(parent), editor_(editor) {}

// --- the document ----------------------------------------------------------------------

void QcbsCifDocument::setFileName(const QString& name) {
    open_ = true;
    if (name == fileName_) return;
    fileName_ = name;
    emit fileNameChanged(name);
}

bool QcbsCifDocument::isModified() const { return editor_->isModified(); }

void QcbsCifDocument::setModified(bool modified) { editor_->setModified(modified); }

bool QcbsCifDocument::isLoading() const { return editor_->isLoading(); }

int QcbsCifDocument::lineCount() const { return editor_->lines(); }

void QcbsCifDocument::open(const QString& name) {
    encoding_ = QcbsDocumentEncoding();
    lineEnd_ = "\n";
    finalLineEnd_ = true;
    lastCheck_ = THandle<Cif>();
    checked_ = false;
    linesAtCheck_ = -1;
    checkAllowed_ = true;
    setFileName(name);
}

void QcbsCifDocument::close() {
    if (editor_->isLoading())
        editor_->loadText(QString());
    else
        editor_->clear();  // also forgets the undo history
    editor_->clearErrorHighlighting();
    editor_->setModified(false);
    open_ = false;
    fileName_.clear();
    encoding_ = QcbsDocumentEncoding();
    lastCheck_ = THandle<Cif>();
    checked_ = false;
    linesAtCheck_ = -1;
    checkAllowed_ = true;
    emit fileNameChanged(QString());
}

// --- reading and writing ---------------------------------------------------------------

void QcbsCifDocument::load(const QString& name, const QByteArray& bytes,
                           const std::function<void(int)>& lineCount) {
    QString text;
    const QcbsDocumentEncoding encoding = QcbsDocumentEncoding::detect(bytes, &text);
    QcbsDocumentLines::Read read = QcbsDocumentLines::fromFileText(std::move(text));
    open(name);
    encoding_ = encoding;
    lineEnd_ = read.lineEnd;
    finalLineEnd_ = read.finalLineEnd;
    if (lineCount) lineCount(read.lines);
    editor_->loadText(read.text);
}

QByteArray QcbsCifDocument::fileBytes() const {
    const QString text = QcbsDocumentLines::toFileText(*editor_->document(), lineEnd_, finalLineEnd_);
    // A character Latin-1 cannot hold is never dropped: such a text is UTF-8.
    if (!encoding_.canEncode(text)) return QcbsDocumentEncoding(QcbsDocumentEncoding::Utf8).encode(text);
    return encoding_.encode(text);
}

QcbsDocumentSaver::Result QcbsCifDocument::save(const QString& name, bool backup, bool* widened) {
    const QString text = QcbsDocumentLines::toFileText(*editor_->document(), lineEnd_, finalLineEnd_);
    QcbsDocumentEncoding encoding = encoding_;
    const bool wider = !encoding.canEncode(text);
    if (wider) encoding = QcbsDocumentEncoding(QcbsDocumentEncoding::Utf8);
    if (widened != nullptr) *widened = wider;
    QcbsDocumentSaver::Result result = QcbsDocumentSaver::save(name, encoding.encode(text), backup);
    if (!result.saved) return result;
    encoding_ = encoding;
    setFileName(name);
    editor_->setModified(false);
    return result;
}

// --- checking --------------------------------------------------------------------------

THandle<Cif> QcbsCifDocument::check() {
    const QByteArray bytes = fileBytes();
    const CifDocumentCheck source = checkSource_ ? checkSource_() : CifDocumentCheck();
    lastCheck_ = source.run(bytes.toStdString());
    checked_ = true;
    noteLinesAtCheck();
    emit checked(lastCheck_);
    return lastCheck_;
}

THandle<Cif> QcbsCifDocument::checkFile(const std::string& filename) {
    // A file that cannot be opened reads as an empty stream.
    std::ifstream file(filename, std::ios::binary);
    const CifDocumentCheck source = checkSource_ ? checkSource_() : CifDocumentCheck();
    lastCheck_ = source.run(file);
    noteLinesAtCheck();
    return lastCheck_;
}

void QcbsCifDocument::noteLinesAtCheck() { linesAtCheck_ = editor_->lines(); }

// --- edits -----------------------------------------------------------------------------

QByteArray QcbsCifDocument::editorUtf8() const {
    // Raw text separates the lines by U+2029 and keeps every other
    // character as typed (a no-break space stays one).
    QString text = editor_->document()->toRawText();
    text.replace(QChar::ParagraphSeparator, u'\n');
    return text.toUtf8();
}

int QcbsCifDocument::position(const QByteArray& utf8, std::size_t offset) const {
    const std::string_view text = view(utf8).substr(0, offset);
    const auto line = static_cast<int>(std::count(text.begin(), text.end(), '\n'));
    const std::size_t lineStart = line == 0 ? 0 : text.rfind('\n') + 1;
    const QTextBlock block = editor_->document()->findBlockByNumber(line);
    return block.position() +
           static_cast<int>(
               QString::fromUtf8(text.data() + lineStart, static_cast<qsizetype>(offset - lineStart)).size());
}

void QcbsCifDocument::placeCursor(int position) {
    QTextCursor cursor(editor_->document());
    cursor.setPosition(position);
    editor_->setTextCursor(cursor);
    editor_->centerCursor();
}

bool QcbsCifDocument::edit(const EditMaker& make) {
    if (!open_ || isLoading()) return false;
    const QByteArray text = editorUtf8();
    const std::optional<CifTextEdit> change = make(CifTextLocator(view(text)));
    if (!change) return false;
    const int begin = position(text, change->begin);
    const int end = position(text, change->end);
    QTextCursor cursor(editor_->document());
    cursor.beginEditBlock();
    cursor.setPosition(begin);
    cursor.setPosition(end, QTextCursor::KeepAnchor);
    cursor.insertText(QString::fromUtf8(change->text.data(), static_cast<qsizetype>(change->text.size())));
    cursor.endEditBlock();
    placeCursor(begin);
    check();
    return true;
}

bool QcbsCifDocument::setItemValue(const QString& block, const QString& dataName, const QString& itemText) {
    return edit([&](const CifTextLocator& text) {
        return cif_item_edit(text, utf8(block), utf8(dataName), utf8(itemText));
    });
}

bool QcbsCifDocument::replaceBlock(const QString& block, const QString& blockText) {
    return edit(
        [&](const CifTextLocator& text) { return cif_block_edit(text, utf8(block), utf8(blockText)); });
}

bool QcbsCifDocument::addBlock(const QString& blockText, const QString& beforeBlock) {
    return edit([&](const CifTextLocator& text) {
        return std::optional<CifTextEdit>(cif_new_block_edit(text, utf8(blockText), utf8(beforeBlock)));
    });
}

bool QcbsCifDocument::replaceLoop(const QString& block, const QString& loopMaster, const QString& loopText) {
    return edit([&](const CifTextLocator& text) {
        return cif_loop_edit(text, utf8(block), utf8(loopMaster), utf8(loopText));
    });
}

bool QcbsCifDocument::addLoop(const QString& block, const QString& loopText) {
    return edit(
        [&](const CifTextLocator& text) { return cif_new_loop_edit(text, utf8(block), utf8(loopText)); });
}

void QcbsCifDocument::insertText(const QString& text) {
    if (open_ && !isLoading()) editor_->insertPlainText(text);
}

// --- going places ----------------------------------------------------------------------

bool QcbsCifDocument::goToItem(const QString& dataName, int fromLine) {
    if (!open_ || isLoading()) return false;
    const QByteArray text = editorUtf8();
    // The byte where the line starts.
    std::size_t from = 0;
    for (int line = 1; line < fromLine && from < static_cast<std::size_t>(text.size()); ++line) {
        const qsizetype next = text.indexOf('\n', static_cast<qsizetype>(from));
        if (next < 0) break;
        from = static_cast<std::size_t>(next) + 1;
    }
    const CifTextLocator locator(view(text));
    const std::optional<CifTextSpan> found = locator.name(locator.block_at(from), utf8(dataName), from);
    if (!found) return false;
    placeCursor(position(text, found->begin));
    return true;
}

bool QcbsCifDocument::goToBlock(const QString& name) {
    if (!open_ || isLoading()) return false;
    const QByteArray text = editorUtf8();
    const std::optional<CifTextSpan> found = CifTextLocator(view(text)).block(utf8(name));
    if (!found) return false;
    placeCursor(position(text, found->begin));
    return true;
}

int QcbsCifDocument::firstLineOf(const QString& text) const {
    if (text.isEmpty()) return -1;
    const QTextCursor found = editor_->document()->find(text, 0);
    return found.isNull() ? -1 : found.blockNumber() + 1;
}
