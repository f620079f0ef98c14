// SPDX-License-Identifier: GPL-3.0-or-later
// The user's persistent settings: one flat key-value store in tessary.ini.
#pragma once

#include <QSettings>
#include <QString>
#include <QStringList>
#include <memory>

// The user's persistent settings: one flat key-value store, keys such as
// "window height" or "styles/Standard/size" ("/" makes a path). Kept in
// $TESSARYPREFS/tessary.ini when TESSARYPREFS is set, otherwise in the
// platform's configuration location for "Tessary". Make one object per batch
// of reads or writes; the store is saved when it is destroyed.
class ORMAApplicationSettings {
public:
    ORMAApplicationSettings();
    ~ORMAApplicationSettings();
    ORMAApplicationSettings(const ORMAApplicationSettings&) = delete;
    ORMAApplicationSettings& operator=(const ORMAApplicationSettings&) = delete;

    QString readEntry(const QString& key, const QString& def = QString());
    int readNumEntry(const QString& key, int def = 0);
    bool readBoolEntry(const QString& key, bool def = false);
    // A list of texts; an empty list when the key is missing.
    QStringList readListEntry(const QString& key);

    void writeEntry(const QString& key, const QString& value);
    void writeEntry(const QString& key, const char* value) { writeEntry(key, QString::fromUtf8(value)); }
    void writeEntry(const QString& key, int value);
    void writeEntry(const QString& key, bool value);
    void writeEntry(const QString& key, const QStringList& value);

    // The sub-keys stored under a key, such as the entries of a history list.
    QStringList entryList(const QString& key);

    // Whether the last read found its key (and, for numbers, a number).
    bool ok() const { return ok_; }
    void reset_ok() { ok_ = true; }

    // The file the store lives in.
    static QString fileName();

private:
    std::unique_ptr<QSettings> settings_;
    bool ok_ = true;
};
