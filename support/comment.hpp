// SPDX-License-Identifier: MIT
// Turning text into comment lines and back.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

// Appends to `out` the comment lines that hold `text`: each starts with
// `marker`, then `first_prefix` on the first line and `next_prefix` on the
// following ones, then a piece of the text, then `suffix`. The text is broken
// after one of `break_chars` so that each line stays within `width`
// characters where it can; a piece with no break character in reach is cut at
// the width. Empty text gives one line. No blank is added after the marker, so
// uncomment gives the text back unchanged.
void comment(const std::string& text, std::vector<std::string>& out, const std::string& first_prefix,
             const std::string& next_prefix, const std::string& suffix, const std::string& marker,
             std::size_t width, const std::string& break_chars);

// Appends to `out` the line with its leading `marker` removed (the marker may
// follow white space, which is kept), and then `prefix` when it follows the
// marker. A line without the marker is appended unchanged.
void uncomment(const std::string& line, std::vector<std::string>& out, const std::string& marker,
               const std::string& prefix);
