// SPDX-License-Identifier: GPL-3.0-or-later
// The list of recently opened files, shown as a sub-menu and kept in the settings.
#include "widgets/RecentFilesMenu.hpp"

#include <QAction>
#include <QMenu>

#include "base/ORMAApplicationSettings.hpp"

RecentFilesMenu::RecentFilesMenu(QObject* parent) : QObject(parent) {}

RecentFilesMenu::~RecentFilesMenu() = default;

void RecentFilesMenu::addFile(const QString& filename) {
    if (filename.isEmpty()) return;
    files_.removeAll(filename);
    files_.prepend(filename);
    while (files_.size() > MaximumEntries) files_.removeLast();
    updateMenus();
}

QString RecentFilesMenu::filename(int index) const {
    return index >= 0 && index < files_.size() ? files_.at(index) : QString();
}

QMenu* RecentFilesMenu::addToMenu(QMenu* parent, const QString& title) {
    QMenu* menu = parent->addMenu(title);
    menus_.append(menu);
    fillMenu(menu);
    return menu;
}

void RecentFilesMenu::loadSettings() {
    ORMAApplicationSettings settings;
    files_.clear();
    for (int index = 0; index < MaximumEntries; ++index) {
        const QString file = settings.readEntry(settingsKey(index));
        if (!file.isEmpty() && !files_.contains(file)) files_.append(file);
    }
    updateMenus();
}

void RecentFilesMenu::saveSettings() const {
    ORMAApplicationSettings settings;
    // Unused places are written empty so that a shorter list leaves no stale entry.
    for (int index = 0; index < MaximumEntries; ++index)
        settings.writeEntry(settingsKey(index), filename(index));
}

void RecentFilesMenu::fillMenu(QMenu* menu) {
    menu->clear();
    for (int index = 0; index < files_.size(); ++index) {
        QString label = files_.at(index);
        label.replace("&", "&&");  // a file name's "&" is no accelerator mark
        QAction* action = menu->addAction(QString("&%1 %2").arg(index + 1).arg(label));
        connect(action, &QAction::triggered, this, [this, menu, index] {
            selectedFrom_ = menu;
            emit fileSelected(index);
        });
    }
    menu->setEnabled(!files_.isEmpty());
}

void RecentFilesMenu::updateMenus() {
    menus_.removeAll(QPointer<QMenu>());
    for (const QPointer<QMenu>& menu : menus_) fillMenu(menu);
}
