// SPDX-License-Identifier: MIT
// The outcome of checking one file: its messages and their counts by kind.
#pragma once

#include <string>
#include <vector>

#include "cif/CifError.hpp"

// The outcome of checking one file.
struct FileCheckResult {
    std::string file;
    std::string io_problem;  // not empty when the file could not be read
    std::vector<CifError> messages;
    int errors = 0;
    int warnings = 0;
    int remarks = 0;
};
