#include <gtest/gtest.h>

#include <QSet>
#include <set>
#include <string>

#include "editor/QcbsUnicode.hpp"

namespace {

using U = QcbsUnicode;

QString code(const U::Entry& entry) { return QLatin1String(entry.code); }
QString character(const U::Entry& entry) { return QString(QChar(entry.character)); }

TEST(QcbsUnicode, EveryCharacterWithItsOwnCodeConvertsBothWays) {
    int checked = 0;
    for (const auto& entry : U::table()) {
        if (entry.group == U::Accent || entry.use != U::BothWays) continue;
        SCOPED_TRACE(entry.description);
        EXPECT_EQ(U::markupText(character(entry)), code(entry));
        EXPECT_EQ(U::unicodeText(code(entry)), character(entry));
        // Inside ordinary text the neighbours are kept.
        EXPECT_EQ(U::markupText("x " + character(entry) + " y"), "x " + code(entry) + " y");
        EXPECT_EQ(U::unicodeText("x " + code(entry) + " y"), "x " + character(entry) + " y");
        ++checked;
    }
    EXPECT_EQ(checked, 48 + 10 + 16);  // Greek letters, special letters, symbols
}

TEST(QcbsUnicode, LookAlikeCharactersTakeTheCodeOfTheirMainCharacter) {
    for (const auto& entry : U::table()) {
        if (entry.use != U::ToMarkupOnly) continue;
        SCOPED_TRACE(entry.description);
        EXPECT_EQ(U::markupText(character(entry)), code(entry));
        const QString back = U::unicodeText(code(entry));
        EXPECT_NE(back, character(entry));
        EXPECT_EQ(U::markupText(back), code(entry));
    }
    EXPECT_EQ(U::markupText(QString::fromUtf8("5 µm")), "5 \\mm");
    EXPECT_EQ(U::markupText(QString::fromUtf8("1.54 \u212B")), "1.54 \\%A");
}

TEST(QcbsUnicode, CodesForAsciiOrMissingCharactersLeaveCifTextAlone) {
    for (const auto& entry : U::table()) {
        if (entry.use == U::ToUnicodeOnly) {
            EXPECT_EQ(U::unicodeText(code(entry)), character(entry)) << entry.description;
            EXPECT_EQ(U::markupText(character(entry)), character(entry)) << entry.description;
        }
        if (entry.use == U::CodeOnly) {
            EXPECT_EQ(U::unicodeText(code(entry)), code(entry)) << entry.description;
        }
    }
    EXPECT_EQ(U::unicodeText("C\\\\dbO"), "C=O");
    EXPECT_EQ(U::markupText("C=O"), "C=O");
}

TEST(QcbsUnicode, EveryAccentCombinesWithLettersBothWays) {
    for (const auto& entry : U::table()) {
        if (entry.group != U::Accent) continue;
        SCOPED_TRACE(entry.description);
        int precomposed = 0;
        for (char letter : std::string("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz")) {
            const QString decomposed = QString(QChar(letter)) + QChar(entry.character);
            const QString expectedCode = code(entry) + QChar(letter);
            // Letter plus combining mark always becomes the code.
            EXPECT_EQ(U::markupText(decomposed), expectedCode);
            const QString single = decomposed.normalized(QString::NormalizationForm_C);
            if (single.size() != 1) {
                EXPECT_EQ(U::unicodeText(expectedCode), decomposed);
                continue;
            }
            ++precomposed;
            EXPECT_EQ(U::markupText(single), expectedCode);
            EXPECT_EQ(U::unicodeText(expectedCode), single);
        }
        EXPECT_GT(precomposed, 0) << "no letter of the alphabet carries this accent";
    }
}

TEST(QcbsUnicode, WellKnownLettersGetTheirCifCodes) {
    EXPECT_EQ(U::markupText(QString::fromUtf8("Müller, Señor, Brontë, Dvořák, Łódź, Ångström, Straße")),
              "M\\\"uller, Se\\~nor, Bront\\\"e, Dvo\\<r\\'ak, \\/L\\'od\\'z, \\%Angstr\\\"om, Stra\\&se");
    EXPECT_EQ(U::markupText(QString::fromUtf8("a = 90°, U = 0.02 ± 0.01 Å², α–β")),
              "a = 90\\%, U = 0.02 +- 0.01 \\%A\u00B2, \\a--\\b");
    EXPECT_EQ(U::unicodeText("Dvo\\<r\\'ak, \\%Angstr\\\"om, 5\\%C"),
              QString::fromUtf8("Dvořák, Ångström, 5°C"));
}

TEST(QcbsUnicode, LongestCodeWinsAndUnknownCodesAreKept) {
    EXPECT_EQ(U::unicodeText("a---b--c"), QString::fromUtf8("a\u2014b\u2013c"));
    EXPECT_EQ(U::unicodeText("\\%a \\%A \\%"), QString::fromUtf8("å Å °"));
    EXPECT_EQ(U::unicodeText("\\\\simeq \\\\sim"), QString::fromUtf8("\u2243 \u223C"));
    // A doubled backslash does not start a Greek letter; a lone accent or an
    // unknown letter stays as written.
    EXPECT_EQ(U::unicodeText("\\\\a \\'1 \\j \\\\foo \\"), "\\\\a \\'1 \\j \\\\foo \\");
}

TEST(QcbsUnicode, TextWithoutSpecialCharactersIsReturnedUntouched) {
    const QString ascii = "_cell_length_a 5.4(2)\n;\n text\n;\n";
    EXPECT_EQ(U::markupText(ascii).constData(), ascii.constData());
    // Characters without a code survive, surrogate pairs included.
    const QString other = QString::fromUtf8("漢字 \U0001F600 ¹");
    EXPECT_EQ(U::markupText(other), other);
    EXPECT_EQ(U::markupText(QString()), QString());
    EXPECT_EQ(U::unicodeText(QString()), QString());
}

TEST(QcbsUnicode, NoTwoEntriesClaimTheSameCharacterOrTwoWayCode) {
    QSet<char16_t> characters;
    std::set<std::string> twoWayCodes;
    for (const auto& entry : U::table()) {
        if (entry.use == U::CodeOnly) continue;
        EXPECT_FALSE(characters.contains(entry.character)) << entry.description;
        characters.insert(entry.character);
        if (entry.use == U::BothWays) {
            EXPECT_TRUE(twoWayCodes.insert(entry.code).second) << entry.description;
        }
    }
}

}  // namespace
