// SPDX-License-Identifier: GPL-3.0-or-later
// Switching dictionaries on and off, and the switches kept in the settings.
#include <gtest/gtest.h>

#include <QSettings>
#include <QSignalSpy>
#include <sstream>

#include "GuiTestSupport.hpp"
#include "base/ORMAApplicationSettings.hpp"
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
    void store(const QString& key, bool value) { ORMAApplicationSettings().writeEntry(key, value); }
    QVariant stored(const QString& key) const {
        return QSettings(prefs_.iniFile(), QSettings::IniFormat).value(key);
    }

    ScopedPrefsDir prefs_;
    THandle<CifConcreteDictionary> core_ = dictionaryNamed("cif_core.dic", "2.4");
    THandle<CifConcreteDictionary> extra_ = dictionaryNamed("extra.dic", "1.0");
    THandle<CifDictionaryPool> all_{new CifDictionaryPool()};
    QcbsDictionarySettings settings_;
};

TEST_F(DictionarySettings, ADictionaryIsEnabledUnlessItsNameAndVersionWereSwitchedOffAndIsReadOncePerPool) {
    store("dictionaries/extra.dic1.0", false);
    store("dictionaries/cif_core.dic2.3", false);  // an older version stays off, this one is new
    const THandle<CifDictionaryPool> enabled = settings_.loadSettings(all_);
    ASSERT_EQ(enabled->size(), 1u);
    EXPECT_TRUE(*enabled->begin() == core_);
    EXPECT_TRUE(settings_.dictionaryEnabled(core_));
    EXPECT_FALSE(settings_.dictionaryEnabled(extra_));
    EXPECT_EQ(all_->size(), 2u);

    // The same pool gives the same enabled pool, switches kept, settings unread.
    settings_.setDictionaryEnabled(extra_, true);
    store("dictionaries/cif_core.dic2.4", false);
    EXPECT_TRUE(settings_.loadSettings(all_) == enabled);
    EXPECT_TRUE(settings_.dictionaryEnabled(core_));
    EXPECT_TRUE(settings_.dictionaryEnabled(extra_));
    // Dictionaries that joined the pool later (from a directory added since)
    // give a new enabled pool: the switches kept, only the newcomers read.
    THandle<CifConcreteDictionary> late = dictionaryNamed("late.dic", "1");
    THandle<CifConcreteDictionary> off = dictionaryNamed("off.dic", "1");
    store("dictionaries/off.dic1", false);
    all_->insert(late);
    all_->insert(off);
    const THandle<CifDictionaryPool> grown = settings_.loadSettings(all_);
    EXPECT_FALSE(grown == enabled);
    QStringList names;
    for (const auto& dictionary : *grown) names << QString::fromStdString(dictionary->descriptor().name);
    EXPECT_EQ(names, (QStringList{"cif_core.dic", "extra.dic", "late.dic"}));
}

TEST_F(DictionarySettings, SwitchesAreSavedOnlyOnceMadeAndHoldInTheNextRun) {
    store("dictionaries/gone.dic9", false);
    settings_.loadSettings(all_);
    settings_.saveSettings();
    EXPECT_FALSE(settings_.changed());
    EXPECT_FALSE(stored("dictionaries/cif_core.dic2.4").isValid());

    // A check box switches its dictionary in the pool that checks use.
    QcbsDictionaryCheckBox box(nullptr, "cif_core.dic", core_);
    QSignalSpy spy(&box, &QcbsDictionaryCheckBox::setDictionaryEnabled);
    QObject::connect(&box, &QcbsDictionaryCheckBox::setDictionaryEnabled, &settings_,
                     &QcbsDictionarySettings::setDictionaryEnabled);
    box.setChecked(true);
    box.setChecked(false);
    box.setChecked(true);
    ASSERT_EQ(spy.count(), 3);
    EXPECT_TRUE(spy.at(1).at(0).value<HCifConcreteDictionary>() == core_);
    EXPECT_FALSE(spy.at(1).at(1).toBool());
    settings_.setDictionaryEnabled(extra_, false);
    EXPECT_EQ(settings_.loadSettings(all_)->size(), 1u);
    settings_.saveSettings();
    EXPECT_TRUE(settings_.changed());
    EXPECT_TRUE(stored("dictionaries/cif_core.dic2.4").toBool());
    EXPECT_FALSE(stored("dictionaries/extra.dic1.0").toBool());
    EXPECT_FALSE(stored("dictionaries/gone.dic9").toBool());
    EXPECT_TRUE(stored("dictionaries/gone.dic9").isValid());

    QcbsDictionarySettings nextRun;
    EXPECT_EQ(nextRun.loadSettings(all_)->size(), 1u);
    EXPECT_TRUE(nextRun.dictionaryEnabled(core_));
    EXPECT_FALSE(nextRun.dictionaryEnabled(extra_));
}

}  // namespace
