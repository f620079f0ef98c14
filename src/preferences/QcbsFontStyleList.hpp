// SPDX-License-Identifier: GPL-3.0-or-later
// The text styles as a list: each kind of text with its colour, bold, italic and underline.
#pragma once

#include <QColor>
#include <QMap>
#include <QWidget>

#include "editor/QcbsFontStyleSettings.hpp"

class QCheckBox;
class QLabel;
class QToolButton;

// The text styles of the editor as a list: each kind of CIF text that has a
// label, shown in its own style, with a button for its colour and boxes for
// bold, italic and underline. It works on a copy of the styles; the owner
// takes styles() when the user accepts. (A full font style dialog may take
// its place.)
class QcbsFontStyleList : public QWidget {
    Q_OBJECT
public:
    explicit QcbsFontStyleList(const QcbsFontStyleSettings& styles, QWidget* parent = nullptr);

    // The styles as the list shows them now.
    const QcbsFontStyleSettings& styles() const { return styles_; }
    void setStyles(const QcbsFontStyleSettings& styles);
    // Every style and the base font as a new program has them.
    void restoreDefaults();
    // Whether the list differs from the styles it was given (or applied last).
    bool changed() const;
    // The styles shown are now the program's.
    void setApplied() { original_ = styles_; }

    void setStyleColor(QcbsFontStyleSettings::SyntaxStyle style, const QColor& color);
    QToolButton* colorButton(QcbsFontStyleSettings::SyntaxStyle style) const {
        return rows_.value(style).color;
    }

signals:
    // The styles shown changed (a choice of the user's or setStyles()).
    void stylesEdited();

public slots:
    // The colour dialog for one style.
    void chooseColor(QcbsFontStyleSettings::SyntaxStyle style);

private:
    struct Row {
        QLabel* sample = nullptr;
        QToolButton* color = nullptr;
        QCheckBox* bold = nullptr;
        QCheckBox* italic = nullptr;
        QCheckBox* underline = nullptr;
    };
    void showStyle(QcbsFontStyleSettings::SyntaxStyle style);
    void takeFlags(QcbsFontStyleSettings::SyntaxStyle style);

    QcbsFontStyleSettings original_;
    QcbsFontStyleSettings styles_;
    QMap<QcbsFontStyleSettings::SyntaxStyle, Row> rows_;
};
