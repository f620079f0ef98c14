// SPDX-License-Identifier: MIT
// The full check of single values, each problem reported on the line of its value.
#include "cif/CifValueReporter.hpp"

#include <algorithm>

bool CifValueReporter::check(const CifDataItem& item, const CifItemDefinition* definition, std::size_t n) {
    CifValueRef ref = item.values()[n];
    CifValueCheck::Result result;
    if (definition == nullptr) {
        int code = dictionary_.check_value(item.name(), std::string(item.value_view(n)), item.is_looped());
        if (code != 0) result.code = code;
    } else if (ref.compound() && definition->container == CifItemDefinition::Container::single) {
        // A list where one value belongs; text without a form may hold one.
        if (definition->type == CifItemDefinition::Type::numb ||
            definition->contents != CifItemDefinition::Contents::any)
            result =
                CifValueCheck::Result{CifError::wrong_value_type, CifError::error, definition->type_text};
    } else {
        result = CifValueCheck::check(*definition, item.value_view(n), ref.quoted());
    }
    if (!result) return true;
    if (sink_.full()) {
        report(result, 0, item.name());  // records that messages were dropped
        return false;
    }
    report(result, value_line(item, n), item.name());
    return true;
}

void CifValueReporter::check_all(const CifDataItem& item, const CifItemDefinition* definition) {
    if (definition != nullptr && CifValueCheck::accepts_every_value(*definition)) return;
    for (std::size_t n = 0; n < item.size(); ++n) {
        if (definition != nullptr) {
            const CifValueRef ref = item.values()[n];
            if (!ref.compound() && CifValueCheck::passes(*definition, item.value_view(n), ref.quoted()))
                continue;
        }
        if (!check(item, definition, n)) return;
    }
}

void CifValueReporter::report(const CifValueCheck::Result& result, int line, const std::string& name) {
    sink_.add(CifError(static_cast<CifError::ErrorID>(result.code), result.type, line, name, result.detail));
}

int CifValueReporter::value_line(const CifDataItem& item, std::size_t n) const {
    CifValueRef ref = item.values()[n];
    if (ref.added()) return std::max(item.line(), 1);
    return lines_.line_at(ref.offset);
}
