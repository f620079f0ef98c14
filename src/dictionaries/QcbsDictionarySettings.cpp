// SPDX-License-Identifier: GPL-3.0-or-later
// Which dictionaries are enabled, kept in the settings, and the pool of the enabled ones.
#include "dictionaries/QcbsDictionarySettings.hpp"

#include "base/ORMAApplicationSettings.hpp"

QcbsDictionarySettings::QcbsDictionarySettings() { setObjectName("DictionarySettings"); }

QcbsDictionarySettings::~QcbsDictionarySettings() = default;

QString QcbsDictionarySettings::settingsKey(const CifConcreteDictionary& dictionary) {
    return "dictionaries/" + QString::fromStdString(dictionary.descriptor().key());
}

THandle<CifDictionaryPool> QcbsDictionarySettings::loadSettings(THandle<CifDictionaryPool> all) {
    // The same pool keeps the switches made since (not yet saved). A pool
    // that grew is one the loader filled after finding nothing at first.
    if (!all.is_null() && all == all_ && all->size() == allCount_) return enabled_;
    all_ = all;
    allCount_ = all.is_null() ? 0 : all->size();
    enabled_ = THandle<CifDictionaryPool>(new CifDictionaryPool());
    if (all.is_null()) return enabled_;
    ORMAApplicationSettings settings;
    for (const THandle<CifConcreteDictionary>& dictionary : *all)
        if (settings.readBoolEntry(settingsKey(*dictionary), true)) enabled_->insert(dictionary);
    return enabled_;
}

void QcbsDictionarySettings::saveSettings() const {
    if (!changed_ || all_.is_null()) return;
    // Dictionaries not found in this run keep whatever their keys say.
    ORMAApplicationSettings settings;
    for (const THandle<CifConcreteDictionary>& dictionary : *all_)
        settings.writeEntry(settingsKey(*dictionary), dictionaryEnabled(dictionary));
}

bool QcbsDictionarySettings::dictionaryEnabled(THandle<CifConcreteDictionary> dictionary) const {
    return !enabled_.is_null() && enabled_->contains(dictionary);
}

void QcbsDictionarySettings::setDictionaryEnabled(THandle<CifConcreteDictionary> dictionary, bool enabled) {
    if (enabled_.is_null()) enabled_ = THandle<CifDictionaryPool>(new CifDictionaryPool());
    if (enabled)
        enabled_->insert(dictionary);
    else
        enabled_->erase(dictionary);
    changed_ = true;
}
