// SPDX-License-Identifier: MIT
// The command line of tessary-check read into options, and its usage text.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// The command line of tessary-check.
struct CheckOptions {
    // Views of the arguments (a run over thousands of files keeps no copy of
    // their names), which must outlive the options: main's argv does.
    std::vector<std::string_view> files;
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
    static CheckOptions parse(const std::vector<std::string_view>& arguments);
    static const char* usage();
};
