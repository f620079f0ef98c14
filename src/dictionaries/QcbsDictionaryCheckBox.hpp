// SPDX-License-Identifier: GPL-3.0-or-later
// A check box that switches one dictionary on or off.
#pragma once

#include <QCheckBox>
#include <QString>

#include "cif/CifConcreteDictionary.hpp"
#include "support/THandle.hpp"

// A check box that switches one dictionary on or off. It shows no text of
// its own: the preferences dialogue names the dictionary beside it and
// connects setDictionaryEnabled to the dictionary settings.
class QcbsDictionaryCheckBox : public QCheckBox {
    Q_OBJECT
public:
    QcbsDictionaryCheckBox(QWidget* parent, const QString& name, THandle<CifConcreteDictionary> dictionary);

    const THandle<CifConcreteDictionary>& dictionary() const { return dictionary_; }

public slots:
    void dictionaryToggled(bool on);

signals:
    void setDictionaryEnabled(HCifConcreteDictionary dictionary, bool enabled);

private:
    THandle<CifConcreteDictionary> dictionary_;
};
