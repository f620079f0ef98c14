// SPDX-License-Identifier: MIT
// Cross-checks of a block's space-group items: H-M symbol, Hall symbol, number and operators.
#include "cif/CifSymmetryCheck.hpp"

#include <cstring>
#include <gemmi/symmetry.hpp>

#include "cif/CifBlockSymmetry.hpp"
#include "cif/CifCheckFindings.hpp"
#include "cif/CifDataBlock.hpp"

namespace {

// The tabulated setting the operations form, or null.
const gemmi::SpaceGroup* setting_of(const gemmi::GroupOps& ops) { return gemmi::find_spacegroup_by_ops(ops); }

// Whether text is the setting's extended H-M symbol (SpaceGroup::xhm()),
// compared without making it.
bool is_xhm(const std::string& text, const gemmi::SpaceGroup& setting) {
    const std::size_t hm = std::strlen(setting.hm);
    if (text.compare(0, std::string::npos, setting.hm, hm) == 0) return setting.ext == 0;
    return setting.ext != 0 && text.size() == hm + 2 && text.compare(0, hm, setting.hm, hm) == 0 &&
           text[hm] == ':' && text[hm + 1] == setting.ext;
}

std::string name_of(const gemmi::SpaceGroup& group) {
    return group.xhm() + " (" + std::to_string(group.number) + ")";
}

std::string name_of(const gemmi::GroupOps& ops) {
    const gemmi::SpaceGroup* found = setting_of(ops);
    return found == nullptr ? std::string("a setting outside the tables") : name_of(*found);
}

// Whether the H-M symbol names the operations; a symbol without an origin or
// axes choice names any of its choices.
bool symbol_names(const std::string& symbol, const gemmi::GroupOps& ops) {
    std::string xhm = Spacegroup::derive_orma_symbol(symbol);
    if (xhm == "Unknown") return true;  // 361 says so
    bool any_choice = symbol.find(':') == std::string::npos;
    std::string hm = xhm.substr(0, xhm.find(':'));
    for (const gemmi::SpaceGroup& group : gemmi::spacegroup_tables::main) {
        if (group.xhm() == xhm || (any_choice && hm == group.hm)) {
            if (group.operations().is_same_as(ops)) return true;
        }
    }
    return false;
}

// Whether the operations are a tabulated setting of group number.
bool number_fits(int number, const gemmi::GroupOps& ops) {
    for (const gemmi::SpaceGroup& group : gemmi::spacegroup_tables::main) {
        if (group.number == number && group.operations().is_same_as(ops)) return true;
    }
    return false;
}

}  // namespace

CifSymmetryCheck::CifSymmetryCheck(const CifDataBlock& block, const CifBlockSymmetry& symmetry,
                                   CifCheckFindings& findings)
    : block_(block), symmetry_(symmetry), findings_(findings) {}

void CifSymmetryCheck::check_symbol() {
    const std::string& symbol = symmetry_.symbol();
    if (symbol.empty()) return;
    const std::string& derived = symmetry_.derived_symbol();
    if (derived == "Unknown") {
        findings_.add(CifError(CifError::space_group_unknown,
                               findings_.value_line(block_, symmetry_.symbol_name(), 0), symbol));
        return;
    }
    int symbol_number = symmetry_.symbol_group().number;
    if (symmetry_.number() != 0 && symmetry_.number() != symbol_number)
        findings_.add(CifError::calculated_value_differs, block_, symmetry_.number_name(),
                      " (" + std::to_string(symbol_number) + " for " + symbol + ")");
    const Spacegroup* group = symmetry_.spacegroup_of_operators();
    if (group == nullptr || !group->operators_readable() || group->symbol() == "Unknown") return;
    // A symbol without an origin or axes choice agrees with either choice.
    auto without_choice = [](const std::string& text) { return text.substr(0, text.find(':')); };
    bool agrees = group->symbol() == derived || (symbol.find(':') == std::string::npos &&
                                                 without_choice(group->symbol()) == without_choice(derived));
    if (!agrees)
        findings_.add(CifError(CifError::symmetry_disagrees,
                               findings_.value_line(block_, symmetry_.symbol_name(), 0), symbol,
                               group->symbol()));
}

void CifSymmetryCheck::check_hall_and_number() {
    const gemmi::GroupOps* operators = symmetry_.operations_of_operators();
    const std::string& hall_name = symmetry_.hall_name();
    if (!symmetry_.hall().empty()) {
        auto quoted = [this] { return "'" + symmetry_.hall() + "'"; };
        // A Hall symbol as the tables write it is compared by its setting,
        // without building its group where the operators' is known.
        const gemmi::SpaceGroup* setting = symmetry_.hall_setting();
        const gemmi::GroupOps* hall = setting == nullptr ? symmetry_.operations_of_hall() : nullptr;
        if (setting == nullptr && hall == nullptr) {
            findings_.add(CifError::space_group_items_disagree, CifError::warning, block_, hall_name,
                          " (" + quoted() + " cannot be read as a Hall symbol)");
            return;
        }
        auto hall_name_of = [&] { return setting != nullptr ? name_of(*setting) : name_of(*hall); };
        if (operators != nullptr) {
            const Spacegroup* group = symmetry_.spacegroup_of_operators_if_built();
            bool same = setting != nullptr && group != nullptr && group->symbol() != "Unknown"
                            ? is_xhm(group->symbol(), *setting)
                            : symmetry_.operations_of_hall()->is_same_as(*operators);
            if (!same)
                findings_.add(CifError::space_group_items_disagree, CifError::warning, block_, hall_name,
                              " (" + quoted() + " gives " + hall_name_of() + "; the operators of " +
                                  symmetry_.operators_name() + " form " + name_of(*operators) + ")");
        } else if (!symmetry_.symbol().empty() &&
                   !symbol_names(symmetry_.symbol(), *symmetry_.operations_of_hall())) {
            // With operators, the H-M symbol is checked against them (362).
            findings_.add(CifError::space_group_items_disagree, CifError::warning, block_, hall_name,
                          " (" + quoted() + " gives " + hall_name_of() + "; " + symmetry_.symbol_name() +
                              " '" + symmetry_.symbol() + "' is " +
                              Spacegroup::derive_orma_symbol(symmetry_.symbol()) + ")");
        }
        // Only the settings of the stated number are tried; the table is
        // searched for a name only when none fits.
        const int number = symmetry_.number();
        bool fits = setting != nullptr ? setting->number == number
                                       : number < 1 || number > 230 || number_fits(number, *hall) ||
                                             setting_of(*hall) == nullptr;
        if (number >= 1 && number <= 230 && !fits)
            findings_.add(CifError::space_group_items_disagree, CifError::warning, block_,
                          symmetry_.number_name(),
                          " (" + std::to_string(number) + "; " + hall_name + " " + quoted() + " gives " +
                              hall_name_of() + ")");
        return;
    }
    // Without a Hall symbol or an H-M symbol (which 303 checks), the number
    // against the operators.
    if (!symmetry_.symbol().empty() || operators == nullptr || symmetry_.number() == 0) return;
    const Spacegroup* group = symmetry_.spacegroup_of_operators();
    if (group != nullptr && group->number() != 0 && group->number() != symmetry_.number())
        findings_.add(
            CifError::space_group_items_disagree, CifError::warning, block_, symmetry_.number_name(),
            " (" + std::to_string(symmetry_.number()) + "; the operators of " + symmetry_.operators_name() +
                " form " + group->symbol() + " (" + std::to_string(group->number()) + "))");
}
