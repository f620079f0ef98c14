#include <gtest/gtest.h>

#include <QMenu>
#include <QSignalSpy>

#include "GuiTestSupport.hpp"
#include "application/ORMAApplicationSettings.hpp"
#include "widgets/RecentFilesMenu.hpp"

namespace {

TEST(RecentFiles, NewestFirstWithoutDuplicatesUpToTheMaximum) {
    RecentFilesMenu recent;
    for (const char* file : {"/a.cif", "/b.cif", "", "/a.cif"}) recent.addFile(file);
    EXPECT_EQ(recent.files(), (QStringList{"/a.cif", "/b.cif"}));
    EXPECT_TRUE(recent.filename(2).isNull());
    EXPECT_TRUE(recent.filename(-1).isNull());

    const int maximum = RecentFilesMenu::MaximumEntries;
    for (int i = 0; i < maximum + 2; ++i) recent.addFile(QString("/f%1.cif").arg(i));
    ASSERT_EQ(recent.count(), maximum);
    EXPECT_EQ(recent.filename(0), QString("/f%1.cif").arg(maximum + 1));
    EXPECT_EQ(recent.filename(maximum - 1), "/f2.cif");
}

TEST(RecentFiles, TheListSurvivesInTheSettingsAndAShorterOneLeavesNoStaleEntry) {
    ScopedPrefsDir prefs;
    const auto save = [](const QStringList& files) {
        RecentFilesMenu recent;
        for (const QString& file : files) recent.addFile(file);
        recent.saveSettings();
    };
    const auto load = [] {
        RecentFilesMenu recent;
        recent.loadSettings();
        return recent.files();
    };
    save({"/1.cif", "/2.cif", "/3.cif"});
    EXPECT_EQ(load(), (QStringList{"/3.cif", "/2.cif", "/1.cif"}));
    save({"/only.cif"});
    EXPECT_EQ(load(), QStringList{"/only.cif"});
    EXPECT_EQ(ORMAApplicationSettings().readEntry("recent files/1"), "/only.cif");
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
    ASSERT_EQ(chosen.size(), 1);
    EXPECT_EQ(chosen.at(0).at(0).toInt(), 1);
    EXPECT_EQ(recent.selectedFromMenu(), subB);
    subA->actions().at(0)->trigger();
    EXPECT_EQ(chosen.at(1).at(0).toInt(), 0);
    EXPECT_EQ(recent.selectedFromMenu(), subA);
}

}  // namespace
