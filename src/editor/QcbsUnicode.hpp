// SPDX-License-Identifier: GPL-3.0-or-later
// Conversion between CIF backslash codes and the Unicode characters they stand for.
#pragma once

#include <QString>
#include <span>

// CIF text is ASCII: Greek letters, accented letters and symbols are written
// as backslash codes ("\a" for alpha, "\'e" for e-acute, "\%A" for the
// Angstrom sign, "\\times" for the multiplication sign). QcbsUnicode converts
// between such codes and the Unicode characters they stand for. All codes
// live in one table, which the special-character browser also lists.
class QcbsUnicode {
public:
    enum Group {
        GreekLetter,    // "\a" .. "\Z"
        Accent,         // "\'" and friends, written before a letter: "\'e"
        SpecialLetter,  // "\%a", "\?i", "\&s", "\/o", ...
        Symbol          // "\%", "--", "+-", "\\times", ...
    };

    // How an entry takes part in the two conversions.
    enum Use {
        BothWays,       // character to code and code to character
        ToMarkupOnly,   // a second character for the same code (the micro sign for "\m")
        ToUnicodeOnly,  // the character is plain ASCII and stays as it is in CIF text ("=" for "\\db")
        CodeOnly        // no Unicode character exists; the code is kept in both directions
    };

    struct Entry {
        Group group;
        const char* code;    // the CIF code, as it stands in the file
        char16_t character;  // the character; for an accent its combining mark; 0 for CodeOnly
        Use use;
        const char* description;
    };

    // Every code, grouped as in the CIF 1.1 conventions: Greek letters,
    // accents, special letters, other symbols.
    static std::span<const Entry> table();

    // Unicode special characters to CIF codes. ASCII text is returned as it
    // is (and shares the input's data); characters without a code are kept.
    // An accented letter, precomposed or as letter plus combining mark,
    // becomes its accent code ("é" -> "\'e").
    static QString markupText(const QString& text);

    // CIF codes to Unicode characters, longest code first ("---" before
    // "--", "\%A" before "\%"). Accent codes give the precomposed letter
    // where Unicode has one. Text that is no code is kept.
    static QString unicodeText(const QString& text);
};
