// SPDX-License-Identifier: GPL-3.0-or-later
// The text styles as a list: each kind of text with its colour, bold, italic and underline.
#include "preferences/QcbsFontStyleList.hpp"

#include <QCheckBox>
#include <QColorDialog>
#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <QPixmap>
#include <QToolButton>

namespace {

using Style = QcbsFontStyleSettings::SyntaxStyle;

QIcon swatch(const QColor& color) {
    QPixmap pixmap(28, 14);
    pixmap.fill(color);
    QPainter painter(&pixmap);
    painter.setPen(Qt::darkGray);
    painter.drawRect(pixmap.rect().adjusted(0, 0, -1, -1));
    return QIcon(pixmap);
}

bool sameStyles(const QcbsFontStyleSettings& a, const QcbsFontStyleSettings& b) {
    for (int style = 0; QcbsFontStyleSettings::validSyntaxStyle(style); ++style)
        if (!(a.styleSettings(Style(style)) == b.styleSettings(Style(style)))) return false;
    return a.baseFont() == b.baseFont();
}

}  // namespace

QcbsFontStyleList::QcbsFontStyleList(const QcbsFontStyleSettings& styles, QWidget* parent)
    : QWidget(parent), original_(styles), styles_(styles) {
    setObjectName("font styles");
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(12);
    grid->setVerticalSpacing(2);
    int line = 0;
    for (const char* heading : {"Text", "Colour", "Bold", "Italic", "Underline"}) {
        auto* label = new QLabel(QString("<b>%1</b>").arg(heading), this);
        grid->addWidget(label, 0, line++);
    }
    line = 1;
    for (int value = 0; QcbsFontStyleSettings::validSyntaxStyle(value); ++value) {
        const auto style = Style(value);
        const QString label = QcbsFontStyleSettings::dialogLabel(style);
        if (label.isEmpty()) continue;  // drawn as the style it follows
        const QString name = QcbsFontStyleSettings::styleText(style);
        Row row;
        row.sample = new QLabel(label, this);
        row.sample->setObjectName(name + " sample");
        row.color = new QToolButton(this);
        row.color->setObjectName(name + " colour");
        row.color->setToolTip("Colour of " + label.toLower());
        row.color->setIconSize(QSize(28, 14));
        row.bold = new QCheckBox(this);
        row.bold->setObjectName(name + " bold");
        row.italic = new QCheckBox(this);
        row.italic->setObjectName(name + " italic");
        row.underline = new QCheckBox(this);
        row.underline->setObjectName(name + " underline");
        grid->addWidget(row.sample, line, 0);
        grid->addWidget(row.color, line, 1, Qt::AlignLeft);
        grid->addWidget(row.bold, line, 2, Qt::AlignHCenter);
        grid->addWidget(row.italic, line, 3, Qt::AlignHCenter);
        grid->addWidget(row.underline, line, 4, Qt::AlignHCenter);
        ++line;
        rows_.insert(style, row);
        connect(row.color, &QToolButton::clicked, this, [this, style] { chooseColor(style); });
        for (QCheckBox* box : {row.bold, row.italic, row.underline})
            connect(box, &QCheckBox::toggled, this, [this, style] { takeFlags(style); });
        showStyle(style);
    }
    grid->setColumnStretch(5, 1);
}

void QcbsFontStyleList::setStyles(const QcbsFontStyleSettings& styles) {
    styles_ = styles;
    for (auto it = rows_.cbegin(); it != rows_.cend(); ++it) showStyle(it.key());
    emit stylesEdited();
}

void QcbsFontStyleList::restoreDefaults() {
    setStyles(QcbsFontStyleSettings(QcbsFontStyleSettings::FixedWidth));
}

bool QcbsFontStyleList::changed() const { return !sameStyles(original_, styles_); }

void QcbsFontStyleList::setStyleColor(Style style, const QColor& color) {
    if (!color.isValid()) return;
    QcbsFontStyleSettings::SyntaxStyleSettings settings = styles_.styleSettings(style);
    settings.color = color;
    styles_.setStyleSettings(style, settings);
    showStyle(style);
    emit stylesEdited();
}

void QcbsFontStyleList::chooseColor(Style style) {
    const QColor color =
        QColorDialog::getColor(styles_.styleSettings(style).color, this,
                               "Colour of " + QcbsFontStyleSettings::dialogLabel(style).toLower());
    setStyleColor(style, color);
}

void QcbsFontStyleList::showStyle(Style style) {
    const Row row = rows_.value(style);
    if (row.sample == nullptr) return;
    const auto [font, color] = styles_.highlightStyle(style);
    row.sample->setFont(font);
    QPalette palette = row.sample->palette();
    palette.setColor(QPalette::WindowText, color);
    row.sample->setPalette(palette);
    row.color->setIcon(swatch(color));
    const QcbsFontStyleSettings::SyntaxStyleSettings settings = styles_.styleSettings(style);
    // Showing a style is no choice of the user's.
    const QSignalBlocker bold(row.bold), italic(row.italic), underline(row.underline);
    row.bold->setChecked(settings.bold);
    row.italic->setChecked(settings.italic);
    row.underline->setChecked(settings.underline);
}

void QcbsFontStyleList::takeFlags(Style style) {
    const Row row = rows_.value(style);
    QcbsFontStyleSettings::SyntaxStyleSettings settings = styles_.styleSettings(style);
    settings.bold = row.bold->isChecked();
    settings.italic = row.italic->isChecked();
    settings.underline = row.underline->isChecked();
    styles_.setStyleSettings(style, settings);
    showStyle(style);
    emit stylesEdited();
}
