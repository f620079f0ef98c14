// SPDX-License-Identifier: GPL-3.0-or-later
// The preferences dialog: every option reaches every window and the settings; Cancel keeps all.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSettings>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTextBlock>
#include <QTextLayout>
#include <functional>

#include "GuiTestSupport.hpp"
#include "application/ApplicationTestSupport.hpp"
#include "dictionaries/DictionaryTestSupport.hpp"
#include "dictionaries/QcbsDictionaryCheckBox.hpp"
#include "document/QcbsRecoveryWriter.hpp"
#include "editor/QcbsLineNumberedTextEdit.hpp"
#include "editor/QcbsRichTextEdit.hpp"
#include "preferences/QcbsCheckingPreferencesPage.hpp"
#include "preferences/QcbsContactAuthorPreferencesPage.hpp"
#include "preferences/QcbsDictionaryPreferencesPage.hpp"
#include "preferences/QcbsEditorPreferencesPage.hpp"
#include "preferences/QcbsFileField.hpp"
#include "preferences/QcbsFontStyleList.hpp"
#include "preferences/QcbsPreferencesDialog.hpp"

namespace {

using Dialog = QcbsPreferencesDialog;

// Two windows on one set of shared data, with one own dictionary in a
// directory of the test, and the preferences dialog opened from the first.
class PreferencesDialog : public ::testing::Test {
public:
    ~PreferencesDialog() override {
        for (QcbsMainWindow* window : {&first_, &second_}) window->currentEditor()->setModified(false);
    }

    Dialog* open() {
        // A dialog closed a moment ago is gone first, as it is for the user.
        EXPECT_TRUE(waitUntil([&] {
            return first_.findChild<Dialog*>() == nullptr || first_.findChild<Dialog*>()->isVisible();
        }));
        first_.editPrefs();
        auto* dialog = first_.findChild<Dialog*>();
        EXPECT_NE(dialog, nullptr);
        EXPECT_TRUE(dialog != nullptr && dialog->isVisible());
        return dialog;
    }
    void ok(Dialog* dialog) { dialog->buttons()->button(QDialogButtonBox::Ok)->click(); }
    template <class T>
    T* field(Dialog* dialog, const char* name) {
        T* found = dialog->findChild<T*>(name);
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    // The value the settings file holds for the key, as text.
    QString stored(const QString& key) const {
        return QSettings(prefs_.iniFile(), QSettings::IniFormat).value(key).toString();
    }
    // Shows and checks a text in a window, as the user would with Ctrl+K.
    QStringList warningsAfterChecking(QcbsMainWindow& window, const QString& text) {
        if (!window.document()->isOpen()) window.fileNewUntitled();
        window.currentEditor()->setPlainText(text);
        window.reparse();
        return entriesUnder(window.errorList(), "Warnings");
    }
    QString file(const QString& name, const QByteArray& bytes) {
        return writeBytes(files_.filePath(name), bytes);
    }

    // Two dictionaries, so that one switched off leaves names to be checked.
    static bool writeDictionaries(const QTemporaryDir& dir) {
        writeDictionary(dir.filePath("own.dic"), "own.dic", "1", {"_own_value"});
        writeDictionary(dir.filePath("other.dic"), "other.dic", "2", {"_other_value"});
        return true;
    }

    ScopedPrefsDir prefs_;
    QTemporaryDir dictionaries_;
    bool written_ = writeDictionaries(dictionaries_);
    QTemporaryDir files_;
    ScopedEnvironment environment_{"TESSARY_DICTIONARIES", dictionaries_.path().toUtf8()};
    THandle<QcbsMainWindowSharedData> shared_ = buildTreeSharedData();
    QcbsMainWindow first_{shared_};
    QcbsMainWindow second_{shared_};
};

// What a row of the tables below does to the dialog.
using Setter = std::function<void(PreferencesDialog&, Dialog*)>;
Setter check(bool on, const char* name) {
    return [=](PreferencesDialog& t, Dialog* d) { t.field<QCheckBox>(d, name)->setChecked(on); };
}
Setter check(const char* name) { return check(true, name); }
Setter text(const char* name, const QString& value) {
    return [=](PreferencesDialog& t, Dialog* d) { t.field<QLineEdit>(d, name)->setText(value); };
}
Setter number(const char* name, int value) {
    return [=](PreferencesDialog& t, Dialog* d) { t.field<QSpinBox>(d, name)->setValue(value); };
}

TEST_F(PreferencesDialog, ListsItsPagesOnTheLeftAndShowsTheOneChosen) {
    Dialog* dialog = open();
    QStringList titles;
    for (int i = 0; i < dialog->pageList()->count(); ++i) titles << dialog->pageList()->item(i)->text();
    EXPECT_EQ(titles, (QStringList{"Editor", "Checking", "Dictionaries", "Contact author"}));
    dialog->pageList()->setCurrentRow(2);
    EXPECT_EQ(dialog->currentPage(), dialog->dictionaryPage());
    // Asked for again, the same dialog comes to the front.
    first_.editPrefs();
    EXPECT_EQ(first_.findChildren<Dialog*>().size(), 1);
}

TEST_F(PreferencesDialog, EachOptionSetInTheDialogReachesEveryWindowAndTheSettingsFileUnderItsKey) {
    const QString templateFile = file("template.cif", "data_template\n");
    const QString mandatoryFile = file("mandatory.txt", "data_all\n_cell_volume\n");
    struct Row {
        const char* key;
        Setter set;
        QString written;
        std::function<bool(const QcbsMainWindow&)> applied;
    };
    const Row rows[] = {
        {"line numbers", check("line numbers"), "true",
         [](const QcbsMainWindow& w) { return w.editorPane()->showLineNumbers(); }},
        {"text on buttons", check("text on buttons"), "true",
         [](const QcbsMainWindow& w) { return w.toolButtonStyle() == Qt::ToolButtonTextUnderIcon; }},
        {"reuse window", check("reuse window"), "true",
         [](const QcbsMainWindow& w) { return w.reuseWindow(); }},
        {"save backup file", check("save backup file"), "true",
         [](const QcbsMainWindow& w) { return w.options().save_backup; }},
        {"keep recovery files", check(false, "keep recovery files"), "false",
         [](const QcbsMainWindow& w) { return !w.recoveryWriter()->isEnabled(); }},
        // The editor's own switches, each reaching the editor itself.
        {"folding", check(false, "folding"), "false",
         [](const QcbsMainWindow& w) { return !w.currentEditor()->foldingEnabled(); }},
        {"data name completion", check(false, "data name completion"), "false",
         [](const QcbsMainWindow& w) { return !w.currentEditor()->dataNameCompletion(); }},
        {"matching delimiters", check(false, "matching delimiters"), "false",
         [](const QcbsMainWindow& w) { return !w.currentEditor()->matchingDelimiters(); }},
        {"rectangular selection", check(false, "rectangular selection"), "false",
         [](const QcbsMainWindow& w) { return !w.currentEditor()->rectangularSelection(); }},
        {"show white space", check("show white space"), "true",
         [](const QcbsMainWindow& w) { return w.currentEditor()->whiteSpaceVisible(); }},
        {"template filename", text("template filename", templateFile), templateFile,
         [=](const QcbsMainWindow& w) { return w.options().template_file == templateFile; }},
        {"start with template", check("start with template"), "true",
         [](const QcbsMainWindow& w) { return w.options().start_with_template; }},
        {"window width", number("window width", 1024), "1024",
         [](const QcbsMainWindow& w) { return w.options().initial_app_width == 1024; }},
        {"window height", number("window height", 700), "700",
         [](const QcbsMainWindow& w) { return w.options().initial_app_height == 700; }},
        {"line length limit", number("line length limit", 132), "132",
         [](const QcbsMainWindow& w) { return w.sharedData()->parserSettings().line_length == 132; }},
        {"max consec error", number("max consec error", 9), "9",
         [](const QcbsMainWindow& w) { return w.options().max_consec_error == 9; }},
        {"consistency checks", check(false, "consistency checks"), "false",
         [](const QcbsMainWindow& w) { return !w.sharedData()->consistencyChecks(); }},
        {"mandatory filename", text("mandatory filename", mandatoryFile), mandatoryFile,
         [=](const QcbsMainWindow& w) { return w.options().mandatory_items_file == mandatoryFile; }},
        {"check mandatory items", check("check mandatory items"), "true",
         [](const QcbsMainWindow& w) {
             // The next check needs the items of the file.
             return w.sharedData()->mandatoryCrystalItems() == std::vector<std::string>{"_cell_volume"};
         }},
        {"contact name", text("contact name", "A. Author"), "A. Author",
         [](const QcbsMainWindow& w) { return w.options().contact_author.name == "A. Author"; }},
        {"contact address",
         [](PreferencesDialog& t, Dialog* d) {
             t.field<QPlainTextEdit>(d, "contact address")->setPlainText("1 Road\nTown");
         },
         "1 Road\nTown",
         [](const QcbsMainWindow& w) { return w.options().contact_author.address == "1 Road\nTown"; }},
        {"contact phone", text("contact phone", "+1 555"), "+1 555",
         [](const QcbsMainWindow& w) { return w.options().contact_author.phone == "+1 555"; }},
        {"contact fax", text("contact fax", "+1 556"), "+1 556",
         [](const QcbsMainWindow& w) { return w.options().contact_author.fax == "+1 556"; }},
        {"contact email", text("contact email", "a@example.org"), "a@example.org",
         [](const QcbsMainWindow& w) { return w.options().contact_author.email == "a@example.org"; }},
    };
    // One option at a time, so that each is seen to travel on its own.
    for (const Row& row : rows) {
        SCOPED_TRACE(row.key);
        Dialog* dialog = open();
        row.set(*this, dialog);
        ok(dialog);
        EXPECT_FALSE(dialog->isVisible());
        for (const QcbsMainWindow* window : {&first_, &second_}) EXPECT_TRUE(row.applied(*window));
        EXPECT_EQ(stored(row.key), row.written);
    }
}

TEST_F(PreferencesDialog, CancelLeavesTheSettingsFileTheWindowsAndTheSharedPartsAsTheyWere) {
    first_.saveSettings();
    const QByteArray before = readBytes(prefs_.iniFile());
    const QcbsOptions options = first_.options();
    const QcbsFontStyleSettings::SyntaxStyleSettings comment =
        shared_->fontStyles()->styleSettings(QcbsFontStyleSettings::Comment);

    Dialog* dialog = open();
    field<QCheckBox>(dialog, "line numbers")->setChecked(true);
    field<QLineEdit>(dialog, "contact name")->setText("Someone");
    dialog->editorPage()->fontStyleList()->setStyleColor(QcbsFontStyleSettings::Comment, Qt::red);
    QcbsDictionaryCheckBox* own = dialog->dictionaryPage()->checkBox("own.dic", "1");
    ASSERT_NE(own, nullptr);
    own->setChecked(false);
    dialog->dictionaryPage()->addDirectory(files_.path());
    dialog->setCurrentPage(1);
    dialog->restoreDefaults();
    dialog->buttons()->button(QDialogButtonBox::Cancel)->click();

    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(readBytes(prefs_.iniFile()), before);
    EXPECT_EQ(first_.options(), options);
    EXPECT_FALSE(first_.editorPane()->showLineNumbers() || second_.editorPane()->showLineNumbers());
    EXPECT_EQ(shared_->fontStyles()->styleSettings(QcbsFontStyleSettings::Comment), comment);
    EXPECT_TRUE(shared_->dictionarySettings()->dictionaryEnabled(own->dictionary()));
    EXPECT_TRUE(QcbsDictionaryLoader::addedDirectories().isEmpty());
}

TEST_F(PreferencesDialog, InputThatCannotWorkIsRefusedWithTheReasonBesideTheField) {
    struct Case {
        int page;
        Setter spoil;
        const char* field;
        const char* reason;  // a part of it
    };
    const QString missing = files_.filePath("gone.cif");
    const Case cases[] = {
        {1, number("line length limit", 0), "line length limit", "at least 1 character"},
        {1, number("line length limit", 5000), "line length limit", "at most 2048"},
        {1, number("max consec error", 0), "max consec error", "At least 1"},
        {0, check("start with template"), "template filename", "Choose the template file"},
        {0, text("template filename", missing), "template filename", "There is no file"},
        {1, text("mandatory filename", files_.path()), "mandatory filename", "is a directory"},
        {3, text("contact email", "nobody"), "contact email", "name@example.org"},
    };
    first_.saveSettings();
    const QByteArray before = readBytes(prefs_.iniFile());
    const QcbsOptions options = first_.options();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.field);
        Dialog* dialog = open();
        dialog->setCurrentPage(c.page == 0 ? 3 : 0);  // the dialog must find the page itself
        c.spoil(*this, dialog);
        ok(dialog);
        EXPECT_TRUE(dialog->isVisible()) << "refused";
        EXPECT_EQ(dialog->currentPage(), dialog->page(c.page));
        auto* reason = field<QLabel>(dialog, QcbsPreferencesPage::reasonName(c.field).toUtf8().constData());
        EXPECT_TRUE(reason->isVisibleTo(dialog));
        EXPECT_TRUE(reason->text().contains(c.reason)) << reason->text().toStdString();
        EXPECT_EQ(first_.options(), options);
        EXPECT_EQ(readBytes(prefs_.iniFile()), before);
        dialog->reject();
    }
    // A reason goes once the field is changed.
    Dialog* dialog = open();
    field<QLineEdit>(dialog, "contact email")->setText("nobody");
    ok(dialog);
    auto* reason = field<QLabel>(dialog, "contact email reason");
    EXPECT_TRUE(reason->isVisibleTo(dialog));
    field<QLineEdit>(dialog, "contact email")->setText("nobody@example.org");
    EXPECT_FALSE(reason->isVisibleTo(dialog));
    ok(dialog);
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(first_.options().contact_author.email, "nobody@example.org");
}

TEST_F(PreferencesDialog, RestoreDefaultsResetsOnlyThePageShown) {
    changeOptions(first_, [](QcbsOptions& o) {
        o.line_numbers = true;
        o.line_length_limit = 200;
        o.consistency_checks = false;
        o.contact_author.name = "A. Author";
    });
    Dialog* dialog = open();
    dialog->setCurrentPage(1);
    dialog->buttons()->button(QDialogButtonBox::RestoreDefaults)->click();
    EXPECT_EQ(dialog->checkingPage()->lineLengthBox()->value(), 80);
    ok(dialog);
    const QcbsOptions& o = first_.options();
    EXPECT_EQ(o.line_length_limit, 80);
    EXPECT_TRUE(o.consistency_checks);
    EXPECT_TRUE(o.line_numbers) << "another page's option";
    EXPECT_EQ(o.contact_author.name, "A. Author");

    // The editor page goes back to the default text styles too.
    dialog = open();
    dialog->editorPage()->fontStyleList()->setStyleColor(QcbsFontStyleSettings::Comment, Qt::red);
    dialog->setCurrentPage(0);
    dialog->restoreDefaults();
    EXPECT_FALSE(dialog->editorPage()->fontStyleList()->changed());
    EXPECT_FALSE(field<QCheckBox>(dialog, "line numbers")->isChecked());
    dialog->reject();
}

TEST_F(PreferencesDialog, ADictionarySwitchedOffIsNoLongerUsedByTheNextCheckAndStaysOff) {
    const QString text = "data_a\n_own_value 1\n";
    EXPECT_EQ(warningsAfterChecking(first_, text), QStringList());
    Dialog* dialog = open();
    dialog->setCurrentPage(2);
    QcbsDictionaryCheckBox* own = dialog->dictionaryPage()->checkBox("own.dic", "1");
    ASSERT_NE(own, nullptr);
    EXPECT_TRUE(own->isChecked());
    own->setChecked(false);
    ok(dialog);
    for (QcbsMainWindow* window : {&first_, &second_})
        EXPECT_EQ(warningsAfterChecking(*window, text),
                  QStringList{"2: Created non-standard data item _own_value"});
    EXPECT_EQ(stored("dictionaries/own.dic1"), "false");

    // Shown again, the dialog has it off; switched on, it is used again.
    dialog = open();
    own = dialog->dictionaryPage()->checkBox("own.dic", "1");
    EXPECT_FALSE(own->isChecked());
    own->setChecked(true);
    ok(dialog);
    EXPECT_EQ(warningsAfterChecking(first_, text), QStringList());
}

TEST_F(PreferencesDialog, ADirectoryAddedIsStoredAndSearchedByTheNextCheckOrAtOnceByCheckAgainNow) {
    QTemporaryDir more;
    writeDictionary(more.filePath("more.dic"), "more.dic", "3", {"_more_value"});
    const QString text = "data_a\n_more_value 1\n";
    EXPECT_EQ(warningsAfterChecking(first_, text).size(), 1);

    Dialog* dialog = open();
    QcbsDictionaryPreferencesPage* page = dialog->dictionaryPage();
    EXPECT_TRUE(page->addDirectory(more.path()));
    EXPECT_FALSE(page->addDirectory(more.path() + "/")) << "already searched";
    EXPECT_FALSE(page->addDirectory(dictionaries_.path()));
    EXPECT_TRUE(page->directoryList()->findItems(more.path(), Qt::MatchStartsWith).size() == 1);
    EXPECT_EQ(page->checkBox("more.dic", "3"), nullptr) << "not read before it is asked for";
    // "Check again now" takes the preferences, reads the new directory and
    // checks the open documents at once; the dialog stays open.
    page->checkAgainButton()->click();
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_EQ(QcbsDictionaryLoader::addedDirectories(), QStringList{more.path()});
    EXPECT_EQ(entriesUnder(first_.errorList(), "Warnings"), QStringList());
    ASSERT_NE(page->checkBox("more.dic", "3"), nullptr);
    EXPECT_TRUE(page->checkBox("more.dic", "3")->isChecked());
    ok(dialog);
    EXPECT_EQ(stored(QcbsDictionaryLoader::addedDirectoriesKey()), more.path());

    // The next run searches it as well.
    QcbsMainWindowSharedData nextRun(QFileInfo(TESSARY_SOURCE_DIR "/build/bin/tessary"));
    EXPECT_TRUE(nextRun.dictionaryLoader()->load(nextRun.programDirectory())->is_defined("_more_value"));
}

TEST_F(PreferencesDialog, ATextStyleChangedReachesTheTextOfEveryEditorAndTheSettings) {
    for (QcbsMainWindow* window : {&first_, &second_}) {
        window->fileNewUntitled();
        window->currentEditor()->setPlainText("# a remark\ndata_a\n");
    }
    const QColor chosen(200, 30, 40);
    Dialog* dialog = open();
    QcbsFontStyleList* list = dialog->editorPage()->fontStyleList();
    list->setStyleColor(QcbsFontStyleSettings::Comment, chosen);
    field<QCheckBox>(dialog, "Comment italic")->setChecked(true);
    EXPECT_TRUE(list->changed());
    ok(dialog);

    const QcbsFontStyleSettings::SyntaxStyleSettings comment =
        shared_->fontStyles()->styleSettings(QcbsFontStyleSettings::Comment);
    EXPECT_EQ(comment.color, chosen);
    EXPECT_TRUE(comment.italic);
    EXPECT_EQ(stored("styles/Comment/red"), "200");
    EXPECT_EQ(stored("styles/Comment/italic"), "true");
    for (QcbsMainWindow* window : {&first_, &second_}) {
        // Scintilla keeps colours as 0xBBGGRR.
        QcbsRichTextEdit* editor = window->currentEditor();
        const long bgr = chosen.red() | (chosen.green() << 8) | (chosen.blue() << 16);
        EXPECT_TRUE(waitUntil([&] {
            return editor->SendScintilla(QsciScintillaBase::SCI_STYLEGETFORE,
                                         QcbsFontStyleSettings::Comment) == bgr &&
                   editor->SendScintilla(QsciScintillaBase::SCI_STYLEGETITALIC,
                                         QcbsFontStyleSettings::Comment) != 0;
        }));
    }
}

TEST(CheckingPreferences, TheMandatoryItemsFileIsShownSectionBySectionAsTheCheckReadsIt) {
    QTemporaryDir dir;
    const QString path =
        writeBytes(dir.filePath("items.txt"),
                   "# required\n_orphan\ndata_all\n_cell_volume\n_cell_length_a extra words\n"
                   "data_publication\n_publ_author_name\ndata_Crystal\n_dropped_too\n"
                   "data_crystal\n  _exptl_crystal_colour\nnonsense\n");
    EXPECT_EQ(QcbsCheckingPreferencesPage::mandatoryItemsText(path),
              "data_all, required somewhere in the document and in every block with crystal data: 2 items\n"
              "    _cell_volume\n    _cell_length_a\n\n"
              "data_publication, required somewhere in the document: 1 item\n"
              "    _publ_author_name\n\n"
              "data_crystal, required in every block with crystal data: 1 item\n"
              "    _exptl_crystal_colour\n\n"
              "2 items stand under another heading or before any, not used.\n"
              "1 line was not understood and skipped.");
    EXPECT_EQ(QcbsCheckingPreferencesPage::mandatoryItemsText(dir.filePath("none.txt")),
              "There is no file " + dir.filePath("none.txt") + ".");

    QcbsCheckingPreferencesPage page;
    page.mandatoryField()->setFileName(path);
    page.showMandatoryItems();
    auto* shown = page.findChild<QPlainTextEdit*>("mandatory items text");
    ASSERT_NE(shown, nullptr);
    EXPECT_EQ(shown->toPlainText(), QcbsCheckingPreferencesPage::mandatoryItemsText(path));
}

}  // namespace
