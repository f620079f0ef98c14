// SPDX-License-Identifier: MIT
// How many edits apart two data names are, counted only up to a small bound.
#include "cif/CifEditDistance.hpp"

#include <algorithm>
#include <array>
#include <span>
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
    // Data names are short: their rows live on the stack.
    constexpr int kShort = 128;
    std::array<int, 3 * kShort> rows;
    std::vector<int> heap;
    int* cells = rows.data();
    if (m + 1 > kShort) {
        heap.resize(3 * static_cast<std::size_t>(m + 1));
        cells = heap.data();
    }
    std::span<int> before(cells, m + 1), previous(cells + m + 1, m + 1), current(cells + 2 * (m + 1), m + 1);
    std::fill(cells, cells + 3 * (m + 1), beyond);
    for (int j = 0; j <= std::min(m, bound); ++j) previous[j] = j;
    for (int i = 1; i <= n; ++i) {
        const int from = std::max(1, i - bound);
        const int to = std::min(m, i + bound);
        // The row's storage last held the row three above. The cells right
        // of the band were never written (the band only moves right); the
        // one left of it, which this row reads, is set afresh.
        current[from - 1] = from == 1 && i <= bound ? i : beyond;
        int best = current[from - 1];
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

std::uint64_t cif_letter_set(std::string_view name) {
    std::uint64_t set = 0;
    for (char c : name) {
        const auto u = static_cast<unsigned char>(cif_lower(c));
        unsigned bit = 0;
        if (u >= 'a' && u <= 'z')
            bit = u - 'a';
        else if (u >= '0' && u <= '9')
            bit = 26 + (u - '0');
        else
            bit = 36 + u % 28;
        set |= std::uint64_t(1) << bit;
    }
    return set;
}
