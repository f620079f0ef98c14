// SPDX-License-Identifier: MIT
// The common forms of a coordinate triplet read without the library's general reading.
#include "cif/SpacegroupTriplet.hpp"

#include <gemmi/symmetry.hpp>
#include <limits>

namespace {

constexpr int den = gemmi::Op::DEN;

bool digit(char c) { return c >= '0' && c <= '9'; }

// A number of one to three digits at p (p < end); advances p. Longer
// numbers go to the general reading.
bool number_at(const char*& p, const char* end, int& value) {
    if (p == end || !digit(*p)) return false;
    value = 0;
    const char* first = p;
    while (p != end && digit(*p)) {
        if (p - first == 3) return false;
        value = value * 10 + (*p++ - '0');
    }
    return true;
}

void skip_spaces(const char*& p, const char* end) {
    while (p != end && *p == ' ') ++p;
}

// One part (between commas) into row: its x, y, z factors and translation,
// in units of 1/24. sum adds each number times 24, as the guard counts.
bool read_part(const char* p, const char* end, int row[4], long long& sum) {
    bool first = true;
    skip_spaces(p, end);
    while (p != end) {
        int sign = 1;
        if (*p == '+' || *p == '-') {
            sign = *p == '-' ? -1 : 1;
            ++p;
            skip_spaces(p, end);
            if (p == end) return false;
        } else if (!first) {
            return false;
        }
        first = false;
        if (digit(*p)) {
            int numerator = 0, denominator = 1;
            if (!number_at(p, end, numerator)) return false;
            sum += static_cast<long long>(numerator) * den;
            if (p != end && *p == '/') {
                ++p;
                if (!number_at(p, end, denominator)) return false;
                sum += static_cast<long long>(denominator) * den;
                if (denominator <= 0 || den % denominator != 0) return false;
            }
            if (p != end && *p == '*') return false;
            row[3] += sign * numerator * den / denominator;
        } else {
            const char lower = static_cast<char>(*p | 0x20);
            if (lower < 'x' || lower > 'z') return false;
            row[lower - 'x'] += sign * den;
            ++p;
            skip_spaces(p, end);
            if (p != end && *p == '/') return false;
        }
        skip_spaces(p, end);
    }
    return !first;  // an empty part is refused
}

}  // namespace

bool spacegroup_read_common_triplet(std::string_view text, gemmi::Op& op) {
    const char* const begin = text.data();
    const char* const end = begin + text.size();
    const char* commas[2];
    int found = 0;
    for (const char* p = begin; p != end; ++p) {
        if (*p == ',') {
            if (found == 2) return false;
            commas[found++] = p;
        }
    }
    if (found != 2) return false;
    int rows[3][4] = {};
    long long sum = 0;
    if (!read_part(begin, commas[0], rows[0], sum) || !read_part(commas[0] + 1, commas[1], rows[1], sum) ||
        !read_part(commas[1] + 1, end, rows[2], sum))
        return false;
    // The guarded reading's limits (SpacegroupOperators::read_triplet()).
    if (sum >= std::numeric_limits<int>::max() / 2) return false;
    gemmi::Op read;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            if (rows[i][j] > 700 || rows[i][j] < -700) return false;
            read.rot[i][j] = rows[i][j];
        }
        read.tran[i] = rows[i][3];
    }
    if (read.det_rot() == 0) return false;
    op = read.wrap();
    return true;
}
