// SPDX-License-Identifier: MIT
// The process-wide diagnostic log: debug, warning and error lines written whole to stderr.
#pragma once

#include <ostream>

// The process-wide diagnostic log. A debug line of level n is wanted when
// level_ >= n and minimum_level_ <= n; the caller tests wants(n), then streams
// its text between start_debug_line(n) and end_debug_line(). Lines go to
// stderr whole, one at a time, so threads never interleave their text.
// TESSARY_LOG_LEVEL in the environment sets level_ at start-up.
class ORMALog {
public:
    static int level_;
    static int minimum_level_;

    static bool wants(int n) { return level_ > n - 1 && minimum_level_ < n + 1; }

    static std::ostream& start_debug_line(int n);
    static void end_debug_line();
    static std::ostream& start_warning_line();
    static void end_warning_line();
    static std::ostream& start_error_line();
    static void end_error_line();

    // Where finished lines are written; stderr unless a test redirects it.
    static void set_sink(std::ostream* sink);
};
