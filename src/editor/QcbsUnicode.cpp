// SPDX-License-Identifier: GPL-3.0-or-later
// The table of CIF backslash codes with their Unicode characters, and the conversions.
#include "editor/QcbsUnicode.hpp"

#include <QHash>
#include <algorithm>
#include <cstring>
#include <vector>

namespace {

using E = QcbsUnicode;

// The special codes of CIF 1.1 text fields. A few characters that people
// paste for the same thing (micro sign, final sigma, Angstrom and ohm signs,
// other angle brackets, "approximately equal") are extra ToMarkupOnly rows.
constexpr QcbsUnicode::Entry kTable[] = {
    // Greek letters
    {E::GreekLetter, "\\a", u'\u03B1', E::BothWays, "alpha"},
    {E::GreekLetter, "\\b", u'\u03B2', E::BothWays, "beta"},
    {E::GreekLetter, "\\c", u'\u03C7', E::BothWays, "chi"},
    {E::GreekLetter, "\\d", u'\u03B4', E::BothWays, "delta"},
    {E::GreekLetter, "\\e", u'\u03B5', E::BothWays, "epsilon"},
    {E::GreekLetter, "\\f", u'\u03C6', E::BothWays, "phi"},
    {E::GreekLetter, "\\g", u'\u03B3', E::BothWays, "gamma"},
    {E::GreekLetter, "\\h", u'\u03B7', E::BothWays, "eta"},
    {E::GreekLetter, "\\i", u'\u03B9', E::BothWays, "iota"},
    {E::GreekLetter, "\\k", u'\u03BA', E::BothWays, "kappa"},
    {E::GreekLetter, "\\l", u'\u03BB', E::BothWays, "lambda"},
    {E::GreekLetter, "\\m", u'\u03BC', E::BothWays, "mu"},
    {E::GreekLetter, "\\n", u'\u03BD', E::BothWays, "nu"},
    {E::GreekLetter, "\\o", u'\u03BF', E::BothWays, "omicron"},
    {E::GreekLetter, "\\p", u'\u03C0', E::BothWays, "pi"},
    {E::GreekLetter, "\\q", u'\u03B8', E::BothWays, "theta"},
    {E::GreekLetter, "\\r", u'\u03C1', E::BothWays, "rho"},
    {E::GreekLetter, "\\s", u'\u03C3', E::BothWays, "sigma"},
    {E::GreekLetter, "\\t", u'\u03C4', E::BothWays, "tau"},
    {E::GreekLetter, "\\u", u'\u03C5', E::BothWays, "upsilon"},
    {E::GreekLetter, "\\w", u'\u03C9', E::BothWays, "omega"},
    {E::GreekLetter, "\\x", u'\u03BE', E::BothWays, "xi"},
    {E::GreekLetter, "\\y", u'\u03C8', E::BothWays, "psi"},
    {E::GreekLetter, "\\z", u'\u03B6', E::BothWays, "zeta"},
    {E::GreekLetter, "\\A", u'\u0391', E::BothWays, "Alpha"},
    {E::GreekLetter, "\\B", u'\u0392', E::BothWays, "Beta"},
    {E::GreekLetter, "\\C", u'\u03A7', E::BothWays, "Chi"},
    {E::GreekLetter, "\\D", u'\u0394', E::BothWays, "Delta"},
    {E::GreekLetter, "\\E", u'\u0395', E::BothWays, "Epsilon"},
    {E::GreekLetter, "\\F", u'\u03A6', E::BothWays, "Phi"},
    {E::GreekLetter, "\\G", u'\u0393', E::BothWays, "Gamma"},
    {E::GreekLetter, "\\H", u'\u0397', E::BothWays, "Eta"},
    {E::GreekLetter, "\\I", u'\u0399', E::BothWays, "Iota"},
    {E::GreekLetter, "\\K", u'\u039A', E::BothWays, "Kappa"},
    {E::GreekLetter, "\\L", u'\u039B', E::BothWays, "Lambda"},
    {E::GreekLetter, "\\M", u'\u039C', E::BothWays, "Mu"},
    {E::GreekLetter, "\\N", u'\u039D', E::BothWays, "Nu"},
    {E::GreekLetter, "\\O", u'\u039F', E::BothWays, "Omicron"},
    {E::GreekLetter, "\\P", u'\u03A0', E::BothWays, "Pi"},
    {E::GreekLetter, "\\Q", u'\u0398', E::BothWays, "Theta"},
    {E::GreekLetter, "\\R", u'\u03A1', E::BothWays, "Rho"},
    {E::GreekLetter, "\\S", u'\u03A3', E::BothWays, "Sigma"},
    {E::GreekLetter, "\\T", u'\u03A4', E::BothWays, "Tau"},
    {E::GreekLetter, "\\U", u'\u03A5', E::BothWays, "Upsilon"},
    {E::GreekLetter, "\\W", u'\u03A9', E::BothWays, "Omega"},
    {E::GreekLetter, "\\X", u'\u039E', E::BothWays, "Xi"},
    {E::GreekLetter, "\\Y", u'\u03A8', E::BothWays, "Psi"},
    {E::GreekLetter, "\\Z", u'\u0396', E::BothWays, "Zeta"},
    {E::GreekLetter, "\\m", u'\u00B5', E::ToMarkupOnly, "micro sign"},
    {E::GreekLetter, "\\s", u'\u03C2', E::ToMarkupOnly, "final sigma"},
    {E::GreekLetter, "\\f", u'\u03D5', E::ToMarkupOnly, "phi symbol"},
    {E::GreekLetter, "\\q", u'\u03D1', E::ToMarkupOnly, "theta symbol"},
    {E::GreekLetter, "\\W", u'\u2126', E::ToMarkupOnly, "ohm sign"},
    // Accents, written before the letter they sit on
    {E::Accent, "\\'", u'\u0301', E::BothWays, "acute"},
    {E::Accent, "\\`", u'\u0300', E::BothWays, "grave"},
    {E::Accent, "\\^", u'\u0302', E::BothWays, "circumflex"},
    {E::Accent, "\\\"", u'\u0308', E::BothWays, "umlaut"},
    {E::Accent, "\\~", u'\u0303', E::BothWays, "tilde"},
    {E::Accent, "\\;", u'\u0328', E::BothWays, "ogonek"},
    {E::Accent, "\\>", u'\u030B', E::BothWays, "double acute"},
    {E::Accent, "\\=", u'\u0304', E::BothWays, "overbar"},
    {E::Accent, "\\.", u'\u0307', E::BothWays, "overdot"},
    {E::Accent, "\\<", u'\u030C', E::BothWays, "hacek"},
    {E::Accent, "\\,", u'\u0327', E::BothWays, "cedilla"},
    {E::Accent, "\\(", u'\u0306', E::BothWays, "breve"},
    // Special letters
    {E::SpecialLetter, "\\%a", u'\u00E5', E::BothWays, "a-ring"},
    {E::SpecialLetter, "\\%A", u'\u00C5', E::BothWays, "A-ring (Angstrom)"},
    {E::SpecialLetter, "\\%A", u'\u212B', E::ToMarkupOnly, "Angstrom sign"},
    {E::SpecialLetter, "\\?i", u'\u0131', E::BothWays, "dotless i"},
    {E::SpecialLetter, "\\&s", u'\u00DF', E::BothWays, "German eszett"},
    {E::SpecialLetter, "\\/o", u'\u00F8', E::BothWays, "o-slash"},
    {E::SpecialLetter, "\\/O", u'\u00D8', E::BothWays, "O-slash"},
    {E::SpecialLetter, "\\/l", u'\u0142', E::BothWays, "Polish l"},
    {E::SpecialLetter, "\\/L", u'\u0141', E::BothWays, "Polish L"},
    {E::SpecialLetter, "\\/d", u'\u0111', E::BothWays, "barred d"},
    {E::SpecialLetter, "\\/D", u'\u0110', E::BothWays, "barred D"},
    // Other symbols
    {E::Symbol, "\\%", u'\u00B0', E::BothWays, "degree"},
    {E::Symbol, "--", u'\u2013', E::BothWays, "dash"},
    {E::Symbol, "---", u'\u2014', E::BothWays, "single bond (long dash)"},
    {E::Symbol, "\\\\db", u'=', E::ToUnicodeOnly, "double bond"},
    {E::Symbol, "\\\\tb", u'\u2261', E::BothWays, "triple bond"},
    {E::Symbol, "\\\\ddb", 0, E::CodeOnly, "delocalized double bond"},
    {E::Symbol, "\\\\sim", u'\u223C', E::BothWays, "similar to"},
    {E::Symbol, "\\\\simeq", u'\u2243', E::BothWays, "approximately equal"},
    {E::Symbol, "\\\\simeq", u'\u2248', E::ToMarkupOnly, "almost equal"},
    {E::Symbol, "\\\\infty", u'\u221E', E::BothWays, "infinity"},
    {E::Symbol, "\\\\times", u'\u00D7', E::BothWays, "times"},
    {E::Symbol, "+-", u'\u00B1', E::BothWays, "plus or minus"},
    {E::Symbol, "-+", u'\u2213', E::BothWays, "minus or plus"},
    {E::Symbol, "\\\\square", u'\u25A1', E::BothWays, "square"},
    {E::Symbol, "\\\\neq", u'\u2260', E::BothWays, "not equal"},
    {E::Symbol, "\\\\rangle", u'\u27E9', E::BothWays, "right angle bracket"},
    {E::Symbol, "\\\\rangle", u'\u232A', E::ToMarkupOnly, "right-pointing angle bracket"},
    {E::Symbol, "\\\\rangle", u'\u3009', E::ToMarkupOnly, "right angle bracket (CJK)"},
    {E::Symbol, "\\\\langle", u'\u27E8', E::BothWays, "left angle bracket"},
    {E::Symbol, "\\\\langle", u'\u2329', E::ToMarkupOnly, "left-pointing angle bracket"},
    {E::Symbol, "\\\\langle", u'\u3008', E::ToMarkupOnly, "left angle bracket (CJK)"},
    {E::Symbol, "\\\\rightarrow", u'\u2192', E::BothWays, "right arrow"},
    {E::Symbol, "\\\\leftarrow", u'\u2190', E::BothWays, "left arrow"},
};

bool isAsciiLetter(QChar c) {
    const char16_t u = c.unicode();
    return (u >= u'a' && u <= u'z') || (u >= u'A' && u <= u'Z');
}

// The letter with the combining mark, precomposed when Unicode has the pair
// as one character.
QString composed(QChar letter, char16_t mark) {
    return (QString(letter) + QChar(mark)).normalized(QString::NormalizationForm_C);
}

// Character -> code, for every character markupText converts, including the
// precomposed accented ASCII letters. Built once.
const QHash<char16_t, QString>& markupOf() {
    static const QHash<char16_t, QString> map = [] {
        QHash<char16_t, QString> m;
        for (const auto& entry : kTable) {
            if (entry.group == E::Accent) {
                for (char16_t letter = u'A'; letter <= u'z'; ++letter) {
                    if (!isAsciiLetter(QChar(letter))) continue;
                    const QString pair = composed(QChar(letter), entry.character);
                    if (pair.size() == 1)
                        m.insert(pair.at(0).unicode(), QLatin1String(entry.code) + QChar(letter));
                }
            } else if (entry.use == E::BothWays || entry.use == E::ToMarkupOnly) {
                m.insert(entry.character, QLatin1String(entry.code));
            }
        }
        return m;
    }();
    return map;
}

// The accent code of a combining mark, or null.
const QcbsUnicode::Entry* accentOfMark(char16_t mark) {
    for (const auto& entry : kTable)
        if (entry.group == E::Accent && entry.character == mark) return &entry;
    return nullptr;
}

// Codes by their first character, longest first, for unicodeText.
const QHash<char16_t, std::vector<const QcbsUnicode::Entry*>>& codesByFirstChar() {
    static const auto map = [] {
        QHash<char16_t, std::vector<const QcbsUnicode::Entry*>> m;
        for (const auto& entry : kTable)
            if (entry.use != E::ToMarkupOnly) m[static_cast<char16_t>(entry.code[0])].push_back(&entry);
        for (auto& list : m)
            std::stable_sort(list.begin(), list.end(), [](const auto* a, const auto* b) {
                return std::strlen(a->code) > std::strlen(b->code);
            });
        return m;
    }();
    return map;
}

}  // namespace

std::span<const QcbsUnicode::Entry> QcbsUnicode::table() { return kTable; }

QString QcbsUnicode::markupText(const QString& text) {
    const auto firstSpecial =
        std::find_if(text.begin(), text.end(), [](QChar c) { return c.unicode() >= 0x80; });
    if (firstSpecial == text.end()) return text;

    const auto& markup = markupOf();
    QString out;
    out.reserve(text.size() + text.size() / 4);
    out.append(QStringView(text.begin(), firstSpecial));
    for (auto it = firstSpecial; it != text.end(); ++it) {
        const QChar c = *it;
        if (c.unicode() < 0x80) {
            out.append(c);
            continue;
        }
        const auto found = markup.constFind(c.unicode());
        if (found != markup.constEnd()) {
            out.append(*found);
            continue;
        }
        // A combining accent after a plain letter: "e" + U+0301 -> "\'e".
        const Entry* accent = accentOfMark(c.unicode());
        if (accent != nullptr && it != text.begin() && isAsciiLetter(*(it - 1))) {
            const QChar letter = *(it - 1);
            out.chop(1);
            out.append(QLatin1String(accent->code));
            out.append(letter);
            continue;
        }
        out.append(c);
    }
    return out;
}

QString QcbsUnicode::unicodeText(const QString& text) {
    const auto& codes = codesByFirstChar();
    QString out;
    out.reserve(text.size());
    const QStringView view(text);
    qsizetype i = 0;
    while (i < view.size()) {
        const auto candidates = codes.constFind(view[i].unicode());
        const Entry* match = nullptr;
        if (candidates != codes.constEnd()) {
            for (const Entry* entry : *candidates) {
                if (!view.mid(i).startsWith(QLatin1String(entry->code))) continue;
                const qsizetype length = static_cast<qsizetype>(std::strlen(entry->code));
                if (entry->group == Accent && !(i + length < view.size() && isAsciiLetter(view[i + length])))
                    continue;
                match = entry;
                break;
            }
        }
        if (match == nullptr) {
            // An unknown doubled backslash is copied whole, so that its second
            // backslash does not start a code.
            const qsizetype length = view.mid(i).startsWith(QLatin1String("\\\\")) ? 2 : 1;
            out.append(view.mid(i, length));
            i += length;
            continue;
        }
        const qsizetype length = static_cast<qsizetype>(std::strlen(match->code));
        if (match->group == Accent) {
            out.append(composed(view[i + length], match->character));
            i += length + 1;
        } else {
            if (match->use == CodeOnly)
                out.append(QLatin1String(match->code));
            else
                out.append(QChar(match->character));
            i += length;
        }
    }
    return out;
}
