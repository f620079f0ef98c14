// SPDX-License-Identifier: MIT
// orma::getline, which reads one line whatever its ending (LF, CR LF or CR).
#include "support/getline.hpp"

namespace orma {

std::istream& getline(std::istream& in, std::string& line) {
    line.clear();
    std::istream::sentry guard(in, true);
    if (!guard) return in;
    std::streambuf* buffer = in.rdbuf();
    bool readAnything = false;
    for (;;) {
        const int c = buffer->sbumpc();
        if (c == std::char_traits<char>::eof()) {
            in.setstate(readAnything ? std::ios::eofbit : std::ios::eofbit | std::ios::failbit);
            return in;
        }
        readAnything = true;
        if (c == '\n') return in;
        if (c == '\r') {
            if (buffer->sgetc() == '\n') buffer->sbumpc();
            return in;
        }
        line.push_back(static_cast<char>(c));
    }
}

}  // namespace orma
