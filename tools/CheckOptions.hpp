// SPDX-License-Identifier: MIT
// The command line of tessary-check read into options, and its usage text.
#pragma once

#include <string>
#include <vector>

// The command line of tessary-check.
struct CheckOptions {
    std::vector<std::string> files;
    bool json = false;
    int line_length = 80;
    int jobs = 0;  // 0: one thread per processor core
    bool help = false;
    bool version = false;
    std::vector<std::string> dictionaries;  // -d FILE, in the order given
    std::string mandatory_file;             // --mandatory FILE
    bool consistency = true;                // off with --no-consistency
    std::string problem;                    // set when the command line is not usable

    // Reads the arguments after the program name.
    static CheckOptions parse(std::vector<std::string> arguments);
    static const char* usage();
};
