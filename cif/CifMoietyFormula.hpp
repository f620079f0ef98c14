// SPDX-License-Identifier: MIT
// A moiety formula: its parts with their multipliers and charges, added up per element.
#pragma once

#include <map>
#include <string>

// A moiety formula as _chemical_formula_moiety writes it: parts separated by
// commas, each a formula with an optional charge ("C6 H5 N 1+", "Cl -",
// "Cu2+") and an optional multiplier before or after it in parentheses
// ("2(H2 O)", "(Cd 2+)3", "0.5(C H2 Cl2)"). The parts are added up,
// each times its multiplier.
class CifMoietyFormula {
public:
    explicit CifMoietyFormula(const std::string& text);

    bool valid() const { return problem_.empty(); }
    // What could not be read, naming the part; empty when valid.
    const std::string& problem() const { return problem_; }
    const std::map<std::string, double>& counts() const { return counts_; }
    double count(const std::string& element) const;
    // The sum of the parts' charges, each times its multiplier.
    double charge() const { return charge_; }

private:
    bool read_part(const std::string& part);

    std::map<std::string, double> counts_;
    double charge_ = 0.0;
    std::string problem_;
};
