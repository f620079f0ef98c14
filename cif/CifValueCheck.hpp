// SPDX-License-Identifier: MIT
// Checks one value against one dictionary definition: type, enumeration and range.
#pragma once

#include <string>
#include <string_view>

#include "cif/CifError.hpp"
#include "cif/CifItemDefinition.hpp"

// Checks one value against one dictionary definition: its type (a numb
// value must be a CIF number, with a standard uncertainty only where the
// definition allows one), its enumeration (an exact match passes, a match
// that differs only in case is a warning) and its range (a value with an
// uncertainty u may lie up to 3u outside it, as the core dictionary
// reads its ranges). "?" and "." are always acceptable unless quoted.
class CifValueCheck {
public:
    struct Result {
        int code = 0;  // 0, or a CifError::ErrorID
        CifError::ErrorType type = CifError::error;
        std::string detail;  // for the message: the type, the range, the permitted values

        explicit operator bool() const { return code != 0; }
    };

    // The value's problem, or a result with code 0.
    static Result check(const CifItemDefinition& definition, std::string_view value, bool quoted = false);
    // Whether check() finds no problem with the value, told without making
    // a result for the common cases (a number that fits, a permitted value
    // as written); false leaves the answer to check().
    static bool passes(const CifItemDefinition& definition, std::string_view value, bool quoted = false);
    // The loop rule of the definition: 328 for an item that must not be
    // looped and is, 327 for one that must be looped and is not.
    static Result check_list(const CifItemDefinition& definition, bool looped);

    // Whether check() passes every value the definition may be given,
    // compound ones too: text of any form, without a range or permitted
    // values, so that its values need not be looked at.
    static bool accepts_every_value(const CifItemDefinition& definition) {
        return definition.container == CifItemDefinition::Container::single &&
               definition.type != CifItemDefinition::Type::numb &&
               definition.contents == CifItemDefinition::Contents::any &&
               !(definition.type == CifItemDefinition::Type::char_text && definition.has_range) &&
               definition.enumerations.empty();
    }

    // Whether the value stands for unknown (?) or inapplicable (.).
    static bool is_null_value(std::string_view value, bool quoted) {
        return !quoted && value.size() == 1 && (value[0] == '?' || value[0] == '.');
    }
};
