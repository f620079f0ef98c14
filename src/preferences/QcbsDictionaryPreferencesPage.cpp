// SPDX-License-Identifier: GPL-3.0-or-later
// The Dictionaries page of the preferences: each dictionary switched on or off, where they are.
// sought.
#include "preferences/QcbsDictionaryPreferencesPage.hpp"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "dictionaries/QcbsDictionaryCheckBox.hpp"

namespace {

enum Column { UseColumn, NameColumn, VersionColumn, DateColumn, FileColumn };

QString q(const std::string& text) { return QString::fromStdString(text); }

}  // namespace

QcbsDictionaryPreferencesPage::QcbsDictionaryPreferencesPage(THandle<QcbsDictionaryLoader> loader,
                                                             THandle<QcbsDictionarySettings> settings,
                                                             const QString& programDirectory, QWidget* parent)
    : QcbsPreferencesPage("Dictionaries", parent),
      loader_(std::move(loader)),
      settings_(std::move(settings)),
      programDirectory_(programDirectory),
      added_(QcbsDictionaryLoader::addedDirectories()) {
    auto* layout = new QVBoxLayout(this);
    auto* intro = new QLabel(
        "Every check uses the dictionaries switched on here. A dictionary stays on until it is switched "
        "off; a new version of one starts on.",
        this);
    intro->setWordWrap(true);
    layout->addWidget(intro);

    list_ = new QTreeWidget(this);
    list_->setObjectName("dictionaries");
    list_->setRootIsDecorated(false);
    list_->setHeaderLabels({"Use", "Name", "Version", "Date", "File"});
    list_->header()->setStretchLastSection(true);
    list_->setSelectionMode(QAbstractItemView::NoSelection);
    layout->addWidget(list_, 2);

    layout->addWidget(
        new QLabel("Dictionaries (*.dic) are read from these directories, in this order:", this));
    directories_ = new QListWidget(this);
    directories_->setObjectName("dictionary directories");
    layout->addWidget(directories_, 1);

    auto* buttons = new QHBoxLayout;
    auto* add = new QPushButton("&Add directory...", this);
    add->setObjectName("add directory");
    add->setToolTip("A directory of your own, searched from the next check on.");
    remove_ = new QPushButton("&Remove directory", this);
    remove_->setObjectName("remove directory");
    remove_->setEnabled(false);
    checkAgain_ = new QPushButton("Chec&k again now", this);
    checkAgain_->setObjectName("check again");
    checkAgain_->setToolTip(
        "Take these preferences now (as OK does, keeping this dialog open), look for dictionaries in the "
        "directories and check the open documents again.");
    buttons->addWidget(add);
    buttons->addWidget(remove_);
    buttons->addStretch(1);
    buttons->addWidget(checkAgain_);
    layout->addLayout(buttons);

    connect(add, &QPushButton::clicked, this, &QcbsDictionaryPreferencesPage::chooseDirectory);
    connect(remove_, &QPushButton::clicked, this, &QcbsDictionaryPreferencesPage::removeDirectory);
    connect(checkAgain_, &QPushButton::clicked, this, &QcbsDictionaryPreferencesPage::checkAgainRequested);
    connect(directories_, &QListWidget::currentItemChanged, this, [this](QListWidgetItem* item) {
        remove_->setEnabled(item != nullptr && added_.contains(item->data(Qt::UserRole).toString()));
    });
    refresh();
}

void QcbsDictionaryPreferencesPage::refresh() {
    fillDictionaries();
    fillDirectories();
}

void QcbsDictionaryPreferencesPage::fillDictionaries() {
    list_->clear();
    boxes_.clear();
    const THandle<CifDictionaryPool> all = loader_->pool();
    // The enabled set is read against the loader's pool, as every check reads it.
    settings_->loadSettings(all);
    if (all->empty()) {
        auto* item = new QTreeWidgetItem(list_);
        item->setText(
            UseColumn,
            "No dictionary found: copy one (such as cif_core.dic) into a directory below, or add one.");
        item->setFirstColumnSpanned(true);
        return;
    }
    for (const THandle<CifConcreteDictionary>& dictionary : *all) {
        const CifDictionaryDescriptor& descriptor = dictionary->descriptor();
        auto* item = new QTreeWidgetItem(list_);
        item->setText(NameColumn, q(descriptor.name));
        item->setText(VersionColumn, q(descriptor.version));
        item->setText(DateColumn, q(descriptor.date));
        const QString file = loader_->fileName(dictionary);
        item->setText(FileColumn, file);
        item->setToolTip(FileColumn, file);
        auto* box = new QcbsDictionaryCheckBox(list_, q(descriptor.key()), dictionary);
        box->setChecked(settings_->dictionaryEnabled(dictionary));
        box->setToolTip("Check documents against " + q(descriptor.text()));
        list_->setItemWidget(item, UseColumn, box);
        boxes_ << box;
    }
    for (int column = UseColumn; column < FileColumn; ++column) list_->resizeColumnToContents(column);
}

void QcbsDictionaryPreferencesPage::fillDirectories() {
    directories_->clear();
    for (const QString& path : QcbsDictionaryLoader::searchDirectories(programDirectory_, added_)) {
        const bool own = added_.contains(path);
        const bool exists = QFileInfo(path).isDir();
        auto* item = new QListWidgetItem(path + (own ? "  (added)" : QString()), directories_);
        item->setData(Qt::UserRole, path);
        if (!exists) {
            item->setForeground(palette().color(QPalette::Disabled, QPalette::Text));
            item->setToolTip("There is no such directory.");
        }
    }
    remove_->setEnabled(false);
}

QcbsDictionaryCheckBox* QcbsDictionaryPreferencesPage::checkBox(const QString& name,
                                                                const QString& version) const {
    for (QcbsDictionaryCheckBox* box : boxes_) {
        const CifDictionaryDescriptor& descriptor = box->dictionary()->descriptor();
        if (q(descriptor.name) == name && q(descriptor.version) == version) return box;
    }
    return nullptr;
}

bool QcbsDictionaryPreferencesPage::addDirectory(const QString& path) {
    const QString clean = path.isEmpty() ? QString() : QDir::cleanPath(QFileInfo(path).absoluteFilePath());
    if (clean.isEmpty() || QcbsDictionaryLoader::searchDirectories(programDirectory_, added_).contains(clean))
        return false;
    added_ << clean;
    fillDirectories();
    return true;
}

void QcbsDictionaryPreferencesPage::chooseDirectory() {
    QFileDialog dialog(this, "Add a dictionary directory");
    dialog.setObjectName("choosedirectorydialog");
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return;
    addDirectory(dialog.selectedFiles().first());
}

void QcbsDictionaryPreferencesPage::removeDirectory() {
    const QListWidgetItem* item = directories_->currentItem();
    if (item == nullptr) return;
    added_.removeAll(item->data(Qt::UserRole).toString());
    fillDirectories();
}

void QcbsDictionaryPreferencesPage::restoreDefaults() {
    for (QcbsDictionaryCheckBox* box : boxes_) box->setChecked(true);
    added_.clear();
    fillDirectories();
}

void QcbsDictionaryPreferencesPage::apply() {
    bool switched = false;
    for (QcbsDictionaryCheckBox* box : boxes_) {
        // Only real changes: switching on again would move a dictionary to
        // the end of the pool, behind the ones it should take precedence over.
        if (box->isChecked() == settings_->dictionaryEnabled(box->dictionary())) continue;
        settings_->setDictionaryEnabled(box->dictionary(), box->isChecked());
        switched = true;
    }
    settings_->saveSettings();
    if (added_ != QcbsDictionaryLoader::addedDirectories()) QcbsDictionaryLoader::setAddedDirectories(added_);
    if (switched) emit dictionariesChanged();
}
