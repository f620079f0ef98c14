// SPDX-License-Identifier: MIT
// How many edits apart two data names are, counted only up to a small bound.
#pragma once

#include <string_view>

// The number of edits that turn `a` into `b`, compared without regard to
// case: a character inserted, removed or replaced, or two neighbouring
// characters swapped ("lenght" is one edit from "length"). Counting stops
// past `bound`: any larger distance is given as bound + 1, so that asking
// a long list of names costs little more than a look at their lengths.
int cif_edit_distance(std::string_view a, std::string_view b, int bound);
