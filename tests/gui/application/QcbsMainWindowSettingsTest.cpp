// SPDX-License-Identifier: GPL-3.0-or-later
// What the main windows share: options in the settings file, documentation, mandatory items.
#include <gtest/gtest.h>

#include <QSettings>
#include <QTemporaryDir>

#include "ApplicationTestSupport.hpp"
#include "GuiTestSupport.hpp"
#include "editor/QcbsLineNumberedTextEdit.hpp"

namespace {

struct Setting {
    const char* key;
    const char* byDefault;
    const char* changed;
};

// In the order they are read and written.
const Setting kSettings[] = {
    {"text on buttons", "false", "true"},
    {"window height", "650", "700"},
    {"window width", "800", "1000"},
    {"max consec error", "4", "7"},
    {"reuse window", "false", "true"},
    {"start with template", "false", "true"},
    {"template filename", "", "/data/template, new.cif"},
    {"check mandatory items", "false", "true"},
    {"mandatory filename", "", "/data/mandatory.txt"},
    {"line numbers", "false", "true"},
    {"save backup file", "false", "true"},
    {"keep recovery files", "true", "false"},
    {"line length limit", "80", "2048"},
    {"consistency checks", "true", "false"},
    {"contact name", "", "A. Author"},
    {"contact address", "", "1 Road\nTown"},
    {"contact phone", "", "+1 555"},
    {"contact fax", "", "+1 556"},
    {"contact email", "", "a@example.org"},
};

// Makes a window read the settings file and write it afresh; gives each
// setting's value in what it wrote.
template <class Check>
QStringList readAndWrittenAgain(const ScopedPrefsDir& prefs, Check check) {
    QcbsMainWindow window(buildTreeSharedData());
    check(window);
    QFile::remove(prefs.iniFile());
    window.saveSettings();
    const QSettings ini(prefs.iniFile(), QSettings::IniFormat);
    QStringList values;
    for (const Setting& setting : kSettings) values << ini.value(setting.key).toString();
    return values;
}

TEST(MainWindowSettings, AMissingSettingsFileGivesTheDefaults) {
    ScopedPrefsDir prefs;
    const QStringList written = readAndWrittenAgain(prefs, [](QcbsMainWindow& window) {
        EXPECT_EQ(window.size(), QSize(800, 650));
        EXPECT_EQ(window.options(), QcbsOptions());
        EXPECT_FALSE(window.options().template_file.isNull());
        EXPECT_TRUE(window.options().contact_author.email.isNull());
    });
    for (std::size_t i = 0; i < std::size(kSettings); ++i)
        EXPECT_EQ(written.value(i), kSettings[i].byDefault) << kSettings[i].key;
}

TEST(MainWindowSettings, EverySettingRoundTripsUnderItsKeyIntoItsOwnOption) {
    ScopedPrefsDir prefs;
    {
        QSettings ini(prefs.iniFile(), QSettings::IniFormat);
        for (const Setting& setting : kSettings) ini.setValue(setting.key, setting.changed);
    }
    const QStringList written = readAndWrittenAgain(prefs, [](QcbsMainWindow& window) {
        const QcbsOptions& o = window.options();
        EXPECT_TRUE(o.text_buttons && o.reuse_window && o.start_with_template && o.check_mandatory_items);
        EXPECT_EQ(window.toolButtonStyle(), Qt::ToolButtonTextUnderIcon);
        EXPECT_EQ(window.size(), QSize(1000, 700));
        EXPECT_EQ(o.max_consec_error, 7);
        EXPECT_EQ(o.template_file, "/data/template, new.cif");
        EXPECT_EQ(o.mandatory_items_file, "/data/mandatory.txt");
        EXPECT_EQ(o.contact_author,
                  (QcbsContactAuthor{"A. Author", "1 Road\nTown", "+1 555", "+1 556", "a@example.org"}));
        const QcbsMainWindowSharedData& shared = *window.sharedData();
        EXPECT_TRUE(shared.lineNumbers() && shared.saveBackup() && !shared.consistencyChecks());
        EXPECT_EQ(shared.parserSettings().line_length, 2048);
        EXPECT_EQ(shared.writeSettings().line_length, 2048);
    });
    for (std::size_t i = 0; i < std::size(kSettings); ++i)
        EXPECT_EQ(written.value(i), kSettings[i].changed) << kSettings[i].key;
}

TEST(MainWindowSettings, TheLastWindowToSaveSizesNewWindows) {
    ScopedPrefsDir prefs;
    const THandle<QcbsMainWindowSharedData> shared = buildTreeSharedData();
    QcbsMainWindow first(shared);
    QcbsMainWindow second(shared);
    first.resize(900, 600);
    second.resize(640, 480);
    second.saveSettings();
    first.saveSettings();
    EXPECT_EQ(QcbsMainWindow(shared).size(), QSize(900, 600));
}

// --- the shared data: where the documentation is ---------------------------------------

TEST(SharedWindowData, FindsTheDocumentationOfTheSourceTreeFromTheBuildDirectory) {
    const QcbsMainWindowSharedData shared(QFileInfo(TESSARY_SOURCE_DIR "/build/bin/tessary"));
    const QString docs = QDir::cleanPath(TESSARY_SOURCE_DIR "/docs");
    EXPECT_EQ(shared.documentationDirectory(), docs);
    EXPECT_EQ(shared.helpSearchPaths(), QStringList{docs + "/html"});
    EXPECT_TRUE(shared.missingDocumentationMessage().isEmpty());
    // The program directory is taken as given, not made absolute.
    EXPECT_EQ(QcbsMainWindowSharedData(QFileInfo("bin/tessary")).documentationCandidates().first(),
              "bin/docs");
}

TEST(SharedWindowData, MissingDocumentationIsDescribedForTheHelpAction) {
    QTemporaryDir root;
    writeBytes(root.filePath("a/b/docs/index.html"), {});  // a docs folder without the start page
    const QString program = root.filePath("a/b");
    const QcbsMainWindowSharedData shared(QFileInfo(program + "/tessary"));
    EXPECT_TRUE(shared.documentationDirectory().isEmpty());
    EXPECT_EQ(shared.missingDocumentationMessage(),
              "Could not find the Tessary Help documentation in any of:\n\n" + program + "/docs\n" +
                  root.filePath("a/share/tessary/docs") + "\n" + root.filePath("docs") + "\n" + program +
                  "/Documentation/Tessary\n" + root.filePath("distrib/docs") + "\n" +
                  root.filePath("a/distrib/docs") + "\n" + root.filePath("a/Resources/docs") + "\n");
    EXPECT_EQ(shared.helpSearchPaths(),
              (QStringList{program + "/html/", program + "/../html/", program + "/../../html/",
                           program + "/../Resources/html/"}));
}

TEST(SharedWindowData, OneObjectServesEveryWindowAndOutlivesTheHandleThatMadeIt) {
    ScopedPrefsDir prefs;
    THandle<QcbsMainWindowSharedData> shared = buildTreeSharedData();
    const QcbsMainWindowSharedData* object = shared.get();
    QcbsMainWindow first(shared), second(shared);
    shared = THandle<QcbsMainWindowSharedData>();
    EXPECT_EQ(first.sharedData().get(), object);
    EXPECT_EQ(second.sharedData().use_count(), 2);
}

// --- the mandatory data items file ------------------------------------------------------

using Names = std::vector<std::string>;

class MandatoryItems : public ::testing::Test {
protected:
    MandatoryItems() { use(true, dir_.filePath("mandatory.txt")); }
    void use(bool check, const QString& file) {
        changeOptions(window_, [&](QcbsOptions& o) {
            o.check_mandatory_items = check;
            o.mandatory_items_file = file;
        });
    }
    void load(const QByteArray& contents) {
        writeBytes(window_.options().mandatory_items_file, contents);
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
            pane().endsWith("Loaded mandatory data items file: " + window_.options().mandatory_items_file));
    }
}

TEST_F(MandatoryItems, NoCheckOrAnUnreadableFileLeavesBothListsEmpty) {
    load("data_all\n_cell_volume\n");
    use(false, window_.options().mandatory_items_file);
    EXPECT_TRUE(crystal().empty() && publication().empty());

    for (const QString& unreadable : {dir_.filePath("missing.txt"), dir_.path()}) {
        use(true, dir_.filePath("mandatory.txt"));
        load("data_all\n_cell_volume\n");
        use(true, unreadable);
        EXPECT_TRUE(crystal().empty() && publication().empty());
        EXPECT_TRUE(
            pane().endsWith("Error loading mandatory data items, could not open file: " + unreadable));
    }
}

}  // namespace
