// SPDX-License-Identifier: GPL-3.0-or-later
// The list of recently opened files, shown as a sub-menu and kept in the settings.
#pragma once

#include <QList>
#include <QMenu>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>

// The list of recently opened files, newest first, shown as a sub-menu in
// any number of menus (one per main window) and kept in the settings under
// "recent files/1", "recent files/2", ... Choosing an entry emits
// fileSelected with its index; selectedFromMenu() tells which sub-menu it was
// chosen in, so that each window answers only its own.
class RecentFilesMenu : public QObject {
    Q_OBJECT
public:
    static constexpr int MaximumEntries = 8;

    explicit RecentFilesMenu(QObject* parent = nullptr);
    ~RecentFilesMenu() override;

    // Puts the file first; a file already listed moves up, and the oldest
    // entry drops off beyond MaximumEntries. An empty name is ignored.
    void addFile(const QString& filename);
    // The file of entry `index`, or a null text when there is none.
    QString filename(int index) const;
    int count() const { return static_cast<int>(files_.size()); }
    const QStringList& files() const { return files_; }

    // Adds a sub-menu listing the files to `parent` (which owns it) and keeps
    // it up to date; returns it.
    QMenu* addToMenu(QMenu* parent, const QString& title = "&Recent Files");
    // The sub-menu of the last choice, or null.
    QMenu* selectedFromMenu() const { return selectedFrom_; }

    void loadSettings();
    void saveSettings() const;

    static QString settingsKey(int index) { return "recent files/" + QString::number(index + 1); }

signals:
    void fileSelected(int index);

private:
    void fillMenu(QMenu* menu);
    void updateMenus();

    QStringList files_;
    QList<QPointer<QMenu>> menus_;
    QPointer<QMenu> selectedFrom_;
};
