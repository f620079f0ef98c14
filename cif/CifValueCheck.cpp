// SPDX-License-Identifier: MIT
// Checks one value against one dictionary definition: type, enumeration and range.
#include "cif/CifValueCheck.hpp"

#include <algorithm>
#include <cstdlib>

#include "cif/CifCompoundValue.hpp"
#include "cif/CifNames.hpp"
#include "cif/CifNumber.hpp"

namespace {

using Result = CifValueCheck::Result;
using Contents = CifItemDefinition::Contents;
using Container = CifItemDefinition::Container;

bool is_digit(char c) { return c >= '0' && c <= '9'; }

bool has_blank(std::string_view value) { return value.find_first_of(" \t\r\n") != std::string_view::npos; }

// Digits, count of them between low and high, from at; moves at past them.
bool digits(std::string_view value, std::size_t& at, std::size_t low, std::size_t high) {
    std::size_t start = at;
    while (at < value.size() && is_digit(value[at])) ++at;
    return at - start >= low && at - start <= high;
}

// yyyy-mm-dd (years of two to four digits and months and days of one or
// two are read too, as older dictionaries allow), then what may follow.
bool is_date(std::string_view value, std::size_t& at) {
    at = 0;
    if (!digits(value, at, 2, 4) || at >= value.size() || value[at++] != '-') return false;
    const std::size_t month_at = at;
    if (!digits(value, at, 1, 2) || at >= value.size() || value[at++] != '-') return false;
    const std::size_t day_at = at;
    if (!digits(value, at, 1, 2)) return false;
    const int month = std::atoi(std::string(value.substr(month_at, day_at - 1 - month_at)).c_str());
    const int day = std::atoi(std::string(value.substr(day_at, at - day_at)).c_str());
    return month >= 1 && month <= 12 && day >= 1 && day <= 31;
}

bool is_date_time(std::string_view value) {
    std::size_t at = 0;
    if (!is_date(value, at)) return false;
    // A time after T, a space or a colon: digits, colons, a fraction, a zone.
    return std::all_of(value.begin() + static_cast<std::ptrdiff_t>(at), value.end(), [](char c) {
        return is_digit(c) || c == ':' || c == '.' || c == 'T' || c == 't' || c == 'Z' || c == 'z' ||
               c == '+' || c == '-' || c == ' ';
    });
}

// A symmetry operation's number, optionally _ and the translation as three
// digits (2_565) or three signed numbers (2_1_-1_0).
bool is_symop(std::string_view value) {
    // Some programs write the inverse of an operation with a minus sign.
    std::size_t at = !value.empty() && value[0] == '-' ? 1 : 0;
    if (!digits(value, at, 1, 4)) return false;
    if (at == value.size()) return true;
    if (value[at++] != '_') return false;
    std::size_t start = at;
    if (digits(value, at, 3, 3) && at == value.size()) return true;
    at = start;
    for (int part = 0; part < 3; ++part) {
        if (part > 0 && (at >= value.size() || value[at++] != '_')) return false;
        if (at < value.size() && value[at] == '-') ++at;
        if (!digits(value, at, 1, 3)) return false;
    }
    return at == value.size();
}

// A whole number with an optional sign and uncertainty.
bool is_whole(std::string_view value) {
    std::size_t at = !value.empty() && (value[0] == '+' || value[0] == '-') ? 1 : 0;
    if (!digits(value, at, 1, value.size())) return false;
    return at == value.size() || value[at] == '(';
}

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
    // Codes are the same codes in any case.
    if (case_match != nullptr && definition.contents == Contents::code) return Result();
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

// What reading a numeric value found, before any message is made of it.
enum class NumberVerdict { fits, not_a_number, bad_uncertainty, uncertainty_not_allowed, out_of_range };

NumberVerdict number_verdict(const CifItemDefinition& definition, std::string_view value) {
    // Most ranges only bar negative numbers ("0.0:"): a number without a
    // minus sign meets them without its value being read. Otherwise the one
    // reading tells the form and the value together.
    const bool may_fall_short =
        definition.has_minimum && (definition.minimum > 0.0 || (!value.empty() && value.front() == '-'));
    const bool read_value = definition.has_range && (may_fall_short || definition.has_maximum);
    if (!read_value) {
        bool has_uncertainty = false;
        switch (CifNumber::classify(value, has_uncertainty)) {
            case CifNumber::Status::not_a_number:
                return NumberVerdict::not_a_number;
            case CifNumber::Status::bad_uncertainty:
                return NumberVerdict::bad_uncertainty;
            case CifNumber::Status::ok:
                break;
        }
        return has_uncertainty && definition.uncertainty == CifItemDefinition::Uncertainty::none
                   ? NumberVerdict::uncertainty_not_allowed
                   : NumberVerdict::fits;
    }
    const CifNumber number = CifNumber::parse(value);
    if (number.status == CifNumber::Status::not_a_number) return NumberVerdict::not_a_number;
    if (number.status == CifNumber::Status::bad_uncertainty) return NumberVerdict::bad_uncertainty;
    if (number.has_uncertainty && definition.uncertainty == CifItemDefinition::Uncertainty::none)
        return NumberVerdict::uncertainty_not_allowed;
    double slack = 3.0 * number.uncertainty;
    if ((definition.has_minimum && number.value + slack < definition.minimum) ||
        (definition.has_maximum && number.value - slack > definition.maximum))
        return NumberVerdict::out_of_range;
    return NumberVerdict::fits;
}

Result check_number(const CifItemDefinition& definition, std::string_view value) {
    switch (number_verdict(definition, value)) {
        case NumberVerdict::fits:
            return Result();
        case NumberVerdict::not_a_number: {
            // A value that starts like a number is a malformed one; anything
            // else is text where a number belongs.
            std::size_t i = !value.empty() && (value[0] == '+' || value[0] == '-') ? 1 : 0;
            if (i < value.size() && value[i] == '.') ++i;
            bool numeric_start = i < value.size() && value[i] >= '0' && value[i] <= '9';
            return numeric_start ? problem(CifError::number_unreadable)
                                 : problem(CifError::wrong_value_type, definition.type_text);
        }
        case NumberVerdict::bad_uncertainty:
            return problem(CifError::uncertainty_unreadable);
        case NumberVerdict::uncertainty_not_allowed:
            return problem(CifError::uncertainty_not_allowed);
        case NumberVerdict::out_of_range:
            break;
    }
    return problem(CifError::value_out_of_range, definition.range_text);
}

Result check_form(const CifItemDefinition& definition, std::string_view value) {
    bool fits = true;
    std::size_t at = 0;
    switch (definition.contents) {
        case Contents::integer:
        case Contents::count:
            fits = is_whole(value);
            break;
        case Contents::word:
        case Contents::code:
            fits = !has_blank(value);
            break;
        case Contents::date:
            fits = is_date(value, at) && at == value.size();
            break;
        case Contents::date_time:
            fits = is_date_time(value);
            break;
        case Contents::symop:
            fits = is_symop(value);
            break;
        case Contents::any:
        case Contents::real:
            break;
    }
    return fits ? Result() : problem(CifError::wrong_value_type, definition.type_text);
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

// The entries of a List, Matrix or Array: a list (of lists) of the given
// sizes, each entry checked as a single value.
Result check_container(const CifItemDefinition& definition, std::string_view value, bool quoted) {
    const std::string kind = definition.container == Container::list     ? "List"
                             : definition.container == Container::matrix ? "Matrix"
                             : definition.container == Container::array  ? "Array"
                                                                         : "Table";
    CifCompoundValue compound;
    const bool table = definition.container == Container::table;
    if (quoted || !CifCompoundValue::parse(value, compound) ||
        compound.kind != (table ? CifCompoundValue::Kind::table : CifCompoundValue::Kind::list))
        return problem(CifError::wrong_value_type, kind + " of " + definition.type_text);
    if (table) return Result();
    CifItemDefinition entry_definition = definition;
    entry_definition.container = Container::single;
    const bool numeric = definition.contents == Contents::real || definition.contents == Contents::integer ||
                         definition.contents == Contents::count;
    entry_definition.type = numeric ? CifItemDefinition::Type::numb : CifItemDefinition::Type::char_text;
    std::vector<const CifCompoundValue*> level{&compound};
    for (std::size_t depth = 0;; ++depth) {
        std::vector<const CifCompoundValue*> next;
        for (const CifCompoundValue* node : level) {
            if (node->kind != CifCompoundValue::Kind::list) {
                if (depth < definition.dimension.size())
                    return problem(CifError::wrong_value_type, kind + " " + std::to_string(depth) + " deep");
                if (Result result = CifValueCheck::check(entry_definition, node->text, node->quoted))
                    return result;
                continue;
            }
            if (depth < definition.dimension.size() && node->entries.size() != definition.dimension[depth])
                return problem(CifError::wrong_value_type,
                               kind + " of " + std::to_string(definition.dimension[depth]) + " entries");
            for (const CifCompoundValue& entry : node->entries) next.push_back(&entry);
        }
        if (next.empty()) return Result();
        level = std::move(next);
    }
}

}  // namespace

CifValueCheck::Result CifValueCheck::check(const CifItemDefinition& definition, std::string_view value,
                                           bool quoted) {
    if (is_null_value(value, quoted)) return Result();
    if (definition.container != Container::single) return check_container(definition, value, quoted);
    switch (definition.type) {
        case CifItemDefinition::Type::numb:
            if (Result result = check_number(definition, value)) return result;
            if (definition.contents != Contents::any && definition.contents != Contents::real)
                if (Result result = check_form(definition, value)) return result;
            break;
        case CifItemDefinition::Type::char_text:
            if (definition.contents != Contents::any)
                if (Result result = check_form(definition, value)) return result;
            if (definition.has_range)
                if (Result result = check_text_range(definition, value)) return result;
            break;
        case CifItemDefinition::Type::null:
            break;
    }
    if (!definition.enumerations.empty()) return check_enumeration(definition, value);
    return Result();
}

bool CifValueCheck::passes(const CifItemDefinition& definition, std::string_view value, bool quoted) {
    if (is_null_value(value, quoted)) return true;
    // Forms beyond a number's (a date, a word) are for check(); real adds nothing to a number's.
    if (definition.container != Container::single ||
        (definition.contents != Contents::any && definition.contents != Contents::real))
        return false;
    switch (definition.type) {
        case CifItemDefinition::Type::numb:
            if (number_verdict(definition, value) != NumberVerdict::fits) return false;
            break;
        case CifItemDefinition::Type::char_text:
            if (definition.has_range) return false;
            break;
        case CifItemDefinition::Type::null:
            break;
    }
    if (definition.enumerations.empty()) return true;
    // A permitted value given exactly; the rest (a case that differs, a run
    // of codes) is for check().
    return std::any_of(definition.enumerations.begin(), definition.enumerations.end(),
                       [&](const CifEnumeration& entry) { return entry.value == value; });
}

CifValueCheck::Result CifValueCheck::check_list(const CifItemDefinition& definition, bool looped) {
    if (looped && definition.list == CifItemDefinition::List::no)
        return problem(CifError::item_must_not_be_looped);
    if (!looped && definition.list == CifItemDefinition::List::yes)
        return problem(CifError::item_must_be_looped, {}, CifError::warning);
    return Result();
}
