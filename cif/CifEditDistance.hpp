// SPDX-License-Identifier: MIT
// How many edits apart two data names are, counted only up to a small bound.
#pragma once

#include <cstdint>
#include <string_view>

// The number of edits that turn `a` into `b`, compared without regard to
// case: a character inserted, removed or replaced, or two neighbouring
// characters swapped ("lenght" is one edit from "length"). Counting stops
// past `bound`: any larger distance is given as bound + 1, so that asking
// a long list of names costs little more than a look at their lengths.
int cif_edit_distance(std::string_view a, std::string_view b, int bound);

// The letters of a name as a set of 64 classes (case ignored; letters and
// digits each a class of their own, other characters sharing classes).
std::uint64_t cif_letter_set(std::string_view name);

// A floor under cif_edit_distance from the two names' letter sets: every
// edit takes at most one class out of a name and brings at most one in, so
// names whose sets differ by more classes than the bound need no count.
inline int cif_edit_distance_floor(std::uint64_t a, std::uint64_t b) {
    const int missing = __builtin_popcountll(a & ~b);
    const int extra = __builtin_popcountll(b & ~a);
    return missing > extra ? missing : extra;
}
