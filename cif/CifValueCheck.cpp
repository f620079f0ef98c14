// SPDX-License-Identifier: MIT
// Checks one value against one dictionary definition: type, enumeration and range.
#include "cif/CifValueCheck.hpp"

#include <algorithm>

#include "cif/CifNames.hpp"
#include "cif/CifNumber.hpp"

namespace {

using Result = CifValueCheck::Result;

Result problem(CifError::ErrorID code, std::string detail = {}, CifError::ErrorType type = CifError::error) {
    Result result;
    result.code = code;
    result.type = type;
    result.detail = std::move(detail);
    return result;
}

bool is_code_run(const CifItemDefinition& definition, std::string_view value) {
    return std::all_of(value.begin(), value.end(), [&](char c) {
        return std::any_of(definition.enumerations.begin(), definition.enumerations.end(),
                           [&](const CifEnumeration& entry) { return entry.value[0] == c; });
    });
}

Result check_enumeration(const CifItemDefinition& definition, std::string_view value) {
    if (definition.enumeration_concatenated && is_code_run(definition, value)) return Result();
    const CifEnumeration* case_match = nullptr;
    for (const CifEnumeration& entry : definition.enumerations) {
        if (entry.value == value) return Result();
        if (case_match == nullptr && cif_iequals(entry.value, value)) case_match = &entry;
    }
    if (case_match != nullptr)
        return problem(CifError::value_not_enumerated, " (differs in case from " + case_match->value + ")",
                       CifError::warning);
    std::string permitted;
    constexpr std::size_t shown = 8;
    for (std::size_t i = 0; i < definition.enumerations.size() && i < shown; ++i) {
        if (i > 0) permitted += ", ";
        permitted += definition.enumerations[i].value;
    }
    if (definition.enumerations.size() > shown) permitted += ", ...";
    return problem(CifError::value_not_enumerated, " (" + permitted + ")");
}

Result check_number(const CifItemDefinition& definition, std::string_view value) {
    bool has_uncertainty = false;
    CifNumber::Status status = CifNumber::classify(value, has_uncertainty);
    if (status == CifNumber::Status::not_a_number) {
        // A value that starts like a number is a malformed one; anything
        // else is text where a number belongs.
        std::size_t i = !value.empty() && (value[0] == '+' || value[0] == '-') ? 1 : 0;
        if (i < value.size() && value[i] == '.') ++i;
        bool numeric_start = i < value.size() && value[i] >= '0' && value[i] <= '9';
        return numeric_start ? problem(CifError::number_unreadable)
                             : problem(CifError::wrong_value_type, definition.type_text);
    }
    if (status == CifNumber::Status::bad_uncertainty) return problem(CifError::uncertainty_unreadable);
    if (has_uncertainty && definition.uncertainty == CifItemDefinition::Uncertainty::none)
        return problem(CifError::uncertainty_not_allowed);
    if (!definition.has_range) return Result();
    CifNumber number = CifNumber::parse(value);
    double slack = 3.0 * number.uncertainty;
    if ((definition.has_minimum && number.value + slack < definition.minimum) ||
        (definition.has_maximum && number.value - slack > definition.maximum))
        return problem(CifError::value_out_of_range, definition.range_text);
    return Result();
}

Result check_text_range(const CifItemDefinition& definition, std::string_view value) {
    // Ranges of char items compare texts (DDL1 allows ranges such as a:z).
    std::string_view range = definition.range_text;
    std::size_t colon = range.find(':');
    if (colon == std::string_view::npos) return Result();
    std::string_view low = range.substr(0, colon);
    std::string_view high = range.substr(colon + 1);
    if ((!low.empty() && value < low) || (!high.empty() && value > high))
        return problem(CifError::value_out_of_range, definition.range_text);
    return Result();
}

}  // namespace

CifValueCheck::Result CifValueCheck::check(const CifItemDefinition& definition, std::string_view value,
                                           bool quoted) {
    if (is_null_value(value, quoted)) return Result();
    switch (definition.type) {
        case CifItemDefinition::Type::numb:
            if (Result result = check_number(definition, value)) return result;
            break;
        case CifItemDefinition::Type::char_text:
            if (definition.has_range)
                if (Result result = check_text_range(definition, value)) return result;
            break;
        case CifItemDefinition::Type::null:
            break;
    }
    if (!definition.enumerations.empty()) return check_enumeration(definition, value);
    return Result();
}

CifValueCheck::Result CifValueCheck::check_list(const CifItemDefinition& definition, bool looped) {
    if (looped && definition.list == CifItemDefinition::List::no)
        return problem(CifError::item_must_not_be_looped);
    if (!looped && definition.list == CifItemDefinition::List::yes)
        return problem(CifError::item_must_be_looped, {}, CifError::warning);
    return Result();
}
