// SPDX-License-Identifier: MIT
// The publication and crystal lists of a mandatory-data-items file.
#pragma once

#include <istream>
#include <string>
#include <vector>

// The two lists of a mandatory-data-items file: lines with "#" comments,
// section headers data_all (both lists), data_publication and data_crystal,
// and data names (the first word of a line beginning with "_"). Items under
// another header or before any header are dropped; duplicates are kept.
struct MandatoryItems {
    std::vector<std::string> publication;
    std::vector<std::string> crystal;

    static MandatoryItems read(std::istream& stream);
};
