// SPDX-License-Identifier: GPL-3.0-or-later
// A check box that switches one dictionary on or off.
#include "dictionaries/QcbsDictionaryCheckBox.hpp"

#include <utility>

QcbsDictionaryCheckBox::QcbsDictionaryCheckBox(QWidget* parent, const QString& name,
                                               THandle<CifConcreteDictionary> dictionary)
    : QCheckBox(parent), dictionary_(std::move(dictionary)) {
    setObjectName(QString::fromLatin1(name.toLatin1()));
    connect(this, &QCheckBox::toggled, this, &QcbsDictionaryCheckBox::dictionaryToggled);
}

void QcbsDictionaryCheckBox::dictionaryToggled(bool on) { emit setDictionaryEnabled(dictionary_, on); }
