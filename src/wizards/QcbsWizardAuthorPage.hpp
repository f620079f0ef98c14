// SPDX-License-Identifier: GPL-3.0-or-later
// The publication wizard's page of the authors: names and addresses, one author at a time.
#pragma once

#include <QList>
#include <QString>

#include "wizards/QcbsWizardPage.hpp"

class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

// The publication wizard's page of the authors, one at a time: family
// name and first names (one value of _publ_author_name, joined with ", ")
// and address (_publ_author_address). Previous and Next step through the
// list and are off at its ends; Add puts a new author after the last and
// shows it; Delete removes the author shown (the only one is emptied
// instead). Authors left with neither name nor address are dropped. A
// block without authors starts with its contact author's name.
//
// Next writes the list back only when it differs from the block's: an
// author left alone keeps its values exactly (quotes and all), and further
// columns of the author loop (footnotes, identifiers) stay with their rows.
class QcbsWizardAuthorPage : public QcbsWizardPage {
    Q_OBJECT
public:
    struct Author {
        QString family;
        QString first;
        QString address;
        int row = -1;  // the author's row in the block, -1 for one added here
    };

    QcbsWizardAuthorPage(QPixmap* splash, QcbsWizard* wizard);

    static QString heading() { return "Publication Information..."; }
    // "Family, First names"; either alone when the other is empty.
    static QString joinedName(const QString& family, const QString& first);
    // A name split at its first comma into family and first names.
    static QPair<QString, QString> splitName(const QString& name);

    const QList<Author>& authors() const { return authors_; }
    int currentAuthor() const { return current_; }

    QLineEdit* familyField() const { return family_; }
    QLineEdit* firstField() const { return first_; }
    QPlainTextEdit* addressField() const { return address_; }
    QPushButton* previousButton() const { return previous_; }
    QPushButton* nextButton() const { return next_; }
    QPushButton* addButton() const { return add_; }
    QPushButton* deleteButton() const { return delete_; }
    // "Author 2 of 3".
    QLabel* positionLabel() const { return position_; }

    void showPage() override;
    void next() override;

public slots:
    void prevAuthor();
    void nextAuthor();
    void addauthor();
    void delauthor();
    // Appends an empty author; returns its index.
    int newAuthor();
    // Keeps the fields shown in the current author.
    void saveAuthor();
    // Shows the author at `index` (kept within the list).
    void authchanged(int index);

private:
    struct Read {
        QString name;
        QString address;
        QString family;
        QString first;
        QString shownAddress;
    };
    void readAuthors();
    // The authors to write: the list without empty ones.
    QList<Author> kept() const;
    bool unchanged(const QList<Author>& list) const;
    QString nameOf(const Author& author) const;
    QString addressOf(const Author& author) const;
    void writeAuthors(const QList<Author>& list);

    QList<Author> authors_;
    QList<Read> read_;  // the block's authors as read, by row
    int current_ = 0;
    QLineEdit* family_;
    QLineEdit* first_;
    QPlainTextEdit* address_;
    QPushButton* previous_;
    QPushButton* next_;
    QPushButton* add_;
    QPushButton* delete_;
    QLabel* position_;
    QLabel* note_;
};
