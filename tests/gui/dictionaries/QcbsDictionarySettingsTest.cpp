#include <gtest/gtest.h>

#include <QSettings>
#include <QSignalSpy>
#include <sstream>

#include "DictionaryTestSupport.hpp"
#include "GuiTestSupport.hpp"
#include "application/ORMAApplicationSettings.hpp"
#include "dictionaries/QcbsDictionaryCheckBox.hpp"
#include "dictionaries/QcbsDictionarySettings.hpp"

namespace {

THandle<CifConcreteDictionary> dictionaryNamed(const std::string& name, const std::string& version) {
    std::istringstream text("data_on_this_dictionary\n _dictionary_name " + name + "\n _dictionary_version " +
                            version + "\n\ndata_test_value\n _name '_test_value'\n _type numb\n");
    THandle<CifConcreteDictionary> dictionary(new CifConcreteDictionary());
    THandle<CifErrorContainer> errors(new CifErrorContainer());
    dictionary->read(text, errors);
    EXPECT_TRUE(errors->empty());
    return dictionary;
}

class DictionarySettings : public ::testing::Test {
protected:
    DictionarySettings() {
        all_->insert(core_);
        all_->insert(extra_);
    }

    static void store(const QString& key, bool value) {
        ORMAApplicationSettings settings;
        settings.writeEntry(key, value);
    }
    QStringList storedKeys() const {
        QSettings ini(prefs_.iniFile(), QSettings::IniFormat);
        ini.beginGroup("dictionaries");
        return ini.childKeys();
    }

    ScopedPrefsDir prefs_;
    THandle<CifConcreteDictionary> core_ = dictionaryNamed("cif_core.dic", "2.4");
    THandle<CifConcreteDictionary> extra_ = dictionaryNamed("extra.dic", "1.0");
    THandle<CifDictionaryPool> all_{new CifDictionaryPool()};
    QcbsDictionarySettings settings_;
};

TEST_F(DictionarySettings, ADictionaryIsEnabledUnlessItsNameAndVersionWereSwitchedOff) {
    EXPECT_EQ(settings_.objectName(), "DictionarySettings");
    EXPECT_EQ(QcbsDictionarySettings::settingsKey(*core_), "dictionaries/cif_core.dic2.4");
    store("dictionaries/extra.dic1.0", false);
    store("dictionaries/cif_core.dic2.3", false);  // an older version stays off, this one is new
    const THandle<CifDictionaryPool> enabled = settings_.loadSettings(all_);
    ASSERT_EQ(enabled->size(), 1u);
    EXPECT_TRUE(*enabled->begin() == core_);
    EXPECT_TRUE(settings_.dictionaryEnabled(core_));
    EXPECT_FALSE(settings_.dictionaryEnabled(extra_));
    EXPECT_EQ(all_->size(), 2u);
}

TEST_F(DictionarySettings, TheSamePoolGivesTheSameEnabledPoolWithItsUnsavedSwitches) {
    const THandle<CifDictionaryPool> first = settings_.loadSettings(all_);
    settings_.setDictionaryEnabled(extra_, false);
    store("dictionaries/cif_core.dic2.4", false);  // not read again
    const THandle<CifDictionaryPool> second = settings_.loadSettings(all_);
    EXPECT_TRUE(first == second);
    EXPECT_TRUE(settings_.dictionaryEnabled(core_));
    EXPECT_FALSE(settings_.dictionaryEnabled(extra_));

    // A pool the loader filled later (it found nothing at first) is read anew.
    THandle<CifConcreteDictionary> late = dictionaryNamed("late.dic", "1");
    all_->insert(late);
    const THandle<CifDictionaryPool> third = settings_.loadSettings(all_);
    EXPECT_FALSE(third == first);
    EXPECT_TRUE(settings_.dictionaryEnabled(late));
    EXPECT_FALSE(settings_.dictionaryEnabled(core_));
}

TEST_F(DictionarySettings, NothingIsWrittenUntilADictionaryIsSwitched) {
    settings_.loadSettings(all_);
    settings_.saveSettings();
    EXPECT_TRUE(storedKeys().isEmpty());
    EXPECT_FALSE(settings_.changed());
}

TEST_F(DictionarySettings, SavedSwitchesHoldInTheNextRunAndOtherKeysStayAsTheyWere) {
    store("dictionaries/gone.dic9", false);
    settings_.loadSettings(all_);
    settings_.setDictionaryEnabled(core_, false);
    settings_.setDictionaryEnabled(core_, true);
    settings_.setDictionaryEnabled(extra_, false);
    settings_.saveSettings();
    EXPECT_TRUE(settings_.changed());
    QSettings ini(prefs_.iniFile(), QSettings::IniFormat);
    EXPECT_EQ(ini.value("dictionaries/cif_core.dic2.4").toBool(), true);
    EXPECT_EQ(ini.value("dictionaries/extra.dic1.0").toBool(), false);
    EXPECT_EQ(ini.value("dictionaries/gone.dic9").toBool(), false);

    QcbsDictionarySettings nextRun;
    const THandle<CifDictionaryPool> enabled = nextRun.loadSettings(all_);
    EXPECT_TRUE(nextRun.dictionaryEnabled(core_));
    EXPECT_FALSE(nextRun.dictionaryEnabled(extra_));
    EXPECT_EQ(enabled->size(), 1u);
}

TEST_F(DictionarySettings, ACheckBoxSwitchesItsDictionaryInTheEnabledPool) {
    const THandle<CifDictionaryPool> enabled = settings_.loadSettings(all_);
    QcbsDictionaryCheckBox box(nullptr, "cif_core.dic", core_);
    EXPECT_EQ(box.objectName(), "cif_core.dic");
    EXPECT_TRUE(box.text().isEmpty());
    QSignalSpy spy(&box, &QcbsDictionaryCheckBox::setDictionaryEnabled);
    QObject::connect(&box, &QcbsDictionaryCheckBox::setDictionaryEnabled, &settings_,
                     &QcbsDictionarySettings::setDictionaryEnabled);
    box.setChecked(true);
    box.setChecked(false);
    ASSERT_EQ(spy.count(), 2);
    EXPECT_TRUE(spy.at(0).at(0).value<HCifConcreteDictionary>() == core_);
    EXPECT_FALSE(spy.at(1).at(1).toBool());
    EXPECT_FALSE(settings_.dictionaryEnabled(core_));
    EXPECT_TRUE(settings_.changed());
    // The pool that checks use is the same object, switched in place.
    EXPECT_TRUE(settings_.loadSettings(all_) == enabled);
    EXPECT_EQ(enabled->size(), 1u);
}

}  // namespace
