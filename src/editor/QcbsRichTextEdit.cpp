// SPDX-License-Identifier: GPL-3.0-or-later
// The CIF text editor: a file's bytes in Scintilla, CIF line queries, commenting, error marks.
#include "editor/QcbsRichTextEdit.hpp"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QListWidget>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QScrollBar>
#include <QStringDecoder>
#include <QTimer>
#include <QToolTip>
#include <algorithm>
#include <fstream>
#include <string>
#include <vector>

#include "editor/QcbsCifLineClassifier.hpp"
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
const QColor kMatchColour(255, 200, 120);        // a matching pair of delimiters
const QColor kMarginColour(236, 236, 236);
const QColor kNumberColour(120, 120, 120);
constexpr int kErrorMarginWidth = 12;
constexpr int kFoldMarginWidth = 14;
// How far the search for a matching delimiter looks, in bytes.
constexpr int kMatchReach = 1024 * 1024;
// The buffer gap is walked towards the cursor this far a turn, and left
// alone within this distance of it.
constexpr int kGapStep = 32 * 1024 * 1024;
constexpr int kGapNear = 256 * 1024;

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

bool fitsLatin1(const QString& text) {
    return std::all_of(text.cbegin(), text.cend(), [](QChar c) { return c.unicode() <= 0xff; });
}

// Line ends as "\n".
QString withNewlines(QString text) {
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    text.replace(u'\r', u'\n');
    return text;
}

bool isBlankByte(char c) { return c == ' ' || c == '\t'; }

// The editor's accessible object: an editable text named as the editor is.
// Asked for first (by the class's own name), it stands in for the one the
// base class offers, which counts the characters from the start of the text
// on every repaint after the cursor moved: a quarter of a second on a
// document of a few million lines.
QAccessibleInterface* editorAccessible(const QString& className, QObject* object) {
    if (className != QLatin1String("QcbsRichTextEdit") || object == nullptr || !object->isWidgetType())
        return nullptr;
    return new QAccessibleWidget(static_cast<QWidget*>(object), QAccessible::EditableText);
}

}  // namespace

QcbsRichTextEdit::QcbsRichTextEdit(QWidget* parent, const char* name) : QsciScintilla(parent) {
    if (name != nullptr) setObjectName(QString::fromUtf8(name));
    setUpEngine();
    setWrapMode(QsciScintilla::WrapWord);
}

QcbsRichTextEdit::QcbsRichTextEdit(THandle<CifDictionary> dictionary, THandle<QcbsFontStyleSettings> styles,
                                   QWidget* parent, const char* name)
    : QcbsRichTextEdit(parent, name) {
    initialise(dictionary, styles);
}

QcbsRichTextEdit::~QcbsRichTextEdit() = default;

void QcbsRichTextEdit::setUpEngine() {
    static const bool accessible = [] {
        QAccessible::installFactory(editorAccessible);
        return true;
    }();
    (void)accessible;
    // Only the notices before a change: the others make Qt's accessibility
    // code count the characters from the start of the text on every keystroke.
    SendScintilla(SCI_SETMODEVENTMASK, SC_MOD_BEFOREINSERT | SC_MOD_BEFOREDELETE);
    connect(this, &QsciScintillaBase::SCN_MODIFIED, this, &QcbsRichTextEdit::modified);
    // The base class's own cursor report counts characters one call at a
    // time; this one counts bytes.
    disconnect(this, SIGNAL(SCN_UPDATEUI(int)), this, SLOT(handleUpdateUI(int)));
    connect(this, &QsciScintillaBase::SCN_UPDATEUI, this, &QcbsRichTextEdit::updateUi);
    connect(this, &QsciScintilla::selectionChanged, this, &QcbsRichTextEdit::selectionHasChanged);
    connect(this, &QcbsRichTextEdit::cursorPositionChanged, this,
            &QcbsRichTextEdit::cursorPositionHasChanged);
    connect(this, &QsciScintilla::modificationChanged, this, [this](bool modified) {
        if (!modified) forcedModified_ = false;
        updateHistorySignals();
    });
    connect(this, &QsciScintillaBase::SCN_ZOOM, this, [this] {
        // A zoom of Scintilla's own becomes a change of the shared base font.
        const int steps = static_cast<int>(SendScintilla(SCI_GETZOOM));
        if (steps == 0) return;
        SendScintilla(SCI_SETZOOM, 0L);
        emit zoomRequested(steps);
    });
    connect(this, &QsciScintillaBase::SCN_CHARADDED, this, &QcbsRichTextEdit::charAdded);
    connect(this, &QsciScintillaBase::SCN_AUTOCSELECTIONCHANGE, this,
            &QcbsRichTextEdit::completionSelectionChanged);
    connect(this, &QsciScintillaBase::SCN_AUTOCCANCELLED, this, [] { QToolTip::hideText(); });
    connect(this, &QsciScintillaBase::SCN_AUTOCCOMPLETED, this, [] { QToolTip::hideText(); });
    setUtf8(true);
    // No annotations: shown, they make every change of document walk all lines.
    setAnnotationDisplay(AnnotationHidden);
    for (int margin = 0; margin < 3; ++margin) setMarginWidth(margin, 0);
    SendScintilla(SCI_SETSCROLLWIDTH, 1L);
    SendScintilla(SCI_SETSCROLLWIDTHTRACKING, 1L);
    // The lines in view keep their layout from one paint to the next; by
    // default only the cursor's line does, and every paint measured the
    // text of all the others again.
    SendScintilla(SCI_SETLAYOUTCACHE, SC_CACHE_PAGE);
    gapWalk_ = new QTimer(this);
    gapWalk_->setSingleShot(true);
    gapWalk_->setInterval(0);
    connect(gapWalk_, &QTimer::timeout, this, &QcbsRichTextEdit::moveGapTowardsCursor);
}

void QcbsRichTextEdit::moveGapTowardsCursor() {
    if (isLoading()) return;
    const int length = byteLength();
    const int gap = static_cast<int>(SendScintilla(SCI_GETGAPPOSITION));
    const int cursor = static_cast<int>(
        SendScintilla(SCI_POSITIONFROMLINE, SendScintilla(SCI_LINEFROMPOSITION, cursorBytePosition())));
    if (length < kGapStep || std::abs(gap - cursor) <= kGapNear) return;
    // A line start a step nearer, so that no character is split.
    const int step = gap > cursor ? std::max(cursor, gap - kGapStep) : std::min(cursor, gap + kGapStep);
    const int target =
        static_cast<int>(SendScintilla(SCI_POSITIONFROMLINE, SendScintilla(SCI_LINEFROMPOSITION, step)));
    const bool readOnly = isReadOnly();
    const bool collecting = SendScintilla(SCI_GETUNDOCOLLECTION) != 0;
    movingGap_ = true;
    SendScintilla(SCI_SETREADONLY, 0L);
    SendScintilla(SCI_SETUNDOCOLLECTION, 0L);
    SendScintilla(SCI_INSERTTEXT, static_cast<unsigned long>(target), " ");
    SendScintilla(SCI_DELETERANGE, static_cast<unsigned long>(target), 1L);
    SendScintilla(SCI_SETUNDOCOLLECTION, collecting ? 1L : 0L);
    SendScintilla(SCI_SETREADONLY, readOnly ? 1L : 0L);
    movingGap_ = false;
    if (target != gap) gapWalk_->start();
}

void QcbsRichTextEdit::initialise(THandle<CifDictionary> dictionary, THandle<QcbsFontStyleSettings> styles) {
    const bool sameStyles = styles_.get() == styles.get();
    styles_ = styles;
    if (highlighter_ != nullptr && sameStyles) {
        setDictionary(dictionary);
    } else if (styles_) {
        // Set while the text is empty: a lexer set later colours the whole text at once.
        auto* previous = highlighter_;
        highlighter_ = new QcbsSyntaxHighlighter_CIF(dictionary, styles_, this);
        setLexer(highlighter_);
        delete previous;
        highlighter_->updateStyles();
        QWidget::setFont(styles_->editorFont());
    }
    setSelectionBackgroundColor(kHighlightColour);
    setSelectionForegroundColor(Qt::white);
    setWrapPolicyAndScrollBar();
    SendScintilla(SCI_SETIDLESTYLING, SC_IDLESTYLING_ALL);

    // The margins: line numbers (shown by the owner), error marks, folding.
    setMarginType(LineNumberMargin, NumberMargin);
    setMarginsBackgroundColor(kMarginColour);
    setMarginsForegroundColor(kNumberColour);
    if (styles_) setMarginsFont(styles_->editorFont());
    setMarginType(ErrorMargin, SymbolMargin);
    setMarginWidth(ErrorMargin, kErrorMarginWidth);
    setMarginMarkerMask(ErrorMargin, (1 << ErrorMarkMarker) | (1 << (ErrorMarkMarker + 1)));
    for (int selection : {1, 2}) {
        const QColor colour = selection == 1 ? kErrorLineColour : kOtherErrorLineColour;
        markerDefine(QsciScintilla::Background, ErrorLineMarker + selection - 1);
        setMarkerBackgroundColor(colour, ErrorLineMarker + selection - 1);
        markerDefine(QsciScintilla::RightArrow, ErrorMarkMarker + selection - 1);
        setMarkerBackgroundColor(colour, ErrorMarkMarker + selection - 1);
        setMarkerForegroundColor(QColor(90, 90, 90), ErrorMarkMarker + selection - 1);
    }
    SendScintilla(SCI_STYLESETBACK, STYLE_BRACELIGHT, kMatchColour);
    SendScintilla(SCI_STYLESETBOLD, STYLE_BRACELIGHT, 1L);
    SendScintilla(SCI_AUTOCSETIGNORECASE, 1L);
    SendScintilla(SCI_AUTOCSETORDER, SC_ORDER_PERFORMSORT);
    SendScintilla(SCI_AUTOCSETMAXHEIGHT, 12L);
    SendScintilla(SCI_SETPASTECONVERTENDINGS, 1L);
    setFoldingEnabled(true);
    setRectangularSelection(true);
    setMatchingDelimiters(true);

    errorGate_ = 0;
    lastCursorParagraph_ = 0;
    fullContextMenu_ = true;
}

// --- options ---------------------------------------------------------------------------

void QcbsRichTextEdit::setFoldingEnabled(bool on) {
    folding_ = on;
    if (!on) {
        // Nothing stays hidden behind a fold that can no longer be opened.
        SendScintilla(SCI_FOLDALL, SC_FOLDACTION_EXPAND);
        setFolding(NoFoldStyle, FoldMargin);
        return;
    }
    setFolding(BoxedTreeFoldStyle, FoldMargin);
    // The base class asks for every change of a fold level; Scintilla keeps
    // the folds right by itself.
    SendScintilla(SCI_SETMODEVENTMASK, SC_MOD_BEFOREINSERT | SC_MOD_BEFOREDELETE);
    SendScintilla(SCI_SETAUTOMATICFOLD, SC_AUTOMATICFOLD_SHOW | SC_AUTOMATICFOLD_CHANGE);
    setMarginWidth(FoldMargin, kFoldMarginWidth);
    setFoldMarginColors(kMarginColour, kMarginColour);
}

void QcbsRichTextEdit::setMatchingDelimiters(bool on) {
    matching_ = on;
    if (!on) {
        SendScintilla(SCI_BRACEHIGHLIGHT, -1L, -1L);
        matched_ = {-1, -1};
    } else {
        showMatchingDelimiters();
    }
}

void QcbsRichTextEdit::setRectangularSelection(bool on) {
    rectangular_ = on;
    SendScintilla(SCI_SETMULTIPLESELECTION, on ? 1L : 0L);
    SendScintilla(SCI_SETADDITIONALSELECTIONTYPING, on ? 1L : 0L);
    SendScintilla(SCI_SETMULTIPASTE, on ? SC_MULTIPASTE_EACH : SC_MULTIPASTE_ONCE);
    SendScintilla(SCI_SETVIRTUALSPACEOPTIONS, on ? SCVS_RECTANGULARSELECTION : SCVS_NONE);
    SendScintilla(SCI_SETMOUSESELECTIONRECTANGULARSWITCH, on ? 1L : 0L);
}

void QcbsRichTextEdit::setWhiteSpaceVisible(bool on) {
    whiteSpace_ = on;
    setWhitespaceVisibility(on ? WsVisible : WsInvisible);
    setEolVisibility(on);
}

// --- the bytes ---------------------------------------------------------------------------

void QcbsRichTextEdit::loadBytes(const QByteArray& bytes) {
    if (loader_ == nullptr) {
        loader_ = new QcbsSlicedTextLoader(this);
        connect(loader_, &QcbsSlicedTextLoader::finished, this, &QcbsRichTextEdit::finishLoad);
    }
    clearErrorHighlighting();
    loader_->loadBytes(bytes);
}

bool QcbsRichTextEdit::loadFile(const QString& fileName) {
    if (loader_ == nullptr) {
        loader_ = new QcbsSlicedTextLoader(this);
        connect(loader_, &QcbsSlicedTextLoader::finished, this, &QcbsRichTextEdit::finishLoad);
    }
    if (QFileInfo(fileName).isDir()) return false;
    clearErrorHighlighting();
    return loader_->loadFile(fileName);
}

bool QcbsRichTextEdit::isLoading() const { return loader_ != nullptr && loader_->isLoading(); }

bool QcbsRichTextEdit::loadedWithByteOrderMark() const {
    return loader_ != nullptr && loader_->summary().byteOrderMark;
}

QString QcbsRichTextEdit::dominantLineEnd() const {
    return loader_ != nullptr ? QString::fromLatin1(loader_->summary().dominantLineEnd()) : QString("\n");
}

void QcbsRichTextEdit::finishLoad() {
    changePending_ = false;
    // A big text arrives as a document of its own: nothing of the old one's styling holds.
    if (highlighter_ != nullptr) highlighter_->rehighlightInSlices();
    lastCursorPosition_ = -1;
    updateHistorySignals();
    followCursor();
    gapWalk_->start();
    emit numberOfLinesChanged(paragraphs());
    emit textLoaded();
}

std::string_view QcbsRichTextEdit::byteView() const {
    const int length = byteLength();
    const auto* data = reinterpret_cast<const char*>(SendScintilla(SCI_GETCHARACTERPOINTER));
    return std::string_view(data != nullptr ? data : "", static_cast<std::size_t>(length));
}

std::string_view QcbsRichTextEdit::byteView(int from, int length) const {
    length = std::clamp(length, 0, std::max(0, byteLength() - from));
    if (length == 0) return std::string_view();
    const auto* data = reinterpret_cast<const char*>(
        SendScintilla(SCI_GETRANGEPOINTER, static_cast<unsigned long>(from), static_cast<long>(length)));
    return std::string_view(data, static_cast<std::size_t>(length));
}

QByteArray QcbsRichTextEdit::bytes() const {
    const std::string_view view = byteView();
    return QByteArray(view.data(), static_cast<qsizetype>(view.size()));
}

int QcbsRichTextEdit::byteLength() const { return static_cast<int>(SendScintilla(SCI_GETLENGTH)); }

QString QcbsRichTextEdit::lineEnd() const {
    switch (SendScintilla(SCI_GETEOLMODE)) {
        case SC_EOL_CRLF:
            return "\r\n";
        case SC_EOL_CR:
            return "\r";
        default:
            return "\n";
    }
}

bool QcbsRichTextEdit::ensureEncodable(const QString& text) {
    if (isUtf8() || fitsLatin1(text)) return true;
    return widenToUtf8();
}

QByteArray QcbsRichTextEdit::encodeText(const QString& text) {
    ensureEncodable(text);
    return isUtf8() ? text.toUtf8() : text.toLatin1();
}

bool QcbsRichTextEdit::widenToUtf8() {
    if (isUtf8()) return false;
    flushChange();
    int para = 0, index = 0;
    getCursorPosition(&para, &index);
    const int top = contentsY();
    const QByteArray wide = QString::fromLatin1(bytes()).toUtf8();
    const bool wasModified = isModified();
    SendScintilla(SCI_SETUNDOCOLLECTION, 0L);
    SendScintilla(SCI_CLEARALL);
    setUtf8(true);
    SendScintilla(SCI_APPENDTEXT, static_cast<unsigned long>(wide.size()), wide.constData());
    SendScintilla(SCI_SETUNDOCOLLECTION, 1L);
    SendScintilla(SCI_EMPTYUNDOBUFFER);
    flushChange();
    // The bytes differ from the file's now, whatever the history says.
    forcedModified_ = true;
    if (!wasModified) emit modificationChanged(true);
    setCursorPosition(para, index);
    setContentsPos(0, top);
    emit encodingWidened();
    return true;
}

void QcbsRichTextEdit::replaceBytes(int from, int to, std::string_view bytes) {
    SendScintilla(SCI_BEGINUNDOACTION);
    SendScintilla(SCI_SETTARGETRANGE, static_cast<unsigned long>(from), static_cast<long>(to));
    SendScintilla(SCI_REPLACETARGET, static_cast<unsigned long>(bytes.size()), bytes.data());
    SendScintilla(SCI_ENDUNDOACTION);
    flushChange();
}

void QcbsRichTextEdit::setPlainText(const QString& text) {
    if (!fitsLatin1(text)) setUtf8(true);
    const QByteArray bytes = isUtf8() ? text.toUtf8() : text.toLatin1();
    const bool readOnly = isReadOnly();
    setReadOnly(false);
    SendScintilla(SCI_SETUNDOCOLLECTION, 0L);
    SendScintilla(SCI_CLEARALL);
    SendScintilla(SCI_APPENDTEXT, static_cast<unsigned long>(bytes.size()), bytes.constData());
    SendScintilla(SCI_SETUNDOCOLLECTION, 1L);
    SendScintilla(SCI_EMPTYUNDOBUFFER);
    SendScintilla(SCI_SETSAVEPOINT);
    SendScintilla(SCI_GOTOPOS, 0L);
    setReadOnly(readOnly);
    forcedModified_ = false;
    flushChange();
    followCursor();
}

void QcbsRichTextEdit::insertPlainText(const QString& text) {
    if (isReadOnly() || isLoading()) return;
    // Line breaks as a typed Return makes them.
    QString typed = withNewlines(text);
    if (lineEnd() != "\n") typed.replace(u'\n', lineEnd());
    const QByteArray bytes = encodeText(typed);
    const int from = static_cast<int>(SendScintilla(SCI_GETSELECTIONSTART));
    const int to = static_cast<int>(SendScintilla(SCI_GETSELECTIONEND));
    replaceBytes(from, to, std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())));
    SendScintilla(SCI_GOTOPOS, static_cast<unsigned long>(from + bytes.size()));
    followCursor();
}

// --- following changes ----------------------------------------------------------------------

void QcbsRichTextEdit::modified(int position, int type, const char*, int length, int, int, int, int, int,
                                int) {
    if (!(type & (SC_MOD_BEFOREINSERT | SC_MOD_BEFOREDELETE))) return;
    const int delta = (type & SC_MOD_BEFOREINSERT) ? length : -length;
    if (highlighter_ != nullptr) highlighter_->textAboutToChange(position, delta);
    // A blank put in and taken out to move the buffer gap changes nothing.
    if (movingGap_) return;
    emit textAboutToChange(position, delta);
    if (isLoading()) return;
    ++editSerial_;
    // Any highlighting request from now on is refused, even before the
    // follow-up below has run.
    if (errorGate_ == 0) errorGate_ = 1;
    changePending_ = true;
    if (!followUpQueued_) {
        followUpQueued_ = true;
        QTimer::singleShot(0, this, [this] {
            followUpQueued_ = false;
            flushChange();
            followCursor();
        });
    }
}

void QcbsRichTextEdit::flushChange() {
    if (!changePending_) return;
    changePending_ = false;
    textHasChanged();
}

void QcbsRichTextEdit::textHasChanged() {
    clearErrorHighlighting();
    if (errorGate_ == 0) errorGate_ = 1;
    emit numberOfLinesChanged(paragraphs());
    emit textChanged();
    updateHistorySignals();
}

void QcbsRichTextEdit::updateHistorySignals() {
    const bool undo = isUndoAvailable();
    const bool redo = isRedoAvailable();
    if (undo != undoWasAvailable_) {
        undoWasAvailable_ = undo;
        emit undoAvailable(undo);
    }
    if (redo != redoWasAvailable_) {
        redoWasAvailable_ = redo;
        emit redoAvailable(redo);
    }
}

void QcbsRichTextEdit::updateUi(int) {
    flushChange();
    followCursor();
}

void QcbsRichTextEdit::followCursor() {
    const int position = cursorBytePosition();
    if (position != lastCursorPosition_) {
        lastCursorPosition_ = position;
        if (!gapWalk_->isActive()) gapWalk_->start();
        int para = 0;
        int index = 0;
        paragraphIndexOf(position, &para, &index);
        emit cursorPositionChanged(para, index);
    }
    if (matching_) showMatchingDelimiters();
}

bool QcbsRichTextEdit::isModified() const { return forcedModified_ || SendScintilla(SCI_GETMODIFY) != 0; }

void QcbsRichTextEdit::setModified(bool modified) {
    const bool was = isModified();
    if (modified) {
        forcedModified_ = true;
    } else {
        forcedModified_ = false;
        SendScintilla(SCI_SETSAVEPOINT);
    }
    if (was != isModified()) emit modificationChanged(isModified());
}

void QcbsRichTextEdit::undo() {
    QsciScintilla::undo();
    flushChange();
    followCursor();
}

void QcbsRichTextEdit::redo() {
    QsciScintilla::redo();
    flushChange();
    followCursor();
}

// --- paragraph access -------------------------------------------------------------------------

int QcbsRichTextEdit::characterCount(int from, int to) const {
    if (to <= from) return 0;
    const std::string_view bytes = byteView(from, to - from);
    if (!isUtf8()) return static_cast<int>(bytes.size());
    // Every byte but a UTF-8 continuation byte starts a character.
    return static_cast<int>(std::count_if(
        bytes.begin(), bytes.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xc0) != 0x80; }));
}

QString QcbsRichTextEdit::lineText(int para) const {
    if (para < 0 || para >= lines()) return QString();
    const int from = static_cast<int>(SendScintilla(SCI_POSITIONFROMLINE, para));
    const int to = static_cast<int>(SendScintilla(SCI_GETLINEENDPOSITION, para));
    const std::string_view bytes = byteView(from, to - from);
    const QByteArrayView view(bytes.data(), static_cast<qsizetype>(bytes.size()));
    return isUtf8() ? QString::fromUtf8(view) : QString::fromLatin1(view);
}

QString QcbsRichTextEdit::text(int para) const { return lineText(para); }

int QcbsRichTextEdit::paragraphLength(int para) const {
    if (para < 0 || para >= lines()) return 0;
    return characterCount(static_cast<int>(SendScintilla(SCI_POSITIONFROMLINE, para)),
                          static_cast<int>(SendScintilla(SCI_GETLINEENDPOSITION, para)));
}

int QcbsRichTextEdit::positionOf(int para, int index) const {
    para = std::clamp(para, 0, std::max(0, lines() - 1));
    const int from = static_cast<int>(SendScintilla(SCI_POSITIONFROMLINE, para));
    const int end = static_cast<int>(SendScintilla(SCI_GETLINEENDPOSITION, para));
    if (index <= 0) return from;
    if (!isUtf8()) return std::min(from + index, end);
    const std::string_view bytes = byteView(from, end - from);
    int characters = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if ((static_cast<unsigned char>(bytes[i]) & 0xc0) == 0x80) continue;
        if (characters++ == index) return from + static_cast<int>(i);
    }
    return end;
}

void QcbsRichTextEdit::paragraphIndexOf(int position, int* para, int* index) const {
    const int line =
        static_cast<int>(SendScintilla(SCI_LINEFROMPOSITION, static_cast<unsigned long>(position)));
    const int from = static_cast<int>(SendScintilla(SCI_POSITIONFROMLINE, line));
    if (para != nullptr) *para = line;
    if (index != nullptr) *index = characterCount(from, position);
}

void QcbsRichTextEdit::getCursorPosition(int* para, int* index) const {
    paragraphIndexOf(cursorBytePosition(), para, index);
}

void QcbsRichTextEdit::setCursorPosition(int para, int index) {
    SendScintilla(SCI_GOTOPOS, static_cast<unsigned long>(positionOf(para, index)));
    followCursor();
}

void QcbsRichTextEdit::getSelection(int* paraFrom, int* indexFrom, int* paraTo, int* indexTo) const {
    int values[4] = {-1, -1, -1, -1};
    const int from = static_cast<int>(SendScintilla(SCI_GETSELECTIONSTART));
    const int to = static_cast<int>(SendScintilla(SCI_GETSELECTIONEND));
    if (from != to) {
        paragraphIndexOf(from, &values[0], &values[1]);
        paragraphIndexOf(to, &values[2], &values[3]);
    }
    int* targets[4] = {paraFrom, indexFrom, paraTo, indexTo};
    for (int i = 0; i < 4; ++i)
        if (targets[i] != nullptr) *targets[i] = values[i];
}

void QcbsRichTextEdit::setSelection(int paraFrom, int indexFrom, int paraTo, int indexTo) {
    SendScintilla(SCI_SETSEL, static_cast<unsigned long>(positionOf(paraFrom, indexFrom)),
                  static_cast<long>(positionOf(paraTo, indexTo)));
    followCursor();
    selectionHasChanged();
}

void QcbsRichTextEdit::placeCursor(int position) {
    const int line =
        static_cast<int>(SendScintilla(SCI_LINEFROMPOSITION, static_cast<unsigned long>(position)));
    SendScintilla(SCI_ENSUREVISIBLE, line);
    SendScintilla(SCI_GOTOPOS, static_cast<unsigned long>(position));
    const long shown = SendScintilla(SCI_LINESONSCREEN);
    const long visible = SendScintilla(SCI_VISIBLEFROMDOCLINE, line);
    SendScintilla(SCI_SETFIRSTVISIBLELINE, std::max(0L, visible - shown / 2));
    followCursor();
}

int QcbsRichTextEdit::contentsX() const { return static_cast<int>(SendScintilla(SCI_GETXOFFSET)); }

int QcbsRichTextEdit::contentsY() const {
    return static_cast<int>(SendScintilla(SCI_DOCLINEFROMVISIBLE, SendScintilla(SCI_GETFIRSTVISIBLELINE)));
}

void QcbsRichTextEdit::setContentsPos(int x, int y) {
    SendScintilla(SCI_SETXOFFSET, x);
    SendScintilla(SCI_SETFIRSTVISIBLELINE, SendScintilla(SCI_VISIBLEFROMDOCLINE, y));
}

// --- CIF line queries ---------------------------------------------------------------------------

namespace {

// Whether a text field is open after the line, counting the lines from the
// first that start with ";" after white space.
bool textFieldAfter(const QcbsRichTextEdit& edit, int line) {
    const int styledTo = static_cast<int>(edit.SendScintilla(QsciScintillaBase::SCI_GETENDSTYLED));
    const int lineEnd = static_cast<int>(edit.SendScintilla(QsciScintillaBase::SCI_GETLINEENDPOSITION, line));
    if (edit.highlighter() != nullptr && lineEnd < styledTo) {
        // The highlighter keeps it per line.
        const int state = static_cast<int>(edit.SendScintilla(QsciScintillaBase::SCI_GETLINESTATE, line));
        return (QcbsSyntaxHighlighter_CIF::classifierState(state) & 0xff) ==
               QcbsCifLineClassifier::InTextFieldState;
    }
    const int end = static_cast<int>(edit.SendScintilla(QsciScintillaBase::SCI_POSITIONFROMLINE, line + 1));
    const std::string_view bytes = edit.byteView(0, end);
    bool inside = false;
    bool lineStart = true;
    for (const char c : bytes) {
        if (c == '\n' || c == '\r') {
            lineStart = true;
        } else if (lineStart && !isBlankByte(c)) {
            if (c == ';') inside = !inside;
            lineStart = false;
        }
    }
    return inside;
}

}  // namespace

QString QcbsRichTextEdit::currentDataItem(bool searchUpwards, int para) const {
    int start = para;
    if (para < 0) getCursorPosition(&start, nullptr);
    if (start < 0 || start >= lines()) return QString();
    const QString name = dataNameAtStart(lineText(start));
    if (!name.isEmpty() || !searchUpwards) return name;

    // Walk up, passing over the lines of text fields.
    for (int line = start - 1; line >= 0; --line) {
        const QString stripped = lineText(line).trimmed();
        if (textFieldAfter(*this, line) || stripped.startsWith(u';')) continue;
        if (stripped.startsWith(QLatin1String("data_"), Qt::CaseInsensitive) ||
            stripped.startsWith(QLatin1String("save_"), Qt::CaseInsensitive))
            return QString();
        const QString found = dataNameAtStart(stripped);
        if (!found.isEmpty()) return found;
    }
    return QString();
}

bool QcbsRichTextEdit::isLoopLine() const {
    int para = 0;
    getCursorPosition(&para, nullptr);
    return lineText(para).trimmed().startsWith(QLatin1String("loop_"));
}

bool QcbsRichTextEdit::isCommentLine() const {
    int para = 0;
    getCursorPosition(&para, nullptr);
    return lineText(para).trimmed().startsWith(u'#');
}

bool QcbsRichTextEdit::isBlankLine() const {
    int para = 0;
    getCursorPosition(&para, nullptr);
    return lineText(para).trimmed().isEmpty();
}

bool QcbsRichTextEdit::isMultiLineStringLine() const {
    int para = 0;
    getCursorPosition(&para, nullptr);
    return textFieldAfter(*this, para);
}

void QcbsRichTextEdit::prepareDataitemHelp() { emit requestDataitemHelp(currentDataItem(true)); }

// --- error highlighting -------------------------------------------------------------------------

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
    const int para = std::clamp(line < 1 ? 0 : line - 1, 0, std::max(0, paragraphs() - 1));
    // The mark is stored first, so the cursor move below keeps it.
    errorSelection_[selection] = para;
    markErrorLine(selection);
    SendScintilla(SCI_ENSUREVISIBLE, para);
    SendScintilla(SCI_GOTOPOS, SendScintilla(SCI_GETLINEENDPOSITION, para));
    followCursor();
}

void QcbsRichTextEdit::markErrorLine(int selection) {
    for (int marker : {ErrorLineMarker, ErrorMarkMarker}) {
        const int number = marker + selection - 1;
        SendScintilla(SCI_MARKERDELETEALL, number);
        if (errorSelection_[selection] >= 0) SendScintilla(SCI_MARKERADD, errorSelection_[selection], number);
    }
}

void QcbsRichTextEdit::clearErrorHighlighting() {
    if (!errorMatcherEnabled()) return;
    errorSelection_[1] = errorSelection_[2] = -1;
    markErrorLine(1);
    markErrorLine(2);
}

void QcbsRichTextEdit::reopenErrorHighlighting() { errorGate_ = 0; }

void QcbsRichTextEdit::cursorPositionHasChanged(int para, int) {
    if (para != lastCursorParagraph_) {
        lastCursorParagraph_ = para;
        emit cursorLineChanged(para);
    }
    if (!errorMatcherEnabled()) return;
    if (para != errorSelection_[1] && para != errorSelection_[2]) clearErrorHighlighting();
}

void QcbsRichTextEdit::selectionHasChanged() {
    if (hasSelectedText()) clearErrorHighlighting();
}

void QcbsRichTextEdit::gotoLine(int line, QString blockName) { gotoLine(line, blockName, false); }

void QcbsRichTextEdit::gotoLine(int line, QString blockName, bool highlight) {
    (void)blockName;
    if (line < 1 || line > paragraphs()) {
        QApplication::beep();
        return;
    }
    if (highlight) {
        SendScintilla(SCI_SETEMPTYSELECTION, SendScintilla(SCI_GETCURRENTPOS));
        clearErrorHighlighting();
    }
    const int para = line - 1;
    SendScintilla(SCI_ENSUREVISIBLE, para);
    const long start = SendScintilla(SCI_POSITIONFROMLINE, para);
    const long end = SendScintilla(SCI_GETLINEENDPOSITION, para);
    if (highlight)
        SendScintilla(SCI_SETSEL, static_cast<unsigned long>(start), end);
    else
        SendScintilla(SCI_GOTOPOS, static_cast<unsigned long>(end));
    SendScintilla(SCI_SCROLLCARET);
    followCursor();
}

// --- styles ---------------------------------------------------------------------------------------

void QcbsRichTextEdit::setWrapPolicyAndScrollBar() {
    setWrapMode(QsciScintilla::WrapNone);
    SendScintilla(SCI_SETHSCROLLBAR, 1L);
}

void QcbsRichTextEdit::styleUpdate() {
    if (!styles_) return;
    const QFont font = styles_->editorFont();
    QWidget::setFont(font);
    if (highlighter_ != nullptr) highlighter_->updateStyles();
    setMarginsFont(font);
    // The base style serves the completion list and everything unstyled.
    SendScintilla(SCI_STYLESETFONT, STYLE_DEFAULT, font.family().toLatin1().constData());
    SendScintilla(SCI_STYLESETSIZEFRACTIONAL, STYLE_DEFAULT,
                  static_cast<long>(font.pointSizeF() * static_cast<int>(SC_FONT_SIZE_MULTIPLIER)));
    setWrapPolicyAndScrollBar();
}

void QcbsRichTextEdit::refreshText() {
    if (highlighter_ != nullptr) highlighter_->rehighlightInSlices();
}

void QcbsRichTextEdit::setDictionary(THandle<CifDictionary> dictionary) {
    if (highlighter_ == nullptr) return;
    highlighter_->setDictionary(dictionary);
    completionList_.clear();
    completionSource_ = nullptr;
}

// --- commenting -----------------------------------------------------------------------------------

void QcbsRichTextEdit::commentSelection() { processSelection(CommentParagraph()); }

void QcbsRichTextEdit::uncommentSelection() { processSelection(UncommentParagraph()); }

template <class Op>
void QcbsRichTextEdit::processSelection(const Op& op) {
    if (isReadOnly() || isLoading()) return;
    const int selectionStart = static_cast<int>(SendScintilla(SCI_GETSELECTIONSTART));
    const int selectionEnd = static_cast<int>(SendScintilla(SCI_GETSELECTIONEND));
    const int first = static_cast<int>(SendScintilla(SCI_LINEFROMPOSITION, selectionStart));
    int last = static_cast<int>(SendScintilla(SCI_LINEFROMPOSITION, selectionEnd));
    // A selection that ends at the start of a later line leaves that line alone.
    if (selectionEnd != selectionStart && last > first &&
        selectionEnd == static_cast<int>(SendScintilla(SCI_POSITIONFROMLINE, last)))
        --last;

    // Only the lines' own bytes change; their line ends stay as they are.
    SendScintilla(SCI_BEGINUNDOACTION);
    for (int line = first; line <= last; ++line) {
        QString text = lineText(line);
        if (text.endsWith(u' ')) text.chop(1);
        const QByteArray bytes = encodeText(op(text));
        const long from = SendScintilla(SCI_POSITIONFROMLINE, line);
        const long to = SendScintilla(SCI_GETLINEENDPOSITION, line);
        SendScintilla(SCI_SETTARGETRANGE, static_cast<unsigned long>(from), to);
        SendScintilla(SCI_REPLACETARGET, static_cast<unsigned long>(bytes.size()), bytes.constData());
    }
    SendScintilla(SCI_ENDUNDOACTION);
    flushChange();
    SendScintilla(SCI_SETSEL, SendScintilla(SCI_POSITIONFROMLINE, first),
                  SendScintilla(SCI_GETLINEENDPOSITION, last));
    followCursor();
}

// --- clipboard ------------------------------------------------------------------------------------

namespace {

QString forClipboard(QString text) {
    text = withNewlines(text);
    for (QChar& c : text) {
        if (c.unicode() == 0x00C5)  // A with ring
            c = u'A';
        else if (c.unicode() == 0x00B0)  // degree sign
            c = u'%';
    }
    return text;
}

}  // namespace

QString QcbsRichTextEdit::copyText() const { return forClipboard(selectedText()); }

QMimeData* QcbsRichTextEdit::toMimeData(const QByteArray& text, bool rectangular) const {
    QMimeData* data = QsciScintilla::toMimeData(text, rectangular);
    data->setText(forClipboard(data->text()));
    return data;
}

QByteArray QcbsRichTextEdit::fromMimeData(const QMimeData* source, bool& rectangular) const {
    // Pasted text arrives as CIF codes, as far as there are codes for it.
    const QString text = QcbsUnicode::markupText(source->text());
    QMimeData converted;
    converted.setText(text);
    for (const QString& format : source->formats())
        if (format != "text/plain") converted.setData(format, source->data(format));
    return QsciScintilla::fromMimeData(&converted, rectangular);
}

void QcbsRichTextEdit::copy() {
    if (!hasSelectedText()) return;
    if (SendScintilla(SCI_SELECTIONISRECTANGLE) != 0) {
        QsciScintilla::copy();  // as a rectangle, converted in toMimeData()
        return;
    }
    QApplication::clipboard()->setText(copyText());
}

void QcbsRichTextEdit::cut() {
    if (!hasSelectedText() || isReadOnly()) return;
    copy();
    removeSelectedText();
    flushChange();
    followCursor();
}

void QcbsRichTextEdit::paste() {
    if (isReadOnly() || isLoading()) return;
    QClipboard* clipboard = QApplication::clipboard();
    QString subtype = QStringLiteral("plain");
    const QString text = clipboard->text(subtype);
    if (!text.isEmpty()) {
        const QString converted = QcbsUnicode::markupText(text);
        if (converted != text) clipboard->setText(converted);
        ensureEncodable(converted);
    }
    QsciScintilla::paste();
    flushChange();
    followCursor();
}

// --- file insertion ---------------------------------------------------------------------------------

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
    insertPlainText(QcbsUnicode::markupText(decodeFileText(bytes)));
    emit statusBarMessageRequest("Inserted " + QString::number(count) + " lines.");
}

// --- matching delimiters -----------------------------------------------------------------------------

void QcbsRichTextEdit::showMatchingDelimiters() {
    std::pair<int, int> found{-1, -1};
    if (matching_ && !hasSelectedText() && !isLoading()) {
        const int caret = cursorBytePosition();
        found = findMatchingDelimiter(caret);
        if (found.first < 0 && caret > 0) found = findMatchingDelimiter(caret - 1);
    }
    if (found == matched_) return;
    matched_ = found;
    SendScintilla(SCI_BRACEHIGHLIGHT, static_cast<unsigned long>(found.first),
                  static_cast<long>(found.second));
}

// The delimiter at `position` and its partner: a bracket, a quote that
// opens or closes a quoted string (three in a row for a CIF 2.0 string that
// may run over lines), or the ";" that opens or closes a text field.
std::pair<int, int> QcbsRichTextEdit::findMatchingDelimiter(int position) const {
    const int length = byteLength();
    if (position < 0 || position >= length) return {-1, -1};
    const char c = byteView(position, 1)[0];
    const int line = static_cast<int>(SendScintilla(SCI_LINEFROMPOSITION, position));
    const int lineStart = static_cast<int>(SendScintilla(SCI_POSITIONFROMLINE, line));
    const int lineEnd = static_cast<int>(SendScintilla(SCI_GETLINEENDPOSITION, line));
    const std::string_view text = byteView(lineStart, lineEnd - lineStart);
    const int at = position - lineStart;
    const int style = static_cast<int>(SendScintilla(SCI_GETSTYLEAT, position));
    if (style == QcbsFontStyleSettings::Comment) return {-1, -1};
    const auto blankOrEdge = [&text](int i) {
        return i < 0 || i >= static_cast<int>(text.size()) || isBlankByte(text[static_cast<std::size_t>(i)]);
    };

    switch (c) {
        case '(':
        case ')':
        case '[':
        case ']':
        case '{':
        case '}': {
            if (style == QcbsFontStyleSettings::String) return {-1, -1};
            const int partner = static_cast<int>(SendScintilla(SCI_BRACEMATCH, position));
            return partner >= 0 ? std::pair{position, partner} : std::pair{-1, -1};
        }
        case ';': {
            // Only the first character of its line (after white space) delimits a field.
            for (int i = 0; i < at; ++i)
                if (!isBlankByte(text[static_cast<std::size_t>(i)])) return {-1, -1};
            const bool closes = line > 0 && textFieldAfter(*this, line - 1);
            const int lineCount = lines();
            const int step = closes ? -1 : 1;
            int reach = kMatchReach;
            for (int other = line + step; other >= 0 && other < lineCount && reach > 0; other += step) {
                const int from = static_cast<int>(SendScintilla(SCI_POSITIONFROMLINE, other));
                const int to = static_cast<int>(SendScintilla(SCI_GETLINEENDPOSITION, other));
                reach -= to - from + 1;
                const std::string_view otherText = byteView(from, to - from);
                const auto first = std::find_if_not(otherText.begin(), otherText.end(), isBlankByte);
                if (first != otherText.end() && *first == ';')
                    return {position, from + static_cast<int>(first - otherText.begin())};
            }
            return {-1, -1};
        }
        case '\'':
        case '"': {
            if (style == QcbsFontStyleSettings::String) return {-1, -1};
            const std::string triple(3, c);
            const bool inTriple =
                text.substr(static_cast<std::size_t>(std::max(0, at - 2)), 5).find(triple) !=
                std::string_view::npos;
            if (inTriple) {
                // A CIF 2.0 string of three quotes, which may run over lines.
                int start = at;
                while (start > 0 && text[static_cast<std::size_t>(start) - 1] == c) --start;
                const int begin = lineStart + start;
                const bool opens = blankOrEdge(start - 1);
                const std::string_view around =
                    opens ? byteView(begin + 3, std::min(kMatchReach, length - begin - 3))
                          : byteView(std::max(0, begin - kMatchReach),
                                     begin - std::max(0, begin - kMatchReach));
                const std::size_t found = opens ? around.find(triple) : around.rfind(triple);
                if (found == std::string_view::npos) return {-1, -1};
                const int partner = opens ? begin + 3 + static_cast<int>(found)
                                          : std::max(0, begin - kMatchReach) + static_cast<int>(found);
                return {begin, partner};
            }
            // A quote opens after a blank and closes before one.
            if (blankOrEdge(at - 1)) {
                for (int i = at + 1; i < static_cast<int>(text.size()); ++i)
                    if (text[static_cast<std::size_t>(i)] == c && blankOrEdge(i + 1))
                        return {position, lineStart + i};
            } else if (blankOrEdge(at + 1)) {
                for (int i = at - 1; i >= 0; --i)
                    if (text[static_cast<std::size_t>(i)] == c && blankOrEdge(i - 1))
                        return {lineStart + i, position};
            }
            return {-1, -1};
        }
        default:
            return {-1, -1};
    }
}

// --- data name completion --------------------------------------------------------------------------------

const QByteArray& QcbsRichTextEdit::completionList() {
    const CifDictionary* dictionary = highlighter_ != nullptr ? highlighter_->dictionary().get() : nullptr;
    if (dictionary != completionSource_ || completionList_.isEmpty()) {
        completionSource_ = dictionary;
        completionList_.clear();
        if (dictionary != nullptr) {
            for (const std::string& name : dictionary->data_names()) {
                if (!completionList_.isEmpty()) completionList_ += ' ';
                completionList_ += QByteArray::fromStdString(name);
            }
        }
    }
    return completionList_;
}

void QcbsRichTextEdit::charAdded(int character) {
    if (!completion_ || character != '_' || highlighter_ == nullptr) return;
    // A "_" inside a name being typed, or typed in many places at once, starts nothing.
    if (SendScintilla(SCI_AUTOCACTIVE) != 0 || SendScintilla(SCI_GETSELECTIONS) > 1) return;
    showCompletion();
}

void QcbsRichTextEdit::showCompletion() {
    // Only where a data name may start: after white space, outside comments,
    // quoted strings and text fields. The line up to the "_" tells.
    const int caret = cursorBytePosition();
    int para = 0;
    int index = 0;
    paragraphIndexOf(caret - 1, &para, &index);
    QcbsSyntaxHighlighter_CIF& lexer = *highlighter_;
    const int incoming = para > 0 ? lexer.lineState(para - 1) : QcbsSyntaxHighlighter_CIF::FreshState;
    const QString upTo = lineText(para).left(index + 1);
    if (index > 0 && !upTo[index - 1].isSpace()) return;
    lexer.highlightParagraph(upTo, incoming);
    const auto style = lexer.classifier().styles()[static_cast<std::size_t>(index)];
    if (style != QcbsFontStyleSettings::CoreDataItem && style != QcbsFontStyleSettings::CustomDataItem)
        return;
    const QByteArray& names = completionList();
    if (names.isEmpty()) return;
    SendScintilla(SCI_AUTOCSHOW, 1L, names.constData());
}

void QcbsRichTextEdit::completionSelectionChanged(const char* selection, int, int) {
    if (selection == nullptr || highlighter_ == nullptr || highlighter_->dictionary().is_null()) return;
    // The definition's first line beside the list.
    const std::string definition = highlighter_->dictionary()->definition_text(selection);
    QString tip;
    for (const QString& line : QString::fromStdString(definition).split(u'\n')) {
        if (!line.trimmed().isEmpty()) {
            tip = line.trimmed();
            break;
        }
    }
    if (tip.isEmpty()) {
        QToolTip::hideText();
        return;
    }
    QPoint at = mapToGlobal(QPoint(0, 0));
    if (auto* list = findChild<QListWidget*>(); list != nullptr && list->isVisible())
        at = list->mapToGlobal(QPoint(list->width() + 4, 0));
    QToolTip::showText(at, tip, this);
}

// --- events
// -------------------------------------------------------------------------------------------------

bool QcbsRichTextEdit::event(QEvent* event) {
    // Keep the owner's Ctrl shortcuts working even where Scintilla's own key
    // bindings would claim the key.
    if (event->type() == QEvent::ShortcutOverride && isPassedToOwner(static_cast<QKeyEvent*>(event))) {
        event->ignore();
        return true;
    }
    return QsciScintilla::event(event);
}

void QcbsRichTextEdit::keyPressEvent(QKeyEvent* event) {
    if (isPassedToOwner(event)) {
        event->ignore();
        return;
    }
    // The keyboard's copy, cut and paste take the same road as the menu's.
    if (event->matches(QKeySequence::Copy)) {
        copy();
        event->accept();
        return;
    }
    if (event->matches(QKeySequence::Cut)) {
        cut();
        event->accept();
        return;
    }
    if (event->matches(QKeySequence::Paste)) {
        paste();
        event->accept();
        return;
    }
    if (!isReadOnly() && !isLoading()) ensureEncodable(event->text());
    QsciScintilla::keyPressEvent(event);
    flushChange();
    followCursor();
}

void QcbsRichTextEdit::paintEvent(QPaintEvent* event) {
    if (highlighter_ != nullptr) highlighter_->setPainting(true);
    QsciScintilla::paintEvent(event);
    if (highlighter_ != nullptr) highlighter_->setPainting(false);
}

void QcbsRichTextEdit::inputMethodEvent(QInputMethodEvent* event) {
    if (!isReadOnly() && !isLoading()) ensureEncodable(event->commitString() + event->preeditString());
    QsciScintilla::inputMethodEvent(event);
    flushChange();
    followCursor();
}

void QcbsRichTextEdit::mousePressEvent(QMouseEvent* event) {
    QsciScintilla::mousePressEvent(event);
    followCursor();
}

void QcbsRichTextEdit::mouseReleaseEvent(QMouseEvent* event) {
    QsciScintilla::mouseReleaseEvent(event);
    flushChange();
    followCursor();
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
    const auto selectEverything = [this] { selectAll(true); };
    if (!fullContextMenu_) {
        add("Select All", "selectall", selectEverything);
        add("Copy", "copy", &QcbsRichTextEdit::copy);
        return menu;
    }
    add("Undo", "undo", &QcbsRichTextEdit::undo)->setEnabled(isUndoAvailable());
    add("Redo", "redo", &QcbsRichTextEdit::redo)->setEnabled(isRedoAvailable());
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
    add("Select All", "selectall", selectEverything);
    return menu;
}

void QcbsRichTextEdit::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasUrls() || event->mimeData()->hasText())
        event->acceptProposedAction();
    else
        event->ignore();
}

void QcbsRichTextEdit::dragMoveEvent(QDragMoveEvent* event) {
    if (event->mimeData()->hasUrls() || event->mimeData()->hasText())
        event->acceptProposedAction();
    else
        event->ignore();
}

void QcbsRichTextEdit::dropEvent(QDropEvent* event) { emit dropEventRequest(event); }
