// SPDX-License-Identifier: GPL-3.0-or-later
// What the dictionary says about a data item and, when editing, a new value for it in a block.
#pragma once

#include <QDialog>
#include <QString>

#include "cif/CifDictionary.hpp"
#include "editor/QcbsFontStyleSettings.hpp"
#include "support/THandle.hpp"

class QComboBox;
class QGroupBox;
class QcbsDataItemInfo;
class QcbsRichTextEdit;

// What the dictionary says about one data item (the help form) and, in the
// editing form, a new value for it in a block: chosen from the permitted
// values (with "?" and "." above them) or typed freely. The dialogue never
// edits the document: OK hands the item's CIF text, printed by the CIF
// library so that quoting is right, to setDataItemTextRequest().
class QcbsEditDataDialogue : public QDialog {
    Q_OBJECT
public:
    // `styles` is the shared text styles the definition is shown in (the
    // defaults when null).
    QcbsEditDataDialogue(QString dataName, THandle<CifDictionary> dictionary, QWidget* parent = nullptr,
                         bool editing = false, QString blockName = QString(),
                         QString currentValue = QString(),
                         THandle<QcbsFontStyleSettings> styles = THandle<QcbsFontStyleSettings>());

    bool isEditing() const { return editing_; }
    const QString& dataName() const { return dataName_; }
    const QString& blockName() const { return blockName_; }
    QcbsDataItemInfo* info() const { return info_; }
    // The value widget of the editing form: the choice of permitted values,
    // or the free-entry editor (the other is null; both are in the help form).
    QComboBox* valueChoice() const { return choice_; }
    QcbsRichTextEdit* valueEditor() const { return editor_; }
    // The value as the user left it (a leading line break taken off).
    QString value() const;

    // The item's lines as the CIF library prints the data name with the
    // value (quoted, or as a text field, as CIF requires), without a block heading.
    static QString itemText(const THandle<CifDictionary>& dictionary, const QString& dataName,
                            const QString& value);

public slots:
    void ok();
    // Cancel and Close: the entry is discarded.
    void close();

signals:
    void setDataItemTextRequest(const QString& dataName, const QString& blockName, const QString& itemText);

private:
    QGroupBox* makeMainWidget(const QString& dataName, const QString& dictionaryName);
    QGroupBox* makeValueWidget(const QString& currentValue);

    QString dataName_;
    THandle<CifDictionary> dictionary_;
    THandle<QcbsFontStyleSettings> styles_;
    bool editing_;
    QString blockName_;
    QcbsDataItemInfo* info_ = nullptr;
    QComboBox* choice_ = nullptr;
    QcbsRichTextEdit* editor_ = nullptr;
};
