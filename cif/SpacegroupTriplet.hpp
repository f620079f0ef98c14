// SPDX-License-Identifier: MIT
// The common forms of a coordinate triplet read without the library's general reading.
#pragma once

#include <string_view>

namespace gemmi {
struct Op;
}  // namespace gemmi

// Reads a triplet of the common form: three parts between two commas, each
// a sum of terms x, y, z (either case), whole numbers and fractions n/d
// (d dividing 24), every term after the first with its sign, spaces
// anywhere between terms. The operation is the one the library's reading
// gives, wrapped into the cell. Returns false, op untouched, for any other
// text and for an operation the guarded reading would refuse (too large,
// singular): SpacegroupOperators::read_triplet() reads those the general way.
bool spacegroup_read_common_triplet(std::string_view text, gemmi::Op& op);
