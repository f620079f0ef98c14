// SPDX-License-Identifier: GPL-3.0-or-later
// The CIF text editor: CIF questions about lines, commenting, error marks, copy and paste.
#include "editor/QcbsRichTextEdit.hpp"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QScrollBar>
#include <QStringDecoder>
#include <algorithm>
#include <fstream>
#include <string>
#include <vector>

#include "editor/QcbsFontStyleSettings.hpp"
#include "editor/QcbsSlicedTextLoader.hpp"
#include "editor/QcbsSyntaxHighlighter_CIF.hpp"
#include "editor/QcbsUnicode.hpp"
#include "resources/QcbsXpmResource.hpp"
#include "support/comment.hpp"
#include "support/getline.hpp"

QString QcbsRichTextEdit::template_;

namespace {

const char* const kCommentMarker = "#";
const QColor kErrorLineColour(204, 232, 195);    // error selection 1
const QColor kOtherErrorLineColour(Qt::yellow);  // error selection 2
const QColor kHighlightColour(51, 102, 187);     // the ordinary selection

// Wide enough that no real line is broken into several comment lines, and
// wider still for a longer line, so that nothing of it is lost.
std::size_t commentWidth(const std::string& line) {
    return std::max<std::size_t>(10000, line.size() + std::char_traits<char>::length(kCommentMarker) + 1);
}

struct CommentParagraph {
    QString operator()(const QString& line) const {
        const std::string text = line.toStdString();
        std::vector<std::string> out;
        comment(text, out, "", "", "", kCommentMarker, commentWidth(text), " \t");
        return out.empty() ? line : QString::fromStdString(out.front());
    }
};

struct UncommentParagraph {
    QString operator()(const QString& line) const {
        std::vector<std::string> out;
        uncomment(line.toStdString(), out, kCommentMarker, "");
        return out.empty() ? line : QString::fromStdString(out.front());
    }
};

QString dataNameAtStart(const QString& line) {
    const QString stripped = line.trimmed();
    if (!stripped.startsWith(u'_')) return QString();
    const auto end = std::find_if(stripped.begin(), stripped.end(), [](QChar c) { return c.isSpace(); });
    return QString(stripped.begin(), end - stripped.begin());
}

bool startsTextBlockMark(const QTextBlock& block) { return block.text().trimmed().startsWith(u';'); }

// Whether a paragraph lies within a semicolon text block: the lines from the
// first to it that start with ";" toggle in and out.
bool insideTextBlock(const QTextBlock& target) {
    bool inside = false;
    for (QTextBlock block = target.document()->firstBlock(); block.isValid(); block = block.next()) {
        if (startsTextBlockMark(block)) inside = !inside;
        if (block == target) break;
    }
    return inside;
}

// File bytes as text: UTF-8 when they are valid UTF-8, otherwise Latin-1.
QString decodeFileText(const std::string& bytes) {
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = utf8(QByteArrayView(bytes.data(), static_cast<qsizetype>(bytes.size())));
    if (utf8.hasError()) text = QString::fromLatin1(bytes.data(), static_cast<qsizetype>(bytes.size()));
    return text;
}

bool isPassedToOwner(const QKeyEvent* event) {
    if (event->modifiers() != Qt::ControlModifier) return false;
    switch (event->key()) {
        case Qt::Key_A:
        case Qt::Key_B:
        case Qt::Key_F:
        case Qt::Key_I:
        case Qt::Key_K:
        case Qt::Key_P:
            return true;
        default:
            return false;
    }
}

}  // namespace

QcbsRichTextEdit::QcbsRichTextEdit(QWidget* parent, const char* name) : QPlainTextEdit(parent) {
    if (name != nullptr) setObjectName(QString::fromUtf8(name));
    connectOwnSignals();
}

QcbsRichTextEdit::QcbsRichTextEdit(THandle<CifDictionary> dictionary, THandle<QcbsFontStyleSettings> styles,
                                   QWidget* parent, const char* name)
    : QcbsRichTextEdit(parent, name) {
    initialise(dictionary, styles);
}

QcbsRichTextEdit::~QcbsRichTextEdit() = default;

void QcbsRichTextEdit::initialise(THandle<CifDictionary> dictionary, THandle<QcbsFontStyleSettings> styles) {
    const bool sameStyles = styles_.get() == styles.get();
    styles_ = styles;
    if (styles_) setFont(styles_->editorFont());

    QPalette colours = palette();
    colours.setColor(QPalette::HighlightedText, Qt::white);
    colours.setColor(QPalette::Base, Qt::white);
    colours.setColor(QPalette::WindowText, Qt::black);
    colours.setColor(QPalette::Text, Qt::black);
    colours.setColor(QPalette::Highlight, kHighlightColour);
    setPalette(colours);

    setWrapPolicyAndScrollBar();

    // The highlighter is made while the document is still empty, so that it
    // highlights whatever comes in a slice at a time. A repeated call keeps
    // the highlighter where it can, since replacing it on a big text would
    // highlight the whole text in one pass.
    if (highlighter_ != nullptr && sameStyles) {
        setDictionary(dictionary);
    } else if (styles_) {
        delete highlighter_;
        highlighter_ = new QcbsSyntaxHighlighter_CIF(dictionary, styles_, this);
    }

    errorGate_ = 0;
    lastCursorParagraph_ = 0;
    fullContextMenu_ = true;
}

void QcbsRichTextEdit::connectOwnSignals() {
    connect(this, &QPlainTextEdit::cursorPositionChanged, this, [this] {
        QTextCursor cursor = textCursor();
        cursorPositionHasChanged(&cursor);
    });
    connect(this, &QPlainTextEdit::selectionChanged, this, &QcbsRichTextEdit::selectionHasChanged);
    connect(this, &QPlainTextEdit::textChanged, this, &QcbsRichTextEdit::textHasChanged);
    // Qt moves the scroll bars with their signals blocked when it scrolls to
    // the cursor, so every viewport update also checks the position.
    const auto reportScroll = [this] {
        const QPoint position(contentsX(), contentsY());
        if (position == reportedContentsPos_) return;
        reportedContentsPos_ = position;
        emit contentsMoving(position.x(), position.y());
    };
    connect(horizontalScrollBar(), &QScrollBar::valueChanged, this, reportScroll);
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, reportScroll);
    connect(this, &QPlainTextEdit::updateRequest, this, reportScroll);
}

// --- paragraph access -------------------------------------------------------

QString QcbsRichTextEdit::text(int para) const { return document()->findBlockByNumber(para).text(); }

int QcbsRichTextEdit::paragraphLength(int para) const {
    const QTextBlock block = document()->findBlockByNumber(para);
    return block.isValid() ? block.length() - 1 : 0;
}

void QcbsRichTextEdit::getCursorPosition(int* para, int* index) const {
    const QTextCursor cursor = textCursor();
    if (para != nullptr) *para = cursor.blockNumber();
    if (index != nullptr) *index = cursor.positionInBlock();
}

void QcbsRichTextEdit::setCursorPosition(int para, int index) {
    const QTextBlock block = document()->findBlockByNumber(std::clamp(para, 0, blockCount() - 1));
    QTextCursor cursor(block);
    cursor.setPosition(block.position() + std::clamp(index, 0, block.length() - 1));
    setTextCursor(cursor);
}

void QcbsRichTextEdit::getSelection(int* paraFrom, int* indexFrom, int* paraTo, int* indexTo) const {
    const QTextCursor cursor = textCursor();
    int values[4] = {-1, -1, -1, -1};
    if (cursor.hasSelection()) {
        const QTextBlock first = document()->findBlock(cursor.selectionStart());
        const QTextBlock last = document()->findBlock(cursor.selectionEnd());
        values[0] = first.blockNumber();
        values[1] = cursor.selectionStart() - first.position();
        values[2] = last.blockNumber();
        values[3] = cursor.selectionEnd() - last.position();
    }
    int* targets[4] = {paraFrom, indexFrom, paraTo, indexTo};
    for (int i = 0; i < 4; ++i)
        if (targets[i] != nullptr) *targets[i] = values[i];
}

void QcbsRichTextEdit::setSelection(int paraFrom, int indexFrom, int paraTo, int indexTo) {
    const auto position = [this](int para, int index) {
        const QTextBlock block = document()->findBlockByNumber(std::clamp(para, 0, blockCount() - 1));
        return block.position() + std::clamp(index, 0, block.length() - 1);
    };
    QTextCursor cursor(document());
    cursor.setPosition(position(paraFrom, indexFrom));
    cursor.setPosition(position(paraTo, indexTo), QTextCursor::KeepAnchor);
    setTextCursor(cursor);
}

int QcbsRichTextEdit::contentsX() const { return horizontalScrollBar()->value(); }

int QcbsRichTextEdit::contentsY() const { return verticalScrollBar()->value(); }

void QcbsRichTextEdit::setContentsPos(int x, int y) {
    horizontalScrollBar()->setValue(x);
    verticalScrollBar()->setValue(y);
}

QRectF QcbsRichTextEdit::paragraphRect(const QTextBlock& block) const {
    return blockBoundingGeometry(block).translated(contentOffset());
}

// --- CIF line queries ---------------------------------------------------------

QString QcbsRichTextEdit::currentDataItem(bool searchUpwards, int para) const {
    const QTextBlock start = para < 0 ? textCursor().block() : document()->findBlockByNumber(para);
    if (!start.isValid()) return QString();
    const QString name = dataNameAtStart(start.text());
    if (!name.isEmpty() || !searchUpwards) return name;

    // Walk up, knowing at each line whether it lies in a text block.
    bool inside = insideTextBlock(start);
    for (QTextBlock below = start, block = start.previous(); block.isValid();
         below = block, block = block.previous()) {
        if (startsTextBlockMark(below)) inside = !inside;
        const QString stripped = block.text().trimmed();
        if (inside || stripped.startsWith(u';')) continue;
        if (stripped.startsWith(QLatin1String("data_"), Qt::CaseInsensitive) ||
            stripped.startsWith(QLatin1String("save_"), Qt::CaseInsensitive))
            return QString();
        const QString found = dataNameAtStart(stripped);
        if (!found.isEmpty()) return found;
    }
    return QString();
}

bool QcbsRichTextEdit::isLoopLine() const {
    return textCursor().block().text().trimmed().startsWith(QLatin1String("loop_"));
}

bool QcbsRichTextEdit::isCommentLine() const {
    return textCursor().block().text().trimmed().startsWith(u'#');
}

bool QcbsRichTextEdit::isBlankLine() const { return textCursor().block().text().trimmed().isEmpty(); }

bool QcbsRichTextEdit::isMultiLineStringLine() const { return insideTextBlock(textCursor().block()); }

void QcbsRichTextEdit::prepareDataitemHelp() { emit requestDataitemHelp(currentDataItem(true)); }

// --- error highlighting -------------------------------------------------------

bool QcbsRichTextEdit::errorMatcherEnabled() const {
    return errorSelection_[1] != -1 || errorSelection_[2] != -1;
}

int QcbsRichTextEdit::errorSelectionParagraph(int selection) const {
    return selection == 1 || selection == 2 ? errorSelection_[selection] : -1;
}

void QcbsRichTextEdit::setErrorHighlighting(int line, int selection) {
    setErrorHighlighting(line, selection, true);
}

void QcbsRichTextEdit::setErrorHighlighting(int line, int selection, bool clear) {
    if (clear) clearErrorHighlighting();
    if (errorGate_ != 0) {
        errorGate_ = -1;
        QApplication::beep();
        emit statusBarMessageRequest("(error highlighting disabled until after next check)");
        return;
    }
    if (selection != 1 && selection != 2) return;
    const int para = std::clamp(line < 1 ? 0 : line - 1, 0, blockCount() - 1);
    errorSelection_[selection] = para;
    // The mark is stored first, so the cursor move below keeps it.
    QTextCursor cursor(document()->findBlockByNumber(para));
    cursor.movePosition(QTextCursor::EndOfBlock);
    setTextCursor(cursor);
    ensureCursorVisible();
    applyErrorSelections();
}

void QcbsRichTextEdit::clearErrorHighlighting() {
    const bool marked = errorMatcherEnabled();
    errorSelection_[1] = errorSelection_[2] = -1;
    if (marked) setExtraSelections({});
}

void QcbsRichTextEdit::reopenErrorHighlighting() { errorGate_ = 0; }

void QcbsRichTextEdit::applyErrorSelections() {
    QList<QTextEdit::ExtraSelection> selections;
    for (int selection : {1, 2}) {
        const QTextBlock block = document()->findBlockByNumber(errorSelection_[selection]);
        if (errorSelection_[selection] < 0 || !block.isValid()) continue;
        QTextEdit::ExtraSelection mark;
        mark.cursor = QTextCursor(block);
        mark.cursor.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
        mark.format.setBackground(selection == 1 ? kErrorLineColour : kOtherErrorLineColour);
        selections.append(mark);
    }
    setExtraSelections(selections);
}

void QcbsRichTextEdit::textHasChanged() {
    clearErrorHighlighting();
    if (errorGate_ == 0) errorGate_ = 1;
    // While a text comes in, the count it will reach is reported, so that the
    // margin takes its final width at once: every change of the editor's
    // width makes Qt lay out all lines anew, which a million lines feel.
    emit numberOfLinesChanged(isLoading() ? std::max(paragraphs(), loadingLines_) : paragraphs());
}

void QcbsRichTextEdit::cursorPositionHasChanged(QTextCursor* cursor) {
    const int para = cursor->blockNumber();
    if (para != lastCursorParagraph_) {
        lastCursorParagraph_ = para;
        emit cursorLineChanged(para);
    }
    if (!errorMatcherEnabled()) return;
    if (para != errorSelection_[1] && para != errorSelection_[2]) {
        clearErrorHighlighting();
        return;
    }
    const int x = contentsX();
    const int y = contentsY();
    applyErrorSelections();
    setContentsPos(x, y);
}

void QcbsRichTextEdit::selectionHasChanged() {
    if (textCursor().hasSelection()) clearErrorHighlighting();
}

void QcbsRichTextEdit::gotoLine(int line, QString blockName) { gotoLine(line, blockName, false); }

void QcbsRichTextEdit::gotoLine(int line, QString blockName, bool highlight) {
    (void)blockName;
    if (line < 1 || line > paragraphs()) {
        QApplication::beep();
        return;
    }
    if (highlight) {
        QTextCursor plain = textCursor();
        plain.clearSelection();
        setTextCursor(plain);
        clearErrorHighlighting();
    }
    QTextCursor cursor(document()->findBlockByNumber(line - 1));
    cursor.movePosition(QTextCursor::EndOfBlock,
                        highlight ? QTextCursor::KeepAnchor : QTextCursor::MoveAnchor);
    setTextCursor(cursor);
    ensureCursorVisible();
    cursorPositionHasChanged(&cursor);
}

// --- styles -------------------------------------------------------------------

void QcbsRichTextEdit::setWrapPolicyAndScrollBar() {
    setLineWrapMode(QPlainTextEdit::NoWrap);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
}

void QcbsRichTextEdit::styleUpdate() {
    if (!styles_) return;
    QScrollBar* vertical = verticalScrollBar();
    QScrollBar* horizontal = horizontalScrollBar();
    const double relativeY = vertical->maximum() > 0 ? double(vertical->value()) / vertical->maximum() : 0.0;
    const double relativeX =
        horizontal->maximum() > 0 ? double(horizontal->value()) / horizontal->maximum() : 0.0;
    setFont(styles_->editorFont());
    if (highlighter_ != nullptr) highlighter_->updateStyles();
    refreshText();
    vertical->setValue(qRound(relativeY * vertical->maximum()));
    horizontal->setValue(qRound(relativeX * horizontal->maximum()));
    setWrapPolicyAndScrollBar();
}

void QcbsRichTextEdit::refreshText() {
    if (highlighter_ != nullptr) highlighter_->rehighlightInSlices();
}

void QcbsRichTextEdit::setDictionary(THandle<CifDictionary> dictionary) {
    if (highlighter_ == nullptr) return;
    highlighter_->setDictionary(dictionary);
    highlighter_->rehighlightInSlices();
}

// --- loading --------------------------------------------------------------------

void QcbsRichTextEdit::loadText(const QString& text) {
    if (loader_ == nullptr) {
        loader_ = new QcbsSlicedTextLoader(this);
        connect(loader_, &QcbsSlicedTextLoader::finished, this, &QcbsRichTextEdit::textLoaded);
    }
    loadingLines_ = static_cast<int>(text.count(u'\n')) + 1;
    loader_->load(text);
}

bool QcbsRichTextEdit::isLoading() const { return loader_ != nullptr && loader_->isLoading(); }

// --- commenting -----------------------------------------------------------------

void QcbsRichTextEdit::commentSelection() { processSelection(CommentParagraph()); }

void QcbsRichTextEdit::uncommentSelection() { processSelection(UncommentParagraph()); }

template <class Op>
void QcbsRichTextEdit::processSelection(const Op& op) {
    setUpdatesEnabled(false);
    const QTextCursor current = textCursor();
    QTextBlock first = current.block();
    QTextBlock last = first;
    if (current.hasSelection()) {
        first = document()->findBlock(current.selectionStart());
        last = document()->findBlock(current.selectionEnd());
        // A selection that ends at the start of a later line leaves that line alone.
        if (current.selectionEnd() == last.position() && last != first) last = last.previous();
    }
    const int firstNumber = first.blockNumber();
    const int lastNumber = last.blockNumber();

    QTextCursor edit(document());
    edit.beginEditBlock();
    QTextBlock block = first;
    for (int number = firstNumber; number <= lastNumber && block.isValid(); ++number, block = block.next()) {
        QString line = block.text();
        if (line.endsWith(u' ')) line.chop(1);
        edit.setPosition(block.position());
        edit.setPosition(block.position() + block.length() - 1, QTextCursor::KeepAnchor);
        edit.insertText(op(line));
    }
    edit.endEditBlock();

    setUpdatesEnabled(true);
    viewport()->update();
    const QTextBlock from = document()->findBlockByNumber(firstNumber);
    const QTextBlock to = document()->findBlockByNumber(lastNumber);
    QTextCursor selection(document());
    selection.setPosition(from.position());
    selection.setPosition(to.position() + to.length() - 1, QTextCursor::KeepAnchor);
    setTextCursor(selection);
}

// --- clipboard --------------------------------------------------------------------

QString QcbsRichTextEdit::copyText() const {
    QString text = textCursor().selectedText();
    for (QChar& c : text) {
        switch (c.unicode()) {
            case 0x2029:  // paragraph separator
                c = u'\n';
                break;
            case 0x00C5:  // A with ring
                c = u'A';
                break;
            case 0x00B0:  // degree sign
                c = u'%';
                break;
            default:
                break;
        }
    }
    return text;
}

QMimeData* QcbsRichTextEdit::createMimeDataFromSelection() const {
    auto* data = new QMimeData;
    data->setText(copyText());
    return data;
}

void QcbsRichTextEdit::copy() {
    if (!textCursor().hasSelection()) {
        QPlainTextEdit::copy();
        return;
    }
    QApplication::clipboard()->setText(copyText());
}

void QcbsRichTextEdit::paste() {
    QClipboard* clipboard = QApplication::clipboard();
    QString subtype = QStringLiteral("plain");
    const QString text = clipboard->text(subtype);
    if (!text.isEmpty()) {
        const QString converted = QcbsUnicode::markupText(text);
        if (converted != text) clipboard->setText(converted);
    }
    QPlainTextEdit::paste();
}

// --- file insertion -----------------------------------------------------------------

void QcbsRichTextEdit::insertFile() {
    QFileDialog dialog(this, "Insert file", QString(), "CIF (*.cif);;Text (*.txt);;All Files (*)");
    dialog.setObjectName("insertfd");
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return;
    const QString name = dialog.selectedFiles().first();
    if (!name.isEmpty()) insertFile(name);
}

void QcbsRichTextEdit::insertTemplateFile() {
    if (template_.isEmpty()) {
        QMessageBox::information(
            this, "Information",
            "You don't have a template file set. Choose one via the Edit->Preferences menu.");
        return;
    }
    insertFile(template_);
}

void QcbsRichTextEdit::insertFile(const QString& name) {
    std::ifstream in;
    if (!QFileInfo(name).isDir()) in.open(QFile::encodeName(name).toStdString(), std::ios::binary);
    if (!in.is_open()) {
        QMessageBox::critical(this, "Error", "Could not open file \"" + name + "\"");
        return;
    }
    std::string bytes;
    std::string line;
    int count = 0;
    while (orma::getline(in, line)) {
        bytes += line;
        bytes += '\n';
        ++count;
    }
    textCursor().insertText(QcbsUnicode::markupText(decodeFileText(bytes)));
    emit statusBarMessageRequest("Inserted " + QString::number(count) + " lines.");
}

// --- events ---------------------------------------------------------------------------

bool QcbsRichTextEdit::event(QEvent* event) {
    // Keep the owner's Ctrl shortcuts working even where Qt's own key
    // bindings would claim the key (Ctrl+A selects all, Ctrl+K deletes to the
    // end of the line).
    if (event->type() == QEvent::ShortcutOverride && isPassedToOwner(static_cast<QKeyEvent*>(event))) {
        event->ignore();
        return true;
    }
    return QPlainTextEdit::event(event);
}

void QcbsRichTextEdit::keyPressEvent(QKeyEvent* event) {
    if (isPassedToOwner(event)) {
        event->ignore();
        return;
    }
    // The keyboard's copy and paste take the same road as the menu's.
    if (event->matches(QKeySequence::Copy)) {
        copy();
        event->accept();
        return;
    }
    if (event->matches(QKeySequence::Paste)) {
        if (!isReadOnly()) paste();
        event->accept();
        return;
    }
    QPlainTextEdit::keyPressEvent(event);
}

void QcbsRichTextEdit::contextMenuEvent(QContextMenuEvent* event) {
    QMenu* menu = createPopupMenu();
    menu->exec(event->globalPos());
    delete menu;
}

QMenu* QcbsRichTextEdit::createPopupMenu() {
    auto* menu = new QMenu(this);
    menu->setObjectName("rightclick");
    const auto add = [this, menu](const QString& label, const char* icon, auto slot) {
        QAction* action = menu->addAction(QIcon(QcbsXpmResource::get_xpm(QString::fromLatin1(icon))), label);
        connect(action, &QAction::triggered, this, slot);
        return action;
    };
    if (!fullContextMenu_) {
        add("Select All", "selectall", &QcbsRichTextEdit::selectAll);
        add("Copy", "copy", &QcbsRichTextEdit::copy);
        return menu;
    }
    add("Undo", "undo", &QcbsRichTextEdit::undo)->setEnabled(document()->isUndoAvailable());
    add("Redo", "redo", &QcbsRichTextEdit::redo)->setEnabled(document()->isRedoAvailable());
    menu->addSeparator();
    add("Cut", "cut", &QcbsRichTextEdit::cut);
    add("Copy", "copy", &QcbsRichTextEdit::copy);
    add("Paste", "paste", &QcbsRichTextEdit::paste);
    menu->addSeparator();
    add("Co&mment Selection", "editComment", &QcbsRichTextEdit::commentSelection);
    add("U&ncomment Selection", "editUncomment", &QcbsRichTextEdit::uncommentSelection);
    menu->addSeparator();
    add("Insert File", "insert", qOverload<>(&QcbsRichTextEdit::insertFile));
    add("Insert Template", "insert template", &QcbsRichTextEdit::insertTemplateFile);
    QAction* help = add("Item help", "item help", &QcbsRichTextEdit::prepareDataitemHelp);
    help->setToolTip("Data item help");
    help->setStatusTip("Data item help");
    menu->addSeparator();
    add("Select All", "selectall", &QcbsRichTextEdit::selectAll);
    return menu;
}

void QcbsRichTextEdit::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasUrls() || event->mimeData()->hasText())
        event->acceptProposedAction();
    else
        QPlainTextEdit::dragEnterEvent(event);
}

void QcbsRichTextEdit::dragMoveEvent(QDragMoveEvent* event) {
    if (event->mimeData()->hasUrls() || event->mimeData()->hasText())
        event->acceptProposedAction();
    else
        QPlainTextEdit::dragMoveEvent(event);
}

void QcbsRichTextEdit::dropEvent(QDropEvent* event) { emit dropEventRequest(event); }
