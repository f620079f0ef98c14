#include <gtest/gtest.h>

#include <QFile>

#include "GuiTestSupport.hpp"
#include "application/ORMAApplicationSettings.hpp"

namespace {

TEST(ApplicationSettings, EveryTypeRoundTripsThroughTheIniFile) {
    ScopedPrefsDir prefs;
    {
        ORMAApplicationSettings settings;
        settings.writeEntry("window height", 650);
        settings.writeEntry("reuse window", true);
        settings.writeEntry("template filename", QString("/tmp/a, b.cif"));
        settings.writeEntry("styles/Standard/family", "DejaVu Sans Mono");
        settings.writeEntry("negative", -3);
    }
    EXPECT_TRUE(QFile::exists(prefs.iniFile()));
    ORMAApplicationSettings settings;
    EXPECT_EQ(settings.readNumEntry("window height", 1), 650);
    EXPECT_TRUE(settings.readBoolEntry("reuse window", false));
    EXPECT_EQ(settings.readEntry("template filename", "x"), "/tmp/a, b.cif");
    EXPECT_EQ(settings.readEntry("styles/Standard/family"), "DejaVu Sans Mono");
    EXPECT_EQ(settings.readNumEntry("negative", 0), -3);
}

TEST(ApplicationSettings, MissingKeysGiveDefaultsAndClearOk) {
    ScopedPrefsDir prefs;
    ORMAApplicationSettings settings;
    settings.writeEntry("present", 5);
    EXPECT_EQ(settings.readNumEntry("present", 1), 5);
    EXPECT_TRUE(settings.ok());
    EXPECT_EQ(settings.readNumEntry("absent", 17), 17);
    EXPECT_FALSE(settings.ok());
    EXPECT_EQ(settings.readEntry("present"), "5");
    EXPECT_TRUE(settings.ok());
    EXPECT_TRUE(settings.readEntry("absent too").isNull());
    EXPECT_FALSE(settings.ok());
    EXPECT_TRUE(settings.readBoolEntry("absent", true));
    EXPECT_FALSE(settings.ok());
    settings.reset_ok();
    EXPECT_TRUE(settings.ok());
}

TEST(ApplicationSettings, TextThatIsNotANumberGivesTheDefault) {
    ScopedPrefsDir prefs;
    ORMAApplicationSettings settings;
    settings.writeEntry("size", QString("large"));
    EXPECT_EQ(settings.readNumEntry("size", 12), 12);
    EXPECT_FALSE(settings.ok());
    EXPECT_FALSE(settings.readBoolEntry("size", false));
    EXPECT_FALSE(settings.ok());
}

TEST(ApplicationSettings, EntryListGivesTheSubKeysOfAGroup) {
    ScopedPrefsDir prefs;
    {
        ORMAApplicationSettings settings;
        settings.writeEntry("find history/0", QString("_cell"));
        settings.writeEntry("find history/1", QString("loop_"));
        settings.writeEntry("find history/deeper/2", QString("x"));
        settings.writeEntry("other", 1);
    }
    ORMAApplicationSettings settings;
    QStringList keys = settings.entryList("find history");
    keys.sort();
    EXPECT_EQ(keys, (QStringList{"0", "1"}));
    EXPECT_TRUE(settings.entryList("nothing here").isEmpty());
}

TEST(ApplicationSettings, StoreFollowsTessaryPrefs) {
    ScopedPrefsDir prefs;
    EXPECT_EQ(ORMAApplicationSettings::fileName(), prefs.iniFile());
}

}  // namespace
