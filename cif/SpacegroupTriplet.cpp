// SPDX-License-Identifier: MIT
// The common forms of a coordinate triplet read without the library's general reading.
#include "cif/SpacegroupTriplet.hpp"

#include <gemmi/symmetry.hpp>
#include <limits>

namespace {

constexpr int den = gemmi::Op::DEN;

bool digit(char c) { return c >= '0' && c <= '9'; }

// A number of one to three digits at p; advances p. Longer numbers go to
// the general reading.
bool number_at(const char*& p, const char* end, int& value) {
    if (p == end || !digit(*p)) return false;
    value = *p++ - '0';
    for (int more = 0; p != end && digit(*p); ++more) {
        if (more == 2) return false;
        value = value * 10 + (*p++ - '0');
    }
    return true;
}

}  // namespace

bool spacegroup_read_common_triplet(std::string_view text, gemmi::Op& op) {
    // Each part's x, y, z factors and translation, in units of 1/24; sum
    // adds every number times 24, as the guarded reading counts them.
    int rows[3][4] = {};
    int part = 0;
    bool term_seen = false;  // in this part
    long long sum = 0;
    const char* p = text.data();
    const char* const end = p + text.size();
    for (;;) {
        while (p != end && *p == ' ') ++p;
        if (p == end || *p == ',') {
            if (!term_seen) return false;  // an empty part is refused
            if (p == end) break;
            if (++part == 3) return false;
            term_seen = false;
            ++p;
            continue;
        }
        int sign = 1;
        if (*p == '+' || *p == '-') {
            sign = *p == '-' ? -1 : 1;
            ++p;
            while (p != end && *p == ' ') ++p;
            if (p == end) return false;
        } else if (term_seen) {
            return false;  // a term after the first without its sign
        }
        term_seen = true;
        int* row = rows[part];
        if (digit(*p)) {
            int numerator = 0, denominator = 1;
            if (!number_at(p, end, numerator)) return false;
            sum += static_cast<long long>(numerator) * den;
            if (p != end && *p == '/') {
                ++p;
                if (!number_at(p, end, denominator)) return false;
                sum += static_cast<long long>(denominator) * den;
                if (denominator == 0 || den % denominator != 0) return false;
            }
            if (p != end && *p == '*') return false;
            row[3] += sign * numerator * den / denominator;
        } else {
            const int axis = (*p | 0x20) - 'x';
            if (axis < 0 || axis > 2) return false;
            row[axis] += sign * den;
            ++p;
            while (p != end && *p == ' ') ++p;
            if (p != end && *p == '/') return false;
        }
    }
    if (part != 2) return false;
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
