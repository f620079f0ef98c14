#include <gtest/gtest.h>

#include <QSettings>
#include <QSignalSpy>
#include <memory>
#include <regex>

#include "GuiTestSupport.hpp"
#include "application/ORMAApplicationSettings.hpp"
#include "application/QcbsMainWindow.hpp"

namespace {

using Fs = QcbsFontStyleSettings;

THandle<QcbsMainWindowSharedData> newSharedData() {
    return THandle<QcbsMainWindowSharedData>(
        new QcbsMainWindowSharedData(QFileInfo(TESSARY_SOURCE_DIR "/build/bin/tessary")));
}

// The keys a log at level 3 shows for one method, in order.
std::vector<std::string> keysInLog(const std::string& log, const std::string& method) {
    std::vector<std::string> keys;
    const std::regex line("QcbsMainWindow::" + method + " - ([^:]+):");
    for (auto it = std::sregex_iterator(log.begin(), log.end(), line); it != std::sregex_iterator(); ++it) {
        keys.push_back((*it)[1]);
    }
    return keys;
}

const std::vector<std::string> keysInOrder{
    "text on buttons",    "window height",       "window width",      "max consec error",
    "reuse window",       "start with template", "template filename", "check mandatory items",
    "mandatory filename", "line numbers",        "save backup file",  "line length limit",
    "consistency checks", "contact name",        "contact address",   "contact phone",
    "contact fax",        "contact email"};

TEST(MainWindowSettings, AMissingSettingsFileGivesTheDefaults) {
    ScopedPrefsDir prefs;
    // Values a previous window might have left behind.
    QcbsMainWindow::text_buttons = true;
    QcbsMainWindow::max_consec_error = 99;
    QcbsMainWindow::template_file = "old.cif";
    QcbsMainWindow::contact_author.name = "someone";
    QcbsMainWindow window(newSharedData());
    EXPECT_FALSE(QcbsMainWindow::text_buttons);
    EXPECT_EQ(QcbsMainWindow::initial_app_height, 650);
    EXPECT_EQ(QcbsMainWindow::initial_app_width, 800);
    EXPECT_EQ(QcbsMainWindow::max_consec_error, 4);
    EXPECT_FALSE(QcbsMainWindow::reuse_window);
    EXPECT_FALSE(QcbsMainWindow::start_with_template);
    EXPECT_EQ(QcbsMainWindow::template_file, "");
    EXPECT_FALSE(QcbsMainWindow::template_file.isNull());
    EXPECT_FALSE(QcbsMainWindow::check_mandatory_items);
    EXPECT_EQ(QcbsMainWindow::mandatory_items_file, "");
    EXPECT_FALSE(window.sharedData()->lineNumbers());
    EXPECT_FALSE(window.sharedData()->saveBackup());
    EXPECT_EQ(window.sharedData()->parserLineLength(), 80);
    EXPECT_EQ(window.sharedData()->writeLineLength(), 80);
    EXPECT_TRUE(window.sharedData()->consistencyChecks());
    EXPECT_EQ(QcbsMainWindow::contact_author, QcbsContactAuthor());
    EXPECT_TRUE(QcbsMainWindow::contact_author.email.isNull());
    EXPECT_EQ(window.size(), QSize(800, 650));
    EXPECT_EQ(window.toolButtonStyle(), Qt::ToolButtonIconOnly);
}

TEST(MainWindowSettings, EverySettingRoundTripsThroughTheIniFileUnderItsKey) {
    ScopedPrefsDir prefs;
    {
        QcbsMainWindow window(newSharedData());
        QcbsMainWindow::text_buttons = true;
        QcbsMainWindow::max_consec_error = 7;
        QcbsMainWindow::reuse_window = true;
        QcbsMainWindow::start_with_template = true;
        QcbsMainWindow::template_file = "/data/template, new.cif";
        QcbsMainWindow::check_mandatory_items = true;
        QcbsMainWindow::mandatory_items_file = "/data/mandatory.txt";
        QcbsMainWindow::contact_author = {"A. Author", "1 Road\nTown", "+1 555", "+1 556", "a@example.org"};
        window.sharedData()->setLineNumbers(true);
        window.sharedData()->setSaveBackup(true);
        window.sharedData()->setParserLineLength(2048);
        window.sharedData()->setConsistencyChecks(false);
        window.sharedData()->fontStyles()->setStyleSettings(Fs::Comment, {true, true, true, QColor(1, 2, 3)});
        window.resize(1000, 700);
        window.saveSettings();
    }
    {
        QSettings ini(prefs.iniFile(), QSettings::IniFormat);
        EXPECT_EQ(ini.value("text on buttons").toString(), "true");
        EXPECT_EQ(ini.value("window height").toInt(), 700);
        EXPECT_EQ(ini.value("window width").toInt(), 1000);
        EXPECT_EQ(ini.value("max consec error").toInt(), 7);
        EXPECT_EQ(ini.value("reuse window").toString(), "true");
        EXPECT_EQ(ini.value("start with template").toString(), "true");
        EXPECT_EQ(ini.value("template filename").toString(), "/data/template, new.cif");
        EXPECT_EQ(ini.value("check mandatory items").toString(), "true");
        EXPECT_EQ(ini.value("mandatory filename").toString(), "/data/mandatory.txt");
        EXPECT_EQ(ini.value("line numbers").toString(), "true");
        EXPECT_EQ(ini.value("save backup file").toString(), "true");
        EXPECT_EQ(ini.value("line length limit").toInt(), 2048);
        EXPECT_EQ(ini.value("consistency checks").toString(), "false");
        EXPECT_EQ(ini.value("contact name").toString(), "A. Author");
        EXPECT_EQ(ini.value("contact address").toString(), "1 Road\nTown");
        EXPECT_EQ(ini.value("contact phone").toString(), "+1 555");
        EXPECT_EQ(ini.value("contact fax").toString(), "+1 556");
        EXPECT_EQ(ini.value("contact email").toString(), "a@example.org");
        EXPECT_EQ(ini.value("styles/Comment/blue").toInt(), 3);
    }
    const QcbsContactAuthor author = QcbsMainWindow::contact_author;
    QcbsMainWindow::contact_author = QcbsContactAuthor();
    QcbsMainWindow::text_buttons = false;
    QcbsMainWindow::template_file.clear();

    QcbsMainWindow window(newSharedData());
    EXPECT_TRUE(QcbsMainWindow::text_buttons);
    EXPECT_EQ(window.toolButtonStyle(), Qt::ToolButtonTextUnderIcon);
    EXPECT_EQ(window.size(), QSize(1000, 700));
    EXPECT_EQ(QcbsMainWindow::max_consec_error, 7);
    EXPECT_TRUE(QcbsMainWindow::reuse_window);
    EXPECT_TRUE(QcbsMainWindow::start_with_template);
    EXPECT_EQ(QcbsMainWindow::template_file, "/data/template, new.cif");
    EXPECT_TRUE(QcbsMainWindow::check_mandatory_items);
    EXPECT_EQ(QcbsMainWindow::mandatory_items_file, "/data/mandatory.txt");
    EXPECT_EQ(QcbsMainWindow::contact_author, author);
    EXPECT_TRUE(window.sharedData()->lineNumbers());
    EXPECT_TRUE(window.sharedData()->saveBackup());
    EXPECT_EQ(window.sharedData()->parserLineLength(), 2048);
    EXPECT_EQ(window.sharedData()->writeLineLength(), 2048);
    EXPECT_FALSE(window.sharedData()->consistencyChecks());
    EXPECT_EQ(window.sharedData()->fontStyles()->styleSettings(Fs::Comment),
              Fs::SyntaxStyleSettings(true, true, true, QColor(1, 2, 3)));
    // Leave the class-wide options as a fresh start would have them.
    QcbsMainWindow::check_mandatory_items = false;
}

TEST(MainWindowSettings, KeysAreReadAndWrittenInTheirFixedOrder) {
    ScopedPrefsDir prefs;
    QcbsMainWindow window(newSharedData());
    ScopedLogCapture log(3);
    window.loadSettings();
    std::vector<std::string> reads = keysInOrder;
    // The line-length limit is read once for the reader and once for the printer.
    reads.insert(reads.begin() + 12, "line length limit");
    EXPECT_EQ(keysInLog(log.text(), "loadSettings"), reads);
    window.saveSettings();
    EXPECT_EQ(keysInLog(log.text(), "saveSettings"), keysInOrder);
}

TEST(MainWindowSettings, OneLineLengthFeedsReaderAndPrinterAndTheReadersCopyIsSaved) {
    ScopedPrefsDir prefs;
    {
        ORMAApplicationSettings settings;
        settings.writeEntry("line length limit", 132);
    }
    QcbsMainWindow window(newSharedData());
    EXPECT_EQ(window.sharedData()->parserLineLength(), 132);
    EXPECT_EQ(window.sharedData()->writeLineLength(), 132);
    window.sharedData()->setParserLineLength(100);
    window.sharedData()->setWriteLineLength(60);
    window.saveSettings();
    ORMAApplicationSettings settings;
    EXPECT_EQ(settings.readNumEntry("line length limit", 0), 100);
}

TEST(MainWindowSettings, TheWindowThatSavesLastGivesTheSizeOfNewWindows) {
    ScopedPrefsDir prefs;
    const THandle<QcbsMainWindowSharedData> shared = newSharedData();
    QcbsMainWindow first(shared);
    QcbsMainWindow second(shared);
    first.resize(900, 600);
    second.resize(640, 480);
    second.saveSettings();
    first.saveSettings();
    EXPECT_EQ(QcbsMainWindow::initial_app_width, 900);
    QcbsMainWindow::initial_app_width = 0;
    QcbsMainWindow third(shared);
    EXPECT_EQ(third.size(), QSize(900, 600));
}

TEST(MainWindowSettings, ChangedOptionsReachEveryWindow) {
    ScopedPrefsDir prefs;
    const THandle<QcbsMainWindowSharedData> shared = newSharedData();
    QcbsMainWindow first(shared);
    QcbsMainWindow second(shared);
    QcbsMainWindow::text_buttons = true;
    QcbsMainWindow::initialiseAllInstSettings();
    EXPECT_EQ(first.toolButtonStyle(), Qt::ToolButtonTextUnderIcon);
    EXPECT_EQ(second.toolButtonStyle(), Qt::ToolButtonTextUnderIcon);
    QcbsMainWindow::text_buttons = false;
}

TEST(MainWindowOutput, DictionaryLoaderMessagesReachTheOutputPaneOnceThereIsOne) {
    ScopedPrefsDir prefs;
    QcbsMainWindow window(newSharedData());
    window.setOutputPane(nullptr);  // as before the window has made its pane
    emit window.sharedData()->dictionaryLoader()->outputMessageRequest("Loaded dictionary: /d/core.dic",
                                                                       false);
    window.writeToOutputPane("Checking CIF ...", true);
    EXPECT_EQ(window.pendingOutputPaneWrites(),
              (QStringList{"Loaded dictionary: /d/core.dic", "Checking CIF ...<br>"}));

    auto* pane = new QcbsOutputPane(&window);
    window.setOutputPane(pane);
    EXPECT_TRUE(window.pendingOutputPaneWrites().isEmpty());
    window.writeToOutputPane("Read 3 lines.", false);
    window.writeToOutputPane("<b>done</b>", true);
    window.writeToOutputPane("No errors, warnings or remarks.", true);
    EXPECT_TRUE(
        pane->toPlainText().endsWith("Loaded dictionary: /d/core.dicChecking CIF ...\nRead 3 lines.done\nNo "
                                     "errors, warnings or remarks.\n"))
        << pane->toPlainText().toStdString();
    EXPECT_TRUE(pane->textCursor().atEnd());

    delete pane;  // a pane that is gone is not written to
    window.writeToOutputPane("later", true);
    EXPECT_EQ(window.pendingOutputPaneWrites(), QStringList{"later<br>"});
}

}  // namespace
