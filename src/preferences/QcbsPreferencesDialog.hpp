// SPDX-License-Identifier: GPL-3.0-or-later
// The preferences dialog: pages listed on the left; OK makes every open window take the choices.
#pragma once

#include <QDialog>
#include <QList>
#include <QString>
#include <QStringList>

#include "base/QcbsProgramOptions.hpp"
#include "dictionaries/QcbsDictionaryLoader.hpp"
#include "dictionaries/QcbsDictionarySettings.hpp"
#include "editor/QcbsFontStyleSettings.hpp"
#include "support/THandle.hpp"

class QDialogButtonBox;
class QListWidget;
class QStackedWidget;
class QcbsCheckingPreferencesPage;
class QcbsContactAuthorPreferencesPage;
class QcbsDictionaryPreferencesPage;
class QcbsEditorPreferencesPage;
class QcbsPreferencesPage;

// The preferences dialog: its pages (Editor, Checking, Dictionaries,
// Contact author) listed on the left. OK refuses input that cannot work,
// showing the page and the reason beside the field; otherwise it gives the
// program the new options (every window hears of them and applies them at
// once), writes them to the settings, and makes the dictionary switches and
// text styles hold and saves them. Cancel changes nothing. "Restore
// Defaults" sets the page shown to the program's defaults.
class QcbsPreferencesDialog : public QDialog {
    Q_OBJECT
public:
    // What the dialog changes: the program's parts every window shares.
    struct Shared {
        QcbsProgramOptions* options = nullptr;
        THandle<QcbsDictionaryLoader> dictionaryLoader;
        THandle<QcbsDictionarySettings> dictionarySettings;
        THandle<QcbsFontStyleSettings> fontStyles;
        QString programDirectory;
    };

    explicit QcbsPreferencesDialog(const Shared& shared, QWidget* parent = nullptr);

    // The titles of the pages, in the order of the list.
    static QStringList pageTitles();

    QListWidget* pageList() const { return list_; }
    QDialogButtonBox* buttons() const { return buttons_; }
    int pageCount() const { return pages_.size(); }
    QcbsPreferencesPage* page(int index) const { return pages_.value(index); }
    QcbsPreferencesPage* currentPage() const;
    void setCurrentPage(int index);
    QcbsEditorPreferencesPage* editorPage() const { return editor_; }
    QcbsCheckingPreferencesPage* checkingPage() const { return checking_; }
    QcbsDictionaryPreferencesPage* dictionaryPage() const { return dictionaries_; }
    QcbsContactAuthorPreferencesPage* contactAuthorPage() const { return contact_; }

    // Checks every page and, when all are acceptable, takes and saves what
    // they hold; false (with the refusing page shown) otherwise.
    bool apply();

public slots:
    // apply(), then closes; stays open when a page refuses its input.
    void accept() override;
    // The program's defaults on the page shown.
    void restoreDefaults();
    // "Check again now": apply(), look for dictionaries in every directory
    // not searched yet, ask for the open documents to be checked, list
    // the dictionaries anew.
    void checkAgain();

signals:
    // The text styles changed: every editor is to draw its text anew.
    void stylesChanged();
    // Dictionaries were switched on or off.
    void dictionariesChanged();
    // The open documents are to be checked again now.
    void checkAgainRequested();

private:
    void addPage(QcbsPreferencesPage* page);

    Shared shared_;
    QListWidget* list_ = nullptr;
    QStackedWidget* stack_ = nullptr;
    QDialogButtonBox* buttons_ = nullptr;
    QList<QcbsPreferencesPage*> pages_;
    QcbsEditorPreferencesPage* editor_ = nullptr;
    QcbsCheckingPreferencesPage* checking_ = nullptr;
    QcbsDictionaryPreferencesPage* dictionaries_ = nullptr;
    QcbsContactAuthorPreferencesPage* contact_ = nullptr;
};
