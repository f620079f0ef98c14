// SPDX-License-Identifier: MIT
// The dictionaries tessary-check uses: those of TESSARY_DICTIONARIES, then the command line's.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "cif/CifDictionaryPool.hpp"
#include "support/THandle.hpp"

// The dictionaries tessary-check uses: those the environment variable
// TESSARY_DICTIONARIES names (entries separated by ":", each a dictionary
// file or a directory whose *.dic files are read in name order, case
// ignored), then those named on the command line.
class DictionaryFiles {
public:
    // The files in the order they are read.
    static std::vector<std::string> resolve(const char* environment, const std::vector<std::string>& named);

    // Reads the files into one pool. A file that cannot be read or has
    // errors is reported to problems (one line per message) and left out;
    // ok becomes false then.
    static THandle<CifDictionaryPool> load(const std::vector<std::string>& files, std::ostream& problems,
                                           bool& ok);
};
