// SPDX-License-Identifier: MIT
// The quick first look at a loop column's values, before the full check of doubtful ones.
#include "cif/CifColumnCheck.hpp"

CifColumnCheck::CifColumnCheck(const CifItemDefinition& definition) {
    using Type = CifItemDefinition::Type;
    using Contents = CifItemDefinition::Contents;
    if (definition.type == Type::numb) {
        if (!definition.enumerations.empty()) return;  // full check
        // A range open above whose minimum is at most 0 holds every
        // non-negative number; negative ones get the full check.
        if (definition.has_range &&
            (definition.has_maximum || !definition.has_minimum || definition.minimum > 0.0))
            return;
        kind_ = Kind::number;
        negative_ok_ = !definition.has_range;
        uncertainty_ok_ = definition.uncertainty == CifItemDefinition::Uncertainty::allowed;
        point_ok_ = definition.contents != Contents::integer && definition.contents != Contents::count;
        return;
    }
    if (definition.has_range || definition.enumeration_concatenated) return;
    if (definition.container != CifItemDefinition::Container::single) return;
    // Words, codes, dates and symmetry codes have a form to check; listed codes pass as listed.
    if (definition.contents != Contents::any && definition.enumerations.empty()) return;
    if (definition.enumerations.empty()) {
        kind_ = Kind::anything;
        return;
    }
    kind_ = Kind::code;
    for (const CifEnumeration& entry : definition.enumerations) codes_.push_back(entry.value);
}
