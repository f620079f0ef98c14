// SPDX-License-Identifier: MIT
// How many edits apart two data names are, counted only up to a small bound.
#include "cif/CifEditDistance.hpp"

#include <algorithm>
#include <vector>

#include "cif/CifNames.hpp"

int cif_edit_distance(std::string_view a, std::string_view b, int bound) {
    const int n = static_cast<int>(a.size());
    const int m = static_cast<int>(b.size());
    const int beyond = bound + 1;
    if (bound < 0) return beyond;
    if (std::abs(n - m) > bound) return beyond;
    // Three rows of the table of distances between prefixes; only the band
    // of cells within `bound` of the diagonal can stay within the bound.
    std::vector<int> before(m + 1, beyond), previous(m + 1, beyond), current(m + 1, beyond);
    for (int j = 0; j <= std::min(m, bound); ++j) previous[j] = j;
    for (int i = 1; i <= n; ++i) {
        std::fill(current.begin(), current.end(), beyond);
        if (i <= bound) current[0] = i;
        const int from = std::max(1, i - bound);
        const int to = std::min(m, i + bound);
        int best = current[0];
        for (int j = from; j <= to; ++j) {
            const bool same = cif_lower(a[i - 1]) == cif_lower(b[j - 1]);
            int cell = std::min({previous[j] + 1, current[j - 1] + 1, previous[j - 1] + (same ? 0 : 1)});
            if (i > 1 && j > 1 && cif_lower(a[i - 1]) == cif_lower(b[j - 2]) &&
                cif_lower(a[i - 2]) == cif_lower(b[j - 1]))
                cell = std::min(cell, before[j - 2] + 1);
            current[j] = std::min(cell, beyond);
            best = std::min(best, current[j]);
        }
        if (best > bound) return beyond;
        std::swap(before, previous);
        std::swap(previous, current);
    }
    return std::min(previous[m], beyond);
}
