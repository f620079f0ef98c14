// SPDX-License-Identifier: MIT
// A moiety formula: its parts with their multipliers and charges, added up per element.
#include "cif/CifMoietyFormula.hpp"

#include <cstdlib>
#include <sstream>

#include "cif/CifCellContents.hpp"

namespace {

bool is_digit(char c) { return (c >= '0' && c <= '9') || c == '.'; }

std::string trimmed(const std::string& text) {
    std::size_t first = text.find_first_not_of(" \t\r\n");
    if (first == std::string::npos) return std::string();
    std::size_t last = text.find_last_not_of(" \t\r\n");
    return text.substr(first, last - first + 1);
}

// A number that makes up the whole text; false otherwise.
bool number_of(const std::string& text, double& value) {
    if (text.empty() || text.find_first_not_of("0123456789.") != std::string::npos) return false;
    char* end = nullptr;
    value = std::strtod(text.c_str(), &end);
    return *end == '\0';
}

// "+", "2-", "1+" as a charge.
bool charge_of(const std::string& token, double& charge) {
    char sign = token.back();
    if (sign != '+' && sign != '-') return false;
    double size = 1.0;
    std::string digits = token.substr(0, token.size() - 1);
    if (!digits.empty() && !number_of(digits, size)) return false;
    charge = sign == '+' ? size : -size;
    return true;
}

}  // namespace

CifMoietyFormula::CifMoietyFormula(const std::string& text) {
    std::string part;
    int depth = 0;
    for (char c : text + ",") {
        if (c == '(') ++depth;
        if (c == ')') --depth;
        if (c == ',' && depth == 0) {
            if (!read_part(trimmed(part))) return;
            part.clear();
        } else {
            part += c;
        }
    }
    if (depth != 0) {
        problem_ = "part '" + trimmed(part) + "' has no closing parenthesis";
        return;
    }
    if (counts_.empty()) problem_ = "no element in it";
}

double CifMoietyFormula::count(const std::string& element) const {
    auto found = counts_.find(element);
    return found == counts_.end() ? 0.0 : found->second;
}

bool CifMoietyFormula::read_part(const std::string& part) {
    auto fail = [&](const std::string& why) {
        problem_ = "part '" + part + "' " + why;
        return false;
    };
    if (part.empty()) return fail("is empty");
    double multiplier = 1.0;
    std::string inner = part;
    std::size_t open = part.find('(');
    if (open != std::string::npos) {
        std::size_t close = part.rfind(')');
        if (close == std::string::npos || close < open) return fail("has no closing parenthesis");
        std::string before = trimmed(part.substr(0, open));
        std::string after = trimmed(part.substr(close + 1));
        if (!before.empty() && !after.empty()) return fail("has two multipliers");
        std::string factor = before.empty() ? after : before;
        if (!factor.empty() && !number_of(factor, multiplier))
            return fail("has a multiplier that is no number");
        inner = part.substr(open + 1, close - open - 1);
        if (inner.find_first_of("()") != std::string::npos) return fail("has nested parentheses");
    }
    std::istringstream tokens(inner);
    std::string token;
    bool charged = false;
    while (tokens >> token) {
        double charge = 0.0;
        if (charge_of(token, charge)) {
            if (charged) return fail("has two charges");
            charged = true;
            charge_ += multiplier * charge;
            continue;
        }
        std::string element = cif_element_of(token);
        if (element.empty()) return fail("has '" + token + "', which is no element");
        std::string rest = token.substr(element.size());
        double count = 1.0;
        // "Cu2+" and "Cl-": an element with its charge.
        if (!rest.empty() && (rest.back() == '+' || rest.back() == '-')) {
            if (charged || !charge_of(rest, charge)) return fail("has '" + token + "', which cannot be read");
            charged = true;
            charge_ += multiplier * charge;
        } else if (!rest.empty() && (!is_digit(rest[0]) || !number_of(rest, count))) {
            return fail("has '" + token + "', which cannot be read");
        }
        counts_[element] += multiplier * count;
    }
    return true;
}
