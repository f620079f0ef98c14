// SPDX-License-Identifier: GPL-3.0-or-later
// The editor's text styles and base font: defaults, round trips, incomplete entries.
#include <gtest/gtest.h>

#include <QApplication>
#include <QSettings>
#include <sstream>

#include "GuiTestSupport.hpp"
#include "base/ORMAApplicationSettings.hpp"
#include "editor/QcbsFontStyleSettings.hpp"

namespace {

using Fs = QcbsFontStyleSettings;
using Settings = QcbsFontStyleSettings::SyntaxStyleSettings;

TEST(FontStyleSettings, NewSettingsHoldTheDefaultStylesUnderTheirTexts) {
    struct Expected {
        Fs::SyntaxStyle style;
        const char* text;
        QColor color;
        bool bold, underline;
    };
    const Expected expected[] = {
        {Fs::Standard, "Standard", QColor(0, 0, 0), false, false},
        {Fs::Comment, "Comment", QColor(0, 128, 0), false, false},
        {Fs::String, "String", QColor(0, 85, 0), true, false},
        {Fs::Type, "Type", QColor(255, 0, 0), true, false},
        {Fs::Keyword, "Keyword", QColor(255, 0, 255), true, false},
        {Fs::CoreDataItem, "CoreDataItem", QColor(0, 0, 255), true, false},
        {Fs::CustomDataItem, "CustomDataItem", QColor(0, 0, 128), true, false},
        {Fs::SpecialCharNormal, "SpecialCharNormal", QColor(128, 128, 0), true, false},
        {Fs::SpecialCharSymbol, "SpecialCharSymbol", QColor(128, 128, 0), true, false},
        {Fs::Superscript, "Superscript", QColor(0, 0, 255), false, false},
        {Fs::SMarker, "SMarker", QColor(192, 192, 192), true, false},
        {Fs::InvalidCharacter, "InvalidCharacter", QColor(128, 0, 128), true, true},
    };
    const Fs fonts;
    std::vector<Fs::SyntaxStyle> members;
    Fs::syntaxStyleMapping().all_members(members);
    ASSERT_EQ(members.size(), std::size(expected));
    for (std::size_t i = 0; i < members.size(); ++i) {
        SCOPED_TRACE(expected[i].text);
        EXPECT_EQ(members[i], expected[i].style);
        EXPECT_EQ(Fs::styleText(expected[i].style), expected[i].text);
        EXPECT_EQ(fonts.styleSettings(expected[i].style),
                  Settings(expected[i].bold, false, expected[i].underline, expected[i].color));
    }
    EXPECT_FALSE(Fs::validSyntaxStyle(12));
    EXPECT_FALSE(Fs::validSyntaxStyle(-1));
    ScopedLogCapture log;
    EXPECT_TRUE(Fs::styleText(Fs::SyntaxStyle(12)).isNull());
    EXPECT_NE(log.text().find("Internal Error: member 12 not in EnumTextMapping"), std::string::npos);

    std::ostringstream out;
    Settings(true, false, true, QColor(0, 85, 0)).print(out);
    EXPECT_EQ(out.str(), "bold: 1 italic: 0 underline: 1 color: #005500");
}

TEST(FontStyleSettings, TheBaseFontGivesFamilyAndSizeAndTheStylesTheRest) {
    const QFont application = QApplication::font();
    EXPECT_EQ(Fs(Fs::FixedWidth).baseFont().family(), "Courier");
    EXPECT_EQ(Fs(Fs::FixedWidth).baseFont().pointSize(), application.pointSize());
    EXPECT_EQ(Fs(Fs::VariableWidth).baseFont().family(), application.family());

    Fs fonts;
    QFont chosen("DejaVu Sans Mono", 9);
    chosen.setBold(true);
    chosen.setItalic(true);
    chosen.setUnderline(true);
    fonts.setBaseFont(chosen);
    EXPECT_EQ(fonts.baseFont(), QFont("DejaVu Sans Mono", 9));
    EXPECT_EQ(fonts.editorFont().weight(), QFont::Normal);
    EXPECT_FALSE(fonts.editorFont().italic());
    fonts.setStyleSettings(Fs::Standard, Settings(true, true, false, Qt::black));
    EXPECT_EQ(fonts.editorFont().weight(), QFont::Bold);
    EXPECT_TRUE(fonts.editorFont().italic());
    EXPECT_EQ(fonts.editorFont().pointSize(), 9);

    const auto [invalidFont, invalidColor] = fonts.highlightStyle(Fs::InvalidCharacter);
    EXPECT_EQ(invalidFont.weight(), QFont::Bold);
    EXPECT_TRUE(invalidFont.underline());
    EXPECT_FALSE(invalidFont.italic());
    EXPECT_EQ(invalidFont.family(), "DejaVu Sans Mono");
    EXPECT_EQ(invalidFont.pointSize(), 9);
    EXPECT_EQ(invalidColor, QColor(Qt::darkMagenta));
    EXPECT_EQ(fonts.highlightStyle(Fs::SpecialCharSymbol).first.family(), "Symbol");
    EXPECT_EQ(fonts.highlightStyle(Fs::SpecialCharNormal).first.family(), "DejaVu Sans Mono");
    EXPECT_EQ(fonts.highlightStyle(Fs::Comment).first.weight(), QFont::Normal);
    const auto [keywordFont, keywordColour] = fonts.highlightStyle(Fs::Keyword);
    EXPECT_EQ(keywordColour, QColor(Qt::magenta));
    EXPECT_EQ(keywordFont.weight(), QFont::Bold);
    EXPECT_EQ(keywordFont.pointSize(), 9);
}

TEST(FontStyleSettings, TheSymbolStyleFollowsTheNormalSpecialCharacterStyle) {
    Fs fonts;
    const Settings before = fonts.styleSettings(Fs::SpecialCharSymbol);
    fonts.setStyleSettings(Fs::SpecialCharSymbol, Settings(false, true, true, QColor(1, 2, 3)));
    EXPECT_EQ(fonts.styleSettings(Fs::SpecialCharSymbol), before);
    const Settings normal(false, true, false, QColor(10, 20, 30));
    fonts.setStyleSettings(Fs::SpecialCharNormal, normal);
    EXPECT_EQ(fonts.styleSettings(Fs::SpecialCharSymbol), normal);
    EXPECT_EQ(fonts.styleSettings(Fs::Superscript), Fs::defaultStyleSettings(Fs::Superscript));
}

TEST(FontStyleSettings, StylesAndBaseFontRoundTripThroughTheIniFile) {
    ScopedPrefsDir prefs;
    Fs saved;
    saved.setStyleSettings(Fs::Comment, Settings(true, true, true, QColor(1, 2, 3)));
    saved.setStyleSettings(Fs::SpecialCharNormal, Settings(false, false, true, QColor(200, 100, 0)));
    saved.setBaseFont(QFont("DejaVu Serif", 15));
    saved.saveSettings();
    {
        // The keys as other versions of the program read them.
        const QSettings ini(prefs.iniFile(), QSettings::IniFormat);
        const std::pair<const char*, QString> keys[] = {{"styles/Comment/red", "1"},
                                                        {"styles/Comment/green", "2"},
                                                        {"styles/Comment/blue", "3"},
                                                        {"styles/Comment/underline", "true"},
                                                        {"styles/Comment/italic", "true"},
                                                        {"styles/SpecialCharSymbol/red", "200"},
                                                        {"styles/InvalidCharacter/bold", "true"},
                                                        {"styles/Standard/family", "DejaVu Serif"},
                                                        {"styles/Standard/size", "15"}};
        for (const auto& [key, value] : keys) EXPECT_EQ(ini.value(key).toString(), value) << key;
    }
    Fs loaded(Fs::VariableWidth);
    loaded.loadSettings();
    for (int style = 0; Fs::validSyntaxStyle(style); ++style) {
        EXPECT_EQ(loaded.styleSettings(Fs::SyntaxStyle(style)), saved.styleSettings(Fs::SyntaxStyle(style)))
            << Fs::styleText(Fs::SyntaxStyle(style)).toStdString();
    }
    EXPECT_EQ(loaded.baseFont().family(), "DejaVu Serif");
    EXPECT_EQ(loaded.baseFont().pointSize(), 15);
}

TEST(FontStyleSettings, IncompleteOrInvalidEntriesLeaveThatStyleAtItsDefault) {
    ScopedPrefsDir prefs;
    {
        ORMAApplicationSettings settings;
        settings.writeEntry("styles/Comment/bold", true);  // colour and slant missing
        const Fs other;
        other.saveFontStyle(settings, Fs::Type, Settings(false, true, false, QColor(1, 1, 1)));
        settings.writeEntry("styles/Type/green", 256);  // out of range
        other.saveFontStyle(settings, Fs::Keyword, Settings(false, true, false, QColor(7, 8, 9)));
        // A stored symbol style is never used: it follows the normal one.
        other.saveFontStyle(settings, Fs::SpecialCharSymbol, Settings(false, true, true, QColor(9, 9, 9)));
        settings.writeEntry("styles/Standard/family", "DejaVu Serif");  // size missing
    }
    Fs fonts;
    const QFont before = fonts.baseFont();
    fonts.loadSettings();
    EXPECT_EQ(fonts.styleSettings(Fs::Comment), Fs::defaultStyleSettings(Fs::Comment));
    EXPECT_EQ(fonts.styleSettings(Fs::Type), Fs::defaultStyleSettings(Fs::Type));
    EXPECT_EQ(fonts.styleSettings(Fs::Keyword), Settings(false, true, false, QColor(7, 8, 9)));
    EXPECT_EQ(fonts.styleSettings(Fs::SpecialCharSymbol), Fs::defaultStyleSettings(Fs::SpecialCharNormal));
    EXPECT_EQ(fonts.baseFont(), before);
}

}  // namespace
