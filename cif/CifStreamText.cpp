// SPDX-License-Identifier: MIT
// The whole text of a stream in one string of the right size.
#include "cif/CifStreamText.hpp"

bool cif_read_stream(std::istream& stream, std::string& text) {
    text.clear();
    std::istream::pos_type start = stream.tellg();
    if (start != std::istream::pos_type(-1)) {
        stream.seekg(0, std::ios::end);
        std::istream::pos_type stop = stream.tellg();
        stream.seekg(start);
        if (stop != std::istream::pos_type(-1) && stop > start && stream) {
            text.resize(static_cast<std::size_t>(stop - start));
            stream.read(text.data(), static_cast<std::streamsize>(text.size()));
            text.resize(static_cast<std::size_t>(stream.gcount()));
        }
    }
    stream.clear(stream.rdstate() & ~std::ios::failbit & ~std::ios::eofbit);
    char buffer[1 << 16];
    while (stream) {
        stream.read(buffer, sizeof buffer);
        text.append(buffer, static_cast<std::size_t>(stream.gcount()));
    }
    return !stream.bad();
}
