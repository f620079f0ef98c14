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
    bool has_uncertainty = false;

    bool ok() const { return status == Status::ok; }

    static CifNumber parse(std::string_view text);
    // Whether the text is a CIF number with or without an uncertainty,
    // without computing its value (the fast path of value checks).
    static Status classify(std::string_view text, bool& has_uncertainty);
};
