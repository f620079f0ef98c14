// SPDX-License-Identifier: GPL-3.0-or-later
// A small button beside a field that asks for the dictionary's help on the field's data name.
#pragma once

#include <QString>
#include <QToolButton>

// A small button beside a field that asks for the dictionary's definition
// of the field's data name: a click emits dataItemHelpRequested(dataName).
// It shows nothing itself; whoever owns the help dialogue listens.
class QcbsDataItemHelpButton : public QToolButton {
    Q_OBJECT
public:
    explicit QcbsDataItemHelpButton(QString dataName, QWidget* parent = nullptr);

    const QString& dataName() const { return dataName_; }

signals:
    void dataItemHelpRequested(const QString& dataName);

private:
    QString dataName_;
};
