// SPDX-License-Identifier: GPL-3.0-or-later
// A wizard page of labelled fields, each reading and writing one data item of the working block.
#pragma once

#include <QList>
#include <QString>
#include <string>
#include <vector>

#include "cif/CifDataBlock.hpp"
#include "wizards/QcbsWizardField.hpp"
#include "wizards/QcbsWizardPage.hpp"

class QComboBox;
class QLabel;
class QLineEdit;
class QWidget;

// A wizard page of labelled fields (one row each, labels lined up, an
// optional help button per row), each reading and writing one data item of
// the working block. showPage() fills every field from the block; next()
// writes back each field the user changed and each item the block lacks,
// so a value the user left alone stays exactly as it was. A looped item is
// shown but not editable here: writing one value would break its loop.
class QcbsWizardFormPage : public QcbsWizardPage {
    Q_OBJECT
public:
    // `group` is the caption of a box around the rows, none when empty;
    // `stripValues` shows values without surrounding whitespace.
    QcbsWizardFormPage(QPixmap* splash, QcbsWizard* wizard, const QString& name, const QString& group,
                       std::vector<QcbsWizardField> fields, bool stripValues);

    const std::vector<QcbsWizardField>& fields() const { return fields_; }
    // The widget of a data name's field (a QLineEdit, QComboBox or QPlainTextEdit), or null.
    QWidget* field(const QString& dataName) const;
    QLineEdit* lineEdit(const QString& dataName) const;
    QComboBox* choice(const QString& dataName) const;
    // The note beside a field, saying where a value the page filled in came from.
    QLabel* note(const QString& dataName) const;
    // The label the page shows for a message below its rows.
    QLabel* message() const { return message_; }

    void showPage() override;
    void next() override;

    // The name the block gives a field's item: the first of the data name
    // and its alternatives that the block holds, else the data name.
    static std::string nameInBlock(const CifDataBlock& block, const QcbsWizardField& field);

protected:
    // A value for a field without one (empty or "?"), with the note
    // saying where it comes from; the base version derives none.
    struct Derived {
        QString value;
        QString note;
    };
    virtual Derived derive(const QcbsWizardField& field) const;

    // A field's text as the page writes it.
    QString fieldText(std::size_t index) const;
    void setFieldText(std::size_t index, const QString& text);
    // The index of a data name's field, or -1.
    int indexOf(const QString& dataName) const;

    // The steps of showPage(): every field filled from the block (the
    // texts shown then count as unchanged), fields
    // without a value given derived ones, the first field focused.
    void readFields();
    void deriveEmptyFields();
    void focusFirstField();
    // The fields' present texts count as unchanged from here on.
    void noteShownTexts();
    // Shows (or, for an empty text, hides) the note beside a field.
    void showNote(std::size_t index, const QString& text);
    // Whether a field's text stands for no value: empty or "?".
    static bool isUnknown(const QString& text);

private:
    std::vector<QcbsWizardField> fields_;
    bool strip_;
    QList<QWidget*> widgets_;
    QList<QLabel*> notes_;
    QLabel* message_;
    QStringList shown_;
    QList<bool> held_;
    QList<bool> looped_;
};
