// SPDX-License-Identifier: GPL-3.0-or-later
// The Dictionaries page of the preferences: each dictionary switched on or off, where they are.
// sought.
#pragma once

#include <QList>
#include <QStringList>

#include "dictionaries/QcbsDictionaryLoader.hpp"
#include "dictionaries/QcbsDictionarySettings.hpp"
#include "preferences/QcbsPreferencesPage.hpp"
#include "support/THandle.hpp"

class QListWidget;
class QPushButton;
class QTreeWidget;
class QcbsDictionaryCheckBox;

// The Dictionaries page: one check box per dictionary the loader found,
// with its name, version, date and file; the directories searched for
// dictionaries, to which the user may add (searched by the next check);
// and "Check again now", which applies the preferences and checks the open
// documents at once. Switches and added directories take effect in apply().
class QcbsDictionaryPreferencesPage : public QcbsPreferencesPage {
    Q_OBJECT
public:
    QcbsDictionaryPreferencesPage(THandle<QcbsDictionaryLoader> loader,
                                  THandle<QcbsDictionarySettings> settings, const QString& programDirectory,
                                  QWidget* parent = nullptr);

    // Every dictionary enabled, no directory added.
    void restoreDefaults() override;
    // Switches the dictionaries whose boxes changed and saves the switches;
    // stores the added directories.
    void apply() override;
    // Lists the dictionaries of the loader and the directories anew.
    void refresh();

    QTreeWidget* dictionaryList() const { return list_; }
    QList<QcbsDictionaryCheckBox*> checkBoxes() const { return boxes_; }
    // The box of the dictionary with this name and version, or null.
    QcbsDictionaryCheckBox* checkBox(const QString& name, const QString& version) const;
    QListWidget* directoryList() const { return directories_; }
    QPushButton* checkAgainButton() const { return checkAgain_; }
    // The directories the user added, as the page holds them now.
    const QStringList& addedDirectories() const { return added_; }
    // Adds a directory to those searched (once apply() stores it); false
    // when it is searched already.
    bool addDirectory(const QString& path);

public slots:
    // "Add directory...": the directory dialog, then addDirectory().
    void chooseDirectory();
    // Takes the chosen added directory off the list.
    void removeDirectory();

signals:
    // Dictionaries were switched on or off: text is to be coloured anew.
    void dictionariesChanged();
    // "Check again now" was pressed.
    void checkAgainRequested();

private:
    void fillDictionaries();
    void fillDirectories();

    THandle<QcbsDictionaryLoader> loader_;
    THandle<QcbsDictionarySettings> settings_;
    QString programDirectory_;
    QStringList added_;
    QTreeWidget* list_ = nullptr;
    QList<QcbsDictionaryCheckBox*> boxes_;
    QListWidget* directories_ = nullptr;
    QPushButton* remove_ = nullptr;
    QPushButton* checkAgain_ = nullptr;
};
