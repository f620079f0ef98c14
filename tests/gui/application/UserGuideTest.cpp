// SPDX-License-Identifier: GPL-3.0-or-later
// The user guide and the help pages name only menu entries and keys the main window has working.
#include <gtest/gtest.h>

#include <QDirIterator>
#include <QFile>
#include <QMenu>
#include <QMenuBar>
#include <QRegularExpression>
#include <QStatusBar>

#include "ApplicationTestSupport.hpp"
#include "DialogAnswerer.hpp"
#include "GuiTestSupport.hpp"
#include "editor/QcbsRichTextEdit.hpp"
#include "preferences/QcbsPreferencesDialog.hpp"

namespace {

// A menu or entry text as a page writes it: without the mnemonic mark and
// the dots of an entry that opens a dialog.
QString plain(QString text) {
    text.remove(u'&');
    text = text.trimmed();
    while (text.endsWith(u'.') || text.endsWith(QChar(0x2026))) text.chop(1);
    return text.trimmed();
}

QAction* entryOf(const QList<QAction*>& actions, const QString& name) {
    for (QAction* action : actions)
        if (!action->isSeparator() && plain(action->text()) == plain(name)) return action;
    return nullptr;
}

// Whether the entry does its work: the ones still to come only say so.
bool works(QcbsMainWindow& window, QAction* action) {
    if (action->menu() != nullptr) return true;
    const bool enabled = action->isEnabled();
    action->setEnabled(true);  // some wait for a document
    window.statusBar()->clearMessage();
    action->trigger();
    action->setEnabled(enabled);
    return !statusMessage(window).endsWith(" is not available yet.");
}

// What is wrong with each menu path ("Edit > Preferences > Checking") and
// key ("Ctrl+K") that a page names in bold: an entry, page or key the
// window does not have, or an entry that is not available yet.
QStringList problemsOf(const QString& html, QcbsMainWindow& window) {
    QStringList problems;
    static const QRegularExpression bold("<b>(.*?)</b>", QRegularExpression::DotMatchesEverythingOption);
    static const QRegularExpression key("^Ctrl\\+[A-Z]$");
    for (auto it = bold.globalMatch(html); it.hasNext();) {
        const QString named = it.next().captured(1).simplified().replace("&gt;", ">");
        if (key.match(named).hasMatch()) {
            QAction* action = nullptr;
            for (QAction* candidate : window.findChildren<QAction*>())
                if (candidate->shortcut() == QKeySequence(named)) action = candidate;
            if (action == nullptr)
                problems << named + ": no such key";
            else if (!works(window, action))
                problems << named + ": not available yet";
            continue;
        }
        const QStringList path = named.split(u'>');
        if (path.size() < 2) continue;
        QAction* menu = entryOf(window.menuBar()->actions(), path[0]);
        if (menu == nullptr || menu->menu() == nullptr) {
            problems << named + ": no such menu";
            continue;
        }
        QAction* entry = entryOf(menu->menu()->actions(), path[1]);
        if (entry == nullptr) {
            problems << named + ": no such entry";
            continue;
        }
        // A further part is an entry of a submenu or a page of the preferences.
        if (path.size() > 2) {
            const bool preferences = entry->objectName() == "editPrefs";
            const bool found = preferences ? QcbsPreferencesDialog::pageTitles().contains(plain(path[2]))
                               : entry->menu() != nullptr
                                   ? entryOf(entry->menu()->actions(), path[2]) != nullptr
                                   : false;
            if (!found || path.size() > 3) {
                problems << named + (preferences ? ": no such page" : ": no such entry");
                continue;
            }
        }
        if (!works(window, entry)) problems << named + ": not available yet";
    }
    return problems;
}

QString read(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

class UserGuide : public ::testing::Test {
protected:
    ~UserGuide() override {
        window_.currentEditor()->setModified(false);
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (auto* other = qobject_cast<QcbsMainWindow*>(widget); other && other != &window_)
                other->close();
    }

    ScopedPrefsDir prefs_;
    DialogAnswerer answers_;  // dialogs the entries open are cancelled
    QcbsMainWindow window_{buildTreeSharedData()};
};

TEST_F(UserGuide, TheCheckReportsEntriesPagesAndKeysTheWindowLacksOrHasNotBuiltYet) {
    QMenu* edit = window_.windowActions()->menu(QcbsMainWindowActions::EditMenu);
    edit->addAction("Working Thing");
    QAction* pending = edit->addAction("Pending Thing...");
    QObject::connect(pending, &QAction::triggered, &window_,
                     [this] { window_.statusBarMessage("Pending Thing is not available yet."); });
    const QString page =
        "<p><b>Edit &gt; Preferences</b>, <b>Edit &gt;\nPreferences &gt; Checking</b>, <b>File &gt; Recent "
        "Files</b>, <b>Edit &gt; Working Thing</b>, <b>Ctrl+K</b>, <b>Errors</b>;\n"
        "<b>Edit &gt; Frobnicate...</b>, <b>Edit &gt; Preferences &gt; Colours</b>, <b>Nowhere &gt; "
        "Thing</b>,"
        " <b>Edit &gt; Pending\n Thing</b>, <b>Ctrl+J</b>, <b>Edit &gt; Working Thing &gt; More</b></p>";
    EXPECT_EQ(
        problemsOf(page, window_),
        (QStringList{"Edit > Frobnicate...: no such entry", "Edit > Preferences > Colours: no such page",
                     "Nowhere > Thing: no such menu", "Edit > Pending Thing: not available yet",
                     "Ctrl+J: no such key", "Edit > Working Thing > More: no such entry"}));
}

TEST_F(UserGuide, TheGuideAndEveryHelpPageNameOnlyEntriesAndKeysThatWork) {
    QStringList pages{TESSARY_SOURCE_DIR "/docs/tessary.html"};
    for (QDirIterator it(TESSARY_SOURCE_DIR "/docs/html", {"*.html"}, QDir::Files,
                         QDirIterator::Subdirectories);
         it.hasNext();)
        pages << it.next();
    ASSERT_GT(pages.size(), 30);
    for (const QString& path : pages) {
        const QString html = read(path);
        ASSERT_FALSE(html.isEmpty()) << path.toStdString();
        const QStringList problems = problemsOf(html, window_);
        EXPECT_TRUE(problems.isEmpty()) << path.toStdString() << ": " << problems.join("; ").toStdString();
    }
}

}  // namespace
