// SPDX-License-Identifier: GPL-3.0-or-later
// A file name in the preferences: typed or chosen, and refused with a reason when unusable.
#pragma once

#include <QString>
#include <QWidget>

class QLabel;
class QLineEdit;
class QPushButton;

// A file name in the preferences: a line to type it in, a button that
// chooses it in a file dialog, and a line under them that says why the name
// is refused. The reason goes as soon as the name is changed.
class QcbsFileField : public QWidget {
    Q_OBJECT
public:
    // `name` is the settings key the field stands for and its object name;
    // the chooser opens with `caption` and the file `filter`.
    QcbsFileField(const QString& name, const QString& caption, const QString& filter,
                  QWidget* parent = nullptr);

    QString fileName() const;
    void setFileName(const QString& name);
    QLineEdit* lineEdit() const { return edit_; }
    QPushButton* chooseButton() const { return choose_; }
    QLabel* reasonLabel() const { return reason_; }

    // Whether the name can be used: an empty name only when not `required`
    // (then `whyRequired` is the reason shown), otherwise a readable file.
    bool check(bool required, const QString& whyRequired);
    // Why a file name cannot be read as a file; empty when it can.
    static QString problemWith(const QString& name);
    void setReason(const QString& reason);

public slots:
    // The file dialog, starting at the file named now.
    void choose();

signals:
    void fileNameChanged(const QString& name);

private:
    QString caption_;
    QString filter_;
    QLineEdit* edit_;
    QPushButton* choose_;
    QLabel* reason_;
};
