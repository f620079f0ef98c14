// SPDX-License-Identifier: MIT
// orma::getline, which reads one line whatever its ending (LF, CR LF or CR).
#pragma once

#include <istream>
#include <string>

namespace orma {

// Reads one line whatever its ending ("\n", "\r\n" or "\r"); the ending is
// not stored. Like std::getline, the stream turns false once no character is
// left, so a final line end does not produce an extra empty line.
std::istream& getline(std::istream& in, std::string& line);

}  // namespace orma
