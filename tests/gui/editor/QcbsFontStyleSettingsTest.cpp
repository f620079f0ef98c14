#include <gtest/gtest.h>

#include <QApplication>
#include <QSettings>
#include <sstream>
#include <vector>

#include "GuiTestSupport.hpp"
#include "application/ORMAApplicationSettings.hpp"
#include "editor/QcbsFontStyleSettings.hpp"

namespace {

using Fs = QcbsFontStyleSettings;
using Settings = QcbsFontStyleSettings::SyntaxStyleSettings;

struct ExpectedStyle {
    Fs::SyntaxStyle style;
    const char* text;
    QColor color;
    bool bold;
    bool underline;
};

const std::vector<ExpectedStyle>& expectedStyles() {
    static const std::vector<ExpectedStyle> styles{
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
    return styles;
}

TEST(FontStyleSettings, NewSettingsHoldTheDefaultStylesUnderTheirTexts) {
    const Fs fonts;
    std::vector<Fs::SyntaxStyle> members;
    Fs::syntaxStyleMapping().all_members(members);
    ASSERT_EQ(members.size(), expectedStyles().size());
    for (std::size_t i = 0; i < members.size(); ++i) {
        const ExpectedStyle& expected = expectedStyles()[i];
        SCOPED_TRACE(expected.text);
        EXPECT_EQ(members[i], expected.style);
        EXPECT_EQ(Fs::syntaxStyleMapping().text(expected.style), expected.text);
        const Settings style = fonts.styleSettings(expected.style);
        EXPECT_EQ(style.color, expected.color);
        EXPECT_EQ(style.bold, expected.bold);
        EXPECT_FALSE(style.italic);
        EXPECT_EQ(style.underline, expected.underline);
    }
    EXPECT_TRUE(Fs::validSyntaxStyle(11));
    EXPECT_FALSE(Fs::validSyntaxStyle(12));
    EXPECT_FALSE(Fs::validSyntaxStyle(-1));
}

TEST(FontStyleSettings, AskingForAStyleWithoutATextIsReportedAsAnInternalError) {
    ScopedLogCapture log;
    EXPECT_TRUE(Fs::syntaxStyleMapping().text(Fs::SyntaxStyle(12)).isNull());
    EXPECT_NE(log.text().find("Internal Error: member 12 not in EnumTextMapping"), std::string::npos);
    EXPECT_FALSE(Fs::syntaxStyleMapping().contains(Fs::SyntaxStyle(12)));
}

TEST(FontStyleSettings, TheBaseFontStartsAsTheApplicationFontWithCourierForFixedWidth) {
    const QFont application = QApplication::font();
    const Fs fixed(Fs::FixedWidth);
    EXPECT_EQ(fixed.baseFont().family(), "Courier");
    EXPECT_EQ(fixed.baseFont().pointSize(), application.pointSize());
    const Fs variable(Fs::VariableWidth);
    EXPECT_EQ(variable.baseFont().family(), application.family());
}

TEST(FontStyleSettings, TheSymbolStyleFollowsTheNormalSpecialCharacterStyle) {
    Fs fonts;
    const Settings before = fonts.styleSettings(Fs::SpecialCharSymbol);
    fonts.setStyleSettings(Fs::SpecialCharSymbol, Settings(false, true, true, QColor(1, 2, 3)));
    EXPECT_EQ(fonts.styleSettings(Fs::SpecialCharSymbol), before);

    const Settings normal(false, true, false, QColor(10, 20, 30));
    fonts.setStyleSettings(Fs::SpecialCharNormal, normal);
    EXPECT_EQ(fonts.styleSettings(Fs::SpecialCharNormal), normal);
    EXPECT_EQ(fonts.styleSettings(Fs::SpecialCharSymbol), normal);
    // Other styles are untouched.
    EXPECT_EQ(fonts.styleSettings(Fs::Superscript), Fs::defaultStyleSettings(Fs::Superscript));
}

TEST(FontStyleSettings, BoldnessAndSlantComeFromTheStylesNotFromTheBaseFont) {
    Fs fonts;
    QFont chosen("Courier", 12);
    chosen.setBold(true);
    chosen.setItalic(true);
    chosen.setUnderline(true);
    fonts.setBaseFont(chosen);
    EXPECT_EQ(fonts.baseFont().family(), "Courier");
    EXPECT_EQ(fonts.baseFont().pointSize(), 12);
    EXPECT_FALSE(fonts.baseFont().bold());
    EXPECT_FALSE(fonts.baseFont().italic());
    EXPECT_FALSE(fonts.baseFont().underline());

    const QFont editor = fonts.editorFont();
    EXPECT_EQ(editor.weight(), QFont::Normal);
    EXPECT_FALSE(editor.italic());
    EXPECT_EQ(editor.pointSize(), 12);

    fonts.setStyleSettings(Fs::Standard, Settings(true, true, false, Qt::black));
    EXPECT_EQ(fonts.editorFont().weight(), QFont::Bold);
    EXPECT_TRUE(fonts.editorFont().italic());
}

TEST(FontStyleSettings, HighlightStylesCarryWeightSlantUnderlineColourAndTheSymbolFamily) {
    Fs fonts;
    fonts.setBaseFont(QFont("DejaVu Sans Mono", 9));
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

    const QTextCharFormat format = fonts.textFormat(Fs::Keyword);
    EXPECT_EQ(format.foreground().color(), QColor(Qt::magenta));
    EXPECT_EQ(format.font().weight(), QFont::Bold);
    EXPECT_EQ(format.font().pointSize(), 9);
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
        QSettings ini(prefs.iniFile(), QSettings::IniFormat);
        EXPECT_EQ(ini.value("styles/Comment/red").toInt(), 1);
        EXPECT_EQ(ini.value("styles/Comment/green").toInt(), 2);
        EXPECT_EQ(ini.value("styles/Comment/blue").toInt(), 3);
        EXPECT_EQ(ini.value("styles/Comment/underline").toString(), "true");
        EXPECT_EQ(ini.value("styles/SpecialCharSymbol/red").toInt(), 200);
        EXPECT_EQ(ini.value("styles/InvalidCharacter/bold").toString(), "true");
        EXPECT_EQ(ini.value("styles/Standard/family").toString(), "DejaVu Serif");
        EXPECT_EQ(ini.value("styles/Standard/size").toInt(), 15);
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
    EXPECT_EQ(fonts.baseFont().family(), before.family());
    EXPECT_EQ(fonts.baseFont().pointSize(), before.pointSize());
}

TEST(FontStyleSettings, PrintWritesEveryFieldForDiagnostics) {
    std::ostringstream out;
    Settings(true, false, true, QColor(0, 85, 0)).print(out);
    EXPECT_EQ(out.str(), "bold: 1 italic: 0 underline: 1 color: #005500");
}

}  // namespace
