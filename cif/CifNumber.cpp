// SPDX-License-Identifier: MIT
// A CIF number with its optional standard uncertainty, read from its text.
#include "cif/CifNumber.hpp"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <string>

namespace {

bool is_digit(char c) { return c >= '0' && c <= '9'; }

// The length of the number part (sign, mantissa, exponent) at the start of
// text, with the position of the mantissa's last digit and the exponent; 0
// when text does not start with a number.
struct Shape {
    std::size_t length = 0;
    int decimals = 0;  // digits after the point
    long exponent = 0;
};

Shape number_shape(std::string_view text) {
    Shape shape;
    std::size_t i = 0;
    const std::size_t n = text.size();
    if (i < n && (text[i] == '+' || text[i] == '-')) ++i;
    std::size_t digits = 0;
    while (i < n && is_digit(text[i])) ++i, ++digits;
    if (i < n && text[i] == '.') {
        ++i;
        while (i < n && is_digit(text[i])) ++i, ++digits, ++shape.decimals;
    }
    if (digits == 0) return Shape();
    if (i < n && (text[i] == 'e' || text[i] == 'E')) {
        std::size_t j = i + 1;
        bool negative = false;
        if (j < n && (text[j] == '+' || text[j] == '-')) negative = text[j++] == '-';
        std::size_t first = j;
        long exponent = 0;
        while (j < n && is_digit(text[j])) {
            if (exponent < 100000) exponent = exponent * 10 + (text[j] - '0');
            ++j;
        }
        if (j == first) return Shape();  // "1e" is not a number
        shape.exponent = negative ? -exponent : exponent;
        i = j;
    }
    shape.length = i;
    return shape;
}

}  // namespace

CifNumber::Status CifNumber::classify(std::string_view text, bool& has_uncertainty) {
    has_uncertainty = false;
    Shape shape = number_shape(text);
    if (shape.length == 0) return Status::not_a_number;
    if (shape.length == text.size()) return Status::ok;
    if (text[shape.length] != '(') return Status::not_a_number;
    std::size_t i = shape.length + 1;
    std::size_t first = i;
    while (i < text.size() && is_digit(text[i])) ++i;
    if (i == first || i + 1 != text.size() || text[i] != ')') return Status::bad_uncertainty;
    has_uncertainty = true;
    return Status::ok;
}

namespace {

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

}  // namespace

CifNumber CifNumber::parse(std::string_view text) {
    CifNumber number;
    number.status = classify(text, number.has_uncertainty);
    if (!number.ok()) return number;
    Shape shape = number_shape(text);
    // from_chars rounds as strtod does, without a terminated copy; it takes
    // no '+' and leaves values beyond the range of a double to strtod.
    const char* first = text.data() + (text[0] == '+' ? 1 : 0);
    const auto [end, error] = std::from_chars(first, text.data() + shape.length, number.value);
    if (error != std::errc() || end != text.data() + shape.length) {
        std::string mantissa(text.substr(0, shape.length));
        number.value = std::strtod(mantissa.c_str(), nullptr);
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
