// SPDX-License-Identifier: GPL-3.0-or-later
// The editor's base font and the style of each kind of CIF text, kept in the settings.
#pragma once

#include <QColor>
#include <QFont>
#include <QString>
#include <map>
#include <ostream>
#include <utility>

#include "base/EnumTextMapping.hpp"

class ORMAApplicationSettings;

// The editor's base font and, for each kind of CIF text, whether it is bold,
// italic or underlined and its colour. One object is shared by the main
// windows, every editor and every highlighter; it loads and saves itself in
// the settings store under "styles/<style text>/...".
class QcbsFontStyleSettings {
public:
    // The kinds of text the highlighter tells apart. The values are stored
    // nowhere, but the texts of syntaxStyleMapping() are settings keys.
    enum SyntaxStyle {
        Standard = 0,           // everything else, quoted strings, text-block delimiters
        Comment = 1,            // comments
        String = 2,             // contents of semicolon text blocks
        Type = 3,               // data block headers (data_...)
        Keyword = 4,            // the keyword loop_
        CoreDataItem = 5,       // data names the dictionary defines
        CustomDataItem = 6,     // data names the dictionary does not define
        SpecialCharNormal = 7,  // backslash codes for special characters
        SpecialCharSymbol = 8,  // the letter after a backslash, drawn in the Symbol font
        Superscript = 9,        // text between ^ or ~ markers
        SMarker = 10,           // the ^ and ~ markers themselves
        InvalidCharacter = 11   // characters the CIF library rejects
    };
    static constexpr int NumberOfSyntaxStyles = 12;

    // The family the base font starts with.
    enum FontStyle {
        FixedWidth = 0,    // "Courier"
        VariableWidth = 1  // the application font's family
    };

    struct SyntaxStyleSettings {
        SyntaxStyleSettings() = default;
        SyntaxStyleSettings(bool bold_, bool italic_, bool underline_, QColor color_)
            : bold(bold_), italic(italic_), underline(underline_), color(color_) {}

        bool bold = false;
        bool italic = false;
        bool underline = false;
        QColor color;  // invalid when default-constructed

        bool operator==(const SyntaxStyleSettings& other) const = default;

        // One diagnostic line: "bold: 1 italic: 0 underline: 0 color: #rrggbb".
        void print(std::ostream& out) const;
    };

    explicit QcbsFontStyleSettings(FontStyle fontStyle = FixedWidth);

    static const EnumTextMapping<SyntaxStyle>& syntaxStyleMapping();
    // The text of a style, as used in settings keys ("Comment").
    static QString styleText(SyntaxStyle style) { return syntaxStyleMapping().text(style); }
    // The style's label in the font style dialog; empty for SpecialCharSymbol,
    // which follows SpecialCharNormal.
    static QString dialogLabel(SyntaxStyle style);
    static bool validSyntaxStyle(int style) { return style >= 0 && style < NumberOfSyntaxStyles; }
    // The style defaults of a new object.
    static SyntaxStyleSettings defaultStyleSettings(SyntaxStyle style);

    const QFont& baseFont() const { return baseFont_; }
    // Keeps only the family and point size: boldness and slant come from the
    // styles alone.
    void setBaseFont(const QFont& font);

    SyntaxStyleSettings styleSettings(SyntaxStyle style) const;
    // SpecialCharSymbol cannot be set on its own: a request for it is ignored,
    // and one for SpecialCharNormal sets both, so the two differ only in the
    // font family.
    void setStyleSettings(SyntaxStyle style, const SyntaxStyleSettings& settings);

    // The font and colour of a style: the base font with the style's weight,
    // slant and underline; SpecialCharSymbol uses the family "Symbol".
    std::pair<QFont, QColor> highlightStyle(SyntaxStyle style) const;
    // The font of the whole editor: that of the Standard style.
    QFont editorFont() const { return highlightStyle(Standard).first; }

    // Read or write all twelve styles and the base font. A style or the base
    // font is taken from the store only when every one of its entries was
    // read; otherwise it keeps its current value.
    void loadSettings();
    void saveSettings() const;

    // `ok` reports whether all six entries were present and valid (colour
    // components 0-255); otherwise the result is not meant to be used.
    SyntaxStyleSettings loadFontStyle(ORMAApplicationSettings& settings, SyntaxStyle style,
                                      bool* ok = nullptr);
    void saveFontStyle(ORMAApplicationSettings& settings, SyntaxStyle style,
                       const SyntaxStyleSettings& styleSettings) const;
    // `ok` reports whether a family and a positive point size were read.
    QFont loadBaseFont(ORMAApplicationSettings& settings, bool* ok = nullptr);
    void saveBaseFont(ORMAApplicationSettings& settings, const QFont& font) const;

    // The settings path of a style, "styles/" + its text.
    static QString stylePath(SyntaxStyle style) { return "styles/" + styleText(style); }

private:
    std::map<SyntaxStyle, SyntaxStyleSettings> styles_;
    QFont baseFont_;
};
