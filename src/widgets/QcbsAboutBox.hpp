// SPDX-License-Identifier: GPL-3.0-or-later
// The "About Tessary" box: picture, name, version, date, core dictionary, home page.
#pragma once

#include <QDialog>
#include <QString>

#include "cif/CifDictionaryPool.hpp"

class QLabel;

// "About Tessary": the program's picture, name, version and release date,
// the core CIF dictionary it is built for, the one it actually uses (when
// one was loaded) and its home page.
class QcbsAboutBox : public QDialog {
    Q_OBJECT
public:
    explicit QcbsAboutBox(QWidget* parent = nullptr);

    // Names the core dictionary loaded, as coreDictionaryText() tells it.
    void setDictionaries(const CifDictionaryPool& enabled, const CifDictionaryPool& all);

    // The rich text the box shows beside the picture; `loadedCore` is a
    // line about the core dictionary loaded, left out when empty.
    static QString aboutText(const QString& loadedCore = QString());
    // "Core dictionary in use: cif_core.dic version 2.4.5 of 2014-11-21." for
    // the first core dictionary switched on, a note when the only ones
    // loaded are switched off, empty when none was loaded.
    static QString coreDictionaryText(const CifDictionaryPool& enabled, const CifDictionaryPool& all);

private:
    QLabel* text_;
};
