// SPDX-License-Identifier: GPL-3.0-or-later
// What the find and replace dialogs share: the find text with its history, options and direction.
#pragma once

#include <QDialog>
#include <QPointer>
#include <functional>

#include "find/QcbsTextSearch.hpp"

class ORMAApplicationSettings;
class QCheckBox;
class QComboBox;
class QGroupBox;
class QRadioButton;
class QcbsRichTextEdit;

// The part the find and replace dialogs share: the editable find text
// "comboFind" with its history of recent texts (newest first), the options
// "checkCase", "checkWords", "checkBegin" and the direction "radioForward" /
// "radioBackward". A search that fails beeps and checks "Start at
// Beginning", so that the next one starts from the top of the text (from
// the end for a backward search); a search that succeeds unchecks it. The
// history and the options are read from the settings when the dialog is
// made and written back when it closes.
class QcbsSearchDialog : public QDialog {
    Q_OBJECT
public:
    // A dialog still open when its window goes saves its settings too.
    ~QcbsSearchDialog() override;

    // The number of texts a history keeps.
    static constexpr int max_store_ = 8;

    // The editor searched when no main window is active.
    void setEditor(QcbsRichTextEdit* editor);
    // The editor a search works on: the active window's (see
    // setActiveEditorSource()) or else the one given by setEditor().
    QcbsRichTextEdit* targetEditor() const;
    // Where searches find the editor of the window that was active last.
    static void setActiveEditorSource(std::function<QcbsRichTextEdit*()> source);

    // The search as the controls show it.
    QcbsSearchOptions options() const;
    // The dialog that searched last, if it is still open or hidden.
    static QcbsSearchDialog* lastUsed() { return lastUsed_; }

    QComboBox* comboFind() const { return comboFind_; }
    QCheckBox* checkCase() const { return checkCase_; }
    QCheckBox* checkWords() const { return checkWords_; }
    QCheckBox* checkBegin() const { return checkBegin_; }
    QRadioButton* radioForward() const { return radioForward_; }
    QRadioButton* radioBackward() const { return radioBackward_; }

    // Puts a text at the top of a history: when the history is full its
    // oldest entry goes; the text is not added again when it is the newest.
    static void storeText(QComboBox* combo, const QString& text);

    void loadSettings();
    void saveSettings();

public slots:
    // Finds the text from the cursor, selecting the match; false (after a
    // beep) when there is none or there is no text or no editor.
    bool doFind();
    // The last search again, in the given direction (Find next, Find previous).
    bool findAgain(bool forward);

signals:
    // A search found nothing or an action could not be done (the beep).
    void failed();

protected:
    explicit QcbsSearchDialog(QWidget* parent);
    // The direction and option boxes, made once.
    QGroupBox* makeDirectionBox();
    QGroupBox* makeOptionsBox();
    // The beep of a failure, also told by failed().
    void fail();
    // The history keys this dialog keeps besides the find texts.
    virtual void loadExtraSettings(ORMAApplicationSettings&) {}
    virtual void saveExtraSettings(ORMAApplicationSettings&) {}
    static void loadHistory(ORMAApplicationSettings& settings, const QString& key, QComboBox* combo);
    static void saveHistory(ORMAApplicationSettings& settings, const QString& key, const QComboBox* combo);
    // Closing the dialog (Close, Escape, the window's close button) saves the settings.
    void reject() override;

private:
    bool search(bool forward);

    QComboBox* comboFind_ = nullptr;
    QCheckBox* checkCase_ = nullptr;
    QCheckBox* checkWords_ = nullptr;
    QCheckBox* checkBegin_ = nullptr;
    QRadioButton* radioForward_ = nullptr;
    QRadioButton* radioBackward_ = nullptr;
    QPointer<QcbsRichTextEdit> editor_;
    static std::function<QcbsRichTextEdit*()> activeEditor_;
    static QPointer<QcbsSearchDialog> lastUsed_;
};
