#include <gtest/gtest.h>

#include <QMenu>
#include <QSignalSpy>

#include "GuiTestSupport.hpp"
#include "application/ORMAApplicationSettings.hpp"
#include "widgets/RecentFilesMenu.hpp"

namespace {

TEST(RecentFiles, NewestFirstWithoutDuplicatesUpToTheMaximum) {
    RecentFilesMenu recent;
    recent.addFile("/a.cif");
    recent.addFile("/b.cif");
    recent.addFile("");
    recent.addFile("/a.cif");  // moves up, not listed twice
    EXPECT_EQ(recent.files(), (QStringList{"/a.cif", "/b.cif"}));
    EXPECT_EQ(recent.filename(1), "/b.cif");
    EXPECT_TRUE(recent.filename(2).isNull());
    EXPECT_TRUE(recent.filename(-1).isNull());

    for (int i = 0; i < RecentFilesMenu::MaximumEntries + 2; ++i) recent.addFile(QString("/f%1.cif").arg(i));
    ASSERT_EQ(recent.count(), RecentFilesMenu::MaximumEntries);
    EXPECT_EQ(recent.filename(0), QString("/f%1.cif").arg(RecentFilesMenu::MaximumEntries + 1));
    EXPECT_EQ(recent.filename(RecentFilesMenu::MaximumEntries - 1), "/f2.cif");
}

TEST(RecentFiles, TheListSurvivesInTheSettingsAndAShorterListLeavesNoStaleEntry) {
    ScopedPrefsDir prefs;
    {
        RecentFilesMenu recent;
        for (const char* file : {"/1.cif", "/2.cif", "/3.cif"}) recent.addFile(file);
        recent.saveSettings();
    }
    {
        RecentFilesMenu recent;
        recent.loadSettings();
        EXPECT_EQ(recent.files(), (QStringList{"/3.cif", "/2.cif", "/1.cif"}));
    }
    {
        RecentFilesMenu recent;
        recent.addFile("/only.cif");
        recent.saveSettings();
    }
    RecentFilesMenu recent;
    recent.loadSettings();
    EXPECT_EQ(recent.files(), QStringList{"/only.cif"});
    ORMAApplicationSettings settings;
    EXPECT_EQ(settings.readEntry("recent files/1"), "/only.cif");
}

TEST(RecentFiles, EachSubMenuListsTheFilesAndReportsItsOwnChoice) {
    RecentFilesMenu recent;
    QMenu fileMenuA;
    QMenu fileMenuB;
    QMenu* subA = recent.addToMenu(&fileMenuA);
    QMenu* subB = recent.addToMenu(&fileMenuB);
    EXPECT_EQ(subA->title(), "&Recent Files");
    EXPECT_FALSE(subA->isEnabled());

    recent.addFile("/data/old.cif");
    recent.addFile("/data/R&D.cif");
    ASSERT_EQ(subB->actions().size(), 2);
    EXPECT_TRUE(subB->isEnabled());
    EXPECT_EQ(subB->actions().at(0)->text(), "&1 /data/R&&D.cif");
    EXPECT_EQ(subB->actions().at(1)->text(), "&2 /data/old.cif");

    QSignalSpy chosen(&recent, &RecentFilesMenu::fileSelected);
    subB->actions().at(1)->trigger();
    ASSERT_EQ(chosen.size(), 1);
    EXPECT_EQ(chosen.at(0).at(0).toInt(), 1);
    EXPECT_EQ(recent.selectedFromMenu(), subB);
    subA->actions().at(0)->trigger();
    EXPECT_EQ(chosen.at(1).at(0).toInt(), 0);
    EXPECT_EQ(recent.selectedFromMenu(), subA);
}

TEST(RecentFiles, AMenuThatIsGoneIsNoLongerUpdated) {
    RecentFilesMenu recent;
    {
        QMenu fileMenu;
        recent.addToMenu(&fileMenu);
    }
    recent.addFile("/after.cif");  // must not touch the deleted sub-menu
    EXPECT_EQ(recent.count(), 1);
}

}  // namespace
