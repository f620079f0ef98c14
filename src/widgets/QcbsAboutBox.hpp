// SPDX-License-Identifier: GPL-3.0-or-later
// The "About Tessary" box: picture, name, version, date, core dictionary, home page.
#pragma once

#include <QDialog>
#include <QString>

// "About Tessary": the program's picture, name, version and release date,
// the core CIF dictionary it is built for and its home page.
class QcbsAboutBox : public QDialog {
    Q_OBJECT
public:
    explicit QcbsAboutBox(QWidget* parent = nullptr);

    // The rich text the box shows beside the picture.
    static QString aboutText();
};
