// SPDX-License-Identifier: GPL-3.0-or-later
// The editor's base font and the style of each kind of CIF text, kept in the settings.
#include "editor/QcbsFontStyleSettings.hpp"

#include <QApplication>

#include "base/ORMAApplicationSettings.hpp"

namespace {

using Style = QcbsFontStyleSettings::SyntaxStyle;

// A colour component is usable only inside 0-255; anything else counts as an
// unreadable entry.
int readComponent(ORMAApplicationSettings& settings, const QString& key, bool& allRead) {
    const int value = settings.readNumEntry(key, 0);
    if (!settings.ok() || value < 0 || value > 255) allRead = false;
    return value;
}

bool readFlag(ORMAApplicationSettings& settings, const QString& key, bool& allRead) {
    const bool value = settings.readBoolEntry(key, false);
    if (!settings.ok()) allRead = false;
    return value;
}

}  // namespace

void QcbsFontStyleSettings::SyntaxStyleSettings::print(std::ostream& out) const {
    out << "bold: " << bold << " italic: " << italic << " underline: " << underline
        << " color: " << color.name().toStdString();
}

const EnumTextMapping<Style>& QcbsFontStyleSettings::syntaxStyleMapping() {
    static const EnumTextMapping<Style> mapping{
        {Standard, "Standard"},
        {Comment, "Comment"},
        {String, "String"},
        {Type, "Type"},
        {Keyword, "Keyword"},
        {CoreDataItem, "CoreDataItem"},
        {CustomDataItem, "CustomDataItem"},
        {SpecialCharNormal, "SpecialCharNormal"},
        {SpecialCharSymbol, "SpecialCharSymbol"},
        {Superscript, "Superscript"},
        {SMarker, "SMarker"},
        {InvalidCharacter, "InvalidCharacter"},
    };
    return mapping;
}

QString QcbsFontStyleSettings::dialogLabel(SyntaxStyle style) {
    switch (style) {
        case Standard:
            return "Normal text";
        case Comment:
            return "Comments";
        case String:
            return "Text blocks";
        case Type:
            return "Data blocks";
        case Keyword:
            return "Keywords";
        case CoreDataItem:
            return "Dictionary data items";
        case CustomDataItem:
            return "Custom data items";
        case SpecialCharNormal:
            return "Special characters";
        case SpecialCharSymbol:
            return QString();
        case Superscript:
            return "Super/subscript";
        case SMarker:
            return "Mark up characters";
        case InvalidCharacter:
            return "Invalid characters";
    }
    return QString();
}

QcbsFontStyleSettings::SyntaxStyleSettings QcbsFontStyleSettings::defaultStyleSettings(SyntaxStyle style) {
    switch (style) {
        case Standard:
            return {false, false, false, QColor(Qt::black)};
        case Comment:
            return {false, false, false, QColor(Qt::darkGreen)};
        case String:
            return {true, false, false, QColor(0, 85, 0)};
        case Type:
            return {true, false, false, QColor(Qt::red)};
        case Keyword:
            return {true, false, false, QColor(Qt::magenta)};
        case CoreDataItem:
            return {true, false, false, QColor(Qt::blue)};
        case CustomDataItem:
            return {true, false, false, QColor(Qt::darkBlue)};
        case SpecialCharNormal:
        case SpecialCharSymbol:
            return {true, false, false, QColor(Qt::darkYellow)};
        case Superscript:
            return {false, false, false, QColor(Qt::blue)};
        case SMarker:
            return {true, false, false, QColor(Qt::lightGray)};
        case InvalidCharacter:
            return {true, false, true, QColor(Qt::darkMagenta)};
    }
    return {};
}

QcbsFontStyleSettings::QcbsFontStyleSettings(FontStyle fontStyle) : baseFont_(QApplication::font()) {
    if (fontStyle == FixedWidth) baseFont_.setFamily("Courier");
    for (int style = 0; validSyntaxStyle(style); ++style) {
        styles_[Style(style)] = defaultStyleSettings(Style(style));
    }
}

void QcbsFontStyleSettings::setBaseFont(const QFont& font) {
    baseFont_ = QFont(font.family(), font.pointSize());
}

QcbsFontStyleSettings::SyntaxStyleSettings QcbsFontStyleSettings::styleSettings(SyntaxStyle style) const {
    const auto found = styles_.find(style);
    return found != styles_.end() ? found->second : SyntaxStyleSettings();
}

void QcbsFontStyleSettings::setStyleSettings(SyntaxStyle style, const SyntaxStyleSettings& settings) {
    if (!validSyntaxStyle(style) || style == SpecialCharSymbol) return;
    styles_[style] = settings;
    if (style == SpecialCharNormal) styles_[SpecialCharSymbol] = settings;
}

std::pair<QFont, QColor> QcbsFontStyleSettings::highlightStyle(SyntaxStyle style) const {
    const SyntaxStyleSettings settings = styleSettings(style);
    QFont font = baseFont_;
    if (style == SpecialCharSymbol) font.setFamily("Symbol");
    font.setWeight(settings.bold ? QFont::Bold : QFont::Normal);
    font.setItalic(settings.italic);
    font.setUnderline(settings.underline);
    return {font, settings.color};
}

void QcbsFontStyleSettings::loadSettings() {
    ORMAApplicationSettings settings;
    for (int style = 0; validSyntaxStyle(style); ++style) {
        bool ok = false;
        const SyntaxStyleSettings loaded = loadFontStyle(settings, Style(style), &ok);
        if (ok) setStyleSettings(Style(style), loaded);
    }
    bool ok = false;
    const QFont font = loadBaseFont(settings, &ok);
    if (ok) setBaseFont(font);
}

void QcbsFontStyleSettings::saveSettings() const {
    ORMAApplicationSettings settings;
    for (int style = 0; validSyntaxStyle(style); ++style) {
        saveFontStyle(settings, Style(style), styleSettings(Style(style)));
    }
    saveBaseFont(settings, baseFont_);
}

QcbsFontStyleSettings::SyntaxStyleSettings QcbsFontStyleSettings::loadFontStyle(
    ORMAApplicationSettings& settings, SyntaxStyle style, bool* ok) {
    const QString path = stylePath(style);
    bool allRead = true;
    settings.reset_ok();
    SyntaxStyleSettings loaded;
    loaded.bold = readFlag(settings, path + "/bold", allRead);
    loaded.italic = readFlag(settings, path + "/italic", allRead);
    loaded.underline = readFlag(settings, path + "/underline", allRead);
    const int red = readComponent(settings, path + "/red", allRead);
    const int green = readComponent(settings, path + "/green", allRead);
    const int blue = readComponent(settings, path + "/blue", allRead);
    if (allRead) loaded.color = QColor(red, green, blue);
    if (ok != nullptr) *ok = allRead;
    return loaded;
}

void QcbsFontStyleSettings::saveFontStyle(ORMAApplicationSettings& settings, SyntaxStyle style,
                                          const SyntaxStyleSettings& styleSettings) const {
    const QString path = stylePath(style);
    settings.writeEntry(path + "/bold", styleSettings.bold);
    settings.writeEntry(path + "/italic", styleSettings.italic);
    settings.writeEntry(path + "/underline", styleSettings.underline);
    settings.writeEntry(path + "/red", styleSettings.color.red());
    settings.writeEntry(path + "/green", styleSettings.color.green());
    settings.writeEntry(path + "/blue", styleSettings.color.blue());
}

QFont QcbsFontStyleSettings::loadBaseFont(ORMAApplicationSettings& settings, bool* ok) {
    const QString path = stylePath(Standard);
    settings.reset_ok();
    const QString family = settings.readEntry(path + "/family", baseFont_.family());
    bool allRead = settings.ok() && !family.isEmpty();
    const int size = settings.readNumEntry(path + "/size", baseFont_.pointSize());
    allRead = allRead && settings.ok() && size > 0;
    if (ok != nullptr) *ok = allRead;
    return allRead ? QFont(family, size) : baseFont_;
}

void QcbsFontStyleSettings::saveBaseFont(ORMAApplicationSettings& settings, const QFont& font) const {
    const QString path = stylePath(Standard);
    settings.writeEntry(path + "/family", font.family());
    settings.writeEntry(path + "/size", font.pointSize());
}
