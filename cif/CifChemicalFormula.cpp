// SPDX-License-Identifier: MIT
// A chemical formula as _chemical_formula_sum writes it, with weights and electron counts.
#include "cif/CifChemicalFormula.hpp"

#include <cstdlib>
#include <gemmi/elem.hpp>

namespace {

bool is_upper(char c) { return c >= 'A' && c <= 'Z'; }
bool is_lower(char c) { return c >= 'a' && c <= 'z'; }
bool is_digit(char c) { return c >= '0' && c <= '9'; }
bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\n'; }

gemmi::El element(const std::string& symbol) {
    gemmi::El el = gemmi::find_element(symbol.c_str());
    // find_element is case-blind and reads "X" as unknown; a formula's
    // symbols are case-exact ("Co" is cobalt, "CO" is not one symbol).
    if (el == gemmi::El::X) return el;
    return gemmi::element_name(el) == symbol ? el : gemmi::El::X;
}

}  // namespace

CifChemicalFormula::CifChemicalFormula(const std::string& text) {
    std::size_t i = 0;
    const std::size_t n = text.size();
    while (i < n) {
        if (is_blank(text[i])) {
            ++i;
            continue;
        }
        if (!is_upper(text[i])) return;
        std::string symbol(1, text[i++]);
        if (i < n && is_lower(text[i])) symbol += text[i++];
        if (element(symbol) == gemmi::El::X) return;
        double count = 1.0;
        std::size_t start = i;
        // A count of up to 15 digits without a point is an exact integer,
        // the double strtod would read.
        double whole = 0.0;
        while (i < n && is_digit(text[i]) && i - start < 15) whole = whole * 10.0 + (text[i++] - '0');
        const bool integer = i > start && (i == n || (!is_digit(text[i]) && text[i] != '.'));
        if (integer) {
            count = whole;
        } else {
            while (i < n && (is_digit(text[i]) || text[i] == '.')) ++i;
        }
        if (!integer && i > start) {
            std::string digits = text.substr(start, i - start);
            char* end = nullptr;
            count = std::strtod(digits.c_str(), &end);
            if (*end != '\0') return;
        }
        if (i < n && !is_blank(text[i]) && !is_upper(text[i])) return;
        parts_.emplace_back(symbol, count);
    }
    valid_ = !parts_.empty();
}

double CifChemicalFormula::weight() const {
    double sum = 0.0;
    for (const auto& [symbol, count] : parts_) sum += count * gemmi::molecular_weight(element(symbol));
    return sum;
}

double CifChemicalFormula::electrons() const {
    double sum = 0.0;
    for (const auto& [symbol, count] : parts_) sum += count * gemmi::Element(element(symbol)).atomic_number();
    return sum;
}
