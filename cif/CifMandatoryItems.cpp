// SPDX-License-Identifier: MIT
// Reads a mandatory-data-items file into its two lists.
#include "cif/CifMandatoryItems.hpp"

#include "support/getline.hpp"

CifMandatoryItems CifMandatoryItems::read(std::istream& stream, const Trace& trace) {
    constexpr int crystal_bit = 1;
    constexpr int publication_bit = 2;
    CifMandatoryItems items;
    auto note = [&](Line kind, const std::string& text) {
        if (trace) trace(kind, text);
    };
    int mask = 0;
    std::string raw;
    while (orma::getline(stream, raw)) {
        const std::size_t first = raw.find_first_not_of(" \t");
        if (first == std::string::npos) continue;
        const std::string line = raw.substr(first, raw.find_last_not_of(" \t") - first + 1);
        if (line[0] == '#') {
            note(Line::comment, line);
        } else if (line.compare(0, 5, "data_") == 0) {
            note(Line::section, line);
            mask = line == "data_all"           ? crystal_bit | publication_bit
                   : line == "data_publication" ? publication_bit
                   : line == "data_crystal"     ? crystal_bit
                                                : 0;
        } else if (line[0] == '_') {
            const std::string name = line.substr(0, line.find_first_of(" \t"));
            note(Line::item, name);
            if (mask & publication_bit) items.publication.push_back(name);
            if (mask & crystal_bit) items.crystal.push_back(name);
        } else {
            note(Line::unrecognised, line);
        }
    }
    return items;
}
