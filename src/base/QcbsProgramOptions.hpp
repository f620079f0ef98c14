// SPDX-License-Identifier: GPL-3.0-or-later
// The program's one set of options, shared by every window, with a change signal.
#pragma once

#include <QObject>

#include "base/QcbsOptions.hpp"

// The program's one set of options: read from the settings store at
// start-up, written back by the windows, changed by the preferences dialog.
// Every window listens to changed() and applies the new values at once.
class QcbsProgramOptions : public QObject {
    Q_OBJECT
public:
    explicit QcbsProgramOptions(QObject* parent = nullptr) : QObject(parent) {}

    const QcbsOptions& values() const { return values_; }
    // Takes new values; changed() follows when they differ from the old.
    void setValues(const QcbsOptions& values);

    // Reads every key (a missing key gives its default) in the order of the
    // settings table; the line-length limit is read twice, once for the
    // reader and once for the printer, as it always was.
    void load();
    // Writes every key in the same order (the line-length limit once).
    void save() const;

signals:
    void changed(const QcbsOptions& previous);

private:
    QcbsOptions values_;
};
