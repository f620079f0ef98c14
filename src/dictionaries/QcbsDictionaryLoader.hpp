// SPDX-License-Identifier: GPL-3.0-or-later
// Finds the dictionary files and reads them, once, into one pool of all dictionaries.
#pragma once

#include <QHash>
#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>

#include "cif/CifDictionaryPool.hpp"
#include "cif/CifErrorContainer.hpp"
#include "support/THandle.hpp"

// Finds the dictionary files (*.dic) in the dictionary directories and reads
// them, once, into one pool of all dictionaries. The directories named by
// TESSARY_DICTIONARIES (separated by ":") come first, then those the user
// added in the preferences, then those next to the program. One loader
// exists per program, in the data shared by the main windows.
class QcbsDictionaryLoader : public QObject {
    Q_OBJECT
public:
    QcbsDictionaryLoader();
    ~QcbsDictionaryLoader() override;

    // The pool of all dictionaries. The files are read by the first call
    // that reads at least one cleanly; until then every call searches again.
    // Afterwards a call reads only directories it has not searched yet (one
    // the user added since), so new files in a searched directory wait for
    // the next start. A dictionary with errors is reported and left out.
    THandle<CifDictionaryPool> load(const QString& programDirectory);
    // The pool as it stands, without a search.
    const THandle<CifDictionaryPool>& pool() const { return pool_; }
    // The file a dictionary of the pool was read from; empty for others.
    QString fileName(const THandle<CifConcreteDictionary>& dictionary) const;
    // The errors of every dictionary that could not be used.
    THandle<CifErrorContainer> errors() const { return errors_; }
    // Whether a dictionary has been read cleanly.
    bool loaded() const { return loaded_; }

    // The directories load() searches, in order, normalised, each once.
    static QStringList searchDirectories(const QString& programDirectory);
    // The same with `added` in place of the directories the user added.
    static QStringList searchDirectories(const QString& programDirectory, const QStringList& added);
    // The directories the user added, kept in the settings under
    // "dictionary directories" (a list of texts).
    static QStringList addedDirectories();
    static void setAddedDirectories(const QStringList& directories);
    static const char* addedDirectoriesKey() { return "dictionary directories"; }
    // The environment variable naming further dictionary directories.
    static const char* environmentVariable() { return "TESSARY_DICTIONARIES"; }

signals:
    // One progress line for the output pane; the loader always sends false.
    void outputMessageRequest(const QString& message, bool flag);

private:
    void readDirectory(const QString& path);
    void readFile(const QString& path);

    THandle<CifDictionaryPool> pool_;
    THandle<CifErrorContainer> errors_;
    bool loaded_ = false;
    QSet<QString> searched_;
    QHash<const CifConcreteDictionary*, QString> files_;
};
