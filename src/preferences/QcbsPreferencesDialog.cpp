// SPDX-License-Identifier: GPL-3.0-or-later
// The preferences dialog: pages listed on the left; OK makes every open window take the choices.
#include "preferences/QcbsPreferencesDialog.hpp"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QListWidget>
#include <QPushButton>
#include <QScrollArea>
#include <QStackedWidget>
#include <QVBoxLayout>

#include "base/QcbsUtilities.hpp"
#include "preferences/QcbsCheckingPreferencesPage.hpp"
#include "preferences/QcbsContactAuthorPreferencesPage.hpp"
#include "preferences/QcbsDictionaryPreferencesPage.hpp"
#include "preferences/QcbsEditorPreferencesPage.hpp"

QcbsPreferencesDialog::QcbsPreferencesDialog(const Shared& shared, QWidget* parent)
    : QDialog(parent), shared_(shared) {
    setObjectName("preferences");
    setWindowTitle(programQName() + " Preferences");

    list_ = new QListWidget(this);
    list_->setObjectName("pages");
    stack_ = new QStackedWidget(this);
    stack_->setObjectName("page stack");

    editor_ = new QcbsEditorPreferencesPage(shared_.fontStyles);
    checking_ = new QcbsCheckingPreferencesPage;
    dictionaries_ = new QcbsDictionaryPreferencesPage(shared_.dictionaryLoader, shared_.dictionarySettings,
                                                      shared_.programDirectory);
    contact_ = new QcbsContactAuthorPreferencesPage;
    for (QcbsPreferencesPage* page : QList<QcbsPreferencesPage*>{editor_, checking_, dictionaries_, contact_})
        addPage(page);
    // The list is as wide as its longest title.
    list_->setFixedWidth(list_->sizeHintForColumn(0) + 2 * list_->frameWidth() + 24);

    buttons_ = new QDialogButtonBox(
        QDialogButtonBox::Ok | QDialogButtonBox::Cancel | QDialogButtonBox::RestoreDefaults, this);
    buttons_->button(QDialogButtonBox::RestoreDefaults)
        ->setToolTip("Set this page to the program's defaults.");

    auto* pages = new QHBoxLayout;
    pages->addWidget(list_);
    pages->addWidget(stack_, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(pages, 1);
    layout->addWidget(buttons_);

    connect(list_, &QListWidget::currentRowChanged, stack_, &QStackedWidget::setCurrentIndex);
    connect(buttons_, &QDialogButtonBox::accepted, this, &QcbsPreferencesDialog::accept);
    connect(buttons_, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(buttons_->button(QDialogButtonBox::RestoreDefaults), &QPushButton::clicked, this,
            &QcbsPreferencesDialog::restoreDefaults);
    connect(editor_, &QcbsEditorPreferencesPage::stylesChanged, this, &QcbsPreferencesDialog::stylesChanged);
    connect(dictionaries_, &QcbsDictionaryPreferencesPage::dictionariesChanged, this,
            &QcbsPreferencesDialog::dictionariesChanged);
    connect(dictionaries_, &QcbsDictionaryPreferencesPage::checkAgainRequested, this,
            &QcbsPreferencesDialog::checkAgain);

    for (QcbsPreferencesPage* page : pages_) page->showOptions(shared_.options->values());
    setCurrentPage(0);
    resize(780, 760);
}

QStringList QcbsPreferencesDialog::pageTitles() {
    return {"Editor", "Checking", "Dictionaries", "Contact author"};
}

void QcbsPreferencesDialog::addPage(QcbsPreferencesPage* page) {
    pages_ << page;
    list_->addItem(page->title());
    // A page taller than the dialog scrolls instead of stretching it.
    auto* scroll = new QScrollArea(stack_);
    scroll->setWidget(page);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    stack_->addWidget(scroll);
}

QcbsPreferencesPage* QcbsPreferencesDialog::currentPage() const {
    return pages_.value(stack_->currentIndex());
}

void QcbsPreferencesDialog::setCurrentPage(int index) { list_->setCurrentRow(index); }

bool QcbsPreferencesDialog::apply() {
    // Every page shows its reasons; the first that refuses is shown.
    int refusing = -1;
    for (int i = 0; i < pages_.size(); ++i)
        if (!pages_[i]->validate() && refusing < 0) refusing = i;
    if (refusing >= 0) {
        setCurrentPage(refusing);
        pages_[refusing]->validate();  // its field takes the focus last
        return false;
    }
    QcbsOptions values = shared_.options->values();
    for (const QcbsPreferencesPage* page : pages_) page->storeOptions(values);
    for (QcbsPreferencesPage* page : pages_) page->apply();
    // Every window hears of the change and applies it at once.
    shared_.options->setValues(values);
    shared_.options->save();
    return true;
}

void QcbsPreferencesDialog::accept() {
    if (apply()) QDialog::accept();
}

void QcbsPreferencesDialog::restoreDefaults() {
    if (QcbsPreferencesPage* page = currentPage()) page->restoreDefaults();
}

void QcbsPreferencesDialog::checkAgain() {
    if (!apply()) return;
    // Directories added are searched now, even without a document to check.
    const THandle<CifDictionaryPool> all = shared_.dictionaryLoader->load(shared_.programDirectory);
    shared_.dictionarySettings->loadSettings(all);
    emit checkAgainRequested();
    dictionaries_->refresh();
}
