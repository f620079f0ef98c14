// SPDX-License-Identifier: GPL-3.0-or-later
// Which dictionaries are enabled, kept in the settings, and the pool of the enabled ones.
#pragma once

#include <QObject>
#include <QString>

#include "cif/CifConcreteDictionary.hpp"
#include "cif/CifDictionaryPool.hpp"
#include "support/THandle.hpp"

// Which dictionaries are enabled: a pool of the enabled ones (the pool every
// check uses), kept in the settings under "dictionaries/" + name + version.
// A dictionary never switched off is enabled. One object exists per
// program, in the data shared by the main windows.
class QcbsDictionarySettings : public QObject {
    Q_OBJECT
public:
    QcbsDictionarySettings();
    ~QcbsDictionarySettings() override;

    // The pool of the enabled dictionaries of `all`. Asked again with the
    // same pool, it gives the same enabled pool, switches included, without
    // reading the settings again; dictionaries that joined `all` since are
    // added to it as their settings say.
    THandle<CifDictionaryPool> loadSettings(THandle<CifDictionaryPool> all);
    // Writes the enabled state of every dictionary of the pool of all, but
    // only once a dictionary was switched on or off.
    void saveSettings() const;
    bool dictionaryEnabled(THandle<CifConcreteDictionary> dictionary) const;

    bool changed() const { return changed_; }
    // The settings key of a dictionary: "dictionaries/" + name + version.
    static QString settingsKey(const CifConcreteDictionary& dictionary);

public slots:
    void setDictionaryEnabled(THandle<CifConcreteDictionary> dictionary, bool enabled);

private:
    bool changed_ = false;
    THandle<CifDictionaryPool> enabled_;
    THandle<CifDictionaryPool> all_;
    // How many dictionaries `all_` held when the settings were read.
    std::size_t allCount_ = 0;
};
