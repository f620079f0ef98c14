// SPDX-License-Identifier: MIT
// A CIF number with its optional standard uncertainty, read from its text.
#include "cif/CifNumber.hpp"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

// The number part (sign, mantissa, exponent) at the start of a text: its
// length, the position of the mantissa's last digit and the exponent.
struct Shape {
    std::size_t length = 0;
    int decimals = 0;  // digits after the point
    long exponent = 0;
    // The mantissa's digits as one integer (the point and sign left out)
    // while there are at most 19 of them.
    std::uint64_t mantissa = 0;
    std::size_t digits = 0;
};

// classify() with the shape it found (filled only for a number). One pass
// over the text, kept inline in both callers: most values are short, and
// the call and copies of a shape cost as much as the digits.
[[gnu::always_inline]] inline CifNumber::Status classify_shape(std::string_view text, bool& has_uncertainty,
                                                               Shape& shape) {
    has_uncertainty = false;
    const char* const begin = text.data();
    const char* const end = begin + text.size();
    const char* p = begin;
    if (p != end && (*p == '+' || *p == '-')) ++p;
    // Digits are told by one unsigned comparison.
    auto digit = [](char c) { return static_cast<unsigned>(c - '0'); };
    std::uint64_t mantissa = 0;
    const char* const first_digit = p;
    while (p != end && digit(*p) < 10) mantissa = mantissa * 10 + digit(*p++);
    std::size_t digits = static_cast<std::size_t>(p - first_digit);
    int decimals = 0;
    if (p != end && *p == '.') {
        const char* const first_decimal = ++p;
        while (p != end && digit(*p) < 10) mantissa = mantissa * 10 + digit(*p++);
        decimals = static_cast<int>(p - first_decimal);
        digits += static_cast<std::size_t>(decimals);
    }
    if (digits == 0) return CifNumber::Status::not_a_number;
    long exponent = 0;
    if (p != end && (*p == 'e' || *p == 'E')) {
        const char* q = p + 1;
        bool negative = false;
        if (q != end && (*q == '+' || *q == '-')) negative = *q++ == '-';
        const char* const first = q;
        for (; q != end && digit(*q) < 10; ++q)
            if (exponent < 100000) exponent = exponent * 10 + digit(*q);
        if (q == first) return CifNumber::Status::not_a_number;  // "1e" is not a number
        if (negative) exponent = -exponent;
        p = q;
    }
    shape.length = static_cast<std::size_t>(p - begin);
    shape.decimals = decimals;
    shape.exponent = exponent;
    shape.mantissa = mantissa;  // wrapped around beyond 19 digits: not used then
    shape.digits = digits;
    if (p == end) return CifNumber::Status::ok;
    if (*p != '(') return CifNumber::Status::not_a_number;
    const char* const first = ++p;
    while (p != end && digit(*p) < 10) ++p;
    if (p == first || p + 1 != end || *p != ')') return CifNumber::Status::bad_uncertainty;
    has_uncertainty = true;
    return CifNumber::Status::ok;
}

// 10 to the power, the nearest double as a decimal literal gives it (which
// std::pow gives as well), from a table over the usual range.
double power_of_ten(long exponent) {
    static constexpr double table[] = {1e-22, 1e-21, 1e-20, 1e-19, 1e-18, 1e-17, 1e-16, 1e-15, 1e-14,
                                       1e-13, 1e-12, 1e-11, 1e-10, 1e-9,  1e-8,  1e-7,  1e-6,  1e-5,
                                       1e-4,  1e-3,  1e-2,  1e-1,  1e0,   1e1,   1e2,   1e3,   1e4,
                                       1e5,   1e6,   1e7,   1e8,   1e9,   1e10,  1e11,  1e12,  1e13,
                                       1e14,  1e15,  1e16,  1e17,  1e18,  1e19,  1e20,  1e21,  1e22};
    if (exponent >= -22 && exponent <= 22) return table[exponent + 22];
    return std::pow(10.0, static_cast<double>(exponent));
}

// The value when the mantissa and the power of ten are both exact doubles:
// one multiplication or division, rounded once, is then the nearest double
// to the decimal, the same bits a full conversion gives. Nothing otherwise.
bool exact_value(const Shape& shape, bool negative, double& value) {
    constexpr std::uint64_t exact_integers = std::uint64_t(1) << 53;
    const long exponent = shape.exponent - shape.decimals;
    if (shape.digits > 19 || shape.mantissa > exact_integers || exponent < -22 || exponent > 22) return false;
    const double mantissa = static_cast<double>(shape.mantissa);
    value = exponent < 0 ? mantissa / power_of_ten(-exponent) : mantissa * power_of_ten(exponent);
    if (negative) value = -value;
    return true;
}

}  // namespace

CifNumber::Status CifNumber::classify(std::string_view text, bool& has_uncertainty) {
    Shape shape;
    return classify_shape(text, has_uncertainty, shape);
}

CifNumber CifNumber::parse(std::string_view text) {
    CifNumber number;
    Shape shape;
    number.status = classify_shape(text, number.has_uncertainty, shape);
    if (!number.ok()) return number;
    if (!exact_value(shape, text[0] == '-', number.value)) {
        // from_chars rounds as strtod does, without a terminated copy; it
        // takes no '+' and leaves values beyond the range of a double to strtod.
        const char* first = text.data() + (text[0] == '+' ? 1 : 0);
        const auto [end, error] = std::from_chars(first, text.data() + shape.length, number.value);
        if (error != std::errc() || end != text.data() + shape.length) {
            std::string mantissa(text.substr(0, shape.length));
            number.value = std::strtod(mantissa.c_str(), nullptr);
        }
    }
    number.unit = power_of_ten(shape.exponent - shape.decimals);
    if (number.has_uncertainty) {
        std::string_view digits = text.substr(shape.length + 1, text.size() - shape.length - 2);
        double units = 0.0;
        for (char c : digits) units = units * 10.0 + (c - '0');
        number.uncertainty = units * number.unit;
    }
    return number;
}
