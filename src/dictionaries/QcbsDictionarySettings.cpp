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
    // that grew (a directory searched since) gives a new enabled pool, so
    // that its users see the change: the old members, then the newcomers as
    // their settings say.
    const bool same = !all.is_null() && all == all_ && !enabled_.is_null();
    if (same && all->size() == allCount_) return enabled_;
    const std::size_t known = same ? allCount_ : 0;
    const THandle<CifDictionaryPool> previous = enabled_;
    enabled_ = THandle<CifDictionaryPool>(new CifDictionaryPool());
    if (same)
        for (const THandle<CifConcreteDictionary>& dictionary : *previous) enabled_->insert(dictionary);
    all_ = all;
    allCount_ = all.is_null() ? 0 : all->size();
    if (all.is_null()) return enabled_;
    ORMAApplicationSettings settings;
    std::size_t index = 0;
    for (const THandle<CifConcreteDictionary>& dictionary : *all) {
        if (index++ < known) continue;
        if (settings.readBoolEntry(settingsKey(*dictionary), true)) enabled_->insert(dictionary);
    }
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
