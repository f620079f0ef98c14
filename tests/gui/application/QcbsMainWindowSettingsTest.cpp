// The main window's options in the settings file, and the mandatory data
// items file they name.
#include <gtest/gtest.h>

#include <QSettings>
#include <QTemporaryDir>
#include <functional>
#include <regex>

#include "ApplicationTestSupport.hpp"
#include "GuiTestSupport.hpp"

namespace {

using Fs = QcbsFontStyleSettings;

// The keys a log at level 3 shows for one method, in order.
std::vector<std::string> keysInLog(const std::string& log, const std::string& method) {
    std::vector<std::string> keys;
    const std::regex line("QcbsMainWindow::" + method + " - ([^:]+):");
    for (auto it = std::sregex_iterator(log.begin(), log.end(), line); it != std::sregex_iterator(); ++it)
        keys.push_back((*it)[1]);
    return keys;
}

TEST(MainWindowSettings, AMissingSettingsFileGivesTheDefaults) {
    ScopedPrefsDir prefs;
    // Values a previous window might have left behind.
    QcbsMainWindow::text_buttons = true;
    QcbsMainWindow::max_consec_error = 99;
    QcbsMainWindow::template_file = "old.cif";
    QcbsMainWindow::contact_author.name = "someone";
    QcbsMainWindow window(buildTreeSharedData());
    EXPECT_FALSE(QcbsMainWindow::text_buttons);
    EXPECT_EQ(window.size(), QSize(800, 650));
    EXPECT_EQ(QcbsMainWindow::max_consec_error, 4);
    EXPECT_FALSE(QcbsMainWindow::reuse_window);
    EXPECT_FALSE(QcbsMainWindow::start_with_template);
    EXPECT_TRUE(QcbsMainWindow::template_file.isEmpty() && !QcbsMainWindow::template_file.isNull());
    EXPECT_FALSE(QcbsMainWindow::check_mandatory_items);
    EXPECT_EQ(QcbsMainWindow::mandatory_items_file, "");
    EXPECT_FALSE(window.sharedData()->lineNumbers());
    EXPECT_FALSE(window.sharedData()->saveBackup());
    EXPECT_EQ(window.sharedData()->parserLineLength(), 80);
    EXPECT_EQ(window.sharedData()->writeLineLength(), 80);
    EXPECT_TRUE(window.sharedData()->consistencyChecks());
    EXPECT_EQ(QcbsMainWindow::contact_author, QcbsContactAuthor());
    EXPECT_TRUE(QcbsMainWindow::contact_author.email.isNull());
}

TEST(MainWindowSettings, EverySettingRoundTripsThroughTheIniFileUnderItsKey) {
    ScopedPrefsDir prefs;
    const QcbsContactAuthor author{"A. Author", "1 Road\nTown", "+1 555", "+1 556", "a@example.org"};
    {
        QcbsMainWindow window(buildTreeSharedData());
        QcbsMainWindow::text_buttons = true;
        QcbsMainWindow::max_consec_error = 7;
        QcbsMainWindow::reuse_window = true;
        QcbsMainWindow::start_with_template = true;
        QcbsMainWindow::template_file = "/data/template, new.cif";
        QcbsMainWindow::check_mandatory_items = true;
        QcbsMainWindow::mandatory_items_file = "/data/mandatory.txt";
        QcbsMainWindow::contact_author = author;
        window.sharedData()->setLineNumbers(true);
        window.sharedData()->setSaveBackup(true);
        window.sharedData()->setConsistencyChecks(false);
        // One limit feeds reader and printer; the reader's copy is saved.
        window.sharedData()->setParserLineLength(2048);
        window.sharedData()->setWriteLineLength(60);
        window.sharedData()->fontStyles()->setStyleSettings(Fs::Comment, {true, true, true, QColor(1, 2, 3)});
        window.resize(1000, 700);
        window.saveSettings();
    }
    const std::pair<const char*, const char*> ini[] = {
        {"text on buttons", "true"},
        {"window height", "700"},
        {"window width", "1000"},
        {"max consec error", "7"},
        {"reuse window", "true"},
        {"start with template", "true"},
        {"template filename", "/data/template, new.cif"},
        {"check mandatory items", "true"},
        {"mandatory filename", "/data/mandatory.txt"},
        {"line numbers", "true"},
        {"save backup file", "true"},
        {"line length limit", "2048"},
        {"consistency checks", "false"},
        {"contact name", "A. Author"},
        {"contact address", "1 Road\nTown"},
        {"contact phone", "+1 555"},
        {"contact fax", "+1 556"},
        {"contact email", "a@example.org"},
        {"styles/Comment/blue", "3"},
    };
    QSettings file(prefs.iniFile(), QSettings::IniFormat);
    for (const auto& [key, value] : ini) EXPECT_EQ(file.value(key).toString(), value) << key;

    QcbsMainWindow::contact_author = QcbsContactAuthor();
    QcbsMainWindow::text_buttons = false;
    QcbsMainWindow::template_file.clear();
    QcbsMainWindow window(buildTreeSharedData());
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
    QcbsMainWindow::reuse_window = QcbsMainWindow::start_with_template = false;
    QcbsMainWindow::check_mandatory_items = QcbsMainWindow::text_buttons = false;
}

TEST(MainWindowSettings, KeysAreReadAndWrittenInTheirFixedOrder) {
    ScopedPrefsDir prefs;
    QcbsMainWindow window(buildTreeSharedData());
    ScopedLogCapture log(3);
    window.loadSettings();
    const std::vector<std::string> keys{"text on buttons",    "window height",         "window width",
                                        "max consec error",   "reuse window",          "start with template",
                                        "template filename",  "check mandatory items", "mandatory filename",
                                        "line numbers",       "save backup file",      "line length limit",
                                        "consistency checks", "contact name",          "contact address",
                                        "contact phone",      "contact fax",           "contact email"};
    std::vector<std::string> reads = keys;
    // The line-length limit is read once for the reader and once for the printer.
    reads.insert(reads.begin() + 12, "line length limit");
    EXPECT_EQ(keysInLog(log.text(), "loadSettings"), reads);
    window.saveSettings();
    EXPECT_EQ(keysInLog(log.text(), "saveSettings"), keys);
}

TEST(MainWindowSettings, TheLastWindowToSaveSizesNewWindowsAndOptionsReachEveryWindow) {
    ScopedPrefsDir prefs;
    const THandle<QcbsMainWindowSharedData> shared = buildTreeSharedData();
    QcbsMainWindow first(shared);
    QcbsMainWindow second(shared);
    first.resize(900, 600);
    second.resize(640, 480);
    second.saveSettings();
    first.saveSettings();
    QcbsMainWindow::initial_app_width = 0;
    EXPECT_EQ(QcbsMainWindow(shared).size(), QSize(900, 600));

    QcbsMainWindow::text_buttons = true;
    QcbsMainWindow::initialiseAllInstSettings();
    EXPECT_EQ(first.toolButtonStyle(), Qt::ToolButtonTextUnderIcon);
    EXPECT_EQ(second.toolButtonStyle(), Qt::ToolButtonTextUnderIcon);
    QcbsMainWindow::text_buttons = false;
    QcbsMainWindow::initialiseAllInstSettings();
    EXPECT_EQ(first.toolButtonStyle(), Qt::ToolButtonIconOnly);
}

// --- the mandatory data items file ------------------------------------------------------

using Names = std::vector<std::string>;

class MandatoryItems : public ::testing::Test {
protected:
    MandatoryItems() {
        QcbsMainWindow::check_mandatory_items = true;
        QcbsMainWindow::mandatory_items_file = dir_.filePath("mandatory.txt");
    }
    ~MandatoryItems() override {
        QcbsMainWindow::check_mandatory_items = false;
        QcbsMainWindow::mandatory_items_file.clear();
    }
    void load(const QByteArray& contents) {
        writeBytes(QcbsMainWindow::mandatory_items_file, contents);
        window_.loadMandatoryDataItemSettings();
    }
    const Names& crystal() const { return window_.sharedData()->mandatoryCrystalItems(); }
    const Names& publication() const { return window_.sharedData()->mandatoryPublicationItems(); }
    QString pane() const { return window_.outputPane()->toPlainText(); }

    ScopedPrefsDir prefs_;
    QTemporaryDir dir_;
    QcbsMainWindow window_{buildTreeSharedData()};
};

TEST_F(MandatoryItems, SectionsDecideWhichListsTheFirstWordOfEachItemJoins) {
    const struct {
        const char* contents;
        Names crystal;
        Names publication;
    } cases[] = {
        {"# items\n_before_any_section\ndata_crystal\n_cell_length_a\ndata_all\n_chemical_formula_sum\n"
         "data_publication\n_publ_author_name\n_publ_author_name\ndata_other\n_dropped_under_other\n",
         {"_cell_length_a", "_chemical_formula_sum"},
         {"_chemical_formula_sum", "_publ_author_name", "_publ_author_name"}},
        {"\tdata_crystal  \r\n  _cell_volume   remark\r\n\t_cell_angle_beta\tremark\r\n   \t \r\n"
         "  # comment\r\ncell_volume_without_underscore\r\n_last_line_without_ending",
         {"_cell_volume", "_cell_angle_beta", "_last_line_without_ending"},
         {}},
        {"data_Publication\n_publ_section_title\ndata_crystal_extra\n_cell_volume\ndata_all # note\n_a\n",
         {},
         {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.contents);
        load(c.contents);
        EXPECT_EQ(crystal(), c.crystal);
        EXPECT_EQ(publication(), c.publication);
        EXPECT_TRUE(
            pane().endsWith("Loaded mandatory data items file: " + QcbsMainWindow::mandatory_items_file));
    }
}

TEST_F(MandatoryItems, NoCheckNoFileOrAnUnreadableFileLeavesBothListsEmpty) {
    const QString file = QcbsMainWindow::mandatory_items_file;
    const std::function<void()> switches[] = {
        [] { QcbsMainWindow::check_mandatory_items = false; },
        [] { QcbsMainWindow::mandatory_items_file.clear(); },
        [&] { QcbsMainWindow::mandatory_items_file = dir_.filePath("missing.txt"); },
        [&] { QcbsMainWindow::mandatory_items_file = dir_.path(); },
    };
    for (const auto& change : switches) {
        QcbsMainWindow::check_mandatory_items = true;
        QcbsMainWindow::mandatory_items_file = file;
        load("data_all\n_cell_volume\n");
        ASSERT_EQ(crystal().size(), 1u);
        change();
        window_.loadMandatoryDataItemSettings();
        EXPECT_TRUE(crystal().empty());
        EXPECT_TRUE(publication().empty());
    }
    EXPECT_TRUE(pane().endsWith("Error loading mandatory data items, could not open file: " + dir_.path()));
    EXPECT_TRUE(pane().contains("could not open file: " + dir_.filePath("missing.txt")));
}

TEST_F(MandatoryItems, ReadingIsTracedAtLevelsTwoAndThree) {
    const char* contents = "# comment\ndata_crystal\n_cell_volume extra\nstray words\n";
    const std::string prefix = "QcbsMainWindow::loadMandatoryDataItemSettings - ";
    const std::string first =
        "Debug(2): " + prefix + QcbsMainWindow::mandatory_items_file.toStdString() + "\n";
    {
        ScopedLogCapture log(2);
        load(contents);
        EXPECT_EQ(log.text(), first);
    }
    ScopedLogCapture log(3);
    load(contents);
    EXPECT_EQ(log.text(), first + "Debug(3): " + prefix + "Skipping comment\nDebug(3): " + prefix +
                              "Data block data_crystal\nDebug(3): " + prefix +
                              "Data item _cell_volume\nDebug(3): " + prefix +
                              "Unrecognised string stray words\n");
}

}  // namespace
