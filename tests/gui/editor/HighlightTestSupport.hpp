#pragma once

#include <algorithm>
#include <cctype>
#include <initializer_list>
#include <set>
#include <string>
#include <vector>

#include "cif/CifDictionary.hpp"
#include "editor/QcbsFontStyleSettings.hpp"

// A dictionary that defines the names it is given, compared without regard
// to case, and counts the questions it was asked.
class SmallTestDictionary : public CifDictionary {
public:
    SmallTestDictionary(std::initializer_list<std::string> names) {
        for (const std::string& name : names) names_.insert(lower(name));
    }
    bool is_defined(const std::string& name) const override {
        asked_.push_back(name);
        return names_.count(lower(name)) != 0;
    }
    const std::vector<std::string>& asked() const { return asked_; }

private:
    static std::string lower(std::string text) {
        std::transform(text.begin(), text.end(), text.begin(),
                       [](unsigned char c) { return std::tolower(c); });
        return text;
    }
    std::set<std::string> names_;
    mutable std::vector<std::string> asked_;
};

// One letter per style, so that a line's styles read as a string:
// S standard, C comment, X text field, T block header, K keyword, D defined
// data name, U custom data name, N special character, Y symbol letter,
// P super/subscript, M markup marker, I invalid character.
inline char styleLetter(QcbsFontStyleSettings::SyntaxStyle style) {
    static const char letters[] = "SCXTKDUNYPMI";
    return QcbsFontStyleSettings::validSyntaxStyle(style) ? letters[style] : '?';
}

template <class Styles>
std::string styleLetters(const Styles& styles) {
    std::string letters;
    for (const auto style : styles) letters.push_back(styleLetter(style));
    return letters;
}
