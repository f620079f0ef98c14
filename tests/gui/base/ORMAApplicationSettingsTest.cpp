// SPDX-License-Identifier: GPL-3.0-or-later
// The settings store: every type round-trips through tessary.ini; missing keys give defaults.
#include <gtest/gtest.h>

#include <QFile>

#include "GuiTestSupport.hpp"
#include "base/ORMAApplicationSettings.hpp"

namespace {

TEST(ApplicationSettings, EveryTypeRoundTripsThroughTheIniFileInTessaryPrefs) {
    ScopedPrefsDir prefs;
    {
        ORMAApplicationSettings settings;
        settings.writeEntry("window height", -650);
        settings.writeEntry("reuse window", true);
        settings.writeEntry("template filename", QString("/tmp/a, b.cif"));
        settings.writeEntry("find history/0", QString("_cell"));
        settings.writeEntry("find history/1", QString("loop_"));
        settings.writeEntry("find history/deeper/2", QString("x"));
    }
    EXPECT_EQ(ORMAApplicationSettings::fileName(), prefs.iniFile());
    EXPECT_TRUE(QFile::exists(prefs.iniFile()));
    ORMAApplicationSettings settings;
    EXPECT_EQ(settings.readNumEntry("window height", 1), -650);
    EXPECT_TRUE(settings.readBoolEntry("reuse window", false));
    EXPECT_EQ(settings.readEntry("template filename", "x"), "/tmp/a, b.cif");
    EXPECT_TRUE(settings.ok());
    QStringList keys = settings.entryList("find history");
    keys.sort();
    EXPECT_EQ(keys, (QStringList{"0", "1"}));
    EXPECT_TRUE(settings.entryList("nothing here").isEmpty());
}

TEST(ApplicationSettings, MissingOrUnreadableKeysGiveTheDefaultAndClearOkUntilReset) {
    ScopedPrefsDir prefs;
    ORMAApplicationSettings settings;
    settings.writeEntry("size", QString("large"));
    EXPECT_EQ(settings.readEntry("size"), "large");
    EXPECT_TRUE(settings.ok());
    EXPECT_EQ(settings.readNumEntry("absent", 17), 17);
    EXPECT_FALSE(settings.ok());
    EXPECT_EQ(settings.readEntry("size"), "large");
    EXPECT_TRUE(settings.ok()) << "every read sets ok() afresh";
    EXPECT_TRUE(settings.readEntry("absent").isNull());
    EXPECT_FALSE(settings.ok());
    EXPECT_TRUE(settings.readBoolEntry("absent", true));
    EXPECT_EQ(settings.readNumEntry("size", 12), 12) << "not a number";
    EXPECT_FALSE(settings.ok());
    EXPECT_FALSE(settings.readBoolEntry("size", false));
    EXPECT_FALSE(settings.ok());
    settings.reset_ok();
    EXPECT_TRUE(settings.ok());
}

}  // namespace
