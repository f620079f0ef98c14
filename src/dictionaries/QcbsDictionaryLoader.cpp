// SPDX-License-Identifier: GPL-3.0-or-later
// Finds the dictionary files and reads them, once, into one pool of all dictionaries.
#include "dictionaries/QcbsDictionaryLoader.hpp"

#include <QDir>
#include <QFile>

#include "base/ORMAApplicationSettings.hpp"
#include "base/ORMALogQString.hpp"
#include "cif/CifConcreteDictionary.hpp"
#include "support/ORMALog.hpp"

QcbsDictionaryLoader::QcbsDictionaryLoader()
    : pool_(new CifDictionaryPool()), errors_(new CifErrorContainer()) {}

QcbsDictionaryLoader::~QcbsDictionaryLoader() = default;

QStringList QcbsDictionaryLoader::searchDirectories(const QString& programDirectory) {
    return searchDirectories(programDirectory, addedDirectories());
}

QStringList QcbsDictionaryLoader::searchDirectories(const QString& programDirectory,
                                                    const QStringList& added) {
    QStringList candidates;
    const QString named = qEnvironmentVariable(environmentVariable());
    for (const QString& directory : named.split(':', Qt::SkipEmptyParts)) candidates << directory;
    candidates << added;
    // Beside the program, installed under a prefix (bin/../share/tessary),
    // then in a development tree or an application bundle.
    for (const char* suffix : {"/dict", "/../share/tessary/dict", "/../../dict", "/../Resources/dict",
                               "/../../../libCif/dictionaries", "/../../libCif/dictionaries"})
        candidates << programDirectory + suffix;

    QStringList directories;
    for (const QString& candidate : candidates) {
        // A directory named twice would give each of its dictionaries twice.
        const QString path = QDir::cleanPath(candidate);
        if (!directories.contains(path)) directories << path;
    }
    return directories;
}

QStringList QcbsDictionaryLoader::addedDirectories() {
    ORMAApplicationSettings settings;
    QStringList directories = settings.readListEntry(addedDirectoriesKey());
    directories.removeAll(QString());
    return directories;
}

void QcbsDictionaryLoader::setAddedDirectories(const QStringList& directories) {
    ORMAApplicationSettings settings;
    settings.writeEntry(addedDirectoriesKey(), directories);
}

THandle<CifDictionaryPool> QcbsDictionaryLoader::load(const QString& programDirectory) {
    for (const QString& path : searchDirectories(programDirectory)) {
        // Once a dictionary is in, a directory is read once.
        if (loaded_ && searched_.contains(path)) continue;
        readDirectory(path);
        searched_.insert(path);
    }
    return pool_;
}

QString QcbsDictionaryLoader::fileName(const THandle<CifConcreteDictionary>& dictionary) const {
    return files_.value(dictionary.get());
}

void QcbsDictionaryLoader::readDirectory(const QString& path) {
    debugLine(1, "QcbsDictionaryLoader - Searching for dictionaries in: " + path);
    const QDir directory(path, "*.dic", QDir::Name | QDir::IgnoreCase, QDir::Files | QDir::Readable);
    if (!directory.exists()) return;
    for (const QString& name : directory.entryList()) readFile(directory.filePath(name));
}

void QcbsDictionaryLoader::readFile(const QString& path) {
    debugLine(1, "QcbsDictionaryLoader - Dictionary found in: " + path);
    THandle<CifConcreteDictionary> dictionary(new CifConcreteDictionary());
    THandle<CifErrorContainer> errors(new CifErrorContainer());
    std::vector<std::string> directories;
    for (const QString& directory : searched_)
        directories.push_back(QFile::encodeName(directory).toStdString());
    dictionary->set_import_directories(std::move(directories));
    dictionary->read_file(QFile::encodeName(path).toStdString(), errors, nullptr);
    if (!errors->empty()) {
        emit outputMessageRequest("Errors loading dictionary: " + path, false);
        for (const CifError& error : *errors) {
            errors_->add(error);
            emit outputMessageRequest(QString::fromStdString(error.complete_message()), false);
        }
        return;
    }
    // The attribute dictionary of DDLm itself lies beside the core dictionary; nothing is checked against it.
    if (!dictionary->descriptor().defines_data_names()) return;
    emit outputMessageRequest("Loaded dictionary: " + path, false);
    loaded_ = true;
    pool_->insert(dictionary);
    files_.insert(dictionary.get(), path);
}
