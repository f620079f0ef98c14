// SPDX-License-Identifier: MIT
// A CIF number with its optional standard uncertainty, read from its text.
#pragma once

#include <string_view>

// A CIF number with its optional standard uncertainty: an optional sign,
// digits with an optional decimal point (at least one digit), an optional
// exponent, then optionally digits in parentheses that give the
// uncertainty in units of the last digit ("1.234(5)" is 1.234 with
// uncertainty 0.005; "12.3e2(4)" is 1230 with uncertainty 40).
struct CifNumber {
    enum class Status {
        ok,
        not_a_number,     // the text is not a CIF number
        bad_uncertainty,  // a number followed by a malformed "(...)"
    };

    Status status = Status::not_a_number;
    double value = 0.0;
    double uncertainty = 0.0;  // 0 when none is given
    double unit = 1.0;         // the value of one unit in the last digit written (0.001 for 1.234)
    bool has_uncertainty = false;

    bool ok() const { return status == Status::ok; }

    static CifNumber parse(std::string_view text);
    // The uncertainty, or half a unit of the last digit when none is given:
    // what a reader may assume of a value written without one.
    double effective_uncertainty() const { return has_uncertainty ? uncertainty : unit / 2.0; }
    // Whether the text is a CIF number with or without an uncertainty,
    // without computing its value (the fast path of value checks).
    static Status classify(std::string_view text, bool& has_uncertainty);
};
