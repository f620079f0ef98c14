// SPDX-License-Identifier: GPL-3.0-or-later
// The recent-files list: newest first, kept in the settings, one choice per sub-menu.
#include <gtest/gtest.h>

#include <QMenu>
#include <QSignalSpy>

#include "GuiTestSupport.hpp"
#include "widgets/RecentFilesMenu.hpp"

namespace {

TEST(RecentFiles, NewestFirstWithoutDuplicatesUpToTheMaximumAndSavedWithoutStaleEntries) {
    ScopedPrefsDir prefs;
    {
        RecentFilesMenu recent;
        for (const char* file : {"/a.cif", "/b.cif", "", "/a.cif"}) recent.addFile(file);
        EXPECT_EQ(recent.files(), (QStringList{"/a.cif", "/b.cif"}));
        EXPECT_TRUE(recent.filename(2).isNull() && recent.filename(-1).isNull());
        for (int i = 0; i < RecentFilesMenu::MaximumEntries + 2; ++i)
            recent.addFile(QString("/f%1.cif").arg(i));
        ASSERT_EQ(recent.count(), RecentFilesMenu::MaximumEntries);
        EXPECT_EQ(recent.filename(RecentFilesMenu::MaximumEntries - 1), "/f2.cif");
        recent.saveSettings();
    }
    {
        RecentFilesMenu recent;
        recent.addFile("/only.cif");
        recent.saveSettings();  // over a longer list
    }
    RecentFilesMenu recent;
    recent.loadSettings();
    EXPECT_EQ(recent.files(), QStringList{"/only.cif"});
}

TEST(RecentFiles, EverySubMenuListsTheFilesAndReportsItsOwnChoice) {
    RecentFilesMenu recent;
    QMenu fileMenuA;
    QMenu fileMenuB;
    QMenu* subA = recent.addToMenu(&fileMenuA);
    QMenu* subB = recent.addToMenu(&fileMenuB);
    {
        QMenu gone;
        recent.addToMenu(&gone);
    }
    EXPECT_EQ(subA->title(), "&Recent Files");
    EXPECT_FALSE(subA->isEnabled());

    recent.addFile("/data/old.cif");
    recent.addFile("/data/R&D.cif");  // the deleted sub-menu is not touched
    ASSERT_EQ(subB->actions().size(), 2);
    EXPECT_TRUE(subB->isEnabled());
    EXPECT_EQ(subB->actions().at(0)->text(), "&1 /data/R&&D.cif");
    EXPECT_EQ(subB->actions().at(1)->text(), "&2 /data/old.cif");

    QSignalSpy chosen(&recent, &RecentFilesMenu::fileSelected);
    subB->actions().at(1)->trigger();
    EXPECT_EQ(recent.selectedFromMenu(), subB);
    subA->actions().at(0)->trigger();
    EXPECT_EQ(recent.selectedFromMenu(), subA);
    ASSERT_EQ(chosen.size(), 2);
    EXPECT_EQ(chosen.at(0).at(0).toInt(), 1);
    EXPECT_EQ(chosen.at(1).at(0).toInt(), 0);
}

}  // namespace
