// SPDX-License-Identifier: GPL-3.0-or-later
// Helpers of the dictionary tests: a small DDL1 file written, an environment variable set.
#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QString>
#include <QStringList>

#include "GuiTestSupport.hpp"

// Writes a small DDL1 dictionary that defines the given data names (all of
// category "test", numbers).
inline void writeDictionary(const QString& path, const QString& name, const QString& version,
                            const QStringList& dataNames = {"_test_value"}) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) return;
    QByteArray text = "data_on_this_dictionary\n    _dictionary_name " + name.toLatin1() +
                      "\n    _dictionary_version " + version.toLatin1() +
                      "\n    _dictionary_update 2024-01-01\n";
    for (const QString& dataName : dataNames) {
        text += "\ndata_" + dataName.mid(1).toLatin1() + "\n    _name '" + dataName.toLatin1() +
                "'\n    _category test\n    _type numb\n";
    }
    file.write(text);
}
