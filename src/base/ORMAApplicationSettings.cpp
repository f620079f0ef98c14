// SPDX-License-Identifier: GPL-3.0-or-later
// The user's persistent settings: one flat key-value store in tessary.ini.
#include "base/ORMAApplicationSettings.hpp"

#include <QDir>
#include <QStandardPaths>

namespace {

std::unique_ptr<QSettings> openStore() {
    const QString prefs = qEnvironmentVariable("TESSARYPREFS");
    if (!prefs.isEmpty()) {
        return std::make_unique<QSettings>(QDir(prefs).filePath("tessary.ini"), QSettings::IniFormat);
    }
    return std::make_unique<QSettings>(QSettings::IniFormat, QSettings::UserScope, "Tessary", "tessary");
}

}  // namespace

ORMAApplicationSettings::ORMAApplicationSettings() : settings_(openStore()) {}

ORMAApplicationSettings::~ORMAApplicationSettings() { settings_->sync(); }

QString ORMAApplicationSettings::fileName() { return openStore()->fileName(); }

QString ORMAApplicationSettings::readEntry(const QString& key, const QString& def) {
    const QVariant value = settings_->value(key);
    ok_ = value.isValid();
    return ok_ ? value.toString() : def;
}

int ORMAApplicationSettings::readNumEntry(const QString& key, int def) {
    const QVariant value = settings_->value(key);
    bool converted = false;
    const int number = value.isValid() ? value.toString().trimmed().toInt(&converted) : 0;
    ok_ = converted;
    return converted ? number : def;
}

bool ORMAApplicationSettings::readBoolEntry(const QString& key, bool def) {
    const QVariant value = settings_->value(key);
    if (!value.isValid()) {
        ok_ = false;
        return def;
    }
    const QString text = value.toString().trimmed().toLower();
    ok_ = true;
    if (text == "true" || text == "1") return true;
    if (text == "false" || text == "0") return false;
    ok_ = false;
    return def;
}

QStringList ORMAApplicationSettings::readListEntry(const QString& key) {
    const QVariant value = settings_->value(key);
    ok_ = value.isValid();
    // An INI file gives a one-element list back as a plain text.
    return ok_ ? value.toStringList() : QStringList();
}

void ORMAApplicationSettings::writeEntry(const QString& key, const QString& value) {
    settings_->setValue(key, value);
}

void ORMAApplicationSettings::writeEntry(const QString& key, int value) { settings_->setValue(key, value); }

void ORMAApplicationSettings::writeEntry(const QString& key, bool value) { settings_->setValue(key, value); }

void ORMAApplicationSettings::writeEntry(const QString& key, const QStringList& value) {
    settings_->setValue(key, value);
}

QStringList ORMAApplicationSettings::entryList(const QString& key) {
    settings_->beginGroup(key);
    QStringList keys = settings_->childKeys();
    settings_->endGroup();
    return keys;
}
