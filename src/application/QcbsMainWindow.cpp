#include "application/QcbsMainWindow.hpp"

#include <QApplication>
#include <QCoreApplication>
#include <QFile>
#include <QStatusBar>
#include <fstream>
#include <utility>

#include "application/ORMAApplicationSettings.hpp"
#include "application/ORMALogQString.hpp"
#include "application/QcbsUtilities.hpp"
#include "dictionaries/QcbsDictionaryLoader.hpp"
#include "dictionaries/QcbsDictionarySettings.hpp"
#include "editor/QcbsFontStyleSettings.hpp"
#include "support/ORMALog.hpp"
#include "support/getline.hpp"
#include "widgets/RecentFilesMenu.hpp"

bool QcbsMainWindow::text_buttons = false;
int QcbsMainWindow::initial_app_width = 800;
int QcbsMainWindow::initial_app_height = 650;
int QcbsMainWindow::max_consec_error = 4;
bool QcbsMainWindow::reuse_window = false;
bool QcbsMainWindow::start_with_template = false;
QString QcbsMainWindow::template_file;
bool QcbsMainWindow::check_mandatory_items = false;
QString QcbsMainWindow::mandatory_items_file;
QcbsContactAuthor QcbsMainWindow::contact_author;
RecentFilesMenu* QcbsMainWindow::recentFiles = nullptr;

namespace {

void debugLine(int level, const QString& text) {
    if (!ORMALog::wants(level)) return;
    ORMALog::start_debug_line(level) << text;
    ORMALog::end_debug_line();
}

// Reads and writes settings keys with one level-3 debug line each, so that
// the log shows every key in the order it was used.
class TracedSettings {
public:
    explicit TracedSettings(const char* method) : method_(method) {}

    bool read(const char* key, bool def) { return trace(key, store_.readBoolEntry(key, def)); }
    int read(const char* key, int def) { return trace(key, store_.readNumEntry(key, def)); }
    QString read(const char* key, const QString& def) { return trace(key, store_.readEntry(key, def)); }

    template <class T>
    void write(const char* key, const T& value) {
        store_.writeEntry(key, value);
        trace(key, value);
    }

private:
    template <class T>
    const T& trace(const char* key, const T& value) {
        if (ORMALog::wants(3)) {
            ORMALog::start_debug_line(3) << "QcbsMainWindow::" << method_ << " - " << key << ": " << value;
            ORMALog::end_debug_line();
        }
        return value;
    }

    ORMAApplicationSettings store_;
    const char* method_;
};

// Section bits of the mandatory-items file.
constexpr int CrystalSection = 1;
constexpr int PublicationSection = 2;

void readMandatoryItems(std::istream& in, std::vector<std::string>& publication,
                        std::vector<std::string>& crystal) {
    const char* const prefix = "QcbsMainWindow::loadMandatoryDataItemSettings - ";
    int mask = 0;
    std::string raw;
    while (orma::getline(in, raw)) {
        const std::size_t first = raw.find_first_not_of(" \t");
        if (first == std::string::npos) continue;
        const std::string line = raw.substr(first, raw.find_last_not_of(" \t") - first + 1);
        if (line[0] == '#') {
            debugLine(3, QString(prefix) + "Skipping comment");
        } else if (line.compare(0, 5, "data_") == 0) {
            debugLine(3, QString(prefix) + "Data block " + QString::fromStdString(line));
            mask = 0;
            if (line == "data_all") mask = CrystalSection | PublicationSection;
            if (line == "data_publication") mask = PublicationSection;
            if (line == "data_crystal") mask = CrystalSection;
        } else if (line[0] == '_') {
            const std::string word = line.substr(0, line.find_first_of(" \t"));
            debugLine(3, QString(prefix) + "Data item " + QString::fromStdString(word));
            if (mask & PublicationSection) publication.push_back(word);
            if (mask & CrystalSection) crystal.push_back(word);
        } else {
            debugLine(3, QString(prefix) + "Unrecognised string " + QString::fromStdString(line));
        }
    }
}

}  // namespace

QcbsMainWindow::QcbsMainWindow(THandle<QcbsMainWindowSharedData> sharedData,
                               [[maybe_unused]] WindowStartupSetting startup, QWidget* parent)
    : QMainWindow(parent), sharedData_(std::move(sharedData)) {
    if (sharedData_.is_null()) {
        // Every window needs the shared data; a window made without it gets its own.
        sharedData_ = THandle<QcbsMainWindowSharedData>(
            new QcbsMainWindowSharedData(QFileInfo(QCoreApplication::applicationFilePath())));
    }
    setObjectName("mainwindow");
    setWindowTitle(programQName());

    debugLine(1, "QcbsMainWindow::QcbsMainWindow - Loading preference settings ...");
    loadSettings();
    debugLine(1, "QcbsMainWindow::QcbsMainWindow - Applying preference settings ...");
    initialiseSettings();
    setMinimumSize(400, 300);
    resize(initial_app_width, initial_app_height);

    // The actions, menus and widgets of the window come here (makeFileActions
    // ... makeConnections); the recent-files menu joins the File menu.
    makeRecentFilesList();
    connectSharedData();

    debugLine(1, "QcbsMainWindow::QcbsMainWindow - Load mandatory data item settings ...");
    loadMandatoryDataItemSettings();

    // The editor page, the tab pages and the tool states come here, then:
    initialiseEditorSettings();
    // A window started with StartWithNewFile opens a new document (fileNew) here.
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
}

void QcbsMainWindow::loadSettings() {
    sharedData_->fontStyles()->loadSettings();

    TracedSettings settings("loadSettings");
    text_buttons = settings.read("text on buttons", false);
    initial_app_height = settings.read("window height", 650);
    initial_app_width = settings.read("window width", 800);
    max_consec_error = settings.read("max consec error", 4);
    reuse_window = settings.read("reuse window", false);
    start_with_template = settings.read("start with template", false);
    template_file = settings.read("template filename", QString(""));
    check_mandatory_items = settings.read("check mandatory items", false);
    mandatory_items_file = settings.read("mandatory filename", QString(""));
    sharedData_->setLineNumbers(settings.read("line numbers", false));
    sharedData_->setSaveBackup(settings.read("save backup file", false));
    // One limit for reader and printer, read once for each.
    sharedData_->setParserLineLength(settings.read("line length limit", 80));
    sharedData_->setWriteLineLength(settings.read("line length limit", 80));
    sharedData_->setConsistencyChecks(settings.read("consistency checks", true));
    contact_author.name = settings.read("contact name", QString());
    contact_author.address = settings.read("contact address", QString());
    contact_author.phone = settings.read("contact phone", QString());
    contact_author.fax = settings.read("contact fax", QString());
    contact_author.email = settings.read("contact email", QString());
}

void QcbsMainWindow::saveSettings() {
    sharedData_->dictionarySettings()->saveSettings();
    sharedData_->fontStyles()->saveSettings();
    // The window saved last gives the size of new windows.
    initial_app_width = width();
    initial_app_height = height();
    if (recentFiles != nullptr) recentFiles->saveSettings();

    TracedSettings settings("saveSettings");
    settings.write("text on buttons", text_buttons);
    settings.write("window height", initial_app_height);
    settings.write("window width", initial_app_width);
    settings.write("max consec error", max_consec_error);
    settings.write("reuse window", reuse_window);
    settings.write("start with template", start_with_template);
    settings.write("template filename", template_file);
    settings.write("check mandatory items", check_mandatory_items);
    settings.write("mandatory filename", mandatory_items_file);
    settings.write("line numbers", sharedData_->lineNumbers());
    settings.write("save backup file", sharedData_->saveBackup());
    // The reader's copy is the one saved.
    settings.write("line length limit", sharedData_->parserLineLength());
    settings.write("consistency checks", sharedData_->consistencyChecks());
    settings.write("contact name", contact_author.name);
    settings.write("contact address", contact_author.address);
    settings.write("contact phone", contact_author.phone);
    settings.write("contact fax", contact_author.fax);
    settings.write("contact email", contact_author.email);
}

void QcbsMainWindow::initialiseSettings() {
    setToolButtonStyle(text_buttons ? Qt::ToolButtonTextUnderIcon : Qt::ToolButtonIconOnly);
}

void QcbsMainWindow::initialiseAllInstSettings() {
    for (QWidget* widget : QApplication::allWidgets()) {
        if (auto* window = qobject_cast<QcbsMainWindow*>(widget)) window->initialiseSettings();
    }
}

void QcbsMainWindow::initialiseEditorSettings() {
    // The editor (QcbsLineNumberedTextEdit) takes sharedData_->lineNumbers()
    // and sharedData_->fontStyles() here once the window has one.
}

void QcbsMainWindow::loadMandatoryDataItemSettings() {
    std::vector<std::string>& publication = sharedData_->mandatoryPublicationItems();
    std::vector<std::string>& crystal = sharedData_->mandatoryCrystalItems();
    publication.clear();
    crystal.clear();
    if (!check_mandatory_items || mandatory_items_file.isEmpty()) return;

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
    readMandatoryItems(in, publication, crystal);
}

void QcbsMainWindow::fileOpen(const QString& filename, bool /*interactive*/) {
    statusBar()->showMessage("Opening files is not available yet: " + filename);
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
