// SPDX-License-Identifier: GPL-3.0-or-later
// Converting between CIF backslash codes and Unicode: the table, accents, running text.
#include <gtest/gtest.h>

#include <QSet>
#include <set>
#include <string>

#include "editor/QcbsUnicode.hpp"

namespace {

using U = QcbsUnicode;

TEST(QcbsUnicode, EveryEntryOfTheTableConvertsAsItsUseSays) {
    int bothWays = 0;
    QSet<char16_t> characters;
    std::set<std::string> twoWayCodes;
    for (const auto& entry : U::table()) {
        SCOPED_TRACE(entry.description);
        const QString code = QLatin1String(entry.code);
        const QString character(QChar(entry.character));
        if (entry.use != U::CodeOnly) {
            EXPECT_FALSE(characters.contains(entry.character)) << "character claimed twice";
            characters.insert(entry.character);
        }
        if (entry.group == U::Accent) continue;  // see the next test
        switch (entry.use) {
            case U::BothWays:
                EXPECT_TRUE(twoWayCodes.insert(entry.code).second) << "code claimed twice";
                EXPECT_EQ(U::markupText(character), code);
                EXPECT_EQ(U::unicodeText(code), character);
                // Inside ordinary text the neighbours are kept.
                EXPECT_EQ(U::markupText("x " + character + " y"), "x " + code + " y");
                EXPECT_EQ(U::unicodeText("x " + code + " y"), "x " + character + " y");
                ++bothWays;
                break;
            case U::ToMarkupOnly:  // a look-alike takes the code of its main character
                EXPECT_EQ(U::markupText(character), code);
                EXPECT_NE(U::unicodeText(code), character);
                EXPECT_EQ(U::markupText(U::unicodeText(code)), code);
                break;
            case U::ToUnicodeOnly:  // ASCII: CIF text keeps it as it is
                EXPECT_EQ(U::unicodeText(code), character);
                EXPECT_EQ(U::markupText(character), character);
                break;
            case U::CodeOnly:
                EXPECT_EQ(U::unicodeText(code), code);
                break;
        }
    }
    EXPECT_EQ(bothWays, 48 + 10 + 16);  // Greek letters, special letters, symbols
}

TEST(QcbsUnicode, EveryAccentCombinesWithLettersBothWays) {
    for (const auto& entry : U::table()) {
        if (entry.group != U::Accent) continue;
        SCOPED_TRACE(entry.description);
        int precomposed = 0;
        for (char letter : std::string("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz")) {
            const QString decomposed = QString(QChar(letter)) + QChar(entry.character);
            const QString expectedCode = QLatin1String(entry.code) + QChar(letter);
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

TEST(QcbsUnicode, WordsAndCodesInRunningText) {
    // Unicode text and the CIF text it becomes.
    const std::pair<const char*, const char*> toMarkup[] = {
        {"Müller, Señor, Brontë, Dvořák, Łódź, Ångström, Straße",
         "M\\\"uller, Se\\~nor, Bront\\\"e, Dvo\\<r\\'ak, \\/L\\'od\\'z, \\%Angstr\\\"om, Stra\\&se"},
        {"a = 90°, U = 0.02 ± 0.01 Å², α–β", "a = 90\\%, U = 0.02 +- 0.01 \\%A\u00B2, \\a--\\b"},
        // Characters without a code survive, surrogate pairs included.
        {"漢字 \U0001F600 ¹", "漢字 \U0001F600 ¹"},
        {"", ""},
    };
    for (const auto& [unicode, markup] : toMarkup)
        EXPECT_EQ(U::markupText(QString::fromUtf8(unicode)), QString::fromUtf8(markup)) << unicode;
    // CIF text and the Unicode text it shows as: the longest code wins,
    // unknown codes are kept.
    const std::pair<const char*, const char*> toUnicode[] = {
        {"Dvo\\<r\\'ak, \\%Angstr\\\"om, 5\\%C", "Dvořák, Ångström, 5°C"},
        // A doubled backslash does not start a Greek letter; a lone accent or
        // an unknown letter stays as written.
        {"\\\\a \\'1 \\j \\\\foo \\", "\\\\a \\'1 \\j \\\\foo \\"},
        {"", ""},
    };
    for (const auto& [markup, unicode] : toUnicode)
        EXPECT_EQ(U::unicodeText(QString::fromUtf8(markup)), QString::fromUtf8(unicode)) << markup;
    // Plain ASCII is handed back without a copy.
    const QString ascii = "_cell_length_a 5.4(2)\n;\n text\n;\n";
    EXPECT_EQ(U::markupText(ascii).constData(), ascii.constData());
}

}  // namespace
