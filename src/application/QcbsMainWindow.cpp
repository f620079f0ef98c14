// SPDX-License-Identifier: GPL-3.0-or-later
// The main window: its parts and connections, settings, tools, caption, status and editing.
#include "application/QcbsMainWindow.hpp"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QCoreApplication>
#include <QDir>
#include <QDragEnterEvent>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QFile>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QRegularExpression>
#include <QShortcut>
#include <QSplitter>
#include <QStatusBar>
#include <QTabWidget>
#include <QUrl>
#include <fstream>
#include <utility>

#include "application/QcbsMainWindowActions.hpp"
#include "application/QtServerApplication.hpp"
#include "base/ORMAApplicationSettings.hpp"
#include "base/ORMALogQString.hpp"
#include "base/QcbsUtilities.hpp"
#include "cif/CifMandatoryItems.hpp"
#include "dictionaries/QcbsDictionaryLoader.hpp"
#include "dictionaries/QcbsDictionarySettings.hpp"
#include "document/QcbsCifDocument.hpp"
#include "editor/QcbsFontStyleSettings.hpp"
#include "editor/QcbsLineNumberedTextEdit.hpp"
#include "editor/QcbsRichTextEdit.hpp"
#include "preferences/QcbsPreferencesDialog.hpp"
#include "resources/QcbsXpmResource.hpp"
#include "support/ORMALog.hpp"
#include "validation/QcbsErrorListView.hpp"
#include "views/QcbsCifBoxPane.hpp"
#include "views/QcbsCifBoxView.hpp"
#include "visualiser/QcbsVisSorter.hpp"
#include "widgets/QcbsAboutBox.hpp"
#include "widgets/QcbsHelpWindow.hpp"
#include "widgets/RecentFilesMenu.hpp"

RecentFilesMenu* QcbsMainWindow::recentFiles = nullptr;
QPointer<QcbsMainWindow> QcbsMainWindow::lastActive_;

namespace {

QIcon imageIcon(int image) {
    QIcon icon;
    for (int size : {16, 24, 32, 48}) icon.addPixmap(QcbsXpmResource::get_xpm(image, size));
    return icon;
}

bool holdsLocalFiles(const QMimeData* data) {
    if (data == nullptr) return false;
    for (const QUrl& url : data->urls())
        if (url.isLocalFile()) return true;
    return false;
}

}  // namespace

QcbsMainWindow::QcbsMainWindow(THandle<QcbsMainWindowSharedData> sharedData, WindowStartupSetting startup,
                               QWidget* parent)
    : QMainWindow(parent), sharedData_(std::move(sharedData)) {
    if (sharedData_.is_null()) {
        // Every window needs the shared data; a window made without it gets its own.
        sharedData_ = THandle<QcbsMainWindowSharedData>(
            new QcbsMainWindowSharedData(QFileInfo(QCoreApplication::applicationFilePath())));
    }
    setObjectName("mainwindow");
    setWindowIcon(imageIcon(QcbsXpmResource::Program));
    setWindowTitle(programQName());

    debugLine(1, "QcbsMainWindow::QcbsMainWindow - Loading preference settings ...");
    loadSettings();
    debugLine(1, "QcbsMainWindow::QcbsMainWindow - Applying preference settings ...");
    initialiseSettings();
    setMinimumSize(400, 300);
    resize(options().initial_app_width, options().initial_app_height);

    makeRecentFilesList();
    makeFileActions();
    makeEditActions();
    makeSearchActions();
    makeCifActions();
    makeHelpActions();
    makeVisActions();
    makeMainWidgets();
    makeConnections();

    debugLine(1, "QcbsMainWindow::QcbsMainWindow - Load mandatory data item settings ...");
    loadMandatoryDataItemSettings();

    enableEditorTools(false);
    enableParseTools(false);
    enableFileTools(false);
    setAcceptDrops(true);

    makeEditorPage();
    makeTabs();
    makeDocument();

    enableTools(tabs_->currentWidget());
    makeEditorConnections();
    initialiseEditorSettings();
    updateCaption();
    statusLineNumber();
    show();

    if (startup == StartWithNewFile) {
        debugLine(1, "QcbsMainWindow::QcbsMainWindow - Opening a new file");
        fileNew();
    }
}

QcbsMainWindow::~QcbsMainWindow() = default;

void QcbsMainWindow::makeRecentFilesList() {
    if (recentFiles != nullptr) return;
    // One list for all windows, living as long as the program.
    recentFiles = new RecentFilesMenu(QCoreApplication::instance());
    recentFiles->loadSettings();
    connect(recentFiles, &QObject::destroyed, [] { recentFiles = nullptr; });
}

void QcbsMainWindow::connectSharedData() {
    connect(sharedData_->dictionaryLoader().get(), &QcbsDictionaryLoader::outputMessageRequest, this,
            &QcbsMainWindow::writeToOutputPane);
    // A change of the preferences reaches every window at once.
    connect(sharedData_->options(), &QcbsProgramOptions::changed, this, &QcbsMainWindow::applyOptions);
}

void QcbsMainWindow::loadSettings() {
    sharedData_->fontStyles()->loadSettings();
    sharedData_->options()->load();
}

void QcbsMainWindow::saveSettings() {
    sharedData_->dictionarySettings()->saveSettings();
    sharedData_->fontStyles()->saveSettings();
    // The window saved last gives the size of new windows.
    QcbsOptions values = options();
    values.initial_app_width = width();
    values.initial_app_height = height();
    sharedData_->options()->setValues(values);
    if (recentFiles != nullptr) recentFiles->saveSettings();
    sharedData_->options()->save();
}

void QcbsMainWindow::initialiseSettings() {
    setToolButtonStyle(options().text_buttons ? Qt::ToolButtonTextUnderIcon : Qt::ToolButtonIconOnly);
    // "Insert Template" inserts the template file that new documents start from.
    QcbsRichTextEdit::template_ = options().template_file;
}

void QcbsMainWindow::applyOptions(const QcbsOptions& previous) {
    initialiseSettings();
    const QcbsOptions& now = options();
    if (editorPane_ != nullptr && now.line_numbers != previous.line_numbers)
        editorPane_->setShowLineNumbers(now.line_numbers);
    applyEditorOptions();
    if (now.check_mandatory_items != previous.check_mandatory_items ||
        now.mandatory_items_file != previous.mandatory_items_file)
        loadMandatoryDataItemSettings();
}

void QcbsMainWindow::initialiseAllInstSettings() {
    for (QWidget* widget : QApplication::allWidgets()) {
        if (auto* window = qobject_cast<QcbsMainWindow*>(widget)) {
            window->initialiseSettings();
            window->initialiseEditorSettings();
        }
    }
}

void QcbsMainWindow::initialiseEditorSettings() {
    if (editorPane_ == nullptr) return;
    editorPane_->setShowLineNumbers(sharedData_->lineNumbers());
    editorPane_->styleUpdate();
    applyEditorOptions();
}

void QcbsMainWindow::applyEditorOptions() {
    QcbsRichTextEdit* editor = currentEditor();
    if (editor == nullptr) return;
    const QcbsOptions& now = options();
    if (editor->foldingEnabled() != now.folding) editor->setFoldingEnabled(now.folding);
    editor->setDataNameCompletion(now.data_name_completion);
    if (editor->matchingDelimiters() != now.matching_delimiters)
        editor->setMatchingDelimiters(now.matching_delimiters);
    if (editor->rectangularSelection() != now.rectangular_selection)
        editor->setRectangularSelection(now.rectangular_selection);
    if (editor->whiteSpaceVisible() != now.show_white_space)
        editor->setWhiteSpaceVisible(now.show_white_space);
}

void QcbsMainWindow::loadMandatoryDataItemSettings() {
    std::vector<std::string>& publication = sharedData_->mandatoryPublicationItems();
    std::vector<std::string>& crystal = sharedData_->mandatoryCrystalItems();
    publication.clear();
    crystal.clear();
    const QString& mandatory_items_file = options().mandatory_items_file;
    if (!options().check_mandatory_items || mandatory_items_file.isEmpty()) return;

    debugLine(2, "QcbsMainWindow::loadMandatoryDataItemSettings - " + mandatory_items_file);
    std::ifstream in;
    if (!QFileInfo(mandatory_items_file).isDir())
        in.open(QFile::encodeName(mandatory_items_file).constData());
    if (!in.is_open()) {
        writeToOutputPane("Error loading mandatory data items, could not open file: " + mandatory_items_file,
                          false);
        return;
    }
    writeToOutputPane("Loaded mandatory data items file: " + mandatory_items_file, false);
    const auto trace = [](CifMandatoryItems::Line kind, const std::string& text) {
        static const char* const what[] = {"Skipping comment", "Data block ", "Data item ",
                                           "Unrecognised string "};
        const auto index = static_cast<int>(kind);
        debugLine(3,
                  QString("QcbsMainWindow::loadMandatoryDataItemSettings - ") + what[index] +
                      (kind == CifMandatoryItems::Line::comment ? QString() : QString::fromStdString(text)));
    };
    CifMandatoryItems items = CifMandatoryItems::read(in, trace);
    publication = std::move(items.publication);
    crystal = std::move(items.crystal);
}

void QcbsMainWindow::setOutputPane(QcbsOutputPane* pane) {
    outputPane_ = pane;
    if (outputPane_ == nullptr) return;
    const QStringList pending = std::exchange(pendingOutputPaneWrites_, {});
    for (const QString& html : pending) writeHtmlToOutputPane(html);
}

void QcbsMainWindow::writeToOutputPane(const QString& text, bool lineBreak) {
    const QString html = lineBreak ? text + "<br>" : text;
    if (outputPane_ == nullptr) {
        pendingOutputPaneWrites_ << html;
        return;
    }
    writeHtmlToOutputPane(html);
}

void QcbsMainWindow::writeHtmlToOutputPane(const QString& html) {
    outputPane_->moveCursor(QTextCursor::End);
    outputPane_->insertHtml(html);
    outputPane_->moveCursor(QTextCursor::End);
    outputPane_->ensureCursorVisible();
}

// --- construction ----------------------------------------------------------------------

void QcbsMainWindow::makeFileActions() {
    actions_ = new QcbsMainWindowActions(this);
    actions_->makeFileActions();
}

void QcbsMainWindow::makeEditActions() { actions_->makeEditActions(); }

void QcbsMainWindow::makeSearchActions() { actions_->makeSearchActions(); }

void QcbsMainWindow::makeCifActions() { actions_->makeCifActions(); }

void QcbsMainWindow::makeHelpActions() { actions_->makeHelpActions(); }

void QcbsMainWindow::makeVisActions() { actions_->makeVisActions(); }

void QcbsMainWindow::makeMainWidgets() {
    tabs_ = new QTabWidget;
    tabs_->setObjectName("tabs");
    errorList_ = new QcbsErrorListView(nullptr, "errorlist");
    auto* pane = new QcbsOutputPane(nullptr, "outputpane");
    pane->clear();

    // The error list and the output pane share the bottom of the window.
    auto* messages = new QSplitter(Qt::Horizontal);
    messages->setObjectName("messagesplitter");
    messages->addWidget(errorList_);
    messages->addWidget(pane);
    const int width = options().initial_app_width;
    const int height = options().initial_app_height;
    messages->setSizes({width * 11 / 20, width * 9 / 20});

    auto* central = new QSplitter(Qt::Vertical, this);
    central->setObjectName("mainsplitter");
    central->addWidget(tabs_);
    central->addWidget(messages);
    central->setStretchFactor(0, 1);
    central->setStretchFactor(1, 0);
    central->setSizes({height * 7 / 10, height * 3 / 10});
    setCentralWidget(central);
    setOutputPane(pane);

    statusLine_ = new QLabel;
    statusLine_->setObjectName("statusLine");
    statusBar()->addPermanentWidget(statusLine_);
    statusBar()->showMessage("Ready");
}

void QcbsMainWindow::makeConnections() {
    connect(tabs_, &QTabWidget::currentChanged, this, [this] {
        QWidget* page = tabs_->currentWidget();
        enableTools(page);
        restoreStatusBarMessage(page);
        enableVisualiser(page);
    });
    connect(errorList_, &QcbsErrorListView::helpRequest, this, &QcbsMainWindow::helpFile);
    connectSharedData();
    // Every window's recent-files menu reports through the one list; each
    // window answers only choices made in its own menu.
    connect(recentFiles, &RecentFilesMenu::fileSelected, this, [this](int index) {
        if (actions_->recentFilesMenu() != nullptr &&
            recentFiles->selectedFromMenu() == actions_->recentFilesMenu())
            fileLoadRecent(index);
    });
}

void QcbsMainWindow::makeEditorPage() {
    editorPage_ = new QSplitter(Qt::Horizontal);
    editorPage_->setObjectName("editorpage");
    editorPane_ = new QcbsLineNumberedTextEdit(dictionary(), "editor", sharedData_->fontStyles(),
                                               sharedData_->lineNumbers(), editorPage_);
    editorPane_->setObjectName("editorpane");
    connect(actions_->action(QcbsMainWindowActions::EditZoomOut), &QAction::triggered, editorPane_,
            &QcbsLineNumberedTextEdit::zoomOut);
    connect(actions_->action(QcbsMainWindowActions::EditZoomIn), &QAction::triggered, editorPane_,
            &QcbsLineNumberedTextEdit::zoomIn);
    boxPane_ = new QcbsCifBoxPane(editorPage_);
    boxView_ = boxPane_->view();
    editorPage_->insertWidget(0, boxPane_);
    initBoxEdSplitterSizes();
    makeBoxViewConnections();
}

void QcbsMainWindow::initBoxEdSplitterSizes() {
    editorPage_->setStretchFactor(0, 0);
    editorPage_->setStretchFactor(1, 1);
    editorPage_->setSizes({options().initial_app_width / 4, options().initial_app_width * 3 / 4});
}

void QcbsMainWindow::makeBoxViewConnections() {
    connectTree(boxView_);
    connect(currentEditor(), &QcbsRichTextEdit::cursorLineChanged, this, &QcbsMainWindow::followCursorInTree);
    // F1 asks for help on the data name at the cursor (or the tree's current row).
    auto* help = new QShortcut(QKeySequence(Qt::Key_F1), editorPage_);
    help->setContext(Qt::WidgetWithChildrenShortcut);
    connect(help, &QShortcut::activated, this, qOverload<>(&QcbsMainWindow::dataitemHelp));
    // The tree in a window of its own, next to the Browser entry that hides the pane.
    auto* treeWindow = new QAction(imageIcon(QcbsXpmResource::Browser), "Tree in a &Window", this);
    treeWindow->setObjectName("treewindow");
    treeWindow->setStatusTip("Show the tree of blocks and data items in a window of its own");
    connect(treeWindow, &QAction::triggered, this, &QcbsMainWindow::showTreeDialog);
    QMenu* tools = actions_->menu(QcbsMainWindowActions::ToolsMenu);
    const QList<QAction*> entries = tools->actions();
    tools->insertAction(entries.value(entries.indexOf(actions_->action(QcbsMainWindowActions::Browser)) + 1),
                        treeWindow);
}

void QcbsMainWindow::makeTabs() {
    tabs_->addTab(editorPage_, imageIcon(QcbsXpmResource::EditorPage), "  Editor  ");
    visSorter_ = new QcbsVisSorter(tabs_);
    makeVisConnections();
    tabs_->addTab(visSorter_, imageIcon(QcbsXpmResource::VisualiserPage), "  Visualiser  ");
}

void QcbsMainWindow::makeVisConnections() {
    connect(visSorter_, &QcbsVisSorter::statusBarMessageRequest, this, &QcbsMainWindow::statusBarMessage);
    // A double-click on an atom leads to its row in the text.
    connect(visSorter_, &QcbsVisSorter::goToLineRequest, this, &QcbsMainWindow::showLineOfStructure);
}

void QcbsMainWindow::makeEditorConnections() {
    QcbsRichTextEdit* editor = currentEditor();
    claimWindowKeys();
    connect(editor, &QcbsRichTextEdit::cursorLineChanged, this, &QcbsMainWindow::editorLineChanged);
    connect(editor, &QcbsRichTextEdit::cursorPositionChanged, this, &QcbsMainWindow::editorCursorMoved);
    connect(editor, &QcbsRichTextEdit::textChanged, this, &QcbsMainWindow::editorTextChanged);
    connect(editor, &QcbsRichTextEdit::modificationChanged, this, &QcbsMainWindow::statusLineNumber);
    connect(editor, &QcbsRichTextEdit::statusBarMessageRequest, this, &QcbsMainWindow::statusBarMessage);
    connect(editor, &QcbsRichTextEdit::requestDataitemHelp, this,
            qOverload<const QString&>(&QcbsMainWindow::dataitemHelp));
    connect(editor, &QcbsRichTextEdit::dropEventRequest, this, &QcbsMainWindow::processDropEvent);
    connect(editor, &QcbsRichTextEdit::undoAvailable, this, &QcbsMainWindow::enableUndoRedo);
    connect(editor, &QcbsRichTextEdit::redoAvailable, this, &QcbsMainWindow::enableUndoRedo);
    connect(errorList_, &QcbsErrorListView::requestHighlightLine, editor,
            qOverload<int, int, bool>(&QcbsRichTextEdit::setErrorHighlighting));
    connect(this, &QcbsMainWindow::requestGotoLine, editor,
            qOverload<int, QString>(&QcbsRichTextEdit::gotoLine));
    // Drags arrive at the editor's viewport.
    editor->installEventFilter(this);
    editor->viewport()->installEventFilter(this);
}

// --- widgets and per-document state ----------------------------------------------------

QcbsRichTextEdit* QcbsMainWindow::currentEditor() const {
    return editorPane_ != nullptr ? editorPane_->editor() : nullptr;
}

QComboBox* QcbsMainWindow::blocksCombo() const { return actions_->blocks(); }

void QcbsMainWindow::makeDocument() {
    document_ = new QcbsCifDocument(currentEditor(), this);
    connect(document_, &QcbsCifDocument::fileChangedOnDisk, this, &QcbsMainWindow::checkDiskFile);
    document_->setCheckSource([this] { return documentCheck(); });
    connect(document_, &QcbsCifDocument::fileNameChanged, this, &QcbsMainWindow::updateCaption);
    connect(document_, &QcbsCifDocument::checked, this, [this](THandle<Cif> cif) { finishCheck(cif, true); });
}

QString QcbsMainWindow::fileName() const { return document_ != nullptr ? document_->fileName() : QString(); }

bool QcbsMainWindow::isUntitled(const QString& filename) { return QcbsCifDocument::isUntitled(filename); }

THandle<Cif> QcbsMainWindow::currentCif() const {
    return document_ != nullptr ? document_->lastCheck() : THandle<Cif>();
}

THandle<CifDataBlock> QcbsMainWindow::currentBlock() const {
    const THandle<Cif> cif = currentCif();
    if (cif.is_null() || cif->block_count() == 0) return THandle<CifDataBlock>();
    int paragraph = 0;
    int index = 0;
    currentEditor()->getCursorPosition(&paragraph, &index);
    const auto block = cif->block_at_line(paragraph + 1);
    return block != cif->block_end() ? *block : cif->block(0);
}

int QcbsMainWindow::instances() {
    int count = 0;
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (widget->inherits("QMainWindow") && widget->isVisible()) ++count;
    return count;
}

// --- tool states -----------------------------------------------------------------------

void QcbsMainWindow::enableTools(QWidget* page) {
    if (page == nullptr) return;
    if (page->inherits("QSplitter")) {
        if (currentEditor() == nullptr) return;
        enableEditorTools(true);
        enableFindTools(true);
        enableVisTools(false);
        enableCifTools(true);
        enableParseTools(document_ == nullptr || document_->checkAllowed());
        // The chooser offers blocks only once a check has listed some.
        blocksCombo()->setEnabled(blocksCombo()->count() > 1);
    } else if (page->inherits("QcbsVisSorter")) {
        enableVisTools(true);
        enableEditorTools(false);
        enableFindTools(false);
        enableParseTools(false);
        blocksCombo()->setEnabled(false);
        enableCifTools(false);
    } else {
        return;
    }
    enableUndoRedo();
}

void QcbsMainWindow::enableEditorTools(bool on) {
    editorToolsOn_ = on;
    actions_->setToolsEnabled(QcbsMainWindowActions::EditorTools, on);
}

void QcbsMainWindow::enableFileTools(bool on) {
    actions_->setToolsEnabled(QcbsMainWindowActions::FileTools, on);
}

void QcbsMainWindow::enableParseTools(bool on) {
    actions_->setToolsEnabled(QcbsMainWindowActions::ParseTools, on);
}

void QcbsMainWindow::enableCifTools(bool on) {
    cifToolsOn_ = on;
    actions_->setToolsEnabled(QcbsMainWindowActions::CifTools, on);
    updateCrystalWizard();
}

void QcbsMainWindow::enableFindTools(bool on) {
    actions_->setToolsEnabled(QcbsMainWindowActions::FindTools, on);
}

void QcbsMainWindow::enableVisTools(bool on) {
    actions_->setToolsEnabled(QcbsMainWindowActions::VisTools, on);
    if (visSorter_ != nullptr) visSorter_->setToolsEnabled(on);
}

void QcbsMainWindow::enableAllInstParseTools(bool on) {
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (auto* window = qobject_cast<QcbsMainWindow*>(widget)) window->enableParseTools(on);
}

void QcbsMainWindow::enableUndoRedo() {
    const QcbsRichTextEdit* editor = currentEditor();
    const bool on = editorToolsOn_ && editor != nullptr;
    actions_->action(QcbsMainWindowActions::EditUndo)->setEnabled(on && editor->isUndoAvailable());
    actions_->action(QcbsMainWindowActions::EditRedo)->setEnabled(on && editor->isRedoAvailable());
}

void QcbsMainWindow::updateCrystalWizard() {
    // The crystal wizard asks for data that only makes sense for a block
    // that already describes a crystal.
    bool crystal = false;
    if (cifToolsOn_) {
        const THandle<CifDataBlock> block = currentBlock();
        crystal = !block.is_null() &&
                  (block->has_item_with_category("chemical") || block->has_item_with_category("atom_site") ||
                   block->has_item_with_category("cell"));
    }
    actions_->action(QcbsMainWindowActions::CrystalWizard)->setEnabled(crystal);
}

// --- captions and status ---------------------------------------------------------------

void QcbsMainWindow::setCaption(const QString& fileName) {
    const QString shown = fileName.isEmpty() ? QString("new.cif") : QFileInfo(fileName).fileName();
    // "[*]" shows as "*" while the document has unsaved changes.
    setWindowTitle(shown + "[*] - " + programQName());
}

void QcbsMainWindow::updateCaption() { setCaption(fileName()); }

void QcbsMainWindow::statusLineNumber() {
    const QcbsRichTextEdit* editor = currentEditor();
    if (editor == nullptr || statusLine_ == nullptr) return;
    int paragraph = 0;
    int index = 0;
    editor->getCursorPosition(&paragraph, &index);
    QString text = "Line " + QString::number(paragraph + 1) + ", Column " + QString::number(index + 1);
    // A text still coming in from its file is not changed by the user.
    const bool modified = editor->isModified() && !editor->isLoading();
    if (modified) text += " (File Modified)";
    statusLine_->setText(text);
    setWindowModified(modified);
}

void QcbsMainWindow::statusBarMessage(QString message) { statusBar()->showMessage(message); }

void QcbsMainWindow::restoreStatusBarMessage(QWidget* page) {
    // The line and column belong to the editor page only.
    const bool editorShown = page == editorPage_;
    statusLine_->setVisible(editorShown);
    if (editorShown) statusLineNumber();
    statusBar()->showMessage(editorShown ? "Ready" : "");
}

void QcbsMainWindow::editorCursorMoved(int /*paragraph*/, int /*index*/) { statusLineNumber(); }

void QcbsMainWindow::editorLineChanged(int /*paragraph*/) {
    // A move into another block may change what the crystal wizard can do.
    if (cifToolsOn_ && !currentCif().is_null()) updateCrystalWizard();
    followCursorInStructure();
}

void QcbsMainWindow::editorTextChanged() { statusLineNumber(); }

// --- closing, activation, drops --------------------------------------------------------

void QcbsMainWindow::fileCloseRequested() {
    if (instances() > 1) {
        close();
        return;
    }
    // The last window stays open, with a new document in place of the old.
    const QcbsRichTextEdit* editor = currentEditor();
    if (editor != nullptr && !editor->isModified() && editor->byteLength() == 0) return;
    fileNew(true);
}

void QcbsMainWindow::closeEvent(QCloseEvent* event) {
    if (document_->isOpen() && !fileClose()) {
        event->ignore();
        return;
    }
    saveSettings();
    lastActive_ = nullptr;
    // Windows that serve this one go with it.
    if (helpWindow_) helpWindow_->close();
    if (aboutBox_) aboutBox_->close();
    event->accept();
}

void QcbsMainWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) {
        lastActive_ = this;
        // Asked once the activation is over, not inside it.
        QMetaObject::invokeMethod(this, &QcbsMainWindow::checkDiskFile, Qt::QueuedConnection);
    }
}

bool QcbsMainWindow::eventFilter(QObject* watched, QEvent* event) {
    const QcbsRichTextEdit* editor = currentEditor();
    if (editor != nullptr && (watched == editor || watched == editor->viewport())) {
        switch (event->type()) {
            case QEvent::DragEnter:
                contentsDragEnterEvent(static_cast<QDragEnterEvent*>(event));
                return true;
            case QEvent::DragMove:
                contentsDragMoveEvent(static_cast<QDragMoveEvent*>(event));
                return true;
            case QEvent::Drop:
                contentsDropEvent(static_cast<QDropEvent*>(event));
                return true;
            default:
                break;
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

void QcbsMainWindow::contentsDragEnterEvent(QDragEnterEvent* event) {
    if (holdsLocalFiles(event->mimeData()))
        event->acceptProposedAction();
    else
        event->ignore();
}

void QcbsMainWindow::contentsDragMoveEvent(QDragMoveEvent* event) {
    if (holdsLocalFiles(event->mimeData()))
        event->acceptProposedAction();
    else
        event->ignore();
}

void QcbsMainWindow::contentsDropEvent(QDropEvent* event) {
    // Only files are taken; dropped text never lands in the document.
    if (!holdsLocalFiles(event->mimeData())) {
        event->ignore();
        return;
    }
    event->acceptProposedAction();
    processDropEvent(event);
}

void QcbsMainWindow::newWindow() {
    saveSettings();
    auto* window = new QcbsMainWindow(sharedData_, StartWithNewFile);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->show();
}

void QcbsMainWindow::fileExit() { QApplication::closeAllWindows(); }

// --- editing ---------------------------------------------------------------------------

void QcbsMainWindow::editUndo() {
    if (QcbsRichTextEdit* editor = currentEditor()) editor->undo();
}

void QcbsMainWindow::editRedo() {
    if (QcbsRichTextEdit* editor = currentEditor()) editor->redo();
}

void QcbsMainWindow::editCopy() {
    if (QcbsRichTextEdit* editor = currentEditor()) editor->copy();
}

void QcbsMainWindow::editCut() {
    if (QcbsRichTextEdit* editor = currentEditor()) editor->cut();
}

void QcbsMainWindow::editPaste() {
    if (QcbsRichTextEdit* editor = currentEditor()) editor->paste();
}

void QcbsMainWindow::editComment() {
    if (QcbsRichTextEdit* editor = currentEditor()) editor->commentSelection();
}

void QcbsMainWindow::editUncomment() {
    if (QcbsRichTextEdit* editor = currentEditor()) editor->uncommentSelection();
}

void QcbsMainWindow::editInsert() {
    if (QcbsRichTextEdit* editor = currentEditor()) editor->insertFile();
}

void QcbsMainWindow::editInsertTemplate() {
    if (QcbsRichTextEdit* editor = currentEditor()) editor->insertTemplateFile();
}

void QcbsMainWindow::editSelectall() {
    if (QcbsRichTextEdit* editor = currentEditor()) editor->selectAll(true);
}

void QcbsMainWindow::editorInsertTextHelper(const QString& text) { document_->insertText(text); }

void QcbsMainWindow::editorJumpToBlockHelper(const QString& blockName) {
    if (!document_->goToBlock(blockName)) QApplication::beep();
}

void QcbsMainWindow::blockUpdate(const QString& blockText) {
    // The block is the one the text names in its heading.
    const QString heading = blockText.trimmed().section(QRegularExpression("\\s"), 0, 0);
    if (!document_->replaceBlock(heading, blockText))
        statusBarMessage("The block " + heading + " is no longer in the text.");
}

void QcbsMainWindow::blockAdd(const QString& blockText) {
    // A new block goes before the first block, or is the document's first.
    const THandle<Cif> cif = currentCif();
    const QString first =
        cif.is_null() || cif->block_count() == 0 ? QString() : QString::fromStdString(cif->block(0)->name());
    document_->addBlock(blockText, first);
}

void QcbsMainWindow::toggleBoxView() { boxPane_->setVisible(boxPane_->isHidden()); }

// --- preferences -----------------------------------------------------------------------

void QcbsMainWindow::editPrefs() {
    if (preferences_ == nullptr) {
        const QcbsPreferencesDialog::Shared shared{
            sharedData_->options(), sharedData_->dictionaryLoader(), sharedData_->dictionarySettings(),
            sharedData_->fontStyles(), sharedData_->programDirectory()};
        preferences_ = new QcbsPreferencesDialog(shared, this);
        preferences_->setAttribute(Qt::WA_DeleteOnClose);
        // The options reach every window through their change signal; the
        // styles and dictionaries are shared objects changed in place, so
        // every window is told to draw and check with them.
        connect(preferences_, &QcbsPreferencesDialog::stylesChanged, this,
                [] { initialiseAllInstSettings(); });
        const auto everyWindow = [](void (*act)(QcbsMainWindow*)) {
            for (QWidget* widget : QApplication::topLevelWidgets())
                if (auto* window = qobject_cast<QcbsMainWindow*>(widget)) act(window);
        };
        connect(preferences_, &QcbsPreferencesDialog::dictionariesChanged, this, [everyWindow] {
            everyWindow([](QcbsMainWindow* window) {
                if (QcbsRichTextEdit* editor = window->currentEditor())
                    editor->setDictionary(window->dictionary());
            });
        });
        connect(preferences_, &QcbsPreferencesDialog::checkAgainRequested, this,
                [everyWindow] { everyWindow([](QcbsMainWindow* window) { window->reparse(); }); });
    }
    preferences_->open();
    preferences_->raise();
    preferences_->activateWindow();
}

// --- help ------------------------------------------------------------------------------

void QcbsMainWindow::about() {
    if (aboutBox_ == nullptr) {
        aboutBox_ = new QcbsAboutBox(this);
        aboutBox_->setAttribute(Qt::WA_DeleteOnClose);
    }
    // The core dictionary that checks actually use, as loaded now.
    dictionary();
    const THandle<CifDictionaryPool> all = sharedData_->dictionaryLoader()->pool();
    aboutBox_->setDictionaries(*sharedData_->dictionarySettings()->loadSettings(all), *all);
    aboutBox_->show();
    aboutBox_->raise();
}

void QcbsMainWindow::help() {
    const QString directory = sharedData_->documentationDirectory();
    if (directory.isEmpty()) {
        // Not modal, so that a window can be closed while it shows.
        auto* box = new QMessageBox(QMessageBox::Warning, "Warning",
                                    sharedData_->missingDocumentationMessage(), QMessageBox::Ok, this);
        box->setObjectName("helpmissing");
        box->setAttribute(Qt::WA_DeleteOnClose);
        box->open();
        return;
    }
    helpFile(directory + "/tessary.html");
}

void QcbsMainWindow::helpFile(const QString& page) {
    QString path;
    if (QFileInfo(page).isAbsolute()) {
        if (QFileInfo::exists(page)) path = page;
    } else {
        QStringList directories = sharedData_->helpSearchPaths();
        if (!sharedData_->documentationDirectory().isEmpty())
            directories << sharedData_->documentationDirectory();
        for (const QString& directory : directories) {
            if (QFileInfo::exists(directory + "/" + page)) {
                path = QDir::cleanPath(directory + "/" + page);
                break;
            }
        }
    }
    if (path.isEmpty()) {
        statusBarMessage("Could not find the help page " + page);
        return;
    }
    if (helpWindow_ == nullptr) helpWindow_ = new QcbsHelpWindow(sharedData_->helpSearchPaths(), this);
    helpWindow_->showPage(QUrl::fromLocalFile(path));
}

void QcbsMainWindow::tessaryHomePage() {
    const QString url = QString::fromStdString(TessaryURL());
    if (QtServerApplication::openWebPage(url))
        statusBarMessage("Opening " + url);
    else
        statusBarMessage("Could not open a web browser for " + url);
}
